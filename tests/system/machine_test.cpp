// Settings on disk, folders, and the machine's forms of numbers.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iterator>

#include "common/failures.h"
#include "platform/loop/poll_loop.h"
#include "platform/system/machine_system.h"
#include "platform/system/safe_file.h"
#include "platform/system/settings_files.h"
#include "tests/support/test_folder.h"

namespace Ombrey {
namespace {

namespace fs = std::filesystem;

class Réglages : public testing::Test {
 protected:
  void Poser(const std::string& Texte) const { std::ofstream(Fichier(), std::ios::binary) << Texte; }
  [[nodiscard]] fs::path Fichier() const { return Dossier_.Chemin() / "tarvel.ini"; }
  [[nodiscard]] std::string Contenu() const { return LireFichier(Fichier()).value_or("absent"); }
  [[nodiscard]] std::size_t NombreDeFichiers() const {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(Dossier_.Chemin()), {}));
  }
  LecteurIniFichier Sur(const fs::path& Chemin) const {
    LecteurIniFichier Lecteur;
    Lecteur.FixerFichier(Chemin.string());
    Lecteur.FixerSection("PlugInOmbrey");
    Lecteur.FixerClé("Port");
    return Lecteur;
  }
  static std::string Lue(LecteurIniFichier Lecteur) {
    bool Drapeau = false;
    Lecteur.LireValeur(Drapeau);
    return Lecteur.Valeur();
  }
  static void Ecrite(LecteurIniFichier Lecteur, const std::string& Valeur) {
    bool Drapeau = false;
    Lecteur.FixerValeur(Valeur);
    Lecteur.EcrireValeur(Drapeau);
  }

  Essais::DossierEssai Dossier_;
};

TEST_F(Réglages, AreMadeChangedAndReadBack) {
  EXPECT_EQ(Lue(Sur(Fichier())), "");
  Ecrite(Sur(Fichier()), "COM1:");
  Ecrite(Sur(Fichier()), "COM2:");
  EXPECT_EQ(Lue(Sur(Fichier())), "COM2:");
  EXPECT_EQ(Contenu(), "[PlugInOmbrey]\nPort=COM2:\n");
  EXPECT_EQ(NombreDeFichiers(), 1U);
}

TEST_F(Réglages, KeepModeOwnerAndLinksOfTheFile) {
  Poser("[PlugInOmbrey]\n");
  ASSERT_EQ(chmod(Fichier().c_str(), 0664), 0);
  if (geteuid() == 0) {
    ASSERT_EQ(chown(Fichier().c_str(), 12, 34), 0);
  }
  fs::create_symlink("tarvel.ini", Dossier_.Chemin() / "lien1");
  fs::create_symlink(Dossier_.Chemin() / "lien1", Dossier_.Chemin() / "lien2");
  Ecrite(Sur(Dossier_.Chemin() / "lien2"), "COM1:");
  EXPECT_TRUE(fs::is_symlink(Dossier_.Chemin() / "lien2"));
  EXPECT_EQ(Contenu(), "[PlugInOmbrey]\nPort=COM1:\n");
  struct stat État {};
  ASSERT_EQ(stat(Fichier().c_str(), &État), 0);
  EXPECT_EQ(État.st_mode & 07777U, 0664U);
  if (geteuid() == 0) {
    EXPECT_EQ(État.st_gid, 34U);
  }
  // The target of a link needn't be there yet.
  fs::create_symlink("nouveau.ini", Dossier_.Chemin() / "lien3");
  Ecrite(Sur(Dossier_.Chemin() / "lien3"), "COM3:");
  EXPECT_EQ(Lue(Sur(Dossier_.Chemin() / "nouveau.ini")), "COM3:");
}

TEST_F(Réglages, ThatCannotBeReadOrWrittenAreAnErrorInFrench) {
  fs::create_symlink("boucle", Dossier_.Chemin() / "boucle");
  ASSERT_EQ(mkfifo((Dossier_.Chemin() / "tube").c_str(), 0600), 0);
  for (const fs::path& Mauvais : {Dossier_.Chemin(), Dossier_.Chemin() / "tube", Dossier_.Chemin() / "boucle"}) {
    EXPECT_THROW(Lue(Sur(Mauvais)), ErreurExécution) << Mauvais;
    EXPECT_THROW(Ecrite(Sur(Mauvais), "x"), ErreurExécution) << Mauvais;
  }
  EXPECT_THROW(RemplacerFichier(Dossier_.Chemin() / "tube", "x"), ErreurExécution);
  EXPECT_THROW(Ecrite(Sur(""), "x"), ErreurExécution);
  EXPECT_EQ(Lue(Sur("")), "");
  EXPECT_THROW(Ecrite(Sur(Dossier_.Chemin() / "rien" / "x.ini"), "x"), ErreurExécution);
}

