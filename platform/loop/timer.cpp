// The one-shot timer, on any loop.
#include "platform/loop/timer.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <string>
#include <utility>

namespace Ombrey {

namespace {
/// A period of nothing, with a port that is gone, would take a whole processor.
constexpr std::int32_t DélaiMin = 20;
}  // namespace

RetardBoucle::RetardBoucle(IBoucle& Boucle, Événement FinTempo)
    : Boucle_(Boucle), FinTempo_(std::make_shared<const Événement>(std::move(FinTempo))) {}

void RetardBoucle::Démarrer(std::int32_t Délai, const std::string& Code) {
  const std::chrono::milliseconds Durée(std::max(Délai, DélaiMin));
  // The event may drop the timer, and a loop may drop this closure with it.
  Attente_ = Boucle_.Après(Durée, [Appel = FinTempo_, Retour = Code]() mutable {
    const auto Tenu = std::move(Appel);
    const std::string CodeRetour = std::move(Retour);
    (*Tenu)(CodeRetour);
  });
}

}  // namespace Ombrey
