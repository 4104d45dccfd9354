// Configuring a port: what is asked, tried and written.
#include <gtest/gtest.h>

#include <map>
#include <vector>

#include "platform/loop/poll_loop.h"
#include "platform/serial/port_server.h"
#include "tests/serial/pseudo_terminal.h"

namespace Ombrey {
namespace {

/// A settings file in memory.
struct Fichier {
  std::map<std::string, std::string> Clés;
  std::vector<std::string> Ecrites;
};

class LecteurEssai final : public ILecteurIni {
 public:
  explicit LecteurEssai(Fichier& Sous) : Sous_(Sous) {}
  void FixerFichier(const std::string& Chemin) override { EXPECT_EQ(Chemin, "F"); }
  void FixerSection(const std::string& Section) override { EXPECT_EQ(Section, "S"); }
  void FixerClé(const std::string& Clé) override { Clé_ = Clé; }
  [[nodiscard]] std::string Valeur() const override { return Valeur_; }
  void FixerValeur(const std::string& Valeur) override { Valeur_ = Valeur; }
  void EcrireValeur(bool&) override {
    Sous_.Clés[Clé_] = Valeur_;
    Sous_.Ecrites.push_back(Clé_);
  }
  void LireValeur(bool&) override { Valeur_ = Sous_.Clés[Clé_]; }

 private:
  Fichier& Sous_;
  std::string Clé_;
  std::string Valeur_;
};

using Essai = std::function<std::string(const RéglagesPort&)>;

class Opérateur final : public IQuestionnairePort {
 public:
  bool Demander(RéglagesPort& Réglages, const Essai& Essayer) override { return Faire(Réglages, Essayer); }
  std::function<bool(RéglagesPort&, const Essai&)> Faire;
};

class Dialogue : public testing::Test {
 protected:
  [[nodiscard]] ContextePort Contexte() {
    return {Boucle_, [this] { return std::make_unique<LecteurEssai>(Ini_); }, &Opérateur_};
  }
  bool Configurer() {
    return ClientPortComm(Contexte(), [](const Octets&) {}).Configurer("F", "S");
  }

  BouclePoll Boucle_;
  PseudoTerminal Loin_;
  Fichier Ini_{{{"Port", "COM3:"}, {"Bauds", "4800"}, {"Parité", "E"}, {"BitsStop", "2"}, {"TailleMots", "7"}}, {}};
  Opérateur Opérateur_;
};

TEST_F(Dialogue, ShowsWhatTheFileHoldsAndWritesOnlyWhatWasChanged) {
  Opérateur_.Faire = [](RéglagesPort& Réglages, const Essai&) {
    EXPECT_EQ(Réglages, (RéglagesPort{"COM3:", "4800", "E", "2", "7"}));
    Réglages.Bauds = "9600";
    Réglages.Parité = "impaire";
    return true;
  };
  EXPECT_TRUE(Configurer());
  EXPECT_EQ(Ini_.Ecrites, (std::vector<std::string>{"Bauds", "Parité"}));
  EXPECT_EQ(Ini_.Clés["Bauds"], "9600");
}

TEST_F(Dialogue, ProposesUsableSettingsWhereTheFileHasNone) {
  Ini_.Clés.clear();
  Opérateur_.Faire = [](const RéglagesPort& Réglages, const Essai&) {
    EXPECT_FALSE(Réglages.Port.empty());
    EXPECT_EQ(Réglages.Bauds, "9600");
    return true;
  };
  EXPECT_TRUE(Configurer());
  EXPECT_EQ(Ini_.Ecrites.size(), 5U);
}

TEST_F(Dialogue, CancelledOrWithoutAnybodyToAskLeavesTheFile) {
  Opérateur_.Faire = [](RéglagesPort& Réglages, const Essai&) {
    Réglages.Bauds = "9600";
    return false;
  };
  EXPECT_FALSE(Configurer());
  ContextePort Seul = Contexte();
  Seul.Questionnaire = nullptr;
  EXPECT_FALSE(ClientPortComm(Seul, [](const Octets&) {}).Configurer("F", "S"));
  EXPECT_TRUE(Ini_.Ecrites.empty());
}

TEST_F(Dialogue, TheTrialSaysWhatAnOpeningWouldSay) {
  const std::string Nom = Loin_.Nom();
  const std::pair<RéglagesPort, std::string> Cas[] = {
      {{Nom, "9600", "N", "1", "8"}, ""},
      {{Nom, "vite", "N", "1", "8"}, "« vite »"},
      {{Nom, "9600 ", "N", "1", "8"}, "« 9600  »"},
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

TEST_F(Dialogue, APortOpenHereIsNotDisturbedByItsOwnTrial) {
  ServeurPortComm Serveur(Contexte());
  const auto LePort =
      Serveur.ObtenirPort(Loin_.Nom(), std::make_shared<ClientPortComm>(Contexte(), [](const Octets&) {}));
  LePort->FixerBauds(9600);
  LePort->FixerTailleMots(8);
  LePort->FixerParité("N");
  LePort->FixerBitsStop(1);
  ASSERT_TRUE(LePort->Ouvrir());
  Opérateur_.Faire = [&](const RéglagesPort&, const Essai& Essayer) {
    EXPECT_EQ(Essayer({Loin_.Nom(), "4800", "N", "1", "8"}), "");
    return false;
  };
  EXPECT_FALSE(LePort->Configurer("F", "S"));
  EXPECT_TRUE(LePort->Ecrire(Octets("x")));
  // Another port object doesn't own the device, so its trial finds it taken.
  Opérateur_.Faire = [&](const RéglagesPort&, const Essai& Essayer) {
    EXPECT_NE(Essayer({Loin_.Nom(), "4800", "N", "1", "8"}).find("déjà utilisé"), std::string::npos);
    return false;
  };
  EXPECT_FALSE(Configurer());
}

}  // namespace
}  // namespace Ombrey
