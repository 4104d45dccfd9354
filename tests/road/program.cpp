// A program that a test starts, talks to and ends.
#include "tests/road/program.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <thread>

namespace Ombrey::Essais {

using Horloge = std::chrono::steady_clock;
using std::chrono::milliseconds;

Programme::Programme(const std::string& Nom, std::vector<std::string> Arguments, const std::function<void()>& Avant) {
  std::signal(SIGPIPE, SIG_IGN);
  Arguments.insert(Arguments.begin(), std::string(BIN_DIR) + "/" + Nom);
  std::vector<char*> Bruts;
  Bruts.reserve(Arguments.size() + 1);
  for (std::string& Un : Arguments) Bruts.push_back(Un.data());
  Bruts.push_back(nullptr);
  std::array<int, 2> Vers{};
  std::array<int, 2> De{};
  if (pipe2(Vers.data(), O_CLOEXEC) != 0 || pipe2(De.data(), O_CLOEXEC) != 0) {
    ADD_FAILURE() << "no pipe";
    return;
  }
  Enfant_ = fork();
  if (Enfant_ == 0) {
    dup2(Vers[0], STDIN_FILENO);
    dup2(De[1], STDOUT_FILENO);
    dup2(De[1], STDERR_FILENO);
    if (Avant) Avant();
    execv(Bruts[0], Bruts.data());
    _exit(127);
  }
  close(Vers[0]);
  close(De[1]);
  Entrée_ = Vers[1];
  Sortie_ = De[0];
}

Programme::~Programme() {
  if (Enfant_ > 0) {
    kill(Enfant_, SIGKILL);
    waitpid(Enfant_, nullptr, 0);
  }
  close(Entrée_);
  close(Sortie_);
}

void Programme::Taper(const std::string& Ligne) const {
  const std::string Texte = Ligne + "\n";
  EXPECT_EQ(write(Entrée_, Texte.data(), Texte.size()), static_cast<ssize_t>(Texte.size()));
}

/// True when something was read.
bool Programme::Lire(milliseconds Patience) {
  pollfd Prêt{Sortie_, POLLIN, 0};
  if (poll(&Prêt, 1, static_cast<int>(std::max<std::int64_t>(Patience.count(), 0))) <= 0) return false;
  std::array<char, 4096> Place{};
  const ssize_t Lus = read(Sortie_, Place.data(), Place.size());
  if (Lus > 0) Dit_.append(Place.data(), static_cast<std::size_t>(Lus));
  return Lus > 0;
}

bool Programme::Attendre(const std::string& Extrait, milliseconds Patience) {
  const auto Limite = Horloge::now() + Patience;
  for (;;) {
    if (const std::size_t Place = Dit_.find(Extrait, Vu_); Place != std::string::npos) {
      Vu_ = Place + Extrait.size();
      return true;
    }
    if (!Lire(std::chrono::ceil<milliseconds>(Limite - Horloge::now()))) return false;
  }
}

void Programme::Signaler(int Signal) const { kill(Enfant_, Signal); }

std::optional<int> Programme::Fin(milliseconds Patience) {
  const auto Limite = Horloge::now() + Patience;
  while (Lire(std::chrono::ceil<milliseconds>(Limite - Horloge::now()))) {
  }
  return FinSansLire(std::chrono::ceil<milliseconds>(Limite - Horloge::now()));
}

std::optional<int> Programme::FinSansLire(milliseconds Patience) {
  const auto Limite = Horloge::now() + Patience;
  for (;;) {
    int État = 0;
    if (waitpid(Enfant_, &État, WNOHANG) == Enfant_) {
      Enfant_ = 0;
      return WIFEXITED(État) ? WEXITSTATUS(État) : -WTERMSIG(État);
    }
    if (Horloge::now() >= Limite) return std::nullopt;
    std::this_thread::sleep_for(milliseconds(2));
  }
}

}  // namespace Ombrey::Essais
