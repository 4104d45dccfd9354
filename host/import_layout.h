// The layout of an import file, and its lines cut into checked values.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "contracts/database.h"
#include "contracts/system.h"
#include "platform/database/sqlite_connection.h"

namespace Tarvel {

enum class GenreValeur { Texte, Entier, Nombre, Date, Booléen };

struct ColonneImport {
  std::string Nom;
  GenreValeur Genre;
  std::size_t Largeur;  ///< in characters; 0 when any width will do
};

struct DéfinitionImport {
  std::vector<ColonneImport> Colonnes;
  std::string Séparateur;

  /// Place of the column, which must be there.
  [[nodiscard]] std::size_t Place(std::string_view Nom) const;
};

/// Reads the import layout of this title. Raises ErreurExécution when there is none, when it can't be understood, when
/// it names a column that the table of loads lacks, or when it leaves out one that makes a load's identity.
[[nodiscard]] DéfinitionImport LireDéfinition(Ombrey::ConnexionSqlite& Connexion, const std::string& Titre);

/// The line's values, one for each column of the layout. Raises ErreurContenu.
[[nodiscard]] std::vector<Ombrey::ValeurChamp> LireLigne(const DéfinitionImport& Définition, std::string_view Ligne,
                                                         const Ombrey::Régional& Formes);

}  // namespace Tarvel
