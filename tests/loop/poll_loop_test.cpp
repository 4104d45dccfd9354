// The poll loop, the timer on it, and the signals that end a program.
#include "platform/loop/poll_loop.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <optional>
#include <string>
#include <vector>

#include "platform/loop/descriptor.h"
#include "platform/loop/signals.h"
#include "platform/loop/timer.h"

namespace Ombrey {
namespace {

using namespace std::chrono_literals;
using Horloge = std::chrono::steady_clock;

struct Tube {
  Tube() {
    int Bouts[2] = {-1, -1};
    if (pipe(Bouts) != 0) throw std::runtime_error("pipe");
    Lecture = Descripteur(Bouts[0]);
    Ecriture = Descripteur(Bouts[1]);
  }
  void Mettre() const { ASSERT_EQ(write(Ecriture.Numéro(), "x", 1), 1); }
  void Prendre() const {
    char C = 0;
    ASSERT_EQ(read(Lecture.Numéro(), &C, 1), 1);
  }
  Descripteur Lecture;
  Descripteur Ecriture;
};

TEST(BouclePoll, RunsOneEventAtATimeInTheOrderOfTheirTimes) {
  BouclePoll Boucle;
  std::string Trace;
  const auto B = Boucle.Après(2ms, [&] { Trace += 'b'; });
  const auto A = Boucle.Après(0ms, [&] { Trace += 'a'; });
  const auto C = Boucle.Après(2ms, [&] { Trace += 'c'; });
  EXPECT_TRUE(Trace.empty());
  EXPECT_TRUE(Boucle.Pomper(0ms));
  EXPECT_EQ(Trace, "a");
  EXPECT_TRUE(Boucle.Pomper(1s));
  EXPECT_TRUE(Boucle.Pomper(1s));
  EXPECT_EQ(Trace, "abc");
  EXPECT_FALSE(Boucle.Pomper(-5ms));
}

TEST(BouclePoll, AnEmptyWaitLastsItsTimeAndAnEventEndsItAtOnce) {
  BouclePoll Boucle;
  auto Début = Horloge::now();
  EXPECT_FALSE(Boucle.Pomper(20ms));
  EXPECT_GE(Horloge::now() - Début, 20ms);
  const Tube T;
  const auto Veille = Boucle.Surveiller(T.Lecture.Numéro(), IBoucle::Attente::Lecture, [&] { T.Prendre(); });
  T.Mettre();
  Début = Horloge::now();
  EXPECT_TRUE(Boucle.Pomper(std::chrono::milliseconds::max()));
  EXPECT_LT(Horloge::now() - Début, 1s);
}

TEST(BouclePoll, BusyDescriptorsAndEndlessDelaysAllGetTheirTurn) {
  BouclePoll Boucle;
  const Tube Un;
  const Tube Deux;
  Un.Mettre();
  Deux.Mettre();
  int ServisUn = 0;
  int ServisDeux = 0;
  int ServisDélai = 0;
  const auto A = Boucle.Surveiller(Un.Lecture.Numéro(), IBoucle::Attente::Lecture, [&] { ++ServisUn; });
  const auto B = Boucle.Surveiller(Deux.Lecture.Numéro(), IBoucle::Attente::Lecture, [&] { ++ServisDeux; });
  IBoucle::Jeton Suite;
  const std::function<void()> Encore = [&] {
    ++ServisDélai;
    Suite = Boucle.Après(0ms, Encore);
  };
  Suite = Boucle.Après(0ms, Encore);
  for (int I = 0; I < 40; ++I) ASSERT_TRUE(Boucle.Pomper(0ms));
  EXPECT_EQ(ServisDélai, 20);
  EXPECT_EQ(ServisUn, 10);
  EXPECT_EQ(ServisDeux, 10);
}

TEST(BouclePoll, AnActionMayDropItsOwnTokenAndOthersAndPump) {
  BouclePoll Boucle;
  const Tube T;
  T.Mettre();
  int Appels = 0;
  IBoucle::Jeton Autre = Boucle.Après(0ms, [&] { ADD_FAILURE() << "was dropped"; });
  IBoucle::Jeton Veille;
  // What the closure owns must outlive the token while the action runs.
  const auto Bien = std::make_shared<std::string>("tenu");
  Veille = Boucle.Surveiller(T.Lecture.Numéro(), IBoucle::Attente::Lecture, [&, Mien = Bien] {
    ++Appels;
    Veille.reset();
    Autre.reset();
    EXPECT_FALSE(Boucle.Pomper(0ms));
    EXPECT_EQ(*Mien, "tenu");
  });
  Autre.reset();
  Autre = Boucle.Après(1h, [] {});
  EXPECT_TRUE(Boucle.Pomper(0ms));
  EXPECT_EQ(Appels, 1);
  EXPECT_FALSE(Boucle.Pomper(0ms));
  EXPECT_EQ(Bien.use_count(), 1) << "a dropped watch must let go of what it holds";
}

TEST(BouclePoll, StaysUsableWhenAnActionRaisesAndWhenTokensOutliveIt) {
  IBoucle::Jeton Tardif;
  {
    BouclePoll Boucle;
    const auto Lève = Boucle.Après(0ms, [] { throw std::runtime_error("non"); });
    int Appels = 0;
    const auto Suivant = Boucle.Après(0ms, [&] { ++Appels; });
    EXPECT_THROW(Boucle.Pomper(0ms), std::runtime_error);
    EXPECT_TRUE(Boucle.Pomper(0ms));
    EXPECT_EQ(Appels, 1);
    Tardif = Boucle.Après(0ms, [] {});
  }
  Tardif.reset();
}

TEST(RetardBoucle, ComesOnceWithItsCodeAndANewStartReplacesTheRunningOne) {
  BouclePoll Boucle;
  std::vector<std::string> Codes;
  RetardBoucle Retard(Boucle, [&](const std::string& Code) { Codes.push_back(Code); });
  Retard.Démarrer(1, "ancien");
  Retard.Démarrer(-1, "nouveau");
  EXPECT_TRUE(Boucle.Pomper(1s));
  EXPECT_FALSE(Boucle.Pomper(5ms));
  Retard.Démarrer(0, "arrêté");
  Retard.Arrêter();
  EXPECT_FALSE(Boucle.Pomper(5ms));
  EXPECT_EQ(Codes, (std::vector<std::string>{"nouveau"}));
}

TEST(RetardBoucle, MayBeStartedAgainAndDroppedWithinItsOwnEvent) {
  BouclePoll Boucle;
  std::string Trace;
  std::unique_ptr<IRetard> Retard;
  const std::string Témoin(100, 'x');
  Retard = std::make_unique<RetardBoucle>(Boucle, [&, Témoin](const std::string& Code) {
    Trace += Code;
    if (Trace.size() < 3) {
      Retard->Démarrer(0, "b");
      return;
    }
    Retard.reset();
    EXPECT_EQ(Témoin.size(), 100U);
    EXPECT_EQ(Code, "b");
  });
  Retard->Démarrer(0, "a");
  while (Boucle.Pomper(0ms)) {
  }
  EXPECT_EQ(Trace, "abb");
}

TEST(SignauxFin, TurnSignalsIntoEventsAndGiveThemBack) {
  BouclePoll Boucle;
  int Demandes = 0;
  {
    const SignauxFin Signaux(Boucle, [&] { ++Demandes; });
    ASSERT_EQ(raise(SIGTERM), 0);
    ASSERT_EQ(raise(SIGINT), 0);
    EXPECT_EQ(Demandes, 0);
    while (Boucle.Pomper(0ms)) {
    }
  }
  EXPECT_EQ(Demandes, 2);
  struct sigaction Après {};
  sigaction(SIGTERM, nullptr, &Après);
  EXPECT_EQ(Après.sa_handler, SIG_DFL);
}

}  // namespace
}  // namespace Ombrey
