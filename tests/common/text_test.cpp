// Text helpers: the crossing to Windows-1252, delimited lists, zeros and separators.
#include <gtest/gtest.h>

#include "common/ansi_text.h"
#include "common/delimited_list.h"
#include "common/failures.h"
#include "common/text_helpers.h"

namespace Ombrey {
namespace {

TEST(AnsiText, AccentsAndSignsTakeOneByte) {
  struct Cas {
    const char* Texte;
    const char* Attendu;
  };
  const Cas Table[] = {
      {"", ""},
      {"Métayage n°", "M\xE9tayage n\xB0"},
      {"€ Œ œ Ÿ ’ …", "\x80 \x8C \x9C \x9F \x92 \x85"},
      {"ÿ\u00A0", "\xFF\xA0"},
      {"日本 \U0001F347", "?? ?"},          // a character without a place is one "?"
      {"a\xE9z", "a?z"},                    // a byte that is no UTF-8
      {"\xC3", "?"},                        // cut at its end
      {"\xC0\xAF|\xED\xA0\x80", "??|???"},  // overlong form, half of a surrogate pair
      {"\u0080", "?"},                      // 0x80 belongs to the euro sign
  };
  for (const Cas& C : Table) EXPECT_EQ(VersAnsi(C.Texte).Bruts(), C.Attendu) << C.Texte;
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
  ListeChamps Liste;
  using Éléments = std::vector<std::string>;
  EXPECT_EQ(Liste.Décomposer("a;;b;"), (Éléments{"a", "", "b"}));  // a closing delimiter opens no item
  EXPECT_EQ(Liste.Décomposer(""), Éléments{});
  EXPECT_EQ(Liste.Décomposer(";"), Éléments{""});
  EXPECT_EQ(Liste.Nombre("a;1;4;b;5;10;"), 6);
  EXPECT_EQ(Liste.Champ("a;1;4;", 3), "4");
  EXPECT_EQ(Liste.Champ("a;1;4;", 4), "");
  EXPECT_EQ(Liste.Champ("a;1;4;", 0), "");
  EXPECT_EQ(Liste.Rang("a;b;c;b", "b"), 2);
  EXPECT_EQ(Liste.Rang("a;b", "B"), 0);
  Liste.Séparateur("\r\n");
  EXPECT_EQ(Liste.Décomposer("a;b\r\nc"), (Éléments{"a;b", "c"}));
  Liste.Séparateur("");
  EXPECT_EQ(Liste.Décomposer("a;b"), Éléments{"a;b"});
  EXPECT_THROW(static_cast<void>(ListeChamps().Nombre(std::string(32768, ';'))), ErreurExécution);
}

TEST(TextHelpers, WrongSeparatorIsPutRight) {
  struct Cas {
    std::string Texte, Après;
    bool Numérique;
  };
  const Cas Table[] = {{"12,5", "12,5", true}, {"12.5", "12,5", true},    {".5", "0,5", true},
                       {"12.", "12", true},    {"1.2.3", "1.2.3", false}, {"abc", "abc", false},
                       {"", "", false},        {"1,2.3", "1,2.3", false}, {"a.5", "a.5", false}};
  const auto Échanger = [](std::string Texte) {
    for (char& C : Texte) C = C == ',' ? '.' : C == '.' ? ',' : C;
    return Texte;
  };
  for (const Cas& C : Table) {
    std::string Texte = C.Texte;
    EXPECT_EQ(NormaliserNombre(Texte, {','}), C.Numérique) << C.Texte;
    EXPECT_EQ(Texte, C.Après);
    Texte = Échanger(C.Texte);
    EXPECT_EQ(NormaliserNombre(Texte, {'.'}), C.Numérique) << Texte;
    EXPECT_EQ(Texte, Échanger(C.Après));
  }
}

TEST(TextHelpers, ZerosAtTheEnds) {
  struct Cas {
    const char *Texte, *Début, *Fin;
  };
  const Cas Table[] = {
      {"0012", "12", "0012"}, {"1200", "1200", "12"}, {"000", "", "0"}, {"", "", ""}, {"0 0", " 0", "0 "}};
  for (const Cas& C : Table) {
    EXPECT_EQ(SupprZéroDébut(C.Texte), C.Début) << C.Texte;
    EXPECT_EQ(SupprZéroFin(C.Texte), C.Fin) << C.Texte;
  }
}

}  // namespace
}  // namespace Ombrey
