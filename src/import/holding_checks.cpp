// Looking up and creating cooperators and holdings.
#include "import/holding_checks.h"

#include <cstdint>
#include <exception>

#include "base/regional_forms.h"
#include "base/text_helpers.h"
#include "contracts/host.h"
#include "contracts/phrases.h"
#include "contracts/system.h"

namespace Ombrey {
namespace {

constexpr const char* CodeInconnu = "0";

std::string SujetGroupe(const std::string& Groupe) { return "groupe « " + Groupe + " »"; }

}  // namespace

std::string VérificationExploitation::VérifierExploitation(std::string& Propriétaire, std::string& Récoltant,
                                                           std::string& Part, const std::string& Groupe) {
  const Régional Formes = État_.Formes();
  if (!EstNumérique(Propriétaire, Formes) || !EstNumérique(Récoltant, Formes)) return {};
  if (EnRéel(Propriétaire, Formes) == 0) Propriétaire = Récoltant;
  const auto Base = État_.BaseDeD;
  try {
    for (std::string* const Code : {&Propriétaire, &Récoltant}) {
      VérifierCoopérateur(*Code);
      if (État_.EstRompu(Base)) return {};
    }
    std::string Code;
    if (ChercherExploitation(Propriétaire, Récoltant, Part, Groupe, Code)) return Code;
    return CréerExploitation(Propriétaire, Récoltant, Part, Groupe);
  } catch (const std::exception& Erreur) {
    if (!État_.EstRompu(Base)) État_.Avertir(Erreur.what(), Phrase::TitreExploitation);
    return {};
  }
}

void VérificationExploitation::VérifierCoopérateur(std::string& Code) {
  const std::string Numéro = Nombre(Code);
  if (ChercherCoopérateur(Numéro, Code)) return;

  const auto Base = Exiger(État_.BaseDeD);
  NouveauCoopérateur Nouveau{Numéro, Numéro + Phrase::CrééParRG80,
                             TexteDateHeure(État_.Plateforme.Système().Maintenant())};
  const std::int16_t Résultat = Base->AjouterCoopérateur(Nouveau);
  if (Résultat < 0) {
    État_.Avertir("Ajout d'un coopérateur inconnu : " + Numéro + "\r" + Base->TexteErreurBase(Résultat));
  }
  État_.Canal.AjouterErreur("Création d'un coopérateur inconnu : " + Code);
}

bool VérificationExploitation::ChercherCoopérateur(const std::string& Numéro, std::string& Code) {
  const auto Rangées =
      État_.BaseDAO()->OpenRecordset("SELECT * FROM Coopérateur WHERE Clng(IdCoopérateur) = '" + Numéro + "'");
  if (Rangées->Eof()) return false;
  Code = TexteValeur(Rangées->FieldsNommé("IdCoopérateur"), État_.Formes());
  return true;
}

bool VérificationExploitation::ChercherExploitation(const std::string& Propriétaire, const std::string& Récoltant,
                                                    std::string& Part, const std::string& Groupe, std::string& Code) {
  const auto Rangées = État_.BaseDAO()->OpenRecordset(
      "SELECT IdMétayage,* FROM Métayage"
      " WHERE Clng(Propriétaire) = '" +
      Nombre(Propriétaire) + "' AND Clng(Récoltant) = '" + Nombre(Récoltant) + "'");
  if (Rangées->Eof()) return false;
  Rangées->MoveLast();
  if (Rangées->RecordCount() > 1) ChoisirRangée(*Rangées, Part, Groupe);
  Code = TexteValeur(Rangées->Fields(0), État_.Formes());
  return true;
}

void VérificationExploitation::ChoisirRangée(IRecordset& Rangées, std::string& Part, const std::string& Groupe) {
  for (Rangées.MoveFirst(); !Rangées.Eof(); Rangées.MoveNext()) {
    if (MêmePart(Rangées, Part)) return;
  }
  for (Rangées.MoveFirst(); !Rangées.Eof(); Rangées.MoveNext()) {
    if (MêmeGroupe(Rangées, Groupe)) return;
  }
  Rangées.MoveFirst();
}

/// Shares are compared as whole numbers. A share of the load that can't be read fits every holding, and a share of the
/// database that can't be read fits only such a load.
bool VérificationExploitation::MêmePart(const IRecordset& Rangées, std::string& Part) {
  const Régional Formes = État_.Formes();
  std::string PartRangée = TexteValeur(Rangées.FieldsNommé("Part"), Formes);
  const bool RangéeLisible = NormaliserNombre(PartRangée, Formes);
  const bool ChargementLisible = NormaliserNombre(Part, Formes);
  if (!ChargementLisible) return true;
  return RangéeLisible && EnEntier32(PartRangée, Formes) == EnEntier32(Part, Formes);
}

bool VérificationExploitation::MêmeGroupe(const IRecordset& Rangées, const std::string& Groupe) {
  const ValeurChamp IdGrp = Rangées.FieldsNommé("IdGrp");
  if (EstNull(IdGrp)) return false;
  const Régional Formes = État_.Formes();
  return AuSujetDe(SujetGroupe(Groupe), [&] { return EnRéel(Groupe, Formes); }) ==
         EnEntier32(TexteValeur(IdGrp, Formes), Formes);
}

std::string VérificationExploitation::CréerExploitation(const std::string& Propriétaire, const std::string& Récoltant,
                                                        const std::string& Part, const std::string& Groupe) {
  const auto Base = Exiger(État_.BaseDeD);
  std::string Code = CodeInconnu;
  const std::string NuméroGroupe = AuSujetDe(SujetGroupe(Groupe), [&] { return Nombre(Groupe); });
  const std::int16_t Résultat = Base->AjouterMétayage(Nombre(Propriétaire), Récoltant, Code, Part, NuméroGroupe, "");
  const bool Échec = Résultat < 0;
  if (Échec) Code = CodeInconnu;

  std::string Ligne = "Création d'une exploitation inconnue : Code = " + Code + ", Proprio:" + Propriétaire +
                      ", Exploit:" + Récoltant + ", Part:" + Part + ", Groupe:" + Groupe;
  if (Échec) Ligne += ", " + Base->TexteErreurBase(Résultat);
  État_.Canal.AjouterErreur(Ligne);
  return Code;
}

std::string VérificationExploitation::Nombre(const std::string& Code) const {
  return std::to_string(EnEntier32(Code, État_.Formes()));
}

}  // namespace Ombrey
