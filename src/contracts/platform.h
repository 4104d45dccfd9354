// The machine as a whole: where the plug-in gets everything that the host doesn't hand it.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "contracts/host.h"
#include "contracts/octets.h"
#include "contracts/port.h"
#include "contracts/system.h"
#include "contracts/toolkit.h"

namespace Ombrey {

/// Outlives the plug-in. The objects that it makes are their holder's; all of them live on the one thread.
class IPlateforme {
 public:
  virtual ~IPlateforme() = default;
  [[nodiscard]] virtual ISystème& Système() = 0;
  [[nodiscard]] virtual IFenêtres& Fenêtres() = 0;
  [[nodiscard]] virtual IRéglages& Réglages() = 0;
  [[nodiscard]] virtual std::unique_ptr<ILecteurIni> CréerLecteurIni() = 0;
  /// FinTempo is the timer's event; its argument is the code given to Démarrer.
  [[nodiscard]] virtual std::shared_ptr<IRetard> CréerRetard(std::function<void(const std::string&)> FinTempo) = 0;
  [[nodiscard]] virtual std::shared_ptr<IServeurPortComm> CréerServeurPortComm() = 0;
  /// Lecture and ÉtatLiaison are the events of the client port object.
  [[nodiscard]] virtual std::shared_ptr<IClientPortComm> CréerClientPortComm(
      std::function<void(const Octets&)> Lecture, std::function<void(const std::string&, bool)> ÉtatLiaison) = 0;
  [[nodiscard]] virtual std::shared_ptr<IAccèsDistant> CréerAccèsDistant() = 0;
};

}  // namespace Ombrey
