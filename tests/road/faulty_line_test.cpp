// Both programs on one line: every fault of the terminal, lost acknowledgements, a port pulled out, killed stations.
#include <sys/file.h>

#include <algorithm>
#include <csignal>
#include <sstream>
#include <thread>

#include "tests/road/post.h"

namespace Ombrey::Essais {
namespace {

using namespace std::chrono_literals;

struct Compte {
  unsigned Envoyés = 0;
  unsigned Acquittés = 0;
  unsigned Refusés = 0;
  unsigned SansRéponse = 0;
  unsigned Réponses = 0;
};

Compte LireBilan(const std::string& Dit) {
  Compte C;
  const std::size_t Place = Dit.rfind("bilan : ");
  if (Place == std::string::npos) return C;
  std::sscanf(Dit.c_str() + Place, "bilan : envoyés %u, acquittés %u, refusés %u, sans réponse %u, réponses reçues %u",
              &C.Envoyés, &C.Acquittés, &C.Refusés, &C.SansRéponse, &C.Réponses);
  return C;
}

std::size_t Fois(const std::string& Texte, const std::string& Extrait) {
  std::size_t Nombre = 0;
  for (std::size_t Place = 0; (Place = Texte.find(Extrait, Place)) != std::string::npos; ++Nombre) ++Place;
  return Nombre;
}

/// What the operator was told about the replies that didn't get through.
constexpr const char* RéponsePerdue = "CLIQUEZ SUR RG80 EN ATTENTE DES QUOTAS.";

struct Ligne {
  const char* Pannes;
  bool RéponsesSûres;  ///< the fault spares the replies
  Poste LePoste{};
  std::unique_ptr<Programme> Rg80{};
  std::unique_ptr<Programme> Station{};
};

/// All lines at once: most of the time is spent in waiting.
TEST(FaultyLine, EveryLoadComesInOnceWhateverTheLineDoes) {
  constexpr unsigned Nombre = 8;
  Ligne Lignes[] = {{"silence=0.2", false},
                    {"nak=0.4", false},
                    {"checksum=0.4", false},
                    {"bruit=0.5", false},
                    {"coupe=0.3", true},
                    {"retard=0.2", false},
                    {"ack-perdu=0.4", false},
                    {"silence=0", true},
                    {"silence=0.05,nak=0.1,checksum=0.1,bruit=0.2,coupe=0.1,ack-perdu=0.2", false}};
  for (Ligne& L : Lignes) {
    std::vector<std::string> Arguments{"--hasard", std::to_string(Nombre), "--panne", L.Pannes, "--graine",
                                       "7",        "--jusqu-a-vide"};
    if (L.Pannes == std::string("silence=0")) Arguments.insert(Arguments.end(), {"--cadence", "9600"});
    L.Rg80 = L.LePoste.Terminal(Arguments);
    L.Station = L.LePoste.Station();
    L.Station->Taper("interroger");
  }
  for (Ligne& L : Lignes) {
    SCOPED_TRACE(L.Pannes);
    EXPECT_EQ(L.Rg80->Fin(60s), 0);
    L.Station->Taper("fin");
    EXPECT_EQ(L.Station->Fin(), 0);
    EXPECT_EQ(L.LePoste.Rentrés(), "8 8 0") << L.Station->Dit() << L.Rg80->Dit();
    const Compte C = LireBilan(L.Rg80->Dit());
    EXPECT_EQ(C.Acquittés, Nombre) << L.Rg80->Dit();
    EXPECT_EQ(C.Envoyés, C.Acquittés + C.Refusés + C.SansRéponse) << L.Rg80->Dit();
    const std::string Reçues = L.LePoste.Lu("recu/reponses.txt");
    EXPECT_EQ(static_cast<unsigned>(std::count(Reçues.begin(), Reçues.end(), '\n')), C.Réponses);
    if (L.RéponsesSûres) {
      EXPECT_EQ(C.Réponses, Nombre);
    }
    EXPECT_GE(C.Réponses + Fois(L.Station->Dit(), RéponsePerdue), Nombre) << "a reply went missing unsaid\n"
                                                                          << L.Station->Dit() << L.Rg80->Dit();
  }
}

TEST(FaultyLine, ALoadWhoseAcknowledgementWasLostIsUpdatedNotDoubled) {
  const Poste P;
  P.Écrire("charges", "!ack-perdu " + Enregistrement(12) + "\n" + Enregistrement(13) + "\n");
  const auto Rg80 = P.Terminal({"--chargements", P.En("charges"), "--jusqu-a-vide"});
  const auto Station = P.Station();
  Station->Taper("interroger");
  EXPECT_EQ(Rg80->Fin(), 0);
  EXPECT_TRUE(Station->Attendre("Importation d'un nouveau chargement : Site 1, n° 12"));
  EXPECT_TRUE(Station->Attendre("Importation d'un nouveau chargement : Site 1, n° 13"));
  EXPECT_EQ(P.Rentrés(), "2 2 0");
  EXPECT_EQ(P.Valeur("SELECT sum(Masse) FROM Chargement"), "2468");
  EXPECT_EQ(LireBilan(Rg80->Dit()).SansRéponse, 1U);
}

TEST(FaultyLine, WorkGoesOnByItselfWhenThePortComesBack) {
  const Poste P;
  P.Écrire("un", Enregistrement(1) + "\n");
  P.Écrire("deux", Enregistrement(1) + "\n" + Enregistrement(2) + "\n");
  // At this pace the frame is on its way for two seconds: the terminal goes away in its middle.
  auto Rg80 = P.Terminal({"--chargements", P.En("un"), "--cadence", "300"});
  const auto Station = P.Station();
  Station->Taper("interroger");
  ASSERT_TRUE(Rg80->Attendre("chargement 0001 offert")) << Rg80->Dit();
  std::this_thread::sleep_for(400ms);
  Rg80->Signaler(SIGKILL);
  EXPECT_TRUE(Station->Attendre("Echec de lecture de données du RG80 : "));
  EXPECT_TRUE(Station->Attendre("boîte «Erreur du port» (OK) : Le port " + P.Lien())) << Station->Dit();
  Rg80 = P.Terminal({"--chargements", P.En("deux"), "--jusqu-a-vide"});
  EXPECT_EQ(Rg80->Fin(), 0) << Rg80->Dit() << Station->Dit();
  Station->Taper("fin");
  EXPECT_EQ(Station->Fin(), 0);
  EXPECT_EQ(P.Rentrés(), "2 2 0");
}

TEST(FaultyLine, APortThatAnotherProgramHoldsIsNamedAndTakenWhenItIsFree) {
  const Poste P;
  P.Écrire("un", Enregistrement(1) + "\n");
  const auto Rg80 = P.Terminal({"--chargements", P.En("un"), "--jusqu-a-vide"});
  const int Autre = open(P.Lien().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
  ASSERT_EQ(flock(Autre, LOCK_EX | LOCK_NB), 0);
  const auto Station = P.Station();
  Station->Taper("interroger");
  EXPECT_TRUE(Station->Attendre("message [x]"));
  EXPECT_TRUE(Station->Attendre("boîte «Erreur du port» (OK) : Le port " + P.Lien() +
                                " est déjà utilisé par un autre programme."))
      << Station->Dit();
  EXPECT_TRUE(Station->Attendre("Echec de lecture de données du RG80 : Erreur du port de communication au RG80."));
  close(Autre);
  EXPECT_EQ(Rg80->Fin(), 0) << Station->Dit();
  EXPECT_EQ(P.Rentrés(), "1 1 0");
}

TEST(FaultyLine, AStationKilledAtAnyMomentLosesAndDoublesNothing) {
  const Poste P;
  constexpr int Morts = 30;
  const auto Rg80 = P.Terminal({"--hasard", "40", "--jusqu-a-vide"});
  for (int Mort = 0; Mort < Morts; ++Mort) {
    const auto Station = P.Station();
    Station->Taper("interroger");
    ASSERT_TRUE(Station->Attendre("commande «menu»")) << Station->Dit();
    std::this_thread::sleep_for(std::chrono::microseconds(1700 * Mort));
    Station->Signaler(SIGKILL);
    EXPECT_EQ(Station->Fin(), -SIGKILL);
    EXPECT_EQ(P.Valeur("PRAGMA integrity_check"), "ok");
  }
  const auto Station = P.Station();
  Station->Taper("interroger");
  EXPECT_EQ(Rg80->Fin(40s), 0) << Station->Dit();
  EXPECT_EQ(P.Rentrés(), "40 40 0");
  EXPECT_EQ(LireBilan(Rg80->Dit()).Acquittés, 40U);
}

}  // namespace
}  // namespace Ombrey::Essais
