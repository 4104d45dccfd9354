// Asking the operator for a port's settings and keeping them in the settings file.
#include "platform/serial/port_dialogue.h"

#include <charconv>

#include "base/failures.h"

namespace Ombrey {

namespace {

/// A key of the settings file, and what is proposed where it has none. The port's own proposal depends on the machine.
struct CléPort {
  const char* Clé;
  std::string RéglagesPort::*Champ;
  const char* Proposition;
};

constexpr CléPort Clés[] = {
    {"Port", &RéglagesPort::Port, "COM1:"},         {"Bauds", &RéglagesPort::Bauds, "9600"},
    {"Parité", &RéglagesPort::Parité, "aucune"},    {"BitsStop", &RéglagesPort::BitsStop, "1"},
    {"TailleMots", &RéglagesPort::TailleMots, "8"},
};

RéglagesPort Compléter(RéglagesPort Réglages) {
  if (Réglages.Port.empty()) {
    const auto Trouvés = PortsDeLaMachine();
    if (!Trouvés.empty()) Réglages.Port = Trouvés.front().Nom;
  }
  for (const CléPort& Ligne : Clés)
    if ((Réglages.*Ligne.Champ).empty()) Réglages.*Ligne.Champ = Ligne.Proposition;
  return Réglages;
}

/// The port's name last: should the disk fill up in between, the old port isn't started with a new one's name.
void ÉcrireRéglages(ILecteurIni& Lecteur, const RéglagesPort& Anciens, const RéglagesPort& Nouveaux) {
  for (auto Ligne = std::rbegin(Clés); Ligne != std::rend(Clés); ++Ligne) {
    if (Anciens.*Ligne->Champ == Nouveaux.*Ligne->Champ) continue;
    bool Drapeau = false;
    Lecteur.FixerClé(Ligne->Clé);
    Lecteur.FixerValeur(Nouveaux.*Ligne->Champ);
    Lecteur.EcrireValeur(Drapeau);
  }
}

std::int16_t LireNombre(const std::string& NomPort, const std::string& Quoi, const std::string& Texte) {
  std::int16_t Nombre = 0;
  const char* Fin = Texte.data() + Texte.size();
  const auto [Arrêt, Erreur] = std::from_chars(Texte.data(), Fin, Nombre);
  if (Erreur != std::errc() || Arrêt != Fin)
    throw ErreurExécution("Port " + NomPort + " : " + Quoi + " « " + Texte + " » n'est pas un nombre possible.");
  return Nombre;
}

}  // namespace

RéglagesPort LireRéglages(ILecteurIni& Lecteur) {
  RéglagesPort Lus;
  for (const CléPort& Ligne : Clés) {
    bool Drapeau = false;
    Lecteur.FixerClé(Ligne.Clé);
    Lecteur.LireValeur(Drapeau);
    Lus.*Ligne.Champ = Lecteur.Valeur();
  }
  return Lus;
}

std::string EssayerPort(const RéglagesPort& Réglages, const std::function<bool(const std::string&)>& DéjàOuvert) {
  try {
    const std::string& Nom = Réglages.Port;
    RéglagesDemandés Demandés;
    Demandés.Bauds = LireNombre(Nom, "la vitesse", Réglages.Bauds);
    Demandés.Bits = LireNombre(Nom, "la taille des mots", Réglages.TailleMots);
    Demandés.Parité = Réglages.Parité;
    Demandés.BitsStop = LireNombre(Nom, "le nombre de bits de stop", Réglages.BitsStop);
    const std::string Chemin = CheminDuPort(Nom);
    const RéglagesLigne Vérifiés = VérifierRéglages(Nom, Demandés);
    if (!DéjàOuvert(Chemin)) {
      const AppareilLigne Essai({Nom, Chemin}, Vérifiés);
    }
    return "";
  } catch (const ErreurExécution& Erreur) {
    return Erreur.what();
  }
}

bool ConfigurerPort(const ContextePort& Contexte, const std::string& FichierIni, const std::string& Section,
                    const std::function<bool(const std::string&)>& DéjàOuvert) {
  if (!Contexte.Questionnaire) return false;
  const auto Lecteur = Contexte.CréerLecteurIni();
  Lecteur->FixerFichier(FichierIni);
  Lecteur->FixerSection(Section);
  const RéglagesPort Anciens = LireRéglages(*Lecteur);
  RéglagesPort Nouveaux = Compléter(Anciens);
  if (!Contexte.Questionnaire->Demander(
          Nouveaux, [&DéjàOuvert](const RéglagesPort& Réglages) { return EssayerPort(Réglages, DéjàOuvert); }))
    return false;
  ÉcrireRéglages(*Lecteur, Anciens, Nouveaux);
  Contexte.Questionnaire->DireRetenus();
  return true;
}

}  // namespace Ombrey
