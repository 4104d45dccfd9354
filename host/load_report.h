// The loads of some days, one by one and with all that the base says of them: for spreadsheets and for paper.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "contracts/database.h"

namespace Tarvel {

/// A code of the base with the name that stands for it.
struct Nommé {
  std::string Code;
  std::string Nom;  ///< empty when the base has none
};

struct ChargementRelaté {
  std::string Site;
  std::string Numéro;
  double Arrivée = 0;  ///< in days since 1899-12-30
  std::optional<double> Sortie;
  std::string Exploitation;
  Nommé Propriétaire;
  Nommé Récoltant;
  Nommé Groupe;
  Nommé Appellation;
  std::string Cépage;
  Nommé Classe;
  std::string Degré;
  std::string Quai;
  std::string Masse;  ///< kg, as the base has it
  std::string Cuve;
  bool EstArchivé = false;  ///< another load has taken over its number

  /// The weight as a number; a text that is none weighs nothing.
  [[nodiscard]] double Kilos() const;
};

/// Whole days, counted from 1899-12-30; an open end is none.
struct Période {
  std::optional<int> Du;
  std::optional<int> Au;
};

/// Those of a period and all sites, archived ones among them, in the order in which they came. Raises ErreurExécution
/// when the database can't be read.
[[nodiscard]] std::vector<ChargementRelaté> LireChargements(Ombrey::IDatabase& Base, const Période& Jours);

/// A text that a French spreadsheet opens by itself: UTF-8 with its mark, semicolons, decimal commas, CR LF, quotes
/// doubled. What a spreadsheet would take for a formula isn't one any more.
[[nodiscard]] std::string TexteCsv(const std::vector<ChargementRelaté>& Chargements);

/// « 1 chargement », « 9 chargements ».
[[nodiscard]] std::string DireChargements(std::size_t Nombre);

/// Writes the loads; a former export is replaced, any other file stays. The result says in French what
/// was done. Raises ErreurExécution.
std::string ExporterCsv(const std::vector<ChargementRelaté>& Chargements, const std::filesystem::path& Fichier);

/// A day of the calendar as "jj/mm/aaaa" or "aaaa-mm-jj"; none when it is no such day.
[[nodiscard]] std::optional<int> LireJour(const std::string& Texte);

/// "22/09/2026 08:30"; the day alone.
[[nodiscard]] std::string TexteMoment(double Jours);
[[nodiscard]] std::string TexteJour(double Jours);

}  // namespace Tarvel
