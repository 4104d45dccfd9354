// One statement of SQLite, and those kept for the next time.
#pragma once

#include <list>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "contracts/database.h"
#include "platform/database/connection.h"

struct sqlite3;
struct sqlite3_stmt;

namespace Ombrey {

struct LibérationInstruction {
  void operator()(sqlite3_stmt* Brute) const;
};
using InstructionBrute = std::unique_ptr<sqlite3_stmt, LibérationInstruction>;

/// Prepared statements that nobody runs at present, the latest first. Each load brings the same ones again, and
/// preparing them takes longer than running them.
class RéserveSqlite {
 public:
  /// None when there is none of this text.
  [[nodiscard]] InstructionBrute Prendre(std::string_view Sql);
  void Rendre(std::string Sql, InstructionBrute Brute);

 private:
  static constexpr std::size_t TenuesAuPlus = 48;
  using Tenue = std::pair<std::string, InstructionBrute>;
  std::list<Tenue> Tenues_;
};

/// One statement, in SQLite's own language.
class InstructionSqlite final : public IInstruction {
 public:
  /// The only statement of Sql; it comes from the reserve when that has it, and goes there at the end.
  InstructionSqlite(sqlite3* Base, std::string_view Sql, const std::shared_ptr<RéserveSqlite>& Réserve);
  /// The first statement of Sql, prepared anew. What stands behind it goes to Reste.
  InstructionSqlite(sqlite3* Base, std::string_view Sql, std::string_view& Reste);
  InstructionSqlite(const InstructionSqlite&) = delete;
  InstructionSqlite& operator=(const InstructionSqlite&) = delete;
  ~InstructionSqlite() override;

  void Lier(const std::vector<ValeurChamp>& Valeurs) override;
  bool Avancer() override;
  [[nodiscard]] ValeurChamp Valeur(std::size_t Rang) const override;
  [[nodiscard]] std::vector<std::string> Colonnes() override;
  [[nodiscard]] bool NeFaitQueLire() const;

 private:
  [[nodiscard]] std::string_view Préparer(sqlite3* Base, std::string_view Sql);

  std::string Sql_;
  std::weak_ptr<RéserveSqlite> Réserve_;
  InstructionBrute Brute_;
};

}  // namespace Ombrey
