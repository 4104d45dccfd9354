// Where a run of received characters ends, so that a frame goes up whole.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "contracts/octets.h"

namespace Ombrey {

/// Cuts received bytes into bursts. A frame is held back from its STX until the two checksum characters behind its ETX
/// are there, or until a silence, which the caller measures. What stands outside a frame goes up at once: whoever waits
/// knows what it waits for. Knows no device, no clock.
class Rafale {
 public:
  /// A burst is handed up at this size at the latest: a line gone mad fills no memory.
  static constexpr std::size_t TailleMax = 64 * std::size_t{1024};

  /// TempsCaractère: how long one character takes on the line.
  explicit Rafale(std::chrono::nanoseconds TempsCaractère);

  /// Takes bytes in and gives the bursts that they close, in order.
  [[nodiscard]] std::vector<Octets> Ajouter(std::string_view Reçus);
  /// How long the line stays silent behind a message that is over.
  [[nodiscard]] std::chrono::milliseconds Silence() const { return Silence_; }
  /// How long the line must stay silent for the held bytes to be a burst; none when nothing is held.
  [[nodiscard]] std::optional<std::chrono::milliseconds> SilenceAttendu() const;
  /// The silence is over: gives what is held, and holds nothing any more.
  [[nodiscard]] Octets Clore();

 private:
  enum class Lieu { HorsTrame, DansTrame, PremierContrôle, SecondContrôle };

  [[nodiscard]] bool Avancer(char Octet);

  std::chrono::milliseconds Silence_;
  std::string Tenus_;
  Lieu Lieu_ = Lieu::HorsTrame;
};

}  // namespace Ombrey
