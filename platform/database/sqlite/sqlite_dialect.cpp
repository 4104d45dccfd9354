// From the dialect of the cooperative's database to SQLite's.
#include "platform/database/sqlite/sqlite_dialect.h"

#include "platform/database/dialect.h"

namespace Ombrey {
namespace {

class VersSqlite final : public Traducteur {
 public:
  using Traducteur::Traducteur;

 private:
  [[nodiscard]] std::string Nommer(std::string_view Nom) const override { return std::string(Nom); }
  [[nodiscard]] std::string Appeler(std::string_view Nom, const std::string& Arguments) const override {
    return EstMot(Nom, "CLNG") ? "CAST(" + Arguments + " AS INTEGER)" : std::string(Nom) + "(" + Arguments + ")";
  }
  [[nodiscard]] std::string EnTexte(const std::string& Opérande) const override {
    return "coalesce(" + Opérande + ",'')";
  }
};

}  // namespace

std::string TraduireEnSqlite(std::string_view Sql) { return VersSqlite(Découper(Sql)).Traduire(); }

}  // namespace Ombrey
