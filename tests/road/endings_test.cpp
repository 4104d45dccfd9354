// The station ended in the middle of its work.
#include "link/checksum.h"
#include "tests/road/post.h"
#include "tests/serial/pseudo_terminal.h"

namespace Ombrey::Essais {

TEST(Endings, TermAtEveryByteOfADialogueEndsProperlyAndAcknowledgesNothingThatIsNotIn) {
  // Both directions together, S for each byte of the station's: request, accord, announcement, reply, end.
  const Octets Trame = CalculerCheckSum(Octets("\x02" + Enregistrement() + "\x03"));
  const std::string Dialogue = "SS\6A" + std::string(Trame.Bruts()) + "SSS\0068" + std::string(28, 'S') + "\6S";
  for (std::size_t Nombre = 0; Nombre <= Dialogue.size(); ++Nombre) {
    SCOPED_TRACE(Nombre);
    Poste P;
    const PseudoTerminal Ligne;
    P.Faire("$ sed -i s,=/.*,=" + Ligne.Nom() + ", tarvel.ini");
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
    // Behind the request: acknowledged and in, or nothing at all, and that only until the announcement.
    const bool EstAcquitté = (Reçus += Ligne.Recevoir()).substr(2, 1) == "\6";
    EXPECT_TRUE(EstAcquitté || (Reçus.size() <= 2 && Nombre < Dialogue.find("SSS") + 2));
    EXPECT_TRUE(P.Rentrés() == "1 1 0" || (P.Rentrés() == "0 0 0" && !EstAcquitté)) << P.Rentrés();
    EXPECT_TRUE(std::filesystem::is_empty(P.En("poste/import")));
  }
}

}  // namespace Ombrey::Essais
