// The machine's platform: settings on disk to the byte, folders, forms of numbers, configuring a port; and what a
// service tells its manager, heard at the manager's end of the socket.
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <csignal>
#include <cstring>

#include "base/regional_forms.h"
#include "host/machine_platform.h"
#include "platform/loop/poll_loop.h"
#include "platform/loop/signals.h"
#include "platform/system/ini_text.h"
#include "platform/system/safe_file.h"
#include "platform/system/service_notice.h"
#include "tests/serial/pseudo_terminal.h"
#include "tests/support/fake_platform.h"
#include "tests/support/test_folder.h"

namespace Ombrey::Essais {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

TEST(TexteIni, ReadsKeysInAnyLayout) {
  // clang-format off
  const std::pair<const char*, std::optional<std::string>> Table[] = {
      {"Port=COM1:\n", {}}, {"[Autre]\nPort=COM9:\n[s]\r\nPORT=COM1:\r\n", "COM1:"},
      {"  [ S ]  ; note\n\tPort \t=  COM1: \t\n", "COM1:"}, {"[S]\nPort=", ""}, {"[S]\nPort=a=b;c#d", "a=b;c#d"},
      {"[S]\n;Port=1\n#Port=2\nPort\nPort=3\nPort=4\n", "3"}, {"[S]\nBauds=1\n[X]\n[S]\nPort=2\n", "2"},
      {"[S]\nPort=\"  x \"\n", "  x "}, {"[S\nPort=1\n", {}}, {"\xEF\xBB\xBF[S]\nPort=\xC3\x89\n", "É"},
      {"[S]\nPort=\xC9t\xE9 \x80\n", "Été €"}, {"[S]\n;\xE9\nPort=É\n", "É"}, {"[S]\n;É\nPort=\xC9\n", "É"}};
  // clang-format on
  for (const auto& [Bruts, Valeur] : Table) EXPECT_EQ(TexteIni(Bruts).Lire("S", "Port"), Valeur) << Bruts;
}

// The text ahead, the key and its value, the text behind.
// clang-format off
const std::string Écritures[][4] = {
    {"", "Port", "COM1:", "[S]\nPort=COM1:\n"}, {"\xEF\xBB\xBF", "Port", "x", "\xEF\xBB\xBF[S]\nPort=x\n"},
    {"[A]\r\nx=1\r\n", "Port", "y", "[A]\r\nx=1\r\n\r\n[S]\r\nPort=y\r\n"},
    {"[A]\nx=1", "Port", "y", "[A]\nx=1\n\n[S]\nPort=y\n"}, {"[S]", "Port", "y", "[S]\nPort=y\n"},
    {"[S]\r\nx=1\r", "Port", "y", "[S]\r\nx=1\r\nPort=y\r\n"},
    {"[S]\nBauds=1\n\n; next\n[B]\nz=2\n", "Port", "y", "[S]\nBauds=1\nPort=y\n\n; next\n[B]\nz=2\n"},
    {"[S]\n[B]\n[S]\nBauds=1\n", "Port", "y", "[S]\nPort=y\n[B]\n[S]\nBauds=1\n"},
    {"[S]\r\n  port \t= COM1:\t \r\nport=2\r\n;x", "Port", "COM22:", "[S]\r\n  port \t= COM22:\t \r\nport=2\r\n;x"},
    {"[S]\nP = \nBauds=", "Bauds", "9", "[S]\nP = \nBauds=9"}, {"[S]\nPort = 1 \n", "Port", "", "[S]\nPort =  \n"},
    {"[S]\r\nParit\xE9=N\r\n;\x96\r\n", "Parité", "E", "[S]\r\nParit\xE9=E\r\n;\x96\r\n"},
    {"[S]\n;\xE9\n", "Période", "€", "[S]\nP\xE9riode=\x80\n;\xE9\n"}, {"[S]\n", "Période", "2", "[S]\nPériode=2\n"},
    {"[S]\n;\xE9\nParité=N\n", "Parité", "E", "[S]\n;\xE9\nParité=E\n"},
    {"[S]\n;\xE9\n", "K", "Ω", "[S]\nK=Ω\n;\xE9\n"}, {"[S]\nK=\xE9\n", "K", "Ã©", "[S]\nK=Ã©\n"},
    {"[S]\nPort=1\n", "Port", " x", "[S]\nPort=\" x\"\n"}, {"[S]\nPort=1\n", "Port", "\"x\"", "[S]\nPort=\"\"x\"\"\n"}};
// clang-format on

TEST(TexteIni, ChangesOneLineAndNoOtherByte) {
  for (const auto& [Avant, Clé, Valeur, Après] : Écritures) {
    TexteIni Texte(Avant);
    Texte.Ecrire("S", Clé, Valeur);
    EXPECT_EQ(Texte.Bruts(), Après);
    Texte.Ecrire("S", Clé, Texte.Lire("S", Clé).value_or("lost"));
    EXPECT_EQ(Texte.Bruts(), Après);
  }
  // clang-format off
  const std::tuple<const char*, const char*, const char*> Refusées[] = {  // could not be read back
      {"S", "K", "a\nb"}, {"S", "K", "a\rb"}, {"S", "", "x"}, {"S", "a=b", "x"}, {"S", "[a", "x"}, {"S", ";a", "x"},
      {"S", " a", "x"}, {"S]", "a", "x"}, {"", "a", "x"}, {"S", "K", "\xE9"}};
  // clang-format on
  for (const auto& [S, Clé, Valeur] : Refusées) {
    TexteIni Texte("[S]\n");
    EXPECT_THROW(Texte.Ecrire(S, Clé, Valeur), ErreurExécution) << S << Clé << Valeur;
    EXPECT_EQ(Texte.Bruts(), "[S]\n");
  }
  EXPECT_THROW(TexteIni("\xFF\xFE["), ErreurExécution);
}

class Machine : public testing::Test, public IQuestionnairePort {
 protected:
  using Essai = std::function<std::string(const RéglagesPort&)>;
  bool Demander(RéglagesPort& Réglages, const Essai& Essayer) override { return Opérateur_(Réglages, Essayer); }

