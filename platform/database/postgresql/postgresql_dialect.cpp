// From the dialect of the cooperative's database, and from the host's language, to PostgreSQL's.
#include "platform/database/postgresql/postgresql_dialect.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <span>
#include <utility>

#include "base/failures.h"
#include "platform/database/dialect.h"

namespace Ombrey {
namespace {

/// Words that name nothing, wherever they stand.
constexpr std::array<std::string_view, 44> Mots = {
    "INSERT",  "INTO",     "VALUES",   "UPDATE",    "SET",     "DELETE", "CREATE",     "TABLE",   "UNIQUE",
    "INDEX",   "VIEW",     "ALTER",    "ADD",       "COLUMN",  "DROP",   "IF",         "PRIMARY", "KEY",
    "NULL",    "DEFAULT",  "CHECK",    "RETURNING", "NULLS",   "FIRST",  "CONSTRAINT", "TEXT",    "INTEGER",
    "BIGINT",  "NUMERIC",  "REAL",     "DOUBLE",    "DECIMAL", "TRUE",   "FALSE",      "NOTHING", "PRECISION",
    "COLLATE", "INTERVAL", "IDENTITY", "GENERATED", "USING",   "EXCEPT", "TIMESTAMP",  "DATABASE"};

/// Those that are calls ahead of a parenthesis, and may be names elsewhere.
constexpr std::array<std::string_view, 16> Fonctions = {"COUNT",   "SUM",   "MIN",   "MAX",   "AVG",     "COALESCE",
                                                        "SUBSTR",  "ABS",   "ROUND", "TRIM",  "TO_CHAR", "LENGTH",
                                                        "REPLACE", "LOWER", "UPPER", "NULLIF"};

/// How a table declares what the host's language calls so. A text sorts by its bytes, as everywhere else.
constexpr std::array<std::pair<std::string_view, std::string_view>, 3> Types = {
    {{"TEXT", "text COLLATE \"C\""}, {"INTEGER", "bigint"}, {"REAL", "double precision"}}};

/// A date's letters in the dialect, and here.
constexpr std::array<std::pair<std::string_view, std::string_view>, 6> Lettres = {
    {{"yyyy", "YYYY"}, {"dd", "DD"}, {"mm", "MM"}, {"hh", "HH24"}, {"nn", "MI"}, {"ss", "SS"}}};

bool EstParmi(std::span<const std::string_view> Liste, std::string_view Texte) {
  return std::ranges::any_of(Liste, [&](std::string_view Mot) { return EstMot(Texte, Mot); });
}

/// The number that a text begins with.
std::string EnNombre(const std::string& Valeur) {
  const std::string Texte = "CAST(" + Valeur + " AS text)";
  return "CAST(coalesce(substring(" + Texte + " from '^ *([-+]?[0-9]{1,18})'), left('0' || " + Texte +
         ", 1)) AS bigint)";
}

/// The pattern of a date as the server writes them; all that means nothing stands in quotes.
std::string Modèle(std::string_view Dialecte) {
  std::string Texte;
  bool EstCité = false;
  const auto Citer = [&](bool Voulu) {
    if (std::exchange(EstCité, Voulu) != Voulu) Texte += '"';
  };
  while (!Dialecte.empty()) {
    const auto* const Lettre =
        std::ranges::find_if(Lettres, [&](const auto& L) { return Dialecte.starts_with(L.first); });
    const bool EstConnue = Lettre != Lettres.end();
    const char Octet = Dialecte.front();
    Citer(!EstConnue);
    if (EstConnue)
      Texte += Lettre->second;
    else
      Texte.append(Octet == '"' || Octet == '\\' ? "\\" : "").push_back(Octet);
    Dialecte.remove_prefix(EstConnue ? Lettre->first.size() : 1);
  }
  Citer(false);
  return Texte;
}

class VersPostgresql final : public Traducteur {
 public:
  VersPostgresql(std::vector<Jeton> Jetons, bool EnTable, const Horloge& Maintenant)
      : Traducteur(std::move(Jetons)), EnTable_(EnTable), Maintenant_(Maintenant) {}

 private:
  [[nodiscard]] std::string Nommer(std::string_view Nom) const override {
    if (EstMot(Nom, "TRUE")) return "-1";
    if (EstMot(Nom, "FALSE")) return "0";
    const auto* const Type = std::ranges::find_if(Types, [&](const auto& T) { return EstMot(Nom, T.first); });
    if (EnTable_ && Type != Types.end()) return std::string(Type->second);
    if (EstParmi(Mots, Nom)) return std::string(Nom);
    std::string Texte;
    for (const Jeton& Partie : Découper(Nom)) {
      if (Partie.Sorte == Genre::Signe)
        Texte += Partie.Texte;
      else if (Partie.Texte.starts_with('['))
        Texte += NomPostgresql(Partie.Texte.substr(1, Partie.Texte.size() - (Partie.Texte.ends_with(']') ? 2 : 1)));
      else
        Texte += NomPostgresql(Partie.Texte);
    }
    return Texte;
  }

