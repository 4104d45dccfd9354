// The console's way out.
#include "platform/console/output.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>

#include "base/visible_text.h"

namespace Ombrey {
namespace {

constexpr int PatienceMs = 1000;

/// True when the descriptor takes bytes again within the time.
bool AttendrePlace(int Descripteur, int DuréeMs) {
  pollfd Guet{Descripteur, POLLOUT, 0};
  return poll(&Guet, 1, DuréeMs) > 0 && (Guet.revents & POLLOUT) != 0;
}

}  // namespace

void SortieConsole::Ligne(std::string_view Texte) {
  if (Perdues_ > 0 && Passer("console : lignes perdues : " + std::to_string(Perdues_) + '\n')) Perdues_ = 0;
  if (Perdues_ > 0 || !Passer(std::string(EstJournal_ ? GravitéJournal(Texte) : "") + TexteVisible(Texte) + '\n'))
    ++Perdues_;
}

bool SortieConsole::Passer(const std::string& Entière) {
  const std::string Depuis = EstCoupée_ ? '\n' + Entière : Entière;
  std::string_view Reste = Depuis;
  while (!Reste.empty()) {
    // A writing that blocks would stop the station: it is tried only where a piece of this size has place.
    EstBouchée_ = !AttendrePlace(Descripteur_, EstBouchée_ ? 0 : PatienceMs);
    if (EstBouchée_) break;
    const ssize_t Écrits = write(Descripteur_, Reste.data(), std::min<std::size_t>(Reste.size(), PIPE_BUF));
    if (Écrits > 0) {
      Reste.remove_prefix(static_cast<std::size_t>(Écrits));
    } else if (Écrits >= 0 || (errno != EINTR && errno != EAGAIN)) {
      break;
    }
  }
  EstCoupée_ = !Reste.empty() && (EstCoupée_ || Reste.size() < Depuis.size());
  return Reste.empty();
}

}  // namespace Ombrey
