// The polling loop.
#include "link/polling.h"

namespace Ombrey {

void Interrogation::Retard_FinTempo(const std::string& CodeRetour) {
  const auto Tenu = État_.PlugInCourant;
  const auto Ligne = État_.Liaison.PrendreOuReporter(DemandeLiaison::Interrogation,
                                                     [this, CodeRetour] { Retard_FinTempo(CodeRetour); });
  if (!Ligne) return;

  if (État_.Abandon) return;
  Exiger(État_.Retard)->Arrêter();
  ErreurEnAttente Ignorée;
  std::string Erreur = Collecte(État_, Échange_, Traitement_).LireDonnéesDeRG80();
  if (État_.Erreur.EstPrésente()) Erreur = "Erreur " + État_.Erreur.Texte() + " - " + Erreur;
  État_.Erreur.Effacer();
  Ignorer(Ignorée, [&] {
    État_.Canal.AjouterMessage("Vérification de nouveaux chargements sur le RG80. " + Erreur, Erreur.empty());
  });
  if (État_.Abandon) return;
  Ignorer(Ignorée, [this] { Exiger(État_.Retard)->Démarrer(État_.PériodeInterrogation, ""); });
}

}  // namespace Ombrey
