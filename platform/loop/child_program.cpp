// Another program, run beside this one.
#include "platform/loop/child_program.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <utility>

#include "base/failures.h"
#include "base/system_error.h"

namespace Ombrey {

ProgrammeFils::ProgrammeFils(IBoucle& Boucle, std::vector<std::string> Mots,
                             std::function<void(const std::string&)> Dire, std::function<void(bool)> Achever)
    : Dire_(std::move(Dire)), Achever_(std::move(Achever)) {
  Lancer(Mots);
  Veille_ = Boucle.Surveiller(Lecture_.Numéro(), IBoucle::Sens::Entrée, [this] {
    if (Recevoir()) return;
    Veille_.reset();
    const auto Fin = std::move(Achever_);
    Fin(EstRéussi_);
  });
}

ProgrammeFils::~ProgrammeFils() {
  while (Fils_ > 0) Recevoir();
}

void ProgrammeFils::Arrêter() const {
  if (Fils_ > 0) kill(Fils_, SIGINT);
}

void ProgrammeFils::Lancer(std::vector<std::string>& Mots) {
  const auto Réussi = [&](int Numéro) {
    if (Numéro != 0) throw ErreurExécution(Mots[0] + " ne peut pas être lancé : " + TexteErreurSystème(Numéro));
  };
  int Tube[2] = {-1, -1};
  Réussi(pipe2(Tube, O_CLOEXEC) == 0 ? 0 : errno);
  Lecture_ = Descripteur(Tube[0]);
  const Descripteur Écriture(Tube[1]);
  std::vector<char*> Arguments;
  for (std::string& Mot : Mots) Arguments.push_back(Mot.data());
  Arguments.push_back(nullptr);
  posix_spawn_file_actions_t Flux;
  posix_spawn_file_actions_init(&Flux);
  posix_spawn_file_actions_addopen(&Flux, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  for (const int Sortie : {STDOUT_FILENO, STDERR_FILENO})
    posix_spawn_file_actions_adddup2(&Flux, Écriture.Numéro(), Sortie);
  // A station that was started in a shell's background ignores it: its child must be stopped by it.
  sigset_t Repris;
  sigemptyset(&Repris);
  sigaddset(&Repris, SIGINT);
  posix_spawnattr_t Manière;
  posix_spawnattr_init(&Manière);
  posix_spawnattr_setsigdefault(&Manière, &Repris);
  posix_spawnattr_setflags(&Manière, POSIX_SPAWN_SETSIGDEF);
  const int Numéro = posix_spawn(&Fils_, Arguments[0], &Flux, &Manière, Arguments.data(), environ);
  posix_spawnattr_destroy(&Manière);
  posix_spawn_file_actions_destroy(&Flux);
  if (Numéro != 0) Fils_ = 0;
  Réussi(Numéro);
}

bool ProgrammeFils::Recevoir() {
  std::array<char, 4096> Place{};
  const ssize_t Lus = read(Lecture_.Numéro(), Place.data(), Place.size());
  if (Lus < 0 && errno == EINTR) return true;
  if (Lus > 0) Reste_.append(Place.data(), static_cast<std::size_t>(Lus));
  if (Lus <= 0 && !Reste_.empty() && Reste_.back() != '\n') Reste_ += '\n';
  for (std::size_t Fin = 0; (Fin = Reste_.find('\n')) != std::string::npos; Reste_.erase(0, Fin + 1))
    Dire_(Reste_.substr(0, Fin));
  if (Lus > 0) return true;
  int État = -1;
  while (waitpid(Fils_, &État, 0) < 0 && errno == EINTR) {
  }
  Fils_ = 0;
  EstRéussi_ = État == 0;
  return false;
}

}  // namespace Ombrey
