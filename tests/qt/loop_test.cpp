// The loop on Qt's: one event at a time, waits that cost nothing, failures, tokens dropped anywhere.
#include <gtest/gtest.h>
#include <unistd.h>

#include <ctime>
#include <stdexcept>
#include <string>
#include <thread>

#include "platform/loop/descriptor.h"
#include "platform/qt/qt_loop.h"
#include "tests/qt/qt_fixture.h"

namespace Ombrey::Essais {
namespace {

using namespace std::chrono_literals;
using Horloge = std::chrono::steady_clock;

class BoucleDeQt : public testing::Test {
 protected:
  BoucleDeQt() {
    PréparerQt();
    int Bouts[2] = {-1, -1};
    if (pipe(Bouts) != 0) throw std::runtime_error("pipe");
    Lecture = Descripteur(Bouts[0]);
    Ecriture = Descripteur(Bouts[1]);
    while (Boucle.Pomper(0ms)) {
    }
  }
  void Mettre() const { ASSERT_EQ(write(Ecriture.Numéro(), "x", 1), 1); }
  void Prendre() const {
    char C = 0;
    ASSERT_EQ(read(Lecture.Numéro(), &C, 1), 1);
  }
  BoucleQt Boucle;
  Descripteur Lecture;
  Descripteur Ecriture;
  std::string Trace;
};

TEST_F(BoucleDeQt, RunsOneEventAPumpAndGesturesFirst) {
  const auto B = Boucle.Après(3ms, [&] { Trace += 'b'; });
  const auto A = Boucle.Après(0ms, [&] { Trace += 'a'; });
  std::this_thread::sleep_for(5ms);
  Boucle.Poser([&] { Trace += 'g'; });
  for (const char* Attendue : {"g", "ga", "gab"}) {
    EXPECT_TRUE(Boucle.Pomper(1s));
    EXPECT_EQ(Trace, Attendue);
  }
  EXPECT_FALSE(Boucle.Pomper(-5ms));
}

TEST_F(BoucleDeQt, AnEmptyWaitLastsItsTimeAndCostsNothing) {
  const auto Début = Horloge::now();
  const std::clock_t Travail = std::clock();
  EXPECT_FALSE(Boucle.Pomper(200ms));
  EXPECT_GE(Horloge::now() - Début, 200ms);
  EXPECT_LT(std::clock() - Travail, CLOCKS_PER_SEC / 50);
}

TEST_F(BoucleDeQt, AByteEndsTheWaitAndAWatchComesAgainUntilItIsRead) {
  int Appels = 0;
  const auto Veille = Boucle.Surveiller(Lecture.Numéro(), IBoucle::Attente::Lecture, [&] {
    if (++Appels == 3) Prendre();
  });
  Mettre();
  const auto Début = Horloge::now();
  for (int Rang = 1; Rang <= 3; ++Rang) {
    EXPECT_TRUE(Boucle.Pomper(std::chrono::milliseconds::max()));
    EXPECT_EQ(Appels, Rang);
  }
  EXPECT_LT(Horloge::now() - Début, 1s);
  EXPECT_FALSE(Boucle.Pomper(5ms));
  Ecriture.Fermer();
  EXPECT_TRUE(Boucle.Pomper(1s)) << "the end is an event";
}

TEST_F(BoucleDeQt, AnActionMayDropItsOwnTokenAndOthersAndPump) {
  const auto Bien = std::make_shared<std::string>("tenu");
  IBoucle::Jeton Veille;
  IBoucle::Jeton Délai;
  // Both are due at once; whichever comes first ends the other.
  const auto Faire = [&, Mien = Bien] {
    Veille.reset();
    Délai.reset();
    while (Boucle.Pomper(5ms)) {
    }
    Trace += *Mien;
  };
  Veille = Boucle.Surveiller(Lecture.Numéro(), IBoucle::Attente::Lecture, Faire);
  Délai = Boucle.Après(0ms, Faire);
  Mettre();
  std::this_thread::sleep_for(2ms);
  while (Boucle.Pomper(5ms)) {
  }
  EXPECT_EQ(Trace, "tenu");
  EXPECT_EQ(Bien.use_count(), 2) << "a dropped watch lets go of what it holds; this is the test's own";
}

TEST_F(BoucleDeQt, FailuresLeaveThePumpAndTheLoopGoesOn) {
  const auto Lève = Boucle.Après(0ms, [] { throw std::runtime_error("délai"); });
  EXPECT_THROW(Boucle.Pomper(1s), std::runtime_error);
  Boucle.Garder([] { throw std::runtime_error("sur place"); });
  EXPECT_THROW(Boucle.Pomper(1s), std::runtime_error);
  const auto Suite = Boucle.Après(0ms, [&] { Trace += 's'; });
  EXPECT_TRUE(Boucle.Pomper(1s));
  EXPECT_EQ(Trace, "s");
}

}  // namespace
}  // namespace Ombrey::Essais
