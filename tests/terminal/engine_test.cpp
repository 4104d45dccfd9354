// The terminal's dialogue by tables: what goes in, what must come out, at which moment.
#include "terminal/engine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "terminal/frame.h"

namespace Rg80 {
namespace {

using namespace std::chrono_literals;

// Two records and their frames; the checksum characters were added up by hand.
const std::string Load12 = "0012190908083009150001230004560071000000050112521234007";
const std::string Load13 = "0013190908083009150001230004560071000000050112521234007";
const std::string Frame12 = "<STX>" + Load12 + "<ETX><;";
const std::string Frame13 = "<STX>" + Load13 + "<ETX><<";
const std::string Answer12 = "out <ACK>A" + Frame12;
const std::string Answer13 = "out <ACK>A" + Frame13;
// 24 digits that add up to 1197; with STX and ETX 1202, of which the low eight bits are 178.
const std::string Reply = "000000000123000456000789";
const std::string ReplyFrame = "<STX>" + Reply + "<ETX>;2";

std::string Bytes(std::string Text) {
  for (const NomDeContrôle& Named : NomsDeContrôle) {
    const std::string Name = "<" + std::string(Named.Nom) + ">";
    for (auto At = Text.find(Name); At != std::string::npos; At = Text.find(Name)) {
      Text.replace(At, Name.size(), 1, Named.Code);
    }
  }
  return Text;
}

struct Witness : ISuite {
  void Émettre(std::string_view Octets) override { Out += Octets; }
  void Consigner(Sens, std::string_view) override {}
  void Annoncer(const std::string& Texte) override { Said += Texte + '\n'; }
  bool GarderRéponse(std::string_view Texte) override {
    if (!DiskFull) Replies.emplace_back(Texte);
    return !DiskFull;
  }
  bool GarderFichier(char Code, std::string_view Texte) override {
    Files[Code] = Texte;
    return true;
  }
  std::string Out, Said;
  std::vector<std::string> Replies;
  std::map<char, std::string> Files;
  bool DiskFull = false;
};

std::vector<Chargement> Loads(const std::string& Lines) {
  std::istringstream Stream(Lines);
  return LireChargements(Stream, "test");
}

struct Bench {
  explicit Bench(const std::string& Lines, bool Files = false, const TauxDePannes& Rates = {}, unsigned Seed = 1)
      : Dice(Seed, Rates), Engine(Loads(Lines), Files, Dice, World) {}
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
  std::string TakeOut() { return Lisible(std::exchange(World.Out, {})); }

