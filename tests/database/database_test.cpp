// The dialect, the recordsets and the failures of the database on SQLite.
#include <gtest/gtest.h>
#include <malloc.h>
#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <thread>

#include "common/failures.h"
#include "platform/database/dialect.h"
#include "platform/database/packed_rows.h"
#include "platform/database/sqlite_engine.h"

namespace Ombrey {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

template <class Instruction_>
std::string Echec(Instruction_&& Faire) {
  try {
    Faire();
  } catch (const ErreurExécution& Erreur) {
    return Erreur.what();
  }
  return "(aucun échec)";
}

class DossierEssai : public testing::Test {
 public:
  DossierEssai() {
    std::string Modèle = (fs::temp_directory_path() / "ombrey-base-XXXXXX").string();
    Dossier_ = mkdtemp(Modèle.data());
    Fichier_ = Dossier_ / "coopé.db";
  }
  ~DossierEssai() override { fs::remove_all(Dossier_); }

 protected:
  std::shared_ptr<ConnexionSqlite> Nouvelle(ConnexionSqlite::Horloge Maintenant = {}) {
    auto Connexion = ConnexionSqlite::Créer(Fichier_, std::move(Maintenant));
    Connexion->ExécuterTout(
        "CREATE TABLE Vigne (Id TEXT, Nom TEXT, Jour REAL);"
        "INSERT INTO Vigne VALUES ('007', 'Été', 46000.25), ('8', NULL, 46001.5), ('09', 'l''un', NULL);");
    return Connexion;
  }

