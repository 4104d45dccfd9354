// The terminal's small parts: checksum, readable bytes, loads, pace, command line.
#include <gtest/gtest.h>

#include <sstream>

#include "terminal/frame.h"
#include "terminal/loads.h"
#include "terminal/options.h"
#include "terminal/pace.h"

namespace Rg80 {
namespace {

using namespace std::chrono_literals;

TEST(Checksum, MatchesRowsWorkedOutByHand) {
  EXPECT_EQ(Encadrer("abc"),
            "\x02"
            "abc\x03"
            "2;");
  EXPECT_TRUE(Encadrer("0012190908083009150001230004560071000000050112521234007").ends_with("\x03<;"));
  EXPECT_EQ(CaractèresChecksum(294), "26");
  EXPECT_EQ(CaractèresChecksum(256), "00");
  EXPECT_EQ(CaractèresChecksum(255), "??");
  EXPECT_TRUE(Encadrer("\xE9").ends_with(">>")) << "an accented letter counts 233: 238 with STX and ETX";
}

TEST(Readable, NamesControlCharactersAndKeepsAccents) {
  EXPECT_EQ(Lisible("\x05"
                    "A\x15\r\x7F\xE9\x80\x81"),
            "<ENQ>A<NAK><0D><7F>é€<81>");
}

TEST(LoadsFile, NamesTheLineOfAWrongRecord) {
  const std::string Right(LongueurChargement, '7');
  struct Row {
    std::string Text, Error;  // no error: two loads
  };
  for (const Row& Case : std::vector<Row>{
           {std::string(Right).append("\n").append(Right).append("\n"), ""},
           {std::string(Right).append("\r\n!bruit !coupe ").append(Right), ""},
           {std::string(LongueurChargement, '!') + "\n" + Right, ""},
           {std::string(Right).append("\n").append(Right).append("x"), "f, ligne 2 : 56 octets au lieu de 55."},
           {"\n" + Right, "f, ligne 1 : 0 octets au lieu de 55."},
           {"!panique " + Right, "f, ligne 1 : 64 octets au lieu de 55."}}) {
    std::istringstream Stream(Case.Text);
    try {
      EXPECT_EQ(LireChargements(Stream, "f").size(), 2U);
      EXPECT_EQ(Case.Error, "");
    } catch (const ErreurDemande& Error) {
      EXPECT_EQ(Error.what(), Case.Error);
    }
  }
}

TEST(RandomLoads, AreWellFormedAndTheSameForTheSameSeed) {
  const auto Day = std::chrono::year(2026) / 9 / 5;
  Hasard Dice(3);
  Hasard Again(3);
  const auto Made = ChargementsAuHasard(300, 9990, Day, Dice);
  const auto Second = ChargementsAuHasard(300, 9990, Day, Again);
  for (std::size_t Rank = 0; Rank < Made.size(); ++Rank) {
    const std::string& Text = Made[Rank].Enregistrement;
    ASSERT_EQ(Text.size(), LongueurChargement);
    EXPECT_EQ(Text.find_first_not_of("0123456789"), std::string::npos);
    EXPECT_EQ(std::stoul(Text.substr(0, 4)), (9990 + Rank) % 10000);
    EXPECT_EQ(Text.substr(4, 6), "050926");
    EXPECT_LT(Text.substr(16, 2), "60");
    EXPECT_EQ(Text, Second[Rank].Enregistrement);
  }
  EXPECT_EQ(NuméroSuivant(Made), 0U) << "9999 is followed by 0";
  EXPECT_EQ(NuméroSuivant({}), 1U);
}

TEST(Pace, TakesTheWireTimeAndCatchesUp) {
  Cadence Line(9600);
  const Instant Start{};
  Line.Éveiller(Start);
  EXPECT_EQ(Line.Dus(Start + 1041us), 0U);
  EXPECT_EQ(Line.Dus(Start + 1042us), 1U);
  EXPECT_EQ(Line.Dus(Start + 5300us), 5U) << "a late look finds all that came meanwhile";
  std::size_t Through = 0;
  for (Instant Now = Start; Through < 123000; Now += 1700us) {
    Through += Line.Dus(Now);
    Line.Compter(Line.Dus(Now));
    if (Through >= 123000) {
      EXPECT_LT(Now - Start, 128125ms + 2ms);
    }
  }
  EXPECT_EQ(Cadence(std::nullopt).Prochain(), std::nullopt);
}

TEST(CommandLine, SaysWhatIsWrong) {
  struct Row {
    std::vector<std::string> Arguments;
    const char* Names;  // what the message must name
  };
  for (const Row& Case : std::vector<Row>{{{}, "--lien ou --port"},
                                          {{"--lien", "a", "--port", "b"}, "un seul"},
                                          {{"--lien"}, "--lien demande une valeur"},
                                          {{"--lien", ""}, "--lien demande une valeur"},
                                          {{"--lien", "a", "--vite"}, "--vite"},
                                          {{"--lien", "a", "b"}, "inconnue : b"},
                                          {{"--lien", "a", "--cadence", "0"}, "--cadence"},
                                          {{"--lien", "a", "--cadence", "96OO"}, "96OO"},
                                          {{"--lien", "a", "--hasard", "-1"}, "-1"},
                                          {{"--lien", "a", "--hasard", "99999999999"}, "--hasard"},
                                          {{"--lien", "a", "--graine", "1.5"}, "1.5"},
                                          {{"--lien", "a", "--panne", "foudre=1"}, "foudre"},
                                          {{"--lien", "a", "--panne", "nak=1,"}, "ne nomme aucune"},
                                          {{"--lien", "a", "--panne", "nak"}, "taux"},
                                          {{"--lien", "a", "--panne", "nak=1.01"}, "taux"},
                                          {{"--lien", "a", "--panne", "nak=-0.1"}, "taux"},
                                          {{"--lien", "a", "--panne", "nak=nan"}, "taux"},
                                          {{"--lien", "a", "--panne", "nak=0,5"}, "« 5 »"}}) {
    try {
      static_cast<void>(LireOptions(Case.Arguments));
      ADD_FAILURE() << Case.Names;
    } catch (const ErreurDemande& Error) {
      EXPECT_NE(std::string(Error.what()).find(Case.Names), std::string::npos) << Error.what();
    }
  }
}

TEST(CommandLine, TakesWhatIsRight) {
  const Options Read = LireOptions({"--port", "/dev/ttyS0", "--panne", "silence=0.1,ack-perdu=1", "--f6"});
  EXPECT_EQ(Read.Taux, (TauxDePannes{0.1, 0, 0, 0, 0, 0, 1}));
  EXPECT_TRUE(Read.EnFichiers && !Read.JusquÀVide && Read.Lien.empty());
}

}  // namespace
}  // namespace Rg80
