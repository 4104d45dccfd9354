// The load record of the RG80: 55 bytes without separators, and where everything stands in it.
#pragma once

#include <cstddef>

#include "common/plugin_state.h"
#include "contracts/octets.h"

namespace Ombrey {

/// A run of bytes in the load record; Début counts from 1 at the first byte behind the STX.
struct Position {
  std::size_t Début;
  std::size_t Longueur;
  /// The run's bytes; fewer where the record ends sooner.
  [[nodiscard]] Octets Dans(const Octets& Enregistrement) const { return Enregistrement.Extrait(Début - 1, Longueur); }
};

/// What is read by its place and not through the field table.
namespace PositionFixe {
inline constexpr Position Jour{5, 2};
inline constexpr Position Mois{7, 2};
inline constexpr Position Année{9, 2};
inline constexpr Position Heure{11, 2};
inline constexpr Position Minute{13, 2};
inline constexpr Position HeureSortie{15, 2};
inline constexpr Position MinuteSortie{17, 2};
inline constexpr Position Propriétaire{19, 6};
inline constexpr Position Récoltant{25, 6};
inline constexpr Position Groupe{31, 3};
inline constexpr Position PartEntière{34, 3};
inline constexpr Position PartDécimale{37, 4};
}  // namespace PositionFixe

/// Places in DonnéesReçues, in the order of the field table, of the fields that are reworked; the rest stay as cut.
namespace Champ {
inline constexpr std::size_t NoChargement = 0;
inline constexpr std::size_t DateCh = 1;
inline constexpr std::size_t DateSortie = 2;
inline constexpr std::size_t Métayage = 3;
inline constexpr std::size_t Degré = 6;
inline constexpr std::size_t NoQuai = 7;
inline constexpr std::size_t Cuve = 9;
}  // namespace Champ

/// Items that one field takes in the field table: name, first position, length.
inline constexpr std::int16_t ÉlémentsParChamp = 3;

/// Sets the record's length, the load field table and the table of the reply record. Called once, at the start.
void InitConstantes(ÉtatPlugIn& État);

}  // namespace Ombrey
