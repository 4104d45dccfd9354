// The station ended in the middle of its work: at every byte of a dialogue, in a box, while the database is locked.
#include <csignal>
#include <thread>

#include "common/ansi_text.h"
#include "link/checksum.h"
#include "tests/road/post.h"
#include "tests/serial/pseudo_terminal.h"

namespace Ombrey::Essais {
namespace {

using namespace std::chrono_literals;

/// The terminal's side of one dialogue, which stops dead once a number of bytes has passed, in both directions
/// together.
class Dialogue {
 public:
  explicit Dialogue(const PseudoTerminal& Ligne) : Ligne_(Ligne) {}

  static constexpr std::size_t Octets = 98;

  /// False when the station said nothing for seconds.
  bool Tenir(std::size_t Nombre) {
    struct Pas {
      std::size_t Attendus;
      std::string Envoi;
    };
    const std::string Trame(CalculerCheckSum(Ombrey::Octets("\x02" + Enregistrement(12) + "\x03")).Bruts());
    const std::vector<Pas> Déroulement{{2,
                                        "\x06"
                                        "A" +
                                            Trame},
                                       {1, ""},
                                       {2,
                                        "\x06"
                                        "8"},
                                       {28, "\x06"},
                                       {1, ""}};
    for (const Pas& P : Déroulement) {
      const std::size_t Voulus = std::min(P.Attendus, Nombre);
      if (!Recevoir(Voulus)) return false;
      Nombre -= Voulus;
      const std::size_t Envoyés = std::min(P.Envoi.size(), Nombre);
      if (Envoyés > 0) Ligne_.Envoyer(P.Envoi.substr(0, Envoyés));
      Nombre -= Envoyés;
      if (Nombre == 0) return true;
    }
    return true;
  }
  /// What the station wrote in all; call it when the station is gone.
  const std::string& ToutReçu() {
    Reçus_ += Ligne_.Recevoir();
    return Reçus_;
  }

 private:
  bool Recevoir(std::size_t Nombre) {
    const auto Limite = std::chrono::steady_clock::now() + 10s;
    Pris_ += Nombre;
    while (Reçus_.size() < Pris_) {
      Reçus_ += Ligne_.Recevoir();
      if (Reçus_.size() >= Pris_) break;
      if (std::chrono::steady_clock::now() > Limite) return false;
      std::this_thread::sleep_for(500us);
    }
    return true;
  }

  const PseudoTerminal& Ligne_;
  std::string Reçus_;
  std::size_t Pris_ = 0;
};

TEST(Endings, TermAtEveryByteOfADialogueEndsProperlyAndAcknowledgesNothingThatIsNotIn) {
  constexpr std::size_t OctetsJusquAccord = 64;
  for (std::size_t Nombre = 0; Nombre <= Dialogue::Octets; ++Nombre) {
    SCOPED_TRACE(Nombre);
    const Poste P;
    const PseudoTerminal Ligne;
    Dialogue LeDialogue(Ligne);
    P.Régler(Ligne.Nom());
    const auto Station =
        P.Station(Nombre % 2 == 0 ? std::vector<std::string>{"--sans-operateur"} : std::vector<std::string>{});
    Station->Taper("interroger");
    ASSERT_TRUE(Station->Attendre("commande «menu»"));
    ASSERT_TRUE(LeDialogue.Tenir(Nombre)) << Station->Dit();
    Station->Signaler(SIGTERM);
    ASSERT_EQ(Station->Fin(4s), 0) << Station->Dit();
    EXPECT_EQ(Station->Dit().find("boîte"), std::string::npos) << Station->Dit();
    // ENQ A, then the answer to the frame.
    const std::string& Reçus = LeDialogue.ToutReçu();
    const bool EstAcquitté = Reçus.size() > 2 && Reçus[2] == '\x06';
    const std::string Rentrés = P.Rentrés();
    if (EstAcquitté || Nombre >= OctetsJusquAccord) {
      EXPECT_EQ(Rentrés, "1 1 0");
    }
    EXPECT_TRUE(Reçus.size() <= 2 || EstAcquitté) << "refused without a reason";
    EXPECT_TRUE(Rentrés == "0 0 0" || Rentrés == "1 1 0") << Rentrés;
    EXPECT_EQ(P.Valeur("PRAGMA integrity_check"), "ok");
    EXPECT_FALSE(std::filesystem::exists(P.En("poste/import/RG80 import.txt")));
  }
}

TEST(Endings, TermWhileABoxWaitsForAnOperatorEndsAtOnce) {
  const Poste P;
  P.Régler(P.En("absent"));
  const auto Station = P.Station({});
  Station->Taper("interroger");
  ASSERT_TRUE(Station->Attendre("boîte «Erreur du port» (OK) : Le port " + P.En("absent") + " est absent"));
  Station->Signaler(SIGTERM);
  EXPECT_EQ(Station->Fin(2s), 0) << Station->Dit();
}

TEST(Endings, AConsoleThatNobodyReadsStopsNeitherTheLoadsNorTheEnd) {
  const Poste P;
  const auto Rg80 = P.Terminal({"--hasard", "3", "--jusqu-a-vide"});
  const auto Station = P.Station();
  constexpr int AssezPourUnTube = 60;
  for (int Fois = 0; Fois < AssezPourUnTube; ++Fois) Station->Taper("aide");
  Station->Taper("interroger");
  EXPECT_EQ(Rg80->Fin(), 0) << Rg80->Dit();
  EXPECT_EQ(P.Rentrés(), "3 3 0");
  Station->Signaler(SIGTERM);
  EXPECT_EQ(Station->FinSansLire(3s), 0);
}

TEST(Endings, TheEndOfTheInputAndACommandEndADialogueToo) {
  for (const char* Commande :
       {"fin", "interroger\nfin", "bouton\nfin", "menu\nfermer\nfin", "liste\nmessages\nerreurs\nfin"}) {
    SCOPED_TRACE(Commande);
    const Poste P;
    const auto Rg80 = P.Terminal({"--hasard", "3"});
    const auto Station = P.Station();
    Station->Taper(Commande);
    EXPECT_EQ(Station->Fin(5s), 0) << Station->Dit();
  }
}

}  // namespace
}  // namespace Ombrey::Essais