  Witness World;
  Hasard Dice;
  Instant Now{};
  Terminal Engine;
};

// A step is "in <bytes>", "out <bytes>" (all that came out since the last look) or "wait <milliseconds>"; several
// in one text are divided by " | ". "f6" ahead of all: file reception is on.
struct Dialogue {
  const char* Name;
  std::string Lines;  // the loads file
  std::vector<std::string> Steps;
  std::string Figures;  // envoyés, acquittés, refusés, sans réponse, réponses, fichiers
};

void Do(Bench& Table, const std::string& Steps) {
  const std::string Divider = " | ";
  for (std::size_t At = 0, End = 0; At < Steps.size(); At = End + Divider.size()) {
    End = std::min(Steps.find(Divider, At), Steps.size());
    const std::string Step = Steps.substr(At, End - At);
    const std::string Rest = Step.substr(Step.find(' ') + 1);
    if (Step.starts_with("in ")) Table.In(Rest);
    if (Step.starts_with("wait ")) Table.Wait(std::chrono::milliseconds(std::stoi(Rest)));
    if (Step.starts_with("out ")) {
      EXPECT_EQ(Table.TakeOut(), Rest) << Table.World.Said;
    }
  }
}

void Play(const Dialogue& Case) {
  SCOPED_TRACE(Case.Name);
  Bench Table(Case.Lines, Case.Steps.front() == "f6");
  for (const std::string& Steps : Case.Steps) Do(Table, Steps);
  EXPECT_EQ(Table.TakeOut(), "");
  const Bilan Sum = Table.Engine.Terminer();
  std::ostringstream Figures;
  Figures << Sum.Envoyés << Sum.Acquittés << Sum.Refusés << Sum.SansRéponse << Sum.Réponses << Sum.Fichiers;
  EXPECT_EQ(Figures.str(), Case.Figures) << Table.World.Said;
}

const std::string Offer12 = "in <ENQ>A | " + Answer12;
const std::string Taken12 = Offer12 + " | in <ACK>";
const std::string Empty = "in <ENQ>A | out <NAK>A";
const std::string Wrong12 = "out <ACK>A<STX>" + Load12 + "<ETX><0";

TEST(Queue, IsEmptiedByAcknowledgementsAlone) {
  const std::vector<Dialogue> Cases{
      {"no load", "", {"in <ENQ>A | out <NAK>A"}, "000000"},
      {"acknowledged", Load12 + "\n" + Load13, {Taken12, "in <ENQ>A", Answer13, "in <ACK>", Empty}, "220000"},
      {"refused", Load12, {Offer12, "in <NAK>", Taken12, Empty}, "211000"},
      {"ten seconds of silence, then a late ACK",
       Load12,
       {Offer12, "wait 10000 | in <ACK> | wait 1000", Taken12},
       "210100"},
      {"a request in place of an answer", Load12, {Offer12, Offer12, "in <ENQ>8 | out <ACK>8"}, "200200"},
      {"noise ahead of ACK", Load12, {Offer12, "in xy<EOT><ACK>", Empty}, "110000"},
      {"still waiting at the end", Load12, {Offer12}, "100100"},
      {"a lost code", Load12, {"in <ENQ> | wait 2000 | in A"}, "000000"},
      {"a doubled ENQ", "", {"in <ENQ>", Empty}, "000000"},
      {"an unknown request", "", {"in <ENQ>Z | out <NAK>Z"}, "000000"}};
  for (const Dialogue& Case : Cases) Play(Case);
}

TEST(Faults, OfALoadsFileShowAtTheFirstOfferingOnly) {
  const std::vector<Dialogue> Cases{
      {"silence", "!silence " + Load12, {"in <ENQ>A | wait 9000", Taken12}, "110000"},
      {"nak", "!nak " + Load12, {Empty, Taken12}, "110000"},
      {"checksum", "!checksum " + Load12, {"in <ENQ>A", Wrong12, "in <NAK>", Taken12}, "211000"},
      {"retard", "!retard " + Load12, {"in <ENQ>A | wait 2499 | out  | wait 1", Answer12, "in <ACK>"}, "110000"},
      {"a late answer is dropped for the next request",
       "!retard " + Load12,
       {"in <ENQ>A | wait 2000 | in <ENQ>8 | out <ACK>8 | wait 3000"},
       "000000"},
      {"ack-perdu", "!ack-perdu " + Load12, {Taken12, Taken12, Empty}, "210100"},
      {"two", "!retard !checksum " + Load12, {"in <ENQ>A | wait 2500", Wrong12}, "100100"}};
  for (const Dialogue& Case : Cases) Play(Case);
}

TEST(Frames, AreJudgedByTheirChecksumAndAnswered) {
  const std::string Ready = "in <ENQ>8 | out <ACK>8";
  // The text a, ETX, bc adds up to 302 in its frame, of which the low eight bits are 46.
  const std::vector<Dialogue> Cases{
      {"a bare link test", Load12, {Ready, Taken12}, "110000"},
      {"a reply", "", {Ready, "in " + ReplyFrame, "out <ACK> | in <EOT>", Empty}, "000010"},
      {"noise ahead", "", {Ready, "in ??" + ReplyFrame, "out <ACK>"}, "000010"},
      {"a wrong checksum", "", {Ready, "in <STX>000000<ETX>;3 | wait 999 | out  | wait 1 | out <NAK>"}, "000000"},
      {"cut short",
       "",
       {Ready, "in <STX>123 | wait 1000 | out <NAK>", Ready, "in " + ReplyFrame, "out <ACK>"},
       "000010"},
      {"ETX within the text", "", {Ready, "in <STX>a<ETX>bc<ETX>2> | out <ACK>"}, "000010"},
      {"unannounced", "", {"in " + ReplyFrame, "wait 2000"}, "000000"}};
  for (const Dialogue& Case : Cases) Play(Case);
}

TEST(Files, AreTakenInFileReceptionOnlyAndInWholeRecords) {
  const std::string Group = "007" + std::string(80, 'x');
  const std::string Ready = "in <ENQ>2 | out <ACK>2";
  const std::vector<Dialogue> Cases{
      {"out of file reception",
       "",
       {"in <ENQ>1 | out <NAK>1 | in <ENQ>2 | out <NAK>2 | in <ENQ>4 | out <NAK>4",
        "in <ENQ>5 | out <NAK>5 | in <ENQ>6 | out <NAK>6"},
       "000000"},
      {"whole records", "", {"f6", Ready, "in " + Lisible(Encadrer(Group + Group)), "out <ACK> | in <EOT>"}, "000001"},
      {"a byte too many", "", {"f6", Ready, "in " + Lisible(Encadrer(Group + "x")), "out <NAK>"}, "000000"}};
  for (const Dialogue& Case : Cases) Play(Case);
}

TEST(Files, KeepTheirBytesAndAreCutByTheirRecordLength) {
  for (const FichierConnu& Known : FichiersConnus) {
    Bench Table("", true);
    const std::string Text(Known.LongueurEnregistrement * 3000, '\xE9');
    Table.In(std::string("<ENQ>") + Known.Code);
    Table.In(Encadrer(Text));
    EXPECT_TRUE(Table.World.Files[Known.Code] == Text) << Known.Nom;
    EXPECT_NE(Table.World.Said.find("enregistrements : 3000"), std::string::npos) << Known.Nom;
  }
}

TEST(Files, BeyondAllMeasureAreRefused) {
  Bench Table("", true);
  Table.In("<ENQ>1");
  Table.In(Encadrer(std::string(std::size_t{41} * 200000, 'x')));
  Table.Wait(1000ms);
  EXPECT_EQ(Table.TakeOut(), "<ACK>1<NAK>");
  EXPECT_TRUE(Table.World.Files.empty());
}

TEST(Replies, ThatCouldNotBeKeptAreNotAcknowledged) {
  Bench Table("");
  Table.World.DiskFull = true;
  Table.In("<ENQ>8");
  Table.In(ReplyFrame);
  EXPECT_EQ(Table.TakeOut(), "<ACK>8<NAK>");
}

// A fault that is certain, on each side of the dialogue: what comes out of ENQ "A", of ENQ "8" and of the frame
// behind it. "?" stands for one to eight bytes of noise, "…" for the rest of the frame cut off.
TEST(Faults, ShowOnBothSidesOfTheDialogue) {
  struct Row {
    Panne Fault;
    std::string Load, Request, Frame;
    std::size_t Kept;
  };
  const std::vector<Row> Rows{{Panne::Silence, "", "", "", 0},
                              {Panne::Nak, "<NAK>A", "<NAK>8", "", 0},
                              {Panne::Checksum, "<ACK>A<STX>" + Load12 + "<ETX><0", "<ACK>8", "<NAK>", 0},
                              {Panne::Bruit, "<ACK>A?" + Frame12, "?<ACK>8", "?<ACK>", 1},
                              {Panne::Coupe, "<ACK>A…", "<ACK>8", "<ACK>", 1},
                              {Panne::Retard, Answer12.substr(4), "<ACK>8", "<ACK>", 1},
                              {Panne::AckPerdu, Answer12.substr(4), "<ACK>8", "", 1}};
  const auto Matches = [](const std::string& Out, const std::string& Pattern) {
    if (Pattern.ends_with("…")) return Out.size() < 2 + 59 && ("<ACK>A" + Frame12).starts_with(Lisible(Out));
    const auto Noise = Pattern.find('?');
    if (Noise == std::string::npos) return Lisible(Out) == Pattern;
    const std::string Head = Bytes(Pattern.substr(0, Noise));
    const std::string Tail = Bytes(Pattern.substr(Noise + 1));
    if (!Out.starts_with(Head) || !Out.ends_with(Tail) || Out.size() <= Head.size() + Tail.size()) return false;
    const std::string Middle = Out.substr(Head.size(), Out.size() - Head.size() - Tail.size());
    return Middle.size() <= 8 && Middle.find_first_of(Bytes("<STX><ETX><EOT><ENQ><ACK><NAK>")) == std::string::npos;
  };
  for (const Row& Case : Rows) {
    TauxDePannes Rates{};
    Rates[static_cast<std::size_t>(Case.Fault)] = 1;
    for (unsigned Seed = 1; Seed <= 40; ++Seed) {
      Bench Table(Load12, false, Rates, Seed);
      for (const auto& [In, Out] :
           {std::pair{std::string("<ENQ>A"), Case.Load}, {"<ENQ>8", Case.Request}, {ReplyFrame, Case.Frame}}) {
        Table.In(In);
        Table.Wait(3000ms);
        const std::string Came = std::exchange(Table.World.Out, {});
        EXPECT_TRUE(Matches(Came, Out)) << "fault " << static_cast<int>(Case.Fault) << ", seed " << Seed << ": "
                                        << Lisible(Came);
      }
      EXPECT_EQ(Table.World.Replies.size(), Case.Kept);
    }
  }
}

// Whatever the faults, a load that the other side keeps under its number arrives, and none is lost.
TEST(Faults, LoseNoLoad) {
  TauxDePannes Rates;
  Rates.fill(0.15);
  Bench Table(Load12 + "\n" + Load13, false, Rates, 7);
  std::vector<std::string> Acknowledged;
  for (int Poll = 0; Poll < 200; ++Poll) {
    Table.In("<ENQ>A");
    Table.Wait(2000ms);
    const std::string Came = Table.TakeOut();
    for (const std::string& Frame : {Frame12, Frame13}) {
      if (!Came.ends_with(Frame)) continue;
      Acknowledged.push_back(Frame);
      Table.In("<ACK>");
    }
    Table.Wait(500ms);
  }
  ASSERT_GE(Acknowledged.size(), 2U);
  EXPECT_EQ(Acknowledged.front(), Frame12);
  EXPECT_EQ(Acknowledged.back(), Frame13);
  const Bilan Sum = Table.Engine.Terminer();
  EXPECT_EQ(Sum.Acquittés, 2U);
  EXPECT_EQ(Sum.Envoyés, Sum.Acquittés + Sum.Refusés + Sum.SansRéponse);
}

TEST(End, ComesWithTheLastReplyOrFiveSecondsBehindTheLastLoad) {
  Bench Table(Load12 + "\n" + Load13);
  Table.In("<ENQ>A<ACK><ENQ>8");
  Table.In(ReplyFrame);
  Table.In("<EOT>");
  EXPECT_FALSE(Table.Engine.MomentDeFin()) << "a load waits";
  Table.In("<ENQ>A<ACK><EOT>");
  EXPECT_EQ(Table.Engine.MomentDeFin(), Table.Now + 5s) << "the earlier reply is not this load's";
  Table.Wait(100ms);
  Table.In("<ENQ>8");
  Table.In(ReplyFrame);
  EXPECT_GT(*Table.Engine.MomentDeFin(), Table.Now) << "the EOT is still to come";
  Table.In("<EOT>");
  EXPECT_EQ(Table.Engine.MomentDeFin(), Table.Now);
}

}  // namespace
}  // namespace Rg80
