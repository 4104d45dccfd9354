// Absolute deadlines of a paced line.
#include "terminal/pace.h"

#include <chrono>
#include <limits>

namespace Rg80 {

namespace {
constexpr long long BitsParOctet = 10;  // start bit, eight data bits, stop bit
}

Cadence::Cadence(std::optional<unsigned> Bauds) {
  if (!Bauds) return;
  ParOctet_ = std::chrono::duration_cast<Horloge::duration>(std::chrono::seconds(BitsParOctet)) / *Bauds;
}

void Cadence::Éveiller(Instant Maintenant) {
  if (ParOctet_ && !Prochain_) Prochain_ = Maintenant + *ParOctet_;
}

std::size_t Cadence::Dus(Instant Maintenant) const {
  if (!ParOctet_) return std::numeric_limits<std::size_t>::max();
  if (!Prochain_ || Maintenant < *Prochain_) return 0;
  return static_cast<std::size_t>((Maintenant - *Prochain_) / *ParOctet_) + 1;
}

void Cadence::Compter(std::size_t Nombre) {
  if (Prochain_) *Prochain_ += *ParOctet_ * static_cast<Horloge::rep>(Nombre);
}

}  // namespace Rg80
