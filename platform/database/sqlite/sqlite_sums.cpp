// Sums that SQLite keeps by itself.
#include "platform/database/sqlite/sqlite_sums.h"

#include <string>
#include <utility>

namespace Ombrey {
namespace {

constexpr const char* Métayage = "coalesce(§.Métayage, '')";
constexpr const char* Sélection = "coalesce(§.Sélection, '')";
constexpr const char* Année =
    "CASE WHEN typeof(§.DateCh) <> 'text' AND §.DateCh >= 1 AND §.DateCh < 2958466"
    " THEN CAST(strftime('%Y', CAST(§.DateCh AS INTEGER) + 2415018.5) AS INTEGER) ELSE 0 END";
std::string Masse() {
  return "coalesce((SELECT CASE WHEN M > -1e15 AND M < 1e15 THEN M END FROM (SELECT " + NombreSqlite("§.Masse") +
         " AS M)), 0)";
}

std::string Termes() { return std::string(Métayage) + " AS M, " + Sélection + " AS S, " + Année + " AS A"; }

/// The script's statements for one source.
class Déclencheurs {
 public:
  Déclencheurs(const SommesTenues& Sommes, std::string Source)
      : Sommes_(Sommes), Source_(std::move(Source)), Remplacés_(Sommes.Table + "Remplacé") {}

  [[nodiscard]] std::string Script() const {
    const std::string EnReste = "EXISTS (SELECT 1 FROM " + Remplacés_ + ")";
    return Un("AvantAjout", "BEFORE INSERT", NoterRemplacés(""),
              EnReste + " OR EXISTS (SELECT 1" + Remplaçables() + ")") +
           Un("RetraitRemplacés", "AFTER INSERT", RetirerRemplacés(), EnReste) +
           Un("Ajout", "AFTER INSERT", Compter("NEW")) +
           Un("AvantChange", "BEFORE UPDATE",
              NoterRemplacés(" AND L." + Sommes_.Identité + " <> OLD." + Sommes_.Identité)) +
           Un("Change", "AFTER UPDATE", RetirerRemplacés() + Changer("OLD", "-") + Compter("NEW")) +
           Un("Retrait", "AFTER DELETE",
              Changer("OLD", "-") + "DELETE FROM " + Remplacés_ + " WHERE Id = OLD." + Sommes_.Identité + ";");
  }

 private:
  [[nodiscard]] std::string Un(const char* Nom, const char* Quand, const std::string& Quoi,
                               const std::string& Si = "1") const {
    const std::string Déclencheur = Sommes_.Table + Nom + Source_;
    return "DROP TRIGGER IF EXISTS " + Déclencheur + "; CREATE TRIGGER " + Déclencheur + " " + Quand + " ON " +
           Source_ + " WHEN " + Si + " BEGIN " + Quoi + " END;";
  }
  [[nodiscard]] static std::string ÀSaPlace(const std::string& Rangée) {
    return PourRangée(Rangée, std::string(" WHERE Métayage = ") + Métayage + " AND Sélection = " + Sélection +
                                  " AND Année = " + Année);
  }
  /// Not by « OR »: how a conflict is dealt with, the statement that fires a trigger says for all that it does. And not
  /// by a look into the table that is written, for which the engine would set up another one in memory.
  [[nodiscard]] std::string Compter(const std::string& Rangée) const {
    return "INSERT INTO " + Sommes_.Table + " VALUES (" +
           PourRangée(Rangée, std::string(Métayage) + ", " + Sélection + ", " + Année + ", " + Masse()) +
           ") ON CONFLICT (Métayage, Sélection, Année) DO UPDATE SET Masse = Masse + excluded.Masse;";
  }
  [[nodiscard]] std::string Changer(const std::string& Rangée, const char* Signe) const {
    return "UPDATE " + Sommes_.Table + " SET Masse = Masse " + Signe + PourRangée(Rangée, Masse()) + ÀSaPlace(Rangée) +
           ";";
  }
  /// A row that gives way to another one (REPLACE) isn't deleted in a trigger's sight. That is rare: an ordinary row
  /// writes nothing for it.
  [[nodiscard]] std::string NoterRemplacés(const std::string& Sauf) const {
    return "DELETE FROM " + Remplacés_ + "; INSERT INTO " + Remplacés_ + " SELECT L." + Sommes_.Identité + ", " +
           PourRangée("L", Termes() + ", " + Masse()) + Remplaçables() + Sauf + ";";
  }
  [[nodiscard]] std::string Remplaçables() const {
    std::string Double;
    for (const std::string& Colonne : Sommes_.SansDouble)
      Double += (Double.empty() ? "L." : " AND L.") + Colonne + " = NEW." + Colonne;
    return " FROM " + Source_ + " AS L WHERE (L." + Sommes_.Identité + " = NEW." + Sommes_.Identité + " OR (" + Double +
           "))";
  }
  [[nodiscard]] std::string RetirerRemplacés() const {
    const auto Même = [](const std::string& Table) {
      return PourRangée(Table, "R.Métayage = §.Métayage AND R.Sélection = §.Sélection AND R.Année = §.Année");
    };
    return "UPDATE " + Sommes_.Table + " SET Masse = Masse - (SELECT coalesce(sum(R.Masse), 0) FROM " + Remplacés_ +
           " AS R WHERE " + Même(Sommes_.Table) + " AND (R.Id = NEW." + Sommes_.Identité +
           " OR NOT EXISTS (SELECT 1 FROM " + Source_ + " AS L WHERE L." + Sommes_.Identité +
           " = R.Id))) WHERE rowid IN (SELECT T.rowid FROM " + Remplacés_ + " AS R JOIN " + Sommes_.Table +
           " AS T ON " + Même("T") + "); DELETE FROM " + Remplacés_ + ";";
  }

