// Finding, checking and taking apart the terminal's data frame.
#include "import/frame_processing.h"

#include <cstddef>
#include <exception>

#include "base/ansi_text.h"
#include "base/checksum.h"
#include "base/regional_forms.h"
#include "base/text_helpers.h"
#include "contracts/phrases.h"
#include "contracts/system.h"

namespace Ombrey {
namespace {

/// Places, among the received values, of those that are reworked; the rest stay as cut.
namespace Champ {
constexpr std::size_t NoChargement = RangChamp("NoChargement");
constexpr std::size_t DateCh = RangChamp("DateCh");
constexpr std::size_t DateSortie = RangChamp("DateSortie");
constexpr std::size_t Métayage = RangChamp("Métayage");
constexpr std::size_t Degré = RangChamp("Degré");
constexpr std::size_t NoQuai = RangChamp("NoQuai");
constexpr std::size_t Cuve = RangChamp("Cuve");
}  // namespace Champ

std::string Lire(const Octets& Enregistrement, Position Place) { return DepuisAnsi(Place.Dans(Enregistrement)); }

std::vector<std::string> LireChamps(const Octets& Enregistrement) {
  std::vector<std::string> Champs;
  for (const ChampChargement& Champ : ChampsChargement) Champs.push_back(Lire(Enregistrement, Champ.Place));
  return Champs;
}

}  // namespace

std::string TraitementTrame::TraiterDonnéesReçues(Octets& Tampon, Octets& Réponse, std::string& NoChargement) {
  try {
    std::string TexteImport;
    if (!CouperAuSTX(Tampon)) {
      État_.Erreur.Effacer();
      return {};
    }
    const Octets Trame = Tampon.Extrait(0, LongTrameChargement);
    if (CheckSumJuste(Trame)) {
      Réponse = Octets(1, ACK);
      const auto Ligne = TraiterEnregistrement(Trame.Extrait(1, LongEnregChargement), NoChargement);
      if (!Ligne) return {};
      TexteImport = *Ligne;
    } else {
      État_.Avertir(Phrase::ChecksumFaux);
      if (État_.Abandon) return {};
      Réponse = Octets(1, NAK);
    }
    Tampon.RetirerTête(LongTrameChargement);
    État_.Erreur.Effacer();
    return TexteImport;
  } catch (const std::exception& Erreur) {
    if (!État_.Abandon) État_.Avertir(std::string(Phrase::TrameEnÉchec) + Erreur.what());
    return {};
  }
}

/// Drops what stands ahead of the first STX; true when a whole frame follows.
bool TraitementTrame::CouperAuSTX(Octets& Tampon) {
  const std::size_t Place = Tampon.Chercher(Octets(1, STX));
  if (Place == Octets::Introuvable) return false;
  Tampon.RetirerTête(Place);
  if (Tampon.Taille() >= LongTrameChargement) return true;
  État_.Avertir(Phrase::TropCourt);
  return false;
}

/// The checksum is worked out over a true ETX, whatever was received in its place.
bool TraitementTrame::CheckSumJuste(const Octets& Trame) const {
  const std::size_t PlaceETX = LongTrameChargement - FinTrame;
  return VérifierCheckSum(Trame.Extrait(0, PlaceETX) + ETX, Trame.Extrait(PlaceETX + 1, 1),
                          Trame.Extrait(PlaceETX + 2, 1));
}

std::optional<std::string> TraitementTrame::TraiterEnregistrement(const Octets& Enregistrement,
                                                                  std::string& NoChargement) {
  std::vector<std::string> DonnéesReçues = LireChamps(Enregistrement);
  const std::string CodeExploitation = TrouverExploitation(Enregistrement);
  if (CodeExploitation.empty() || État_.Abandon) return std::nullopt;

  DonnéesReçues[Champ::Métayage] = CodeExploitation;
  DonnéesReçues[Champ::DateCh] = TexteDate(Enregistrement, PositionFixe::Heure, PositionFixe::Minute);
  DonnéesReçues[Champ::DateSortie] = TexteDate(Enregistrement, PositionFixe::HeureSortie, PositionFixe::MinuteSortie);
  DonnéesReçues[Champ::NoChargement] = SupprZéroDébut(DonnéesReçues[Champ::NoChargement]);
  NoChargement = DonnéesReçues[Champ::NoChargement];
  MettreAuPropre(DonnéesReçues);
  return MiseEnForme_.MiseEnFormePourImport(DonnéesReçues);
}

/// The IdMétayage of the load's holding; empty, and reported, when there is none.
std::string TraitementTrame::TrouverExploitation(const Octets& Enregistrement) {
  std::string Propriétaire = Lire(Enregistrement, PositionFixe::Propriétaire);
  std::string Récoltant = Lire(Enregistrement, PositionFixe::Récoltant);
  std::string Part =
      Lire(Enregistrement, PositionFixe::PartEntière) + "." + Lire(Enregistrement, PositionFixe::PartDécimale);
  std::string Groupe = Lire(Enregistrement, PositionFixe::Groupe);
  const auto Base = État_.BaseDeD;
  std::string Code = Exploitations_.VérifierExploitation(Propriétaire, Récoltant, Part, Groupe);
  if (Code.empty() && !État_.EstRompu(Base)) {
    const std::string Texte = Phrase::ExploitationIntrouvable + Lire(Enregistrement, PositionFixe::FinPropriétaire) +
                              "/" + Lire(Enregistrement, PositionFixe::FinRécoltant) + "/" + Part + "/" + Groupe;
    État_.Canal.AjouterErreur(Texte);
    État_.Canal.AjouterMessage(Texte, false);
  }
  return Code;
}

std::string TraitementTrame::TexteDate(const Octets& Enregistrement, Position Heure, Position Minute) const {
  const std::string Texte = Lire(Enregistrement, PositionFixe::Jour) + "/" + Lire(Enregistrement, PositionFixe::Mois) +
                            "/" + Lire(Enregistrement, PositionFixe::Année) + " " + Lire(Enregistrement, Heure) + ":" +
                            Lire(Enregistrement, Minute);
  const DateHeure Maintenant = État_.Plateforme.Système().Maintenant();
  return EstDate(Texte, Maintenant.Année) ? Texte : TexteDateHeure(Maintenant);
}

void TraitementTrame::MettreAuPropre(std::vector<std::string>& DonnéesReçues) const {
  const Régional Formes = État_.Formes();
  std::string& Degré = DonnéesReçues[Champ::Degré];
  Degré = AuSujetDe("degré « " + Degré + " » du " + Phrase::DuChargement + DonnéesReçues[Champ::NoChargement],
                    [&] { return TexteNombre(EnEntier16(Degré, Formes) / PartsParDegré, Formes); });
  for (const std::size_t Place : {Champ::NoQuai, Champ::Cuve}) {
    DonnéesReçues[Place] = SupprZéroDébut(DonnéesReçues[Place]);
  }
}

}  // namespace Ombrey
