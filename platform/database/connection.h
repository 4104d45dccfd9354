// What the host asks of a cooperative's database, whatever engine keeps it.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/failures.h"
#include "contracts/database.h"
#include "platform/database/kept_sums.h"

namespace Ombrey {

/// Gives the present moment in days since 1899-12-30. Without it, queries that ask for the date fail.
using Horloge = std::function<double()>;

/// What a second try may bring through: another station was in the way.
class [[gnu::visibility("default")]] ÉchecPassager : public ErreurExécution {
 public:
  using ErreurExécution::ErreurExécution;
};

/// One statement of an engine. Every operation raises ErreurExécution in French when the engine refuses.
class IInstruction {
 public:
  virtual ~IInstruction() = default;
  virtual void Lier(const std::vector<ValeurChamp>& Valeurs) = 0;
  virtual bool Avancer() = 0;
  [[nodiscard]] virtual ValeurChamp Valeur(std::size_t Rang) const = 0;
  [[nodiscard]] virtual std::vector<std::string> Colonnes() = 0;
};

/// A prepared statement. Its values are numbered ?1, ?2, … and never part of its text.
class Instruction {
 public:
  explicit Instruction(std::unique_ptr<IInstruction> DuMoteur) : DuMoteur_(std::move(DuMoteur)) {}

  /// Starts the statement over with these values.
  Instruction& Lier(const std::vector<ValeurChamp>& Valeurs) {
    DuMoteur_->Lier(Valeurs);
    return *this;
  }
  /// True while there is a row.
  bool Avancer() { return DuMoteur_->Avancer(); }
  /// Runs it to its end.
  void Exécuter() {
    while (Avancer()) {
    }
  }
  /// Value of the current row's column, counted from 0.
  [[nodiscard]] ValeurChamp Valeur(std::size_t Rang) const { return DuMoteur_->Valeur(Rang); }
  [[nodiscard]] std::vector<std::string> Colonnes() const { return DuMoteur_->Colonnes(); }

 private:
  std::unique_ptr<IInstruction> DuMoteur_;
};

struct ColonneDeTable {
  std::string Nom;
  std::string Type;                   ///< as the engine declares it
  std::optional<std::string> Défaut;  ///< as the engine writes it; only where Null isn't allowed
};

/// Told how far a long work is, in pieces of equal weight; what it raises ends the work.
using Progrès = std::function<void(std::size_t Faits, std::size_t Total)>;

/// How long an engine makes a program wait that is asked to end: longer than any other's commit.
inline constexpr std::chrono::milliseconds AttentePressée{500};

/// An open database, for the one thread of the system. Commits are on the disk when they return. Foreign keys aren't
/// enforced: a load is kept even when its holding is unknown. Every operation raises ErreurExécution when the engine
/// refuses.
class IConnexion {
 public:
  IConnexion() = default;
  IConnexion(const IConnexion&) = delete;
  IConnexion& operator=(const IConnexion&) = delete;
  virtual ~IConnexion() = default;

  /// What the operator calls it: the file's path, or the server's address without a secret.
  [[nodiscard]] virtual std::string Nom() const = 0;
  /// The engine and its version.
  [[nodiscard]] virtual std::string Moteur() = 0;
  /// The file that holds all of it; none when a server does.
  [[nodiscard]] virtual std::optional<std::filesystem::path> SonFichier() const = 0;
  [[nodiscard]] virtual bool EstEnLectureSeule() const = 0;

  /// A statement of the host's own, in the language that the engines share: names as the tables write them,
  /// CAST(x AS INTEGER) for the number that a text begins with, 0 without one.
  [[nodiscard]] virtual Instruction Préparer(std::string_view Sql) = 0;
  /// A single SELECT in the dialect of the cooperative's database; any other text is refused.
  [[nodiscard]] virtual Instruction PréparerLecture(std::string_view Sql) = 0;
  /// Runs several statements that bind nothing.
  virtual void ExécuterTout(std::string_view Script) = 0;
  void Exécuter(std::string_view Sql, const std::vector<ValeurChamp>& Valeurs = {}) {
    Préparer(Sql).Lier(Valeurs).Exécuter();
  }
  /// First column of the first row; Null when there is no row.
  [[nodiscard]] ValeurChamp Lire(std::string_view Sql, const std::vector<ValeurChamp>& Valeurs = {}) {
    Instruction Requête = Préparer(Sql);
    return Requête.Lier(Valeurs).Avancer() ? Requête.Valeur(0) : ValeurChamp{};
  }

  /// Runs an INSERT of one row into a table whose key the engine numbers; the row's key.
  [[nodiscard]] virtual std::int64_t Insérer(const std::string& Sql, const std::vector<ValeurChamp>& Valeurs,
                                             const std::string& Clé) {
    return std::get<std::int64_t>(Lire(Sql + " RETURNING " + Clé, Valeurs));
  }

