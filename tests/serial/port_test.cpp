// The port on a pseudo-terminal: receiving, writing at line pace, loss and return, what it refuses.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <termios.h>

#include <fstream>
#include <vector>

#include "platform/loop/poll_loop.h"
#include "platform/serial/port_server.h"
#include "tests/serial/pseudo_terminal.h"
#include "tests/support/test_folder.h"

namespace Ombrey {
namespace {

using namespace std::chrono_literals;
using Horloge = std::chrono::steady_clock;

constexpr std::int16_t Bauds = 19200;
constexpr double OctetsParSeconde = Bauds / 10.0;

class Port : public testing::Test {
 protected:
  std::shared_ptr<IPortComm> Obtenir(const std::string& Nom) {
    ServeurPortComm Serveur({Boucle_, {}, nullptr});
    const auto Client = std::make_shared<ClientPortComm>(ContextePort{Boucle_, {}, nullptr}, [this](const Octets& T) {
      Reçus_.emplace_back(T.Bruts());
      if (ÀLaLecture_) ÀLaLecture_();
    });
    auto Obtenu = Serveur.ObtenirPort(Nom, Client);
    EXPECT_TRUE(Obtenu) << Serveur.ErreurServeur();
    Obtenu->FixerBauds(Bauds);
    Obtenu->FixerTailleMots(8);
    Obtenu->FixerParité("N");
    Obtenu->FixerBitsStop(1);
    return Obtenu;
  }
  std::shared_ptr<IPortComm> Ouvert() {
    auto Obtenu = Obtenir(Loin_.Nom());
    EXPECT_TRUE(Obtenu->Ouvrir()) << Obtenu->DernièreErreurPort();
    return Obtenu;
  }
  /// Pumps until as many bursts have come up, or a second is over.
  void Attendre(std::size_t Nombre) {
    const auto Fin = Horloge::now() + 1s;
    while (Reçus_.size() < Nombre && Horloge::now() < Fin) Boucle_.Pomper(50ms);
  }
  void ExpectErreur(const IPortComm& LePort, const std::string& Nom, const std::string& Mots) {
    const std::string Texte = LePort.DernièreErreurPort();
    EXPECT_NE(Texte.find(Nom), std::string::npos) << Texte;
    EXPECT_NE(Texte.find(Mots), std::string::npos) << Texte;
  }

