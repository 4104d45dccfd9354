// The cooperative's database on a PostgreSQL server.
#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "contracts/database.h"
#include "platform/database/connection.h"
#include "platform/database/kept_sums.h"
#include "platform/database/postgresql/server_link.h"

namespace Ombrey {

/// A link that was lost comes back by itself at the next question, but never in the midst of a transaction: what that
/// has done is then known by looking. Writers wait for each other at the start of a transaction, so that two stations
/// never create the same. A transaction needs a server that has a commit on its disk before it says so
/// (synchronous_commit).
class ConnexionPostgresql final : public IConnexion, public std::enable_shared_from_this<ConnexionPostgresql> {
 public:
  /// Raises ErreurExécution when the server can't be had.
  ConnexionPostgresql(const std::string& Adresse, Horloge Maintenant);

  [[nodiscard]] std::string Nom() const override { return Lien_.Adresse(); }
  [[nodiscard]] std::string Moteur() override;
  [[nodiscard]] std::optional<std::filesystem::path> SonFichier() const override { return std::nullopt; }
  [[nodiscard]] bool EstEnLectureSeule() const override { return EstEnLectureSeule_; }
  [[nodiscard]] Instruction Préparer(std::string_view Sql) override;
  [[nodiscard]] Instruction PréparerLecture(std::string_view Sql) override;
  void ExécuterTout(std::string_view Script) override;
  [[nodiscard]] std::string NomsDesTables() const override {
    return "SELECT table_name FROM information_schema.tables WHERE table_schema = current_schema()";
  }
  [[nodiscard]] std::vector<ColonneDeTable> ColonnesDe(const std::string& Table) override;
  void AjouterColonne(const std::string& Table, const ColonneDeTable& Colonne) override;
  [[nodiscard]] std::string CléNumérotée(bool JamaisReprise) const override;
  void ReprendreNumérotation(const std::string& Table, const std::string& Colonne) override;
  void TenirSommes(const SommesTenues& Sommes) override;
  void RefaireSommes(const SommesTenues& Sommes) override { Suivre(Écritures(Sommes).Refaire); }
  [[nodiscard]] ValeurChamp SommesFausses(const SommesTenues& Sommes) override;
  [[nodiscard]] std::string SansCoupure(const std::string& Colonne) const override;
  [[nodiscard]] std::string DateLisible(const std::string& Colonne) const override;
  [[nodiscard]] std::string NombreDans(const std::string& Colonne) const override { return Colonne; }
  [[nodiscard]] std::string DroitsManquants(const std::string& Table, const std::vector<std::string>& Droits) override;
  void PrendreSite(const std::string& Code) override;
  [[nodiscard]] bool ADuNouveau() override;
  void RangerJournal() override {}
  void LimiterLeTemps(bool EstPressé) noexcept override;
  [[nodiscard]] std::shared_ptr<void> DélaiCommun() override { return std::make_shared<LienServeur::Délai>(Lien_); }
  void FixerPatience(std::function<bool()> Patience) override { Lien_.FixerPatience(std::move(Patience)); }

 protected:
  void Commencer() override;
  void Valider() override;
  void Annuler() noexcept override;

 private:
  class InstructionServeur;
  /// Répétable: may run once more when the link turns out to be lost.
  [[nodiscard]] Résultat Demander(const std::string& Sql, const std::vector<ValeurChamp>& Valeurs, bool EstRépétable);
  [[nodiscard]] ÉcrituresSommes Écritures(const SommesTenues& Sommes);
  void Suivre(const std::vector<std::string>& Étapes);
  void Relier();
  void VerrouillerSite();
  [[nodiscard]] bool PrendreVerrou();

  LienServeur Lien_;
  Horloge Maintenant_;
  bool EstEnLectureSeule_ = false;
  bool DansTransaction_ = false;
  std::optional<LienServeur::Délai> DélaiDeTransaction_;
  bool ADesNouvelles_ = false;
  int AncienProcessus_ = 0;
  bool EstCoupé_ = false;  ///< the operator knows
  std::chrono::steady_clock::time_point ProchainEssai_{};
  std::optional<std::string> Site_;
};

}  // namespace Ombrey
