// Settings and databases as they shouldn't be: each start says what is wrong, and a station that can run does.
#include <sys/stat.h>
#include <unistd.h>

#include "tests/road/post.h"

namespace Ombrey::Essais {
namespace {

using namespace std::chrono_literals;

struct Réglage {
  const char* Nom;
  const char* Contenu;  ///< nullptr: no file
  const char* Attendu;  ///< said at the start
  const char* Relevé;   ///< said by the first poll
};

constexpr const char* SansPort =
    "hôte : Le greffon n'est pas initialisé. Erreur de configuration du port de communication";
constexpr const char* RelevéSansPort =
    "Vérification de nouveaux chargements sur le RG80. Erreur Variable objet non définie";

#define SUITE "\nParité=N\nBitsStop=1\nTailleMots=8\n"

constexpr Réglage TableDesRéglages[] = {
    {"no_file", nullptr, SansPort, RelevéSansPort},
    {"no_section", "[Autre]\nPort=COM1:\n", SansPort, RelevéSansPort},
    {"no_port", "[PlugInOmbrey]\nBauds=9600\n", SansPort, RelevéSansPort},
    {"nonsense", "\x01\x80\xFF[[[\n=\n\n;[PlugInOmbrey\n", SansPort, RelevéSansPort},
    {"speed_no_number", "[PlugInOmbrey]\nPort=/dev/absent\nBauds=vite" SUITE, "Bauds = « vite »",
     "Echec de lecture de données du RG80 : "},
    {"speed_missing", "[PlugInOmbrey]\nPort=/dev/absent" SUITE, "Bauds = «  »",
     "Echec de lecture de données du RG80 : "},
    {"speed_too_high", "[PlugInOmbrey]\nPort=/dev/absent\nBauds=38400" SUITE, "Bauds = « 38400 »",
     "Echec de lecture de données du RG80 : "},
    {"speed_that_is_none", "[PlugInOmbrey]\nPort=/dev/tty\nBauds=9601" SUITE, "Module initialisé.", "la vitesse"},
    {"parity", "[PlugInOmbrey]\nPort=/dev/absent\nBauds=9600\nParité=peut-être\nBitsStop=1\nTailleMots=8\n",
     "Module initialisé.", "peut-être"},
    {"port_absent", "[PlugInOmbrey]\nPort=/dev/absent\nBauds=9600" SUITE, "Module initialisé.",
     "boîte «Erreur du port» (OK) : Le port /dev/absent est absent de cette machine."},
    {"port_that_is_none", "[PlugInOmbrey]\nPort=/dev/null\nBauds=9600" SUITE, "Module initialisé.",
     "boîte «Erreur du port» (OK) : Le port /dev/null n'est pas un port série."},
    {"port_number", "[PlugInOmbrey]\nPort=COM99:\nBauds=9600" SUITE,
     "Impossible d'initialiser le port de communication.", "Vérification de nouveaux chargements"},
    {"period_negative", "[PlugInOmbrey]\nPort=/dev/absent\nBauds=9600" SUITE "Période interrogation=-5\n",
     "Module initialisé.", "Erreur du port de communication au RG80."},
    {"period_too_long", "[PlugInOmbrey]\nPort=/dev/absent\nBauds=9600" SUITE "Période interrogation=99999999999\n",
     "Dépassement de capacité", "Erreur du port de communication au RG80."},
    {"utf16", "\xFF\xFE[\x01", "hôte : Le greffon a échoué : Le fichier de réglages est en UTF-16", RelevéSansPort},
};

/// All stations at once: a plug-in that has no window yet polls after ten seconds only.
TEST(Settings, ThatAreWrongAreNamedAndTheStationGoesOn) {
  struct Essai {
    Poste LePoste{};
    std::unique_ptr<Programme> Station{};
  };
  std::vector<std::unique_ptr<Essai>> Essais;
  for (const Réglage& Cas : TableDesRéglages) {
    Essais.push_back(std::make_unique<Essai>());
    Essai& E = *Essais.back();
    std::filesystem::remove(E.LePoste.Ini());
    if (Cas.Contenu) E.LePoste.Écrire("tarvel.ini", Cas.Contenu);
    E.Station = E.LePoste.Station();
    E.Station->Taper("interroger");
  }
  for (std::size_t Rang = 0; Rang < Essais.size(); ++Rang) {
    SCOPED_TRACE(TableDesRéglages[Rang].Nom);
    Programme& Station = *Essais[Rang]->Station;
    EXPECT_TRUE(Station.Attendre(TableDesRéglages[Rang].Attendu)) << Station.Dit();
    EXPECT_TRUE(Station.Attendre(TableDesRéglages[Rang].Relevé)) << Station.Dit();
    Station.Taper("fin");
    EXPECT_EQ(Station.Fin(), 0);
  }
}

TEST(Settings, AFolderInPlaceOfTheSettingsFileIsSaid) {
  const Poste P;
  std::filesystem::remove(P.Ini());
  std::filesystem::create_directory(P.Ini());
  const auto Station = P.Station();
  EXPECT_TRUE(Station->Attendre("hôte : Le greffon a échoué : ")) << Station->Dit();
  Station->Taper("fin");
  EXPECT_EQ(Station->Fin(), 0);
}

TEST(Databases, ThatCannotBeUsedEndTheStartWithAReason) {
  struct Cas {
    const char* Raison;
    std::function<void(const Poste&)> Préparer;
  };
  const Cas Table[] = {
      {"fichier introuvable", [](const Poste& P) { std::filesystem::remove(P.Base()); }},
      {"ce n'est pas un fichier",
       [](const Poste& P) {
         std::filesystem::remove(P.Base());
         std::filesystem::create_directory(P.Base());
       }},
      {"le fichier est vide", [](const Poste& P) { P.Écrire("cave.db", ""); }},
      {"pas une base de données", [](const Poste& P) { P.Écrire("cave.db", std::string(5000, 'x')); }},
      {"Il manque : Métayage",
       [](const Poste& P) { ConnexionSqlite::Ouvrir(P.Base())->Exécuter("DROP TABLE Métayage"); }},
  };
  for (const Cas& C : Table) {
    const Poste P;
    C.Préparer(P);
    const auto Station = P.Station();
    EXPECT_EQ(Station->Fin(), 1) << C.Raison;
    EXPECT_NE(Station->Dit().find(C.Raison), std::string::npos) << Station->Dit();
    EXPECT_TRUE(Station->Dit().starts_with("tarvel : ")) << Station->Dit();
  }
}

/// The superuser may write everything: the station runs as nobody then.
TEST(Databases, AReadOnlyOneIsSaidAndTheLoadStaysAtTheTerminal) {
  constexpr uid_t Personne = 65534;
  const Poste P;
  P.Écrire("un", Enregistrement(1) + "\n");
  const auto Rg80 = P.Terminal({"--chargements", P.En("un")});
  std::filesystem::create_directory(P.En("poste"));
  chmod(P.Base().c_str(), 0444);
  if (geteuid() == 0) {
    ASSERT_EQ(chown(P.En("").c_str(), Personne, Personne), 0);
    ASSERT_EQ(chown(P.En("poste").c_str(), Personne, Personne), 0);
    ASSERT_EQ(chown(std::filesystem::canonical(P.Lien()).c_str(), Personne, Personne), 0);
  }
  const auto DevenirPersonne = [] {
    if (geteuid() == 0 && setuid(Personne) != 0) _exit(126);
  };
  const auto Station = P.Station({"--sans-operateur"}, DevenirPersonne);
  Station->Taper("interroger");
  if (!Station->Attendre("est en lecture seule : rien n'y sera enregistré.")) {
    const auto Code = Station->Fin(1s);
    if (Code == 126 || Code == 127) GTEST_SKIP() << "no other account may run the station here";
    FAIL() << Station->Dit();
  }
  EXPECT_TRUE(Station->Attendre("boîte «RG80 Ombrey» (OK) : Erreur d'importation des données issues du RG80."))
      << Station->Dit();
  EXPECT_TRUE(Rg80->Attendre("chargement 0001 refusé, reste en attente")) << Rg80->Dit();
  Station->Taper("fin");
  EXPECT_EQ(Station->Fin(), 0);
  EXPECT_EQ(P.Rentrés(), "0 0 0");
  // In a folder that can't be written either, the log beside the database can't be: nothing starts.
  chmod(P.En("").c_str(), 0555);
  if (geteuid() == 0) {
    ASSERT_EQ(chown(P.En("").c_str(), 0, 0), 0);
  }
  const auto Autre = P.Station({"--sans-operateur"}, DevenirPersonne);
  EXPECT_EQ(Autre->Fin(), 1);
  EXPECT_NE(Autre->Dit().find("La base de données est en lecture seule"), std::string::npos) << Autre->Dit();
  chmod(P.En("").c_str(), 0755);
}

/// Short: the lock goes in time. Long: it stays until the terminal has been refused.
TEST(Databases, OneThatIsLockedDelaysTheLoadOrHasItRefusedInTime) {
  struct Essai {
    Poste LePoste{};
    std::unique_ptr<Programme> Rg80{};
    std::unique_ptr<Programme> Station{};
    std::shared_ptr<ConnexionSqlite> Autre{};
    std::unique_ptr<Transaction> Verrou{};
  };
  Essai Court;
  Essai Long;
  for (Essai* E : {&Court, &Long}) {
    E->LePoste.Écrire("un", Enregistrement(1) + "\n");
    E->Rg80 = E->LePoste.Terminal({"--chargements", E->LePoste.En("un"), "--jusqu-a-vide"});
    E->Station = E->LePoste.Station();
    ASSERT_TRUE(E->Station->Attendre("commande «menu»"));
    E->Autre = ConnexionSqlite::Ouvrir(E->LePoste.Base());
    E->Verrou = std::make_unique<Transaction>(*E->Autre);
    E->Station->Taper("interroger");
    ASSERT_TRUE(E->Rg80->Attendre("chargement 0001 offert"));
  }
  EXPECT_FALSE(Court.Rg80->Attendre("acquitté", 5s)) << "acknowledged ahead of the commit";
  Court.Verrou.reset();
  EXPECT_EQ(Court.Rg80->Fin(), 0) << Court.Station->Dit();
  EXPECT_NE(Court.Rg80->Dit().find("bilan : envoyés 1, acquittés 1, refusés 0, sans réponse 0, réponses reçues 1"),
            std::string::npos)
      << Court.Rg80->Dit();
  EXPECT_TRUE(Long.Rg80->Attendre("chargement 0001 refusé, reste en attente")) << Long.Rg80->Dit();
  Long.Verrou.reset();
  EXPECT_EQ(Long.Rg80->Fin(), 0) << Long.Station->Dit();
  for (const Essai* E : {&Court, &Long}) EXPECT_EQ(E->LePoste.Rentrés(), "1 1 0");
}

}  // namespace
}  // namespace Ombrey::Essais
