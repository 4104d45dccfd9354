// The dialect and the recordsets of the database on each engine; the file and its journal on SQLite.
#include <sqlite3.h>

#include "base/regional_forms.h"
#include "platform/database/recordsets.h"
#include "platform/database/sqlite/sqlite_connection.h"
#include "platform/database/sqlite/sqlite_dialect.h"
#include "tests/support/each_engine.h"

namespace Ombrey::Essais {

constexpr const char* TableVigne =
    "CREATE TABLE Vigne (Id TEXT, [Nom là] TEXT, Jour REAL, [N°] NUMERIC);"
    "INSERT INTO Vigne VALUES ('007', 'Été', 46000.25, 12.5), ('8', NULL, 46001.5, 3),"
    " ('09', 'l''un', NULL, 100000000000000000000), ('A', 'b', 46001.9999999, NULL);";

struct SurChaqueMoteur : testing::TestWithParam<Moteur> {
  void SetUp() override {
    if (Adresse.empty()) GTEST_SKIP() << "PostgreSQL isn't installed";
    Tarvel::CréerMoteur(Adresse)->ExécuterTout(TableVigne);
    Base = std::make_unique<BaseLue>(Tarvel::OuvrirMoteur(Adresse, [] { return 46001.9; }));
  }
  std::string Valeur(const std::string& Sql) { return TexteOuVide(Base->OpenRecordset(Sql, {})->Fields(0), {}); }

