// Today's loads: the query and its rows as texts.
#include "monitor/load_list.h"

#include <cstddef>
#include <string>

#include "base/regional_forms.h"
#include "contracts/phrases.h"

namespace Ombrey {
namespace {

std::string SqlChargementsDuJour() {
  return std::string(
             "SELECT Chargement.CodeSite AS [Chai], Chargement.NoChargement AS [N°Pesée]"
             ", Format([DateCh],'dd/mm hh:nn') AS [Heure]"
             ", Chargement.Masse AS [Pesée], Chargement.Degré AS [%Vol]"
             ", Sélection.Désignation AS [Appellation]"
             ", Qualité.Désignation AS [") +
         Phrase::ClasseSanitaire +
         "]"
         ", Propriétaire.Nom & ' ' & Propriétaire.Prénom AS [Propriétaire]"
         ", Récoltant.Nom & ' ' & Récoltant.Prénom AS [Récoltant]"
         ", Métayage.Part, [Groupement].[IdGrp] & ' ' & [Groupement].[Nom] AS Groupe"
         ", Chargement.Synchronisé*-1 AS [Synchro]"
         " FROM Sélection RIGHT JOIN (Qualité RIGHT JOIN ((((Métayage INNER JOIN Chargement"
         " ON Métayage.IdMétayage = Chargement.Métayage) INNER JOIN Coopérateur AS Récoltant"
         " ON Métayage.Récoltant = Récoltant.IdCoopérateur) INNER JOIN Coopérateur AS Propriétaire"
         " ON Métayage.Propriétaire = Propriétaire.IdCoopérateur) LEFT JOIN Groupement"
         " ON Métayage.IdGrp = Groupement.IdGrp) ON Qualité.IdQualité = Chargement.Qualité)"
         " ON Sélection.IdSélection = Chargement.Sélection"
         " WHERE DateCh BETWEEN Date() AND Date()+1"
         " ORDER BY Chargement.DateCh DESC;";
}

}  // namespace

ListeChargements LireChargementsDuJour(IDatabase& Base, const Régional& Formes) {
  const auto Chargements = Base.OpenRecordset(SqlChargementsDuJour(), TypeRecordset::VersLAvant);
  ListeChargements Tableau{Chargements->Colonnes(), {}};
  for (; !Chargements->Eof(); Chargements->MoveNext()) {
    auto& Rangée = Tableau.Rangées.emplace_back();
    Rangée.reserve(Tableau.Entêtes.size());
    for (std::size_t Colonne = 0; Colonne < Tableau.Entêtes.size(); ++Colonne)
      Rangée.push_back(TexteOuVide(Chargements->Fields(Colonne), Formes));
  }
  return Tableau;
}

}  // namespace Ombrey
