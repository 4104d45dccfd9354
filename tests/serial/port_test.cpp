// The port on a pseudo-terminal: receiving, writing at line pace, loss and return.
#include <termios.h>

#include <filesystem>
#include <vector>

#include "platform/loop/poll_loop.h"
#include "platform/serial/port_server.h"
#include "tests/serial/pseudo_terminal.h"
#include "tests/support/test_folder.h"

namespace Ombrey {
namespace {

using namespace std::chrono_literals;
using Horloge = std::chrono::steady_clock;

/// The terminal is known by a link: another one can take its place.
class Port : public testing::Test {
 protected:
  Port() {
    std::filesystem::create_symlink(Loin_.Nom(), Lien_);
    LePort_ = Obtenir(Lien_);
    EXPECT_TRUE(LePort_->Ouvrir());
  }
  std::shared_ptr<IPortComm> Obtenir(const std::string& Nom) {
    const auto Client = std::make_shared<ClientPortComm>(ContextePort{Boucle_, {}, nullptr}, [this](const Octets& T) {
      Reçus_.emplace_back(T.Bruts());
      if (ÀLaLecture_) ÀLaLecture_();
    });
    auto Obtenu = Serveur_.ObtenirPort(Nom, Client);
    Obtenu->FixerBauds(19200);
    Obtenu->FixerTailleMots(8);
    Obtenu->FixerParité("N");
    Obtenu->FixerBitsStop(1);
    return Obtenu;
  }
  static void ExpectErreur(const IPortComm& LePort, const std::string& Nom, const std::string& Mots) {
    const std::string Texte = LePort.DernièreErreurPort();
    EXPECT_TRUE(Texte.find(Nom) != std::string::npos && Texte.find(Mots) != std::string::npos) << Mots << Texte;
  }

