// The station: command line, plug-in loading, and a plug-in's life from start to end.
#include "host/station.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <memory>

#include "common/failures.h"
#include "host/console_station.h"
#include "host/plugin_loader.h"
#include "platform/loop/poll_loop.h"
#include "tests/console/console_fixture.h"
#include "tests/support/fake_host.h"
#include "tests/support/fake_platform.h"

namespace Tarvel {
namespace {

using Ombrey::ErreurExécution;
using Ombrey::Essais::Terminal;
using Arguments = std::vector<std::string>;

TEST(Options, ReadsTheCommandLine) {
  const Options Courte = LireOptions(Arguments{"--ini", "/e/t.ini", "--base", "/b/c.db"});
  EXPECT_EQ(Courte.QueFaire, Tâche::Station);
  EXPECT_EQ(Courte.Dossier, "/b") << "the working folder is the database's";
  EXPECT_FALSE(Courte.Console || Courte.SansOpérateur || Courte.Durée);
  const Options Longue = LireOptions(Arguments{"--base", "b.db", "--ini", "i", "--dossier", "/d", "--greffon", "g.so",
                                               "--console", "--sans-operateur", "--duree", "90"});
  EXPECT_EQ(Longue.Base, std::filesystem::current_path() / "b.db");
  EXPECT_EQ(Longue.Dossier, "/d");
  EXPECT_TRUE(Longue.Console && Longue.SansOpérateur);
  EXPECT_EQ(Longue.Durée, std::chrono::seconds(90));
  const Options Neuve = LireOptions(Arguments{"--exemple", "--creer-base", "n.db"});
  EXPECT_TRUE(Neuve.QueFaire == Tâche::CréerBase && Neuve.Exemple);
  EXPECT_EQ(LireOptions(Arguments{"--base", "b", "--help"}).QueFaire, Tâche::Aide);
  EXPECT_EQ(LireOptions(Arguments{"--version"}).QueFaire, Tâche::Version);
}

TEST(Options, RefusesWhatCannotBeFollowed) {
  const Arguments Cas[] = {
      {},
      {"--base", "b"},
      {"--ini", "i"},
      {"--base", "b", "--ini"},
      {"--base", "", "--ini", "i"},
      {"--base", "b", "--base", "c", "--ini", "i"},
      {"--base", "b", "--ini", "i", "traînard"},
      {"--base", "b", "--ini", "i", "--exemple"},
      {"--creer-base", "b", "--console"},
      {"--exemple"},
      {"--base", "b", "--ini", "i", "--duree", "-1"},
      {"--base", "b", "--ini", "i", "--duree", "5s"},
      {"--base", "b", "--ini", "i", "--duree", "99999999999"},
  };
  for (const Arguments& Ligne : Cas)
    EXPECT_THROW((void)LireOptions(Ligne), ErreurOptions) << testing::PrintToString(Ligne);
}

std::string MotifChargement(const std::filesystem::path& Fichier) {
  Ombrey::Essais::FaussePlateforme Plateforme;
  try {
    (void)ChargerGreffon(Fichier, Plateforme);
    return "";
  } catch (const ErreurExécution& Erreur) {
    return Erreur.what();
  }
}

TEST(Greffon, SaysWhyAFileIsNoPlugIn) {
  const std::filesystem::path Faux = testing::TempDir() + "faux_" + std::to_string(getpid()) + ".so";
  std::ofstream(Faux) << "ceci n'est pas une bibliothèque";
  EXPECT_NE(MotifChargement(Faux).find("ne se charge pas"), std::string::npos);
  std::filesystem::remove(Faux);
  EXPECT_NE(MotifChargement(Faux).find("est introuvable"), std::string::npos);
  EXPECT_NE(MotifChargement(testing::TempDir()).find("est introuvable"), std::string::npos);
}

TEST(BoucleGardée, AFailureUnwindsNoOtherWait) {
  Ombrey::BouclePoll Boucle;
  std::vector<std::string> Dits;
  BoucleGardée Gardée(Boucle, [&](const std::string& Texte) { Dits.push_back(Texte); });
  bool Revenu = false;
  const auto Dehors = Gardée.Après(std::chrono::milliseconds(0), [&] {
    const auto Dedans = Gardée.Après(std::chrono::milliseconds(0), [] { throw ErreurExécution("panne"); });
    Gardée.Pomper(std::chrono::seconds(5));
    Revenu = true;
  });
  EXPECT_TRUE(Gardée.Pomper(std::chrono::seconds(5)));
  EXPECT_TRUE(Revenu);
  EXPECT_EQ(Dits, std::vector<std::string>{"panne"});
}

/// The real plug-in on a console, with a host in memory and no terminal on the line.
class Vie : public testing::Test {
 public:
  ~Vie() override { std::filesystem::remove_all(Dossier_); }
  Vie(const Vie&) = delete;
  Vie& operator=(const Vie&) = delete;

