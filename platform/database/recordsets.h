// The cooperative's database as the plug-in reads it: queries in its own dialect, recordsets.
#pragma once

#include <memory>
#include <string>
#include <utility>

#include "contracts/database.h"
#include "platform/database/connection.h"

namespace Ombrey {

/// Only single SELECTs are run; any other text raises ErreurExécution and changes nothing. Défaut and Instantané read
/// all rows at opening, by one run of the query, and keep them; VersLAvant goes from row to row.
class BaseLue : public IDatabase {
 public:
  explicit BaseLue(std::shared_ptr<IConnexion> Connexion) : Connexion_(std::move(Connexion)) {}
  [[nodiscard]] std::string Name() const override { return Connexion_->Nom(); }
  [[nodiscard]] std::unique_ptr<IRecordset> OpenRecordset(const std::string& Sql, TypeRecordset Type) override;

 private:
  std::shared_ptr<IConnexion> Connexion_;
};

/// A recordset of type Instantané from a statement of the host's own, its values bound.
[[nodiscard]] std::unique_ptr<IRecordset> Instantané(Instruction Requête);

}  // namespace Ombrey
