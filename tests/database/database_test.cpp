// The dialect, the recordsets and the failures of the database on SQLite.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include "base/failures.h"
#include "platform/database/recordsets.h"
#include "platform/database/sqlite/sqlite_connection.h"
#include "platform/database/sqlite/sqlite_dialect.h"
#include "tests/support/test_folder.h"

namespace Ombrey {
namespace {

struct BaseVigne : testing::Test {
  std::shared_ptr<ConnexionSqlite> Nouvelle() {
    auto Connexion = ConnexionSqlite::Créer(Fichier, [] { return 46001.9; });
    Connexion->ExécuterTout(
        "CREATE TABLE Vigne (Id TEXT, Nom TEXT, Jour REAL);"
        "INSERT INTO Vigne VALUES ('007', 'Été', 46000.25), ('8', NULL, 46001.5), ('09', 'l''un', NULL);");
    return Connexion;
  }
  static std::int64_t Nombre(ConnexionSqlite& Connexion) {
    return std::get<std::int64_t>(Connexion.Lire("SELECT count(*) FROM Vigne"));
  }

  Essais::DossierEssai Dossier;
  Essais::DossierEssai Ailleurs;
  std::filesystem::path Fichier = Dossier.Chemin() / "coopé.db";
};

TEST(Dialecte, TurnsWhatSqliteLacksAndNothingElse) {
  // clang-format off
  const std::pair<const char*, const char*> Cas[] = {
      {"SELECT [a b].[c] & ' & ' & t.d AS [x & y] FROM t",
       "SELECT (coalesce([a b].[c],'')||coalesce(' & ','')||coalesce(t.d,'')) AS [x & y] FROM t"},
      {"SELECT (a & b) & f(c & 1) FROM t",
       "SELECT (coalesce(((coalesce(a,'')||coalesce(b,''))),'')||coalesce(f((coalesce(c,'')||coalesce(1,''))),'')) FROM t"},
      {"SELECT a + 1 & b*-2 FROM t", "SELECT (coalesce(a + 1,'')||coalesce(b*-2,'')) FROM t"},
      {"SELECT 'l''a & b', \"c & d\" FROM t", "SELECT 'l''a & b', \"c & d\" FROM t"},
      {"SELECT x FROM t WHERE (a) & b = 'c'", "SELECT x FROM t WHERE (coalesce((a),'')||coalesce(b,'')) = 'c'"},
      {"SELECT Clng(Id), clng (a & b) FROM t",
       "SELECT CAST(Id AS INTEGER), CAST((coalesce(a,'')||coalesce(b,'')) AS INTEGER) FROM t"},
      {"SELECT 'Clng(x)', [Clng(x)] FROM t", "SELECT 'Clng(x)', [Clng(x)] FROM t"},
      {"SELECT x FROM A RIGHT JOIN (B INNER JOIN C AS D ON B.i = D.i) ON A.i = B.i WHERE y",
       "SELECT x FROM (B INNER JOIN C AS D ON B.i = D.i) LEFT JOIN A ON A.i = B.i WHERE y"},
      {"SELECT x FROM A RIGHT JOIN (B RIGHT JOIN C ON B.i = C.i) ON A.i = B.i",
       "SELECT x FROM (C LEFT JOIN B ON B.i = C.i) LEFT JOIN A ON A.i = B.i"},
      {"SELECT x FROM(A)RIGHT JOIN B ON y", "SELECT x FROM B LEFT JOIN (A) ON y"},
      {"SELECT x FROM A RIGHT JOIN(B)ON y", "SELECT x FROM (B) LEFT JOIN A ON y"},
      {"SELECT * FROM A RIGHT JOIN B ON A.i = B.i", "SELECT * FROM A RIGHT JOIN B ON A.i = B.i"},
      {"SELECT Count(*), a*-1 FROM t ORDER BY a DESC;", "SELECT Count(*), a*-1 FROM t ORDER BY a DESC;"},
      {"SELECT (a & b FROM t", "SELECT (a & b FROM t"}, {"SELECT a) FROM t", "SELECT a) FROM t"},
      {"SELECT 'a & b", "SELECT 'a & b"}, {"", ""},
  };
  // clang-format on
  for (const auto& [Jet, Sqlite] : Cas) EXPECT_EQ(TraduireEnSqlite(Jet), Sqlite);
  const std::string Profonde = std::string(10'000, '(') + "a & b" + std::string(10'000, ')');
  EXPECT_EQ(TraduireEnSqlite(Profonde), Profonde);
}

TEST_F(BaseVigne, RunsTheDialect) {
  BaseLue Base(Nouvelle());
  const std::pair<const char*, const char*> Cas[] = {
      {"SELECT Nom & '/' & Id FROM Vigne WHERE Clng(Id) = '8'", "/8"},
      {"SELECT Format(Jour,'dd/mm hh:nn') FROM Vigne WHERE Clng(Id) = '7'", "09/12 06:00"},
      {"SELECT Format(Jour,'dd.mm.yyyy') & '' FROM Vigne WHERE Id = '09'", ""},
      {"SELECT Id FROM Vigne WHERE Jour BETWEEN Date() AND Date()+1", "8"},
      {"  select Nom from Vigne where Id = '09' ; ", "l'un"},
  };
  for (const auto& [Sql, Attendu] : Cas)
    EXPECT_EQ(std::get<std::string>(Base.OpenRecordset(Sql, {})->Fields(0)), Attendu) << Sql;
}

TEST_F(BaseVigne, RefusesAllButOneSelect) {
  const auto Connexion = Nouvelle();
  BaseLue Base(Connexion);
  using namespace std::string_literals;
  for (const std::string& Sql :
       {"DELETE FROM Vigne"s, ""s, " ; "s, "PRAGMA user_version = 4"s, "SELECT 1; DELETE FROM Vigne"s,
        "SELECT 1\0; DELETE FROM Vigne"s, "WITH v AS (SELECT 1) DELETE FROM Vigne"s, "EXPLAIN SELECT 1"s, "SELECT"s,
        "SELECT 'a"s, "SELECT (1"s, "SELECT nope FROM Vigne"s})
    EXPECT_THROW(static_cast<void>(Base.OpenRecordset(Sql, {})), ErreurExécution) << Sql;
  EXPECT_EQ(Nombre(*Connexion), 3);
}

TEST_F(BaseVigne, MovesThroughASnapshot) {
  const auto Connexion = Nouvelle();
  BaseLue Base(Connexion);
  const auto Lignes = Base.OpenRecordset("SELECT Id, Nom FROM Vigne ORDER BY Clng(Id)", TypeRecordset::Instantané);
  Connexion->Exécuter("DELETE FROM Vigne");
  EXPECT_EQ(Lignes->Colonnes(), (std::vector<std::string>{"Id", "Nom"}));
  Lignes->MoveLast();
  EXPECT_EQ(Lignes->RecordCount(), 3);
  EXPECT_EQ(std::get<std::string>(Lignes->FieldsNommé("Nom")), "l'un");
  Lignes->MoveNext();
  EXPECT_TRUE(Lignes->Eof());
  EXPECT_THROW(Lignes->MoveNext(), ErreurExécution);
  EXPECT_THROW(static_cast<void>(Lignes->Fields(0)), ErreurExécution);
  Lignes->MoveFirst();
  EXPECT_EQ(std::get<std::string>(Lignes->Fields(0)), "007");
  EXPECT_THROW(static_cast<void>(Lignes->Fields(2)), ErreurExécution);
  EXPECT_THROW(static_cast<void>(Lignes->FieldsNommé("nom")), ErreurExécution);

  const auto Vide = Base.OpenRecordset("SELECT Id FROM Vigne", TypeRecordset::Défaut);
  EXPECT_TRUE(Vide->Eof() && Vide->RecordCount() == 0);
  EXPECT_THROW(Vide->MoveLast(), ErreurExécution);
}

TEST_F(BaseVigne, StreamsForwardAndOutlivesItsConnection) {
  auto Base = std::make_unique<BaseLue>(Nouvelle());
  const auto Lignes = Base->OpenRecordset("SELECT Id FROM Vigne ORDER BY Id", TypeRecordset::VersLAvant);
  Base.reset();
  EXPECT_THROW(Lignes->MoveFirst(), ErreurExécution);
  EXPECT_THROW(static_cast<void>(Lignes->RecordCount()), ErreurExécution);
  std::string Lus;
  for (; !Lignes->Eof(); Lignes->MoveNext()) Lus += std::get<std::string>(Lignes->Fields(0)) + " ";
  EXPECT_EQ(Lus, "007 09 8 ");
}

TEST_F(BaseVigne, UndoesAnUnfinishedTransactionAndKeepsASafeJournal) {
  const auto Connexion = Nouvelle();
  {
    Transaction Perdue(*Connexion);
    Connexion->Exécuter("DELETE FROM Vigne");
  }
  EXPECT_EQ(Nombre(*Connexion), 3);
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
    sqlite3_vfs_register(&Lui, 1);
    testing::internal::CaptureStderr();
  }
  ~DisqueSansPartage() { sqlite3_vfs_unregister(&Lui); }
  DisqueSansPartage(const DisqueSansPartage&) = delete;
  DisqueSansPartage& operator=(const DisqueSansPartage&) = delete;

  static inline sqlite3_vfs* Habituel = sqlite3_vfs_find(nullptr);
  sqlite3_vfs Lui{};
};

TEST_F(BaseVigne, GoesOnWithTheOrdinaryJournalWhereTheDriveCarriesNoOther) {
  for (const bool EstDéjàLà : {false, true}) {
    SCOPED_TRACE(EstDéjàLà);
    const auto Connexion = EstDéjàLà ? Nouvelle() : nullptr;
    if (EstDéjàLà) std::filesystem::copy(Dossier.Chemin(), Ailleurs.Chemin(), std::filesystem::copy_options::recursive);
    const DisqueSansPartage Disque;
    const auto Ici = EstDéjàLà ? ConnexionSqlite::Ouvrir(Ailleurs.Chemin() / Fichier.filename()) : Nouvelle();
    const std::string Dit = testing::internal::GetCapturedStderr();
    EXPECT_NE(Dit.find("sans journal anticipé (mode « delete »)"), std::string::npos) << Dit;
    EXPECT_EQ(Nombre(*Ici), 3);
    // The journal's removal is on the disk before the commit returns, and others may write as well.
    EXPECT_EQ(std::get<std::int64_t>(Ici->Lire("PRAGMA synchronous")), 3);
    ConnexionSqlite::Ouvrir(Ici->Fichier())->ExécuterTout("DELETE FROM Vigne");
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
  EXPECT_EQ(Nombre(*ConnexionSqlite::Ouvrir(Ailleurs.Chemin() / "après.db")), 3);

  const auto Copie = Ailleurs.Chemin() / "copie.db";
  const auto AuTravail = ConnexionSqlite::Ouvrir(Fichier);
  Transaction EnCours(*AuTravail);
  AuTravail->Exécuter("DELETE FROM Vigne");
  Connexion->Sauvegarder(Copie);
  EXPECT_EQ(Nombre(*ConnexionSqlite::Ouvrir(Copie)), 3);
  EXPECT_THROW(Connexion->Sauvegarder(Copie), ErreurExécution);
  EXPECT_TRUE(ConnexionSqlite::EstOuverteAilleurs(Fichier));
  EXPECT_FALSE(ConnexionSqlite::EstOuverteAilleurs(Copie));
}

TEST_F(BaseVigne, IsAFileAndCreatedOnlyWhereNothingStands) {
  const auto Connexion = Nouvelle();
  EXPECT_THROW(static_cast<void>(ConnexionSqlite::Ouvrir(Dossier.Chemin())), ErreurExécution);
  for (const char* Nom : {"coopé.db", "absent/b.db"})
    EXPECT_THROW(static_cast<void>(ConnexionSqlite::Créer(Dossier.Chemin() / Nom)), ErreurExécution) << Nom;
  EXPECT_EQ(Nombre(*Connexion), 3);
}

}  // namespace
}  // namespace Ombrey
