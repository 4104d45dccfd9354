// Bases that were left behind: those of former and of later programs, met at opening, and a copy that goes back.
#include "host/saved_base.h"
#include "host/schema_upgrade.h"
#include "tests/host/cooperative_fixture.h"

namespace Tarvel {

/// A base as tarvel 2.0 made it, with a load that came without a date (13) and one whose number was used again (12).
struct Schema : Coopérative {
  Schema() {
    Fermer();
    std::filesystem::remove(Fichier_);
    const std::string Script = Ombrey::Essais::Contenu(SOURCE_DIR "/tests/host/former_base.sql");
    Ombrey::ConnexionSqlite::Créer(Fichier_)->ExécuterTout(Script);
    Rouvrir();
  }
  static std::string Plan(Ombrey::IConnexion& Connexion) {
    return Ombrey::TexteOuVide(
        Connexion.Lire("SELECT group_concat(Nom || ' ' || sql, char(10)) FROM (SELECT m.name || '.' ||"
                       " ifnull(c.name, '') AS Nom, CASE m.type WHEN 'table' THEN c.type ELSE m.sql END"
                       " AS sql FROM sqlite_master AS m LEFT JOIN pragma_table_info(m.name) AS c"
                       " WHERE m.name NOT LIKE 'sqlite%' ORDER BY 1)"),
        {});
  }
  std::ptrdiff_t Copies() {
    return std::count_if(std::filesystem::directory_iterator(Dossier_), {},
                         [](const auto& E) { return E.path().filename().string().starts_with("coopé.db.schéma-1"); });
  }
};

TEST_F(Schema, BringsAFormerBaseUpToDateAndKnowsItsLoadsAgain) {
  MettreAJourSchéma(*Connexion_);
  MettreAJourSchéma(*Connexion_);
  EXPECT_EQ(Copies(), 1);
  const auto Copie = Ombrey::ConnexionSqlite::Ouvrir(Fichier_.string() + ".schéma-1");
  EXPECT_EQ(Ombrey::TexteOuVide(Copie->Lire("SELECT count(*) FROM Chargement"), {}), "2");

  CréerBase(Dossier_ / "neuve.db", false);
  EXPECT_EQ(Plan(*Connexion_), Plan(*Ombrey::ConnexionSqlite::Ouvrir(Dossier_ / "neuve.db")));

  Connexion_->Exécuter("UPDATE Chargement SET Masse = 1300");
  for (const std::string& DéjàLà : {Ligne("12", "22/09/26 08:30", "5"), Ligne("13", "24/09/2026 07:00:00")}) {
    EXPECT_EQ(Importer(DéjàLà), "");
    EXPECT_TRUE(Annonces_.starts_with("mis à jour")) << DéjàLà;
  }
  EXPECT_EQ(Lire("SELECT group_concat(Métayage || ' ' || Masse || ' ' || Archive) FROM ChargementLisible"),
            "4 1000 archivé,4 1300 ,4 1300 ");
}

TEST_F(Schema, LeavesTheBaseAsItWasWhenItCannotBeBroughtUpToDate) {
  Connexion_->Exécuter("CREATE INDEX ArchiveParNuméroReçu ON Paramètre (Nom)");  // in the way of the last steps
  const std::string Avant = Plan(*Connexion_);
  EXPECT_THROW(MettreAJourSchéma(*Connexion_), Ombrey::ErreurExécution);
  EXPECT_EQ(Plan(*Connexion_), Avant);
  EXPECT_EQ(Copies(), 1);
}

TEST_F(Schema, RefusesALaterProgramsBase) {
  MettreAJourSchéma(*Connexion_);
  Connexion_->Exécuter("UPDATE Schéma SET Numéro = 7");
  EXPECT_EQ(RefusDe([&] { MettreAJourSchéma(*Connexion_); }),
            "La base « " + Fichier_.string() +
                " » est celle d'une version plus récente de tarvel (schéma n° 7, et cette version connaît le n° 6) : "
                "installez-la sur ce poste");
}

struct Sommes : SurChaqueMoteur {
  const bool EstUnFichier = Moteur_ != Ombrey::Essais::Moteur::Postgresql;

