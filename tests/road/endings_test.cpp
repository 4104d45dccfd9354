// The station ended in the middle of its work: at every byte of a dialogue, in a box, while nobody reads it.
#include "link/checksum.h"
#include "tests/road/post.h"
#include "tests/serial/pseudo_terminal.h"

namespace Ombrey::Essais {
namespace {

TEST(Endings, TermAtEveryByteOfADialogueEndsProperlyAndAcknowledgesNothingThatIsNotIn) {
  // Both directions together, S for each byte of the station's: request, accord, announcement, reply, end.
  const Octets Trame = CalculerCheckSum(Octets("\x02" + Enregistrement("0012") + "\x03"));
  const std::string Dialogue = "SS\6A" + std::string(Trame.Bruts()) + "SSS\0068" + std::string(28, 'S') + "\6S";
  const std::size_t JusquÀLAnnonce = Dialogue.find("SSS") + 2;
  for (std::size_t Nombre = 0; Nombre <= Dialogue.size(); ++Nombre) {
    SCOPED_TRACE(Nombre);
    Poste P;
    const PseudoTerminal Ligne;
    P.Régler(Ligne.Nom());
    P.LancerStation("interroger", Nombre % 2 == 0 ? "--sans-operateur" : "");
    ASSERT_TRUE(P.Station->Attendre("commande «menu»"));
    std::string Reçus;
    std::size_t Attendus = 0;
    for (const char C : Dialogue.substr(0, Nombre)) {
      C == 'S' ? void(++Attendus) : Ligne.Envoyer({&C, 1});
      ASSERT_TRUE(Bientôt([&] { return (Reçus += Ligne.Recevoir()).size() >= Attendus; }, 10s)) << P.Dit();
    }
    P.Station->Signaler(SIGTERM);
    ASSERT_EQ(P.Station->Fin(4s), 0) << P.Dit();
    EXPECT_EQ(P.Dit().find("boîte"), std::string::npos) << P.Dit();
    Reçus += Ligne.Recevoir();
    EXPECT_TRUE(Reçus.size() <= 2 || Reçus[2] == '\6') << "refused without a reason";
    const std::string Rentrés = P.Rentrés();
    EXPECT_TRUE(Rentrés == "1 1 0" || (Rentrés == "0 0 0" && Reçus.size() <= 2 && Nombre < JusquÀLAnnonce)) << Rentrés;
    EXPECT_FALSE(std::filesystem::exists(P.En("poste/import/RG80 import.txt")));
  }
}

TEST(Endings, CommandsAndTermEndWhateverGoesOn) {
  for (const char* Commandes : {"fin", "interroger\nfin", "bouton\nfin", "menu\nfermer\nfin", "liste\nmessages\nfin"}) {
    Poste P;
    P.LancerTerminal("--hasard 3");
    P.LancerStation(Commandes);
    EXPECT_EQ(P.Station->Fin(5s), 0) << Commandes << P.Dit();
  }
  // A box waits for an operator.
  Poste P;
  P.LancerStation("interroger", "");
  ASSERT_TRUE(P.Station->Attendre("boîte «Erreur du port» (OK) : Le port " + P.En("ligne") + " est absent"));
  P.Station->Signaler(SIGTERM);
  EXPECT_EQ(P.Station->Fin(2s), 0) << P.Dit();
}

TEST(Endings, AConsoleThatNobodyReadsStopsNeitherTheLoadsNorTheEnd) {
  Poste P;
  P.LancerTerminal("--hasard 3 --jusqu-a-vide");
  std::string AssezPourUnTuyau;
  while (AssezPourUnTuyau.size() < 5 * 300) AssezPourUnTuyau += "aide\n";
  P.LancerStation(AssezPourUnTuyau + "interroger");
  EXPECT_EQ(P.Rg80->Fin(), 0) << P.Rg80->Dit();
  EXPECT_EQ(P.Rentrés(), "3 3 0");
  P.Station->Signaler(SIGTERM);
  EXPECT_EQ(P.Station->Fin(3s, false), 0);
}

}  // namespace
}  // namespace Ombrey::Essais
