// Numbers, dates and times by the machine's regional forms.
#include "common/regional_forms.h"

#include <gtest/gtest.h>

#include <limits>

#include "common/failures.h"

namespace Ombrey {
namespace {

const Régional Français{','};

std::string DescriptionDe(const std::function<void()>& Faire) {
  try {
    Faire();
  } catch (const ErreurExécution& Erreur) {
    return Erreur.what();
  }
  return "";
}

TEST(Numbers, WhatCountsAsNumeric) {
  struct Cas {
    std::string Texte;
    bool Numérique;
    double Valeur = 0;
  };
  const Cas Table[] = {{"12", true, 12},      {"  -12,5 ", true, -12.5},
                       {"+3", true, 3},       {"1e3", true, 1000},
                       {"1E-3", true, 0.001}, {",5", true, 0.5},
                       {"5,", true, 5},       {"0012", true, 12},
                       {"", false},           {" ", false},
                       {",", false},          {"-", false},
                       {"1e", false},         {"12.5", false},
                       {"1,2,3", false},      {"--1", false},
                       {"0x10", false},       {"nan", false},
                       {"inf", false},        {"1 2", false},
                       {"1e999", false},      {"12a", false},
                       {"- 1", false},        {"١", false}};
  for (const Cas& C : Table) {
    EXPECT_EQ(EstNumérique(C.Texte, Français), C.Numérique) << C.Texte;
    if (C.Numérique) {
      EXPECT_EQ(EnRéel(C.Texte, Français), C.Valeur) << C.Texte;
    } else {
      EXPECT_EQ(DescriptionDe([&] { static_cast<void>(EnRéel(C.Texte, Français)); }), "Incompatibilité de type");
    }
  }
  EXPECT_TRUE(EstNumérique("12.5", {'.'}));
}

TEST(Numbers, WholeNumbersRoundHalvesToEvenAndRefuseOverflow) {
  struct Cas {
    const char* Texte;
    std::int32_t Valeur;
  };
  const Cas Table[] = {{"32,5", 32},
                       {"33,5", 34},
                       {"-0,5", 0},
                       {"-1,5", -2},
                       {"2147483647,4", 2147483647},
                       {"-2147483648", -2147483648}};
  for (const Cas& C : Table) EXPECT_EQ(EnEntier32(C.Texte, Français), C.Valeur) << C.Texte;
  EXPECT_EQ(EnEntier16("32767", Français), 32767);
  EXPECT_EQ(EnEntier16("-32768,5", Français), -32768);
  for (const char* Texte : {"2147483647,5", "-2147483649", "1e300"}) {
    EXPECT_EQ(DescriptionDe([&] { static_cast<void>(EnEntier32(Texte, Français)); }), "Dépassement de capacité")
        << Texte;
  }
  EXPECT_THROW(static_cast<void>(EnEntier16("32767,5", Français)), ErreurExécution);
  EXPECT_THROW(static_cast<void>(ArrondirEntier32(std::numeric_limits<double>::quiet_NaN())), ErreurExécution);
}

TEST(Numbers, TextFormReadsBack) {
  struct Cas {
    double Nombre;
    const char* Texte;
  };
  const Cas Table[] = {
      {12.5, "12,5"},           {12, "12"},     {0.1, "0,1"}, {-0.0, "0"}, {100.0 / 3, "33,3333333333333"},
      {999999999, "999999999"}, {1e20, "1E+20"}};
  for (const Cas& C : Table) {
    EXPECT_EQ(TexteNombre(C.Nombre, Français), C.Texte);
    EXPECT_NEAR(EnRéel(C.Texte, Français), C.Nombre, 1e-13);
  }
  EXPECT_EQ(TexteNombre(12.5, {'.'}), "12.5");
}

TEST(Values, NullIsRefusedOrEmpty) {
  EXPECT_EQ(TexteValeur(ValeurChamp(std::int64_t{-7}), Français), "-7");
  EXPECT_EQ(TexteValeur(ValeurChamp(33.25), Français), "33,25");
  EXPECT_EQ(TexteValeur(ValeurChamp(std::string("007")), Français), "007");
  EXPECT_EQ(TexteOuVide({}, Français), "");
  EXPECT_EQ(DescriptionDe([] { static_cast<void>(TexteValeur({}, Français)); }), "Utilisation incorrecte de Null");
}

TEST(Dates, StrictlyDayMonthYear) {
  struct Cas {
    const char* Texte;
    DateHeure Lue;
  };
  const Cas Table[] = {{"19/09/08 08:30", {2008, 9, 19, 8, 30, 0}},
                       {" 1/2/2026 ", {2026, 2, 1}},
                       {"29-02-24", {2024, 2, 29}},
                       {"31.12.29 23:59:59", {2029, 12, 31, 23, 59, 59}},
                       {"01/01/30", {1930, 1, 1}},
                       {"19/09/08  8:05", {2008, 9, 19, 8, 5, 0}}};
  for (const Cas& C : Table) {
    const auto Lue = LireDate(C.Texte);
    ASSERT_TRUE(Lue) << C.Texte;
    EXPECT_EQ(*Lue, C.Lue) << C.Texte;
  }
  for (const char* Texte : {"", "19/13/08 08:30", "31/04/08", "29/02/23", "00/01/08", "09/19/08", "19/09/08 24:00",
                            "19/09/08 08:60", "19/09/08 08", "19/09/0808:30", "19/09/08 08:30:61", "19/09/008", "19/09",
                            "2008/09/19", "19/ 9/08", "19/09/08 08:30 x", "aa/bb/cc dd:ee", "19/09/0000", "-1/09/08"}) {
    EXPECT_FALSE(EstDate(Texte)) << Texte;
  }
}

TEST(Dates, TextForms) {
  const DateHeure Moment{2026, 11, 2, 8, 5, 9};
  EXPECT_EQ(TexteDateHeure(Moment), "02/11/2026 08:05:09");
  EXPECT_EQ(TexteHeure(Moment), "08:05:09");
  EXPECT_EQ(TexteFormaté(Moment, "jj mm hh nn ss"), "02 11 08 05 09");
  EXPECT_EQ(TexteFormaté(Moment, "aaaa-mm-jj ?"), "2026-11-02 ?");
  EXPECT_EQ(LireDate(TexteDateHeure(Moment)), Moment);
}

TEST(Dates, DayNumbers) {
  EXPECT_EQ(NuméroDeJour({}), 0);
  EXPECT_EQ(NuméroDeJour({1900, 1, 1}), 2);
  EXPECT_EQ(NuméroDeJour({2008, 9, 19, 12, 0, 0}), 39710.5);
  for (const DateHeure& Moment :
       {DateHeure{2026, 2, 28, 23, 59, 59}, DateHeure{1899, 12, 29, 6, 0, 1}, DateHeure{9999, 12, 31, 23, 59, 59}}) {
    EXPECT_EQ(DepuisNuméroDeJour(NuméroDeJour(Moment)), Moment);
  }
  for (const double Jours : {1e9, -1e9, std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_THROW(static_cast<void>(DepuisNuméroDeJour(Jours)), ErreurExécution);
  }
}

}  // namespace
}  // namespace Ombrey
