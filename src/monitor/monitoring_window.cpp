// The monitoring window: today's loads, the messages of the link and the errors.
#include "monitor/monitoring_window.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <utility>

#include "base/failures.h"
#include "base/regional_forms.h"
#include "monitor/error_printout.h"
#include "monitor/load_list.h"
#include "monitor/window_placement.h"

namespace Ombrey {
namespace {

constexpr std::size_t MessagesAuPlus = 64;
/// An equal text among so many of the newest lines is replaced.
constexpr std::size_t LignesComparées = 2;
constexpr const char* SéparateurHorodatage = " : ";

/// What stands on a tab shows on that tab only.
constexpr std::array<std::pair<ContrôleSuivi, Onglet>, 5> ContrôlesDesOnglets{{
    {ContrôleSuivi::ListeSuivis, Onglet::Suivis},
    {ContrôleSuivi::BtnInterroger, Onglet::Suivis},
    {ContrôleSuivi::BtnForcerCumulsRG80, Onglet::Suivis},
    {ContrôleSuivi::ListeErreurs, Onglet::Erreurs},
    {ContrôleSuivi::BtnImprimer, Onglet::Erreurs},
}};

/// A window manager may shift a window by the width of its frame: no hand moved it so little, twips.
constexpr int JeuDuCadre = 600;

bool Voisines(const Rectangle& Une, const Rectangle& Autre) {
  const int Écarts[] = {Une.Gauche - Autre.Gauche, Une.Haut - Autre.Haut, Une.Largeur - Autre.Largeur,
                        Une.Hauteur - Autre.Hauteur};
  return std::ranges::all_of(Écarts, [](int Écart) { return std::abs(Écart) <= JeuDuCadre; });
}

}  // namespace

FSuiviChargnt::FSuiviChargnt(ÉtatPartagé& État, IServicesLiaison& Services)
    : État_(État),
      Services_(Services),
      Vie_(std::make_shared<int>()),
      Vue_(État.Plateforme.Fenêtres().CréerVueSuivi(*this, "Liste des chargements", IntérieurSuivi, DessinSuivi())) {
  Form_Load();
}

FSuiviChargnt::~FSuiviChargnt() { Form_Unload(); }

void FSuiviChargnt::Form_Load() {
  Ignorer([this] { Vue_->OffrirOnglet(Onglet::Erreurs, !Erreurs_.empty()); });
  Ignorer([this] {
    Rectangle Place = Vue_->PlaceContrôle(ContrôleSuivi::BtnMasquer);
    Place.Gauche = -Place.Largeur;  // out of sight, yet Esc still presses it
    Vue_->PlacerContrôle(ContrôleSuivi::BtnMasquer, Place);
  });
  Ignorer([this] { ReprendrePlace(); });  // a window that is never shown saves its place all the same
  Ignorer([this] {
    if (RéglagesPlacement(État_.Plateforme.Réglages(), État_.Formes()).LireAgrandie()) Vue_->Agrandir();
  });
  OffrirCumuls();
}

void FSuiviChargnt::Form_Unload() {
  // Nobody is left to be told.
  Ignorer([this] { SauverPlacement(); });
}

std::string FSuiviChargnt::Horodatage() const {
  return TexteHeure(État_.Plateforme.Système().Maintenant()) + SéparateurHorodatage;
}

void FSuiviChargnt::AjouterMessage(const std::string& Texte, bool Coché) {
  const std::string Heure = Horodatage();
  const std::size_t Comparées = std::min(LignesComparées, Messages_.size());
  for (std::size_t Rang = 0; Rang < Comparées; ++Rang) {
    if (Messages_[Rang].compare(Heure.size(), std::string::npos, Texte) != 0) continue;
    Messages_.erase(Messages_.begin() + static_cast<std::ptrdiff_t>(Rang));
    Vue_->RetirerLigne(Onglet::Suivis, Rang);
    break;
  }
  Messages_.push_front(Heure + Texte);
  Vue_->InsérerLigne(Onglet::Suivis, 0, Messages_.front(), Coché);
  Vue_->ChoisirLigne(Onglet::Suivis, 0);
  OffrirCumuls();
  while (Messages_.size() > MessagesAuPlus) {
    Messages_.pop_back();
    Vue_->RetirerLigne(Onglet::Suivis, Messages_.size());
  }
  if (Vue_->EstVisible()) Vue_->Repeindre();
}

void FSuiviChargnt::AjouterErreur(const std::string& Texte) {
  Erreurs_.push_front(Horodatage() + Texte);
  Vue_->InsérerLigne(Onglet::Erreurs, 0, Erreurs_.front(), false);
  Vue_->ChoisirLigne(Onglet::Erreurs, 0);
  AjouterMessage(Texte, false);
  Vue_->OffrirOnglet(Onglet::Erreurs, true);
  Vue_->ChoisirOnglet(Onglet::Erreurs);
  Onglets_Click();
}

/// Before the first load there are no figures to send again.
void FSuiviChargnt::OffrirCumuls() {
  Vue_->ActiverContrôle(ContrôleSuivi::BtnForcerCumulsRG80, !État_.DernierNoChargement.empty());
}

void FSuiviChargnt::Rafraîchir() {
  OffrirCumuls();
  if (!État_.Liaison.EstPrise()) return RelireListe();
  Ignorer([this] {
    if (!Relecture_) Relecture_ = État_.Plateforme.CréerRetard([this](const std::string&) { RelireListe(); });
    if (!std::exchange(ÀRelire_, true)) Relecture_->Démarrer(0, "");
  });
}

void FSuiviChargnt::RelireListe() {
  ÀRelire_ = false;
  // A pending error here would be told to the operator as one of the dialogue that asked for the list.
  const auto PlugIn = État_.PlugInCourant;
  const std::weak_ptr<const void> Vie = Vie_;
  Ignorer([this] { RemplirGrille(); });
  if (Vie.expired()) return;  // the host has ended the plug-in when it was asked for its base
  Ignorer([this] {
    const RéglagesPlacement Placement(État_.Plateforme.Réglages(), État_.Formes());
    const std::size_t Colonnes = Vue_->NombreColonnes();
    for (std::size_t Colonne = 0; Colonne < Colonnes; ++Colonne) {
      const int Largeur = Placement.LireLargeur(Colonne);
      if (Largeur > 0) Vue_->FixerLargeurColonne(Colonne, Largeur);
    }
  });
}

void FSuiviChargnt::RemplirGrille() {
  const std::weak_ptr<const void> Vie = Vie_;
  const Régional Formes = État_.Formes();
  auto Tableau = LireChargementsDuJour(*État_.BaseDAO(), Formes);
  if (Vie.expired()) return;
  Vue_->RemplirGrille(std::move(Tableau.Entêtes), std::move(Tableau.Rangées));
  GrilleRemplie_ = true;
}

void FSuiviChargnt::Afficher() {
  Onglets_Click();
  Vue_->MontrerModale();
  // The window may be gone.
}

bool FSuiviChargnt::EstVisible() const { return Vue_->EstVisible(); }

void FSuiviChargnt::BtnInterroger_Click() {
  Services_.Retard_FinTempo("");
  // The window may be gone.
}

void FSuiviChargnt::BtnForcerCumulsRG80_Click() {
  const auto PlugIn = État_.PlugInCourant;  // the line belongs to it and is given back at the end
  const std::weak_ptr<const void> Vie = Vie_;
  const auto Prise = État_.Liaison.PrendreOuReporter(DemandeLiaison::Cumuls, [this, Vie] {
    if (!Vie.expired()) BtnForcerCumulsRG80_Click();
  });
  if (!Prise) return;
  std::string DernierChargement;
  ErreurEnAttente Erreur;
  const bool Faite = Garder(Erreur, [&] { Services_.MettreAJourCumuls(DernierChargement); });
  if (!Faite && !Vie.expired()) AjouterErreur(Erreur.Texte());
}

void FSuiviChargnt::BtnImprimer_Click() {
  if (Erreurs_.empty() || !BoîtePermise(DemandeLiaison::Impression, [this] { BtnImprimer_Click(); })) return;
  const auto PlugIn = État_.PlugInCourant;
  ErreurEnAttente Erreur;
  const bool Imprimée = Garder(Erreur, [this] {
    const auto Imprimante = État_.Plateforme.Fenêtres().OuvrirImprimante();
    ImprimerErreurs(*Imprimante, État_.Plateforme.Système().Maintenant(), Erreurs_);
  });
  if (!Imprimée) État_.Avertir(Erreur.Texte());
}

void FSuiviChargnt::BtnMasquer_Click() { Vue_->Cacher(); }

void FSuiviChargnt::Onglets_Click() {
  const Onglet Courant = Vue_->OngletCourant();
  for (const auto& [Contrôle, Sien] : ContrôlesDesOnglets) Vue_->MontrerContrôle(Contrôle, Sien == Courant);
}

void FSuiviChargnt::ListeMessages_DblClick(Onglet Liste) {
  const auto& Lignes = Liste == Onglet::Suivis ? Messages_ : Erreurs_;
  const std::size_t Courante = Vue_->LigneCourante(Liste);
  if (Courante >= Lignes.size()) return;
  const std::string Texte = Lignes[Courante];  // the list may change while the box is open
  MontrerLigne(Texte);
}

void FSuiviChargnt::MontrerLigne(const std::string& Texte) {
  if (BoîtePermise(DemandeLiaison::LigneEntière, [this, Texte] { MontrerLigne(Texte); })) État_.Avertir(Texte);
}

/// A box in the midst of an exchange would hold up the terminal: Reprise then runs behind it. The line itself goes back
/// at once.
bool FSuiviChargnt::BoîtePermise(DemandeLiaison Demande, std::function<void()> Reprise) {
  const std::weak_ptr<const void> Vie = Vie_;
  const auto SiVivante = [Vie, Reprise = std::move(Reprise)] {
    if (!Vie.expired()) Reprise();
  };
  return État_.Liaison.PrendreOuReporter(Demande, SiVivante).has_value();
}

void FSuiviChargnt::Form_Activate() {
  const std::weak_ptr<const void> Vie = Vie_;
  Ignorer([this] { ReprendrePlace(); });
  Rafraîchir();
  if (!Vie.expired()) Ignorer([this] { Vue_->MettreDevant(); });
}

void FSuiviChargnt::Form_Resize() { DisposerContrôles(*Vue_); }

bool FSuiviChargnt::Form_QueryUnload(bool ParUtilisateur) {
  if (!ParUtilisateur) return false;
  ErreurEnAttente Erreur;
  const bool Sauvé = Garder(Erreur, [this] { SauverPlacement(); });
  Vue_->Cacher();
  if (!Sauvé) AjouterMessage("La place de la fenêtre n'a pas pu être enregistrée : " + Erreur.Texte(), false);
  return true;
}

void FSuiviChargnt::ReprendrePlace() {
  const Rectangle Présente = Vue_->PlaceFenêtre();
  const Rectangle Réglée = RéglagesPlacement(État_.Plateforme.Réglages(), État_.Formes()).LirePlace(Présente);
  if (Réglée == Présente) return PlaceDEmprunt_.reset();
  Vue_->PlacerFenêtre(Réglée);
  const Rectangle Obtenue = Vue_->PlaceFenêtre();
  if (Voisines(Obtenue, Réglée))
    PlaceDEmprunt_.reset();
  else
    PlaceDEmprunt_ = Obtenue;
}

void FSuiviChargnt::SauverPlacement() {
  const RéglagesPlacement Placement(État_.Plateforme.Réglages(), État_.Formes());
  const bool Agrandie = Vue_->EstAgrandie();
  if (Agrandie != Placement.LireAgrandie()) Placement.EcrireAgrandie(Agrandie);
  // The place of a screen that is missing today is kept, unless the operator gave another one.
  const Rectangle Place = Vue_->PlaceFenêtre();
  if (!Agrandie && !(PlaceDEmprunt_ && Voisines(Place, *PlaceDEmprunt_))) Placement.EcrirePlace(Place);
  if (!GrilleRemplie_) return;
  const std::size_t Colonnes = Vue_->NombreColonnes();
  for (std::size_t Colonne = 0; Colonne < Colonnes; ++Colonne)
    Placement.EcrireLargeur(Colonne, Vue_->LargeurColonne(Colonne));
}

}  // namespace Ombrey
