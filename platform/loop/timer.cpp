// The one-shot timer, on any loop.
#include "platform/loop/timer.h"

#include <algorithm>
#include <utility>

namespace Ombrey {

RetardBoucle::RetardBoucle(IBoucle& Boucle, Événement FinTempo)
    : Boucle_(Boucle), FinTempo_(std::make_shared<const Événement>(std::move(FinTempo))) {}

void RetardBoucle::Démarrer(std::int32_t Délai, const std::string& Code) {
  const std::chrono::milliseconds Attente(std::max<std::int32_t>(Délai, 0));
  Attente_ = Boucle_.Après(Attente, [FinTempo = FinTempo_, Code] {
    // The event may drop the timer, and a loop may drop this closure with it.
    const auto Tenu = FinTempo;
    const std::string CodeRetour = Code;
    (*Tenu)(CodeRetour);
  });
}

}  // namespace Ombrey
