// Sums that PostgreSQL keeps by itself.
#include "platform/database/postgresql/postgresql_sums.h"

#include "platform/database/postgresql/postgresql_dialect.h"

namespace Ombrey {
namespace {

constexpr const char* Termes =
    R"(coalesce(§."Métayage", ''), coalesce(§."Sélection", ''), CASE WHEN §."DateCh" >= 1 AND §."DateCh" < 2958466 THEN)"
    R"( extract(year FROM timestamp '1899-12-30' + floor(§."DateCh") * interval '1 day')::bigint ELSE 0 END)";
constexpr const char* Masse = R"(coalesce(CASE WHEN abs(§."Masse") < 1e15 THEN §."Masse" END, 0))";

}  // namespace

std::vector<std::string> SommesPostgresql(const SommesTenues& Sommes, const std::string& Schéma) {
  const auto Dans = [&](const std::string& Nom) { return NomPostgresql(Schéma) + "." + NomPostgresql(Nom); };
  const std::string Table = Dans(Sommes.Table);
  const std::string Fonction = Dans("Tenir" + Sommes.Table);
  const std::string Clé = R"(("Métayage", "Sélection", "Année"))";
  std::string Toutes;
  for (const std::string& Source : Sommes.Sources)
    Toutes += (Toutes.empty() ? "SELECT " : " UNION ALL SELECT ") + PourRangée("l", Termes) + ", " +
              PourRangée("l", Masse) + " FROM " + Dans(Source) + " AS l";
  const std::string Remplir = "INSERT INTO " + Table + " SELECT t.m, t.s, t.a, sum(t.x) FROM (" + Toutes +
                              ") AS t(m, s, a, x) GROUP BY 1, 2, 3";
  std::vector<std::string> Étapes = {
      "CREATE TABLE " + Table +
          R"( ("Métayage" text COLLATE "C" NOT NULL, "Sélection" text COLLATE "C" NOT NULL, "Année" bigint NOT NULL,)"
          R"( "Masse" numeric NOT NULL, PRIMARY KEY )" +
          Clé + ")",
      "CREATE FUNCTION " + Fonction +
          "() RETURNS trigger LANGUAGE plpgsql SECURITY DEFINER SET search_path = pg_catalog, pg_temp AS $corps$ BEGIN"
          " IF TG_OP = 'TRUNCATE' THEN LOCK TABLE " +
          Table + " IN EXCLUSIVE MODE; DELETE FROM " + Table + "; " + Remplir +
          "; RETURN NULL; END IF;"
          " IF TG_OP = 'UPDATE' THEN IF (" +
          PourRangée("OLD", Termes) + ", " + PourRangée("OLD", Masse) + ") IS NOT DISTINCT FROM (" +
          PourRangée("NEW", Termes) + ", " + PourRangée("NEW", Masse) +
          ") THEN RETURN NULL; END IF; END IF;"
          " IF TG_OP <> 'INSERT' THEN UPDATE " +
          Table + R"( SET "Masse" = "Masse" - )" + PourRangée("OLD", Masse) + " WHERE " + Clé + " = (" +
          PourRangée("OLD", Termes) +
          "); END IF;"
          " IF TG_OP <> 'DELETE' THEN INSERT INTO " +
          Table + " AS t SELECT " + PourRangée("NEW", Termes) + ", " + PourRangée("NEW", Masse) + " ON CONFLICT " +
          Clé +
          R"( DO UPDATE SET "Masse" = t."Masse" + EXCLUDED."Masse"; END IF;)"
          " RETURN NULL; END $corps$"};
  for (const std::string& Source : Sommes.Sources) {
    const std::string Derrière = " ON " + Dans(Source);
    const std::string Faire = " EXECUTE FUNCTION " + Fonction + "()";
    Étapes.push_back("CREATE TRIGGER " + NomPostgresql(Sommes.Table) + " AFTER INSERT OR UPDATE OR DELETE" + Derrière +
                     " FOR EACH ROW" + Faire);
    Étapes.push_back("CREATE TRIGGER " + NomPostgresql(Sommes.Table + "Vidé") + " AFTER TRUNCATE" + Derrière + Faire);
  }
  Étapes.push_back(Remplir);  // the triggers keep others from writing until all is done
  return Étapes;
}

}  // namespace Ombrey