  /// A query for the names of all tables and views, the engine's own apart.
  [[nodiscard]] virtual std::string NomsDesTables() const = 0;
  /// The columns of a table or view, in order; none when there is no such table.
  [[nodiscard]] virtual std::vector<ColonneDeTable> ColonnesDe(const std::string& Table) = 0;
  /// Gives a table another column. A value that must be there is the default in all its rows.
  virtual void AjouterColonne(const std::string& Table, const ColonneDeTable& Colonne) = 0;
  /// Those of the rights (SELECT, INSERT, UPDATE, DELETE) that this user lacks on the table; empty when none.
  [[nodiscard]] virtual std::string DroitsManquants(const std::string& /*Table*/,
                                                    const std::vector<std::string>& /*Droits*/) {
    return {};
  }
  /// From now on, as long as the connection lives, no other station works under this site's code. Raises
  /// ErreurExécution when one does.
  virtual void PrendreSite(const std::string& Code) = 0;
  /// True when others may have committed something since the last call; costs next to nothing.
  [[nodiscard]] virtual bool ADuNouveau() = 0;
  /// Patience is called over and over while the engine makes its caller wait; it may paint, and nothing else. Once it
  /// says false, the caller waits for AttentePressée at most.
  virtual void FixerPatience(std::function<bool()> Patience) = 0;

  /// As long as the result lives, all that is asked of the engine must be over together within its time.
  [[nodiscard]] virtual std::shared_ptr<void> DélaiCommun() { return nullptr; }
  /// Whether a question that takes long is ended for it, as it is from the start.
  virtual void LimiterLeTemps(bool /*EstPressé*/) noexcept {}

  /// True when a table can't have both as columns.
  [[nodiscard]] virtual bool EstMêmeNom(const std::string& Un, const std::string& Autre) const { return Un == Autre; }
  /// How a table declares a whole number that the engine gives to each row by itself, and that is the row's key. With
  /// JamaisReprise a number never comes back, even when its row has gone.
  [[nodiscard]] virtual std::string CléNumérotée(bool JamaisReprise) const = 0;
  /// Rows with keys of their own have come into the table: the engine goes on behind the highest.
  virtual void ReprendreNumérotation(const std::string& /*Table*/, const std::string& /*Colonne*/) {}
  /// Makes a table of sums, fills it, and has the engine keep it. One that is there already is brought up to how the
  /// engine reads weights now.
  virtual void TenirSommes(const SommesTenues& Sommes) = 0;
  /// What stands in a column of numbers, as a number; Null for what is none. An embedded base keeps there what was
  /// typed, with a comma or with blanks.
  [[nodiscard]] virtual std::string NombreDans(const std::string& Colonne) const = 0;
  /// Fills that table anew.
  virtual void RefaireSommes(const SommesTenues& Sommes) = 0;
  /// How many of the kept sums aren't what the rows add up to.
  [[nodiscard]] virtual ValeurChamp SommesFausses(const SommesTenues& Sommes) = 0;
  /// The condition that a text has neither semicolon nor control character.
  [[nodiscard]] virtual std::string SansCoupure(const std::string& Colonne) const = 0;
  /// A date as day, month, year, hour and minute, by what the engine itself can do.
  [[nodiscard]] virtual std::string DateLisible(const std::string& Colonne) const = 0;

  /// For a moment when nobody waits: what the engine has put off for it.
  virtual void RangerJournal() = 0;

 protected:
  friend class Transaction;
  /// Waits for other writers, so that nothing inside can fail on what they do.
  virtual void Commencer() = 0;
  virtual void Valider() = 0;
  virtual void Annuler() noexcept = 0;
};

/// All or nothing: what was done since the start is undone unless Valider was reached.
class Transaction {
 public:
  explicit Transaction(IConnexion& Connexion) : Connexion_(Connexion) { Connexion.Commencer(); }
  ~Transaction() {
    if (Ouverte_) Connexion_.Annuler();
  }
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;
  void Valider() {
    Connexion_.Valider();
    Ouverte_ = false;
  }

 private:
  IConnexion& Connexion_;
  bool Ouverte_ = true;
};

/// For work that may take its time, since no terminal waits for it.
class SansHâte {
 public:
  explicit SansHâte(IConnexion& Connexion) : Connexion_(Connexion) { Connexion.LimiterLeTemps(false); }
  ~SansHâte() { Connexion_.LimiterLeTemps(true); }
  SansHâte(const SansHâte&) = delete;
  SansHâte& operator=(const SansHâte&) = delete;

 private:
  IConnexion& Connexion_;
};

}  // namespace Ombrey
