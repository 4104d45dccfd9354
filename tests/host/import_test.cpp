// Import files of every kind, and what becomes of the table of loads.
#include "tests/host/cooperative_fixture.h"

namespace Tarvel {
namespace {

using Import = Coopérative;

TEST_F(Import, KeepsEachLoadOnce) {
  ASSERT_EQ(Importer(Ligne()), "");
  EXPECT_EQ(Annonces_, "importé Chargement 1/12\n");
  EXPECT_EQ(Lire("SELECT Cépage || Qualité || ' ' || Degré || ' ' || Cuve || Synchronisé FROM Chargement"),
            "Syrah01 12.5 70");
  EXPECT_EQ(Importer(Ligne("12", "22/09/2026 08:30:00", "4", "05", "1300")), "");
  EXPECT_EQ(Annonces_, "mis à jour Chargement 1/12\n");
  EXPECT_EQ(Lire("SELECT Masse || '/' || count(*) FROM Chargement"), "1300/1");
  EXPECT_EQ(Lire("SELECT count(*) FROM ChargementArchive"), "0");

  // The terminal's counter comes round: another load bears the number.
  EXPECT_EQ(Importer(Ligne("12", "22/09/26 10:00")), "");
  EXPECT_EQ(Annonces_, "importé Chargement 1/12\n");
  EXPECT_EQ(Lire("SELECT Masse || '/' || count(*) FROM Chargement"), "1234/1");
  EXPECT_EQ(Lire("SELECT Masse || '/' || count(*) FROM ChargementArchive"), "1300/1");

  // And the first one once more.
  EXPECT_EQ(Importer(Ligne("12", "22/09/26 08:30", "4", "05", "1299")), "");
  EXPECT_EQ(Lire("SELECT count(*) FROM Chargement"), "1");
  EXPECT_EQ(Lire("SELECT group_concat(Arrivée) FROM ChargementLisible"), "22/09/2026 08:30");
  EXPECT_EQ(Lire("SELECT Masse || '/' || count(*) FROM ChargementArchive"), "1234/1");
}

TEST_F(Import, ArchivesColumnsThatTheCooperativeAdded) {
  Connexion_->ExécuterTout(
      "ALTER TABLE Chargement ADD COLUMN \"N° de \"\"ticket\"\"\" DECIMAL(8, 2) NOT NULL DEFAULT 7;"
      "ALTER TABLE Chargement ADD COLUMN [Sans genre]; ALTER TABLE ChargementArchive ADD COLUMN [SANS GENRE]");
  for (const char* Date : {"22/09/26 08:30", "23/09/26 08:30", "24/09/26 08:30"})
    ASSERT_EQ(Importer(Ligne("12", Date)), "");
  EXPECT_EQ(Lire("SELECT count(*) || '/' || sum(\"N° de \"\"ticket\"\"\") FROM ChargementArchive"), "2/14");
}

TEST_F(Import, KnowsALoadThatIsSentAgainWithTheDateOrTheHoldingItLackedAtFirst) {
  std::string Tardive = Ligne("12", "23/09/2026 00:00:07");
  Tardive.replace(Tardive.find("22/09/26 09:15"), 14, "23/09/2026 00:00:07");
  // Lines; dates and holding of the one row, none when these are two loads.
  // clang-format off
  const std::tuple<std::string, std::string, const char*> Cas[] = {
      // No date: the time of each import stands for it.
      {Ligne("12", "22/09/2026 23:59:50"), Tardive, "22/09/2026 23:59 09:15 4"},
      {Ligne("12", "22/09/2026 10:00:00", "4", "", ""), Ligne("12", "22/09/2026 09:00:01", "4", "", ""),
       "22/09/2026 10:00 09:15 4"},
      // The holding could be created only at the second time.
      {Ligne("12", "22/09/26 08:30", "0"), Ligne("12", "22/09/26 08:30", "4"), "22/09/2026 08:30 09:15 4"},
      {Ligne("12", "22/09/26 08:30", "0"), Ligne("12", "22/09/2026 11:22:33", "4"), "22/09/2026 08:30 09:15 4"},
      // Two loads: another holding, another weight, another time or day of the terminal's own.
      {Ligne(), Ligne("12", "22/09/26 08:30", "5"), nullptr},
      {Ligne(), Ligne("12", "22/09/26 08:31", "4", "05", "1235"), nullptr},
      {Ligne(), Ligne("12", "22/09/26 08:31"), nullptr},
      {Ligne(), Ligne("12", "23/09/26 08:30"), nullptr},
  };
  // clang-format on
  for (const auto& [Première, Seconde, Reste] : Cas) {
    Connexion_->ExécuterTout("DELETE FROM Chargement; DELETE FROM ChargementArchive");
    ASSERT_EQ(Importer(Première), "");
    ASSERT_EQ(Importer(Seconde), "");
    EXPECT_EQ(Annonces_, std::string(Reste ? "mis à jour" : "importé") + " Chargement 1/12\n") << Seconde;
    EXPECT_EQ(Lire("SELECT count(*) FROM ChargementArchive"), Reste ? "0" : "1") << Seconde;
    if (Reste) {
      EXPECT_EQ(Lire("SELECT Arrivée || substr(Sortie, 11) || ' ' || Métayage FROM ChargementLisible"), Reste);
    }
  }
}

TEST_F(Import, SaysWhichValueItCannotReadAndWritesNothing) {
  const std::string Matin = "22/09/26 08:30";
  // clang-format off
  const std::pair<std::string, const char*> Cas[] = {
      {Ligne("AB12"), "Colonne NoChargement : valeur illisible : « AB12 »"},
      {Ligne(""), "Colonne NoChargement : la valeur manque"},
      {Ligne("12345"), "Colonne NoChargement : valeur trop longue : « 12345 »"},
      {Ligne("12", "32/09/26 08:30"), "Colonne DateCh : valeur illisible : « 32/09/26 08:30 »"},
      {Ligne("12", Matin, ""), "Colonne Métayage : la valeur manque"},
      {Ligne("12", Matin, "4", "ABC"), "Colonne Sélection : valeur trop longue : « ABC »"},
      {Ligne("12", Matin, "4", "\1x"), "Colonne Sélection : valeur illisible : « \1x »"},
      {Ligne("12", Matin, "4", "0;"), "Nombre de valeurs incorrect : 18 attendues, 19 lues"},
      {Ligne("12", Matin, "4", "05", "9E99"), "Colonne Masse : valeur illisible : « 9E99 »"},
      {Ligne().substr(0, Ligne().size() - 2), "Fichier d'import incomplet : la dernière ligne est coupée"},
      {"", "Fichier d'import vide"},
      {std::string(600, '\1') + "\r\n", "Le séparateur manque derrière la dernière valeur"},
      {Ligne("13") + Ligne("14", "hier"), "Colonne DateCh : valeur illisible : « hier »"},
  };
  // clang-format on
  for (const auto& [Contenu, Attendu] : Cas) {
    EXPECT_EQ(Importer(Contenu), Attendu);
    EXPECT_EQ(Annonces_ + Lire("SELECT count(*) FROM Chargement"), "0");
  }
  EXPECT_EQ(Importer(Ligne()), "") << "the next file is judged by itself";
}

TEST_F(Import, TakesTheCooperativesOwnNamesAsLongAsTheyAreAndNoneThatSplitsALine) {
  const std::string Long = "Muscat à petits grains blancs de la plaine";
  for (const auto& [Table, Colonne] : {std::pair{"Cépage", "Désignation"}, {"Paramètre", "Valeur"}}) {
    const std::string Sql = std::string("UPDATE ") + Table + " SET " + Colonne + " = ?1";
    EXPECT_NO_THROW(Connexion_->Exécuter(Sql, {Long + ", 1re côte - n°2"}));
    for (const char* Coupure : {";", "\r", "\n", "\t", "\x7F"})
      EXPECT_THROW(Connexion_->Exécuter(Sql, {Long + Coupure}), Ombrey::ErreurExécution) << Table << " " << Coupure;
  }
  std::string Texte = Ligne("12", "22/09/26 08:30", "4", "é'");  // two characters, as wide as the column
  Texte.replace(Texte.find("Syrah"), 5, Long).replace(0, 1, "Cave de Saint-Cœur");
  EXPECT_EQ(Importer(Texte), "");
  EXPECT_EQ(Lire("SELECT CodeSite || '/' || Sélection || '/' || Cépage FROM Chargement"),
            "Cave de Saint-Cœur/é'/" + Long);
}

TEST_F(Import, StaysDoneWhenAListenerFails) {
  ÉcouteurEnPanne_ = true;
  testing::internal::CaptureStderr();
  EXPECT_EQ(Importer(Ligne("12") + Ligne("13")), "");
  EXPECT_NE(testing::internal::GetCapturedStderr().find("panne de l'écouteur"), std::string::npos);
  EXPECT_EQ(Annonces_, "importé Chargement 1/12\nimporté Chargement 1/13\n");
}

TEST_F(Import, GivesFalseForAnUnusableFileLayoutOrDatabase) {
  bool Drapeau = false;
  const auto Etat = Base_->EtatBdD();
  EXPECT_FALSE(Etat->TableImporter(TitreImport, (Dossier_ / "absent.txt").string(), Drapeau));
  EXPECT_EQ(Etat->DernièreErreur(), "Fichier d'import illisible : " + (Dossier_ / "absent.txt").string());
  EXPECT_FALSE(Etat->TableImporter("Autre titre", "x", Drapeau));
  EXPECT_EQ(Etat->DernièreErreur(), "Définition d'import inconnue : Autre titre");

  // clang-format off
  const std::pair<const char*, const char*> Cas[] = {
      {"UPDATE MSysEtats SET LongChps = replace(LongChps, 'texte', 'mémo')",
       "faux : Définition d'import : genre inconnu pour la colonne CodeSite"},
      {"UPDATE MSysEtats SET LongChps = replace(LongChps, 'Cuve', 'Cuvier')",
       "faux : Définition d'import : colonne inconnue : Cuvier"},
      {"UPDATE MSysEtats SET LongChps = replace(LongChps, 'DateCh', 'DateSortie')",
       "faux : Définition d'import : il manque la colonne DateCh"},
      {"UPDATE MSysEtats SET Format = NULL", "faux : Définition d'import sans séparateur : Synchronisation des chargements"},
      {"DROP TABLE MSysEtats", "faux : Table introuvable : MSysEtats (no such table: MSysEtats)"},
  };
  // clang-format on
  for (const auto& [Changement, Attendu] : Cas) {
    Connexion_->Exécuter(Changement);
    EXPECT_EQ(Importer(Ligne()), Attendu);
    Connexion_.reset();
    Base_.reset();
    std::filesystem::remove(Fichier_);
    CréerBase(Fichier_, true);
    Rouvrir();
  }
}

}  // namespace
}  // namespace Tarvel