  const SommesTenues& Sommes_;
  std::string Source_;
  std::string Remplacés_;
};

}  // namespace

std::string NombreSqlite(const std::string& Colonne) {
  // A text that is compared with a number counts as one when all of it spells one, and never equals it otherwise.
  return PourRangée(Colonne,
                    "CASE WHEN typeof(§) IN ('text', 'blob') THEN (SELECT CASE WHEN T = '' THEN 0 WHEN T NOT GLOB"
                    " '*[^-+.0-9eE]*' AND CAST(T AS REAL) = T THEN CAST(T AS REAL) END FROM (SELECT"
                    " replace(replace(replace(replace(replace(§, ' ', ''), char(9), ''), char(160), ''), char(8239),"
                    " ''), ',', '.') AS T)) ELSE § END");
}

ÉcrituresSommes SommesSqlite(const SommesTenues& Sommes) {
  const std::string Colonnes =
      "Métayage TEXT NOT NULL, Sélection TEXT NOT NULL, Année INTEGER NOT NULL, Masse REAL NOT NULL";
  const std::string Remplacés = Sommes.Table + "Remplacé";
  std::string Script = "DROP TABLE IF EXISTS " + Sommes.Table + "; DROP TABLE IF EXISTS " + Remplacés +
                       "; CREATE TABLE " + Sommes.Table + " (" + Colonnes +
                       ", PRIMARY KEY (Métayage, Sélection, Année));" + "CREATE TABLE " + Remplacés +
                       " (Id INTEGER NOT NULL, " + Colonnes + ");";
  std::string Toutes;
  for (const std::string& Source : Sommes.Sources) {
    Toutes += (Toutes.empty() ? "SELECT " : " UNION ALL SELECT ") + PourRangée("L", Termes()) + ", " +
              PourRangée("L", Masse()) + " AS X FROM " + Source + " AS L";
    Script += Déclencheurs(Sommes, Source).Script();
  }
  const std::string Remplir =
      "INSERT INTO " + Sommes.Table + " SELECT M, S, A, sum(X) FROM (" + Toutes + ") GROUP BY M, S, A;";
  return {{Script + Remplir},
          {"DELETE FROM " + Sommes.Table + ";" + Remplir},
          "SELECT count(*) FROM (SELECT 1 FROM (" + Toutes +
              " UNION ALL SELECT Métayage, Sélection, Année, -Masse FROM " + Sommes.Table +
              ") GROUP BY M, S, A HAVING abs(sum(X)) >= 0.5)"};
}

}  // namespace Ombrey