  [[nodiscard]] std::string Appeler(std::string_view Nom, const std::string& Arguments) const override {
    constexpr std::string_view EnEntier = " AS INTEGER";
    const std::size_t Avant = Arguments.size() - std::min(Arguments.size(), EnEntier.size());
    if (EstMot(Nom, "CLNG")) return EnNombre(Arguments);
    if (EstMot(Nom, "CAST"))
      return Arguments.ends_with(EnEntier) ? EnNombre(Arguments.substr(0, Avant)) : "CAST(" + Arguments + ")";
    if (EstMot(Nom, "DATE") && EstRemplissage(Arguments)) return Aujourdhui();
    if (EstMot(Nom, "FORMAT")) return Formater(Arguments);
    const bool EstMotOuFonction = EstParmi(Fonctions, Nom) || EstParmi(Mots, Nom);
    return (EstMotOuFonction ? std::string(Nom) : Nommer(Nom)) + "(" + Arguments + ")";
  }

  [[nodiscard]] std::string EnTexte(const std::string& Opérande) const override {
    return "coalesce(CAST(" + Opérande + " AS text),'')";
  }

  [[nodiscard]] std::string Aujourdhui() const {
    if (!Maintenant_) throw ErreurExécution("Fonction inconnue : Date");
    return std::to_string(static_cast<std::int64_t>(std::floor(Maintenant_())));
  }

  /// The pattern is a literal behind the last comma.
  [[nodiscard]] static std::string Formater(const std::string& Arguments) {
    const std::vector<Jeton> Jetons = Découper(Arguments);
    const bool EstLisible = Jetons.size() > 2 && Jetons.back().Sorte == Genre::Littéral;
    const auto Virgule = std::find_if(Jetons.rbegin(), Jetons.rend(), [](const Jeton& J) { return J.Texte == ","; });
    if (!EstLisible || Virgule == Jetons.rend())
      throw ErreurExécution("Fonction Format : le modèle doit être un texte entre guillemets");
    const auto Place = static_cast<std::size_t>(Virgule->Texte.data() - Arguments.data());
    const std::string_view Littéral = Jetons.back().Texte;
    return "to_char(timestamp '1899-12-30' + round((" + Arguments.substr(0, Place) +
           ") * 86400) * interval '1 second', '" + Modèle(Littéral.substr(1, Littéral.size() - 2)) + "')";
  }

  bool EnTable_;
  const Horloge& Maintenant_;
};

/// Behind each key of an ORDER BY: where Null goes.
std::vector<Jeton> RangerNull(const std::vector<Jeton>& Jetons) {
  std::vector<Jeton> Rangés;
  std::vector<bool> DansLOrdre(1, false);  // for each open parenthesis
  bool EstDescendant = false;
  std::string_view Précédent;
  const auto FinirClé = [&] {
    if (!DansLOrdre.back()) return;
    auto Derrière = Rangés.end();
    while ((Derrière - 1)->Sorte == Genre::Blanc) --Derrière;
    Rangés.insert(Derrière, {Genre::Motclé, EstDescendant ? " NULLS LAST" : " NULLS FIRST"});
    EstDescendant = false;
  };
  for (const Jeton& Un : Jetons) {
    const bool Ferme = Un.Texte == ")" && DansLOrdre.size() > 1;
    const bool EstFinDeListe = Un.Texte == ";" || EstMot(Un.Texte, "LIMIT");
    if (Ferme || EstFinDeListe || Un.Texte == ",") FinirClé();
    if (Ferme) DansLOrdre.pop_back();
    if (EstFinDeListe) DansLOrdre.back() = false;
    if (Un.Texte == "(") DansLOrdre.push_back(false);
    if (EstMot(Un.Texte, "BY") && EstMot(Précédent, "ORDER")) DansLOrdre.back() = true;
    if (EstMot(Un.Texte, "DESC")) EstDescendant = true;
    if (Un.Sorte != Genre::Blanc) Précédent = Un.Texte;
    Rangés.push_back(Un);
  }
  FinirClé();
  return Rangés;
}

}  // namespace

std::string TraduireEnPostgresql(std::string_view Sql, const Horloge& Maintenant) {
  std::vector<Jeton> Jetons = RangerNull(Découper(Sql));
  for (Jeton& Un : Jetons)
    if (Un.Texte == "?") Un.Texte = "$";
  const bool EnTable = Sql.find("TABLE ") < Sql.find('(');
  return VersPostgresql(std::move(Jetons), EnTable, Maintenant).Traduire();
}

std::vector<std::string_view> Instructions(std::string_view Script) {
  std::vector<std::string_view> Toutes;
  const char* Début = Script.data();
  const auto Ajouter = [&](const char* Fin) {
    const std::string_view Une(Début, static_cast<std::size_t>(Fin - Début));
    if (!EstRemplissage(Une)) Toutes.push_back(Une);
  };
  for (const Jeton& Un : Découper(Script)) {
    if (Un.Texte != ";") continue;
    Ajouter(Un.Texte.data());
    Début = Un.Texte.data() + 1;
  }
  Ajouter(Script.data() + Script.size());
  return Toutes;
}

bool ContientMot(std::string_view Sql, std::string_view Mot) {
  return std::ranges::any_of(Découper(Sql), [&](const Jeton& Un) { return EstMot(Un.Texte, Mot); });
}

std::string NomPostgresql(std::string_view Nom) {
  std::string Texte = "\"";
  for (const char C : Nom) Texte.append(C == '"' ? 2 : 1, C);
  return Texte + '"';
}

}  // namespace Ombrey
