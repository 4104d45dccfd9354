// Both programs on one line: every fault of the terminal, lost acknowledgements, a port pulled out, killed stations.
#include <fcntl.h>
#include <sys/file.h>

#include "tests/road/post.h"

namespace Ombrey::Essais {

static std::size_t Fois(const std::string& Texte, const std::string& Extrait) {
  std::size_t Nombre = 0;
  for (std::size_t Place = 0; (Place = Texte.find(Extrait, Place)) != std::string::npos; ++Place) ++Nombre;
  return Nombre;
}

/// All lines at once: most of the time is spent in waiting.
TEST(FaultyLine, EveryLoadComesInOnceWhateverTheLineDoes) {
  struct {
    const char* Pannes;
    std::size_t Manqués;   ///< offers that weren't acknowledged, at least
    std::size_t Réponses;  ///< replies that come through, at least
    Poste P{};
  } Lignes[] = {
      // clang-format off
      {"silence=0.2", 0, 0}, {"nak=0.4", 0, 0}, {"checksum=0.4", 1, 0}, {"bruit=0.5", 0, 0}, {"coupe=0.3", 1, 8},
      {"retard=0.2", 0, 0}, {"ack-perdu=0.4", 1, 0}, {"silence=0 --cadence 9600", 0, 8},
      {"silence=0.05,nak=0.1,checksum=0.1,bruit=0.2,coupe=0.1,ack-perdu=0.2", 1, 0},
      // clang-format on
  };
  for (auto& L : Lignes) {
    L.P.LancerTerminal(std::string("--hasard 8 --graine 7 --jusqu-a-vide --panne ") + L.Pannes);
    L.P.LancerStation();
  }
  for (const auto& [Pannes, Manqués, Réponses, P] : Lignes) {
    P.Finir("8 8 0");
    const std::string Dit = Pannes + P.Dit();
    EXPECT_GE(Fois(Dit, " offert, essai "), 8 + Manqués) << Dit;
    EXPECT_GE(Fois(Dit, "réponse reçue : "), Réponses) << Dit;
    // No reply goes missing unsaid.
    EXPECT_GE(Fois(Dit, "réponse reçue : ") + Fois(Dit, "CLIQUEZ SUR RG80 EN ATTENTE DES QUOTAS."), 8U) << Dit;
  }
}

TEST(FaultyLine, WorkGoesOnByItselfWhenThePortComesBack) {
  Poste P;
  // At this pace the frame is on its way for two seconds: the terminal goes away in its middle.
  P.LancerTerminal("--hasard 1 --cadence 300");
  P.LancerStation();
  ASSERT_TRUE(P.Rg80->Attendre("chargement 0001 offert")) << P.Dit();
  std::this_thread::sleep_for(400ms);
  // The link goes first: the number of a closed pseudo-terminal is free for any test that runs beside this one.
  std::filesystem::remove(P.En("ligne"));
  P.Rg80->Signaler(SIGKILL);
  EXPECT_TRUE(P.Station->Attendre("Echec de lecture de données du RG80 : ")) << P.Dit();
  EXPECT_TRUE(P.Station->Attendre("boîte «Erreur du port» (OK) : Le port " + P.En("ligne"))) << P.Dit();
  P.LancerTerminal("--hasard 2 --jusqu-a-vide");
  P.Finir("2 2 0");
}

TEST(FaultyLine, APortThatAnotherProgramHoldsIsNamedAndTakenWhenItIsFree) {
  Poste P;
  P.LancerTerminal("--hasard 1 --jusqu-a-vide");
  const int Autre = open(P.En("ligne").c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
  ASSERT_EQ(flock(Autre, LOCK_EX | LOCK_NB), 0);
  P.LancerStation();
  EXPECT_TRUE(P.Station->Attendre(P.En("ligne") + " est déjà utilisé par un autre programme.")) << P.Dit();
  EXPECT_TRUE(P.Station->Attendre("Echec de lecture de données du RG80 : Erreur du port de communication au RG80."));
  close(Autre);
  P.Finir("1 1 0");
}

TEST(FaultyLine, AStationKilledAtAnyMomentLosesAndDoublesNothing) {
  Poste P;
  P.LancerTerminal("--hasard 40 --jusqu-a-vide");
  for (int Mort = 0; Mort < 30; ++Mort) {
    P.LancerStation();
    ASSERT_TRUE(P.Station->Attendre("commande «menu»")) << P.Dit();
    std::this_thread::sleep_for(1700us * Mort);
    P.Station->Signaler(SIGKILL);
    EXPECT_EQ(P.Station->Fin(), -SIGKILL);
  }
  // Nobody reads what the last one says: enough to fill the pipe.
  std::string Bavard;
  while (Bavard.size() < 5 * 300) Bavard += "aide\n";
  P.LancerStation(Bavard + "interroger");
  P.Finir("40 40 0");
}

}  // namespace Ombrey::Essais