  void DireRetenus() override { Retenus_ = LireFichier(Ini_).value_or(""); }

  std::function<bool(RéglagesPort&, const Essai&)> Opérateur_;
  std::string Retenus_;  ///< what the file held when it was said
  DossierEssai Dossier_;
  fs::path D_ = Dossier_.Chemin();
  fs::path Ini_ = D_ / "tarvel.ini";
  FaussePlateforme Fausse_;
  BouclePoll Boucle_;
  PlateformeMachine Machine_{Boucle_, Fausse_.LesFenêtres, this, D_ / "a" / "b", D_ / "config" / "reglages.ini"};
  PseudoTerminal Loin_;
};

TEST_F(Machine, KeepsUserSettingsInFoldersOfTheirOwnerAloneAndFormsOfNumbers) {
  IRéglages& Réglages = Machine_.Réglages();
  Réglages.Ecrire("A", "F", "Left", "0");
  Réglages.Ecrire("B", "F", "Left", " 8");
  EXPECT_EQ(Réglages.Lire("A", "F", "Left", "-1"), "0");
  EXPECT_EQ(Réglages.Lire("B", "F", "Left", "-1"), " 8");
  EXPECT_EQ(Réglages.Lire("B", "G", "Left", "-1"), "-1");
  for (const fs::path& Fait : {D_ / "config", D_ / "a", D_ / "a" / "b"})
    EXPECT_EQ(fs::status(Fait).permissions(), fs::perms::owner_all) << Fait;
  setenv("XDG_CONFIG_HOME", "relatif", 1);
  setenv("HOME", "/maison", 1);
  EXPECT_EQ(FichierRéglagesUtilisateur(), "/maison/.config/ombrey/reglages.ini");
  const auto Epoque = std::chrono::system_clock::now().time_since_epoch();  // in UTC: a day apart at most
  EXPECT_NEAR(NuméroDeJour(Machine_.Système().Maintenant()), 25569.0 + static_cast<double>(Epoque / 24h), 1.6);
}

TEST_F(Machine, TakesTheFormsOfNumbersFromTheLocaleThatCountsForThem) {
  // A country with a decimal point, installed for this test alone.
  fs::create_directory(D_ / "en_XX");
  fs::copy_file("/usr/lib/locale/C.utf8/LC_NUMERIC", D_ / "en_XX" / "LC_NUMERIC");
  setenv("LOCPATH", D_.c_str(), 1);
  const std::array<const char*, 4> Table[] = {{"", "en_XX", "C", "."},          {"", "", "en_XX", "."},
                                              {"en_XX", "C", "C", "."},         {"", "C", "en_XX", ","},
                                              {"fr_FR", "en_XX", "en_XX", ","}, {"POSIX", "en_XX", "", ","},
                                              {"C.UTF-8", "", "en_XX", ","},    {"", "", "", ","}};
  for (const auto& [Toutes, Nombres, Langue, Séparateur] : Table) {
    setenv("LC_ALL", Toutes, 1);
    setenv("LC_NUMERIC", Nombres, 1);
    setenv("LANG", Langue, 1);
    EXPECT_EQ(FormesDeLEnvironnement().SéparateurDécimal, *Séparateur) << Toutes << Nombres << Langue;
  }
}

TEST_F(Machine, KeepsModeOwnerAndLinksOfAReplacedFile) {
  RemplacerFichier(Ini_, "");
  const bool Tout = geteuid() == 0;
  ASSERT_EQ(chmod(Ini_.c_str(), 0664) + (Tout ? chown(Ini_.c_str(), 12, 34) : 0), 0);
  fs::create_symlink("tarvel.ini", D_ / "lien1");
  fs::create_symlink(D_ / "lien1", D_ / "lien2");
  RemplacerFichier(D_ / "lien2", "neuf");
  EXPECT_TRUE(fs::is_symlink(D_ / "lien2"));
  EXPECT_EQ(LireFichier(Ini_), "neuf");
  struct stat État {};
  ASSERT_EQ(stat(Ini_.c_str(), &État), 0);
  EXPECT_EQ(État.st_mode & 07777U, 0664U);
  EXPECT_EQ(État.st_gid, Tout ? 34U : getegid());
  fs::create_symlink("nouveau.ini", D_ / "lien3");  // to nothing yet
  RemplacerFichier(D_ / "lien3", "neuf");
  EXPECT_EQ(LireFichier(D_ / "nouveau.ini"), "neuf");
}

TEST_F(Machine, LeavesAFileThatItCannotReplaceAsItWas) {
  fs::create_symlink("boucle", D_ / "boucle");
  ASSERT_EQ(mkfifo((D_ / "tube").c_str(), 0600), 0);
  for (const fs::path& Mauvais : {D_, D_ / "tube", D_ / "boucle"}) {
    EXPECT_THROW(static_cast<void>(LireFichier(Mauvais)), ErreurExécution) << Mauvais;
    EXPECT_THROW(RemplacerFichier(Mauvais, "x"), ErreurExécution) << Mauvais;
  }
  RemplacerFichier(Ini_, "ancien");
  const uid_t Moi = geteuid();
  for (const mode_t Droits : {0777U, 0555U}) {  // a second file has place beside it, or it is written in place
    SCOPED_TRACE(Droits);
    ASSERT_EQ(chmod(D_.c_str(), Droits) + chmod(Ini_.c_str(), 0444), 0);
    ASSERT_EQ(setresuid(Moi == 0 ? 65534 : Moi, Moi == 0 ? 65534 : Moi, Moi), 0);
    EXPECT_THROW(RemplacerFichier(Ini_, "neuf"), ErreurExécution) << "read-only";
    ASSERT_EQ(setresuid(Moi, Moi, Moi) + chmod(Ini_.c_str(), 0666), 0);
    ASSERT_EQ(setresuid(Moi == 0 ? 65534 : Moi, Moi == 0 ? 65534 : Moi, Moi), 0);
    LimiterFichiers(10);
    EXPECT_THROW(RemplacerFichier(Ini_, "more than ten characters"), ErreurExécution) << "the disk is full";
    LimiterFichiers(RLIM_INFINITY);
    EXPECT_EQ(LireFichier(Ini_), "ancien");
    for (const char* Contenu : {"more than ten characters", "court", "ancien"}) {
      EXPECT_NO_THROW(RemplacerFichier(Ini_, Contenu));
      EXPECT_EQ(LireFichier(Ini_), Contenu);
    }
    ASSERT_EQ(setresuid(Moi, Moi, Moi), 0);
  }
  EXPECT_EQ(std::distance(fs::directory_iterator(D_), {}), 4) << "the loop, the pipe, the file, folder a";
}

TEST_F(Machine, ConfiguringAPortWritesOnlyWhatWasChanged) {
  const std::string Tête = "; ligne\r\n[S]\r\nPort=\"COM3:\"\r\nBauds = ";
  const std::string Suite = "\r\nBitsStop=2\r\nTailleMots=7\r\n[Autre]\r\n";
  const std::string Avant = Tête + "4800\r\nParit\xE9=E" + Suite;
  const std::string Neuf = "[S]\nTailleMots=8\nBitsStop=1\nParité=impaire\nBauds=1200\nPort=COM3:\n";
  // What stands in the file, what is shown, the answer, the disk's room, what stands there then.
  const std::tuple<std::string, RéglagesPort, bool, rlim_t, std::string> Cas[] = {
      {Avant, {"COM3:", "4800", "E", "2", "7"}, false, RLIM_INFINITY, Avant},
      {Avant, {"COM3:", "4800", "E", "2", "7"}, true, 10, Avant},
      {Avant, {"COM3:", "4800", "E", "2", "7"}, true, RLIM_INFINITY, Tête + "1200\r\nParit\xE9=impaire" + Suite},
      {"", {"COM3:", "9600", "aucune", "1", "8"}, true, RLIM_INFINITY, Neuf}};
  for (const auto& [Texte, Montrés, Garder, Place, Après] : Cas) {
    RemplacerFichier(Ini_, Texte);
    Opérateur_ = [Montrés = Montrés, Garder = Garder](RéglagesPort& Réglages, const Essai&) {
      if (Montrés.TailleMots == "8" && !Réglages.Port.empty()) Réglages.Port = "COM3:";  // was this machine's first
      EXPECT_EQ(Réglages, Montrés);
      Réglages.Bauds = "1200";
      Réglages.Parité = "impaire";
      return Garder;
    };
    bool Gardé = false;
    LimiterFichiers(Place);
    Ignorer([&] { Gardé = Machine_.CréerClientPortComm({}, {})->Configurer(Ini_, "S"); });
    LimiterFichiers(RLIM_INFINITY);
    const bool EstVoulu = Garder && Place == RLIM_INFINITY;
    EXPECT_EQ(Gardé, EstVoulu);
    EXPECT_EQ(LireFichier(Ini_), Après);
    EXPECT_EQ(std::exchange(Retenus_, ""), Gardé ? Après : "");
  }
}

TEST_F(Machine, ATrialAsksTheTerminalAndLeavesThePortToItsOwner) {
  const auto Port = Machine_.CréerServeurPortComm()->ObtenirPort(Loin_.Nom(), Machine_.CréerClientPortComm({}, {}));
  Port->FixerBauds(9600);
  Port->FixerTailleMots(8);
  Port->FixerParité("N");
  Port->FixerBitsStop(1);
  ASSERT_TRUE(Port->Ouvrir()) << Port->DernièreErreurPort();
  const PseudoTerminal Libre;
  const PseudoTerminal Interdit;
  ASSERT_EQ(chmod(Interdit.Nom().c_str(), 0) + chmod(Libre.Nom().c_str(), 0666) + chmod(Loin_.Nom().c_str(), 0666), 0);
  // clang-format off
  const std::pair<RéglagesPort, std::string> Cas[] = {
      {{Libre.Nom(), "9600", "N", "1", "8"}, "s'ouvre, mais le RG80 n'y répond pas"}, {{Loin_.Nom(), "9600", "N", "1", "8"}, "autre programme."},
      {{Libre.Nom(), "vite", "N", "1", "8"}, "« vite »"}, {{Libre.Nom(), "115200", "N", "1", "8"}, "« 115200 »"},
      {{Libre.Nom(), "9600", "?", "1", "8"}, "« ? »"}, {{Libre.Nom(), "9600", "N", "", "8"}, "«  »"},
      {{"COM99:", "9600", "N", "1", "8"}, "« COM99: »"}, {{Interdit.Nom(), "9600", "N", "1", "8"}, "pas le droit"}};
  // clang-format on
  Opérateur_ = [&](const RéglagesPort&, const Essai& Essayer) {
    const uid_t Moi = geteuid();
    EXPECT_EQ(seteuid(Moi == 0 ? 65534 : Moi), 0);
    for (const auto& [Réglages, Dit] : Cas) {
      const std::string Texte = Essayer(Réglages);
      EXPECT_NE(Texte.find(Dit), std::string::npos) << Dit << ": " << Texte;
    }
    EXPECT_EQ(seteuid(Moi), 0);
    return false;
  };
  EXPECT_FALSE(Machine_.CréerClientPortComm({}, {})->Configurer(Ini_, "S"));
  Opérateur_ = [&](const RéglagesPort&, const Essai& Essayer) {
    const auto Réponse = Boucle_.Après(500ms, [&] { Loin_.Envoyer("\0068"); });
    return Essayer({Loin_.Nom(), "4800", "N", "1", "8"}).empty();
  };
  EXPECT_TRUE(Port->Configurer(Ini_, "S")) << "who holds the port may try it";
  EXPECT_EQ(Loin_.Recevoir(), "\0058");
  EXPECT_TRUE(Port->Ecrire(Octets("x")));
  const SignauxFin Signaux(Boucle_, [] {});
  Opérateur_ = [&](const RéglagesPort&, const Essai& Essayer) {
    EXPECT_EQ(std::raise(SIGTERM), 0);
    return Essayer({Libre.Nom(), "9600", "N", "1", "8"}).ends_with("le programme se termine.");
  };
  EXPECT_TRUE(Port->Configurer(Ini_, "S"));
}

/// The manager's socket; '@' ahead of its name stands for the zero byte.
Descripteur Écouter(std::string Nom) {
  if (Nom.front() == '@') Nom.front() = '\0';
  sockaddr_un Adresse{};
  Adresse.sun_family = AF_UNIX;
  std::memcpy(Adresse.sun_path, Nom.data(), Nom.size());
  Descripteur Prise(socket(AF_UNIX, SOCK_DGRAM | SOCK_NONBLOCK, 0));
  const auto Longueur = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + Nom.size());
  EXPECT_EQ(bind(Prise.Numéro(), reinterpret_cast<const sockaddr*>(&Adresse), Longueur), 0);
  return Prise;
}

