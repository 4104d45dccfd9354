// The terminal's dialogue by tables: what goes in, what must come out, at which moment.
#include "terminal/engine.h"

#include <gtest/gtest.h>

#include <array>
#include <regex>
#include <sstream>
#include <utility>

#include "tests/terminal/bytes.h"

namespace Rg80 {

using namespace std::chrono_literals;

// Two records, and a reply whose 24 digits add up to 1197; the checksum characters were added up by hand.
const std::string Load12 = "0012190908083009150001230004560071000000050112521234007";
const std::string Load13 = "0013190908083009150001230004560071000000050112521234007";
const std::string Frame12 = "<STX>" + Load12 + "<ETX><;";
const std::string ReplyFrame = "<STX>000000000123000456000789<ETX>;2";

struct Bench : ISuite {
  explicit Bench(const std::string& Lines, bool Files = false, const TauxDePannes& Rates = {}, unsigned Seed = 1)
      : Records(Lines), Dice(Seed, Rates), Engine(LireChargements(Records, "test"), Files, Dice, *this) {}
  void Émettre(std::string_view Octets) override { Out += Octets; }
  void Consigner(Sens, std::string_view) override {}
  void Annoncer(const std::string& Texte) override { Said += Texte + '\n'; }
  bool GarderRéponse(std::string_view) override { return !DiskFull; }
  bool GarderFichier(char, std::string_view) override { return true; }
  void In(const std::string& Text) { Engine.Recevoir(Bytes(Text), Now); }
  // Wakes the engine at each of its deadlines, as the loop does.
  void Wait(std::chrono::milliseconds Span) {
    const Instant End = Now + Span;
    for (auto Due = Engine.ProchaineÉchéance(); Due && *Due <= End; Due = Engine.ProchaineÉchéance()) {
      Now = std::max(Now, *Due);
      Engine.Avancer(Now);
    }
    Now = End;
  }
  std::string TakeOut() { return Lisible(std::exchange(Out, {})); }