 protected:
  Vie() : Dossier_(testing::TempDir() + "vie_" + std::to_string(getpid())) {
    std::filesystem::create_directory(Dossier_);
    setenv("XDG_CONFIG_HOME", Dossier_.c_str(), 1);
    Choisies.Dossier = Dossier_;
    Choisies.Ini = Dossier_ / "tarvel.ini";
    Choisies.Greffon = std::filesystem::path(BIN_DIR) / "PlgInOmbrey.so";
    Base->Etat->Dossier = Dossier_.string() + "/";
  }

  void Régler(const std::string& Bauds) const {
    std::ofstream(Choisies.Ini) << "[PlugInOmbrey]\nPort=" << (Dossier_ / "absent").string() << "\nBauds=" << Bauds
                                << "\nParité=N\nBitsStop=1\nTailleMots=8\n";
  }
  /// Runs the station to its end.
  void Vivre() {
    ÉditionConsole Édition(Choisies, Écran.Clavier.Sortie.Numéro(), Écran.Écran.Entrée.Numéro());
    Station Station(Choisies, Édition);
    Station.Exécuter([this](Ombrey::ISystème&) { return Base; });
    EXPECT_EQ(Base.use_count(), 1) << "the plug-in hasn't let go";
    EXPECT_EQ(Base->Etat->Écouteur, nullptr);
  }

  Options Choisies;
  Terminal Écran;
  std::shared_ptr<Ombrey::Essais::FausseBaseDeD> Base = std::make_shared<Ombrey::Essais::FausseBaseDeD>();

 private:
  std::filesystem::path Dossier_;
};

TEST_F(Vie, WorksThroughAListOfCommandsAndEnds) {
  Régler("9600");
  Écran.Taper("menu\nok\nok\nbouton\nok\nmasquer\nfin\n");
  Vivre();
  EXPECT_TRUE(Écran.AVu("message [x] "));
  EXPECT_TRUE(Écran.AVu(" : Module initialisé."));
  EXPECT_TRUE(Écran.AVu("commande «bouton» : Comm. au RG80"));
  EXPECT_TRUE(Écran.AVu("commande «menu» : Charger les données vers le RG80"));
  EXPECT_TRUE(Écran.AVu("boîte «Transfert de données» (OK) : Il n'y a aucune communication avec le RG80"));
  EXPECT_TRUE(Écran.AVu("Impossible d'établir la connexion avec le RG80."));
  EXPECT_TRUE(Écran.AVu("fenêtre «Liste des chargements» ouverte"));
  EXPECT_TRUE(Écran.AVu("fenêtre «Liste des chargements» masquée"));
}

TEST_F(Vie, EndsWithTheInputInTheMidstOfAShownWindow) {
  Régler("9600");
  Écran.Taper("bouton\nok\n");
  Écran.Clavier.Entrée.Fermer();
  Vivre();
  EXPECT_TRUE(Écran.AVu("fenêtre «Liste des chargements» ouverte"));
}

TEST_F(Vie, AsksForThePortAtTheFirstStartAndKeepsIt) {
  Écran.Taper("/dev/absent\n\n\n\n\noui\nfin\n");
  Vivre();
  EXPECT_TRUE(Écran.AVu("Module initialisé."));
  std::ifstream Ini(Choisies.Ini);
  const std::string Contenu((std::istreambuf_iterator<char>(Ini)), {});
  EXPECT_NE(Contenu.find("Port=/dev/absent"), std::string::npos) << Contenu;
}

TEST_F(Vie, SaysWhyTheStartFailedAndGoesOn) {
  Régler("vite");
  Écran.Taper("messages\nfin\n");
  Vivre();
  EXPECT_TRUE(Écran.AVu("hôte : Le greffon a échoué : Incompatibilité de type"));
  EXPECT_TRUE(Écran.AVu("commande «bouton»"));
}

TEST_F(Vie, AServiceEndsByTimeOrSignalWithoutInput) {
  Écran.Clavier.Entrée.Fermer();
  Choisies.SansOpérateur = true;
  Choisies.Durée = std::chrono::seconds(0);
  Vivre();
  EXPECT_TRUE(Écran.AVu("Erreur de configuration du port de communication"));
  Choisies.Durée.reset();
  for (const int Signal : {SIGTERM, SIGINT}) {
    ÉditionConsole Édition(Choisies, Écran.Clavier.Sortie.Numéro(), Écran.Écran.Entrée.Numéro());
    const auto Envoi = Édition.Boucle().Après(std::chrono::milliseconds(1), [Signal] { raise(Signal); });
    Station Station(Choisies, Édition);
    Station.Exécuter([this](Ombrey::ISystème&) { return Base; });
  }
}

}  // namespace
}  // namespace Tarvel