  fs::path Dossier_;
  fs::path Fichier_;
};

TEST(Dialecte, TurnsWhatSqliteLacksAndNothingElse) {
  const struct {
    const char* Jet;
    const char* Sqlite;
  } Cas[] = {
      {"SELECT a & b FROM t", "SELECT (coalesce(a,'')||coalesce(b,'')) FROM t"},
      {"SELECT [a b].[c] & ' & ' & t.d AS [x & y] FROM t",
       "SELECT (coalesce([a b].[c],'')||coalesce(' & ','')||coalesce(t.d,'')) AS [x & y] FROM t"},
      {"SELECT (a & b) & f(c & 1) FROM t",
       "SELECT (coalesce(((coalesce(a,'')||coalesce(b,''))),'')||coalesce(f((coalesce(c,'')||coalesce(1,''))),'')) "
       "FROM t"},
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
      {"SELECT * FROM A RIGHT JOIN B ON A.i = B.i", "SELECT * FROM A RIGHT JOIN B ON A.i = B.i"},
      {"SELECT Count(*), a*-1 FROM t ORDER BY a DESC;", "SELECT Count(*), a*-1 FROM t ORDER BY a DESC;"},
      {"SELECT (a & b FROM t", "SELECT (a & b FROM t"},
      {"SELECT a) FROM t", "SELECT a) FROM t"},
      {"SELECT 'a & b", "SELECT 'a & b"},
      {"", ""},
  };
  for (const auto& C : Cas) EXPECT_EQ(TraduireEnSqlite(C.Jet), C.Sqlite);
}

TEST_F(DossierEssai, RunsTheDialect) {
  BaseSqlite Base(Nouvelle([] { return 46001.9; }));
  const struct {
    const char* Sql;
    const char* Attendu;
  } Cas[] = {
      {"SELECT Id FROM Vigne WHERE Clng(Id) = '7'", "007"},
      {"SELECT Nom & '/' & Id FROM Vigne WHERE Clng(Id) = '8'", "/8"},
      {"SELECT Format(Jour,'dd/mm hh:nn') FROM Vigne WHERE Id = '007'", "09/12 06:00"},
      {"SELECT Format(Jour,'dd.mm.yyyy') & '' FROM Vigne WHERE Id = '09'", ""},
      {"SELECT Id FROM Vigne WHERE Jour BETWEEN Date() AND Date()+1", "8"},
      {"  select Nom from Vigne where Id = '09' ; ", "l'un"},
  };
  for (const auto& C : Cas)
    EXPECT_EQ(std::get<std::string>(Base.OpenRecordset(C.Sql, {})->Fields(0)), C.Attendu) << C.Sql;
}

TEST_F(DossierEssai, RefusesAllButOneSelect) {
  const auto Connexion = Nouvelle();
  BaseSqlite Base(Connexion);
  using namespace std::string_literals;
  for (const std::string& Sql :
       {"DELETE FROM Vigne"s, ""s, " ; "s, "PRAGMA user_version = 4"s, "SELECT 1; DELETE FROM Vigne"s,
        "SELECT 1\0; DELETE FROM Vigne"s, "WITH v AS (SELECT 1) DELETE FROM Vigne"s, "EXPLAIN SELECT 1"s, "SELECT"s,
        "SELECT 'a"s, "SELECT (1"s, "SELECT nope FROM Vigne"s})
    EXPECT_THROW(static_cast<void>(Base.OpenRecordset(Sql, {})), ErreurExécution) << Sql;
  EXPECT_EQ(std::get<std::int64_t>(Connexion->Lire("SELECT count(*) FROM Vigne")), 3);
  EXPECT_EQ(Echec([&] { static_cast<void>(Base.OpenRecordset("SELECT 1 FROM Cuvée", {})); }),
            "Table introuvable : Cuvée (no such table: Cuvée)");
}

TEST_F(DossierEssai, MovesThroughASnapshot) {
  const auto Connexion = Nouvelle();
  BaseSqlite Base(Connexion);
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
  EXPECT_TRUE(Vide->Eof());
  EXPECT_EQ(Vide->RecordCount(), 0);
  EXPECT_THROW(Vide->MoveLast(), ErreurExécution);
}

TEST_F(DossierEssai, StreamsForwardAndOutlivesItsConnection) {
  auto Base = std::make_unique<BaseSqlite>(Nouvelle());
  const auto Lignes = Base->OpenRecordset("SELECT Id FROM Vigne ORDER BY Id", TypeRecordset::VersLAvant);
  Base.reset();
  EXPECT_THROW(Lignes->MoveFirst(), ErreurExécution);
  EXPECT_THROW(static_cast<void>(Lignes->RecordCount()), ErreurExécution);
  std::string Lus;
  for (; !Lignes->Eof(); Lignes->MoveNext()) Lus += std::get<std::string>(Lignes->Fields(0)) + " ";
  EXPECT_EQ(Lus, "007 09 8 ");
}

TEST(LignesCompactes, GivesBackEveryValueAcrossBlocks) {
  const std::vector<ValeurChamp> Valeurs = {std::monostate{},
                                            std::int64_t{0},
                                            std::int64_t{-1},
                                            std::int64_t{127},
                                            std::int64_t{-128},
                                            std::int64_t{128},
                                            INT64_MAX,
                                            INT64_MIN,
                                            std::int64_t{65536},
                                            33.3333,
                                            -0.0,
                                            "",
                                            "é",
                                            std::string(62, 'a'),
                                            std::string(63, 'b'),
                                            std::string(70'000, 'c')};
  LignesCompactes Lignes(Valeurs.size());
  constexpr int Nombre = 40;
  for (int Ligne = 0; Ligne < Nombre; ++Ligne) {
    for (const ValeurChamp& V : Valeurs) {
      if (EstNull(V)) Lignes.AjouterNull();
      if (const auto* E = std::get_if<std::int64_t>(&V)) Lignes.AjouterEntier(*E);
      if (const auto* R = std::get_if<double>(&V)) Lignes.AjouterRéel(*R);
      if (const auto* T = std::get_if<std::string>(&V)) Lignes.AjouterTexte(*T);
    }
    Lignes.TerminerLigne();
  }
  int Lues = 0;
  for (auto Ici = Lignes.Début(); Ici != Lignes.Fin(); Ici = Lignes.Suivante(Ici), ++Lues)
    for (std::size_t C = 0; C < Valeurs.size(); ++C) ASSERT_EQ(Lignes.Valeur(Ici, C), Valeurs[C]) << C;
  EXPECT_EQ(Lues, Nombre);
}

TEST_F(DossierEssai, KeepsASnapshotWellBelowTheTerminalsFile) {
  const auto Connexion = Nouvelle();
  Connexion->ExécuterTout(
      "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i < 30000)"
      " INSERT INTO Vigne SELECT printf('%06d', i), 'Domaine du Côteau', NULL FROM n");
  constexpr std::size_t TailleFichier = 30'000UL * 41;
  const std::size_t Avant = mallinfo2().uordblks;
  const auto Lignes =
      BaseSqlite(Connexion).OpenRecordset("SELECT Id, Nom FROM Vigne ORDER BY Id", TypeRecordset::Instantané);
  EXPECT_EQ(Lignes->RecordCount(), 30'003);
  EXPECT_LT(mallinfo2().uordblks - Avant, TailleFichier * 3 / 4);
}

TEST_F(DossierEssai, UndoesAnUnfinishedTransaction) {
  const auto Connexion = Nouvelle();
  {
    Transaction Perdue(*Connexion);
    Connexion->Exécuter("DELETE FROM Vigne");
  }
  EXPECT_EQ(std::get<std::int64_t>(Connexion->Lire("SELECT count(*) FROM Vigne")), 3);
  EXPECT_EQ(std::get<std::string>(Connexion->Lire("PRAGMA journal_mode")), "wal");
  EXPECT_EQ(std::get<std::int64_t>(Connexion->Lire("PRAGMA synchronous")), 2);
}

TEST_F(DossierEssai, SaysOnceThatTheDriveCarriesNoWriteAheadLog) {
  sqlite3_vfs* const Habituel = sqlite3_vfs_find(nullptr);
  sqlite3_vfs_register(sqlite3_vfs_find("unix-dotfile"), 1);
  testing::internal::CaptureStderr();
  const auto Connexion = Nouvelle();
  const std::string Dit = testing::internal::GetCapturedStderr();
  sqlite3_vfs_register(Habituel, 1);
  EXPECT_NE(Dit.find("ne peut pas tenir de journal anticipé (mode « delete »)"), std::string::npos) << Dit;
  EXPECT_EQ(std::get<std::int64_t>(Connexion->Lire("SELECT count(*) FROM Vigne")), 3);
}

TEST_F(DossierEssai, WaitsForAnotherProgramsLock) {
  const auto Connexion = Nouvelle();
  const auto Autre = ConnexionSqlite::Ouvrir(Fichier_);
  Autre->Exécuter("BEGIN EXCLUSIVE");
  std::thread Libérer([&] {
    std::this_thread::sleep_for(200ms);
    Autre->Exécuter("COMMIT");
  });
  EXPECT_EQ(Echec([&] { Transaction Tout(*Connexion); }), "(aucun échec)");
  Libérer.join();
}

TEST_F(DossierEssai, SaysInFrenchWhatCannotBeOpened) {
  static_cast<void>(Nouvelle());
  std::ofstream(Dossier_ / "texte.db") << std::string(5000, 'x');
  std::ofstream(Dossier_ / "vide.db").close();
  const struct {
    const char* Nom;
    const char* Attendu;
  } Cas[] = {{"absent.db", "fichier introuvable"},
             {"texte.db", "Le fichier n'est pas une base de données (file is not a database)"},
             {"vide.db", "le fichier est vide"},
             {".", "ce n'est pas un fichier"}};
  for (const auto& C : Cas) {
    const std::string Texte = Echec([&] { static_cast<void>(ConnexionSqlite::Ouvrir(Dossier_ / C.Nom)); });
    EXPECT_TRUE(Texte.starts_with("Base de données « " + (Dossier_ / C.Nom).string() + " » : ")) << Texte;
    EXPECT_TRUE(Texte.ends_with(C.Attendu)) << Texte;
  }
  EXPECT_TRUE(Echec([&] { static_cast<void>(ConnexionSqlite::Créer(Fichier_)); }).ends_with("le fichier existe déjà"));
  EXPECT_TRUE(Echec([&] {
                static_cast<void>(ConnexionSqlite::Créer(Dossier_ / "absent" / "b.db"));
              }).ends_with("création impossible (introuvable)"));
}

TEST_F(DossierEssai, ReadsAReadOnlyFileAndRefusesToWrite) {
  static_cast<void>(Nouvelle());
  fs::permissions(Fichier_, fs::perms{0444});
  fs::permissions(Dossier_, fs::perms{0777});
  const pid_t Enfant = fork();
  if (Enfant == 0) {
    constexpr uid_t Personne = 65534;
    if (geteuid() == 0 && setuid(Personne) != 0) _exit(2);
    const std::string Texte = Echec([&] {
      const auto Connexion = ConnexionSqlite::Ouvrir(Fichier_);
      if (std::get<std::int64_t>(Connexion->Lire("SELECT count(*) FROM Vigne")) != 3) _exit(3);
      Connexion->Exécuter("DELETE FROM Vigne");
    });
    _exit(Texte.starts_with("La base de données est en lecture seule") ? 0 : 4);
  }
  int Etat = 0;
  ASSERT_EQ(waitpid(Enfant, &Etat, 0), Enfant);
  EXPECT_EQ(WEXITSTATUS(Etat), 0);
}

}  // namespace
}  // namespace Ombrey
