// The cooperative's database on SQLite: queries in its own dialect, recordsets.
#pragma once

#include <memory>
#include <string>
#include <utility>

#include "contracts/database.h"
#include "platform/database/sqlite/sqlite_connection.h"

namespace Ombrey {

/// Only single SELECTs are run; any other text raises ErreurExécution and changes nothing. Défaut and Instantané read
/// all rows at opening, by one run of the query, and keep them packed; VersLAvant reads row by row.
class BaseSqlite : public IDatabase {
 public:
  explicit BaseSqlite(std::shared_ptr<ConnexionSqlite> Connexion) : Connexion_(std::move(Connexion)) {}
  [[nodiscard]] std::string Name() const override { return Connexion_->Fichier().string(); }
  [[nodiscard]] std::unique_ptr<IRecordset> OpenRecordset(const std::string& Sql, TypeRecordset Type) override;

 private:
  std::shared_ptr<ConnexionSqlite> Connexion_;
};

/// A recordset of type Instantané from a statement of the host's own, its values bound.
[[nodiscard]] std::unique_ptr<IRecordset> Instantané(Instruction Requête);

}  // namespace Ombrey
