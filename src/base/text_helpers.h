// Small helpers for texts, most of them numbers.
#pragma once

#include <charconv>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "contracts/system.h"

namespace Ombrey {

/// True when Texte is numeric. A text that is numeric once its first wrong decimal separator (point for comma, or comma
/// for point, by the locale) is put right is rewritten so; else it stays as it came.
bool NormaliserNombre(std::string& Texte, const Régional& Formes);

/// Without tabs and the blanks that people write between thousands, the two that don't break a line among them.
[[nodiscard]] std::string SansEspaces(std::string Texte);
/// The number that somebody typed, with either decimal separator and such blanks; none when it is none.
[[nodiscard]] std::optional<double> NombreTapé(const std::string& Texte, const Régional& Formes);

inline constexpr std::string_view Blancs = " \t";
/// Without the blanks and tabs at both ends.
[[nodiscard]] std::string_view SansBlancs(std::string_view Texte);

/// The number that all of Texte spells in the machine's own form; none when anything else stands in it or it doesn't
/// fit.
template <class Nombre>
[[nodiscard]] std::optional<Nombre> NombreLu(std::string_view Texte) {
  Nombre Lu{};
  const char* const Fin = Texte.data() + Texte.size();
  const auto [Arrêt, Erreur] = std::from_chars(Texte.data(), Fin, Lu);
  return Erreur == std::errc() && Arrêt == Fin ? std::optional(Lu) : std::nullopt;
}

/// A button's or a tab's text with "&" ahead of the first letter that is just this one, which becomes its key.
[[nodiscard]] std::string AvecTouche(std::string Texte, char Lettre);

/// The letters A to Z made small; every other byte stays.
[[nodiscard]] constexpr char MinusculeAscii(char C) {
  return C >= 'A' && C <= 'Z' ? static_cast<char>(C - 'A' + 'a') : C;
}
[[nodiscard]] std::string MinusculesAscii(std::string_view Texte);

/// "this ; that"
[[nodiscard]] std::string Énumérer(const std::vector<std::string>& Textes);

/// Drops all zeros at the front; a text of zeros gives the empty text.
[[nodiscard]] std::string SupprZéroDébut(std::string Texte);

/// Drops zeros at the end while more than one character is left; a text of zeros gives "0".
[[nodiscard]] std::string SupprZéroFin(std::string Texte);

/// The text as an SQL literal: in quotes, its own quotes doubled.
[[nodiscard]] std::string TexteSql(const std::string& Texte);

}  // namespace Ombrey
