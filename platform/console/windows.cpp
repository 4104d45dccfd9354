// The windowing toolkit on a console.
#include "platform/console/windows.h"

#include <chrono>
#include <utility>

#include "base/failures.h"
#include "platform/console/monitoring_view.h"
#include "platform/console/printer.h"
#include "platform/console/transfer_view.h"

namespace Ombrey {
namespace {

/// An end of the wait that nothing announces is noticed at this pace at the latest.
constexpr std::chrono::hours PatienceParPompe(1);
constexpr std::chrono::seconds EntrePoints(5);

/// Puts a value back when the scope ends, however it ends.
class Rétablir {
 public:
  Rétablir(int& Valeur, int Pendant) : Valeur_(Valeur), Avant_(std::exchange(Valeur, Pendant)) {}
  Rétablir(const Rétablir&) = delete;
  Rétablir& operator=(const Rétablir&) = delete;
  ~Rétablir() { Valeur_ = Avant_; }

 private:
  int& Valeur_;
  int Avant_;
};

bool Offre(BoutonsBoîte Boutons, RéponseBoîte Réponse) {
  return (Boutons == BoutonsBoîte::Ok) == (Réponse == RéponseBoîte::Ok);
}

}  // namespace

RéponseBoîte FenêtresConsole::Boîte(const std::string& Texte, const std::string& Titre, BoutonsBoîte Boutons) {
  const bool Seul = Boutons == BoutonsBoîte::Ok;
  Ligne("boîte «" + Titre + "» (" + (Seul ? "OK" : "Recommencer, Annuler") + ") : " + Texte);
  const std::string Précision = Témoins_.Boîte ? Témoins_.Boîte(Titre, Texte) : "";
  if (!Précision.empty()) Ligne("  " + Précision);
  const RéponseBoîte Défaut = RéponseSansOpérateur(Boutons);
  if (!OpérateurPrésent()) {
    if (Témoins_.Retirée) Témoins_.Retirée(Titre, Texte);
    return Défaut;
  }
  const auto Ouverte = std::make_shared<BoîteEnCours>(BoîteEnCours{Boutons, std::nullopt});
  Boîtes_.push_back(Ouverte);
  bool Retirée = false;
  IBoucle::Jeton Échéance;
  // Nobody may be there: the loads behind it don't wait for him.
  if (Seul && Retrait_.count() > 0) Échéance = Boucle_.Après(Retrait_, [&] { Retirée = !Ouverte->Réponse; });
  PomperTantQue([&] { return !Ouverte->Réponse && !Retirée && OpérateurPrésent(); });
  std::erase(Boîtes_, Ouverte);
  if (Retirée) {
    Ligne("boîte «" + Titre + "» retirée sans réponse (« alire » la garde)");
    if (Témoins_.Retirée) Témoins_.Retirée(Titre, Texte);
  }
  return Ouverte->Réponse.value_or(Défaut);
}

bool FenêtresConsole::Avancer(const Avancement& Où) {
  const auto Maintenant = std::chrono::steady_clock::now();
  if (Maintenant - DernierPoint_ >= EntrePoints) {
    DernierPoint_ = Maintenant;
    Ligne("envoi : il reste " + std::to_string(Où.Restants) + " octets sur " + std::to_string(Où.Total) + ", " +
          std::to_string(Où.Durée.count()) + " s (« arreter » l'arrête)");
  }
  return !std::exchange(Arrêt_, false);
}

bool FenêtresConsole::Répondre(RéponseBoîte Réponse) {
  if (Boîtes_.empty() || !Offre(Boîtes_.back()->Boutons, Réponse)) return false;
  Boîtes_.back()->Réponse = Réponse;
  Boîtes_.pop_back();
  return true;
}

std::unique_ptr<IImprimante> FenêtresConsole::OuvrirImprimante() {
  if (!FichierImpression_) throw ErreurExécution("Aucune imprimante : la commande est « imprimer FICHIER ».");
  const std::string Fichier = *std::exchange(FichierImpression_, std::nullopt);
  return std::make_unique<ImprimanteTexte>(Fichier, [this, Fichier] { Ligne("imprimé : " + Fichier); });
}

std::unique_ptr<IVueSuiviChargnt> FenêtresConsole::CréerVueSuivi(IGestesSuivi& Gestes, const std::string& Légende,
                                                                 const Rectangle& Intérieur,
                                                                 std::span<const DessinContrôleSuivi> /*Dessin*/) {
  auto Vue = std::make_unique<VueSuiviConsole>(*this, Gestes, Légende, Intérieur);
  VueSuivi_ = Vue.get();
  return Vue;
}

std::unique_ptr<IVueChargntDonnées> FenêtresConsole::CréerVueChargntDonnées(IGestesChargntDonnées& Gestes,
                                                                            const std::string& Titre,
                                                                            const Rectangle& /*Intérieur*/,
                                                                            std::span<const DessinContrôle> Dessin) {
  auto Vue = std::make_unique<VueChargntConsole>(*this, Gestes, Titre, Dessin);
  VueChargnt_ = Vue.get();
  return Vue;
}

void FenêtresConsole::PomperTantQue(const std::function<bool()>& Dure) {
  const Rétablir Libre(Occupée_, 0);
  const Rétablir Ouvert(Retenue_, 0);
  SignalerDisponibilité();
  while (!EnFin_ && Dure()) Boucle_.Pomper(PatienceParPompe);
}

void FenêtresConsole::PomperCeQuiEstDû() {
  const Rétablir Retenus(Retenue_, 1);
  bool Passé = false;
  const IBoucle::Jeton Fin = Boucle_.Après(std::chrono::milliseconds(0), [&Passé] { Passé = true; });
  while (!EnFin_ && !Passé) Boucle_.Pomper(PatienceParPompe);
}

FenêtresConsole::Occupation::~Occupation() {
  --Fenêtres_.Occupée_;
  Fenêtres_.SignalerDisponibilité();
}

void FenêtresConsole::SignalerDisponibilité() const {
  if (Occupée_ == 0 && DireDisponible_) DireDisponible_();
}

}  // namespace Ombrey
