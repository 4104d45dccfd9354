// The port's settings, asked of the operator line by line.
#include "platform/console/port_questions.h"

#include <optional>

#include "base/text_helpers.h"
#include "platform/console/typed_text.h"

namespace Ombrey {
namespace {

std::string EntreCrochets(const std::string& Valeur) { return Valeur.empty() ? "" : " [" + Valeur + "]"; }

/// The place, counted from 0, of the line that the operator chose by its number; none for any other answer.
std::optional<std::size_t> Choisie(const std::string& Réponse, std::size_t Nombre) {
  const auto Rang = NombreLu<std::size_t>(Réponse).value_or(0);
  return Rang == 0 || Rang > Nombre ? std::nullopt : std::optional(Rang - 1);
}

}  // namespace

bool QuestionsPort::Demander(RéglagesPort& Réglages, const std::function<std::string(const RéglagesPort&)>& Essayer) {
  RéglagesPort Voulus = Réglages;
  Fenêtres_.Ligne(
      "réglages du port : une ligne vide garde la valeur entre crochets, « annuler » laisse tout en l'état.");
  for (;;) {
    if (!DemanderTout(Voulus)) break;
    const std::string Raison = Essayer(Voulus);
    Fenêtres_.Ligne(Raison.empty() ? "essai : le RG80 répond." : "essai : " + Raison);
    const auto Garder = Raison.empty() ? std::optional<std::string>("oui")
                                       : Interroger("garder quand même ces réglages ? (oui, non, annuler) [non]");
    if (!Garder) break;
    if (FormeComparable(*Garder) != "oui") continue;
    Réglages = Voulus;
    return true;
  }
  Fenêtres_.Ligne("réglages du port : inchangés.");
  return false;
}

bool QuestionsPort::DemanderTout(RéglagesPort& Réglages) {
  return DemanderPort(Réglages.Port) && DemanderValeur("vitesse en bauds", Usuels_.Bauds, Réglages.Bauds) &&
         DemanderValeur("parité", Usuels_.Parités, Réglages.Parité) &&
         DemanderValeur("bits de stop", Usuels_.BitsStop, Réglages.BitsStop) &&
         DemanderValeur("taille des mots en bits", Usuels_.TaillesMots, Réglages.TailleMots);
}

bool QuestionsPort::DemanderPort(std::string& Port) {
  const std::vector<PortTrouvé> Ports = Chercher_();
  if (Ports.empty()) Fenêtres_.Ligne("  aucun port série trouvé sur cette machine");
  for (std::size_t Rang = 0; Rang < Ports.size(); ++Rang) {
    Fenêtres_.Ligne("  " + std::to_string(Rang + 1) + ". " + Ports[Rang].Nom + "  " + Ports[Rang].Description);
  }
  do {
    const auto Réponse = Interroger("port, ou son numéro dans la liste" + EntreCrochets(Port));
    if (!Réponse) return false;
    const auto Numéro = Choisie(*Réponse, Ports.size());
    if (Numéro) {
      Port = Ports[*Numéro].Nom;
    } else if (!Réponse->empty()) {
      Port = *Réponse;
    }
  } while (Port.empty());
  return true;
}

bool QuestionsPort::DemanderValeur(const char* Question, const std::vector<std::string>& Choix, std::string& Valeur) {
  std::string Offre;
  for (const std::string& Un : Choix) Offre += (Offre.empty() ? " (" : ", ") + Un;
  if (!Offre.empty()) Offre += ")";
  do {
    const auto Réponse = Interroger(Question + Offre + EntreCrochets(Valeur));
    if (!Réponse) return false;
    if (!Réponse->empty()) Valeur = *Réponse;
  } while (Valeur.empty());
  return true;
}

std::optional<std::string> QuestionsPort::Interroger(const std::string& Question) {
  auto Réponse = Commandes_.Questionner(Question);
  if (Réponse && FormeComparable(*Réponse) == "annuler") return std::nullopt;
  return Réponse;
}

}  // namespace Ombrey
