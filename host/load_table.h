// Writing loads: each once, whatever is sent again and whatever the office corrects meanwhile.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "contracts/database.h"
#include "host/import_layout.h"
#include "platform/database/connection.h"

namespace Tarvel {

/// A load that an import wrote or found.
struct ChargementImporté {
  std::int64_t IdChargement;
  bool EstNouveau;      ///< false when it was in the database already
  std::string Archivé;  ///< what the operator is told about the load that had to give up its number; mostly empty
};

/// A column that the cooperative has added to its loads goes into the archive with them. Loads that are there already
/// get the value that those in the table got.
void CompléterArchive(Ombrey::IConnexion& Connexion);

/// A load is known by what the terminal sent, which stands in the columns "Reçu…" of its row: the same again, at the
/// same site, is the same load. A date that is none says nothing about it.
class TableDesChargements {
 public:
  /// Works inside a transaction of the caller's; both must outlive it.
  TableDesChargements(Ombrey::IConnexion& Connexion, const DéfinitionImport& Définition)
      : Connexion_(Connexion), Définition_(Définition) {}

  /// A load that is there keeps its row as it stands, but for a holding that couldn't be had at first. One that was
  /// archived comes back. A load whose number another one bears takes it over, and that other one is archived.
  ChargementImporté Ecrire(const LigneImport& Ligne);

 private:
  [[nodiscard]] const Ombrey::ValeurChamp& Valeur(const LigneImport& Ligne, const char* Colonne) const;
  [[nodiscard]] std::optional<std::int64_t> Chercher(const char* Table, const LigneImport& Ligne) const;
  void CompléterExploitation(std::int64_t Id, const LigneImport& Ligne);
  ChargementImporté Reprendre(std::int64_t IdArchivé, const LigneImport& Ligne);
  std::int64_t Insérer(const LigneImport& Ligne);
  std::string Archiver(const Ombrey::ValeurChamp& Site, const Ombrey::ValeurChamp& Numéro);
  [[nodiscard]] std::string Colonnes(const char* Sauf) const;
  /// The first row; empty when there is none.
  [[nodiscard]] std::vector<Ombrey::ValeurChamp> LireRangée(const char* Sql,
                                                            const std::vector<Ombrey::ValeurChamp>& Valeurs) const;

  Ombrey::IConnexion& Connexion_;
  const DéfinitionImport& Définition_;
};

}  // namespace Tarvel
