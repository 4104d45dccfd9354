// The station ended in the middle of its work.
#include <algorithm>
#include <vector>

#include "base/checksum.h"
#include "tests/road/post.h"
#include "tests/serial/pseudo_terminal.h"

namespace Ombrey::Essais {

/// Plays the terminal's side, S standing for each byte of the station's, which go to Reçus; true when all of those
/// came.
static bool Jouer(const PseudoTerminal& Ligne, std::string_view Dialogue, std::string& Reçus) {
  std::size_t Attendus = 0;
  bool SontVenus = true;
  for (const char C : Dialogue) {
    C == 'S' ? void(++Attendus) : Ligne.Envoyer({&C, 1});
    SontVenus = SontVenus && Bientôt([&] { return (Reçus += Ligne.Recevoir()).size() >= Attendus; }, 10s);
  }
  return SontVenus;
}

/// The dialogue up to so many bytes, then SIGTERM, and the seconds until its end. False: this machine was so busy that
/// the dialogue had ended by itself.
static bool FinirAprès(std::size_t Nombre, const std::string& Dialogue, std::vector<double>& Secondes) {
  Poste P;
  const PseudoTerminal Ligne;
  P.Faire("$ sed -i s,=/.*,=" + Ligne.Nom() + ", tarvel.ini");
  P.LancerStation("interroger", Nombre % 2 == 0 ? "--sans-operateur" : "");
  EXPECT_TRUE(P.Station->Attendre("commande « menu »", 60s));
  std::string Reçus;
  const bool SontVenus = Jouer(Ligne, Dialogue.substr(0, Nombre), Reçus);
  const auto Demandée = std::chrono::steady_clock::now();
  P.Station->Signaler(SIGTERM);
  EXPECT_EQ(P.Station->Fin(5s), 0) << P.Dit();
  Secondes.push_back(std::chrono::duration<double>(std::chrono::steady_clock::now() - Demandée).count());
  EXPECT_TRUE(std::filesystem::is_empty(P.En("poste/import")));
  // Behind the last byte that it waits for the station ends it by itself.
  if (Nombre + 1 < Dialogue.size() && P.Dit().find("Vérification de nouveaux") != std::string::npos) return false;
  EXPECT_TRUE(SontVenus) << P.Dit();
  EXPECT_EQ(P.Dit().find("boîte"), std::string::npos) << P.Dit();
  // Behind the request: acknowledged and in, or nothing at all, and that only until the announcement.
  const bool EstAcquitté = (Reçus += Ligne.Recevoir()).substr(2, 1) == "\6";
  if (!EstAcquitté) {
    EXPECT_LE(Reçus.size(), 2U) << P.Dit();
    EXPECT_LT(Nombre, Dialogue.find("SSS") + 2) << P.Dit();
  }
  // A load that is in and whose ACK hasn't gone is offered again.
  if (EstAcquitté || P.Rentrés() != "0 0 0") {
    EXPECT_EQ(P.Rentrés(), "1 1 0") << P.Dit();
  }
  return true;
}

/// Both directions together: request, accord, announcement, reply, end.
static std::string DialogueEntier() {
  const Octets Trame = CalculerCheckSum(Octets("\x02" + Enregistrement() + "\x03"));
  return "SS\6A" + std::string(Trame.Bruts()) + "SSS\0068" + std::string(28, 'S') + "\6S";
}

TEST(Endings, TermAtEveryByteOfADialogueEndsProperlyAndAcknowledgesNothingThatIsNotIn) {
  const std::string Dialogue = DialogueEntier();
  std::vector<double> Secondes;
  for (std::size_t Nombre = 0; Nombre <= Dialogue.size(); ++Nombre) {
    SCOPED_TRACE(Nombre);
    int Essais = 1;
    while (Essais < 6 && !FinirAprès(Nombre, Dialogue, Secondes)) ++Essais;
    EXPECT_LT(Essais, 6) << "the dialogue always ends ahead of the signal";
  }
  std::ranges::sort(Secondes);
  EXPECT_LT(Secondes[Secondes.size() / 2], 1.0) << "the longest: " << Secondes.back();
}

TEST(Endings, TermEndsAStationThatWaitsForALockAndTheLoadIsOfferedAgain) {
  Poste P;
  std::ofstream(P.En("offerts")) << Enregistrement() << '\n';
  P.LancerTerminal("--chargements offerts");
  const auto Autre = P.Base();
  P.LancerStation("messages");
  EXPECT_TRUE(P.Station->Attendre("commande « menu »", 60s));
  Autre->Exécuter("BEGIN IMMEDIATE");
  P.Station->Taper("interroger");
  const std::filesystem::path Import = P.En("poste/import");
  EXPECT_TRUE(Bientôt([&] { return exists(Import) && !is_empty(Import); }, 30s)) << P.Dit();
  P.Station->Signaler(SIGTERM);
  EXPECT_EQ(P.Station->Fin(AttenteVerrou / 2), 0) << P.Dit();
  Autre->Exécuter("COMMIT");
  EXPECT_EQ(P.Rentrés(), "0 0 0");
}

TEST(Endings, APortThatIsLostAnywhereIsSaidAndTakesTheLoadOrTheFileOnceItIsBack) {
  // Lost behind: the request, a part of the frame, the announcement, a part of the reply; a part of a file.
  const std::string Fichier = "SS\0068SS\0064" + std::string(20, 'S');
  const std::pair<const char*, std::string> Cas[] = {{"interroger", DialogueEntier().substr(0, 2)},
                                                     {"interroger", DialogueEntier().substr(0, 30)},
                                                     {"interroger", DialogueEntier().substr(0, 66)},
                                                     {"interroger", DialogueEntier().substr(0, 80)},
                                                     {"menu\ntransferer", Fichier}};
  for (const auto& [Tapé, Dialogue] : Cas) {
    SCOPED_TRACE(Dialogue.size());
    Poste P;
    P.Faire("$ sed -i s/=20/=200/ tarvel.ini");
    const bool EstFichier = Tapé != std::string("interroger");
    std::string Reçus;
    {
      const PseudoTerminal Ligne;
      std::filesystem::create_symlink(Ligne.Nom(), P.En("ligne"));
      P.LancerStation(Tapé, EstFichier ? "" : "--sans-operateur");
      EXPECT_TRUE(Jouer(Ligne, Dialogue, Reçus)) << P.Dit();
    }
    EXPECT_TRUE(P.Station->Attendre("ligne a été perdu")) << P.Dit();
    std::ofstream(P.En("offerts")) << Enregistrement() << '\n';
    P.LancerTerminal(EstFichier ? "--f6" : "--chargements offerts --jusqu-a-vide");
    int Essais = 0;
    while (EstFichier && !P.Rg80->Attendre("(appellations) reçu", 5s) && ++Essais < 6)
      P.Station->Taper("ok\nrecommencer");
    if (EstFichier) P.Rg80->Signaler(SIGINT);
    P.Finir(EstFichier ? "0 0 0" : "1 1 0");
  }
}

}  // namespace Ombrey::Essais
