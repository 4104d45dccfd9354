// Where a run of received characters ends, so that a frame goes up whole.
#include "platform/serial/burst.h"

#include <algorithm>
#include <utility>

#include "contracts/line_protocol.h"

namespace Ombrey {

namespace {

using namespace std::chrono_literals;

/// Silence behind a frame that was cut off, in half character times: 3.5 characters.
constexpr int DemiCaractèresDeSilence = 7;
/// An adapter may keep characters back for 16 ms or more in the middle of a frame.
constexpr std::chrono::milliseconds SilenceMin = 100ms;

}  // namespace

Rafale::Rafale(std::chrono::nanoseconds TempsCaractère)
    : Silence_(std::max(std::chrono::ceil<std::chrono::milliseconds>(TempsCaractère * DemiCaractèresDeSilence / 2),
                        SilenceMin)) {}

/// True when this byte ends a burst.
bool Rafale::Avancer(char Octet) {
  switch (Lieu_) {
    case Lieu::HorsTrame:
      if (Octet == STX) Lieu_ = Lieu::DansTrame;
      return false;
    case Lieu::DansTrame:
      if (Octet == ETX) Lieu_ = Lieu::PremierContrôle;
      return false;
    case Lieu::PremierContrôle:
      Lieu_ = Lieu::SecondContrôle;
      return false;
    case Lieu::SecondContrôle:
      return true;
  }
  return false;
}

std::vector<Octets> Rafale::Ajouter(std::string_view Reçus) {
  std::vector<Octets> Closes;
  for (const char Octet : Reçus) {
    if (Octet == STX && Lieu_ == Lieu::HorsTrame && !Tenus_.empty()) Closes.push_back(Clore());
    Tenus_ += Octet;
    if (Avancer(Octet) || Tenus_.size() >= TailleMax) Closes.push_back(Clore());
  }
  if (Lieu_ == Lieu::HorsTrame && !Tenus_.empty()) Closes.push_back(Clore());
  return Closes;
}

std::optional<std::chrono::milliseconds> Rafale::SilenceAttendu() const {
  if (Tenus_.empty()) return std::nullopt;
  return Silence_;
}

Octets Rafale::Clore() {
  Lieu_ = Lieu::HorsTrame;
  return Octets(std::exchange(Tenus_, {}));
}

}  // namespace Ombrey
