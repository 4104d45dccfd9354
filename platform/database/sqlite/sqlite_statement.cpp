// One statement of SQLite, and those kept for the next time.
#include "platform/database/sqlite/sqlite_statement.h"

#include <sqlite3.h>

#include <algorithm>
#include <cstdint>
#include <utility>
#include <variant>

#include "base/failures.h"
#include "platform/database/dialect.h"
#include "platform/database/sqlite/sqlite_failures.h"

namespace Ombrey {
namespace {

struct Lieur {
  sqlite3_stmt* Brute;
  int Rang;
  int operator()(std::monostate /*Null*/) const { return sqlite3_bind_null(Brute, Rang); }
  int operator()(std::int64_t Valeur) const { return sqlite3_bind_int64(Brute, Rang, Valeur); }
  int operator()(double Valeur) const { return sqlite3_bind_double(Brute, Rang, Valeur); }
  int operator()(const std::string& Valeur) const {
    return sqlite3_bind_text64(Brute, Rang, Valeur.data(), Valeur.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
  }
};

}  // namespace

void LibérationInstruction::operator()(sqlite3_stmt* Brute) const { sqlite3_finalize(Brute); }

void RéserveSqlite::Rendre(std::string Sql, InstructionBrute Brute) {
  sqlite3_reset(Brute.get());
  sqlite3_clear_bindings(Brute.get());
  Tenues_.emplace_front(std::move(Sql), std::move(Brute));
  if (Tenues_.size() > TenuesAuPlus) Tenues_.pop_back();
}

InstructionBrute RéserveSqlite::Prendre(std::string_view Sql) {
  const auto Trouvée = std::ranges::find(Tenues_, Sql, &Tenue::first);
  if (Trouvée == Tenues_.end()) return nullptr;
  InstructionBrute Brute = std::move(Trouvée->second);
  Tenues_.erase(Trouvée);
  return Brute;
}

InstructionSqlite::InstructionSqlite(sqlite3* Base, std::string_view Sql, const std::shared_ptr<RéserveSqlite>& Réserve)
    : Sql_(Sql), Réserve_(Réserve), Brute_(Réserve->Prendre(Sql)) {
  std::string_view Reste;
  if (!Brute_) Reste = Préparer(Base, Sql);
  if (!EstRemplissage(Reste)) throw ErreurExécution("Une seule instruction est acceptée à la fois");
}

InstructionSqlite::InstructionSqlite(sqlite3* Base, std::string_view Sql, std::string_view& Reste) {
  Reste = Préparer(Base, Sql);
}

InstructionSqlite::~InstructionSqlite() {
  if (const auto Réserve = Réserve_.lock(); Réserve && Brute_) Réserve->Rendre(std::move(Sql_), std::move(Brute_));
}

/// What stands behind the first statement of Sql.
std::string_view InstructionSqlite::Préparer(sqlite3* Base, std::string_view Sql) {
  sqlite3_stmt* Brute = nullptr;
  const char* Suite = nullptr;
  const int Code = sqlite3_prepare_v2(Base, Sql.data(), static_cast<int>(Sql.size()), &Brute, &Suite);
  Brute_.reset(Brute);
  if (Code != SQLITE_OK) LeverÉchec(Base);
  if (!Brute) throw ErreurExécution("L'instruction est vide");
  return Sql.substr(static_cast<std::size_t>(Suite - Sql.data()));
}

void InstructionSqlite::Lier(const std::vector<ValeurChamp>& Valeurs) {
  sqlite3_reset(Brute_.get());
  int Rang = 0;
  for (const ValeurChamp& Valeur : Valeurs)
    if (std::visit(Lieur{Brute_.get(), ++Rang}, Valeur) != SQLITE_OK) LeverÉchec(sqlite3_db_handle(Brute_.get()));
}

bool InstructionSqlite::Avancer() {
  const int Code = sqlite3_step(Brute_.get());
  if (Code == SQLITE_ROW) return true;
  if (Code != SQLITE_DONE) LeverÉchec(sqlite3_db_handle(Brute_.get()));
  return false;
}

ValeurChamp InstructionSqlite::Valeur(std::size_t Rang) const {
  const int Colonne = static_cast<int>(Rang);
  switch (sqlite3_column_type(Brute_.get(), Colonne)) {
    case SQLITE_NULL:
      return std::monostate{};
    case SQLITE_INTEGER:
      return std::int64_t{sqlite3_column_int64(Brute_.get(), Colonne)};
    case SQLITE_FLOAT:
      return sqlite3_column_double(Brute_.get(), Colonne);
    default: {
      const auto* Texte = reinterpret_cast<const char*>(sqlite3_column_text(Brute_.get(), Colonne));
      return std::string(Texte ? Texte : "", static_cast<std::size_t>(sqlite3_column_bytes(Brute_.get(), Colonne)));
    }
  }
}

std::vector<std::string> InstructionSqlite::Colonnes() {
  std::vector<std::string> Noms;
  for (int Colonne = 0; Colonne < sqlite3_column_count(Brute_.get()); ++Colonne) {
    const char* Nom = sqlite3_column_name(Brute_.get(), Colonne);
    Noms.emplace_back(Nom ? Nom : "");
  }
  return Noms;
}

bool InstructionSqlite::NeFaitQueLire() const { return sqlite3_stmt_readonly(Brute_.get()) != 0; }

}  // namespace Ombrey
