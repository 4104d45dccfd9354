// Small helpers for texts, most of them numbers.
#pragma once

#include <string>
#include <string_view>

#include "contracts/system.h"

namespace Ombrey {

/// True when Texte is numeric. A text that is numeric once its first wrong decimal separator (point for comma, or comma
/// for point, by the locale) is put right is rewritten so; else it stays as it came.
bool NormaliserNombre(std::string& Texte, const Régional& Formes);

inline constexpr std::string_view Blancs = " \t";
/// Without the blanks and tabs at both ends.
[[nodiscard]] std::string_view SansBlancs(std::string_view Texte);

/// The letters A to Z made small; every other byte stays.
[[nodiscard]] std::string MinusculesAscii(std::string_view Texte);

/// Drops all zeros at the front; a text of zeros gives the empty text.
[[nodiscard]] std::string SupprZéroDébut(std::string Texte);

/// Drops zeros at the end while more than one character is left; a text of zeros gives "0".
[[nodiscard]] std::string SupprZéroFin(std::string Texte);

/// The text as an SQL literal: in quotes, its own quotes doubled.
[[nodiscard]] std::string TexteSql(const std::string& Texte);

}  // namespace Ombrey
