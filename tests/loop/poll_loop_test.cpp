// The poll loop and the timer on it.
#include "platform/loop/poll_loop.h"

#include <gtest/gtest.h>
#include <sys/eventfd.h>

#include "platform/loop/descriptor.h"
#include "platform/loop/timer.h"

namespace Ombrey {

using namespace std::chrono_literals;

struct Pompe : testing::Test {
  IBoucle::Jeton Surveiller(IBoucle::Action Faire) {
    return Boucle.Surveiller(Prêt.Numéro(), IBoucle::Sens::Entrée, std::move(Faire));
  }
  void Vider() {
    while (Boucle.Pomper(5ms)) continue;
  }
  Descripteur Prêt{eventfd(1, EFD_CLOEXEC)};  ///< there is always something to read
  IBoucle::Jeton Tardif;                      ///< goes after the loop
  BouclePoll Boucle;
  std::string Trace;
};

TEST_F(Pompe, RunsOneEventAtATimeInTheOrderOfTheirTimesAndWaits) {
  const auto B = Boucle.Après(20ms, [&] { Trace += 'b'; });
  const auto A = Boucle.Après(0ms, [&] { Trace += 'a'; });
  const auto C = Boucle.Après(20ms, [&] { Trace += 'c'; });
  for (const char* Attendue : {"a", "ab", "abc"}) {
    EXPECT_TRUE(Boucle.Pomper(std::chrono::nanoseconds::max()));
    EXPECT_EQ(Trace, Attendue);
  }
  const auto Début = std::chrono::steady_clock::now();
  const std::clock_t Travail = std::clock();
  EXPECT_FALSE(Boucle.Pomper(200ms));
  EXPECT_GE(std::chrono::steady_clock::now() - Début, 200ms);
  EXPECT_LT(std::clock() - Travail, CLOCKS_PER_SEC / 50) << "waiting is no work";
}

TEST_F(Pompe, BusyDescriptorsAndEndlessDelaysAllGetTheirTurn) {
  const auto A = Surveiller([&] { Trace += 'a'; });
  const auto B = Surveiller([&] { Trace += 'b'; });
  IBoucle::Jeton Suite;
  const std::function<void()> Encore = [&] {
    Trace += 'd';
    Suite = Boucle.Après(0ms, Encore);
  };
  Encore();
  for (int I = 0; I < 8; ++I) ASSERT_TRUE(Boucle.Pomper(0ms));
  EXPECT_EQ(Trace, "ddadbdadb");
}

TEST_F(Pompe, AnActionMayDropItsOwnTokenAndOthersAndPump) {
  IBoucle::Jeton Veille, Autre;
  // What the closure owns must outlive the token while the action runs.
  const auto Bien = std::make_shared<std::string>("tenu");
  Veille = Surveiller([&, Mien = Bien] {
    Veille.reset();
    Autre.reset();
    Vider();
    Trace += *Mien;
  });
  Autre = Surveiller([] { ADD_FAILURE() << "was dropped"; });
  Vider();
  EXPECT_EQ(Trace, "tenu");
  EXPECT_EQ(Bien.use_count(), 1) << "a dropped watch must let go of what it holds";
}

TEST_F(Pompe, StaysUsableWhenAnActionRaisesAndWhenTokensOutliveIt) {
  const auto Lève = Boucle.Après(0ms, [] { throw std::runtime_error("non"); });
  Tardif = Boucle.Après(1h, [] {});
  const auto Suivant = Boucle.Après(0ms, [&] { Trace += 's'; });
  EXPECT_THROW(Boucle.Pomper(0ms), std::runtime_error);
  EXPECT_TRUE(Boucle.Pomper(0ms));
  EXPECT_EQ(Trace, "s");
}

TEST_F(Pompe, ATimerComesOnceAndMayBeStartedAgainAndDroppedWithinItsOwnEvent) {
  std::unique_ptr<IRetard> Retard;
  const std::string Témoin(100, 'x');
  Retard = std::make_unique<RetardBoucle>(Boucle, [&, Témoin](const std::string& Code) {
    Trace += Code;
    if (Trace.size() < 3) return Retard->Démarrer(0, "b");
    Retard.reset();
    EXPECT_EQ(Témoin + Code, std::string(100, 'x') + 'b');
  });
  Retard->Démarrer(0, "arrêté");
  Retard->Arrêter();
  Retard->Démarrer(1, "remplacé");
  Retard->Démarrer(-1, "a");
  while (Trace.size() < 3 && Boucle.Pomper(std::chrono::seconds(10))) continue;
  Vider();
  EXPECT_EQ(Trace, "abb");
}

}  // namespace Ombrey
