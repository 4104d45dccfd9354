// Whatever a station is started from, and under clocks of years to come: it collects, goes on without its reader or its
// terminal, and ends when told.
#include "tests/road/post.h"

namespace Ombrey::Essais {

/// All stations at once: the first poll comes after ten seconds.
TEST(Surroundings, AStationCollectsAndEndsWhateverItWasStartedFrom) {
  // Stands ahead of the program and behind its options; the signal that ends it.
  struct {
    const char *Nom, *Par, *Plus;
    int Signal;
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

/// A line that isn't there yet has a box at each poll, and none steps aside by itself.
TEST(Surroundings, WindowsThatNobodyLooksAtAnswerTheirBoxesThemselves) {
  if (!std::filesystem::exists(BIN_DIR "/tarvel-qt.so")) GTEST_SKIP() << "built without windows";
  Poste P;
  P.Faire("$ printf '[Tarvel]\nDuréeBoîtes=0\n' >> tarvel.ini");
  P.Station = std::make_unique<Programme>("cd " + P.En("") +
                                          " && QT_QPA_PLATFORM=offscreen exec " BIN_DIR
                                          "/tarvel --base cave.db --ini tarvel.ini --dossier poste --sans-operateur");
  EXPECT_TRUE(Bientôt([&] { return std::filesystem::exists(P.En("poste/à-lire.txt")); }, 60s)) << P.Dit();
  P.LancerTerminal("--hasard 1 --jusqu-a-vide");
  EXPECT_EQ(P.Rg80->Fin(60s), 0) << P.Dit();
  P.Station->Signaler(SIGTERM);
  EXPECT_EQ(P.Station->Fin(), 0) << P.Dit();
  EXPECT_EQ(P.Rentrés(), "1 1 0") << P.Dit();
}

/// A load of the day is filed under it, listed, and counts.
TEST(Surroundings, TheYearsToComeAreTheirOwn) {
  if (std::system("command -v faketime >/dev/null") != 0) GTEST_SKIP() << "faketime isn't installed";
  // The station's clock; the day in the terminal's record and in the database.
  const std::array<std::string, 3> Cas[] = {{"2030-01-01 00:05:00", "010130", "01/01/2030 08:30"},
                                            {"2050-09-22 12:00:00", "220950", "22/09/2050 08:30"}};
  for (const auto& [Horloge, Date, Arrivée] : Cas) {
    Poste P;
    // The second one bears the same number: the first goes to the archive, and counts.
    for (std::ofstream Offerts(P.En("offerts")); const char* Masse : {"1000", "1234"})
      Offerts << Enregistrement(4, Date).replace(48, 4, Masse) << "\n";
    P.LancerTerminal("--chargements offerts");  // it stays: a line that is gone is a fault to tell
    P.LancerStation("interroger", "--sans-operateur", "exec faketime '" + Horloge + "' ");
    EXPECT_TRUE(P.Rg80->Attendre("réponse reçue : 000000059000001000024000", 60s)) << P.Dit();
    EXPECT_TRUE(P.Rg80->Attendre("réponse reçue : 000000057766002234022766", 60s)) << P.Dit();
    for (const std::string& Vu : {"hôte : Le chargement n° 12 du site 1, arrivé le " + Arrivée +
                                      " (exploitation 4, 1000 kg), passe dans ChargementArchive",
                                  std::string("hôte : ChargementAjouté:12")})
      EXPECT_TRUE(P.Station->Attendre(Vu, 60s)) << P.Dit();
    P.Station->Taper(
        "liste\njournee\njournee Tous zzz\nheures tous côteaux\nrestes\ntrace t\ntrace t\nligne fautes\netat\napropos\n"
        "diagnostic\nbordereau b\nimprimer-bordereau 1\nimprimer-ticket 12 08:31\ncopie c d.db\ncsv e.csv " +
        Arrivée.substr(0, 10));
    for (const char* Vu : {"liste : 1\n", "journee : 2\n", "journee : 0\n", "  8 h | 2,2 t |", "restes : 7\n",
                           "trace : La trace est dans t.", "trace : Le fichier t existe déjà", "ligne : 0 messages",
                           "Dernier : n° 12, 1234 kg, 08:30. Aujourd'hui 2 chargements, 2,2 t. Base locale : cave.db",
                           "\nDossier de travail : ", "dossier : une station travaille dans "})
      EXPECT_TRUE(P.Station->Attendre(Vu, 60s)) << P.Dit();
    P.Rg80->Signaler(SIGINT);
    P.Finir("1 1 1");
    // What is under way when it ends is finished.
    for (const char* Vu : {"bordereau : ", "ticket : Aucun chargement n° 12 du site 1 de 08:31 le ",
                           "copie : La base « ", "csv : 2 chargements exportés dans "})
      EXPECT_TRUE(P.Station->Attendre(Vu, 60s)) << P.Dit();
    EXPECT_NE(P.Dit().find("la commande s'écrit « imprimer-bordereau [JOUR] »"), std::string::npos) << P.Dit();
    EXPECT_EQ(P.Valeur("SELECT group_concat(Arrivée || Masse || Archive)"
                       " FROM (SELECT * FROM ChargementLisible ORDER BY Masse)"),
              Arrivée + "1000archivé," + Arrivée + "1234");
  }
}

}  // namespace Ombrey::Essais
