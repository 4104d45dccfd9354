// The dialect's translator, twice with each input: as the query itself, and as the choices that make a good query,
// whose rows are known or can be had without the translator.
#include "platform/database/dialect.h"

#include <algorithm>
#include <array>
#include <optional>

#include "base/regional_forms.h"
#include "platform/database/sqlite/sqlite_dialect.h"
#include "tests/fuzz/input.h"
#include "tests/fuzz/station.h"

namespace Ombrey::Essais {
namespace {

/// Literals and bracketed names, sorted: tables may change places. The empty literal is the translator's own word. None
/// at all when one of them stays open, as the engine then refuses the whole.
std::optional<std::vector<std::string>> Intouchables(std::string_view Sql) {
  std::vector<std::string> Tous;
  for (std::size_t i = 0; i < Sql.size(); ++i) {
    const char Ferme = Sql[i] == '[' ? ']' : Sql[i];
    if (Ferme != ']' && Ferme != '\'' && Ferme != '"') continue;
    if (Sql[i] == ']') continue;
    std::size_t Fin = i;
    do {
      Fin = Sql.find(Ferme, Fin + 1);
      if (Fin == Sql.npos) return std::nullopt;
    } while (Ferme != ']' && Fin + 1 < Sql.size() && Sql[Fin + 1] == Ferme && ++Fin);
    const std::string Texte(Sql.substr(i, Fin + 1 - i));
    if (Texte != "''") Tous.push_back(Texte);
    i = Fin;
  }
  std::sort(Tous.begin(), Tous.end());
  return Tous;
}

/// A blank ahead of a call's parenthesis may go.
std::string SansBlancs(std::string Sql) {
  std::erase_if(Sql, [](char C) { return C == ' ' || C == '\t' || C == '\r' || C == '\n'; });
  return Sql;
}

void ExigerUneFois(const std::string& Traduit) {
  Exiger(SansBlancs(TraduireEnSqlite(Traduit)) == SansBlancs(Traduit), "nothing is turned twice");
}

/// An expression and what it comes to.
struct Expression {
  std::string Sql;
  std::optional<std::string> Texte;  ///< none for Null
  std::optional<std::int64_t> Nombre;
};

struct Inventeur {
  Entrée& E;
  int Profondeur = 0;

  unsigned Choix(unsigned Nombre) { return static_cast<unsigned char>(E.Octet()) % Nombre; }
  std::string Blanc() { return std::array<const char*, 4>{"", " ", "\t", " \r\n "}[Choix(4)]; }

  static Expression Entier(std::string Sql, std::int64_t N) { return {std::move(Sql), std::to_string(N), N}; }

  Expression Littéral() {
    constexpr std::string_view Signes = "a'&\"[](), ;-+*Clng(1)é0";
    Expression X{"'", "", {}};
    for (unsigned Reste = Choix(6); Reste > 0; --Reste) {
      const char C = Signes[Choix(static_cast<unsigned>(Signes.size()))];
      X.Sql.append(C == '\'' ? 2 : 1, C);
      *X.Texte += C;
    }
    X.Sql += "'";
    return X;
  }
  Expression Facteur() {
    switch (Profondeur > 3 ? Choix(4) : Choix(7)) {
      case 0: {
        const std::int64_t N = Choix(10);
        return Entier(std::to_string(N), N);
      }
      case 1:
        return Littéral();
      case 2:
        return {"[a & 'b]", "e'é", {}};
      case 3:
        return {"t.Vide", {}, {}};
      case 4: {
        Expression X = Jonction();
        return {"(" + X.Sql + ")", X.Texte, X.Nombre};
      }
      case 5: {
        Expression X = Jonction();
        const std::string Sql = "Clng" + Blanc() + "(" + X.Sql + ")";
        if (!X.Texte) return {Sql, {}, {}};
        const std::int64_t N = std::strtoll(X.Texte->c_str(), nullptr, 10);
        Expression Converti = Entier(Sql, N);
        if (N > 1000 || N < -1000) Converti.Nombre.reset();
        return Converti;
      }
      default: {
        ++Profondeur;
        Expression X = Facteur();
        --Profondeur;
        return X.Nombre ? Entier("- " + X.Sql, -*X.Nombre) : X;
      }
    }
  }
  Expression Somme() {
    Expression X = Facteur();
    for (unsigned Reste = Choix(3); Reste > 0 && X.Nombre; --Reste) {
      const std::int64_t N = Choix(10);
      const bool EstPlus = Choix(2) == 0;
      X = Entier(X.Sql + Blanc() + (EstPlus ? "+" : "-") + " " + std::to_string(N) + Blanc() + "*" + Blanc() + "-2",
                 *X.Nombre + (EstPlus ? -2 * N : 2 * N));
    }
    return X;
  }
  Expression Jonction() {
    ++Profondeur;
    Expression X = Somme();
    for (unsigned Reste = Choix(4); Reste > 0; --Reste) {
      const Expression Y = Somme();
      X = {X.Sql + Blanc() + "&" + Blanc() + Y.Sql, X.Texte.value_or("") + Y.Texte.value_or(""), {}};
    }
    --Profondeur;
    return X;
  }