  BouclePoll Boucle_;
  ServeurPortComm Serveur_{{Boucle_, {}, nullptr}};
  PseudoTerminal Loin_;
  Essais::DossierEssai Dossier_;
  std::string Lien_ = Dossier_.Chemin() / "ligne";
  std::shared_ptr<IPortComm> LePort_;
  std::vector<std::string> Reçus_;
  std::function<void()> ÀLaLecture_;
};

TEST_F(Port, HandsUpAFrameWholeAndWhatStandsOutsideAtOnce) {
  const std::string Trame = "\x02" + std::string(55, '1') + "\x03:0";
  for (const char Octet : "\x06!" + Trame) {
    Loin_.Envoyer({&Octet, 1});
    Boucle_.Pomper(100ms);
  }
  EXPECT_EQ(Reçus_, (std::vector<std::string>{"\x06", "!", Trame}));
  // Everything passes as it is: no echo, no line ends turned, no flow control, no signal characters.
  const std::string Tous = "\x15\r\n\x11\x13\x03\x04\x7F\x1A\xFF\xE9";
  Loin_.Envoyer(Tous);
  ASSERT_TRUE(Boucle_.Pomper(1s));
  EXPECT_EQ(Reçus_.back(), Tous);
  EXPECT_EQ(Loin_.Recevoir(), "");
  // What is held back behind an STX, and what no pump has read yet, go up when somebody asks for it.
  Loin_.Envoyer("\x02x");
  ASSERT_TRUE(Boucle_.Pomper(1s));
  Loin_.Envoyer(
      "\x15"
      "A");
  EXPECT_EQ(Reçus_.back(), Tous);
  LePort_->Relever();
  EXPECT_EQ(Reçus_.back(),
            "\x02x\x15"
            "A");
  EXPECT_EQ(LePort_->SilenceFinMessage(), 100ms);
}

TEST_F(Port, MayBeClosedAndDroppedByItsOwnEvent) {
  ÀLaLecture_ = [&] {
    LePort_->Fermer();
    LePort_.reset();
  };
  Loin_.Envoyer("\x02x\x03:2\x02y\x03:4");
  EXPECT_TRUE(Boucle_.Pomper(1s));
  EXPECT_FALSE(Boucle_.Pomper(20ms));
  EXPECT_EQ(Reçus_.size(), 1U);
}

TEST_F(Port, WritesAtThePaceOfTheLine) {
  const std::string Fichier(1920, 'F');
  std::string Arrivés;
  double Avance = 0;
  int Battements = 0;
  IBoucle::Jeton Battement;
  const auto Depuis = [D = Horloge::now()] { return std::chrono::duration<double>(Horloge::now() - D).count(); };
  const std::function<void()> Battre = [&] {
    Arrivés += Loin_.Recevoir();
    Avance = std::max(Avance, static_cast<double>(Arrivés.size()) / 1920 - Depuis());
    ++Battements;
    Battement = Boucle_.Après(1ms, Battre);
  };
  Battre();
  EXPECT_TRUE(LePort_->Ecrire(Octets(Fichier)));
  const double Durée = Depuis();
  EXPECT_EQ(Arrivés + Loin_.Recevoir(), Fichier);
  // Room for a busy machine; unpaced, the write would be over at once.
  EXPECT_TRUE(Durée >= 1 && Durée < 1.5) << Durée;
  EXPECT_TRUE(Avance > 0.05 && Avance < 0.101 && Battements > 20) << Avance << " s ahead, rounds: " << Battements;
  LePort_->FixerBauds(50);  // one character takes longer than the advance
  ASSERT_TRUE(LePort_->Ouvrir());
  EXPECT_TRUE(LePort_->Ecrire(Octets("x"))) << LePort_->DernièreErreurPort();
}

TEST_F(Port, AWriteHasItsLineAloneAndEndsWithIt) {
  const Descripteur Autre(open(Lien_.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
  const std::pair<std::function<void()>, const char*> Cas[] = {
      {[&] { LePort_->Ouvrir(); }, "fermé pendant l'envoi"},
      {[&] { LePort_->Fermer(); }, "fermé pendant l'envoi"},
      {[&] { tcflow(Autre.Numéro(), TCOOFF); }, "ne prend rien"},
      {[&] { Loin_.Maître.Fermer(); }, "a été perdu"}};
  for (const auto& [Faire, Mots] : Cas) {
    ASSERT_TRUE(LePort_->Ouvrir());
    const auto Imbriqué = Boucle_.Après(5ms, [&] { EXPECT_FALSE(LePort_->Ecrire(Octets("autre"))); });
    const auto Fin = Boucle_.Après(20ms, Faire);
    const auto Début = Horloge::now();
    EXPECT_FALSE(LePort_->Ecrire(Octets(20000, 'x')));
    EXPECT_LT(Horloge::now() - Début, 7s) << "all of it would take ten";
    ExpectErreur(*LePort_, Lien_, Mots);
    EXPECT_EQ(Loin_.Recevoir().find("autre"), std::string::npos);
  }
  LePort_->Fermer();
  EXPECT_FALSE(LePort_->Ecrire(Octets("x")));
  ExpectErreur(*LePort_, Lien_, "est fermé");
}

TEST_F(Port, LostIsOpenedAgainAtTheNextWriteUnderItsName) {
  Loin_.Envoyer("\x02reste");
  Boucle_.Pomper(100ms);
  Loin_.Maître.Fermer();
  EXPECT_TRUE(Boucle_.Pomper(1s));
  EXPECT_EQ(Reçus_.at(0), "\x02reste");
  ExpectErreur(*LePort_, Lien_, "a été perdu");
  EXPECT_FALSE(Boucle_.Pomper(20ms)) << "a lost port must not keep the loop busy";
  // Ahead of the attempt: the number of a closed pseudo-terminal is free for any test that runs beside this one.
  std::filesystem::remove(Lien_);
  EXPECT_FALSE(LePort_->Ecrire(Octets("x")));
  ExpectErreur(*LePort_, Lien_, "absent");
  const PseudoTerminal Nouveau;
  std::filesystem::create_symlink(Nouveau.Nom(), Lien_);
  EXPECT_TRUE(LePort_->Ecrire(Octets("me revoilà"))) << LePort_->DernièreErreurPort();
  EXPECT_EQ(Nouveau.Recevoir(), "me revoilà");
  Nouveau.Envoyer("bon");
  while (Reçus_.size() < 2) ASSERT_TRUE(Boucle_.Pomper(1s));
  EXPECT_EQ(Reçus_.back(), "bon");
}

}  // namespace
}  // namespace Ombrey
