// Sums that an engine keeps by itself.
#pragma once

#include <array>
#include <string>
#include <vector>

namespace Ombrey {

/// A table of sums, with a row for each holding, appellation and year that the sources have rows of. Triggers of the
/// engine keep it, in the same transaction, whoever adds, changes or deletes a row by whatever tool. A date that is
/// none, or one before 1900 or behind 9999, counts for the year 0; a missing text is the empty one; a weight that is
/// none is 0.
struct SommesTenues {
  std::string Table;                      ///< is made, with the columns Métayage, Sélection, Année, Masse
  std::vector<std::string> Sources;       ///< with the columns Métayage, Sélection, DateCh, Masse
  std::string Identité;                   ///< the sources' key
  std::array<std::string, 2> SansDouble;  ///< columns that two rows of a source may not have both alike
};

/// What an engine is told about its sums, in its own language.
struct ÉcrituresSommes {
  std::vector<std::string> Tenir;    ///< makes table and triggers, and fills the table
  std::vector<std::string> Refaire;  ///< fills it anew
  std::string Fausses;               ///< counts the sums that differ from those of the rows by half a unit or more
};

/// The text with the row's name wherever § stands for it.
[[nodiscard]] inline std::string PourRangée(const std::string& Nom, std::string Modèle) {
  const std::string Signe = "§";
  for (std::size_t Place = 0; (Place = Modèle.find(Signe, Place)) != std::string::npos; Place += Nom.size())
    Modèle.replace(Place, Signe.size(), Nom);
  return Modèle;
}

}  // namespace Ombrey