  BouclePoll Boucle_;
  PseudoTerminal Loin_;
  std::vector<std::string> Reçus_;
  std::function<void()> ÀLaLecture_;
};

TEST_F(Port, HandsUpAFrameWholeAndAnAnswerAfterItsSilence) {
  const auto LePort = Ouvert();
  const std::string Trame =
      "\x06"
      "A\x02" +
      std::string(55, '1') +
      "\x03"
      "00";
  for (const char Octet : Trame) {
    Loin_.Envoyer({&Octet, 1});
    Boucle_.Pomper(100ms);
  }
  EXPECT_EQ(Reçus_, std::vector<std::string>{Trame});
  // Everything passes as it is: no echo, no line ends turned, no flow control, no signal characters.
  const std::string Tous = "\x15\r\n\x11\x13\x03\x04\x7F\x1A\xFF\xE9";
  Loin_.Envoyer(Tous);
  Attendre(2);
  EXPECT_EQ(Reçus_, (std::vector<std::string>{Trame, Tous}));
  Octets Texte("reste");
  EXPECT_TRUE(LePort->Lire(Texte));
  EXPECT_TRUE(Texte.EstVide());
  EXPECT_EQ(Loin_.Recevoir(), "");
}

TEST_F(Port, DoesNotTakeItsOwnDelayForSilence) {
  const auto LePort = Ouvert();
  Loin_.Envoyer("A");
  Boucle_.Pomper(100ms);
  usleep(10000);
  Loin_.Envoyer("B");
  Attendre(1);
  EXPECT_EQ(Reçus_, std::vector<std::string>{"AB"});
}

TEST_F(Port, MayBeClosedAndDroppedByItsOwnEvent) {
  auto LePort = Ouvert();
  ÀLaLecture_ = [&] {
    LePort->Fermer();
    LePort.reset();
  };
  Loin_.Envoyer(
      "\x02x\x03"
      "12\x02y\x03"
      "34");
  Attendre(1);
  EXPECT_FALSE(Boucle_.Pomper(20ms));
  EXPECT_EQ(Reçus_.size(), 1U);
}

TEST_F(Port, WritesAtThePaceOfTheLine) {
  const auto LePort = Ouvert();
  const std::string Fichier(1920, 'F');
  std::string Arrivés;
  double AvanceMax = 0;
  auto DernierPompage = Horloge::now();
  Horloge::duration PauseMax{};
  const auto Début = Horloge::now();
  const auto Lecture = Boucle_.Surveiller(Loin_.Numéro(), IBoucle::Attente::Lecture, [&] {
    Arrivés += Loin_.Recevoir();
    const std::chrono::duration<double> Depuis = Horloge::now() - Début;
    AvanceMax = std::max(AvanceMax, static_cast<double>(Arrivés.size()) / OctetsParSeconde - Depuis.count());
  });
  IBoucle::Jeton Battement;
  const std::function<void()> Battre = [&] {
    PauseMax = std::max(PauseMax, Horloge::now() - DernierPompage);
    DernierPompage = Horloge::now();
    Battement = Boucle_.Après(1ms, Battre);
  };
  Battre();
  EXPECT_TRUE(LePort->Ecrire(Octets(Fichier)));
  const std::chrono::duration<double> Durée = Horloge::now() - Début;
  Battement.reset();
  while (Boucle_.Pomper(0ms)) {
  }
  EXPECT_EQ(Arrivés, Fichier);
  EXPECT_GE(Durée.count(), 1.0);
  // Room for a busy machine; unpaced, the write would be over at once.
  EXPECT_LT(Durée.count(), 1.2);
  EXPECT_LT(AvanceMax, 0.101);
  EXPECT_LT(PauseMax, 150ms);
}

TEST_F(Port, SendsAShortFrameAtOnceAndReturnsWhenItHasLeft) {
  const auto LePort = Ouvert();
  const std::string Trame(96, 'T');
  std::string Arrivés;
  const auto Aussitôt = Boucle_.Après(0ms, [&] { Arrivés = Loin_.Recevoir(); });
  const auto Début = Horloge::now();
  EXPECT_TRUE(LePort->Ecrire(Octets(Trame)));
  EXPECT_GE(Horloge::now() - Début, 50ms);
  EXPECT_EQ(Arrivés, Trame);
  EXPECT_TRUE(LePort->Ecrire(Octets()));
  LePort->FixerBauds(50);
  ASSERT_TRUE(LePort->Ouvrir());
  EXPECT_TRUE(LePort->Ecrire(Octets("x"))) << LePort->DernièreErreurPort();
}

TEST_F(Port, CloseWithinAWriteEndsItAtOnceAndASecondWriteIsRefused) {
  const auto LePort = Ouvert();
  bool Second = true;
  const auto Imbriqué = Boucle_.Après(5ms, [&] { Second = LePort->Ecrire(Octets("autre")); });
  const auto Fermeture = Boucle_.Après(20ms, [&] { LePort->Fermer(); });
  const auto Début = Horloge::now();
  EXPECT_FALSE(LePort->Ecrire(Octets(20000, 'x')));
  EXPECT_LT(Horloge::now() - Début, 500ms);
  EXPECT_FALSE(Second);
  ExpectErreur(*LePort, Loin_.Nom(), "fermé pendant l'envoi");
  EXPECT_EQ(Loin_.Recevoir().find("autre"), std::string::npos);
  EXPECT_FALSE(LePort->Ecrire(Octets("x")));
  ExpectErreur(*LePort, Loin_.Nom(), "est fermé");
}

TEST_F(Port, EndsAWriteWhenTheLineOpensAnewWithinIt) {
  const auto LePort = Ouvert();
  const auto Reprise = Boucle_.Après(5ms, [&] { EXPECT_TRUE(LePort->Ouvrir()) << LePort->DernièreErreurPort(); });
  EXPECT_FALSE(LePort->Ecrire(Octets(20000, 'x')));
  EXPECT_TRUE(LePort->Ecrire(Octets("suite")));
  EXPECT_EQ(LePort->DernièreErreurPort(), "");
}

TEST_F(Port, GivesUpAFarSideThatTakesNothing) {
  const auto LePort = Ouvert();
  const Descripteur Autre(open(Loin_.Nom().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
  ASSERT_EQ(tcflow(Autre.Numéro(), TCOOFF), 0);
  const auto Début = Horloge::now();
  EXPECT_FALSE(LePort->Ecrire(Octets("bloqué")));
  EXPECT_LT(Horloge::now() - Début, 6s);
  ExpectErreur(*LePort, Loin_.Nom(), "ne prend rien");
}

TEST_F(Port, LostIsOpenedAgainAtTheNextWriteUnderItsName) {
  const Essais::DossierEssai Dossier;
  const std::string Lien = (Dossier.Chemin() / "ligne").string();
  Loin_.Lier(Lien);
  const auto LePort = Obtenir(Lien);
  ASSERT_TRUE(LePort->Ouvrir());
  Loin_.Envoyer(
      "\x02"
      "début");
  Boucle_.Pomper(100ms);
  Loin_.Fermer();
  Attendre(1);
  EXPECT_EQ(Reçus_, std::vector<std::string>{"\x02"
                                             "début"});
  ExpectErreur(*LePort, Lien, "a été perdu");
  EXPECT_FALSE(Boucle_.Pomper(20ms)) << "a lost port must not keep the loop busy";
  EXPECT_FALSE(LePort->Ecrire(Octets("x")));
  ExpectErreur(*LePort, Lien, "absent");
  const PseudoTerminal Nouveau;
  Nouveau.Lier(Lien);
  EXPECT_TRUE(LePort->Ecrire(Octets("me revoilà"))) << LePort->DernièreErreurPort();
  EXPECT_EQ(Nouveau.Recevoir(), "me revoilà");
  Nouveau.Envoyer("bon");
  Attendre(2);
  EXPECT_EQ(Reçus_.back(), "bon");
}

TEST_F(Port, LostInTheMiddleOfAWriteFailsIt) {
  const auto LePort = Ouvert();
  const auto Coupure = Boucle_.Après(20ms, [&] { Loin_.Fermer(); });
  EXPECT_FALSE(LePort->Ecrire(Octets(20000, 'x')));
  ExpectErreur(*LePort, Loin_.Nom(), "a été perdu");
}

TEST_F(Port, TakenByAnotherIsHadOnceItIsFree) {
  const auto Premier = Ouvert();
  const auto Second = Obtenir(Loin_.Nom());
  EXPECT_FALSE(Second->Ouvrir());
  ExpectErreur(*Second, Loin_.Nom(), "déjà utilisé par un autre programme");
  EXPECT_FALSE(Second->Ecrire(Octets("x")));
  Premier->Fermer();
  EXPECT_TRUE(Second->Ecrire(Octets("à moi")));
  EXPECT_EQ(Loin_.Recevoir(), "à moi");
}

TEST_F(Port, SaysWhyItCannotBeHad) {
  const Essais::DossierEssai Dossier;
  const std::string Fichier = (Dossier.Chemin() / "fichier").string();
  std::ofstream(Fichier) << "x";
  const std::pair<std::string, const char*> Cas[] = {{"/dev/ttyRIEN", "est absent"},
                                                     {Fichier, "n'est pas un port série"},
                                                     {Dossier.Chemin().string(), "n'est pas un port série"},
                                                     {"/dev/null", "n'est pas un port série"}};
  for (const auto& [Nom, Mots] : Cas) {
    const auto LePort = Obtenir(Nom);
    EXPECT_FALSE(LePort->Ouvrir());
    ExpectErreur(*LePort, Nom, Mots);
  }
  const auto LePort = Obtenir(Loin_.Nom());
  LePort->FixerParité("aucun souci");
  EXPECT_FALSE(LePort->Ouvrir());
  ExpectErreur(*LePort, Loin_.Nom(), "« aucun souci »");
  LePort->FixerParité("aucune");
  EXPECT_TRUE(LePort->Ecrire(Octets("x")));
}

TEST_F(Port, NamesTheGroupThatHasTheRight) {
  ASSERT_EQ(chmod(Loin_.Nom().c_str(), 0), 0);
  const auto LePort = Obtenir(Loin_.Nom());
  const uid_t Moi = geteuid();
  constexpr uid_t Personne = 65534;
  if (Moi == 0) {
    ASSERT_EQ(seteuid(Personne), 0);
  }
  EXPECT_FALSE(LePort->Ouvrir());
  ASSERT_EQ(seteuid(Moi), 0);
  ExpectErreur(*LePort, Loin_.Nom(), "sudo usermod -aG ");
}

TEST_F(Port, ServerExplainsAPortThatItCannotGive) {
  ServeurPortComm Serveur({Boucle_, {}, nullptr});
  const auto Client = std::make_shared<ClientPortComm>(ContextePort{Boucle_, {}, nullptr}, [](const Octets&) {});
  EXPECT_FALSE(Serveur.ObtenirPort("COM99:", Client));
  EXPECT_NE(Serveur.ErreurServeur().find("COM99:"), std::string::npos);
  EXPECT_FALSE(Serveur.ObtenirPort("COM1:", nullptr));
  EXPECT_NE(Serveur.ErreurServeur(), "");
  EXPECT_TRUE(Serveur.ObtenirPort("COM1:", Client));
  EXPECT_EQ(Serveur.ErreurServeur(), "");
}

}  // namespace
}  // namespace Ombrey
