// A program that a test starts, talks to and ends.
#pragma once

#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <string>
#include <thread>

namespace Ombrey::Essais {

using namespace std::chrono_literals;

/// True once Vrai() is; asks about every millisecond.
template <class Condition>
bool Bientôt(Condition Vrai, std::chrono::milliseconds Patience) {
  for (const auto Limite = std::chrono::steady_clock::now() + Patience; !Vrai(); std::this_thread::sleep_for(1ms))
    if (std::chrono::steady_clock::now() > Limite) return false;
  return true;
}

/// Runs until it ends by itself or the object goes, or the thread that started it: a station that outlived its test
/// would take the loads of the next one's terminal. Its standard output and error come in as one text.
class Programme {
 public:
  explicit Programme(const std::string& CommandeDuShell) {
    int Fils[2] = {-1, -1};
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, Fils) == 0 && (Enfant_ = fork()) == 0) {
      prctl(PR_SET_PDEATHSIG, SIGKILL);
      for (int Bout = STDIN_FILENO; Bout <= STDERR_FILENO; ++Bout) dup2(Fils[1], Bout);
      _exit(execl("/bin/sh", "sh", "-c", CommandeDuShell.c_str(), nullptr));
    }
    close(Fils[1]);
    Fil_ = Fils[0];
  }
  Programme(const Programme&) = delete;
  ~Programme() {
    Signaler(SIGKILL);
    if (Enfant_ > 0) waitpid(Enfant_, nullptr, 0);
    close(Fil_);
  }

  void Taper(const std::string& Ligne) const { send(Fil_, (Ligne + "\n").data(), Ligne.size() + 1, MSG_NOSIGNAL); }
  /// True once Extrait stands in what was said since the last call that found something; waits for it.
  bool Attendre(const std::string& Extrait, std::chrono::milliseconds Patience = 15s) {
    const bool EstDit = Bientôt([&] { return Dit().find(Extrait, Vu_) != std::string::npos; }, Patience);
    if (EstDit) Vu_ = Dit_.find(Extrait, Vu_) + Extrait.size();
    return EstDit;
  }
  [[nodiscard]] std::string Numéro() const { return std::to_string(Enfant_); }
  void Signaler(int Signal) const { Enfant_ > 0 ? kill(Enfant_, Signal) : 0; }
  /// The exit code, or minus the signal that ended it; EnCours when it is still running after Patience.
  int Fin(std::chrono::milliseconds Patience = 15s) {
    int État = 0;
    if (!Bientôt([&] { return waitpid(Enfant_, &État, WNOHANG) != 0; }, Patience)) return EnCours;
    Enfant_ = 0;
    return WIFEXITED(État) ? WEXITSTATUS(État) : -WTERMSIG(État);
  }
  /// All that it has said by now. Nobody else reads it.
  const std::string& Dit() {
    char Place[4096];
    for (ssize_t Lus = 0; (Lus = recv(Fil_, Place, sizeof Place, MSG_DONTWAIT)) > 0;)
      Dit_.append(Place, static_cast<std::size_t>(Lus));
    return Dit_;
  }
  static constexpr int EnCours = 1000;

 private:
  pid_t Enfant_ = 0;
  int Fil_ = -1;
  std::string Dit_;
  std::size_t Vu_ = 0;
};

}  // namespace Ombrey::Essais
