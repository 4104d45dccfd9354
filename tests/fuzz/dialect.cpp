// The dialect's translator, twice with each input: as the query itself, and as the choices that make a good query,
// whose rows are known or can be had without the translator.
#include "platform/database/dialect.h"

#include <algorithm>
#include <array>
#include <optional>

#include "base/regional_forms.h"
#include "platform/database/sqlite/sqlite_connection.h"
#include "platform/database/sqlite/sqlite_dialect.h"
#include "tests/fuzz/input.h"
#include "tests/support/test_folder.h"

namespace Ombrey::Essais {
namespace {

/// Literals and bracketed names, sorted: tables may change places. The empty literal is the translator's own word. None
/// at all when one of them stays open, as the engine then refuses the whole.
std::optional<std::vector<std::string>> Intouchables(std::string_view Sql) {
  std::vector<std::string> Tous;
  for (std::size_t i = Sql.find_first_of("['\""); i < Sql.size(); i = Sql.find_first_of("['\"", i + 1)) {
    const char Ferme = Sql[i] == '[' ? ']' : Sql[i];
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

/// An expression and what it comes to; none for Null.
struct Expression {
  std::string Sql;
  std::optional<std::string> Texte;
};
const Expression Simples[] = {
    {"''", ""}, {"'a''& [b'", "a'& [b"}, {"'(\"); -- é'", "(\"); -- é"}, {"[a & 'b]", "e'é"},
    {"7", "7"}, {"t.Vide", {}},          {"3 -  -2 * 1+4*\t-2", "-3"},   {"- Clng ('12x')", "-12"}};

struct Inventeur {
  Entrée& E;
  int Profondeur = 0;

  unsigned Choix(std::size_t Nombre) { return static_cast<unsigned char>(E.Octet()) % static_cast<unsigned>(Nombre); }
  std::string Blanc() { return std::array<const char*, 4>{"", " ", "\t", " \r\n "}[Choix(4)]; }

  Expression Facteur() {
    const unsigned Rang = Choix(std::size(Simples) + (Profondeur < 4 ? 2 : 0));
    if (Rang < std::size(Simples)) return Simples[Rang];
    const Expression X = Jonction();
    if (Rang == std::size(Simples)) return {"(" + X.Sql + ")", X.Texte};
    const std::string Entier = std::to_string(std::strtoll(X.Texte.value_or("").c_str(), nullptr, 10));
    return {"Clng" + Blanc() + "(" + X.Sql + ")", X.Texte ? std::optional(Entier) : std::nullopt};
  }
  Expression Jonction() {
    ++Profondeur;
    Expression X = Facteur();
    for (unsigned Reste = Choix(4); Reste > 0; --Reste) {
      const Expression Y = Facteur();
      X = {X.Sql + Blanc() + "&" + Blanc() + Y.Sql, X.Texte.value_or("") + Y.Texte.value_or("")};
    }
    --Profondeur;
    return X;
  }
  std::string Source(const std::string& Table, const std::string& Alias) {
    const std::string Sienne = Table + " AS " + Alias, Autre = "t AS t" + Alias, Devant = Blanc();
    switch (Choix(4)) {
      case 0:
        return Devant + "[" + Table + "]" + Blanc() + "[" + Alias + "]" + Blanc();
      case 1:
        return Devant + "(" + Sienne + " INNER JOIN " + Autre + " ON " + Alias + ".k <> 1)" + Blanc();
      case 2:
        return "(" + Autre + " RIGHT" + Blanc() + " JOIN " + Sienne + " ON t" + Alias + ".Vide=1)";
      default:
        return " " + Sienne + " ";
    }
  }
};

std::vector<std::string> Lignes(ConnexionSqlite& Connexion, const std::string& Sql) {
  std::vector<std::string> Toutes;
  Instruction Requête = Connexion.Préparer(Sql);
  while (Requête.Avancer())
    Toutes.push_back(TexteOuVide(Requête.Valeur(0), {}) + "/" + TexteOuVide(Requête.Valeur(1), {}));
  std::sort(Toutes.begin(), Toutes.end());
  return Toutes;
}

void EssayerUneBonneRequête(ConnexionSqlite& Connexion, Entrée E) {
  Inventeur I{E};
  const Expression X = I.Jonction();
  const std::string Sql = TraduireEnSqlite("SELECT " + X.Sql + " FROM t");
  ExigerUneFois(Sql);
  const ValeurChamp Lu = Connexion.Lire(Sql);
  Exiger(EstNull(Lu) == !X.Texte, Sql);
  Exiger(TexteOuVide(Lu, {}) == X.Texte.value_or(""), Sql);

  const std::string Jointure = "SELECT x.k, y.k FROM" + I.Source("a", "x") + "RIGHT JOIN" + I.Source("b", "y") + "ON" +
                               I.Blanc() + "(x.k = y.k)";
  Exiger(Lignes(Connexion, Jointure) == Lignes(Connexion, TraduireEnSqlite(Jointure)), Jointure);
}

}  // namespace

void Essayer(Entrée E) {
  static const DossierEssai Dossier;
  static const auto Connexion = [] {
    auto Neuve = ConnexionSqlite::Créer(Dossier.Chemin() / "b");
    Neuve->ExécuterTout(
        "CREATE TABLE t ([a & 'b] TEXT, Vide TEXT); INSERT INTO t VALUES ('e''é', NULL);"
        "CREATE TABLE a (k INTEGER); CREATE TABLE b (k INTEGER);"
        "INSERT INTO a VALUES (1), (2), (3); INSERT INTO b VALUES (2), (3), (3), (4);");
    return Neuve;
  }();
  const std::string Traduit = TraduireEnSqlite(E.Reste);
  Exiger(Intouchables(Traduit) == Intouchables(E.Reste), "literals and bracketed names stay as they stand");
  if (E.Reste.find('&') == E.Reste.npos) ExigerUneFois(Traduit);  // with a joining of nothing it is no query
  static_cast<void>(CommenceParSelect(E.Reste));
  EssayerUneBonneRequête(*Connexion, E);
}

}  // namespace Ombrey::Essais
