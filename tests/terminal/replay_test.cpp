// A trace read back and said again.
#include "terminal/replay.h"

#include <gtest/gtest.h>

#include <sstream>

#include "terminal/loads.h"
#include "tests/support/test_folder.h"
#include "tests/terminal/bytes.h"

namespace Rg80 {

using namespace std::chrono_literals;

const std::string Head = "# Trace de la liaison avec le RG80, forme 1, le 2026-11-22\n";

TEST(Trace, NamesTheLineThatIsNone) {
  const std::string Poll = "\tstation\t<ENQ>A\t\n";
  const std::pair<std::string, std::string> Rows[] = {
      {Head + "23:59:59.900" + Poll + "\n# note\n00:00:00.100\tRG80\t<NAK>A\tx\r\n", ""},  // no error: two messages
      {Head + "08:00:00.000" + Poll + "08:00:00.1\n" + Head + "08:00:00.200\tRG80\t<NAK>A\n08:0", ""},
      {Head, "Trace f : elle ne contient aucun message."},
      {"# Trace de la liaison avec le RG80, forme 2\n", "Trace f, ligne 1 : cette forme de trace n'est pas connue."},
      {Head + "08:00:00.000" + Poll + "8:00" + Poll, "Trace f, ligne 3 : ce n'est pas une ligne de trace."},
      {"08:00:00.000\tmoi\tA\n", "Trace f, ligne 1 : ce n'est pas une ligne de trace."},
      {"08:00:00.000\tRG80\t<QUI>\n", "Trace f, ligne 1 : ce n'est pas une ligne de trace."},
      {"08:00:00.000\tRG80\t<\n", "Trace f, ligne 1 : ce n'est pas une ligne de trace."}};
  for (const auto& [Text, Message] : Rows) {
    std::istringstream Stream(Text);
    const auto Read = [&Stream] {
      const auto Messages = LireTrace(Stream, "f");
      ASSERT_EQ(Messages.size(), 2U);
      EXPECT_EQ(Messages[1].Quand - Messages[0].Quand, 200ms);
    };
    EXPECT_EQ(Ombrey::Essais::RefusDe<ErreurDemande>(Read), Message);
  }
}

struct Heard : ISuite {
  void Émettre(std::string_view Bytes) override { Said += Lisible(Bytes) + "@" + std::to_string(Now) + " "; }
  void Consigner(Sens, std::string_view) override {}
  void Annoncer(const std::string& Text) override { Told += Text + "\n"; }
  bool GarderRéponse(std::string_view) override { return false; }
  bool GarderFichier(char, std::string_view) override { return false; }
  std::string Said, Told;
  long Now = 0;
};

// One poll in vain, a load with its reply, a file that the operator sends, a last poll; with their milliseconds.
const std::string Recorded =
    "00 s<ENQ>A 01 r<NAK>A 20 s<ENQ>A 21 r<ACK>A 23 r<STX>L<ETX>xx 24 s<ACK> 25 s<ENQ>8 26 r<ACK>8 27 s<STX>F<ETX>yy"
    " 28 r<ACK> 29 s<EOT> 30 s<ENQ>A 31 r<NAK>A 40 s<ENQ>4 45 r<NAK>4 60 s<ENQ>A";
// Stopped behind a load's frame, and again behind a request; then two copies, of which the second is left; "p" is the
// port, "#" a start.
const std::string Stopped =
    "00 s<ENQ>A 01 r<ACK>A 02 r<STX>L<ETX>xx 03 p 04 # 05 p 06 r<ACK> 07 s<ENQ>A 08 r<NAK>A 09 s<ENQ>8 10 p 11 # 12 p"
    " 13 s<ENQ>A 14 r<NAK>A 15 s<ENQ>A 16 r<ACK>A 17 r<STX>L<ETX>xx 18 s<ACK> 19 s<ENQ>A 20 r<ACK>A 21 r<STX>L<ETX>xx"
    " 22 s<ENQ>A 23 r<NAK>A";
// A load with its figures, a load that is refused.
const std::string Figures =
    "00 s<ENQ>A 01 r<ACK>A 02 r<STX>L<ETX>xx 03 s<ACK> 04 s<ENQ>8 05 r<ACK>8 06 s<STX>12<ETX>68 07 r<ACK> 08 s<EOT>"
    " 09 s<ENQ>A 10 r<ACK>A 11 r<STX>M<ETX>xx 12 s<NAK> 13 s<ENQ>A 14 r<NAK>A";
const std::string OtherFigures =
    "<ENQ>A <ACK> <ENQ>8 <STX>13<ETX>69 <EOT> <ENQ>A <ACK> <ENQ>8 <STX>13<ETX>69 <EOT> <ENQ>A";
const std::string AnsweredAlike =
    "<ACK>A@1 <STX>L<ETX>xx@2 <ACK>8@201 <ACK>@301 <ACK>A@501 <STX>M<ETX>xx@502 <ACK>8@700 <ACK>@800 <NAK>A@1001 ";
struct Row {
  std::string Station, Said, Told;  ///< what the terminal says when, and the announcements' ends
  std::string Trace = Recorded;
  bool OtherBase = false;
};
// clang-format off
const Row Rows[] = {
    {"<ENQ>A <ENQ>A <ACK> <ENQ>8 <STX>F<ETX>yy <EOT> <ENQ>A <ENQ>4 <ENQ>A",
     "<NAK>A@1 <ACK>A@101 <STX>L<ETX>xx@103 <ACK>8@301 <ACK>@401 <NAK>A@601 <NAK>4@705 ",
     "messages de la station 9, différences 0"},
    // Polls more and fewer, a message in pieces.
    {"<ENQ>A <ENQ>A <ACK> <ENQ> 8 <STX>F<ETX>yy <EOT> <ENQ>4 <ENQ>A",
     "<NAK>A@1 <ACK>A@101 <STX>L<ETX>xx@103 <ACK>8@401 <ACK>@501 <NAK>4@705 ",
     "messages de la station 8, différences 0"},
    {"<ENQ>A <ENQ>A <ACK> <ENQ>8 <STX>F<ETX>yy <EOT> <ENQ>A <ENQ>A <ENQ>A <ENQ>4 <ENQ>A",
     "<NAK>A@1 <ACK>A@101 <STX>L<ETX>xx@103 <ACK>8@301 <ACK>@401 <NAK>A@601 <NAK>A@700 <NAK>A@800 <NAK>4@905 ",
     "messages de la station 11, différences 0"},
    // Refused then, other figures then, a link test that wasn't.
    {"<ENQ>A <ENQ>A <NAK> <ENQ>A <ENQ>4 <ENQ>A", "<NAK>A@1 <ACK>A@101 <STX>L<ETX>xx@103 <NAK>A@301 <NAK>4@405 ",
     "messages de la station 6, différences 2"},
    {"<ENQ>A <ENQ>A <ACK> <ENQ>8 <STX>G<ETX>zz <EOT> <ENQ>1 <STX>X<ETX>xx <EOT> <ENQ>4 <ENQ>A",
     "<NAK>A@1 <ACK>A@101 <STX>L<ETX>xx@103 <ACK>8@301 <ACK>@401 <ACK>1@600 <ACK>@700 <NAK>4@905 ",
     "« <STX>G<ETX>zz » au lieu de « <STX>F<ETX>yy ».|« <ENQ>1 » au lieu de « <ENQ>A ».|station 11, différences 2"},
    {"<ENQ>A", "<NAK>A@1 ", "(ligne 3 de la trace) : la station ne dit plus « <ENQ>A ».|station 1, différences 1"},
    {"<ENQ>A <ACK> <ENQ>8 <STX>G<ETX>zz <EOT> <ENQ>A <ENQ>A <ENQ>A <ENQ>A <ACK> <ENQ>A",
     "<ACK>A@1 <STX>L<ETX>xx@2 <ACK>8@200 <ACK>@300 <NAK>A@501 <NAK>A@601 <ACK>A@701 <STX>L<ETX>xx@702 <ACK>A@801 "
     "<STX>L<ETX>xx@802 <NAK>A@1001 ",
     "s'était arrêtée là : 4|station 11, différences 0", Stopped},
    // A late answer to the one that was stopped; the one here asks ahead of it.
    {"<ENQ>A<ENQ>A", "<NAK>A@1 <NAK>A@2 ", "s'était arrêtée là : 1|station 2, différences 0",
     "00 s<ENQ>A 01 p 02 # 03 p 04 s<ENQ>A 05 r<NAK>A 40 r<ACK>A<STX>L<ETX>xx 60 s<ENQ>A 62 r<NAK>A"},
    // The terminal went with its last answer: the EOT behind it found no line.
    {"<ENQ>A <ACK> <ENQ>8 <STX>12<ETX>68<EOT>", "<ACK>A@1 <STX>L<ETX>xx@2 <ACK>8@201 <ACK>@301 ",
     "s'était arrêtée là : 1|station 5, différences 0", Figures.substr(0, Figures.find(" 08"))},
    {OtherFigures, AnsweredAlike, "à l'autre base, non comptés : 2|différences 0", Figures, true},
    {OtherFigures, AnsweredAlike, "différences 3", Figures},
};
// clang-format on

TEST(Replay, AnswersAtTheSameDistanceAndTellsWhereTheStationSaysOtherwise) {
  for (const Row& Row : Rows) {
    std::string Trace;
    std::istringstream Lines(Row.Trace), Turns(Row.Station);
    for (std::string When, Text; Lines >> When >> Text;)
      Trace += Text == "#" ? Head
                           : "08:00:00.0" + When +
                                 (Text[0] == 's'   ? "\tstation\t"
                                  : Text[0] == 'r' ? "\tRG80\t"
                                                   : "\tport\t") +
                                 Text.substr(1) + "\n";
    std::istringstream Written(Trace);
    Heard Heard;
    Rejeu Replay(LireTrace(Written, "f"), Heard, Row.OtherBase);
    const Instant Begin{};
    // The station speaks every 100 ms, then no more.
    for (std::string Turn; Heard.Now < 200000 && !Replay.MomentDeFin(); ++Heard.Now) {
      const Instant Moment = Begin + Heard.Now * 1ms;
      if (Heard.Now % 100 == 0 && Turns >> Turn) Replay.Recevoir(Bytes(Turn), Moment);
      Replay.Avancer(Moment);
    }
    EXPECT_EQ(Replay.Terminer(), Row.Told.ends_with("différences 0"));
    EXPECT_EQ(Heard.Said, Row.Said);
    std::istringstream Told(Row.Told);
    for (std::string Sentence; std::getline(Told, Sentence, '|');)
      EXPECT_NE(Heard.Told.find(Sentence + "\n"), std::string::npos) << Heard.Told;
  }
}

}  // namespace Rg80
