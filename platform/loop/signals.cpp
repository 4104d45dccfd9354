// The signals that ask the program to end, as events of the loop.
#include "platform/loop/signals.h"

#include <fcntl.h>

#include <atomic>
#include <cerrno>
#include <utility>

#include "base/failures.h"
#include "base/system_error.h"

namespace Ombrey {

namespace {

/// Where the signal handler writes. A handler can reach nothing but a global.
std::atomic<int> EntréeTube{-1};
std::atomic<bool> EstVenu{false};
static_assert(std::atomic<bool>::is_always_lock_free);
static_assert(std::atomic<int>::is_always_lock_free);

extern "C" void OmbreySignalReçu(int) {
  const int Ancien = errno;
  const char Octet = 0;
  EstVenu = true;
  // A full pipe means that enough requests to end are waiting already.
  [[maybe_unused]] const auto Écrits = write(EntréeTube.load(), &Octet, 1);
  errno = Ancien;
}

}  // namespace

SignauxFin::SignauxFin(IBoucle& Boucle, std::function<void()> Demandée) {
  int Tube[2] = {-1, -1};
  if (pipe2(Tube, O_CLOEXEC | O_NONBLOCK) != 0)
    throw ErreurExécution("Signaux de fin indisponibles : " + TexteErreurSystème(errno));
  Sortie_ = Descripteur(Tube[0]);
  Entrée_ = Descripteur(Tube[1]);
  EntréeTube = Entrée_.Numéro();
  EstVenu = false;
  struct sigaction Nouveau {};
  Nouveau.sa_handler = OmbreySignalReçu;
  Nouveau.sa_flags = SA_RESTART;
  sigemptyset(&Nouveau.sa_mask);
  for (std::size_t i = 0; i < Signaux.size(); ++i) {
    sigaction(Signaux[i], &Nouveau, &Anciens_[i]);
    // Who started the program without a terminal to lose (nohup) keeps it so.
    if (Signaux[i] == SIGHUP && Anciens_[i].sa_handler == SIG_IGN) sigaction(SIGHUP, &Anciens_[i], nullptr);
  }
  Veille_ = Boucle.Surveiller(Sortie_.Numéro(), IBoucle::Sens::Entrée,
                              [Bout = Sortie_.Numéro(), Faire = std::move(Demandée)] {
                                char Octet = 0;
                                if (read(Bout, &Octet, 1) == 1) Faire();
                              });
}

SignauxFin::~SignauxFin() {
  for (std::size_t i = 0; i < Signaux.size(); ++i) sigaction(Signaux[i], &Anciens_[i], nullptr);
  EntréeTube = -1;
}

bool SignauxFin::EstDemandée() noexcept { return EstVenu; }

}  // namespace Ombrey
