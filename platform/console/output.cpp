// The console's way out.
#include "platform/console/output.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>

#include "platform/console/visible_text.h"

namespace Ombrey {
namespace {

constexpr int PatienceMs = 1000;

/// True when a descriptor that was full takes bytes again.
bool AttendrePlace(int Descripteur) {
  pollfd Attente{Descripteur, POLLOUT, 0};
  return poll(&Attente, 1, PatienceMs) > 0 && (Attente.revents & POLLOUT) != 0;
}

}  // namespace

void SortieConsole::Ligne(std::string_view Texte) {
  const std::string Entière = TexteVisible(Texte) + '\n';
  std::string_view Reste = Entière;
  while (!Reste.empty()) {
    const ssize_t Écrits = write(Descripteur_, Reste.data(), Reste.size());
    if (Écrits > 0) {
      Reste.remove_prefix(static_cast<std::size_t>(Écrits));
    } else if (Écrits < 0 && errno == EINTR) {
      continue;
    } else if (Écrits >= 0 || errno != EAGAIN || !AttendrePlace(Descripteur_)) {
      return;
    }
  }
}

}  // namespace Ombrey