TEST_F(Réglages, OnAFullDiskOrOfAReadOnlyFileStayAsTheyWere) {
  Poser("[PlugInOmbrey]\nPort=COM1:\n");
  ASSERT_EQ(chmod(Fichier().c_str(), 0444), 0);
  ASSERT_EQ(chmod(Dossier_.Chemin().c_str(), 0777), 0);
  const uid_t Moi = geteuid();
  constexpr uid_t Personne = 65534;
  if (Moi == 0) {
    ASSERT_EQ(setresuid(Personne, Personne, 0), 0);
  }
  EXPECT_THROW(Ecrite(Sur(Fichier()), "COM2:"), ErreurExécution);
  if (Moi == 0) {
    ASSERT_EQ(setresuid(0, 0, 0), 0);
  }
  const auto Ancien = std::signal(SIGXFSZ, SIG_IGN);
  rlimit Limite{};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &Limite), 0);
  const rlimit Court{10, Limite.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &Court), 0);
  EXPECT_THROW(RemplacerFichier(Fichier(), "more than ten characters"), ErreurExécution);
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &Limite), 0);
  std::signal(SIGXFSZ, Ancien);
  EXPECT_EQ(Contenu(), "[PlugInOmbrey]\nPort=COM1:\n");
  EXPECT_EQ(NombreDeFichiers(), 1U);
}

TEST_F(Réglages, OfTheUserAreKeptByApplicationSectionAndKey) {
  const fs::path Chemin = Dossier_.Chemin() / "config" / "ombrey" / "reglages.ini";
  RéglagesFichier Magasin(Chemin);
  EXPECT_EQ(Magasin.Lire("A", "F", "Left", "-1"), "-1");
  Magasin.Ecrire("A", "F", "Left", "0");
  Magasin.Ecrire("A", "F", "Colonne 1", " 1500");
  Magasin.Ecrire("A", "G", "Left", "7");
  Magasin.Ecrire("B", "F", "Left", "8");
  EXPECT_EQ(Magasin.Lire("A", "F", "Left", "-1"), "0");
  EXPECT_EQ(Magasin.Lire("A", "F", "Colonne 1", "-1"), " 1500");
  EXPECT_EQ(RéglagesFichier(Chemin).Lire("B", "F", "Left", "-1"), "8");
  EXPECT_EQ(fs::status(Chemin.parent_path()).permissions(), fs::perms::owner_all);
  EXPECT_THROW(RéglagesFichier(Fichier() / "x").Ecrire("A", "F", "Left\n", "1"), ErreurExécution);
}

TEST_F(Réglages, OfTheUserLieWhereTheEnvironmentSays) {
  setenv("XDG_CONFIG_HOME", "/c", 1);
  EXPECT_EQ(FichierRéglagesUtilisateur(), "/c/ombrey/reglages.ini");
  setenv("XDG_CONFIG_HOME", "relatif", 1);
  setenv("HOME", "/maison", 1);
  EXPECT_EQ(FichierRéglagesUtilisateur(), "/maison/.config/ombrey/reglages.ini");
}

TEST(SystèmeMachine, MakesItsFoldersForItsOwnerAlone) {
  const Essais::DossierEssai Dossier;
  BouclePoll Boucle;
  const SystèmeMachine Système(Boucle, Dossier.Chemin() / "a" / "b");
  const fs::path Conservés = Système.DossierImportsConservés();
  EXPECT_EQ(Conservés, Système.CheminApplication() / "imports-refusés");
  for (const fs::path& Fait : {Dossier.Chemin() / "a", Dossier.Chemin() / "a" / "b", Conservés})
    EXPECT_EQ(fs::status(Fait).permissions(), fs::perms::owner_all) << Fait;
  std::ofstream(Dossier.Chemin() / "fichier") << "x";
  EXPECT_THROW(SystèmeMachine(Boucle, Dossier.Chemin() / "fichier"), ErreurExécution);
}

TEST(SystèmeMachine, ReadsTheDecimalSeparatorFromTheEnvironment) {
  unsetenv("LC_ALL");
  unsetenv("LC_NUMERIC");
  for (const char* Nom : {"", "C", "POSIX", "C.UTF-8", "nulle_PART", "fr_FR.UTF-8"}) {
    setenv("LANG", Nom, 1);
    EXPECT_EQ(FormesDeLEnvironnement().SéparateurDécimal, ',') << Nom;
  }
}

}  // namespace
}  // namespace Ombrey