std::string Entendu(const Descripteur& Prise) {
  std::string Tout;
  char Place[256];
  for (ssize_t Lus = 0; (Lus = recv(Prise.Numéro(), Place, sizeof Place, 0)) >= 0; Tout += "|")
    Tout.append(Place, static_cast<std::size_t>(Lus));
  return Tout;
}

TEST(Service, TellsTheManagerOfItsLifeAndFeedsTheWatchdogFromTheLoop) {
  const DossierEssai Dossier;
  const std::string Chemin = (Dossier.Chemin() / "avis").string();
  const std::string Autre = std::to_string(getpid() + 1);
  const std::array<std::string, 4> Cas[] = {
      {Chemin, "3000", "", "WATCHDOG=1|WATCHDOG=1|"},
      {"@ombrey-essai-" + std::to_string(getpid()), "3000", std::to_string(getpid()), "WATCHDOG=1|WATCHDOG=1|"},
      {Chemin, "3000", Autre, ""},
      {Chemin, "3s", "", ""},
      {Chemin, "", "", ""}};
  for (const auto& [Adresse, Délai, Pour, Nourriture] : Cas) {
    SCOPED_TRACE(Adresse + " " + Délai + " " + Pour);
    unlink(Chemin.c_str());
    const Descripteur Gérant = Écouter(Adresse);
    setenv("NOTIFY_SOCKET", Adresse.c_str(), 1);
    setenv("WATCHDOG_USEC", Délai.c_str(), 1);
    setenv("WATCHDOG_PID", Pour.c_str(), 1);
    BouclePoll Boucle;
    AvisService Service(Boucle);
    Service.Prêt("au travail");
    EXPECT_EQ(Boucle.Pomper(Nourriture.empty() ? 10ms : 10s), !Nourriture.empty());
    Service.Arrêt();
    EXPECT_EQ(Entendu(Gérant), "READY=1\nSTATUS=au travail|" + Nourriture + "STOPPING=1|");
    EXPECT_FALSE(Boucle.Pomper(10ms)) << "what ends isn't fed";
  }
  for (const std::string& Sourd : {std::string(), Chemin + "x", std::string(200, 'x')}) {
    setenv("NOTIFY_SOCKET", Sourd.c_str(), 1);
    BouclePoll Boucle;
    EXPECT_NO_THROW(AvisService(Boucle).Prêt("")) << Sourd;
  }
  unsetenv("NOTIFY_SOCKET");
}

