// Sums that PostgreSQL keeps by itself.
#include "platform/database/postgresql/postgresql_sums.h"

#include <utility>

#include "platform/database/postgresql/postgresql_dialect.h"

namespace Ombrey {
namespace {

constexpr const char* Termes =
    R"(coalesce(§."Métayage", ''), coalesce(§."Sélection", ''), CASE WHEN §."DateCh" >= 1 AND §."DateCh" < 2958466 THEN)"
    R"( extract(year FROM timestamp '1899-12-30' + floor(§."DateCh") * interval '1 day')::bigint ELSE 0 END)";
constexpr const char* Masse = R"(coalesce(CASE WHEN abs(§."Masse") < 1e15 THEN §."Masse" END, 0))";

/// The terms of all rows of a table, their weights counted with this sign.
std::string Lignes(const std::string& Table, const char* Signe) {
  return "SELECT " + PourRangée("l", Termes) + ", " + Signe + PourRangée("l", Masse) + " FROM " + Table + " AS l";
}

std::string CompterFausses(const std::string& Toutes, const std::string& Table) {
  return "SELECT count(*) FROM (SELECT FROM (" + Toutes +
         R"( UNION ALL SELECT "Métayage", "Sélection", "Année", -"Masse" FROM )" + Table +
         ") AS r(m, s, a, x) GROUP BY m, s, a HAVING abs(sum(x)) >= 0.5) AS f";
}

}  // namespace

ÉcrituresSommes SommesPostgresql(const SommesTenues& Sommes, const std::string& Schéma) {
  const auto Dans = [&](const std::string& Nom) { return NomPostgresql(Schéma) + "." + NomPostgresql(Nom); };
  const std::string Table = Dans(Sommes.Table);
  const std::string Fonction = Dans("Tenir" + Sommes.Table);
  const std::string Clé = R"(("Métayage", "Sélection", "Année"))";
  // Each row of sums once for a statement, in one order for all: a row that is changed over and over in a transaction
  // gets slow, and two transactions never wait for each other crosswise.
  const auto Compter = [&](const std::string& Quoi) {
    return "INSERT INTO " + Table + " AS t SELECT r.m, r.s, r.a, sum(r.x) FROM (" + Quoi +
           ") AS r(m, s, a, x) GROUP BY r.m, r.s, r.a HAVING sum(r.x) <> 0 OR NOT EXISTS (SELECT FROM " + Table +
           " AS d WHERE (d.\"Métayage\", d.\"Sélection\", d.\"Année\") = (r.m, r.s, r.a)) ORDER BY 1, 2, 3 ON "
           "CONFLICT " +
           Clé + R"( DO UPDATE SET "Masse" = t."Masse" + EXCLUDED."Masse")";
  };
  const std::string Nouvelles = Lignes("nouvelles", "");
  const std::string Anciennes = Lignes("anciennes", "-");
  std::string Toutes;
  for (const std::string& Source : Sommes.Sources)
    Toutes += (Toutes.empty() ? "" : " UNION ALL ") + Lignes(Dans(Source), "");
  const std::vector<std::string> Refaire = {"LOCK TABLE " + Table + " IN EXCLUSIVE MODE", "DELETE FROM " + Table,
                                            Compter(Toutes)};
  std::vector<std::string> Étapes = {
      "CREATE TABLE " + Table +
          R"( ("Métayage" text COLLATE "C" NOT NULL, "Sélection" text COLLATE "C" NOT NULL, "Année" bigint NOT NULL,)"
          R"( "Masse" numeric NOT NULL, PRIMARY KEY )" +
          Clé + ")",
      "CREATE FUNCTION " + Fonction +
          "() RETURNS trigger LANGUAGE plpgsql SECURITY DEFINER SET search_path = pg_catalog, pg_temp AS $corps$ BEGIN"
          " CASE TG_OP WHEN 'INSERT' THEN " +
          Compter(Nouvelles) + "; WHEN 'UPDATE' THEN " + Compter(Nouvelles + " UNION ALL " + Anciennes) +
          "; WHEN 'DELETE' THEN " + Compter(Anciennes) + "; ELSE " + Refaire[0] + "; " + Refaire[1] + "; " +
          Refaire[2] + "; END CASE; RETURN NULL; END $corps$"};
  constexpr std::pair<const char*, const char*> Gestes[] = {
      {"INSERT", " REFERENCING NEW TABLE AS nouvelles"},
      {"UPDATE", " REFERENCING NEW TABLE AS nouvelles OLD TABLE AS anciennes"},
      {"DELETE", " REFERENCING OLD TABLE AS anciennes"},
      {"TRUNCATE", ""}};
  for (const std::string& Source : Sommes.Sources)
    for (const auto& [Geste, Avec] : Gestes)
      Étapes.push_back("CREATE TRIGGER " + NomPostgresql(Sommes.Table + Geste) + " AFTER " + Geste + " ON " +
                       Dans(Source) + Avec + " EXECUTE FUNCTION " + Fonction + "()");
  Étapes.push_back(Compter(Toutes));  // the triggers keep others from writing until all is done
  return {Étapes, Refaire, CompterFausses(Toutes, Table)};
}

}  // namespace Ombrey
