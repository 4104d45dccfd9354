// The polling loop.
#include "link/polling.h"

#include <utility>

#include "base/failures.h"

namespace Ombrey {
namespace {

constexpr std::int32_t DélaiPremierRelevé = 10000;

}  // namespace

void Interrogation::Commencer() {
  if (!Retard_) {
    Retard_ = État_.Plateforme.CréerRetard([this](const std::string& CodeRetour) { Retard_FinTempo(CodeRetour); });
  }
  Exiger(Retard_)->Démarrer(DélaiPremierRelevé, "");
}

void Interrogation::Armer() { Exiger(Retard_)->Démarrer(PériodeInterrogation_, ""); }

void Interrogation::Suspendre(const std::function<void()>& Faire) {
  Exiger(Retard_)->Arrêter();
  ErreurEnAttente Levée;
  Garder(Levée, Faire);
  if (État_.Abandon) return;
  Armer();
  if (Levée.EstPrésente()) throw ErreurExécution(Levée.Texte());
}

void Interrogation::Retard_FinTempo(const std::string& CodeRetour) {
  const auto Tenu = État_.PlugInCourant;
  const auto Prise = État_.Liaison.PrendreOuReporter(DemandeLiaison::Interrogation,
                                                     [this, CodeRetour] { Retard_FinTempo(CodeRetour); });
  if (!Prise) return;

  if (État_.Abandon) return;
  Exiger(Retard_)->Arrêter();
  std::string Erreur = Collecte(État_, Échange_, Traitement_).LireDonnéesDeRG80();
  if (État_.Erreur.EstPrésente()) Erreur = "Erreur " + État_.Erreur.Texte() + " - " + Erreur;
  État_.Erreur.Effacer();
  Ignorer([&] {
    État_.Canal.AjouterMessage("Vérification de nouveaux chargements sur le RG80. " + Erreur, Erreur.empty());
  });
  if (État_.Abandon) return;
  Ignorer([this] { Armer(); });
}

void Interrogation::Terminer() {
  if (const auto Dernier = std::exchange(Retard_, nullptr)) Dernier->Arrêter();
}

}  // namespace Ombrey
