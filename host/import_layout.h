// The layout of an import file, and its lines cut into checked values.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/failures.h"
#include "contracts/database.h"
#include "contracts/system.h"
#include "platform/database/connection.h"

namespace Tarvel {

enum class GenreValeur { Texte, Entier, Nombre, Date, Booléen };

/// The file was read, but what it holds can't become a load: the sentence names the column and the value.
class ErreurContenu : public Ombrey::ErreurExécution {
 public:
  using ErreurExécution::ErreurExécution;
};

struct ColonneImport {
  std::string Nom;
  GenreValeur Genre;
  std::size_t Largeur;  ///< in characters; 0 when any width will do
};

struct DéfinitionImport {
  std::vector<ColonneImport> Colonnes;
  std::string Séparateur;
  std::string Texte;  ///< of the columns, as the base has it

  [[nodiscard]] std::optional<std::size_t> Chercher(std::string_view Nom) const;
  /// Place of the column, which must be there.
  [[nodiscard]] std::size_t Place(std::string_view Nom) const;
};

struct ValeurImport {
  Ombrey::ValeurChamp Valeur;
  /// The time of an import, which has seconds, stands for a date that is none; the terminal's own have whole minutes.
  bool EstDateDeRemplacement = false;
};
/// One value for each column of the layout.
using LigneImport = std::vector<ValeurImport>;

/// Reads the import layout of this title. Raises ErreurExécution when there is none, when it can't be understood, when
/// it names a column that the table of loads lacks, or when it leaves out one that no load can do without. One that is
/// known from before, and is still written the same, comes back as it is.
[[nodiscard]] DéfinitionImport LireDéfinition(Ombrey::IConnexion& Connexion, const std::string& Titre,
                                              DéfinitionImport Connue);

/// Cuts a line and reads its values; years of two digits are the nearest to the present one. Raises ErreurContenu.
[[nodiscard]] LigneImport LireLigne(const DéfinitionImport& Définition, std::string_view Ligne,
                                    const Ombrey::ISystème& Système);

}  // namespace Tarvel
