// Asking the operator for a port's settings and keeping them in the settings file.
#include "platform/serial/port_dialogue.h"

#include <cstdint>
#include <iterator>

#include "base/failures.h"
#include "base/text_helpers.h"
#include "contracts/line_protocol.h"
#include "contracts/system.h"
#include "platform/loop/loop.h"
#include "platform/loop/signals.h"
#include "platform/serial/line_device.h"
#include "platform/serial/line_settings.h"

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
  for (const CléPort& Rangée : Clés)
    if ((Réglages.*Rangée.Champ).empty()) Réglages.*Rangée.Champ = Rangée.Proposition;
  return Réglages;
}

/// The port's name last: should the disk fill up in between, the old port isn't started with a new one's name.
void ÉcrireRéglages(ILecteurIni& Lecteur, const RéglagesPort& Anciens, const RéglagesPort& Nouveaux) {
  for (auto Rangée = std::rbegin(Clés); Rangée != std::rend(Clés); ++Rangée) {
    if (Anciens.*Rangée->Champ == Nouveaux.*Rangée->Champ) continue;
    bool Drapeau = false;
    Lecteur.FixerClé(Rangée->Clé);
    Lecteur.FixerValeur(Nouveaux.*Rangée->Champ);
    Lecteur.EcrireValeur(Drapeau);
  }
}

std::int16_t NombreDuRéglage(const std::string& NomPort, const std::string& Quoi, const std::string& Texte) {
  const auto Nombre = NombreLu<std::int16_t>(Texte);
  if (!Nombre)
    throw ErreurExécution("Port " + NomPort + " : " + Quoi + " « " + Texte + " » n'est pas un nombre possible.");
  return *Nombre;
}

RéglagesLiaison Vérifiés(const RéglagesPort& Réglages) {
  const std::string& Nom = Réglages.Port;
  RéglagesDemandés Demandés;
  Demandés.Bauds = NombreDuRéglage(Nom, MotVitesse, Réglages.Bauds);
  Demandés.Bits = NombreDuRéglage(Nom, MotTaille, Réglages.TailleMots);
  Demandés.Parité = Réglages.Parité;
  Demandés.BitsStop = NombreDuRéglage(Nom, MotBitsStop, Réglages.BitsStop);
  return VérifierRéglages(Nom, Demandés);
}

}  // namespace

RéglagesPort LireRéglages(ILecteurIni& Lecteur) {
  RéglagesPort Lus;
  for (const CléPort& Rangée : Clés) {
    bool Drapeau = false;
    Lecteur.FixerClé(Rangée.Clé);
    Lecteur.LireValeur(Drapeau);
    Lus.*Rangée.Champ = Lecteur.Valeur();
  }
  return Lus;
}

std::string EssayerPort(const RéglagesPort& Réglages, const std::function<bool(const std::string&)>& DéjàOuvert) {
  try {
    const RéglagesLiaison Ceux = Vérifiés(Réglages);
    const std::string Chemin = CheminDuPort(Réglages.Port);
    if (!DéjàOuvert(Chemin)) {
      const AppareilLiaison Essai({Réglages.Port, Chemin}, Ceux);
    }
    return "";
  } catch (const ErreurExécution& Erreur) {
    return Erreur.what();
  }
}

namespace {
/// Any answer to the link test will do, a refusal too.
bool Répond(const std::string& Reçu) {
  return Reçu.find({ACK, CodeRéponse}) != std::string::npos || Reçu.find({NAK, CodeRéponse}) != std::string::npos;
}

/// Asks the terminal on a port that nobody else has. Empty, or why not.
std::string EssayerLiaison(IBoucle& Boucle, const RéglagesPort& Réglages) {
  const AppareilLiaison Appareil({Réglages.Port, CheminDuPort(Réglages.Port)}, Vérifiés(Réglages));
  std::string Reçu;
  bool Fini = false;
  const auto Veille = Boucle.Surveiller(Appareil.Numéro(), IBoucle::Sens::Entrée, [&] {
    char Place[64];
    const Passage Lus = Appareil.Lire(Place, sizeof Place);
    Reçu.append(Place, Lus.Nombre);
    Fini = Fini || Lus.Perdu;
  });
  const auto Délai = Boucle.Après(DélaiRéponse, [&Fini] { Fini = true; });
  const char Requête[] = {ENQ, CodeRéponse};
  static_cast<void>(Appareil.Ecrire({Requête, sizeof Requête}));
  while (!Fini && !Répond(Reçu) && !SignauxFin::EstDemandée()) Boucle.Pomper(DélaiRéponse);
  if (Répond(Reçu)) return "";
  return "Le port " + Réglages.Port + " s'ouvre, mais " +
         (Fini ? "le RG80 n'y répond pas." : "l'essai est arrêté : le programme se termine.");
}
}  // namespace

bool ConfigurerPort(const ContextePort& Contexte, const std::string& FichierIni, const std::string& Section,
                    const std::function<void(const std::string& Chemin)>& Libérer) {
  if (!Contexte.Questionnaire) return false;
  const auto Lecteur = Contexte.CréerLecteurIni();
  Lecteur->FixerFichier(FichierIni);
  Lecteur->FixerSection(Section);
  const RéglagesPort Anciens = LireRéglages(*Lecteur);
  RéglagesPort Nouveaux = Compléter(Anciens);
  const auto Essayer = [&](const RéglagesPort& Réglages) {
    std::string Raison;
    ErreurEnAttente Refus;
    const bool Menée = Garder(Refus, [&] {
      Libérer(CheminDuPort(Réglages.Port));
      Raison = EssayerLiaison(Contexte.Boucle, Réglages);
    });
    return Menée ? Raison : Refus.Texte();
  };
  if (!Contexte.Questionnaire->Demander(Nouveaux, Essayer)) return false;
  ÉcrireRéglages(*Lecteur, Anciens, Nouveaux);
  Contexte.Questionnaire->DireRetenus();
  return true;
}

}  // namespace Ombrey