TEST(Service, KnowsTheJournalAndTheLevelsOfItsLines) {
  struct stat État {};
  ASSERT_EQ(fstat(STDIN_FILENO, &État), 0);
  const std::string Ici = std::to_string(État.st_dev) + ":" + std::to_string(État.st_ino);
  for (const auto& [Variable, Attendu] : {std::pair(Ici, true), {"", false}, {Ici + "0", false}}) {
    setenv("JOURNAL_STREAM", Variable.c_str(), 1);
    EXPECT_EQ(MèneAuJournal(STDIN_FILENO), Attendu) << Variable;
  }
  unsetenv("JOURNAL_STREAM");
  const std::pair<const char*, const char*> Lignes[] = {{"erreur 08:00:00 : x", "<3>"},
                                                        {"boîte «Ombrey» (OK) : x", "<4>"},
                                                        {"hôte : x", "<5>"},
                                                        {"message [ ] 08:00:00 : Aucune réponse du RG80.", "<6>"},
                                                        {"message [ ] 08:00:00 : Aucun chargement à récupérer.", "<7>"},
                                                        {"message [x] 08:00:00 : erreur x", "<6>"}};
  for (const auto& [Ligne, Gravité] : Lignes) EXPECT_EQ(GravitéJournal(Ligne), Gravité) << Ligne;
}

}  // namespace Ombrey::Essais