  DossierEssai Dossier;
  std::string Adresse = NouvelleBase(GetParam(), Dossier);
  std::unique_ptr<BaseLue> Base;
};
SUR_CHAQUE_MOTEUR(SurChaqueMoteur);

TEST_P(SurChaqueMoteur, RunsTheDialect) {
  // clang-format off
  const std::pair<const char*, const char*> Cas[] = {
      {"SELECT [Nom là] & ' & ' & Vigne.Id AS [x & y] FROM Vigne WHERE Id = '8'", " & 8"},
      {"SELECT ([Nom là] & Id) & Clng(Id & 1) FROM Vigne WHERE Id = '8'", "881"},
      {"SELECT 1 + 1 & 3*-2 FROM Vigne", "2-6"},
      {"SELECT 'Clng(''a & b' & clng (Id & '') FROM Vigne WHERE Id = '007'", "Clng('a & b7"},
      {"SELECT Id FROM Vigne WHERE ([Nom là]) & Id = '8'", "8"},
      {"  select [Nom là] from Vigne where Id = '09' ; ", "l'un"},
      {"SELECT [Nom là] FROM Vigne WHERE [Nom là] <> '' ORDER BY [Nom là]", "b"},
      {"SELECT Id FROM Vigne ORDER BY [Nom là]", "8"},
      {"SELECT V.Id FROM Vigne AS W RIGHT JOIN(Vigne AS V INNER JOIN Vigne AS U ON V.Id = U.Id)ON W.[Nom là] = V.[Nom là] WHERE V.Id = '8'", "8"},
      {"SELECT U.Id FROM Vigne AS W RIGHT JOIN (Vigne AS V RIGHT JOIN Vigne AS U ON V.[Nom là] = U.[Nom là]) ON W.Id = V.Id WHERE U.Id = '8'", "8"},
      {"SELECT * FROM Vigne AS W RIGHT JOIN Vigne AS V ON W.[Nom là] = V.[Nom là] WHERE V.Id = '8'", ""},
      {"SELECT Count(*), 2*-1 FROM Vigne;", "4"},
      {"SELECT [N°] FROM Vigne WHERE Id = '007'", "12,5"}, {"SELECT Clng([N°]) FROM Vigne WHERE Id = '007'", "12"},
      {"SELECT Clng([Nom là]) FROM Vigne WHERE Id = '007'", "0"},
      {"SELECT Format(Jour,'dd/mm/yyyy hh:nn:ss') FROM Vigne WHERE Clng(Id) = '7'", "09/12/2025 06:00:00"},
      {"SELECT Format(Jour,'dd/mm hh:nn') FROM Vigne WHERE Id = 'A'", "11/12 00:00"},
      {"SELECT Format(Jour,'dd.mm.yyyy') & '' FROM Vigne WHERE Id = '09'", ""},
      {"SELECT Id FROM Vigne WHERE Jour BETWEEN Date() AND Date()+0.9", "8"}, {"SELECT Date() FROM Vigne", "46001"},
  };
  // clang-format on
  for (const auto& [Sql, Attendu] : Cas) EXPECT_EQ(Valeur(Sql), Attendu) << Sql;
}

TEST_P(SurChaqueMoteur, ReadsATableThatAnotherProgramHasChanged) {
  const auto Degré = [&] { return TexteOuVide(Base->OpenRecordset("SELECT * FROM Vigne", {})->FieldsNommé("N°"), {}); };
  EXPECT_EQ(Degré(), "12,5");
  Tarvel::OuvrirMoteur(Adresse)->ExécuterTout("ALTER TABLE Vigne DROP COLUMN Jour");
  EXPECT_EQ(Degré(), "12,5");
}

TEST_P(SurChaqueMoteur, RefusesAllButOneSelect) {
  using namespace std::string_literals;
  for (const std::string& Sql :
       {"DELETE FROM Vigne"s, ""s, " ; "s, "SELECT 1; DELETE FROM Vigne"s, "SELECT 1\0; DELETE FROM Vigne"s,
        "WITH v AS (SELECT 1) DELETE FROM Vigne"s, "EXPLAIN SELECT 1"s, "SELECT 'a"s, "SELECT (1"s, "SELECT 1)"s,
        "SELECT nope FROM Vigne"s, "SELECT 1 INTO x FROM Vigne"s, "PRAGMA user_version = 4"s})
    EXPECT_THROW(static_cast<void>(Base->OpenRecordset(Sql, {})), ErreurExécution) << Sql;
  EXPECT_EQ(Valeur("SELECT Count(*) FROM Vigne"), "4");
}

TEST_P(SurChaqueMoteur, MovesThroughASnapshotAndStreamsForwardThoughTheConnectionIsGone) {
  const char* const Tous = "SELECT Id, [Nom là] FROM Vigne WHERE [N°] > 0 ORDER BY Clng(Id)";
  const auto Lignes = Base->OpenRecordset(Tous, TypeRecordset::Instantané);
  const auto Suite = Base->OpenRecordset(Tous, TypeRecordset::VersLAvant);
  const auto Vide = Base->OpenRecordset("SELECT Id FROM Vigne WHERE Id = 'x'", TypeRecordset::Défaut);
  Base.reset();
  EXPECT_EQ(Lignes->Colonnes(), (std::vector<std::string>{"Id", "Nom là"}));
  Lignes->MoveLast();
  EXPECT_EQ(Lignes->RecordCount(), 3);
  EXPECT_EQ(std::get<std::string>(Lignes->FieldsNommé("Nom là")), "l'un");
  Lignes->MoveNext();
  EXPECT_TRUE(Lignes->Eof());
  EXPECT_THROW(Lignes->MoveNext(), ErreurExécution);
  EXPECT_THROW(static_cast<void>(Lignes->Fields(0)), ErreurExécution);
  Lignes->MoveFirst();
  EXPECT_EQ(std::get<std::string>(Lignes->Fields(0)), "007");
  EXPECT_THROW(static_cast<void>(Lignes->Fields(2)), ErreurExécution);
  EXPECT_THROW(static_cast<void>(Lignes->FieldsNommé("nom là")), ErreurExécution);

  EXPECT_TRUE(Vide->Eof());
  EXPECT_EQ(Vide->RecordCount(), 0);
  EXPECT_THROW(Vide->MoveLast(), ErreurExécution);

  EXPECT_THROW(Suite->MoveFirst(), ErreurExécution);
  EXPECT_THROW(static_cast<void>(Suite->RecordCount()), ErreurExécution);
  std::string Lus;
  for (; !Suite->Eof(); Suite->MoveNext()) Lus += std::get<std::string>(Suite->Fields(0)) + " ";
  EXPECT_EQ(Lus, "007 8 09 ");
}

TEST(Dialecte, TurnsWhatOlderEnginesLackAndAsDeepAsItMayBe) {
  EXPECT_EQ(TraduireEnSqlite("SELECT x FROM(A)RIGHT JOIN B ON y WHERE z"),
            "SELECT x FROM B LEFT JOIN (A) ON y WHERE z");
  const std::string Profonde = std::string(10'000, '(') + "a & b" + std::string(10'000, ')');
  EXPECT_EQ(TraduireEnSqlite(Profonde), Profonde);
}

struct BaseVigne : testing::Test {
  std::shared_ptr<ConnexionSqlite> Nouvelle() {
    auto Connexion = ConnexionSqlite::Créer(Fichier);
    Connexion->ExécuterTout(TableVigne);
    return Connexion;
  }
  static std::int64_t Nombre(ConnexionSqlite& Connexion) {
    return std::get<std::int64_t>(Connexion.Lire("SELECT count(*) FROM Vigne"));
  }

  DossierEssai Dossier, Ailleurs;
  std::filesystem::path Fichier = Dossier.Chemin() / "coopé.db";
};

TEST_F(BaseVigne, UndoesAnUnfinishedTransactionAndKeepsASafeJournal) {
  const auto Connexion = Nouvelle();
  {
    Transaction Perdue(*Connexion);
    Connexion->Exécuter("DELETE FROM Vigne");
  }
  EXPECT_EQ(Nombre(*Connexion), 4);
  EXPECT_EQ(std::get<std::string>(Connexion->Lire("PRAGMA journal_mode")), "wal");
  EXPECT_EQ(std::get<std::int64_t>(Connexion->Lire("PRAGMA synchronous")), 3);
}

/// The machine's files, on a drive that carries no memory shared between programs.
struct DisqueSansPartage {
  DisqueSansPartage() {
    Lui = *Habituel;
    Lui.zName = "sans partage";
    Lui.xOpen = [](sqlite3_vfs*, const char* Nom, sqlite3_file* Fichier, int Drapeaux, int* Obtenus) {
      const int Code = Habituel->xOpen(Habituel, Nom, Fichier, Drapeaux, Obtenus);
      if (Code != SQLITE_OK || (Drapeaux & SQLITE_OPEN_MAIN_DB) == 0) return Code;
      static sqlite3_io_methods Opérations;
      Opérations = *Fichier->pMethods;
      Opérations.xShmMap = [](sqlite3_file*, int, int, int, void volatile**) { return SQLITE_IOERR_SHMMAP; };
      Fichier->pMethods = &Opérations;
      return Code;
    };
    Lui.xDelete = [](sqlite3_vfs*, const char* Nom, int AvecDossier) {
      Retirés += (AvecDossier ? "synced " : "") + std::filesystem::path(Nom).filename().string() + "|";
      return Habituel->xDelete(Habituel, Nom, AvecDossier);
    };
    sqlite3_vfs_register(&Lui, 1);
    testing::internal::CaptureStderr();
  }
  ~DisqueSansPartage() { sqlite3_vfs_unregister(&Lui); }
  DisqueSansPartage(const DisqueSansPartage&) = delete;
  DisqueSansPartage& operator=(const DisqueSansPartage&) = delete;

  static inline std::string Retirés;  ///< files, and whether their folder was put on the disk behind it
  static inline sqlite3_vfs* Habituel = sqlite3_vfs_find(nullptr);
  sqlite3_vfs Lui{};
};

TEST_F(BaseVigne, GoesOnWithTheOrdinaryJournalWhereTheDriveCarriesNoOther) {
  for (const bool EstDéjàLà : {false, true}) {
    SCOPED_TRACE(EstDéjàLà);
    const auto Connexion = EstDéjàLà ? Nouvelle() : nullptr;
    if (EstDéjàLà) std::filesystem::copy(Dossier.Chemin(), Ailleurs.Chemin(), std::filesystem::copy_options::recursive);
    const DisqueSansPartage Disque;
    const std::string Refus = RefusDe([&] {  // where another program has it open
      if (EstDéjàLà) static_cast<void>(ConnexionSqlite::Ouvrir(Fichier));
    });
    EXPECT_EQ(Refus.find(Dossier.Chemin().string() + " » ne permet pas") != std::string::npos, EstDéjàLà);
    const auto Ici = EstDéjàLà ? ConnexionSqlite::Ouvrir(Ailleurs.Chemin() / Fichier.filename()) : Nouvelle();
    const std::string Dit = testing::internal::GetCapturedStderr();
    EXPECT_NE(Dit.find("sans journal anticipé (mode « delete »)"), std::string::npos) << Dit;
    EXPECT_EQ(Nombre(*Ici), 4);
    // The journal's removal is on the disk before the commit returns, and others may write as well.
    EXPECT_EQ(std::get<std::int64_t>(Ici->Lire("PRAGMA synchronous")), 3);
    DisqueSansPartage::Retirés.clear();
    ConnexionSqlite::Ouvrir(Ici->Fichier())->ExécuterTout("DELETE FROM Vigne");
    EXPECT_EQ(DisqueSansPartage::Retirés, "synced coopé.db-journal|");
    EXPECT_EQ(Nombre(*Ici), 0);
    std::filesystem::remove(Fichier);
  }
}

TEST_F(BaseVigne, BringsItsLogHomeAtRestAndIsCopiedWholeAtWork) {
  const auto Connexion = Nouvelle();
  std::filesystem::copy(Fichier, Ailleurs.Chemin() / "avant.db");
  Connexion->RangerJournal();
  std::filesystem::copy(Fichier, Ailleurs.Chemin() / "après.db");
  EXPECT_THROW(static_cast<void>(Nombre(*ConnexionSqlite::Ouvrir(Ailleurs.Chemin() / "avant.db"))), ErreurExécution);
  EXPECT_EQ(Nombre(*ConnexionSqlite::Ouvrir(Ailleurs.Chemin() / "après.db")), 4);

  // Behind a crash the log is read as far as it goes; a commit doesn't make it longer.
  const std::string Journal = Fichier.string() + "-wal";
  const auto Longueur = std::filesystem::file_size(Journal);
  EXPECT_GT(Longueur, 1'000'000);
  Connexion->ExécuterTout("INSERT INTO Vigne SELECT * FROM Vigne");
  for (const char* Suffixe : {"", "-wal"})
    std::filesystem::copy(Fichier.string() + Suffixe, (Ailleurs.Chemin() / "panne.db").string() + Suffixe);
  EXPECT_EQ(Nombre(*ConnexionSqlite::Ouvrir(Ailleurs.Chemin() / "panne.db")), 8);
  EXPECT_EQ(std::filesystem::file_size(Journal), Longueur);
  Connexion->ExécuterTout("DELETE FROM Vigne WHERE rowid > 4");

  const auto Copie = Ailleurs.Chemin() / "copie.db";
  const auto AuTravail = ConnexionSqlite::Ouvrir(Fichier);
  Transaction EnCours(*AuTravail);
  AuTravail->Exécuter("DELETE FROM Vigne");
  Connexion->Sauvegarder(Copie);
  EXPECT_EQ(Nombre(*ConnexionSqlite::Ouvrir(Copie)), 4);
  EXPECT_THROW(Connexion->Sauvegarder(Copie), ErreurExécution);
  EXPECT_TRUE(ConnexionSqlite::EstOuverteAilleurs(Fichier));
  EXPECT_FALSE(ConnexionSqlite::EstOuverteAilleurs(Copie));
}

TEST_F(BaseVigne, IsAFileAndCreatedOnlyWhereNothingStands) {
  const auto Connexion = Nouvelle();
  EXPECT_THROW(static_cast<void>(ConnexionSqlite::Ouvrir(Dossier.Chemin())), ErreurExécution);
  for (const char* Nom : {"coopé.db", "absent/b.db"})
    EXPECT_THROW(static_cast<void>(ConnexionSqlite::Créer(Dossier.Chemin() / Nom)), ErreurExécution) << Nom;
  EXPECT_EQ(Nombre(*Connexion), 4);
}

}  // namespace Ombrey::Essais
