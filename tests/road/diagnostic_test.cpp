// The diagnosis of the real program names each fault and what mends it.
#include "host/diagnostic.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cstdlib>
#include <vector>

#include "platform/loop/descriptor.h"
#include "platform/system/folder_lock.h"
#include "tests/road/post.h"
#include "tests/support/server.h"

namespace Ombrey::Essais {

constexpr const char* Commande = BIN_DIR "/tarvel --diagnostic --base cave.db --ini tarvel.ini --dossier poste";

/// What is done to the post, and as whom it is looked at, up to "…"; how the line begins, what stands in it.
static std::vector<std::array<std::string, 4>> Fautes(const std::string& NomMuet) {
  const std::string Tiers = "setpriv --reuid=65534 --clear-groups ", Autre = geteuid() == 0 ? Tiers : "";
  const std::string Seul = geteuid() == 0 ? "unshare -m" : "unshare -rm";
  const std::string Serré = Seul + " sh -c 'mount -t tmpfs -o size=$0 x poste && exec \"$@\"' ";
  return {
      // clang-format off
      {"rm tarvel.ini", "", "mauvais réglages : ", "cp /usr/share/doc/ombrey/examples/site.ini "},
      {"rm tarvel.ini; mkdir tarvel.ini", "", "mauvais réglages : ", "remettez un fichier de texte"},
      {"chmod 000 tarvel.ini", Autre, "mauvais réglages : ", "sudo chmod a+r "},
      {"mv tarvel.ini poste; ln -s poste/tarvel.ini .; chmod 0 poste", Autre, "mauvais réglages : ", "relancez avec sudo"},
      {"true", "setpriv --reuid=0 ", "à voir  compte : ", "runuser -u nobody -- tarvel --diagnostic"},
      {"sed -i /Port/d tarvel.ini", "", "mauvais réglages : ", "Configurer le port"},
      {"sed -i s/9600/9601/ tarvel.ini", "", "mauvais réglages : ", "[PlugInOmbrey]"},
      {"sed -i s,=/.*,=/dev/absent, tarvel.ini", "", "mauvais port : Le port /dev/absent est absent", "la machine a : "},
      {"sed -i s,=/.*,=/dev/null, tarvel.ini", "", "mauvais port : Le port /dev/null n'est pas un port série", " À faire : "},
      {"sed -i s,=/.*,=" + NomMuet + ", tarvel.ini", "", "mauvais port : Le port " + NomMuet + " ne répond pas", "vérifiez câble et adaptateur"},
      {"sed -i s,=/.*,=/dev/ombrey-tarvel, tarvel.ini", "", "à voir  règle udev : ", "branchez cet adaptateur"},
      {"chmod 000 $(readlink -f ligne)", Autre, "mauvais port : Vous n'avez pas le droit", " À faire : "},
      {"rm cave.db", "", "mauvais base : ", "tarvel --creer-base "},
      {"yes | head -c 5000 > cave.db", "", "mauvais base : ", "--restaurer SAUVEGARDE"},
      {"chmod 444 cave.db", Autre, "mauvais base : ", "chmod u+rwX "},
      {"chmod 700 .; chown 1 .", Tiers, "à voir  base : ", "sudo runuser -u daemon -- tarvel --diagnostic"},
      {"chmod 644 cave.db; chown 1 cave.db", Tiers, "à voir  base : ", "sudo runuser -u daemon -- tarvel --diagnostic"},
      {"chmod 755 .; chmod 660 cave.db; chown 1:65534 . cave.db", Tiers + "--regid=65534 ", "à voir  base : ", "sudo runuser -u daemon -- tarvel --diagnostic"},
      {"true", Serré + "9m ", "mauvais disque : ", "df -h "},
      {"true", Serré + "200m ", "à voir  disque : ", "df -h "},
      {"true", "faketime 2001-01-01 ", "mauvais horloge : ", "timedatectl set-ntp"},
      {"rmdir poste; : > poste", "", "mauvais dossier : ", "--dossier"},
      {"chmod 555 poste", Autre, "mauvais dossier : ", "chmod u+rwX "},
      {"chmod 755 poste; chown 0 poste", Tiers, "mauvais dossier : ", "sudo chown nobody "},
      {"chmod 755 poste; chown 1 poste", Tiers, "à voir  dossier : ", "sudo runuser -u daemon -- tarvel --diagnostic"},
      {"rmdir poste; chmod 755 .; chown 0 .", Tiers, "mauvais dossier : ", "sudo install -d -o nobody -m 0750 "},
      {"true", "", "bon     schéma : ", ""},
      {"true", "env sh -c 'exec \"$@\" --greffon absent' - ", "mauvais versions : ", "--reinstall ombrey"},
      // clang-format on
  };
}

TEST(Diagnostic, NamesEachFaultWithWhatMendsItAndFailsOnWhatIsBad) {
  const Descripteur Muet{posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)};  // whose far side was never unlocked
  std::string Sans;                                                     // what this machine refuses
  for (const auto& [Acte, Par, Dit, ÀFaire] : Fautes(ptsname(Muet.Numéro()))) {
    SCOPED_TRACE(Par + "… " + Acte);
    if (!Par.empty() && std::system((Par.substr(0, Par.find(" sh ")) + " true").c_str()) != 0) {
      Sans += "\n" + Dit + "(" + Par + ")";
      continue;
    }
    Poste P;
    P.LancerTerminal("--hasard 1");
    P.Faire("$ mkdir poste; " +
            std::string(geteuid() == 0 ? "chown 65534 . poste cave.db; chmod a+rw $(readlink -f ligne); " : "") + Acte);
    Programme Regard("cd " + P.En("") + " && " + Par + Commande);
    const int Code = Regard.Fin();
    const std::string& Texte = Regard.Dit();
    const std::size_t Début = ("\n" + Texte).find("\n" + Dit);
    ASSERT_NE(Début, std::string::npos) << Texte;
    EXPECT_NE(Texte.substr(Début, Texte.find('\n', Début) - Début).find(ÀFaire), std::string::npos) << Texte;
    EXPECT_EQ(Code, ("\n" + Texte).find("\nmauvais ") == std::string::npos ? 0 : 1) << Texte;
  }
  if (!Sans.empty()) GTEST_SKIP() << "not provoked here:" << Sans;
}

