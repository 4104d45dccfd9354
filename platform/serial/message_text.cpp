// A message of the line in words.
#include "platform/serial/message_text.h"

#include <algorithm>
#include <array>
#include <span>
#include <string_view>

#include "base/ansi_text.h"
#include "base/checksum.h"
#include "contracts/line_protocol.h"

namespace Ombrey {
namespace {

struct NomContrôle {
  char Code;
  std::string_view Nom;
};
constexpr auto NomsContrôle = std::to_array<NomContrôle>(
    {{STX, "<STX>"}, {ETX, "<ETX>"}, {EOT, "<EOT>"}, {ENQ, "<ENQ>"}, {ACK, "<ACK>"}, {NAK, "<NAK>"}});

const FichierTerminal* Fichier(char Code) {
  const auto* const Connu = std::ranges::find(FichiersTerminal, Code - '0', &FichierTerminal::Numéro);
  return Connu == FichiersTerminal.end() ? nullptr : Connu;
}

/// Puts the verdict on the checksum behind what the frame says.
Récit Juger(const Octets& Trame, Récit Dit) {
  const std::size_t Fin = Trame.Taille() - 2;
  const std::string Attendue(CalculerCheckSum(Trame.Extrait(0, Fin)).Bruts().substr(Fin));
  const std::string_view Reçue = Trame.Bruts().substr(Fin);
  if (Reçue == Attendue) return {Dit.Texte + " ; somme juste", Dit.Faute};
  return {"somme fausse, « " + TexteBrut(Octets(Reçue)) + " » au lieu de « " + Attendue + " » : " + Dit.Texte, true};
}

/// Several fields in words: the texts between them, and the places.
struct Bout {
  const char* Devant;
  Position Place;
};
std::string Raconter(const Octets& Texte, std::span<const Bout> Bouts) {
  std::string Dit;
  for (const Bout& Un : Bouts) Dit += Un.Devant + TexteBrut(Un.Place.Dans(Texte));
  return Dit;
}

constexpr auto BoutsChargement = std::to_array<Bout>({
    {"chargement n° ", PlaceChamp("NoChargement")},
    {" du ", PositionFixe::Jour},
    {"/", PositionFixe::Mois},
    {"/", PositionFixe::Année},
    {" à ", PositionFixe::Heure},
    {":", PositionFixe::Minute},
    {", sorti à ", PositionFixe::HeureSortie},
    {":", PositionFixe::MinuteSortie},
    {", propriétaire ", PositionFixe::Propriétaire},
    {", récoltant ", PositionFixe::Récoltant},
    {", groupe ", PositionFixe::Groupe},
    {", part ", PositionFixe::PartEntière},
    {",", PositionFixe::PartDécimale},
    {" %, appellation ", PlaceChamp("Sélection")},
    {", qualité ", PlaceChamp("Qualité")},
    {", degré en dixièmes ", PlaceChamp("Degré")},
    {", quai ", PlaceChamp("NoQuai")},
    {", masse ", PlaceChamp("Masse")},
    {", cuve ", PlaceChamp("Cuve")},
});

constexpr auto BoutsRéponse = std::to_array<Bout>({
    {"cumuls : exploitation ", {1, ChiffresParCumul}},
    {", reste ", {1 + ChiffresParCumul, ChiffresParCumul}},
    {" ; groupe ", {1 + 2 * ChiffresParCumul, ChiffresParCumul}},
    {", reste ", {1 + 3 * ChiffresParCumul, ChiffresParCumul}},
});

Récit RaconterFichier(const FichierTerminal& Lequel, std::size_t Longueur) {
  const std::size_t Reste = Longueur % Lequel.LongEnreg;
  std::string Texte = "fichier des " + std::string(Lequel.Nom) + ", " + std::to_string(Longueur / Lequel.LongEnreg) +
                      " enregistrements";
  if (Reste > 0) Texte += " et " + std::to_string(Reste) + " octets de trop";
  return {Texte, Reste > 0};
}

Récit LireTrameStation(const Octets& Trame, char Code) {
  if (Trame.Taille() < EnrobageTrame) return {"trame sans fin", true};
  const Octets Texte = Trame.Extrait(1, Trame.Taille() - EnrobageTrame);
  if (const FichierTerminal* Connu = Fichier(Code)) return Juger(Trame, RaconterFichier(*Connu, Texte.Taille()));
  const bool EstCumul = Code == CodeRéponse && Texte.Taille() == 4 * ChiffresParCumul;
  return Juger(Trame, {EstCumul ? Raconter(Texte, BoutsRéponse)
                                : "trame de " + std::to_string(Texte.Taille()) + " caractères sous le code " + Code,
                       false});
}

std::string LireDemande(char Code) {
  if (Code == CodeDemande[0]) return "demande d'un chargement";
  if (Code == CodeRéponse) return "annonce des cumuls, ou essai de la liaison";
  if (const FichierTerminal* Connu = Fichier(Code)) return "annonce du fichier des " + std::string(Connu->Nom);
  return "demande inconnue";
}

}  // namespace

Récit LireDeStation(const Octets& Message, char Code) {
  switch (Message.EstVide() ? 0 : Message[0]) {
    case ENQ:
      if (Message.Taille() == 2) return {LireDemande(Message.Bruts()[1])};
      break;
    case STX:
      return LireTrameStation(Message, Code);
    case ACK:
      return {"chargement enregistré"};
    case NAK:
      return {"chargement refusé", true};
    case EOT:
      return {"fin de la trame"};
    default:
      break;
  }
  return {"message inconnu", true};
}

Récit LireRéponseÀDemande(const Octets& Message) {
  const bool Accord = Message[0] == ACK;
  if (Message.Bruts().substr(1) == CodeDemande) return {Accord ? "un chargement suit" : "aucun chargement"};
  return {Accord ? "prêt" : "pas prêt", !Accord};
}

Récit LireRéponseÀTrame(const Octets& Message) {
  if (Message[0] == ACK) return {"trame reçue"};
  return {"trame refusée", true};
}

Récit LireTrameChargement(const Octets& Trame) {
  return Juger(Trame, {Raconter(Trame.Extrait(1, LongEnregChargement), BoutsChargement)});
}

std::string TexteBrut(const Octets& Bruts) {
  constexpr std::string_view Chiffres = "0123456789ABCDEF";
  constexpr std::string_view SansSigne = "<\x7F\x81\x8D\x8F\x90\x9D";
  std::string Texte;
  for (const char Un : Bruts.Bruts()) {
    const auto* const Nommé = std::ranges::find(NomsContrôle, Un, &NomContrôle::Code);
    const auto Code = static_cast<unsigned char>(Un);
    if (Nommé != NomsContrôle.end()) {
      Texte += Nommé->Nom;
    } else if (Code < ' ' || SansSigne.find(Un) != std::string_view::npos) {
      Texte.append("<").append(1, Chiffres[Code >> 4U]).append(1, Chiffres[Code & 0x0FU]).append(">");
    } else if (Code < SansSigne[1]) {
      Texte += Un;
    } else {
      Texte += DepuisAnsi(Octets(1, Un));
    }
  }
  return Texte;
}

}  // namespace Ombrey
