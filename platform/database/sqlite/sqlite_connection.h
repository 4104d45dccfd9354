// SQLite's C interface with owners: the connection, its statements with bound values, and the transaction.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "contracts/database.h"

struct sqlite3;
struct sqlite3_stmt;

namespace Ombrey {

/// How long a statement waits for a database that another program has locked. Shorter than a terminal waits for the
/// answer to its load, so that a refusal reaches it.
inline constexpr std::chrono::milliseconds AttenteVerrou{8'000};

/// True when nothing but blanks and semicolons stands behind a statement.
[[nodiscard]] bool EstRemplissage(std::string_view Reste);

/// One prepared statement. Values are numbered ?1, ?2, … and never part of its text. Every operation raises
/// ErreurExécution in French when the engine refuses.
class Instruction {
 public:
  /// Prepares the first statement of Sql. What stands behind it goes to Reste; without Reste, it is a failure.
  Instruction(sqlite3* Base, std::string_view Sql, std::string_view* Reste = nullptr);

  /// Starts the statement over with these values.
  Instruction& Lier(const std::vector<ValeurChamp>& Valeurs);
  /// True while there is a row.
  bool Avancer();
  /// Runs it to its end.
  void Exécuter();

  /// Value of the current row's column, counted from 0.
  [[nodiscard]] ValeurChamp Valeur(std::size_t Rang) const;
  [[nodiscard]] std::vector<std::string> Colonnes() const;
  [[nodiscard]] bool NeFaitQueLire() const;
  [[nodiscard]] sqlite3_stmt* Brute() const { return Brute_.get(); }

 private:
  struct Finir {
    void operator()(sqlite3_stmt* Brute) const;
  };
  std::unique_ptr<sqlite3_stmt, Finir> Brute_;
};

/// An open database file, for the one thread of the system. Commits are on the disk when they return: with a
/// write-ahead log, or with the ordinary journal where the drive can't carry one, which stderr then says. Foreign keys
/// aren't enforced: a load is kept even when its holding is unknown.
class ConnexionSqlite {
 public:
  /// Gives the present moment in days since 1899-12-30. Without it, queries that ask for the date fail.
  using Horloge = std::function<double()>;

  /// Opens a file that is there, with the journal that it was made with; when it may only be read, only reading works.
  /// Raises ErreurExécution when it is missing, locked, or no database.
  [[nodiscard]] static std::shared_ptr<ConnexionSqlite> Ouvrir(const std::filesystem::path& Fichier,
                                                               Horloge Maintenant = {});
  /// Makes a new, empty database. Raises ErreurExécution when a file of that name is there already, which stays as it
  /// is, or when none can be made.
  [[nodiscard]] static std::shared_ptr<ConnexionSqlite> Créer(const std::filesystem::path& Fichier,
                                                              Horloge Maintenant = {});

  ConnexionSqlite(const ConnexionSqlite&) = delete;
  ConnexionSqlite& operator=(const ConnexionSqlite&) = delete;

  [[nodiscard]] const std::filesystem::path& Fichier() const { return Fichier_; }
  [[nodiscard]] bool EstEnLectureSeule() const;

  /// The statements below are the host's own, in SQLite's language.
  [[nodiscard]] Instruction Préparer(std::string_view Sql) { return Instruction(Base_.get(), Sql); }
  [[nodiscard]] sqlite3* Brute() const { return Base_.get(); }
  void Exécuter(std::string_view Sql, const std::vector<ValeurChamp>& Valeurs = {});
  /// Runs several statements that bind nothing.
  void ExécuterTout(std::string_view Script);
  /// First column of the first row; Null when there is no row.
  [[nodiscard]] ValeurChamp Lire(std::string_view Sql, const std::vector<ValeurChamp>& Valeurs = {});
  /// Row number of the row inserted last.
  [[nodiscard]] std::int64_t DernièreLigne() const;

  /// For a moment when nobody waits: what was committed since moves from the log into the file itself, so that a plain
  /// copy of the file has it. Costs nothing when nothing was; what another program's reading holds up waits for the
  /// next call.
  void RangerJournal();
  /// Copies the whole database, as it stands at one moment, to a new file for its owner alone, while others work on it.
  /// When the call returns the copy is on the disk and was read again. Raises ErreurExécution, and leaves no file, when
  /// it can't or when there is one already.
  void Sauvegarder(const std::filesystem::path& Copie);
  /// True when a program has this database open, or may have: with the ordinary journal only one that is at work shows.
  [[nodiscard]] static bool EstOuverteAilleurs(const std::filesystem::path& Fichier);

 private:
  struct Fermer {
    void operator()(sqlite3* Base) const;
  };
  enum class Journal { DuFichier, Anticipé, Ordinaire };
  [[nodiscard]] static std::shared_ptr<ConnexionSqlite> Créer(const std::filesystem::path& Fichier, Horloge Maintenant,
                                                              Journal Voulu);
  ConnexionSqlite(const std::filesystem::path& Fichier, Horloge Maintenant, Journal Voulu);
  void Brancher();
  void SePasserDeJournalAnticipé();

  std::filesystem::path Fichier_;
  Horloge Maintenant_;
  std::int64_t Rangées_ = 0;  ///< rows changed by this connection that stand in the file itself
  std::unique_ptr<sqlite3, Fermer> Base_;
};

/// Removes a database file that nobody has open, with what the engine put beside it.
void SupprimerBase(const std::filesystem::path& Fichier);

/// All or nothing: what was done since the start is undone unless Valider was reached. Waits for other writers at its
/// start, so that nothing inside can fail on a lock.
class Transaction {
 public:
  explicit Transaction(ConnexionSqlite& Connexion);
  ~Transaction();
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;
  void Valider();

 private:
  ConnexionSqlite& Connexion_;
  bool Ouverte_ = true;
};

}  // namespace Ombrey
