// The port's settings, asked of the operator in a dialog.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "platform/qt/qt_window.h"
#include "platform/serial/port_settings.h"

namespace Ombrey {

class QuestionnairePortQt : public IQuestionnairePort {
 public:
  using ChercherPorts = std::function<std::vector<PortTrouvé>()>;
  QuestionnairePortQt(const ContexteQt& Contexte, ChercherPorts Chercher, ChoixPort Usuels)
      : Contexte_(Contexte), Chercher_(std::move(Chercher)), Usuels_(std::move(Usuels)) {}
  /// The station's end counts as cancelled.
  bool Demander(RéglagesPort& Réglages, const std::function<std::string(const RéglagesPort&)>& Essayer) override;

 private:
  const ContexteQt& Contexte_;
  ChercherPorts Chercher_;
  ChoixPort Usuels_;
};

}  // namespace Ombrey
