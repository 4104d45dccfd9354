// The transfer window on a console.
#include "platform/console/transfer_view.h"

#include <algorithm>
#include <utility>

#include "platform/console/typed_text.h"

namespace Ombrey {
namespace {

std::string SansMnémonique(std::string Légende) {
  std::erase(Légende, '&');
  return Légende;
}

}  // namespace

VueChargntConsole::VueChargntConsole(FenêtresConsole& Fenêtres, IGestesChargntDonnées& Gestes, std::string Titre,
                                     std::span<const DessinContrôle> Dessin)
    : Fenêtres_(Fenêtres), Gestes_(Gestes), Titre_(std::move(Titre)) {
  for (const DessinContrôle& Contrôle : Dessin) {
    const std::string Texte = SansMnémonique(Contrôle.Texte);
    if (Contrôle.Genre == GenreContrôle::CaseÀCocher) Cases_.push_back({Contrôle.Nom, Texte, true});
    if (Contrôle.Genre == GenreContrôle::Libellé) Libellés_.push_back(Texte);
  }
}

VueChargntConsole::~VueChargntConsole() {
  *Montrée_ = false;
  Fenêtres_.Oublier(*this);
}

void VueChargntConsole::MontrerModale() {
  if (*Montrée_) return;
  const std::shared_ptr<bool> Montrée = Montrée_;
  FenêtresConsole& Fenêtres = Fenêtres_;
  *Montrée = true;
  Fenêtres.LigneFenêtre(Titre_, "ouverte");
  if (Fenêtres.Témoins().Transfert) Fenêtres.Témoins().Transfert(true);
  for (const std::string& Libellé : Libellés_) Fenêtres.Ligne("  " + Libellé);
  DireCases();
  // With nobody left to close it, the open window would keep the polling stopped.
  Fenêtres.PomperTantQue([&] { return *Montrée && !Fenêtres.EntréeFermée(); });
  if (Fenêtres.Témoins().Transfert) Fenêtres.Témoins().Transfert(false);
  if (*Montrée) Cacher();
}

void VueChargntConsole::Cacher() {
  if (!*Montrée_) return;
  *Montrée_ = false;
  Fenêtres_.LigneFenêtre(Titre_, "fermée");
}

void VueChargntConsole::Activer(bool Active) {
  if (!Active) Fenêtres_.ReprendreEnvoi();
  if (!std::exchange(Active_, Active) && Active) DireCases();
}

void VueChargntConsole::FixerTitre(const std::string& Titre) {
  if (std::exchange(Titre_, Titre) != Titre) Fenêtres_.Ligne("titre : " + Titre);
}

bool VueChargntConsole::EstCochée(const std::string& Case) const {
  return std::any_of(Cases_.begin(), Cases_.end(), [&](const auto& C) { return C.Nom == Case && C.Cochée; });
}

void VueChargntConsole::Cocher(const std::string& Case, bool Cochée) {
  for (auto& C : Cases_) {
    if (C.Nom == Case) C.Cochée = Cochée;
  }
}

bool VueChargntConsole::CocherParNom(const std::string& Nom, bool Cochée) {
  const std::string Cherchée = FormeComparable(Nom);
  for (auto& C : Cases_) {
    if (FormeComparable(C.Nom) != Cherchée && FormeComparable(C.Légende) != Cherchée) continue;
    C.Cochée = Cochée;
    DireCases();
    return true;
  }
  return false;
}

void VueChargntConsole::DireCases() const {
  std::string Ligne = " ";
  for (const auto& C : Cases_) Ligne += (C.Cochée ? " [x] " : " [ ] ") + C.Légende;
  Fenêtres_.Ligne(Ligne);
}

}  // namespace Ombrey
