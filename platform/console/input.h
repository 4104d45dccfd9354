// The console's way in: the operator's lines, one at a time, as events of the loop.
#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "platform/loop/loop.h"

namespace Ombrey {

/// Reads lines from a file descriptor without ever waiting for one. What has been read is handed over line by line,
/// each in a pump of its own, so that a line which waits inside the station keeps the next one from nobody. While
/// lines are in store nothing more is read: however much is piped in, the store stays small.
class EntréeConsole {
 public:
  /// Takes the line, or refuses it for now: it is then offered again after Relancer, and nothing is read until then.
  /// None stands for the end. A refusal comes at once, without a pump.
  using Preneur = std::function<bool(const std::optional<std::string>& Ligne)>;

  /// In bytes. A longer line is cut, but to more than this: the taker can tell it by its length.
  static constexpr std::size_t LongueurMax = 4096;

  EntréeConsole(IBoucle& Boucle, int Descripteur, Preneur Prendre);
  EntréeConsole(const EntréeConsole&) = delete;
  EntréeConsole& operator=(const EntréeConsole&) = delete;
  ~EntréeConsole() = default;

  /// Has the line in store offered at the next pump.
  void Relancer();

 private:
  void Écouter();
  void Recevoir();
  void Recueillir(std::string_view Bruts);
  void RangerLigne();
  void Offrir();

  IBoucle& Boucle_;
  int Descripteur_;
  Preneur Prendre_;
  std::string EnCours_;
  std::deque<std::optional<std::string>> Lignes_;
  bool Finie_ = false;
  IBoucle::Jeton Écoute_;
  IBoucle::Jeton Remise_;
};

}  // namespace Ombrey
