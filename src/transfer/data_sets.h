// The data sets that the terminal takes: the order of sending, and what each file holds.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <span>

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

/// One row of the transfer window and its file, whose records are the rows of Sql, in their order.
struct JeuDeDonnées {
  const char* Case;  ///< check box
  const char* Nom;   ///< on the screen and in messages
  std::int32_t NumFichier;
  std::chrono::milliseconds Pause;  ///< the terminal's time between two files
  std::span<const ChampEnregistrement> Champs;
  const char* Sql;
  const char* SqlComptage = nullptr;  ///< gives the number of rows; without it the rows themselves are counted
  const char* Titre;                  ///< of the window for each record, ahead of the first column
  const char* TitreFin;               ///< of the window at the end, behind the count
  /// With slots, a record is a parent: a row whose first column is blank or 0 is none and is left out.
  const Emplacements* Créneaux = nullptr;

  /// Bytes of a record: it ends with its slots, or with its last field.
  [[nodiscard]] constexpr std::size_t Longueur() const {
    if (Créneaux) return Créneaux->Décalage + Créneaux->Nombre * Créneaux->Largeur;
    return Champs.back().Décalage + Champs.back().Largeur;
  }
};

/// In the order of sending, which is also that on the screen.
[[nodiscard]] std::span<const JeuDeDonnées> JeuxDeDonnées();

}  // namespace Ombrey
