// Numbers, dates and times by the machine's regional forms.
#include "base/regional_forms.h"

#include <gtest/gtest.h>

#include <limits>
#include <tuple>

#include "base/failures.h"
#include "tests/support/test_folder.h"

namespace Ombrey {
const Régional Français{','};
constexpr double PasUnNombre = std::numeric_limits<double>::quiet_NaN();

// clang-format off
constexpr std::pair<const char*, double> Réels[] = {
    {"12", 12}, {"  -12,5 ", -12.5}, {"+3", 3}, {"1e3", 1000}, {"1E-3", 0.001}, {",5", 0.5}, {"5,", 5}, {"0012", 12}};
constexpr std::pair<const char*, std::int32_t> Entiers[] = {
    {"32,5", 32}, {"33,5", 34}, {"-0,5", 0}, {"-1,5", -2}, {"2147483647,4", 2147483647},
    {"-2147483648", std::numeric_limits<std::int32_t>::min()}};
constexpr std::pair<const char*, double> Ecrits[] = {
    {"12,5", 12.5}, {"12", 12}, {"0,1", 0.1}, {"0", -0.0}, {"33,3333333333333", 100.0 / 3}, {"999999999", 999999999},
    {"1E+20", 1e20}};
constexpr std::pair<const char*, DateHeure> Dates[] = {
    {"19/09/08 08:30", {2008, 9, 19, 8, 30, 0}}, {" 1/2/2026 ", {2026, 2, 1}}, {"29-02-24", {2024, 2, 29}},
    {"31.12.29 23:59:59", {2029, 12, 31, 23, 59, 59}}, {"01/01/30", {2030, 1, 1}},
    {"19/09/08  8:05", {2008, 9, 19, 8, 5, 0}}};
/// Two digits mean the nearest year: the present one, the digits, what they mean.
constexpr std::tuple<int, const char*, int> Siècles[] = {
    {2026, "75", 2075}, {2026, "76", 1976}, {2029, "30", 2030}, {2030, "29", 2029}, {2030, "30", 2030}, {2050, "50", 2050},
    {2050, "99", 2099}, {2050, "00", 2000}, {2099, "00", 2100}, {2099, "48", 2148}, {2099, "49", 2049}, {2100, "99", 2099}};
// clang-format on

TEST(Numbers, WhatCountsAsNumeric) {
  for (const auto& [Texte, Valeur] : Réels) {
    EXPECT_TRUE(EstNumérique(Texte, Français)) << Texte;
    EXPECT_EQ(EnRéel(Texte, Français), Valeur) << Texte;
  }
  for (const char* Texte :
       {"", " ", ",", "-", "1e", "12.5", "1,2,3", "--1", "0x10", "nan", "inf", "1 2", "1e999", "12a", "- 1", "١"}) {
    EXPECT_FALSE(EstNumérique(Texte, Français)) << Texte;
    EXPECT_EQ(Essais::RefusDe([&] { static_cast<void>(EnRéel(Texte, Français)); }), "Incompatibilité de type");
  }
  EXPECT_TRUE(EstNumérique("12.5", {'.'}));
}

TEST(Numbers, WholeNumbersRoundHalvesToEvenAndRefuseOverflow) {
  for (const auto& [Texte, Valeur] : Entiers) EXPECT_EQ(EnEntier32(Texte, Français), Valeur) << Texte;
  EXPECT_EQ(EnEntier16("32767", Français), 32767);
  EXPECT_EQ(EnEntier16("-32768,5", Français), -32768);
  for (const char* Texte : {"2147483647,5", "-2147483649", "1e300"}) {
    EXPECT_EQ(Essais::RefusDe([&] { static_cast<void>(EnEntier32(Texte, Français)); }), "Dépassement de capacité");
  }
  EXPECT_THROW(static_cast<void>(EnEntier16("32767,5", Français)), ErreurExécution);
  EXPECT_THROW(static_cast<void>(ArrondirEntier32(PasUnNombre)), ErreurExécution);
}

TEST(Numbers, TextFormReadsBack) {
  for (const auto& [Texte, Valeur] : Ecrits) {
    EXPECT_EQ(TexteNombre(Valeur, Français), Texte);
    EXPECT_NEAR(EnRéel(Texte, Français), Valeur, 1e-13);
  }
  EXPECT_EQ(TexteNombre(12.5, {'.'}), "12.5");
}

TEST(Dates, StrictlyDayMonthYear) {
  for (const auto& [Texte, Valeur] : Dates) EXPECT_EQ(LireDate(Texte, 2026), Valeur) << Texte;
  for (const auto& [Présente, Chiffres, Année] : Siècles) {
    EXPECT_EQ(LireDate("01/01/" + std::string(Chiffres), Présente), (DateHeure{Année, 1, 1})) << Présente;
  }
  for (const char* Texte : {"", "19/13/08 08:30", "31/04/08", "29/02/23", "00/01/08", "09/19/08", "19/09/08 24:00",
                            "19/09/08 08:60", "19/09/08 08", "19/09/0808:30", "19/09/08 08:30:61", "19/09/008", "19/09",
                            "2008/09/19", "19/ 9/08", "19/09/08 08:30 x", "aa/bb/cc dd:ee", "19/09/0000", "-1/09/08"}) {
    EXPECT_FALSE(EstDate(Texte, 2026)) << Texte;
  }
}

TEST(Dates, DayNumbers) {
  EXPECT_EQ(NuméroDeJour({1900, 1, 1}), 2);
  EXPECT_EQ(NuméroDeJour({2008, 9, 19, 12, 0, 0}), 39710.5);
  for (const DateHeure& Moment :
       {DateHeure{2026, 2, 28, 23, 59, 59}, DateHeure{1899, 12, 29, 6, 0, 1}, DateHeure{9999, 12, 31, 23, 59, 59}}) {
    EXPECT_EQ(DepuisNuméroDeJour(NuméroDeJour(Moment)), Moment);
  }
  for (const double Jours : {1e9, -1e9, PasUnNombre}) {
    EXPECT_THROW(static_cast<void>(DepuisNuméroDeJour(Jours)), ErreurExécution);
  }
}

}  // namespace Ombrey
