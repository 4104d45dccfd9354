// The place that chooses the terminal: what the line says is in its header and nowhere else.
#pragma once

#include <cstddef>
#include <string_view>

#include "contracts/octets.h"
#include "contracts/rg80.h"

namespace Ombrey {

/// Place of the field in ChampsChargement, or its size when there is none of this name.
[[nodiscard]] constexpr std::size_t RangChamp(std::string_view Nom) {
  std::size_t Rang = 0;
  while (Rang < ChampsChargement.size() && ChampsChargement[Rang].Nom != Nom) ++Rang;
  return Rang;
}
/// Where the field of this name stands in the load record.
[[nodiscard]] constexpr Position PlaceChamp(std::string_view Nom) { return ChampsChargement[RangChamp(Nom)].Place; }

/// FichierRéponse as a request and its answer bear it.
inline constexpr char CodeRéponse = '0' + FichierRéponse;

}  // namespace Ombrey
