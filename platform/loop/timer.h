// The one-shot timer, on any loop.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "contracts/system.h"
#include "platform/loop/loop.h"

namespace Ombrey {

/// Its event comes from within a pump of the loop, which must outlive it.
class RetardBoucle final : public IRetard {
 public:
  using Événement = std::function<void(const std::string&)>;

  RetardBoucle(IBoucle& Boucle, Événement FinTempo);
  /// A delay below 20 ms counts as 20.
  void Démarrer(std::int32_t Délai, const std::string& Code) override;
  void Arrêter() override { Attente_.reset(); }

 private:
  IBoucle& Boucle_;
  std::shared_ptr<const Événement> FinTempo_;
  IBoucle::Jeton Attente_;
};

}  // namespace Ombrey
