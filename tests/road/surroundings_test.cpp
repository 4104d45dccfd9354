// Whatever a station is started from: it collects, goes on without its reader or its terminal, and ends when told.
#include "tests/road/post.h"

namespace Ombrey::Essais {

/// All stations at once: the first poll comes after ten seconds.
TEST(Surroundings, AStationCollectsAndEndsWhateverItWasStartedFrom) {
  struct {
    const char* Nom;
    const char* Par;   ///< ahead of the program
    const char* Plus;  ///< behind its options
    int Signal;        ///< ends it
    Poste P{};
  } Cas[] = {
      {"reader gone", "mkfifo tube; (head -c 1 tube >premier &) ; exec ", ">tube", SIGINT},
      {"no input", "exec ", "<&-", SIGHUP},
      {"no output", "exec ", ">&-", SIGTERM},
      {"no errors", "exec ", "2>&-", SIGTERM},
      {"no stream", "exec ", "<&- >&- 2>&-", SIGTERM},
      {"nohup", "exec nohup ", "", SIGTERM},
  };
  for (auto& C : Cas) {
    C.P.LancerTerminal("--hasard 1 --jusqu-a-vide");
    C.P.LancerStation("", std::string("--sans-operateur ") + C.Plus, C.Par);
  }
  for (auto& [Nom, Par, Plus, Signal, P] : Cas) {
    SCOPED_TRACE(Nom);
    EXPECT_EQ(P.Rg80->Fin(60s), 0) << P.Dit();
    if (Nom == std::string("nohup")) {
      P.Station->Signaler(SIGHUP);
      P.Station->Taper("messages");
      EXPECT_TRUE(P.Station->Attendre("messages : ")) << P.Dit();
    }
    P.Faire("$ ! grep -rqs 'Module initialis' poste");  // no file has taken a closed stream's place
    P.Station->Signaler(Signal);
    EXPECT_EQ(P.Station->Fin(), 0) << P.Dit();
    EXPECT_EQ(P.Rentrés(), "1 1 0") << P.Dit();
  }
}

/// A line that isn't there yet has a box at each poll.
TEST(Surroundings, WindowsThatNobodyLooksAtAnswerTheirBoxesThemselves) {
  if (!std::filesystem::exists(BIN_DIR "/tarvel-qt.so")) GTEST_SKIP() << "built without windows";
  Poste P;
  P.Station = std::make_unique<Programme>("cd " + P.En("") +
                                          " && QT_QPA_PLATFORM=offscreen exec " BIN_DIR
                                          "/tarvel --base cave.db --ini tarvel.ini --dossier poste --sans-operateur");
  EXPECT_TRUE(Bientôt([&] { return std::filesystem::exists(P.En("poste/données")); }, 60s)) << P.Dit();
  P.LancerTerminal("--hasard 1 --jusqu-a-vide");
  EXPECT_EQ(P.Rg80->Fin(60s), 0) << P.Dit();
  P.Station->Signaler(SIGTERM);
  EXPECT_EQ(P.Station->Fin(), 0) << P.Dit();
  EXPECT_EQ(P.Rentrés(), "1 1 0") << P.Dit();
}

}  // namespace Ombrey::Essais
