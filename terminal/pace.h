// The pace of a serial line in one direction: when the next byte is through.
#pragma once

#include <cstddef>
#include <optional>

#include "terminal/engine.h"

namespace Rg80 {

/// Ten bits for each byte, counted from absolute moments: what one byte is late, the next ones catch up, so a long
/// run takes its wire time and no more. Without a speed, every byte is through at once.
class Cadence {
 public:
  explicit Cadence(std::optional<unsigned> Bauds);

  [[nodiscard]] bool Libre() const { return !ParOctet_; }
  /// A byte sets out on a line that was idle; nothing changes on a busy one.
  void Éveiller(Instant Maintenant);
  /// How many bytes are through since the last count, were the line never short of them.
  [[nodiscard]] std::size_t Dus(Instant Maintenant) const;
  /// Nombre bytes were taken, at most Dus; the next one is already on its way.
  void Compter(std::size_t Nombre);
  /// The line ran dry: the next byte sets out afresh.
  void Endormir() { Prochain_.reset(); }
  [[nodiscard]] std::optional<Instant> Prochain() const { return Prochain_; }

 private:
  std::optional<Horloge::duration> ParOctet_;
  std::optional<Instant> Prochain_;
};

}  // namespace Rg80
