// The dialect's translator: the input is a query, whose values may hold anything.
#include "platform/database/dialect.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "platform/database/sqlite/sqlite_dialect.h"
#include "tests/fuzz/input.h"

namespace Ombrey::Essais {

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

void Essayer(Entrée E) {
  const std::string Traduit = TraduireEnSqlite(E.Reste);
  Exiger(Intouchables(Traduit) == Intouchables(E.Reste), "literals and bracketed names stay as they stand");
  if (E.Reste.find('&') == E.Reste.npos)  // with a joining of nothing it is no query
    Exiger(SansBlancs(TraduireEnSqlite(Traduit)) == SansBlancs(Traduit), "nothing is turned twice");
  static_cast<void>(CommenceParSelect(E.Reste));
}

}  // namespace Ombrey::Essais
