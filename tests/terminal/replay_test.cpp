// A trace read back and said again.
#include "terminal/replay.h"

#include <gtest/gtest.h>

#include <sstream>

#include "terminal/frame.h"
#include "terminal/loads.h"

namespace Rg80 {
namespace {

using namespace std::chrono_literals;

TEST(Trace, NamesTheLineThatIsNone) {
  const std::string Head = "# Trace de la liaison avec le RG80, forme 1, le 2026-11-22\n",
                    Poll = "\tstation\t<ENQ>A\t\n";
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
    try {
      const auto Read = LireTrace(Stream, "f");
      ASSERT_EQ(Read.size(), 2U);
      EXPECT_EQ(Read[1].Quand - Read[0].Quand, 200ms);
      EXPECT_EQ(Message, "");
    } catch (const ErreurDemande& Error) {
      EXPECT_EQ(Error.what(), Message);
    }
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

TEST(Replay, AnswersAtTheSameDistanceAndTellsWhereTheStationSaysOtherwise) {
  // One poll in vain, a load with its reply, a file that the operator sends, a last poll.
  const std::vector<std::string> Recorded = {"00 s\5A",
                                             "01 r\x15"
                                             "A",
                                             "20 s\5A",
                                             "21 r\6A",
                                             "23 r\x02"
                                             "L\3xx",
                                             "24 s\6",
                                             "25 s\5"
                                             "8",
                                             "26 r\6"
                                             "8",
                                             "27 s\x02"
                                             "F\3yy",
                                             "28 r\6",
                                             "29 s\4",
                                             "30 s\5A",
                                             "31 r\x15"
                                             "A",
                                             "40 s\5"
                                             "4",
                                             "45 r\x15"
                                             "4",
                                             "60 s\5A"};
  const std::string Poll = "\5A", Load = "\6",
                    Reply =
                        "\5"
                        "8",
                    Figures =
                        "\x02"
                        "F\3yy";
  struct Row {
    std::vector<std::string> Station;
    std::string Said, Told;  ///< what the terminal says when, and the announcements' ends
  };
  const Row Rows[] = {
      {{Poll, Poll, Load, Reply, Figures, "\4", Poll,
        "\5"
        "4",
        Poll},
       "<NAK>A@1 <ACK>A@101 <STX>L<ETX>xx@103 <ACK>8@301 <ACK>@401 <NAK>A@601 <NAK>4@705 ",
       "messages de la station 9, différences 0"},
      // Polls more and fewer, a message in pieces.
      {{Poll, Poll, Load, "\5", "8", Figures, "\4",
        "\5"
        "4",
        Poll},
       "<NAK>A@1 <ACK>A@101 <STX>L<ETX>xx@103 <ACK>8@401 <ACK>@501 <NAK>4@705 ",
       "messages de la station 8, différences 0"},
      {{Poll, Poll, Load, Reply, Figures, "\4", Poll, Poll, Poll,
        "\5"
        "4",
        Poll},
       "<NAK>A@1 <ACK>A@101 <STX>L<ETX>xx@103 <ACK>8@301 <ACK>@401 <NAK>A@601 <NAK>A@700 <NAK>A@800 <NAK>4@905 ",
       "messages de la station 11, différences 0"},
      // Refused then, other figures then, a link test that wasn't.
      {{Poll, Poll, "\x15", Poll,
        "\5"
        "4",
        Poll},
       "<NAK>A@1 <ACK>A@101 <STX>L<ETX>xx@103 <NAK>A@301 <NAK>4@405 ",
       "messages de la station 6, différences 2"},
      {{Poll, Poll, Load, Reply,
        "\x02"
        "G\3zz",
        "\4",
        "\5"
        "1",
        "\x02"
        "X\3xx",
        "\4",
        "\5"
        "4",
        Poll},
       "<NAK>A@1 <ACK>A@101 <STX>L<ETX>xx@103 <ACK>8@301 <ACK>@401 <ACK>1@600 <ACK>@700 <NAK>4@905 ",
       "« <STX>G<ETX>zz » au lieu de « <STX>F<ETX>yy ».|« <ENQ>1 » au lieu de « <ENQ>A ».|station 11, différences 2"},
      {{Poll}, "<NAK>A@1 ", "(ligne 2 de la trace) : la station ne dit plus « <ENQ>A ».|station 1, différences 1"},
  };
  for (const Row& Row : Rows) {
    std::vector<MessageTracé> Messages;
    for (const std::string& One : Recorded) {
      const std::chrono::milliseconds When(std::stoi(One));
      Messages.push_back({One[3] == 's', One.substr(4), When, "h", Messages.size()});
    }
    Heard Heard;
    Rejeu Replay(Messages, Heard);
    const Instant Begin{};
    // The station speaks every 100 ms, then no more.
    for (long Ms = 0; Ms < 200000 && !Replay.MomentDeFin(); ++Ms) {
      Heard.Now = Ms;
      const auto Turn = static_cast<std::size_t>(Ms / 100);
      if (Ms % 100 == 0 && Turn < Row.Station.size()) Replay.Recevoir(Row.Station[Turn], Begin + Ms * 1ms);
      Replay.Avancer(Begin + Ms * 1ms);
    }
    EXPECT_EQ(Replay.Terminer(), Row.Told.ends_with("différences 0"));
    EXPECT_EQ(Heard.Said, Row.Said);
    std::istringstream Told(Row.Told);
    for (std::string Part; std::getline(Told, Part, '|');)
      EXPECT_NE(Heard.Told.find(Part + "\n"), std::string::npos) << Heard.Told;
  }
}

}  // namespace
}  // namespace Rg80
