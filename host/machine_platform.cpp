// Everything that the plug-in needs of this machine, composed.
#include "host/machine_platform.h"

#include <utility>

#include "platform/loop/timer.h"
#include "platform/serial/port_server.h"
#include "platform/serial/traced_port.h"

namespace Ombrey {

namespace {

class AccèsDistantInutile final : public IAccèsDistant {
 public:
  void Paramétrer(const std::string&) override {}
  void Fermer() override {}
};

}  // namespace

PlateformeMachine::PlateformeMachine(IBoucle& Boucle, IFenêtres& Fenêtres, IQuestionnairePort* Questionnaire,
                                     const std::filesystem::path& Dossier, const std::filesystem::path& FichierRéglages,
                                     JournalLiaison* Journal)
    : Boucle_(Boucle),
      Fenêtres_(Fenêtres),
      Questionnaire_(Questionnaire),
      Journal_(Journal),
      Système_(Boucle, Dossier),
      Réglages_(FichierRéglages) {}

ContextePort PlateformeMachine::Contexte() const {
  return {Boucle_, [] { return std::make_unique<LecteurIniFichier>(); }, Questionnaire_};
}

std::unique_ptr<ILecteurIni> PlateformeMachine::CréerLecteurIni() { return std::make_unique<LecteurIniFichier>(); }

std::shared_ptr<IRetard> PlateformeMachine::CréerRetard(std::function<void(const std::string&)> FinTempo) {
  return std::make_shared<RetardBoucle>(Boucle_, std::move(FinTempo));
}

std::shared_ptr<IServeurPortComm> PlateformeMachine::CréerServeurPortComm() {
  auto Serveur = std::make_shared<ServeurPortComm>(Contexte());
  if (Journal_ == nullptr) return Serveur;
  return std::make_shared<ServeurPortTracé>(std::move(Serveur), *Journal_);
}

std::shared_ptr<IClientPortComm> PlateformeMachine::CréerClientPortComm(
    std::function<void(const Octets&)> Lecture, std::function<void(const std::string&, bool)> ÉtatLiaison) {
  return std::make_shared<ClientPortComm>(Contexte(), std::move(Lecture), std::move(ÉtatLiaison));
}

std::shared_ptr<IAccèsDistant> PlateformeMachine::CréerAccèsDistant() {
  return std::make_shared<AccèsDistantInutile>();
}

}  // namespace Ombrey