  /// The base as the release before the sums left it.
  void Désapprendre() {
    if (EstUnFichier)
      for (std::string Nom; !(Nom = Lire("SELECT min(name) FROM sqlite_master WHERE type = 'trigger'")).empty();)
        Connexion_->ExécuterTout("DROP TRIGGER " + Nom);
    else
      Ombrey::Essais::ServeurDEssai::Faire(Adresse_, "DROP FUNCTION \\\"TenirCumulSaison\\\" CASCADE");
    Connexion_->ExécuterTout("DROP TABLE CumulSaison; UPDATE Schéma SET Numéro = 2");
    if (EstUnFichier) Connexion_->ExécuterTout("DROP TABLE CumulSaisonRemplacé");
  }
  /// The sums that the engine keeps are those of the rows.
  void Vérifier(const std::string& Derrière) {
    EXPECT_EQ(
        Lire("SELECT Métayage, Sélection, Année, CAST(Masse AS INTEGER) FROM CumulSaison WHERE Masse <> 0"
             " ORDER BY 1, 2, 3"),
        Lire("SELECT Métayage, S, A, CAST(SUM(M) AS INTEGER) FROM (SELECT Métayage, coalesce(Sélection, '') AS S, CASE"
             " WHEN DateCh < 46023 THEN 2025 ELSE 2026 END AS A, coalesce(Masse, 0) AS M FROM Chargement UNION ALL"
             " SELECT Métayage, coalesce(Sélection, ''), 2026, coalesce(Masse, 0) FROM ChargementArchive) AS T"
             " GROUP BY 1, 2, 3 HAVING SUM(M) <> 0 ORDER BY 1, 2, 3"))
        << Derrière;
  }
};
SUR_CHAQUE_MOTEUR(Sommes);

TEST_P(Sommes, FollowTheRowsWhoeverChangesThem) {
  Désapprendre();
  for (const std::string Numéro : {"11", "12", "13", "14"})
    Connexion_->ExécuterTout(
        "INSERT INTO Chargement (CodeSite, NoChargement, DateCh, Métayage, Sélection, Masse) VALUES ('1', " + Numéro +
        ", 46287.25, '4', '05', 10" + Numéro + ")");
  MettreAJourSchéma(*Connexion_);
  Vérifier("the upgrade");
  EXPECT_EQ(CumulsDuRouge().substr(0, 5), "4050 ");
  const auto Fausses = [&] { return Ombrey::TexteOuVide(Connexion_->SommesFausses(CumulsDeSaison()), {}); };
  Connexion_->Exécuter("UPDATE CumulSaison SET Masse = Masse + 1 WHERE Métayage = '4' AND Sélection = '05'");
  EXPECT_EQ(Fausses(), "1");
  static_cast<void>(RefaireCumuls(*Connexion_));
  EXPECT_EQ(Fausses(), "0");
  Vérifier("the sums made anew");

  const std::string Neuf =
      "INTO Chargement (IdChargement, CodeSite, NoChargement, DateCh, Métayage, Masse)"
      " VALUES (1, '1', 12, 46287, '5', 77)";
  std::vector<std::string> Changements = {
      "UPDATE Chargement SET Masse = 1.5 WHERE NoChargement = 11",
      "UPDATE Chargement SET Masse = NULL WHERE NoChargement = 12",
      "UPDATE Chargement SET Métayage = '5', Sélection = NULL WHERE NoChargement = 13",
      "UPDATE Chargement SET DateCh = 46022.99 WHERE NoChargement = 14",
      "UPDATE Chargement SET Masse = Masse + 1",
      "INSERT INTO ChargementArchive (CodeSite, NoChargement, DateCh, Métayage, Masse)"
      " SELECT CodeSite, NoChargement, DateCh, Métayage, Masse FROM Chargement WHERE NoChargement = 11",
      "DELETE FROM Chargement WHERE NoChargement = 11"};
  if (EstUnFichier)
    Changements.insert(Changements.end(), {"INSERT OR IGNORE " + Neuf, "INSERT OR REPLACE " + Neuf, "REPLACE " + Neuf,
                                           "UPDATE OR REPLACE Chargement SET NoChargement = 12 WHERE NoChargement = 13",
                                           "PRAGMA recursive_triggers = ON", "REPLACE " + Neuf});
  Changements.emplace_back("DELETE FROM Chargement");
  for (const std::string& Un : Changements) {
    Connexion_->ExécuterTout(Un);
    Vérifier(Un);
  }
  if (!EstUnFichier) Ombrey::Essais::ServeurDEssai::Faire(Adresse_, "TRUNCATE \\\"ChargementArchive\\\"");
  Vérifier("TRUNCATE");
}

TEST_F(Coopérative, ASavedBaseGoesBackAndTheFormerOneIsKept) {
  const auto Copie = Dossier_ / "copie.db";
  std::string Dit;
  const auto Restaurer = [&](const std::filesystem::path& De) { Dit = RestaurerBase(Fichier_, De); };
  ASSERT_EQ(Importer(Ligne("12")), "");
  static_cast<void>(SauvegarderBase(Fichier_, Copie));
  ASSERT_EQ(Importer(Ligne("13")), "");
  Connexion_->Exécuter("UPDATE Chargement SET Masse = 1, CodeSite = '2'");
  EXPECT_NE(RefusDe([&] { Restaurer(Copie); }), "") << "a station works on it";
  Fermer();
  EXPECT_NE(RefusDe([&] { Restaurer(Fichier_); }), "");
  EXPECT_EQ(RefusDe([&] { Restaurer(Copie); }), "");
  EXPECT_TRUE(Dit.ends_with("remplacee ». Chargements qu'elle a et que la sauvegarde n'a pas : 1.")) << Dit;
  std::ofstream(Copie) << "no base any more";
  EXPECT_NE(RefusDe([&] { Restaurer(Copie); }), "");
  for (const auto& [Base, Attendus] : {std::pair("coopé.db", "1"), std::pair("coopé.db.remplacee", "2")}) {
    Connexion_ = Ombrey::ConnexionSqlite::Ouvrir(Dossier_ / Base);
    EXPECT_EQ(Lire("SELECT count(*) FROM Chargement"), Attendus) << Base;
  }
}

}  // namespace Tarvel
