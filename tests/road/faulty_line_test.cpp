// Both programs on one line: every fault of the terminal, lost acknowledgements, a port pulled out, killed stations.
#include <fcntl.h>
#include <sys/file.h>

#include "tests/road/post.h"

namespace Ombrey::Essais {
namespace {

std::size_t Fois(const std::string& Texte, const std::string& Extrait) {
  std::size_t Nombre = 0;
  for (std::size_t Place = 0; (Place = Texte.find(Extrait, Place)) != std::string::npos; ++Place) ++Nombre;
  return Nombre;
}

/// The number behind Quoi in the terminal's last line.
std::size_t Bilan(const Poste& P, const std::string& Quoi) {
  const std::string& Dit = P.Rg80->Dit();
  return std::stoul(Dit.substr(Dit.find(Quoi, Dit.rfind("bilan : ")) + Quoi.size()));
}

/// All lines at once: most of the time is spent in waiting.
TEST(FaultyLine, EveryLoadComesInOnceWhateverTheLineDoes) {
  const struct {
    const char* Pannes;
    std::size_t Manqués;   ///< offers that weren't acknowledged, at least
    std::size_t Réponses;  ///< replies that come through, at least
  } Table[] = {
      // clang-format off
      {"silence=0.2", 0, 0}, {"nak=0.4", 0, 0}, {"checksum=0.4", 1, 0}, {"bruit=0.5", 0, 0}, {"coupe=0.3", 1, 8},
      {"retard=0.2", 0, 0}, {"ack-perdu=0.4", 1, 0}, {"silence=0 --cadence 9600", 0, 8},
      {"silence=0.05,nak=0.1,checksum=0.1,bruit=0.2,coupe=0.1,ack-perdu=0.2", 1, 0},
      // clang-format on
  };
  std::vector<Poste> Postes(std::size(Table));
  for (std::size_t Rang = 0; Rang < Postes.size(); ++Rang) {
    Postes[Rang].LancerTerminal(std::string("--hasard 8 --graine 7 --jusqu-a-vide --panne ") + Table[Rang].Pannes);
    Postes[Rang].LancerStation();
  }
  for (std::size_t Rang = 0; Rang < Postes.size(); ++Rang) {
    const Poste& P = Postes[Rang];
    SCOPED_TRACE(Table[Rang].Pannes);
    P.Finir("8 8 0");
    EXPECT_EQ(Bilan(P, "acquittés "), 8U);
    EXPECT_GE(Bilan(P, "envoyés "), 8 + Table[Rang].Manqués) << P.Dit();
    EXPECT_GE(Bilan(P, "réponses reçues "), Table[Rang].Réponses) << P.Dit();
    EXPECT_GE(Bilan(P, "réponses reçues ") + Fois(P.Dit(), "CLIQUEZ SUR RG80 EN ATTENTE DES QUOTAS."), 8U)
        << "a reply went missing unsaid\n"
        << P.Dit();
  }
}

TEST(FaultyLine, WorkGoesOnByItselfWhenThePortComesBack) {
  Poste P;
  // At this pace the frame is on its way for two seconds: the terminal goes away in its middle.
  P.LancerTerminal("--hasard 1 --cadence 300");
  P.LancerStation();
  ASSERT_TRUE(P.Rg80->Attendre("chargement 0001 offert")) << P.Dit();
  std::this_thread::sleep_for(400ms);
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
  P.LancerTerminal("--hasard 12 --jusqu-a-vide");
  for (int Mort = 0; Mort < 6; ++Mort) {
    P.LancerStation();
    ASSERT_TRUE(P.Station->Attendre("commande «menu»")) << P.Dit();
    std::this_thread::sleep_for(std::chrono::microseconds(8500 * Mort));
    P.Station->Signaler(SIGKILL);
    EXPECT_EQ(P.Station->Fin(), -SIGKILL);
  }
  P.LancerStation();
  P.Finir("12 12 0");
}

}  // namespace
}  // namespace Ombrey::Essais
