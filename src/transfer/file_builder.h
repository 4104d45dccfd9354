// From one query to one file of fixed-width records for the terminal.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "contracts/database.h"
#include "contracts/octets.h"
#include "contracts/system.h"
#include "transfer/data_sets.h"

namespace Ombrey {

/// The signed 16-bit counter of the records ends here.
inline constexpr std::int32_t EnregistrementsAuPlus = 32767;

/// Sets the transfer window's title and repaints it. Lets no event run.
using Titreur = std::function<void(const std::string&)>;

/// What a file is made from.
struct SourceFichier {
  IDatabase& Base;
  Régional Formes;
};

/// Makes Lignes afresh with one element: the whole file, empty when there is no row. Rows of slots beyond their number
/// are left out: the result says of which records, a sentence each. Raises ErreurExécution when the database can't be
/// read, a number doesn't fit, or there are more than EnregistrementsAuPlus records.
[[nodiscard]] std::vector<std::string> ConstruireFichier(const JeuDeDonnées& Jeu, const SourceFichier& Source,
                                                         const Titreur& Titrer, std::vector<Octets>& Lignes);

}  // namespace Ombrey
