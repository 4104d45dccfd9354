// One user of the line at a time.
#include "common/line_use.h"

#include <string>
#include <utility>

namespace Ombrey {

std::optional<UsageLiaison::Prise> UsageLiaison::PrendreOuReporter(DemandeLiaison Demande,
                                                                   std::function<void()> Reprise) {
  const bool Passe = Demande == DemandeLiaison::Interrogation && !Reportées_.empty();
  if (!Prise_ && !Passe) return std::optional<Prise>(std::in_place, *this);
  if (Terminée_) return std::nullopt;
  if (!Relance_) Relance_ = Plateforme_.CréerRetard([this](const std::string&) { Reprendre(); });
  Reportées_.insert_or_assign(Demande, std::move(Reprise));
  return std::nullopt;
}

void UsageLiaison::Terminer() {
  Terminée_ = true;
  Reportées_.clear();
  Relance_.reset();
}

void UsageLiaison::Rendre() {
  Prise_ = false;
  if (!Reportées_.empty()) Relance_->Démarrer(0, "");
}

/// One request for each event of the timer. The plug-in may end and go within the request: nothing is touched behind
/// it.
void UsageLiaison::Reprendre() {
  if (Prise_ || Reportées_.empty()) return;
  const auto Première = Reportées_.extract(Reportées_.begin());
  if (!Reportées_.empty()) Relance_->Démarrer(0, "");
  Première.mapped()();
}

}  // namespace Ombrey
