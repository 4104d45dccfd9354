// Time, waiting, places and regional forms of this machine.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>

#include "contracts/system.h"
#include "platform/loop/loop.h"
#include "platform/system/folder_lock.h"

namespace Ombrey {

/// The present moment on the clock of this machine's wall. Raises ErreurExécution when it can't be told.
[[nodiscard]] DateHeure HeureLocale();

class SystèmeMachine final : public ISystème {
 public:
  /// Boucle must outlive the object. Dossier is the working folder, this object's own for as long as it lives; it is
  /// made when it is missing, for its owner alone. Raises ErreurExécution when it can't be, or is another station's.
  SystèmeMachine(IBoucle& Boucle, const std::filesystem::path& Dossier);
  /// For who only looks at a base: without a folder.
  explicit SystèmeMachine(IBoucle& Boucle);
  [[nodiscard]] std::uint32_t Tics() const override;
  [[nodiscard]] DateHeure Maintenant() const override { return HeureLocale(); }
  [[nodiscard]] Régional FormesRégionales() const override { return Formes_; }
  [[nodiscard]] std::filesystem::path CheminApplication() const override { return Dossier_; }
  [[nodiscard]] std::filesystem::path DossierImportsConservés() const override;
  bool Pomper(std::chrono::milliseconds AttenteMax) override { return Boucle_.Pomper(AttenteMax); }

 private:
  IBoucle& Boucle_;
  std::filesystem::path Dossier_;
  std::optional<VerrouDossier> Verrou_;
  Régional Formes_;
};

/// The forms that the environment's locale gives; French ones where it names none, or none that this machine knows.
[[nodiscard]] Régional FormesDeLEnvironnement();

}  // namespace Ombrey
