// The cooperative's database in a file, by SQLite.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "contracts/database.h"
#include "platform/database/connection.h"
#include "platform/database/kept_sums.h"
#include "platform/database/sqlite/sqlite_statement.h"
#include "platform/database/sqlite/sqlite_sums.h"
#include "platform/system/folder_lock.h"

namespace Ombrey {

/// How long a statement waits for a database that another program has locked. Shorter than a terminal waits for the
/// answer to its load, so that a refusal reaches it.
inline constexpr std::chrono::milliseconds AttenteVerrou{8'000};

/// An open database file: with a write-ahead log, or with the ordinary journal where the drive can't carry one, which
/// stderr then says.
class ConnexionSqlite final : public IConnexion {
 public:
  /// Opens a file that is there, with the journal that it was made with; when it may only be read, only reading works.
  /// Raises ErreurExécution when it is missing, locked, or no database.
  [[nodiscard]] static std::shared_ptr<ConnexionSqlite> Ouvrir(const std::filesystem::path& Fichier,
                                                               Horloge Maintenant = {});
  /// Makes a new, empty database. Raises ErreurExécution when a file of that name is there already, which stays as it
  /// is, or when none can be made.
  [[nodiscard]] static std::shared_ptr<ConnexionSqlite> Créer(const std::filesystem::path& Fichier,
                                                              Horloge Maintenant = {});

  ~ConnexionSqlite() override;

  [[nodiscard]] const std::filesystem::path& Fichier() const { return Fichier_; }
  [[nodiscard]] std::string Nom() const override { return Fichier_.string(); }
  [[nodiscard]] std::string Moteur() override;
  [[nodiscard]] std::optional<std::filesystem::path> SonFichier() const override { return Fichier_; }
  [[nodiscard]] bool EstEnLectureSeule() const override;

  [[nodiscard]] Instruction Préparer(std::string_view Sql) override;
  [[nodiscard]] Instruction PréparerLecture(std::string_view Sql) override;
  [[nodiscard]] sqlite3* Brute() const { return Base_.get(); }
  void ExécuterTout(std::string_view Script) override;

  [[nodiscard]] std::string NomsDesTables() const override {
    return "SELECT name FROM sqlite_master WHERE type IN ('table', 'view') AND name NOT GLOB 'sqlite_*'";
  }
  [[nodiscard]] std::int64_t Insérer(const std::string& Sql, const std::vector<ValeurChamp>& Valeurs,
                                     const std::string& Clé) override;
  [[nodiscard]] std::vector<ColonneDeTable> ColonnesDe(const std::string& Table) override;
  void AjouterColonne(const std::string& Table, const ColonneDeTable& Colonne) override;
  void PrendreSite(const std::string& Code) override;
  [[nodiscard]] bool ADuNouveau() override;
  [[nodiscard]] bool EstMêmeNom(const std::string& Un, const std::string& Autre) const override;
  [[nodiscard]] std::string CléNumérotée(bool JamaisReprise) const override;
  void TenirSommes(const SommesTenues& Sommes) override { ExécuterTout(SommesSqlite(Sommes).Tenir[0]); }
  void RefaireSommes(const SommesTenues& Sommes) override { ExécuterTout(SommesSqlite(Sommes).Refaire[0]); }
  [[nodiscard]] ValeurChamp SommesFausses(const SommesTenues& Sommes) override {
    return Lire(SommesSqlite(Sommes).Fausses);
  }
  [[nodiscard]] std::string SansCoupure(const std::string& Colonne) const override;
  [[nodiscard]] std::string DateLisible(const std::string& Colonne) const override;
  [[nodiscard]] std::string NombreDans(const std::string& Colonne) const override { return NombreSqlite(Colonne); }

  /// What was committed since moves from the log into the file itself, so that a plain copy of the file has it. Costs
  /// nothing when nothing was, but the first time, which makes the log long enough for the commits to come; what
  /// another program's reading holds up waits for the next call.
  void RangerJournal() override;
  void FixerPatience(std::function<bool()> Patience) override { Patience_ = std::move(Patience); }
  /// Copies the whole database, as it stands at one moment, to a new file for its owner alone, while others work on it.
  /// When the call returns the copy is on the disk and was read again. Raises ErreurExécution, and leaves no file, when
  /// it can't or when there is one already. What Dire raises ends it likewise.
  void Sauvegarder(const std::filesystem::path& Copie, const Progrès& Dire = {});
  /// True when a program has this database open, or may have: with the ordinary journal only one that is at work shows.
  [[nodiscard]] static bool EstOuverteAilleurs(const std::filesystem::path& Fichier);

 protected:
  void Commencer() override { Exécuter("BEGIN IMMEDIATE"); }
  void Valider() override { Exécuter("COMMIT"); }
  void Annuler() noexcept override;

 private:
  struct Fermer {
    void operator()(sqlite3* Base) const;
  };
  enum class Journal { DuFichier, Anticipé, Ordinaire };
  [[nodiscard]] static std::shared_ptr<ConnexionSqlite> Créer(const std::filesystem::path& Fichier, Horloge Maintenant,
                                                              Journal Voulu);
  ConnexionSqlite(const std::filesystem::path& Fichier, Horloge Maintenant, Journal Voulu);
  void Brancher();
  void Quitter();
  void SePasserDeJournalAnticipé();
  void AllongerJournal();
  void Transporter(ConnexionSqlite& Vers, const Progrès& Dire);

  std::filesystem::path Fichier_;
  Horloge Maintenant_;
  std::function<bool()> Patience_;
  std::optional<VerrouFichier> Site_;
  ValeurChamp Compteur_;  ///< of the changes that other connections have made
  bool EstJournalLong_ = false;
  std::int64_t Rangées_ = 0;  ///< rows changed by this connection that stand in the file itself
  std::unique_ptr<sqlite3, Fermer> Base_;
  std::shared_ptr<RéserveSqlite> Réserve_;  ///< behind the base: an open statement would keep that open
};

/// Removes a database file that nobody has open, with what the engine put beside it.
void SupprimerBase(const std::filesystem::path& Fichier);

}  // namespace Ombrey
