// The machine's platform at work: configuring a port in a settings file, and a timer and a port made by it.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "platform/loop/poll_loop.h"
#include "platform/system/machine_platform.h"
#include "tests/serial/pseudo_terminal.h"
#include "tests/support/fake_platform.h"
#include "tests/support/test_folder.h"

namespace Ombrey {
namespace {

using Essai = std::function<std::string(const RéglagesPort&)>;

class Opérateur final : public IQuestionnairePort {
 public:
  bool Demander(RéglagesPort& Réglages, const Essai& Essayer) override { return Faire(Réglages, Essayer); }
  std::function<bool(RéglagesPort&, const Essai&)> Faire;
};

class Plateforme : public testing::Test {
 protected:
  void Poser(const std::string& Texte) const { std::ofstream(Ini_, std::ios::binary) << Texte; }
  [[nodiscard]] std::string Contenu() const {
    std::ifstream Flux(Ini_, std::ios::binary);
    return {std::istreambuf_iterator<char>(Flux), {}};
  }
  bool Configurer() {
    return Machine_.CréerClientPortComm([](const Octets&) {})->Configurer(Ini_, "S");
  }

  Essais::DossierEssai Dossier_;
  std::string Ini_ = (Dossier_.Chemin() / "tarvel.ini").string();
  Essais::FauxSystème Temps_;
  Essais::FaussesFenêtres Fenêtres_{Temps_};
  BouclePoll Boucle_;
  Opérateur Opérateur_;
  PlateformeMachine Machine_{Boucle_, Fenêtres_, &Opérateur_, Dossier_.Chemin(), Dossier_.Chemin() / "reglages.ini"};
  PseudoTerminal Loin_;
};

const std::string Avant =
    "; ligne\r\n[S]\r\nPort=COM3:\r\nBauds = 4800\r\nParit\xE9=E\r\nBitsStop=2\r\nTailleMots=7\r\n[Autre]\r\n";

TEST_F(Plateforme, ConfiguringShowsWhatTheFileHoldsAndWritesOnlyWhatWasChanged) {
  Poser(Avant);
  bool Garder = false;
  Opérateur_.Faire = [&](RéglagesPort& Réglages, const Essai&) {
    EXPECT_EQ(Réglages, (RéglagesPort{"COM3:", "4800", "E", "2", "7"}));
    Réglages.Bauds = "9600";
    Réglages.Parité = "impaire";
    return Garder;
  };
  EXPECT_FALSE(Configurer());
  EXPECT_EQ(Contenu(), Avant);
  Garder = true;
  EXPECT_TRUE(Configurer());
  EXPECT_EQ(Contenu(),
            "; ligne\r\n[S]\r\nPort=COM3:\r\nBauds = 9600\r\nParit\xE9=impaire\r\nBitsStop=2\r\nTailleMots=7\r\n"
            "[Autre]\r\n");
}

TEST_F(Plateforme, ConfiguringWithoutASectionProposesUsableSettings) {
  Opérateur_.Faire = [](RéglagesPort& Réglages, const Essai&) {
    EXPECT_FALSE(Réglages.Port.empty());
    Réglages.Port = "COM2:";
    return true;
  };
  EXPECT_TRUE(Configurer());
  EXPECT_EQ(Contenu(), "[S]\nPort=COM2:\nBauds=9600\nParité=aucune\nBitsStop=1\nTailleMots=8\n");
  Opérateur_.Faire = nullptr;
  PlateformeMachine Seule(Boucle_, Fenêtres_, nullptr, Dossier_.Chemin());
  EXPECT_FALSE(Seule.CréerClientPortComm([](const Octets&) {})->Configurer(Ini_, "S"));
}

TEST_F(Plateforme, TheTrialSaysWhatAnOpeningWouldSay) {
  const std::string Nom = Loin_.Nom();
  const std::pair<RéglagesPort, std::string> Cas[] = {
      {{Nom, "9600", "N", "1", "8"}, ""},
      {{Nom, "vite", "N", "1", "8"}, "« vite »"},
      {{Nom, "115200", "N", "1", "8"}, "« 115200 »"},
      {{Nom, "9600", "?", "1", "8"}, "« ? »"},
      {{Nom, "9600", "N", "", "8"}, "«  »"},
      {{"COM99:", "9600", "N", "1", "8"}, "« COM99: »"},
      {{"/dev/ttyRIEN", "9600", "N", "1", "8"}, "absent"},
  };
  Opérateur_.Faire = [&](const RéglagesPort&, const Essai& Essayer) {
    for (const auto& [Réglages, Mots] : Cas) {
      const std::string Texte = Essayer(Réglages);
      EXPECT_EQ(Texte.empty(), Mots.empty()) << Texte;
      EXPECT_NE(Texte.find(Mots), std::string::npos) << Texte;
    }
    return false;
  };
  EXPECT_FALSE(Configurer());
}

TEST_F(Plateforme, AnOpenPortIsNotDisturbedByItsOwnTrial) {
  std::string Reçus;
  const auto Client = Machine_.CréerClientPortComm([&](const Octets& Texte) { Reçus += Texte.Bruts(); });
  const auto Port = Machine_.CréerServeurPortComm()->ObtenirPort(Loin_.Nom(), Client);
  Port->FixerBauds(9600);
  Port->FixerTailleMots(8);
  Port->FixerParité("N");
  Port->FixerBitsStop(1);
  ASSERT_TRUE(Port->Ouvrir()) << Port->DernièreErreurPort();
  std::string Verdict;
  Opérateur_.Faire = [&](const RéglagesPort&, const Essai& Essayer) {
    Verdict = Essayer({Loin_.Nom(), "4800", "N", "1", "8"});
    return false;
  };
  EXPECT_FALSE(Port->Configurer(Ini_, "S"));
  EXPECT_EQ(Verdict, "");
  EXPECT_TRUE(Port->Ecrire(Octets("x")));
  // An object that doesn't hold the port finds it taken.
  EXPECT_FALSE(Configurer());
  EXPECT_NE(Verdict.find("déjà utilisé"), std::string::npos) << Verdict;
  bool Fini = false;
  const auto Retard = Machine_.CréerRetard([&](const std::string&) { Fini = true; });
  Loin_.Envoyer("vu");
  Retard->Démarrer(50, "");
  while (!Fini) Machine_.Système().Pomper(std::chrono::milliseconds(100));
  EXPECT_EQ(Reçus, "vu");
}

}  // namespace
}  // namespace Ombrey
