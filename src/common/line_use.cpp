// One user of the line at a time.
#include "common/line_use.h"

namespace Ombrey {

std::optional<UsageLigne::Prise> UsageLigne::PrendreOuReporter(DemandeLigne Demande, std::function<void()> Reprise) {
  if (!Prise_) return std::optional<Prise>(std::in_place, *this);
  if (!*Terminée_) Reportées_.insert_or_assign(Demande, std::move(Reprise));
  return std::nullopt;
}

void UsageLigne::Terminer() {
  *Terminée_ = true;
  Reportées_.clear();
  Relance_.reset();
}

void UsageLigne::Rendre() {
  Prise_ = false;
  if (Reportées_.empty() || *Terminée_) return;
  if (!Relance_) Relance_ = Plateforme_.CréerRetard([this](const std::string&) { Reprendre(); });
  Relance_->Démarrer(0, "");
}

void UsageLigne::Reprendre() {
  const auto Terminée = Terminée_;
  while (!Prise_ && !Reportées_.empty()) {
    const auto Première = Reportées_.begin();
    const auto Demande = std::move(Première->second);
    Reportées_.erase(Première);
    Demande();
  }
}

}  // namespace Ombrey
