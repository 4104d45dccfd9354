// The layout of an import file, and its lines cut into checked values.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "contracts/database.h"
#include "contracts/system.h"
#include "platform/database/sqlite/sqlite_connection.h"

namespace Tarvel {

enum class GenreValeur { Texte, Entier, Nombre, Date, Booléen };

/// One of the columns that make a load's identity: a layout holds them all, and a line has a value in each.
struct Critère {
  const char* Colonne;
  const char* Même;    ///< condition on a row: it has the line's value
  const char* Proche;  ///< the same for a load that is sent again and whose date or holding could not be had at first
};

/// The time of an import, which stands for a date that is none, has seconds; the terminal's own dates have whole
/// minutes, and two of them that differ are two loads.
inline constexpr const char* DateProche =
    "(SELECT abs(DateCh - V) < 0.5 / 86400 OR abs(DateCh - V) < 1"
    " AND max(abs(DateCh * 1440 - round(DateCh * 1440)), abs(V * 1440 - round(V * 1440))) > 0.01 FROM (SELECT ? AS V))";

inline constexpr std::array<Critère, 4> Identité = {{
    {"CodeSite", "CodeSite = ?", "CodeSite = ?"},
    {"NoChargement", "NoChargement = ?", "NoChargement = ?"},
    {"DateCh", "abs(DateCh - ?) < 0.5 / 86400", DateProche},  // half a second
    {"Métayage", "Métayage = ?", "Métayage IN (?, '0')"},
}};
/// So many of them, from the first, find at most one row of the table of loads.
inline constexpr std::size_t CritèresDuNuméro = 2;

[[nodiscard]] bool EstIdentité(std::string_view Nom);

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
