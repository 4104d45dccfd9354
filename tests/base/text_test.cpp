// Text helpers: the crossing to Windows-1252, delimited lists, zeros and separators.
#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <tuple>

#include "base/ansi_text.h"
#include "base/delimited_list.h"
#include "base/failures.h"
#include "base/system_error.h"
#include "base/text_helpers.h"

namespace Ombrey {

TEST(AnsiText, AccentsAndSignsTakeOneByte) {
  // clang-format off
  const std::pair<const char*, const char*> Table[] = {
      {"Métayage n°", "M\xE9tayage n\xB0"}, {"€ Œ œ Ÿ ’ …", "\x80 \x8C \x9C \x9F \x92 \x85"}, {"ÿ\u00A0", "\xFF\xA0"},
      // A letter and the accent stored behind it; an accent that has no such letter.
      {"A\u0300e\u0301I\u0302n\u0303Y\u0308A\u030AZ\u030Cc\u0327",
       "\xC0\xE9\xCE\xF1\x9F\xC5\x8E\xE7"}, {"\u0301x\u0301E\u0327", "?x?E?"},
      {"日本 \U0001F347", "?? ?"},          // a character without a place is one "?"
      {"a\xE9z", "a?z"}, {"\xC3", "?"},     // no UTF-8, cut at its end
      {"\xC0\xAF|\xED\xA0\x80", "??|???"},  // overlong form, half of a surrogate pair
      {"\u0080", "?"}};                     // 0x80 belongs to the euro sign
  // clang-format on
  for (const auto& [Texte, Attendu] : Table) EXPECT_EQ(VersAnsi(Texte).Bruts(), Attendu) << Texte;
}

TEST(AnsiText, EveryByteSurvivesTheWayThereAndBack) {
  Octets Tous;
  for (int Code = 0; Code <= 0xFF; ++Code) Tous += static_cast<char>(Code);
  const std::string Texte = DepuisAnsi(Tous);
  EXPECT_TRUE(EstUtf8(Texte));
  EXPECT_FALSE(EstUtf8(Tous.Bruts()));
  EXPECT_EQ(VersAnsi(Texte), Tous);
}

TEST(DelimitedList, ItemsAndPlaces) {
  // clang-format off
  const std::tuple<const char*, const char*, std::vector<std::string>> Table[] = {
      {";", "a;;b;", {"a", "", "b"}},  // a closing delimiter opens no item
      {";", "", {}}, {";", ";", {""}}, {"\r\n", "a;b\r\nc", {"a;b", "c"}}, {"", "a;b", {"a;b"}}};
  // clang-format on
  for (const auto& [Séparateur, Texte, Éléments] : Table)
    EXPECT_EQ(ListeChamps(Séparateur).Décomposer(Texte), Éléments);
  ListeChamps Liste;
  EXPECT_EQ(Liste.Nombre("a;1;4;b;5;10;"), 6);
  std::string Champs;
  for (std::int16_t Rang = 0; Rang < 5; ++Rang) Champs += Liste.Champ("a;1;4;", Rang) + "|";
  EXPECT_EQ(Champs, "|a|1|4||");
  EXPECT_EQ(Liste.Rang("a;b;c;b", "b"), 2);
  EXPECT_EQ(Liste.Rang("a;b", "B"), 0);
  EXPECT_THROW(static_cast<void>(Liste.Nombre(std::string(32768, ';'))), ErreurExécution);
}

TEST(SystemError, WhatAnOperatorMeetsHasWords) {
  for (const int Numéro : {EACCES, ENOENT, ENOSPC, EROFS, EBUSY, EIO})
    EXPECT_EQ(TexteErreurSystème(Numéro).find(std::to_string(Numéro)), std::string::npos) << Numéro;
}

TEST(TextHelpers, WrongSeparatorIsPutRight) {
  // clang-format off
  const std::tuple<std::string, std::string, bool> Table[] = {
      {"12,5", "12,5", true}, {"12.5", "12,5", true}, {".5", "0,5", true}, {"12.", "12", true}, {"a.5", "a.5", false},
      {"1.2.3", "1.2.3", false}, {"abc", "abc", false}, {"", "", false}, {"1,2.3", "1,2.3", false}};
  // clang-format on
  for (const auto& [Avant, Après, Numérique] : Table) {
    std::string Texte = Avant;
    EXPECT_EQ(NormaliserNombre(Texte, {','}), Numérique) << Avant;
    EXPECT_EQ(Texte, Après);
  }
  std::string Texte = "12,5";
  EXPECT_TRUE(NormaliserNombre(Texte, {'.'}));
  EXPECT_EQ(Texte, "12.5");
}

TEST(TextHelpers, ZerosAtTheEnds) {
  // clang-format off
  const std::array<const char*, 3> Table[] = {
      {"0012", "12", "0012"}, {"1200", "1200", "12"}, {"000", "", "0"}, {"", "", ""}, {"0 0", " 0", "0 "}};
  // clang-format on
  for (const auto& [Texte, Début, Fin] : Table) {
    EXPECT_EQ(SupprZéroDébut(Texte), Début) << Texte;
    EXPECT_EQ(SupprZéroFin(Texte), Fin) << Texte;
  }
}

}  // namespace Ombrey
