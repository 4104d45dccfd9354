// The monitoring window on a console.
#include "platform/console/monitoring_view.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "base/visible_text.h"

namespace Ombrey {
namespace {

std::string Marque(Onglet Liste, bool Cochée) {
  if (Liste == Onglet::Erreurs) return "";
  return Cochée ? "[x] " : "[ ] ";
}

std::string LigneDeTableau(const std::vector<std::string>& Cellules, const std::vector<std::size_t>& Largeurs) {
  std::string Ligne;
  for (std::size_t Colonne = 0; Colonne < Largeurs.size(); ++Colonne) {
    const std::string Cellule = Colonne < Cellules.size() ? TexteVisible(Cellules[Colonne]) : "";
    Ligne += Cellule + std::string(Largeurs[Colonne] - NombreCaractères(Cellule), ' ');
    if (Colonne + 1 < Largeurs.size()) Ligne += " | ";
  }
  Ligne.erase(Ligne.find_last_not_of(' ') + 1);
  return Ligne;
}

}  // namespace

VueSuiviConsole::VueSuiviConsole(FenêtresConsole& Fenêtres, IGestesSuivi& Gestes, std::string Légende,
                                 const Rectangle& Intérieur)
    : Fenêtres_(Fenêtres), Gestes_(Gestes), Légende_(std::move(Légende)), Place_(Intérieur) {}

VueSuiviConsole::~VueSuiviConsole() {
  *Montrée_ = false;
  Fenêtres_.Oublier(*this);
}

void VueSuiviConsole::MontrerModale() {
  if (*Montrée_) return;
  const std::shared_ptr<bool> Montrée = Montrée_;
  FenêtresConsole& Fenêtres = Fenêtres_;
  *Montrée = true;
  Fenêtres.LigneFenêtre(Légende_, "ouverte");
  Gestes_.Form_Activate();
  Fenêtres.PomperTantQue([&] { return *Montrée; });
}

void VueSuiviConsole::Cacher() {
  if (!*Montrée_) return;
  *Montrée_ = false;
  Fenêtres_.LigneFenêtre(Légende_, "masquée");
}

void VueSuiviConsole::RemplirGrille(std::vector<std::string> Entêtes, std::vector<std::vector<std::string>> Rangées) {
  Entêtes_ = std::move(Entêtes);
  Grille_ = std::move(Rangées);
  GrilleLue_ = true;
}

void VueSuiviConsole::InsérerLigne(Onglet Liste, std::size_t Rang, const std::string& Texte, bool Coché) {
  auto& Lignes = De(Liste).Lignes;
  const auto Place = static_cast<std::ptrdiff_t>(std::min(Rang, Lignes.size()));
  Lignes.insert(Lignes.begin() + Place, LigneDeListe{Texte, Coché});
  Fenêtres_.Ligne((Liste == Onglet::Suivis ? "message " : "erreur ") + Marque(Liste, Coché) + Texte);
  if (Liste == Onglet::Suivis && Fenêtres_.Témoins().Ligne) Fenêtres_.Témoins().Ligne(Texte);
}

void VueSuiviConsole::RetirerLigne(Onglet Liste, std::size_t Rang) {
  auto& Lignes = De(Liste).Lignes;
  if (Rang < Lignes.size()) Lignes.erase(Lignes.begin() + static_cast<std::ptrdiff_t>(Rang));
}

std::size_t VueSuiviConsole::LigneCourante(Onglet Liste) const { return De(Liste).Courante; }

void VueSuiviConsole::OffrirOnglet(Onglet Lequel, bool Offert) {
  if (!Offert && Courant_ == Lequel) ChoisirOnglet(Onglet::Suivis);
}

void VueSuiviConsole::ChoisirOnglet(Onglet Lequel) {
  if (std::exchange(Courant_, Lequel) != Lequel) Gestes_.Onglets_Click();
}

std::vector<std::string> VueSuiviConsole::Lignes(Onglet Liste) const {
  std::vector<std::string> Textes;
  const auto& Lignes = De(Liste).Lignes;
  for (auto Ligne = Lignes.rbegin(); Ligne != Lignes.rend(); ++Ligne) {
    Textes.push_back(Marque(Liste, Ligne->Cochée) + Ligne->Texte);
  }
  return Textes;
}

std::vector<std::string> VueSuiviConsole::Tableau() const {
  std::vector<std::size_t> Largeurs;
  for (std::size_t Colonne = 0; Colonne < Entêtes_.size(); ++Colonne) {
    std::size_t Largeur = NombreCaractères(TexteVisible(Entêtes_[Colonne]));
    for (const auto& Rangée : Grille_) {
      if (Colonne < Rangée.size()) Largeur = std::max(Largeur, NombreCaractères(TexteVisible(Rangée[Colonne])));
    }
    Largeurs.push_back(Largeur);
  }
  std::vector<std::string> Tableau;
  if (!Entêtes_.empty()) Tableau.push_back(LigneDeTableau(Entêtes_, Largeurs));
  for (const auto& Rangée : Grille_) Tableau.push_back(LigneDeTableau(Rangée, Largeurs));
  return Tableau;
}

}  // namespace Ombrey
