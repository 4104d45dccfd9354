// Settings, ports and databases as they shouldn't be: each start says what is wrong, and a station that can run does.
#include "tests/road/post.h"
#include "tests/serial/pseudo_terminal.h"

namespace Ombrey::Essais {
/// All stations at once: a plug-in that has no window yet polls after ten seconds only.
TEST(Start, SaysWhatIsWrongWithSettingsOrDatabaseAndGoesOnIfItCan) {
  const std::string SansPort = "Le greffon n'est pas initialisé. Erreur de configuration du port de communication";
  const std::string Relevé = "Vérification de nouveaux chargements sur le RG80. ";
  const std::string Échec = "Echec de lecture de données du RG80 : ";
  const std::string Prêt = "Module initialisé.";
  // Done to the settings or to the database; said at the start, and by the first poll or the end.
  struct {
    const char* Acte;
    std::string Attendu, AuRelevé;
    int Code = 0;
    Poste P{};
  } Cas[] = {
      // clang-format off
      {"$ rm tarvel.ini", SansPort, Relevé + "Erreur Aucun port n'est réglé (Station > "},
      {"$ sed -i 1d tarvel.ini", SansPort, Relevé + "Erreur Aucun port n'est réglé (Station > "},  // no section
      {"$ sed -i /Port/d tarvel.ini", SansPort, Relevé},
      {"$ sed -i /Bauds/d tarvel.ini", "Bauds = «  »", Échec}, {"$ sed -i s/9600/vite/ tarvel.ini", "Bauds = « vite »", Échec},
      {"$ sed -i s/9600/38400/ tarvel.ini", "Bauds = « 38400 »", Échec},
      {"$ sed -i 's,=/.*,=/dev/tty,; s/9600/9601/' tarvel.ini", Prêt, "la vitesse « 9601 »"},
      {"$ sed -i s/=20/=-5/ tarvel.ini", Prêt, "Erreur du port"},
      {"$ sed -i s/aucune/peut-être/ tarvel.ini", Prêt, "peut-être"},
      {"$ sed -i s,=/.*,=/dev/absent, tarvel.ini", Prêt, "(OK) : Le port /dev/absent est absent de cette machine."},
      {"$ sed -i s,=/.*,=COM99:, tarvel.ini", "Impossible d'initialiser le port de communication.", Relevé},
      {"$ sed -i s,=/.*,=/dev/null, tarvel.ini", Prêt, "(OK) : Le port /dev/null n'est pas un port série."},
      {"$ sed -i s/=20/=99999999999/ tarvel.ini", "Dépassement de capacité", "Erreur du port"},
      {"$ rm tarvel.ini; mkdir tarvel.ini", "tarvel : ", "tarvel.ini ne peut pas être lu : ", 1},
      {"$ printf '\\377\\376[\\001' > tarvel.ini", "tarvel : ", "Le fichier de réglages est en UTF-16", 1},
      {"$ rm cave.db", "tarvel : ", "fichier introuvable", 1},
      {"$ rm cave.db; mkdir cave.db", "tarvel : ", "ce n'est pas un fichier", 1},
      {"$ : > cave.db", "tarvel : ", "le fichier est vide", 1},
      {"$ yes | head -c 5000 > cave.db", "tarvel : ", "pas une base de données", 1},
      {"DROP TABLE Métayage", "tarvel : ", "Il manque : Métayage", 1},
      // clang-format on
  };
  for (auto& C : Cas) {
    C.P.Faire(C.Acte);
    C.P.LancerStation();
  }
  for (const auto& [Acte, Attendu, AuRelevé, Code, P] : Cas) {
    EXPECT_TRUE(P.Station->Attendre(Attendu)) << Acte << P.Dit();
    EXPECT_TRUE(P.Station->Attendre(AuRelevé)) << Acte << P.Dit();
    P.Station->Taper("fin");
    EXPECT_EQ(P.Station->Fin(), Code) << Acte << P.Dit();
  }
}

TEST(Start, AWorkingFolderBelongsToOneStationUntilItsDeath) {
  Poste P;
  P.LancerStation();
  EXPECT_TRUE(P.Station->Attendre("commande « menu »")) << P.Dit();
  const auto Première = std::move(P.Station);
  P.LancerStation();
  EXPECT_TRUE(P.Station->Attendre("Une autre station travaille déjà dans le dossier " + P.En("poste") +
                                  " (tarvel, processus " + Première->Numéro() + ")"))
      << P.Dit();
  EXPECT_EQ(P.Station->Fin(), 1);
  Première->Signaler(SIGKILL);
  EXPECT_EQ(Première->Fin(), -SIGKILL);
  P.Faire("$ printf '[Tarvel]\nDuréeBoîtes=1\n' >> tarvel.ini");
  P.LancerStation("bouton", "");
  EXPECT_TRUE(P.Station->Attendre("commande « menu »")) << P.Dit();
  EXPECT_TRUE(P.Station->Attendre("» retirée sans réponse (« alire » la garde)")) << P.Dit();
}

/// Asked for in the midst of a poll.
TEST(Start, ComesAnewWithTheSettingsThatTheOperatorHasChanged) {
  Poste P;
  P.LancerTerminal("--hasard 1 --jusqu-a-vide");
  const PseudoTerminal Muet;
  P.Faire("$ sed -i s,=/.*,=" + Muet.Nom() + ", tarvel.ini");
  P.LancerStation("interroger", "");
  EXPECT_TRUE(P.Station->Attendre("Aucune réponse du RG80.")) << P.Dit();
  static_cast<void>(Muet.Recevoir());
  EXPECT_TRUE(Bientôt([&] { return !Muet.Recevoir().empty(); }, 15s)) << "no next poll";
  P.Station->Taper("configurer");
  EXPECT_TRUE(P.Station->Attendre("question : port")) << P.Dit();
  P.Station->Taper(P.En("ligne") + "\n\n\n\n");
  EXPECT_TRUE(P.Station->Attendre("hôte : Les réglages du port ont changé : le greffon repart avec eux.")) << P.Dit();
  P.Station->Taper("interroger");
  P.Finir("1 1 0");
}

TEST(Papers, ComeAsPdfWithTheirTitleOrASentenceSaysWhyNot) {
  if (!std::filesystem::exists(BIN_DIR "/tarvel-qt.so")) GTEST_SKIP() << "built without windows";
  Poste P;
  P.Faire("INSERT INTO Chargement (CodeSite, NoChargement, DateCh, Métayage) VALUES ('1', 7, 46349.5, '4')");
  P.Faire("$ cp " BIN_DIR "/tarvel seul");
  const std::tuple<const char*, const char*, int> Cas[] = {
      {BIN_DIR "/tarvel --bordereau b.pdf --du 23/11/2026", "Le document est dans ", 0},
      {BIN_DIR "/tarvel --ticket 7 t.pdf --du 2026-11-23", "Le document est dans ", 0},
      {BIN_DIR "/tarvel --ticket 7 cave.db --du 2026-11-23", "cave.db existe déjà : donnez un autre nom.", 1},
      {BIN_DIR "/tarvel --ticket 8 u.pdf --du 23/11/2026", "Aucun chargement n° 8 le 23/11/2026.", 1},
      {BIN_DIR "/tarvel --ticket 7 u.pdf --du 31/02/2026", "« 31/02/2026 » n'est pas un jour : il s'écrit jj/", 2},
      {BIN_DIR "/tarvel --bordereau absent/u.pdf", "absent/u.pdf : introuvable", 1},
      {"env CUPS_SERVER=127.0.0.1:9 " BIN_DIR "/tarvel --imprimer-ticket 7 --du 23/11/2026 --site 1 --heure 12:00",
       "Aucune imprimante n'est installée", 1},
      {BIN_DIR "/tarvel --imprimer-ticket 7 --du 23/11/2026 --site 2", "Aucun chargement n° 7 du site 2 le 23/", 1},
      {"./seul --bordereau u.pdf", "Le PDF a besoin du module des fenêtres, qui ne se charge pas", 1},
  };
  for (const auto& [Commande, Dit, Code] : Cas) {
    Programme Tarvel("cd " + P.En("") + " && exec " + Commande + " --base cave.db");
    EXPECT_TRUE(Tarvel.Attendre(Dit)) << Commande << Tarvel.Dit();
    EXPECT_EQ(Tarvel.Fin(), Code) << Commande << Tarvel.Dit();
  }
  // In UTF-16.
  for (const auto& [Nom, Titre] : {std::pair("b.pdf", "Bordereau du 23/11/2026"), {"t.pdf", "Ticket n\xB0 7"}}) {
    std::string Large = "/Title (\xFE\xFF";
    for (const char Un : std::string_view(Titre)) (Large += '\0') += Un;
    EXPECT_NE(Contenu(P.En(Nom)).find(Large + ")"), std::string::npos) << Nom;
  }
  P.Faire("$ ! ls u.pdf* absent 2>/dev/null");
}

/// Given up, or killed, as soon as something stands on the disk.
TEST(Papers, StandUnderTheirNameWholeOrNotAtAll) {
  if (!std::filesystem::exists(BIN_DIR "/tarvel-qt.so")) GTEST_SKIP() << "built without windows";
  Poste P;
  P.Faire(
      "INSERT INTO Chargement (CodeSite, NoChargement, DateCh, Métayage) WITH RECURSIVE N(I) AS (SELECT 1 UNION ALL"
      " SELECT I + 1 FROM N WHERE I < 1500) SELECT '1', I, 46349.5, '4' FROM N;"
      "CREATE TABLE Lest AS SELECT zeroblob(40000000) AS Tout");
  // The order, and what shows that the paper is whole.
  const std::pair<const char*, const char*> Cas[] = {
      {"--bordereau neuf/f --du 23/11/2026", "$ tail -c 7 neuf/f | grep -q EOF"},
      {"--exporter-csv neuf/f", "$ [ $(wc -l < neuf/f) -eq 1501 ]"},
      {"--sauvegarder neuf/f",
       "$ " BIN_DIR "/tarvel --base neuf/f --exporter-csv neuf/l && [ $(wc -l < neuf/l) -eq 1501 ]"}};
  for (const int Signal : {SIGINT, SIGKILL})
    for (const auto& [Quoi, Entier] : Cas) {
      P.Faire("$ rm -rf neuf; mkdir neuf");
      Programme Tarvel("cd " + P.En("") + " && exec " BIN_DIR "/tarvel --base cave.db " + Quoi);
      EXPECT_TRUE(Bientôt([&] { return !std::filesystem::is_empty(P.En("neuf")); }, 60s)) << Quoi << Tarvel.Dit();
      Tarvel.Signaler(Signal);
      const int Code = Tarvel.Fin(60s);
      const bool EstLà = std::filesystem::exists(P.En("neuf/f"));
      if (EstLà) P.Faire(Entier);
      if (Signal == SIGKILL) continue;  // nobody was left to tidy up, or to say that it was done
      EXPECT_EQ(EstLà, Code == 0) << Quoi << Tarvel.Dit();
      EXPECT_EQ(std::filesystem::is_empty(P.En("neuf")), Code != 0) << Quoi;
    }
}

/// The superuser may write everything, until he gives that up.
TEST(Databases, AReadOnlyOneIsSaidAndTheLoadStaysAtTheTerminal) {
  const std::string Par =
      geteuid() == 0 ? "exec setpriv --bounding-set=-dac_override,-dac_read_search --inh-caps=-all " : "exec ";
  if (std::system((Par + "true").c_str()) != 0) GTEST_SKIP() << "the superuser can't give up his rights here";
  Poste P;
  P.LancerTerminal("--hasard 1");
  P.Faire("$ mkdir poste; chmod 444 cave.db");
  P.LancerStation("interroger", "--sans-operateur", Par);
  EXPECT_TRUE(P.Station->Attendre("est en lecture seule : rien n'y sera enregistré.")) << P.Dit();
  EXPECT_TRUE(P.Rg80->Attendre("chargement 0001 refusé, reste en attente")) << P.Dit();
  P.Rg80->Signaler(SIGINT);
  P.Finir("0 0 0");
}

/// Short: the lock goes in time. Long: it stays until the terminal has been refused.
TEST(Databases, OneThatIsLockedDelaysTheLoadOrHasItRefusedInTime) {
  struct : Poste {
    std::shared_ptr<ConnexionSqlite> Verrou = Base();
  } Court, Long;
  for (auto* P : {&Court, &Long}) {
    P->LancerTerminal("--hasard 1 --jusqu-a-vide");
    P->LancerStation(P == &Court ? "bouton" : "messages");
    EXPECT_TRUE(P->Station->Attendre("commande « menu »", 60s));
    P->Verrou->Exécuter("BEGIN IMMEDIATE");
    P->Station->Taper("interroger");
  }
  EXPECT_TRUE(Court.Rg80->Attendre("chargement 0001 offert"));
  EXPECT_FALSE(Court.Rg80->Attendre("acquitté", 5s)) << "acknowledged ahead of the commit";
  Court.Verrou.reset();
  EXPECT_TRUE(Court.Rg80->Attendre("bilan : envoyés 1, acquittés 1, refusés 0, sans réponse 0, réponses reçues 1"));
  // As soon as the line is idle, a plain copy of the file has the load, although the list of loads stands open.
  const auto EstDansUneCopie = [&Court] {
    Court.Faire("$ cp cave.db copie.db");
    return ConnexionSqlite::Ouvrir(Court.En("copie.db"))->Lire("SELECT count(*) FROM Chargement") ==
           ValeurChamp{std::int64_t{1}};
  };
  EXPECT_TRUE(Bientôt(EstDansUneCopie, 30s));
  EXPECT_TRUE(Long.Rg80->Attendre("chargement 0001 refusé, reste en attente")) << Long.Dit();
  Long.Verrou.reset();
  for (const auto* P : {&Court, &Long}) P->Finir("1 1 0");
}

}  // namespace Ombrey::Essais
