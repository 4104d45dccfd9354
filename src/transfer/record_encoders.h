// The fields of the terminal's file records: fixed width, no separators.
#pragma once

#include <cstdint>
#include <string>

#include "contracts/database.h"
#include "contracts/octets.h"
#include "contracts/system.h"

namespace Ombrey {

/// The number that Texte reads as, rounded to a whole one (halves to the even neighbour), in decimal digits with zeros
/// on the left up to Longueur; longer when it has more digits. A text that is no number by the machine's forms counts
/// as 0. Raises "Dépassement de capacité" when the number doesn't fit 32 bits.
[[nodiscard]] Octets CadrerNombre(const std::string& Texte, std::uint8_t Longueur, const Régional& Formes);

/// Texte in one byte for each character, cut or filled with spaces on the right to Longueur bytes.
[[nodiscard]] Octets CadrerTexte(const std::string& Texte, std::uint8_t Longueur);

/// How a column's value becomes the bytes of a field. A Null counts as the empty text.
using Encodeur = Octets (*)(const ValeurChamp& Valeur, std::uint8_t Longueur, const Régional& Formes);

[[nodiscard]] Octets EncoderNombre(const ValeurChamp& Valeur, std::uint8_t Longueur, const Régional& Formes);
[[nodiscard]] Octets EncoderTexte(const ValeurChamp& Valeur, std::uint8_t Longueur, const Régional& Formes);
/// A share: whole digits, then four decimals that always go as zeros. Unlike EncoderNombre it also reads a number
/// that was written with the wrong decimal separator. Raises "Dépassement de capacité" beyond 16 bits.
[[nodiscard]] Octets EncoderPart(const ValeurChamp& Valeur, std::uint8_t Longueur, const Régional& Formes);

}  // namespace Ombrey
