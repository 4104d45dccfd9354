// From one query to one file of fixed-width records for the terminal.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "contracts/database.h"
#include "contracts/octets.h"
#include "contracts/system.h"
#include "transfer/record_encoders.h"

namespace Ombrey {

/// A field of a record: where it stands, and which column it comes from. Offsets and columns count from 0.
struct ChampEnregistrement {
  std::size_t Décalage;
  std::uint8_t Largeur;
  std::size_t Colonne;
  Encodeur Encoder;
};

/// A fixed number of slots at the end of a record, filled from a second query, which is asked for each record.
struct Emplacements {
  std::size_t Décalage;
  std::size_t Largeur;
  std::size_t Nombre;
  const char* SqlAvant;  ///< the query up to the record's first column, which stands in it as a quoted text
  const char* SqlAprès;
  std::span<const ChampEnregistrement> Champs;
};

/// What makes up one file. Its records are the rows of Sql, in their order.
struct DispositionFichier {
  std::size_t Longueur;  ///< bytes of a record
  std::span<const ChampEnregistrement> Champs;
  const char* Sql;
  const char* SqlComptage;  ///< gives the number of rows; without it the rows themselves are counted
  const char* Titre;        ///< of the window for each record, ahead of the first column
  const char* TitreFin;     ///< of the window at the end, behind the count
  /// With slots, a record is a parent: a row whose first column is blank or 0 is none and is left out.
  const Emplacements* Créneaux = nullptr;
};

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
[[nodiscard]] std::vector<std::string> ConstruireFichier(const DispositionFichier& Disposition,
                                                         const SourceFichier& Source, const Titreur& Titrer,
                                                         std::vector<Octets>& Lignes);

}  // namespace Ombrey
