// Composing the import line by the host's layout.
#include "import/import_staging.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

#include "base/delimited_list.h"
#include "base/regional_forms.h"
#include "base/text_helpers.h"
#include "contracts/line_protocol.h"
#include "contracts/system.h"

namespace Ombrey {
namespace {

constexpr const char* SéparateurLignes = "\r";
constexpr const char* SéparateurÉléments = "\t";
constexpr const char* SiteParDéfaut = "1";

/// Columns of the load that the terminal knows nothing about: without a value they are 0.
constexpr std::array<std::string_view, 6> ColonnesÀZéro = {"Operateur",    "Ramassage",    "InfoChargnt1",
                                                           "InfoChargnt2", "InfoChargnt3", "InfoChargnt4"};

}  // namespace

std::string MiseEnFormeImport::MiseEnFormePourImport(const std::vector<std::string>& DonnéesReçues) {
  Définition D;
  if (!LireDéfinition(D)) return {};
  std::string Ligne;
  Garder(État_.Erreur, [&] { Ligne = ComposerLigne(D, DonnéesReçues); });
  return Ligne;
}

bool MiseEnFormeImport::LireDéfinition(Définition& Lue) {
  const auto Rangées = État_.BaseDAO()->OpenRecordset("SELECT * FROM MSysEtats WHERE Titre = " + TexteSql(TitreImport) +
                                                      " AND Exportation = FALSE");
  if (Rangées->Eof()) return false;
  const Régional Formes = État_.Formes();
  Lue.Colonnes = TexteValeur(Rangées->FieldsNommé("LongChps"), Formes);
  Garder(État_.Erreur, [&] { Lue.Séparateur = TexteValeur(Rangées->FieldsNommé("Format"), Formes); });
  return true;
}

std::string MiseEnFormeImport::ComposerLigne(const Définition& D, const std::vector<std::string>& DonnéesReçues) {
  const ListeChamps Éléments(SéparateurÉléments);
  std::vector<std::string> Noms = ListeChamps(SéparateurLignes).Décomposer(D.Colonnes);
  std::vector<std::string> Valeurs(Noms.size());
  for (std::size_t Rang = 0; Rang < Noms.size(); ++Rang) {
    Noms[Rang] = Éléments.Champ(Noms[Rang], 1);
    const std::size_t Place = RangChamp(Noms[Rang]);
    if (Place < ChampsChargement.size()) Valeurs[Rang] = DonnéesReçues.at(Place);
  }
  Compléter(Noms, Valeurs);

  std::string Ligne;
  for (const std::string& Valeur : Valeurs) Ligne += Valeur + D.Séparateur;
  return Ligne;
}

void MiseEnFormeImport::Compléter(const std::vector<std::string>& Noms, std::vector<std::string>& Valeurs) {
  for (std::size_t Rang = 0; Rang < Noms.size(); ++Rang) {
    const std::string& Nom = Noms[Rang];
    std::string& Valeur = Valeurs[Rang];
    if (Nom == "CodeSite" && Valeur.empty()) {
      Valeur = Exiger(Exiger(État_.BaseDeD)->KVSynchro())->CodeSiteCourant();
      if (Valeur.empty()) Valeur = SiteParDéfaut;
    } else if (Nom == "Sélection") {
      CompléterCépage(Noms, Valeurs, Valeur);
    } else if (Valeur.empty() && std::find(ColonnesÀZéro.begin(), ColonnesÀZéro.end(), Nom) != ColonnesÀZéro.end()) {
      Valeur = "0";
    }
  }
}

void MiseEnFormeImport::CompléterCépage(const std::vector<std::string>& Noms, std::vector<std::string>& Valeurs,
                                        std::string& Sélection) {
  const std::string Cépages = Exiger(État_.BaseDeD)->ListeCépages(std::nullopt, Sélection, true);
  const auto Dernier = std::find(Noms.rbegin(), Noms.rend(), "Cépage");
  if (Dernier == Noms.rend()) throw ErreurExécution(Description::IndiceHorsPlage);
  Valeurs[static_cast<std::size_t>(Noms.rend() - Dernier) - 1] = ListeChamps(SéparateurLignes).Champ(Cépages, 1);
}

}  // namespace Ombrey
