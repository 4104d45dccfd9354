// The port on a pseudo-terminal: receiving, writing at line pace, loss and return.
#include <termios.h>

#include <thread>
#include <tuple>

#include "platform/loop/poll_loop.h"
#include "platform/serial/port_server.h"
#include "tests/serial/pseudo_terminal.h"
#include "tests/serial/usb_tree.h"
#include "tests/support/test_folder.h"

namespace Ombrey::Essais {

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
    const auto Client = std::make_shared<ClientPortComm>(
        ContextePort{Boucle_, {}, nullptr},
        [this](const Octets& T) {
          Reçus_.emplace_back(T.Bruts());
          if (ÀLaLecture_) ÀLaLecture_();
        },
        [this](const std::string& Texte, bool Présente) { États_ += (Présente ? "[x] " : "[ ] ") + Texte + "\n"; });
    auto Obtenu = Serveur_.ObtenirPort(Nom, Client);
    Obtenu->FixerBauds(19200);
    Obtenu->FixerTailleMots(8);
    Obtenu->FixerParité("N");
    Obtenu->FixerBitsStop(1);
    return Obtenu;
  }
  static void ExpectErreur(const IPortComm& LePort, const std::string& Nom, const std::string& Mots) {
    const std::string Texte = LePort.DernièreErreurPort();
    for (const std::string& Un : {Nom, Mots}) EXPECT_NE(Texte.find(Un), std::string::npos) << Un << "\n" << Texte;
  }

  BouclePoll Boucle_;
  DossierEssai Dossier_;
  ArbreUsb Usb_{Dossier_.Chemin()};
  ServeurPortComm Serveur_{{Boucle_, {}, nullptr, Usb_.Racines}};
  PseudoTerminal Loin_;
  std::string Lien_ = Dossier_.Chemin() / "ligne";
  std::shared_ptr<IPortComm> LePort_;
  std::vector<std::string> Reçus_;
  std::string États_;
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
  Loin_.Envoyer("\25A");
  EXPECT_EQ(Reçus_.back(), Tous);
  LePort_->Relever();
  EXPECT_EQ(Reçus_.back(), "\2x\25A");
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

