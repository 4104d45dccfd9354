// One ppoll for the line, the next byte of a paced line, and the terminal's own deadlines.
#include "terminal/service.h"

#include <poll.h>
#include <signal.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <stdexcept>

#include "terminal/pace.h"

namespace Rg80 {

namespace {

volatile std::sig_atomic_t ArrêtDemandé = 0;

extern "C" void NoterArrêt(int) { ArrêtDemandé = 1; }

class Service {
 public:
  Service(Liaison& Fil, IInterlocuteur& Engin, std::string& ÀÉmettre, std::optional<unsigned> Bauds, bool JusquÀVide)
      : Liaison_(Fil), Engin_(Engin), ÀÉmettre_(ÀÉmettre), Entrée_(Bauds), Sortie_(Bauds), JusquÀVide_(JusquÀVide) {}

  void Tourner() {
    while (ArrêtDemandé == 0) {
      Instant Maintenant = Horloge::now();
      const auto Fin = MomentDeFin();
      if (Fin && Maintenant >= *Fin) return;
      Attendre(Maintenant, Fin);
      Maintenant = Horloge::now();
      Recevoir(Maintenant);
      Engin_.Avancer(Maintenant);
      Envoyer(Maintenant);
    }
  }

 private:
  [[nodiscard]] std::optional<Instant> MomentDeFin() const {
    return JusquÀVide_ && ÀÉmettre_.empty() ? Engin_.MomentDeFin() : std::nullopt;
  }

  // Until the line has something for us, or the first of the deadlines.
  void Attendre(Instant Maintenant, std::optional<Instant> Fin) {
    std::optional<Instant> Première = Fin;
    const auto Retenir = [&Première](std::optional<Instant> Autre) {
      if (Autre && (!Première || *Autre < *Première)) Première = Autre;
    };
    Retenir(Engin_.ProchaineÉchéance());
    Retenir(Entrée_.Prochain());
    if (!Bouchée_) Retenir(Sortie_.Prochain());

    pollfd Attendu{Liaison_.Descripteur(), 0, 0};
    if (!Entrée_.Prochain()) Attendu.events |= POLLIN;
    if (Bouchée_) Attendu.events |= POLLOUT;
    timespec Durée{};
    if (Première) {
      const auto Reste = std::max(*Première - Maintenant, Horloge::duration::zero());
      const auto Secondes = std::chrono::duration_cast<std::chrono::seconds>(Reste);
      Durée.tv_sec = Secondes.count();
      Durée.tv_nsec = std::chrono::nanoseconds(Reste - Secondes).count();
    }
    sigset_t Aucun;
    sigemptyset(&Aucun);
    Prêts_ = 0;
    const int Nombre = ppoll(&Attendu, 1, Première ? &Durée : nullptr, &Aucun);
    if (Nombre > 0) Prêts_ = Attendu.revents;
    if ((Prêts_ & (POLLERR | POLLHUP | POLLNVAL)) != 0) throw std::runtime_error("Ligne perdue.");
  }

  void Recevoir(Instant Maintenant) {
    if ((Prêts_ & POLLIN) != 0) Entrée_.Éveiller(Maintenant);
    const std::size_t Dus = Entrée_.Libre() && (Prêts_ & POLLIN) == 0 ? 0 : Entrée_.Dus(Maintenant);
    if (Dus == 0) return;
    const std::string Octets = Liaison_.Lire(Dus);
    Engin_.Recevoir(Octets, Maintenant);
    Entrée_.Compter(Octets.size());
    if (Octets.size() < Dus) Entrée_.Endormir();
  }

  void Envoyer(Instant Maintenant) {
    if (ÀÉmettre_.empty()) return;
    Sortie_.Éveiller(Maintenant);
    const std::size_t Dus = std::min(Sortie_.Dus(Maintenant), ÀÉmettre_.size());
    if (Dus == 0) return;
    const std::size_t Écrits = Liaison_.Écrire(std::string_view(ÀÉmettre_).substr(0, Dus));
    ÀÉmettre_.erase(0, Écrits);
    Bouchée_ = Écrits < Dus;
    Sortie_.Compter(Écrits);
    if (ÀÉmettre_.empty() || Bouchée_) Sortie_.Endormir();
  }

  Liaison& Liaison_;
  IInterlocuteur& Engin_;
  std::string& ÀÉmettre_;
  Cadence Entrée_;
  Cadence Sortie_;
  bool JusquÀVide_;
  bool Bouchée_ = false;  // the line took less than it was given
  short Prêts_ = 0;
};

}  // namespace

void PréparerSignaux() {
  sigset_t Fins;
  sigemptyset(&Fins);
  struct sigaction Action {};
  Action.sa_handler = NoterArrêt;
  for (const int Signal : {SIGINT, SIGTERM, SIGHUP}) {
    sigaddset(&Fins, Signal);
    sigaction(Signal, &Action, nullptr);
  }
  sigprocmask(SIG_BLOCK, &Fins, nullptr);
  signal(SIGPIPE, SIG_IGN);
}

void Servir(Liaison& Fil, IInterlocuteur& Engin, std::string& ÀÉmettre, std::optional<unsigned> Bauds,
            bool JusquÀVide) {
  Service(Fil, Engin, ÀÉmettre, Bauds, JusquÀVide).Tourner();
}

}  // namespace Rg80
