// libpq's connection with an owner: every question to the server is over in time, whatever the server or the network
// do.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/failures.h"
#include "contracts/database.h"
#include "platform/database/postgresql/server_search.h"

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

/// A question of what is called meanwhile (Patience) is refused: one at a time.
class LienServeur {
 public:
  explicit LienServeur(std::string Adresse) : Adresse_(std::move(Adresse)) {}

  /// All questions within are over together within AttenteServeur, whatever they are.
  class Délai {
   public:
    explicit Délai(LienServeur& Lien);
    Délai(const Délai&) = delete;
    Délai& operator=(const Délai&) = delete;
    ~Délai();

   private:
    LienServeur& Lien_;
    bool EstLePremier_;
  };

  [[nodiscard]] const std::string& Adresse() const { return Adresse_; }
  [[nodiscard]] bool EstOuvert() const { return Lien_ != nullptr; }
  /// Raises ErreurExécution when none of the address's servers can be had.
  void Ouvrir();
  void Fermer() { Lien_.reset(); }
  /// With false, neither side ends a question that takes its time, until the next true.
  void Limiter(bool EstPressé);
  /// One statement, its values bound. Raises ErreurExécution; the link is closed when the server doesn't answer.
  [[nodiscard]] Résultat Demander(const std::string& Sql, const std::vector<ValeurChamp>& Valeurs = {});
  /// Several statements at once; the last one's result.
  [[nodiscard]] Résultat DemanderTout(const std::string& Sql);
  /// What the server warned of during the last question; mostly empty.
  [[nodiscard]] const std::string& Avertissement() const { return Avertissement_; }
  /// True when another connection has notified what this one listens to. False too when the link is broken, which is
  /// closed then.
  [[nodiscard]] bool EstAverti();
  /// The server's process behind this connection.
  [[nodiscard]] int Processus() const;
  /// Called over and over while the server works.
  void FixerPatience(std::function<bool()> Patience) { Patience_ = std::move(Patience); }

 private:
  struct Raccrocher {
    void operator()(pg_conn* Lien) const;
  };
  class Occupation;
  /// Empty when the server took the link, else why it didn't.
  [[nodiscard]] std::string Joindre(const ServeurÀEssayer& Lui, std::chrono::steady_clock::time_point Échéance);
  [[nodiscard]] Résultat EnvoyerTout(const std::string& Sql);
  [[nodiscard]] Résultat Attendre();
  /// False when the time is up.
  [[nodiscard]] bool AttendreSocket(short Quoi, std::chrono::steady_clock::time_point Échéance);
  [[nodiscard]] std::chrono::steady_clock::time_point Échéance() const;
  [[noreturn]] void Perdre();
  [[noreturn]] void Renoncer(const std::string& Raison);

  std::string Adresse_;
  std::unique_ptr<pg_conn, Raccrocher> Lien_;
  bool EstPressé_ = true;
  bool EstOccupé_ = false;
  std::optional<std::chrono::steady_clock::time_point> Échéance_;
  std::chrono::steady_clock::time_point PasAvant_{};
  std::string DernièrePerte_;
  std::string Avertissement_;
  std::function<bool()> Patience_;
};

}  // namespace Ombrey