static void Constater(const Poste& P, const std::string& Attendu) {
  Programme Regard("cd " + P.En("") + " && " + Commande);
  EXPECT_TRUE(Regard.Attendre(Attendu)) << Regard.Dit();
}

TEST(Diagnostic, KnowsWhoHoldsThePort) {
  Poste P;
  P.LancerTerminal("--hasard 1");
  const int Autre = open(P.En("ligne").c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
  ASSERT_EQ(flock(Autre, LOCK_EX | LOCK_NB), 0);
  Constater(P, "est déjà utilisé par un autre programme : test_road, processus " + std::to_string(getpid()));
  Constater(P, "À faire : arrêtez ce qui le tient\n");
  {  // asked in the station itself, as from its menu
    P.Faire("$ mkdir -m 755 poste; chmod 755 .");
    const VerrouDossier Sien(P.En("poste"));
    std::string Mots[] = {"--diagnostic", "--ini", P.En("tarvel.ini"), "--dossier", P.En("poste")};
    EXPECT_NE(TexteConstats(Tarvel::Diagnostiquer(Tarvel::LireOptions(Mots))).find("bon     port : "),
              std::string::npos);
    for (const std::string Droit : {"a+rw", "go="}) {  // and by an account that only looks on
      if (geteuid() != 0) continue;
      P.Faire("$ chmod " + Droit + " $(readlink -f ligne)");
      Programme Regard("cd " + P.En("") + " && setpriv --reuid=65534 --clear-groups " + Commande);
      for (const char* Sujet : {"à voir  port : ", "à voir  dossier : "})
        EXPECT_TRUE(Regard.Attendre(Sujet)) << Regard.Dit();
    }
  }
  close(Autre);
}

/// The port that the station holds, the newest load's day, the schema's number.
TEST(Diagnostic, KnowsTheStationThatWorksFromAnotherProgram) {
  Poste P;
  P.LancerTerminal("--hasard 1");
  P.LancerStation();
  EXPECT_TRUE(P.Rg80->Attendre("réponse reçue", 60s)) << P.Dit();
  Constater(P, "bon     port : " + P.En("ligne") + " est à la station qui travaille (tarvel, processus " +
                   P.Station->Numéro() + ")");
  Programme Regard("cd " + P.En("") +
                   " && exec " BIN_DIR "/tarvel --console --regarder --base cave.db --ini tarvel.ini --dossier poste");
  EXPECT_TRUE(Regard.Attendre("sans prendre la ligne, qui est à la station au travail (tarvel, processus "))
      << Regard.Dit();
  EXPECT_TRUE(Regard.Attendre("Chargement n° ")) << Regard.Dit();
  P.Faire(
      "INSERT INTO Chargement (CodeSite, NoChargement, DateCh, Métayage) SELECT 'B', 77, DateCh, 4 FROM Chargement");
  EXPECT_TRUE(P.Station->Attendre("Importation d'un nouveau chargement de B", 10s)) << P.Dit();
  EXPECT_TRUE(Regard.Attendre("Chargement n° 77,")) << Regard.Dit();
  EXPECT_EQ(Regard.Dit().find("n° 1,"), Regard.Dit().rfind("n° 1,")) << Regard.Dit();
  P.Faire("DELETE FROM Chargement WHERE CodeSite = 'B'");
  Regard.Taper("fin");
  EXPECT_EQ(Regard.Fin(), 0);
  P.Rg80->Signaler(SIGINT);
  P.Finir("1 1 0");
  for (const auto& [Acte, Constat] : {std::pair("UPDATE CumulSaison SET Masse = Masse + 1", "mauvais cumuls : "),
                                      {"$ " BIN_DIR "/tarvel --base cave.db --refaire-cumuls", "bon     cumuls : "},
                                      {"UPDATE Chargement SET DateCh = DateCh + 90000", "mauvais horloge : "},
                                      {"UPDATE Chargement SET DateCh = DateCh - 89999.9", "à voir  horloge : "},
                                      {"UPDATE Schéma SET Numéro = 3", "à voir  schéma : "},
                                      {"UPDATE Schéma SET Numéro = 99", "mauvais schéma : "}}) {
    P.Faire(Acte);
    Constater(P, Constat);
  }
}

TEST(Diagnostic, OfAServerThatSwallowsEverythingHoldsUpNeitherTheLoadsNorTheEnd) {
  auto* const Serveur = ServeurDEssai::Lui();
  if (!Serveur) GTEST_SKIP() << "PostgreSQL isn't installed";
  Poste P;
  P.NomBase = Serveur->NouvelleBase();
  Tarvel::CréerBase(P.NomBase, true);
  P.LancerTerminal("--hasard 1");
  P.LancerStation("messages");
  EXPECT_TRUE(P.Station->Attendre("commande « menu »", 60s)) << P.Dit();
  Serveur->GelerPorte();
  P.Station->Taper("diagnostic\ninterroger");
  EXPECT_TRUE(P.Rg80->Attendre("réponse reçue", 60s)) << P.Dit();
  P.Station->Signaler(SIGTERM);
  EXPECT_EQ(P.Station->Fin(5s), 0) << P.Dit();
  EXPECT_EQ(P.Dit().find("diagnostic : "), std::string::npos) << "it was over: " << P.Dit();
  Serveur->Continuer();
}

TEST(Diagnostic, WritesTheRuleOfTheAdapterAtHandOnce) {
  Poste P;
  P.Faire(
      "$ mkdir -p usb/ttyUSB0 tty/ttyUSB0 && : > regles && ln -s ../../usb tty/ttyUSB0/device && "
      "printf 0403 > usb/idVendor && printf A1 > usb/serial && sed s,=/.*,=/dev/ombrey-cave_1, tarvel.ini > 'cave "
      "1.ini'");
  Tarvel::Options Choisies;
  Choisies.Ini = P.En("cave 1.ini");
  const Tarvel::LieuxMachine Lieux{P.En("tty"), P.En("regles"), P.En("montages")};
  const auto Constater = [&](const std::string& Attendu) {
    const std::string Textes = TexteConstats(Tarvel::Diagnostiquer(Choisies, Lieux));
    EXPECT_NE(Textes.find(Attendu), std::string::npos) << Textes;
  };
  Constater("n'a pas de nom qui lui reste, et ce compte ne peut pas écrire ");
  P.Faire("$ sed -i s,ombrey-cave_1,serial/by-id/A1, cave*.ini");
  Constater("bon     règle udev : /dev/serial/by-id/A1 reste à l'adaptateur");
  P.Faire("$ rm regles && mkdir regles");
  Constater("70-ombrey-cave_1.rules vient d'être écrite");
  P.Faire("$ grep -q 'ATTRS{serial}==\"A1\", SYMLINK+=\"ombrey-cave_1\"' regles/70-ombrey-cave_1.rules");
  Constater("donne à l'adaptateur le nom /dev/ombrey-cave_1\n");
  P.Faire("$ sed -i s,serial/by-id/A1,ombrey-cave_1, cave*.ini");
  P.Faire("$ printf B2 > usb/serial");
  Constater("à voir  règle udev : ");
  P.Faire("$ cp -a tty/ttyUSB0 tty/ttyUSB1 && rm regles/*");
  Constater("n'est pas reconnu. À faire : branchez cet adaptateur seul");
  EXPECT_TRUE(std::filesystem::is_empty(P.En("regles")));
  P.Faire("$ stat -c '9 1 %Hd:%Ld / / rw shared:1 - nfs4 nas:/cave rw' . > montages");
  Choisies.Base = P.En("cave.db");
  Constater("est sur un disque de réseau (nfs4) : deux machines y perdraient des chargements");
}

}  // namespace Ombrey::Essais