TEST_F(Port, WritesAtThePaceOfTheLineAndCatchesUpWithTheClock) {
  const std::string Fichier(1920, 'F');
  for (const auto Sommeil : {0ms, 250ms}) {  // of the whole program, each time that it runs
    std::string Arrivés;
    double Avance = 0;
    int Battements = 0;
    IBoucle::Jeton Battement;
    const auto Depuis = [D = Horloge::now()] { return std::chrono::duration<double>(Horloge::now() - D).count(); };
    const std::function<void()> Battre = [&] {
      std::this_thread::sleep_for(Sommeil);
      Arrivés += Loin_.Recevoir();
      Avance = std::max(Avance, static_cast<double>(Arrivés.size()) / 1920 - Depuis());
      ++Battements;
      Battement = Boucle_.Après(1ms, Battre);
    };
    Battre();
    EXPECT_TRUE(LePort_->Ecrire(Octets(Fichier)));
    const double Durée = Depuis();
    EXPECT_EQ(Arrivés + Loin_.Recevoir(), Fichier);
    // Room for a busy machine; unpaced, the write would be over at once, and without catching up take 2.5 s.
    EXPECT_GE(Durée, 1);
    EXPECT_LT(Durée, 2);
    EXPECT_LT(Avance, 0.101);
    EXPECT_GT(Sommeil > 0ms ? 1 : Avance, 0.05) << "nothing was given ahead";
    EXPECT_GT(Sommeil > 0ms ? 99 : Battements, 20) << "the loop was held";
  }
  LePort_->FixerBauds(50);  // one character takes longer than the advance
  ASSERT_TRUE(LePort_->Ouvrir());
  const auto Début = Horloge::now();
  EXPECT_TRUE(LePort_->Ecrire(Octets("x"))) << LePort_->DernièreErreurPort();
  LePort_->Fermer();
  EXPECT_GE(Horloge::now() - Début, 200ms) << "it hasn't left the machine yet";
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

TEST_F(Port, LostIsOpenedAgainAsTheSameDeviceOnly) {
  // What was there, what is there now, which of those takes the writing (-1: none), words of the client's list or of
  // the refusal.
  // clang-format off
  using Adaptateurs = std::vector<Adaptateur>;
  const std::tuple<const char*, Adaptateur, Adaptateurs, int, const char*> Table[] = {
      {"the same in another socket", {"ttyUSB0", "1-1", "A1"}, {{"ttyUSB0", "1-2", "A1"}}, 0, "ttyUSB0 est revenu.\n"},
      {"another one", {"ttyUSB0", "1-1", "A1"}, {{"ttyUSB0", "1-1", "B2"}}, -1, "est maintenant celui d'un autre appareil"},
      {"under another number, another one in its place", {"ttyUSB0", "1-1", "A1"}, {{"ttyUSB0", "1-2", "B2"}, {"ttyUSB1", "1-1", "A1"}}, 1, "/dev/ttyUSB1.\n"},
      {"without a number, in its socket", {"ttyUSB0"}, {{"ttyUSB3"}}, 0, "/dev/ttyUSB3.\n"},
      {"without a number, in another socket", {"ttyUSB0"}, {{"ttyUSB0", "1-2"}}, -1, "un autre appareil"},
      {"its second port", {"ttyUSB0", "1-1", "A1", "00"}, {{"ttyUSB0", "1-1", "A1", "01"}}, -1, "un autre appareil"},
      {"two that can't be told apart", {"ttyUSB0", "1-1", "0002"}, {{"ttyUSB1", "1-3", "0002"}, {"ttyUSB2", "1-2", "0002"}}, -1, "est absent"},
      {"with a copy of it under its name", {"ttyUSB0", "1-1", "0002"}, {{"ttyUSB0", "1-2", "0002"}, {"ttyUSB1", "1-1", "0002"}}, 1, "/dev/ttyUSB1.\n"},
      {"the copy alone that stood beside it", {"ttyUSB0", "1-1", "0001"}, {{"ttyUSB0", "1-2", "0001"}}, -1, "un autre appareil"},
      {"none", {"ttyUSB0", "1-1", "A1"}, {}, -1, "est absent"}};
  // clang-format on
  for (const auto& [Quoi, Avant, Après, Ouvert, Mots] : Table) {
    SCOPED_TRACE(Quoi);
    PseudoTerminal Premier;
    Usb_.Brancher({"ttyUSB9", "1-9", "0001"}, "");
    Usb_.Brancher(Avant, Premier.Nom());
    const std::string Nom = Usb_.Racines.Dev / "ttyUSB0";
    LePort_ = Obtenir(Nom);
    ASSERT_TRUE(LePort_->Ouvrir()) << LePort_->DernièreErreurPort();
    États_.clear();
    Premier.Maître.Fermer();
    while (États_.empty()) ASSERT_TRUE(Boucle_.Pomper(5s));
    EXPECT_EQ(États_, "[ ] Le port " + Nom + " a été perdu.\n");
    for (const char* Parti : {"ttyUSB0", "ttyUSB9"}) Usb_.Débrancher(Parti);
    const PseudoTerminal Suivants[2];
    for (std::size_t Rang = 0; Rang < Après.size(); ++Rang) Usb_.Brancher(Après[Rang], Suivants[Rang].Nom());
    for (int Fois = 0; Fois < 2; ++Fois)  // a second writing changes nothing
      EXPECT_EQ(LePort_->Ecrire(Octets("x")), Ouvert >= 0) << LePort_->DernièreErreurPort();
    for (const int Rang : {0, 1}) EXPECT_EQ(Suivants[Rang].Recevoir(), Rang == Ouvert ? "xx" : "");
    const std::string Dit = Ouvert >= 0 ? États_ : LePort_->DernièreErreurPort();
    EXPECT_NE(Dit.find(Mots), std::string::npos) << Dit;
    EXPECT_EQ(std::count(États_.begin(), États_.end(), '\n'), Ouvert >= 0 ? 2 : 1) << États_;
    if (!Après.empty() && Ouvert != 1 && Après[0].Nom == "ttyUSB0") {
      EXPECT_TRUE(LePort_->Ouvrir()) << "what the operator asks for anew is what the name says now";
    }
    for (const Adaptateur& Un : Après) Usb_.Débrancher(Un.Nom);
  }
}

TEST_F(Port, RefusesWhatAnAdapterIsKnownToTakeAndNotToDo) {
  const PseudoTerminal Loin;
  Usb_.Brancher({"ttyUSB0", "1-1", "A1", "00", "ftdi_sio"}, Loin.Nom());
  LePort_ = Obtenir(Usb_.Racines.Dev / "ttyUSB0");
  const std::tuple<std::int16_t, std::int16_t, const char*> Cas[] = {
      {200, 7, nullptr}, {150, 8, "150 bauds"}, {50, 8, "50 bauds"}, {300, 6, "mots de 6 bits"}, {9600, 8, nullptr}};
  for (const auto& [Bauds, Bits, Mots] : Cas) {
    LePort_->FixerBauds(Bauds);
    LePort_->FixerTailleMots(Bits);
    EXPECT_EQ(LePort_->Ouvrir(), Mots == nullptr) << Bauds;
    if (Mots) ExpectErreur(*LePort_, "ftdi_sio", Mots);
  }
}

TEST_F(Port, GivesADeviceThatHasJustComeTheTimeThatItsRightTakes) {
  const uid_t Moi = geteuid();
  ASSERT_EQ(seteuid(Moi == 0 ? 65534 : Moi), 0);  // whom the superuser's rights don't help
  const PseudoTerminal Venu;
  LePort_ = Obtenir(Venu.Nom());
  IBoucle::Jeton Règle;
  for (const bool Accordé : {true, false}) {
    EXPECT_EQ(chmod(Venu.Nom().c_str(), 0), 0);
    EXPECT_FALSE(LePort_->Ouvrir());
    if (Accordé) Règle = Boucle_.Après(50ms, [&] { EXPECT_EQ(chmod(Venu.Nom().c_str(), 0600), 0); });
    const auto Début = Horloge::now();
    EXPECT_EQ(LePort_->Ecrire(Octets("x")), Accordé) << LePort_->DernièreErreurPort();
    EXPECT_GE(Horloge::now() - Début, Accordé ? 40ms : 400ms);
  }
  ExpectErreur(*LePort_, Venu.Nom(), "pas le droit");
  EXPECT_FALSE(LePort_->Ecrire(Octets("x")));
  EXPECT_EQ(seteuid(Moi), 0);
}

}  // namespace Ombrey::Essais
