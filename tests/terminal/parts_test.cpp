// The terminal's small parts: checksum, readable bytes, loads, command line.
#include <gtest/gtest.h>

#include <sstream>

#include "terminal/frame.h"
#include "terminal/loads.h"
#include "terminal/options.h"
#include "tests/support/test_folder.h"

namespace Rg80 {

using Ombrey::Essais::RefusDe;

TEST(Frame, HasTheChecksumWorkedOutByHandAndIsReadable) {
  const std::pair<std::string, const char*> Rows[] = {{"abc", "2;"}, {"\xE9", ">>"}, {"}}", "??"}, {"}~", "00"}};
  for (const auto& [Text, Checksum] : Rows) EXPECT_EQ(Encadrer(Text), "\x02" + Text + "\x03" + Checksum);
  EXPECT_EQ(Lisible("\x05!\x15\r\x7F\xE9\x80\x81"), "<ENQ>!<NAK><0D><7F>é€<81>");
}

TEST(LoadsFile, NamesTheLineOfAWrongRecord) {
  const std::string Right(LongueurChargement, '7');
  const std::pair<std::string, std::string> Rows[] = {
      {Right + "\r\n!bruit !coupe " + Right, ""},  // no error: two loads
      {std::string(LongueurChargement, '!') + "\n" + Right + "\n", ""},
      {Right + "\n" + Right + "x", "f, ligne 2 : 56 octets au lieu de 55."},
      {"\n" + Right, "f, ligne 1 : 0 octets au lieu de 55."},
      {"!panique " + Right, "f, ligne 1 : 64 octets au lieu de 55."}};
  for (const auto& [Text, Message] : Rows) {
    std::istringstream Stream(Text);
    EXPECT_EQ(RefusDe<ErreurDemande>([&] { EXPECT_EQ(LireChargements(Stream, "f").size(), 2U); }), Message);
  }
}

TEST(RandomLoads, AreWellFormedAndTheSameForTheSameSeed) {
  Hasard Dice(3), Again(3);
  const auto Made = ChargementsAuHasard(300, 9990, std::chrono::year(2026) / 9 / 5, Dice);
  const auto Second = ChargementsAuHasard(300, 9990, std::chrono::year(2026) / 9 / 5, Again);
  for (std::size_t Rank = 0; Rank < Made.size(); ++Rank) {
    const std::string& Text = Made[Rank].Enregistrement;
    ASSERT_EQ(Text.size(), LongueurChargement);
    ASSERT_EQ(Text.find_first_not_of("0123456789"), std::string::npos);
    EXPECT_EQ(std::stoul(Text.substr(0, 10)), (9990 + Rank) % 10000 * 1000000 + 50926);
    EXPECT_EQ(Text, Second[Rank].Enregistrement);
  }
  EXPECT_EQ(NuméroSuivant(Made), 0U) << "9999 is followed by 0";
}

TEST(CommandLine, SaysWhatIsWrong) {
  // clang-format off
  const std::pair<const char*, const char*> Rows[] = {  // what the message must name
      {"--f6", "--lien ou --port"}, {"--lien a --port b", "un seul"}, {"--f6 --f6", "deux fois"}, {"--lien", "--lien demande une valeur"},
      {"--lien  --f6", "--lien demande une valeur"}, {"--lien a --vite", "--vite"}, {"--lien a b", "inconnue : b"},
      {"--cadence 0", "--cadence"}, {"--cadence 96OO", "96OO"}, {"--hasard -1", "-1"},
      {"--hasard 99999999999", "--hasard"}, {"--graine 1.5", "1.5"}, {"--panne foudre=1", "foudre"},
      {"--panne nak=1,", "ne nomme aucune"}, {"--panne nak", "taux"}, {"--panne nak=1.01", "taux"},
      {"--panne nak=-0.1", "taux"}, {"--panne nak=nan", "taux"}, {"--panne nak=0,5", "« 5 »"}};
  // clang-format on
  for (const auto& [Line, Named] : Rows) {
    std::vector<std::string> Arguments;
    std::istringstream Words(Line);
    for (std::string Word; std::getline(Words, Word, ' ');) Arguments.push_back(Word);
    const std::string Said = RefusDe<ErreurDemande>([&] { static_cast<void>(LireOptions(Arguments)); });
    EXPECT_NE(Said.find(Named), std::string::npos) << Line << Said;
  }
  const Options Read = LireOptions({"--port", "/dev/ttyS0", "--panne", "silence=0.1,ack-perdu=1"});
  EXPECT_EQ(Read.Taux, (TauxDePannes{0.1, 0, 0, 0, 0, 0, 1}));
}

}  // namespace Rg80
