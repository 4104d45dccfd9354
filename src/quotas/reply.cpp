// The figures of a load, from the host to the terminal.
#include "quotas/reply.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

#include "base/ansi_text.h"
#include "base/regional_forms.h"
#include "base/text_helpers.h"
#include "contracts/host.h"
#include "contracts/line_protocol.h"
#include "contracts/octets.h"
#include "contracts/phrases.h"
#include "contracts/system.h"

namespace Ombrey {
namespace {

std::string TexteChiffre(float Chiffre) {
  std::string Texte = std::to_string(std::llround(Chiffre));
  if (Texte.size() < ChiffresParCumul) Texte.insert(0, ChiffresParCumul - Texte.size(), '0');
  return Texte;
}

/// A load number goes into the query as it stands, so it must be digits and nothing else.
std::string NombreSql(const std::string& Texte) {
  const bool Chiffres =
      !Texte.empty() && std::all_of(Texte.begin(), Texte.end(), [](char C) { return C >= '0' && C <= '9'; });
  if (!Chiffres) throw ErreurExécution(Description::IncompatibilitéDeType);
  return Texte;
}

}  // namespace

void RéponseCumuls::MettreAJourCumuls(std::string& NoChargement) {
  if (NoChargement.empty()) NoChargement = État_.DernierNoChargement;
  if (NoChargement.empty()) return;
  Chargement C;
  if (!LireChargement(NoChargement, C)) return;

  const std::string Enregistrement = ComposerEnregistrement(C);
  État_.Erreur.Effacer();
  Garder(État_.Erreur, [&] {
    État_.Canal.AjouterMessage(
        Phrase::Cumuls + C.IdMétayage + " - Appellation : " + C.Sélection + " - Groupe : " + C.IdGrp, true);
  });
  Transmettre(Enregistrement);
}

bool RéponseCumuls::LireChargement(const std::string& NoChargement, Chargement& Lu) {
  const auto Base = Exiger(État_.BaseDeD);
  const std::string CodeSite = Exiger(Base->KVSynchro())->CodeSiteCourant();
  const auto Rangées = Exiger(Base->BaseDAO())
                           ->OpenRecordset(
                               "SELECT * FROM Chargement INNER JOIN Métayage"
                               " ON Chargement.Métayage = Métayage.IdMétayage"
                               " WHERE NoChargement = " +
                               NombreSql(NoChargement) + " AND CodeSite = " + TexteSql(CodeSite));
  if (Rangées->Eof()) return false;
  const Régional Formes = État_.Formes();
  Lu.IdMétayage = TexteValeur(Rangées->FieldsNommé("IdMétayage"), Formes);
  Lu.Sélection = TexteValeur(Rangées->FieldsNommé("Sélection"), Formes);
  Lu.IdGrp = TexteValeur(Rangées->FieldsNommé("IdGrp"), Formes);
  return true;
}

std::string RéponseCumuls::ComposerEnregistrement(Chargement& C) {
  float Chiffre = 0;
  std::string Enregistrement = TexteChiffre(Chiffre);  // no figure of the host feeds the first field
  const auto Ajouter = [&](const auto& Calculer) {
    Garder(État_.Erreur, [&] { Chiffre = static_cast<float>(Calculer(*Exiger(État_.BaseDeD))); });
    if (Chiffre < 0 || Chiffre == static_cast<float>(SansQuota)) Chiffre = 0;
    Enregistrement += TexteChiffre(Chiffre);
  };
  const double Aujourdhui = std::floor(NuméroDeJour(État_.Plateforme.Système().Maintenant()));
  std::string Cépage;
  std::string Qualité;
  Ajouter([&](IBaseDeD& Base) {
    return Base.CalculerRestantExploit(C.IdMétayage, Cépage, C.Sélection, Qualité, std::nullopt, std::nullopt);
  });
  Ajouter([&](IBaseDeD& Base) { return Base.CalculerCumulGroupe(C.IdGrp, "", "", C.Sélection); });
  Cépage.clear();
  Qualité.clear();
  Ajouter([&](IBaseDeD& Base) {
    return Base.CalculerRestantGroupe(C.IdGrp, Cépage, C.Sélection, Qualité, Aujourdhui, std::nullopt);
  });
  return Enregistrement;
}

void RéponseCumuls::Transmettre(const std::string& Enregistrement) {
  std::vector<Octets> Lignes{VersAnsi(Enregistrement)};
  std::string Raison;
  Garder(État_.Erreur, [&] { Raison = Services_.TransmettreLignes(FichierRéponse, Lignes); });
  if (Raison.empty() || État_.Abandon) return;
  Garder(État_.Erreur, [&] { État_.Canal.AjouterMessage(Phrase::EnvoiEnÉchec + Raison, false); });
  Garder(État_.Erreur, [&] { État_.Canal.AjouterMessage("CLIQUEZ SUR RG80 EN ATTENTE DES QUOTAS.", false); });
  Garder(État_.Erreur, [&] { État_.Canal.AjouterErreur("Transmission du quotas vers le RG80 : " + Raison); });
}

}  // namespace Ombrey
