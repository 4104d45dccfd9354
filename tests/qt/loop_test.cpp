// The loop on Qt's: one event at a time, bytes and room to write, failures, tokens dropped anywhere.
#include <termios.h>

#include "tests/qt/qt_fixture.h"
#include "tests/serial/pseudo_terminal.h"

/// What the font library keeps to the end is no leak of ours. Read by the leak checker, where there is one.
extern "C" [[gnu::visibility("default")]] const char*
__lsan_default_suppressions() {  // NOLINT(bugprone-reserved-identifier): the checker's own name
  return "leak:libfontconfig\n";
}

/// Without a screen unless the environment names one.
int main(int Nombre, char** Arguments) {
  setenv("QT_QPA_PLATFORM", "offscreen", 0);
  setenv("HOME", "/proc/absent", 1);  // no folder for documents: what is printed stays in the test's own
  const QApplication Application(Nombre, Arguments);
  testing::InitGoogleTest(&Nombre, Arguments);
  return RUN_ALL_TESTS();
}

namespace Ombrey::Essais {

struct BoucleDeQt : Bureau {
  BoucleDeQt() { Vider(); }
  IBoucle::Jeton Surveiller(IBoucle::Action Faire, IBoucle::Sens Sens = IBoucle::Sens::Entrée) {
    return Boucle.Surveiller(Près.Numéro(), Sens, std::move(Faire));
  }
  PseudoTerminal Loin;
  Descripteur Près{open(Loin.Nom().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC)};
};

TEST_F(BoucleDeQt, RunsOneEventAPumpGesturesFirstAndLetsFailuresOut) {
  const auto B = Boucle.Après(3ms, [&] { Trace += 'b'; });
  const auto L = Boucle.Après(1ms, [] { throw std::runtime_error("délai"); });
  const auto A = Boucle.Après(0ms, [&] { Trace += 'a'; });
  QTest::qSleep(5);
  Boucle.Poser([&] { Trace += 'g'; });
  Boucle.Garder([] { throw std::runtime_error("sur place"); });
  for (const char* Attendue : {"g", "g!", "g!a", "g!a!", "g!a!b"}) {
    try {
      EXPECT_TRUE(Boucle.Pomper(1s));
    } catch (const std::runtime_error&) {
      Trace += '!';
    }
    EXPECT_EQ(Trace, Attendue);
  }
  EXPECT_FALSE(Boucle.Pomper(-5ms));
}

TEST_F(BoucleDeQt, WhoeverWaitsLongWithoutPumpingShowsAnHourglassUntilTheNextPump) {
  for (int Fois = 0; Fois < 2; ++Fois) {
    Vider();
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    Boucle.Peindre();
    EXPECT_EQ(QApplication::overrideCursor(), nullptr) << "two programs that meet for a moment";
    QThread::msleep(200);
    Boucle.Peindre();
    EXPECT_NE(QApplication::overrideCursor(), nullptr);
  }
}

TEST_F(BoucleDeQt, AByteEndsTheWaitAndAWatchComesAgainUntilItIsRead) {
  const auto Veille = Surveiller([&] {
    Trace += '.';
    if (Trace == "...") tcflush(Près.Numéro(), TCIFLUSH);
  });
  Loin.Envoyer("x\n");
  for (const char* Attendue : {".", "..", "..."}) {
    EXPECT_TRUE(Boucle.Pomper(std::chrono::nanoseconds::max()));
    EXPECT_EQ(Trace, Attendue);
  }
  EXPECT_FALSE(Boucle.Pomper(5ms));
  auto Place = Surveiller([&] { Trace += 'e'; }, IBoucle::Sens::Sortie);
  EXPECT_TRUE(Boucle.Pomper(1s));
  EXPECT_EQ(Trace, "...e") << "there is room to write";
  Place.reset();
  Loin.Maître.Fermer();
  EXPECT_TRUE(Boucle.Pomper(1s)) << "the end is an event";
}

TEST_F(BoucleDeQt, AnActionMayDropItsOwnTokenAndOthersAndPump) {
  IBoucle::Jeton Veille, Délai;
  // Both are due at once; whichever comes first ends the other.
  const auto Faire = [&, Bien = std::string(99, 'x')] {
    Veille.reset();
    Délai.reset();
    Vider();
    Trace += Bien;
  };
  Veille = Surveiller(Faire);
  Délai = Boucle.Après(0ms, Faire);
  Loin.Envoyer("x\n");
  QTest::qSleep(2);
  Vider();
  EXPECT_EQ(Trace, std::string(99, 'x'));
}

}  // namespace Ombrey::Essais
