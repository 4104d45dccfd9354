// The settings file's text, to the byte.
#include "platform/system/ini_text.h"

#include <gtest/gtest.h>

#include <ostream>

#include "common/failures.h"

namespace Ombrey {
namespace {

constexpr const char* Section = "PlugInOmbrey";

TEST(TexteIni, ReadsKeysInEitherEncodingAndAnyLayout) {
  struct Cas {
    std::string Bruts;
    const char* Clé;
    std::optional<std::string> Valeur;
  };
  const Cas Table[] = {
      {"", "Port", std::nullopt},
      {"Port=COM1:\n", "Port", std::nullopt},
      {"[Autre]\nPort=COM9:\n[PlugInOmbrey]\nPort=COM1:\n", "Port", "COM1:"},
      {"[pluginOMBREY]\r\nPORT=COM1:\r\n", "Port", "COM1:"},
      {"  [ PlugInOmbrey ]  ; note\n\tPort \t=  COM1: \t\n", "Port", "COM1:"},
      {"[PlugInOmbrey]\nPort=", "Port", ""},
      {"[PlugInOmbrey]\nPort=a=b;c#d", "Port", "a=b;c#d"},
      {"[PlugInOmbrey]\n;Port=1\n#Port=2\nPort\nPort=3\nPort=4\n", "Port", "3"},
      {"[PlugInOmbrey]\nBauds=1\n[X]\n[PlugInOmbrey]\nPort=2\n", "Port", "2"},
      {"[PlugInOmbrey]\nPort=\"  x \"\n", "Port", "  x "},
      {"[PlugInOmbrey\nPort=1\n", "Port", std::nullopt},
      {"[PlugInOmbrey]\nParité=E\n", "Parité", "E"},
      {"\xEF\xBB\xBF[PlugInOmbrey]\nParité=E\n", "Parité", "E"},
      {"[PlugInOmbrey]\nParit\xE9=\xC9t\xE9 \x80\n", "Parité", "Été €"},
      {"[PlugInOmbrey]\nPARIT\xC9=E\n", "Parité", std::nullopt},
  };
  for (const auto& [Bruts, Clé, Valeur] : Table) EXPECT_EQ(TexteIni(Bruts).Lire(Section, Clé), Valeur) << Bruts;
}

struct Cas {
  const char* Nom;
  std::string Avant;
  std::string Clé;
  std::string Valeur;
  std::string Après;
};
std::ostream& operator<<(std::ostream& Sortie, const Cas& C) { return Sortie << C.Nom; }

class Ecriture : public testing::TestWithParam<Cas> {};

TEST_P(Ecriture, ChangesOneLineAndNoOtherByte) {
  const Cas& C = GetParam();
  TexteIni Texte(C.Avant);
  Texte.Ecrire(Section, C.Clé, C.Valeur);
  EXPECT_EQ(Texte.Bruts(), C.Après);
  EXPECT_EQ(Texte.Lire(Section, C.Clé), C.Valeur);
  Texte.Ecrire(Section, C.Clé, C.Valeur);
  EXPECT_EQ(Texte.Bruts(), C.Après) << "writing the same again changes nothing";
}

INSTANTIATE_TEST_SUITE_P(
    Table, Ecriture,
    testing::Values(
        Cas{"EmptyFile", "", "Port", "COM1:", "[PlugInOmbrey]\nPort=COM1:\n"},
        Cas{"OnlyTheMark", "\xEF\xBB\xBF", "Port", "x", "\xEF\xBB\xBF[PlugInOmbrey]\nPort=x\n"},
        Cas{"OtherSection", "[A]\r\nx=1\r\n", "Port", "y", "[A]\r\nx=1\r\n\r\n[PlugInOmbrey]\r\nPort=y\r\n"},
        Cas{"NoEndOfLine", "[A]\nx=1", "Port", "y", "[A]\nx=1\n\n[PlugInOmbrey]\nPort=y\n"},
        Cas{"EmptySectionAtTheEnd", "[PlugInOmbrey]", "Port", "y", "[PlugInOmbrey]\nPort=y\n"},
        Cas{"BehindTheLastKey", "[PlugInOmbrey]\nBauds=1\n\n; next\n[B]\nz=2\n", "Port", "y",
            "[PlugInOmbrey]\nBauds=1\nPort=y\n\n; next\n[B]\nz=2\n"},
        Cas{"IntoTheFirstOfTwo", "[PlugInOmbrey]\n[B]\n[PlugInOmbrey]\nBauds=1\n", "Port", "y",
            "[PlugInOmbrey]\nPort=y\n[B]\n[PlugInOmbrey]\nBauds=1\n"},
        Cas{"KeepsLayout", "[PlugInOmbrey]\r\n  port \t= COM1:\t \r\nport=2\r\n;x", "Port",
            "COM22:", "[PlugInOmbrey]\r\n  port \t= COM22:\t \r\nport=2\r\n;x"},
        Cas{"FillsAnEmptyValue", "[PlugInOmbrey]\nPort = \nBauds=", "Bauds", "9", "[PlugInOmbrey]\nPort = \nBauds=9"},
        Cas{"EmptiesAValue", "[PlugInOmbrey]\nPort = 1 \n", "Port", "", "[PlugInOmbrey]\nPort =  \n"},
        Cas{"AnsiKey", "[PlugInOmbrey]\r\nParit\xE9=N\r\n;\x96\r\n", "Parité", "E",
            "[PlugInOmbrey]\r\nParit\xE9=E\r\n;\x96\r\n"},
        Cas{"AnsiAdded", "[PlugInOmbrey]\n;\xE9\n", "Période interrogation", "€",
            "[PlugInOmbrey]\nP\xE9riode interrogation=\x80\n;\xE9\n"},
        Cas{"Utf8Added", "[PlugInOmbrey]\n", "Période interrogation", "2000",
            "[PlugInOmbrey]\nPériode interrogation=2000\n"},
        Cas{"BlanksOfItsOwn", "[PlugInOmbrey]\nPort=1\n", "Port", " x", "[PlugInOmbrey]\nPort=\" x\"\n"},
        Cas{"QuotesOfItsOwn", "[PlugInOmbrey]\nPort=1\n", "Port", "\"x\"", "[PlugInOmbrey]\nPort=\"\"x\"\"\n"}),
    [](const auto& Info) { return Info.param.Nom; });

TEST(TexteIni, RefusesWhatItCouldNotReadBack) {
  struct Refus {
    const char* Section;
    const char* Clé;
    const char* Valeur;
  };
  const Refus Table[] = {{"S", "K", "a\nb"}, {"S", "K", "a\rb"}, {"S", "", "x"},   {"S", "a=b", "x"},
                         {"S", "[a", "x"},   {"S", ";a", "x"},   {"S", " a", "x"}, {"S]", "a", "x"},
                         {"", "a", "x"},     {"S", "K", "\xE9"}};
  for (const auto& [S, Clé, Valeur] : Table) {
    TexteIni Texte("[S]\n");
    EXPECT_THROW(Texte.Ecrire(S, Clé, Valeur), ErreurExécution) << S << Clé << Valeur;
    EXPECT_EQ(Texte.Bruts(), "[S]\n");
  }
  TexteIni Ansi("[S]\n;\xE9\n");
  EXPECT_THROW(Ansi.Ecrire("S", "K", "Ω"), ErreurExécution);
  EXPECT_THROW(TexteIni("\xFF\xFE["), ErreurExécution);
}

}  // namespace
}  // namespace Ombrey
