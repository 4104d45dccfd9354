// The station ended in the middle of its work.
#include "link/checksum.h"
#include "tests/road/post.h"
#include "tests/serial/pseudo_terminal.h"

namespace Ombrey::Essais {

/// The dialogue up to so many bytes, then SIGTERM. False: this machine was so busy that the dialogue had ended by
/// itself.
static bool FinirAprès(std::size_t Nombre, const std::string& Dialogue) {
  Poste P;
  const PseudoTerminal Ligne;
  P.Faire("$ sed -i s,=/.*,=" + Ligne.Nom() + ", tarvel.ini");
  P.LancerStation("interroger", Nombre % 2 == 0 ? "--sans-operateur" : "");
  EXPECT_TRUE(P.Station->Attendre("commande « menu »", 60s));
  std::string Reçus;
  std::size_t Attendus = 0;
  bool SontVenus = true;
  for (const char C : Dialogue.substr(0, Nombre)) {
    C == 'S' ? void(++Attendus) : Ligne.Envoyer({&C, 1});
    SontVenus = SontVenus && Bientôt([&] { return (Reçus += Ligne.Recevoir()).size() >= Attendus; }, 10s);
  }
  P.Station->Signaler(SIGTERM);
  EXPECT_EQ(P.Station->Fin(), 0) << P.Dit();
  EXPECT_TRUE(std::filesystem::is_empty(P.En("poste/import")));
  // Behind the last byte that it waits for the station ends it by itself.
  if (Nombre + 1 < Dialogue.size() && P.Dit().find("Vérification de nouveaux") != std::string::npos) return false;
  EXPECT_TRUE(SontVenus) << P.Dit();
  EXPECT_EQ(P.Dit().find("boîte"), std::string::npos) << P.Dit();
  // Behind the request: acknowledged and in, or nothing at all, and that only until the announcement.
  const bool EstAcquitté = (Reçus += Ligne.Recevoir()).substr(2, 1) == "\6";
  EXPECT_TRUE(EstAcquitté || (Reçus.size() <= 2 && Nombre < Dialogue.find("SSS") + 2)) << P.Dit();
  EXPECT_TRUE(P.Rentrés() == "1 1 0" || (P.Rentrés() == "0 0 0" && !EstAcquitté)) << P.Rentrés();
  return true;
}

TEST(Endings, TermAtEveryByteOfADialogueEndsProperlyAndAcknowledgesNothingThatIsNotIn) {
  // Both directions together, S for each byte of the station's: request, accord, announcement, reply, end.
  const Octets Trame = CalculerCheckSum(Octets("\x02" + Enregistrement() + "\x03"));
  const std::string Dialogue = "SS\6A" + std::string(Trame.Bruts()) + "SSS\0068" + std::string(28, 'S') + "\6S";
  for (std::size_t Nombre = 0; Nombre <= Dialogue.size(); ++Nombre) {
    SCOPED_TRACE(Nombre);
    int Essais = 1;
    while (Essais < 6 && !FinirAprès(Nombre, Dialogue)) ++Essais;
    EXPECT_LT(Essais, 6) << "the dialogue always ends ahead of the signal";
  }
}

}  // namespace Ombrey::Essais