  std::istringstream Records;
  std::string Out, Said;
  bool DiskFull = false;
  Hasard Dice;
  Instant Now{};
  Terminal Engine;
};

const std::string Answer12 = "out <ACK>A" + Frame12 + " ";
const std::string Answer13 = "out <ACK>A<STX>" + Load13 + "<ETX><< ";
const std::string Offer12 = "in <ENQ>A " + Answer12;
const std::string Taken12 = Offer12 + "in <ACK> ";
const std::string Empty = "in <ENQ>A out <NAK>A ";
const std::string Ready = "in <ENQ>8 out <ACK>8 ";
std::string Times(int Count, const std::string& Text) { return Count == 0 ? "" : Text + Times(Count - 1, Text); }
const std::string Groups = "007" + std::string(163, 'x');

struct Dialogue {
  const char* Name;
  std::string Lines;    // the loads file
  std::string Steps;    // "in" bytes, "out" all bytes since the last look or "-", "wait" milliseconds
  std::string Figures;  // envoyés, acquittés, refusés, sans réponse, réponses, fichiers
  bool Files = false;   // file reception is on
};

// The text a, ETX, bc adds up to 302 in its frame, of which the low eight bits are 46.
// clang-format off
const Dialogue Dialogues[] = {
    {"acknowledged", Load12 + "\n" + Load13, Taken12 + "in <ENQ>A " + Answer13 + "in <ACK> " + Empty, "220000"},
    {"refused", Load12, Offer12 + "in <NAK> " + Taken12 + Empty, "211000"},
    {"ten seconds of silence, a late ACK", Load12, Offer12 + "wait 10000 in <ACK> wait 1000 " + Taken12, "210100"},
    {"a request in place of an answer", Load12, Offer12 + Offer12 + Ready, "200200"},
    {"noise ahead of ACK", Load12, Offer12 + "in xy<EOT><ACK> " + Empty, "110000"},
    {"a lost code", Load12, "in <ENQ> wait 2000 in A", "000000"},
    {"an unknown request", "", "in <ENQ>Z out <NAK>Z", "000000"},
    {"nak once", "!nak " + Load12, Empty + Taken12, "110000"},
    {"late once", "!retard " + Load12, "in <ENQ>A wait 2499 out - wait 1 " + Answer12 + "in <ACK>", "110000"},
    {"late, and behind the next request", "!retard " + Load12, "in <ENQ>A wait 2000 " + Ready + "wait 500 " + Answer12,
     "100100"},
    {"late behind its own acknowledgement", "!retard " + Load12, "in <ENQ>A wait 2000 " + Taken12 + "wait 500 " + Answer12 +
     "in <ACK> " + Empty, "210000"},
    {"busy, and asked for more than it holds", "!occupe " + Load12 + "\n" + Load13, "in <ENQ>A wait 9999 in <ENQ>8" +
     Times(63, "<ENQ>A") + " out - wait 120001 out <ACK>A" + Frame12 + "<ACK>8" + Times(62, "<ACK>A" + Frame12) + " ",
     "63006300"},
    {"ACK lost once", "!ack-perdu " + Load12, Taken12 + Taken12 + Empty, "210100"},
    {"a reply", "", Ready + "in ??" + ReplyFrame + " out <ACK> in <EOT> " + Empty, "000010"},
    {"wrong sum", "", Ready + "in <STX>000000<ETX>;3 wait 999 out - wait 1 out <NAK>", "000000"},
    {"cut short", "", Ready + "in <STX>12 wait 1000 out <NAK> " + Ready + "in " + ReplyFrame + " out <ACK>", "000010"},
    {"ETX within the text", "", Ready + "in <STX>a<ETX>bc<ETX>2> out <ACK>", "000010"},
    {"unannounced", "", "in " + ReplyFrame + " wait 2000", "000000"},
    {"no files now", "", "in <ENQ>1 out <NAK>1 in <ENQ>6 out <NAK>6", "000000"},
    {"whole records", "", "in <ENQ>2 out <ACK>2 in " + Lisible(Encadrer(Groups)) + " out <ACK>", "000001", true},
    {"cut amiss", "", "in <ENQ>2 out <ACK>2 in " + Lisible(Encadrer(Groups + "x")) + " out <NAK>", "000000", true},
};
// clang-format on

TEST(Engine, HoldsTheDialogue) {
  for (const Dialogue& Case : Dialogues) {
    SCOPED_TRACE(Case.Name);
    Bench Table(Case.Lines, Case.Files);
    std::istringstream Steps(Case.Steps + " out -");
    for (std::string Verb, Rest; Steps >> Verb >> Rest;) {
      if (Verb == "in") Table.In(Rest);
      if (Verb == "wait") Table.Wait(std::chrono::milliseconds(std::stoi(Rest)));
      if (Verb == "out") {
        EXPECT_EQ(Table.TakeOut(), Rest == "-" ? "" : Rest) << Table.Said;
      }
    }
    const Bilan Sum = Table.Engine.Terminer();
    std::string Figures;
    for (const auto Figure : {Sum.Envoyés, Sum.Acquittés, Sum.Refusés, Sum.SansRéponse, Sum.Réponses, Sum.Fichiers})
      Figures += std::to_string(Figure);
    EXPECT_EQ(Figures, Case.Figures) << Table.Said;
  }
}

TEST(Engine, AcknowledgesWhatItCouldKeep) {
  Bench Table("", true);
  Table.In("<ENQ>1" + Encadrer(std::string(std::size_t{41} * 110000, 'x')));
  Table.Wait(1000ms);
  EXPECT_EQ(Table.TakeOut(), "<ACK>1<NAK>") << "beyond all measure";
  Table.DiskFull = true;
  Table.In("<ENQ>8" + ReplyFrame);
  EXPECT_EQ(Table.TakeOut(), "<ACK>8<NAK>");
}

// A fault that is certain, on each side of the dialogue: what comes out of ENQ "A", of ENQ "8" and of a frame.
TEST(Engine, ShowsEachFaultOnBothSides) {
  const std::string Noise = "[^<STX><ETX><EOT><ENQ><ACK><NAK>]{1,8}", Whole = "<ACK>A" + Frame12;
  // clang-format off
  const std::tuple<Panne, std::array<std::string, 3>, unsigned> Rows[] = {  // regular expressions, replies kept
      {Panne::Silence, {"", "", ""}, 0}, {Panne::Nak, {"<NAK>A", "<NAK>8", ""}, 0},
      {Panne::Checksum, {"<ACK>A<STX>" + Load12 + "<ETX><0", "<ACK>8", "<NAK>"}, 0},
      {Panne::Bruit, {"<ACK>A" + Noise + Frame12, Noise + "<ACK>8", Noise + "<ACK>"}, 1},
      {Panne::Coupe, {"<ACK>A<STX>[0-9]*(<ETX><?)?", "<ACK>8", "<ACK>"}, 1},
      {Panne::Retard, {Whole, "<ACK>8", "<ACK>"}, 1}, {Panne::AckPerdu, {Whole, "<ACK>8", ""}, 1},
  };
  // clang-format on
  for (const auto& [Fault, Expected, Kept] : Rows) {
    TauxDePannes Rates{};
    Rates[static_cast<std::size_t>(Fault)] = 1;
    for (unsigned Seed = 1; Seed <= 40; ++Seed) {
      Bench Table(Load12, false, Rates, Seed);
      for (std::size_t Step = 0; Step < 3; ++Step) {
        Table.In(std::array<std::string, 3>{"<ENQ>A", "<ENQ>8", ReplyFrame}[Step]);
        Table.Wait(3000ms);
        const std::string Came = std::exchange(Table.Out, {});
        EXPECT_TRUE(std::regex_match(Came, std::regex(Bytes(Expected[Step])))) << Expected[Step] << Lisible(Came);
      }
      EXPECT_EQ(Table.Engine.Terminer().Réponses, Kept);
    }
  }
}

}  // namespace Rg80