  std::string Source(const std::string& Table, const std::string& Alias) {
    switch (Choix(5)) {
      case 0:
        return " " + Table + " AS " + Alias + " ";
      case 1:
        return Blanc() + "[" + Table + "]" + Blanc() + "[" + Alias + "]" + Blanc();
      case 2:
        return Blanc() + "(" + Table + " AS " + Alias + " INNER JOIN t AS t" + Alias + " ON " + Alias + ".k <> 1)" +
               Blanc();
      case 3:
        return "(t AS t" + Alias + " RIGHT" + Blanc() + " JOIN " + Table + " " + Alias + " ON t" + Alias + ".Vide=1)";
      default:
        return " " + Table + " " + Alias + " ";
    }
  }
};

std::string Lignes(ConnexionSqlite& Connexion, const std::string& Sql) {
  std::vector<std::string> Toutes;
  Instruction Requête = Connexion.Préparer(Sql);
  while (Requête.Avancer())
    Toutes.push_back(TexteOuVide(Requête.Valeur(0), {}) + "/" + TexteOuVide(Requête.Valeur(1), {}) + " ");
  std::sort(Toutes.begin(), Toutes.end());
  std::string Ensemble;
  for (const std::string& Ligne : Toutes) Ensemble += Ligne;
  return Ensemble;
}

void EssayerUneBonneRequête(ConnexionSqlite& Connexion, Entrée E) {
  Inventeur I{E};
  const Expression X = I.Jonction();
  const std::string Sql = TraduireEnSqlite("SELECT " + X.Sql + " FROM t");
  ExigerUneFois(Sql);
  const ValeurChamp Lu = Connexion.Lire(Sql);
  Exiger(EstNull(Lu) == !X.Texte && TexteOuVide(Lu, {}) == X.Texte.value_or(""), Sql.c_str());

  const std::string Jointure = "SELECT x.k, y.k FROM" + I.Source("a", "x") + "RIGHT " + I.Blanc() + "JOIN" +
                               I.Source("b", "y") + "ON" + I.Blanc() + "(x.k = y.k)";
  Exiger(Lignes(Connexion, Jointure) == Lignes(Connexion, TraduireEnSqlite(Jointure)), Jointure.c_str());
}

}  // namespace
}  // namespace Ombrey::Essais

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Données, std::size_t Taille) {
  using namespace Ombrey;
  using namespace Ombrey::Essais;
  static const DossierEssai Dossier;
  static const auto Connexion = [] {
    auto Neuve = ConnexionSqlite::Créer(Dossier.Chemin() / "b");
    Neuve->ExécuterTout(
        "CREATE TABLE t ([a & 'b] TEXT, Vide TEXT); INSERT INTO t VALUES ('e''é', NULL);"
        "CREATE TABLE a (k INTEGER); CREATE TABLE b (k INTEGER);"
        "INSERT INTO a VALUES (1), (2), (3); INSERT INTO b VALUES (2), (3), (3), (4);");
    return Neuve;
  }();
  const std::string_view Sql = Entrée(Données, Taille).Reste;
  const std::string Traduit = TraduireEnSqlite(Sql);
  Exiger(Intouchables(Traduit) == Intouchables(Sql), "literals and bracketed names stay as they stand");
  if (Sql.find('&') == Sql.npos) ExigerUneFois(Traduit);  // with a joining of nothing it is no query
  static_cast<void>(CommenceParSelect(Sql));
  EssayerUneBonneRequête(*Connexion, Entrée(Données, Taille));
  return 0;
}
