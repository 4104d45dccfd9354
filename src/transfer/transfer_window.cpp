// The window that sends the cooperative's reference data to the terminal.
#include "transfer/transfer_window.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>

#include "base/ansi_text.h"
#include "base/failures.h"
#include "base/visible_text.h"
#include "contracts/line_protocol.h"
#include "transfer/file_builder.h"

namespace Ombrey {
namespace {

constexpr const char* TitreOuverture = "Chargement des données vers le RG80";
constexpr const char* TitreTransmission = "Transmission des données";
constexpr std::size_t CaractèresDeTrameMontrés = 80;

// In twips.
constexpr int HautDesCases = 480;
constexpr int PasDesCases = 300;
constexpr int MargeBasse = 135;

/// One check box for each data set, in the order of sending; the inner area ends below the last one.
Rectangle Intérieur() {
  return {0, 0, 4260, HautDesCases + PasDesCases * static_cast<int>(JeuxDeDonnées().size()) + MargeBasse};
}

std::vector<DessinContrôle> Dessin() {
  using enum GenreContrôle;
  std::vector<DessinContrôle> Contrôles;
  int Ordre = 0;
  for (const JeuDeDonnées& Jeu : JeuxDeDonnées()) {
    Contrôles.push_back({Jeu.Case, CaseÀCocher, Jeu.Nom, {120, HautDesCases + PasDesCases * Ordre, 2475, 300}, Ordre});
    ++Ordre;
  }
  Contrôles.push_back({"BtnTransférer", Bouton, "&Transférer", {2880, 480, 1215, 855}, Ordre});
  Contrôles.push_back({"BtnFermer", Bouton, "&Fermer", {2880, 1500, 1215, 495}, Ordre + 1});
  Contrôles.push_back(
      {"Label1", Libellé, "Le RG80 doit être en attente de fichiers (F6).", {120, 120, 3975, 255}, Ordre + 2});
  return Contrôles;
}

/// A refused frame comes back whole behind the reason: a file that no box can hold.
std::string TrameAbrégée(const std::string& Raison) {
  const std::size_t Début = Raison.find(STX);
  if (Début == std::string::npos) return Raison;
  const Octets Trame = VersAnsi(std::string_view(Raison).substr(Début));
  std::string Abrégée = Raison.substr(0, Début);
  Abrégée += TexteVisible(DepuisAnsi(Trame.Extrait(0, CaractèresDeTrameMontrés)));
  if (Trame.Taille() > CaractèresDeTrameMontrés) Abrégée += "… (" + std::to_string(Trame.Taille()) + " caractères)";
  return Abrégée;
}

}  // namespace

void FChargntDonnées::Afficher(IServicesLiaison& PlugIn) {
  PlugIn_ = &PlugIn;
  ErreurEnAttente Levée;
  Garder(Levée, [this] { MontrerSiConnecté(); });
  Vue_.reset();
  PlugIn_ = nullptr;
  if (Levée.EstPrésente()) throw ErreurExécution(Levée.Texte());
}

void FChargntDonnées::MontrerSiConnecté() {
  const bool Connecté = PlugIn_->TesterConnexion();
  if (État_.Abandon) return;
  if (!Connecté) {
    État_.Avertir("Il n'y a aucune communication avec le RG80", "Transfert de données");
    return;
  }
  Vue_ = État_.Plateforme.Fenêtres().CréerVueChargntDonnées(*this, TitreOuverture, Intérieur(), Dessin());
  Vue_->MontrerModale();
}

void FChargntDonnées::Décharger() {
  if (Vue_) Vue_->Cacher();
}

void FChargntDonnées::BtnFermer_Click() { Vue_->Cacher(); }

void FChargntDonnées::BtnTransférer_Click() {
  auto& Fenêtres = État_.Plateforme.Fenêtres();
  bool Recommencer = true;
  while (Recommencer) {
    Fenêtres.FixerSablier(true);
    Vue_->Activer(false);
    const std::string Erreur = TransférerCochées();
    Recommencer =
        !Erreur.empty() && !État_.Abandon &&
        Fenêtres.Boîte(Erreur, TitreTransmission, BoutonsBoîte::RecommencerAnnuler) == RéponseBoîte::Recommencer &&
        !État_.Abandon;
  }
  if (!État_.Abandon) {
    Vue_->Activer(true);
    Vue_->FixerTitre(TitreTransmission);
  }
  Fenêtres.FixerSablier(false);
  if (!État_.Abandon) DireOmissions();
}

/// The file went, yet not all that the office entered: that must not pass for a success.
void FChargntDonnées::DireOmissions() {
  std::string Toutes;
  for (const std::string& Omission : std::exchange(Omissions_, {})) {
    État_.Canal.AjouterErreur(Omission);
    Toutes += (Toutes.empty() ? "" : "\r\n") + Omission;
  }
  if (!Toutes.empty()) État_.Avertir(Toutes, TitreTransmission);
}

/// Empty when all went well or the plug-in has ended.
std::string FChargntDonnées::TransférerCochées() {
  std::vector<Octets> Lignes;
  std::string Erreur;
  for (const auto& Jeu : JeuxDeDonnées()) {
    if (!Vue_->EstCochée(Jeu.Case)) continue;
    Vue_->MettreEnGras(Jeu.Case, true);
    const auto Raison = Transférer(Jeu, Lignes);
    if (État_.Abandon) return {};
    if (Raison) {
      Erreur = std::string(Jeu.Nom) + "\r\n" + *Raison;
    } else {
      Vue_->Cocher(Jeu.Case, false);
    }
    Vue_->MettreEnGras(Jeu.Case, false);
    if (Raison) break;
  }
  return Erreur;
}

/// The reason why the set hasn't reached the terminal, or none.
std::optional<std::string> FChargntDonnées::Transférer(const JeuDeDonnées& Jeu, std::vector<Octets>& Lignes) {
  const auto Titrer = [this](const std::string& Titre) {
    Vue_->FixerTitre(Titre);
    Vue_->Repeindre();
  };
  std::string Raison;
  std::vector<std::string> Omissions;
  ErreurEnAttente Levée;
  const bool Mené = Garder(Levée, [&] {
    const auto Base = État_.BaseDAO();
    Omissions = ConstruireFichier(Jeu, {*Base, État_.Formes()}, Titrer, Lignes);
    Attendre(Jeu.Pause);
    if (État_.Abandon) return;
    État_.Erreur.Effacer();  // what failed in an earlier dialogue is no failure of this file
    Raison = PlugIn_->TransmettreLignes(Jeu.NumFichier, Lignes);
  });
  if (!Mené) return Levée.Texte();
  if (!Raison.empty()) return TrameAbrégée(Raison);
  Omissions_.insert(Omissions_.end(), Omissions.begin(), Omissions.end());
  return std::nullopt;
}

void FChargntDonnées::Attendre(std::chrono::milliseconds Pause) {
  auto& Système = État_.Plateforme.Système();
  const std::uint32_t Début = Système.Tics();
  std::chrono::milliseconds Écoulé{0};
  while (Écoulé < Pause && !État_.Abandon) {
    Système.Pomper(Pause - Écoulé);
    Écoulé = std::chrono::milliseconds(Système.Tics() - Début);  // unsigned: right across the wrap
  }
}

}  // namespace Ombrey
