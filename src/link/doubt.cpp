// How far the line can be trusted.
#include "link/doubt.h"

namespace Ombrey {

std::chrono::milliseconds Doute::Silence() const {
  // The tick count wraps: only the difference, taken as signed, tells the time that has passed.
  return std::chrono::milliseconds(static_cast<std::int32_t>(Système_.Tics() - Depuis_));
}

std::chrono::milliseconds Doute::SilenceManquant(Rang Demande) const {
  const bool SeCalme = Niveau_ == Niveau::Reprise && Entendu_ && Demande == Rang::Première;
  return Niveau_ == Niveau::Trouble || SeCalme ? DélaiRéponse - Silence() : std::chrono::milliseconds(0);
}

bool Doute::EstCopie(const Octets& Trame) {
  const bool Copie = !EstCalme() && !Trame.EstVide() && Trame == Acquittée_;
  Copies_ = Copie ? Copies_ + 1 : 0;
  return Copie && Copies_ <= CopiesLaissées;
}

void Doute::NoterArrivée(bool Attendue) {
  Entendu_ = true;
  Depuis_ = Système_.Tics();
  if (Attendue) return;
  Niveau_ = Niveau::Trouble;
  if (!std::exchange(Dit_, true)) ÀDire_ = true;
}

void Doute::NoterSansRéponse() {
  Niveau_ = Niveau::Trouble;
  Depuis_ = Système_.Tics();
}

void Doute::NoterDemande() {
  if (Niveau_ == Niveau::Convalescence) {
    Niveau_ = Niveau::Calme;
    Dit_ = false;
  } else if (Niveau_ != Niveau::Calme && Entendu_ && Silence() >= DélaiRéponse) {
    // Not when it has only been silent: a terminal that hasn't said a word may still be busy.
    Niveau_ = Niveau::Convalescence;
  }
  Entendu_ = false;
}

}  // namespace Ombrey
