// libpq's connection with an owner: every question to the server is over in time, whatever the server or the network
// do.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "base/failures.h"
#include "contracts/database.h"

struct pg_conn;
struct pg_result;

namespace Ombrey {

/// No call holds the one thread longer. Shorter than a terminal waits for the answer to its load.
inline constexpr std::chrono::milliseconds AttenteServeur{8'000};
/// After a server that couldn't be had, questions fail at once for this long.
inline constexpr std::chrono::milliseconds RépitServeur{3'000};

/// The link was lost; what a question in the midst of it has done is unknown.
class LienPerdu : public ErreurExécution {
 public:
  using ErreurExécution::ErreurExécution;
};

struct LibérerRésultat {
  void operator()(pg_result* Résultat) const;
};
using Résultat = std::unique_ptr<pg_result, LibérerRésultat>;

class LienServeur {
 public:
  explicit LienServeur(std::string Adresse) : Adresse_(std::move(Adresse)) {}

  [[nodiscard]] const std::string& Adresse() const { return Adresse_; }
  [[nodiscard]] bool EstOuvert() const { return Lien_ != nullptr; }
  /// Raises ErreurExécution when the server can't be had.
  void Ouvrir();
  void Fermer() { Lien_.reset(); }
  /// One statement, its values bound. Raises ErreurExécution; the link is closed when the server doesn't answer.
  [[nodiscard]] Résultat Demander(const std::string& Sql, const std::vector<ValeurChamp>& Valeurs = {});
  /// Several statements at once; the last one's result.
  [[nodiscard]] Résultat DemanderTout(const std::string& Sql);
  /// True when another connection has notified what this one listens to. False too when the link is broken, which is
  /// closed then.
  [[nodiscard]] bool EstAverti();
  /// The server's process behind this connection.
  [[nodiscard]] int Processus() const;
  /// Called over and over while the server works.
  void FixerPatience(std::function<void()> Patience) { Patience_ = std::move(Patience); }

 private:
  struct Finir {
    void operator()(pg_conn* Lien) const;
  };
  [[nodiscard]] Résultat Attendre();
  void AttendreSocket(short Quoi, std::chrono::steady_clock::time_point Échéance);
  [[noreturn]] void Perdre(const std::string& Raison);

  std::string Adresse_;
  std::unique_ptr<pg_conn, Finir> Lien_;
  std::chrono::steady_clock::time_point PasAvant_{};
  std::string DernièrePerte_;
  std::function<void()> Patience_;
};

}  // namespace Ombrey
