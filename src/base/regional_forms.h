// Numbers, dates and times as text, by the machine's regional forms, and the whole-number conversions.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "contracts/database.h"
#include "contracts/system.h"

namespace Ombrey {

/// True when the text can be read as a number: blanks around it, a sign, digits with at most one decimal separator of
/// the locale, and an exponent ("1e3", "1E-3"). At least one digit; the empty text is no number.
[[nodiscard]] bool EstNumérique(std::string_view Texte, const Régional& Formes);

/// These read a number as text and raise "Incompatibilité de type" when it is none. The whole-number forms round
/// halves to the even neighbour and raise "Dépassement de capacité" when the number doesn't fit.
[[nodiscard]] double EnRéel(std::string_view Texte, const Régional& Formes);
[[nodiscard]] std::int16_t EnEntier16(std::string_view Texte, const Régional& Formes);
[[nodiscard]] std::int32_t EnEntier32(std::string_view Texte, const Régional& Formes);
/// The same rounding and limits for a number already read.
[[nodiscard]] std::int16_t ArrondirEntier16(double Nombre);
[[nodiscard]] std::int32_t ArrondirEntier32(double Nombre);

/// The shortest text that reads back as the same number (at most 15 digits), with the locale's separator: 12.5 is
/// "12,5", 12 is "12".
[[nodiscard]] std::string TexteNombre(double Nombre, const Régional& Formes);

/// A column's value as text. Raises "Utilisation incorrecte de Null" on Null.
[[nodiscard]] std::string TexteValeur(const ValeurChamp& Valeur, const Régional& Formes);
/// The same, with the empty text for Null.
[[nodiscard]] std::string TexteOuVide(const ValeurChamp& Valeur, const Régional& Formes);

/// Reads "jj/mm/aa", "jj/mm/aaaa", each with an optional " hh:mm" or " hh:mm:ss", strictly in this order: one or two
/// digits to a group, four or two to the year, "/", "-" or "." between the date's groups, blanks around allowed. Two
/// digits of a year mean one from fifty years ago to forty-nine years ahead. None when the text is no such date or the
/// day doesn't exist.
[[nodiscard]] std::optional<DateHeure> LireDate(std::string_view Texte, int AnnéePrésente);
/// The system's date test.
[[nodiscard]] inline bool EstDate(std::string_view Texte, int AnnéePrésente) {
  return LireDate(Texte, AnnéePrésente).has_value();
}

[[nodiscard]] std::string TexteDateHeure(const DateHeure& Moment);  ///< "22/11/2026 08:05:09"
[[nodiscard]] std::string TexteHeure(const DateHeure& Moment);      ///< "08:05:09"
/// Two digits each, in the order of the letters: "jj", "mm" (month), "hh", "nn" (minute), "ss", "aaaa" (four digits);
/// any other character stands for itself.
[[nodiscard]] std::string TexteFormaté(const DateHeure& Moment, std::string_view Modèle);

/// A column's date and time as people read it, to the minute; what is no moment of the calendar as it stands.
[[nodiscard]] std::string MomentLisible(const ValeurChamp& Valeur, const Régional& Formes = {});
/// Days since 1899-12-30, the time of day being the fraction.
[[nodiscard]] double NuméroDeJour(const DateHeure& Moment);
/// The way back, to the nearest second. Raises "Dépassement de capacité" outside the years 100 to 9999.
[[nodiscard]] DateHeure DepuisNuméroDeJour(double Jours);

}  // namespace Ombrey
