// Import files of every kind, and what becomes of the table of loads.
#include "tests/host/cooperative_fixture.h"

namespace Tarvel {

using Import = SurChaqueMoteur;
SUR_CHAQUE_MOTEUR(Import);

/// What happens to a load or its row: a line of the import file, a change by the office, or "fermer" the base and open
/// it.
using Actes = std::vector<std::string>;

constexpr const char* Matin = "22/09/26 08:30";
constexpr const char* SansDate = "22/09/2026 23:59:50";
const std::string DeLAutreSite = "3" + Ligne().substr(1), DixHeures = Ligne("12", "22/09/26 10:00");

// Holding, weight and arrival of each row, those of the archive behind a "+"; weight of group 7 for the appellation 05
// and what holding 4 may still bring; what the last line was announced as.
// clang-format off
const std::tuple<const char*, Actes, const char*, const char*, const char*> Suites[] = {
  {"the same twice", {Ligne(), Ligne()}, "4 1234 08:30", "1234 58766", "mis à jour"},
  {"a holding that could be had only at the second time", {Ligne("12", Matin, "0"), Ligne()}, "4 1234 08:30", "1234 58766", "mis à jour"},
  {"a holding that the office found meanwhile", {Ligne("12", Matin, "0"), "SET Métayage = '5'", Ligne()}, "5 1234 08:30", "1234 60000", "mis à jour"},
  {"a holding that was corrected, or added, between the two sendings", {Ligne(), Ligne("12", Matin, "5")}, "4 1234 08:30", "1234 58766", "mis à jour"},
  {"the office's corrections stay", {Ligne(), "SET Masse = 1300, DateCh = DateCh + 0.125, Sélection = '10'", Ligne()}, "4 1300 11:30", "0 60000", "mis à jour"},
  {"a number that the office corrected", {Ligne(), "SET NoChargement = 99", Ligne()}, "4 1234 08:30", "1234 58766", "mis à jour"},
  {"a site that the office corrected", {Ligne(), "SET CodeSite = '2'", Ligne()}, "4 1234 08:30", "1234 58766", "mis à jour"},
  {"a number that the office gave to another load", {Ligne(), "SET NoChargement = 13", Ligne("13", Matin, "4", "05", "20")}, "4 20 08:30+4 1234 08:30", "1254 58746", "importé"},
  {"another load of the same number, minute and holding", {Ligne(), Ligne("12", Matin, "4", "05", "1235")}, "4 1235 08:30+4 1234 08:30", "2469 57531", "importé"},
  {"another load of a later minute", {Ligne(), Ligne("12", "22/09/26 08:31")}, "4 1234 08:31+4 1234 08:30", "2468 57532", "importé"},
  {"another load of the next day", {Ligne(), Ligne("12", "23/09/26 08:30")}, "4 1234 08:30+4 1234 08:30", "2468 57532", "importé"},
  {"the first one once more, behind another", {Ligne(), "SET Masse = 1300", DixHeures, Ligne()}, "4 1300 08:30+4 1234 10:00", "2534 57466", "mis à jour"},
  {"and the other one again", {Ligne(), DixHeures, Ligne(), DixHeures}, "4 1234 10:00+4 1234 08:30", "2468 57532", "mis à jour"},
  {"an archived one whose holding could be had only now", {Ligne("12", Matin, "0"), DixHeures, Ligne()}, "4 1234 08:30+4 1234 10:00", "2468 57532", "mis à jour"},
  {"no date: the times of two imports, a day apart", {Ligne("12", SansDate), Ligne("12", "24/09/2026 00:00:07")}, "4 1234 23:59", "1234 58766", "mis à jour"},
  {"a date at first, and none at the second time", {Ligne(), Ligne("12", SansDate)}, "4 1234 08:30", "1234 58766", "mis à jour"},
  {"no date: both imports on whole minutes", {Ligne("12", "22/09/2026 10:00:00"), Ligne("12", "22/09/2026 11:00:00")}, "4 1234 10:00", "1234 58766", "mis à jour"},
  {"no date, and another weight", {Ligne("12", SansDate), Ligne("12", SansDate, "4", "05", "1235")}, "4 1235 23:59+4 1234 23:59", "2469 57531", "importé"},
  {"no date, and neither appellation nor weight", {Ligne("12", SansDate, "4", "", ""), Ligne("12", "23/09/2026 09:00:01", "4", "", "")}, "4  23:59", "0 60000", "mis à jour"},
  {"the same number at another site", {Ligne(), DeLAutreSite, Ligne(), DeLAutreSite}, "4 1234 08:30,4 1234 08:30", "2468 57532", "mis à jour"},
  {"over a new start", {Ligne(), "fermer", Ligne("12", Matin, "5")}, "4 1234 08:30", "1234 58766", "mis à jour"},
};
// clang-format on

TEST_P(Import, KnowsALoadByWhatTheTerminalSentAndKeepsItOnce) {
  for (const auto& [Nom, Faits, Rangées, Cumuls, Annonce] : Suites) {
    SCOPED_TRACE(Nom);
    Connexion_->ExécuterTout("DELETE FROM Chargement; DELETE FROM ChargementArchive");
    Avis_.clear();
    for (const std::string& Fait : Faits) {
      if (Fait == "fermer") {
        Rouvrir();
      } else if (Fait.ends_with("\n")) {
        EXPECT_EQ(Importer(Fait), "");
      } else {
        Connexion_->Exécuter("UPDATE Chargement " + Fait);
      }
    }
    EXPECT_EQ(Annonces_.substr(0, Annonces_.find(" Ch")), Annonce);
    const std::string Toutes = "SELECT Métayage, Masse, substr(Arrivée, 12) FROM ";
    const std::string Archivées = Lire(Toutes + "ChargementLisible WHERE Archive = 'archivé'");
    EXPECT_EQ(Lire(Toutes + "ChargementLisible WHERE Archive = ''") + (Archivées.empty() ? "" : "+") + Archivées,
              Rangées);
    EXPECT_EQ(CumulsDuRouge(), Cumuls);
    EXPECT_EQ(Avis_.empty(), Archivées.empty()) << Avis_;
  }
}

TEST_P(Import, ArchivesColumnsThatTheCooperativeAdded) {
  Connexion_->ExécuterTout(
      "ALTER TABLE Chargement ADD COLUMN \"N° de \"\"ticket\"\"\" DECIMAL(8, 2) NOT NULL DEFAULT 7");
  if (Connexion_->SonFichier())
    Connexion_->ExécuterTout(
        "ALTER TABLE Chargement ADD COLUMN [Sans genre]; ALTER TABLE ChargementArchive ADD COLUMN [SANS GENRE]");
  for (const char* Date : {Matin, "23/09/26 08:30", "24/09/26 08:30"}) ASSERT_EQ(Importer(Ligne("12", Date)), "");
  Connexion_->Exécuter("ALTER TABLE Chargement ADD COLUMN Tardive INTEGER NOT NULL DEFAULT 3");
  ASSERT_EQ(Importer(Ligne()), "") << "one that was archived ahead of the last column comes back";
  EXPECT_EQ(Lire("SELECT count(*), sum(\"N° de \"\"ticket\"\"\") FROM ChargementArchive"), "2 14");
}

TEST_P(Import, SaysWhichValueItCannotReadAndWritesNothing) {
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

TEST_P(Import, TakesTheCooperativesOwnNamesAsLongAsTheyAreAndNoneThatSplitsALine) {
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

TEST_P(Import, StaysDoneWhenAListenerFails) {
  ÉcouteurEnPanne_ = true;
  testing::internal::CaptureStderr();
  EXPECT_EQ(Importer(Ligne("12") + Ligne("13")), "");
  EXPECT_NE(testing::internal::GetCapturedStderr().find("panne de l'écouteur"), std::string::npos);
  EXPECT_EQ(Annonces_, "importé Chargement 1/12\nimporté Chargement 1/13\n");
  EXPECT_EQ(Lire("SELECT DISTINCT Qualité, Degré, Cuve, Synchronisé FROM Chargement"), "01 12,5 7 0");
}

TEST_P(Import, GivesFalseForAnUnusableFileLayoutOrDatabase) {
  bool Drapeau = false;
  EXPECT_FALSE(Base_->EtatBdD()->TableImporter(TitreImport, "/absent.txt", Drapeau));
  EXPECT_EQ(Base_->EtatBdD()->DernièreErreur(), "Fichier d'import illisible : /absent.txt");
  const std::string Définition = "faux : Définition d'import";
  // clang-format off
  const std::pair<const char*, std::string> Cas[] = {
      {"UPDATE MSysEtats SET Titre = 'x'", Définition + " inconnue : Synchronisation des chargements"},
      {"UPDATE MSysEtats SET LongChps = replace(LongChps, 'texte', 'mémo')", Définition + " : genre inconnu pour la colonne CodeSite"},
      {"UPDATE MSysEtats SET LongChps = replace(LongChps, 'Cuve', 'Cuvier')", Définition + " : colonne inconnue : Cuvier"},
      {"UPDATE MSysEtats SET LongChps = replace(LongChps, 'DateCh', 'DateSortie')", Définition + " : il manque la colonne DateCh"},
      {"UPDATE MSysEtats SET Format = NULL", Définition + " sans séparateur : Synchronisation des chargements"},
      {"DROP TABLE MSysEtats", "faux : Table introuvable : MSysEtats"},
  };
  // clang-format on
  for (const auto& [Changement, Attendu] : Cas) {
    Connexion_->Exécuter(Changement);
    const std::string Dit = Importer(Ligne());
    EXPECT_EQ(Dit.substr(0, Dit.find(" (")), Attendu);
    Refaire();
  }
}

}  // namespace Tarvel
