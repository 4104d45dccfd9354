// Everything that the plug-in needs of this machine, composed.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "contracts/host.h"
#include "contracts/octets.h"
#include "contracts/platform.h"
#include "contracts/port.h"
#include "contracts/system.h"
#include "contracts/toolkit.h"
#include "platform/loop/loop.h"
#include "platform/loop/witnesses.h"
#include "platform/serial/line_journal.h"
#include "platform/serial/port_settings.h"
#include "platform/serial/serial_port.h"
#include "platform/system/machine_system.h"
#include "platform/system/settings_files.h"

namespace Ombrey {

/// Who looks at what passes between the plug-in and the machine. Each may be none.
struct TémoinsMachine {
  std::function<void(const Octets&)> Reçus;                  ///< characters, ahead of the plug-in
  std::function<void(std::optional<std::int32_t>)> Attente;  ///< a timer was started for so many milliseconds, stopped
  TémoinEnvoi Envoi;
};

class PlateformeMachine final : public IPlateforme {
 public:
  /// Boucle, Fenêtres and Questionnaire (which may be none) must outlive the platform. Dossier is the working folder,
  /// made when it is missing. Journal, which may be none as well, hears what passes on the line. Raises ErreurExécution
  /// when it can't be.
  PlateformeMachine(IBoucle& Boucle, IFenêtres& Fenêtres, IQuestionnairePort* Questionnaire,
                    const std::filesystem::path& Dossier,
                    const std::filesystem::path& FichierRéglages = FichierRéglagesUtilisateur(),
                    JournalLiaison* Journal = nullptr, TémoinsMachine Témoins = {});

  [[nodiscard]] ISystème& Système() override { return Système_; }
  [[nodiscard]] IFenêtres& Fenêtres() override { return Fenêtres_; }
  [[nodiscard]] IRéglages& Réglages() override { return Réglages_; }
  [[nodiscard]] std::unique_ptr<ILecteurIni> CréerLecteurIni() override;
  [[nodiscard]] std::shared_ptr<IRetard> CréerRetard(std::function<void(const std::string&)> FinTempo) override;
  [[nodiscard]] std::shared_ptr<IServeurPortComm> CréerServeurPortComm() override;
  [[nodiscard]] std::shared_ptr<IClientPortComm> CréerClientPortComm(
      std::function<void(const Octets&)> Lecture, std::function<void(const std::string&, bool)> ÉtatLiaison) override;
  /// This machine needs no remote access: the object does nothing.
  [[nodiscard]] std::shared_ptr<IAccèsDistant> CréerAccèsDistant() override;

 private:
  [[nodiscard]] ContextePort Contexte() const;

  IBoucle& Boucle_;
  IFenêtres& Fenêtres_;
  IQuestionnairePort* Questionnaire_;
  JournalLiaison* Journal_;
  SystèmeMachine Système_;
  RéglagesFichier Réglages_;
  TémoinsMachine Témoins_;
};

}  // namespace Ombrey
