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

/// A timer that tells of itself. One of no delay only puts something off.
class RetardObservé final : public IRetard {
 public:
  RetardObservé(IBoucle& Boucle, RetardBoucle::Événement FinTempo,
                std::function<void(std::optional<std::int32_t>)> Dire)
      : Retard_(Boucle, std::move(FinTempo)), Dire_(std::move(Dire)) {}
  void Démarrer(std::int32_t Délai, const std::string& Code) override {
    Retard_.Démarrer(Délai, Code);
    if (Délai > 0) Dire_(Délai);
  }
  void Arrêter() override {
    Retard_.Arrêter();
    Dire_(std::nullopt);
  }

 private:
  RetardBoucle Retard_;
  std::function<void(std::optional<std::int32_t>)> Dire_;
};

}  // namespace

PlateformeMachine::PlateformeMachine(IBoucle& Boucle, IFenêtres& Fenêtres, IQuestionnairePort* Questionnaire,
                                     const std::filesystem::path& Dossier, const std::filesystem::path& FichierRéglages,
                                     JournalLiaison* Journal, TémoinsMachine Témoins)
    : Boucle_(Boucle),
      Fenêtres_(Fenêtres),
      Questionnaire_(Questionnaire),
      Journal_(Journal),
      Système_(Boucle, Dossier),
      Réglages_(FichierRéglages),
      Témoins_(std::move(Témoins)) {}

ContextePort PlateformeMachine::Contexte() const {
  return {Boucle_, [] { return std::make_unique<LecteurIniFichier>(); }, Questionnaire_, {}, Témoins_.Envoi};
}

std::unique_ptr<ILecteurIni> PlateformeMachine::CréerLecteurIni() { return std::make_unique<LecteurIniFichier>(); }

std::shared_ptr<IRetard> PlateformeMachine::CréerRetard(std::function<void(const std::string&)> FinTempo) {
  if (!Témoins_.Attente) return std::make_shared<RetardBoucle>(Boucle_, std::move(FinTempo));
  return std::make_shared<RetardObservé>(Boucle_, std::move(FinTempo), Témoins_.Attente);
}

std::shared_ptr<IServeurPortComm> PlateformeMachine::CréerServeurPortComm() {
  auto Serveur = std::make_shared<ServeurPortComm>(Contexte());
  if (Journal_ == nullptr) return Serveur;
  return std::make_shared<ServeurPortTracé>(std::move(Serveur), *Journal_);
}

std::shared_ptr<IClientPortComm> PlateformeMachine::CréerClientPortComm(
    std::function<void(const Octets&)> Lecture, std::function<void(const std::string&, bool)> ÉtatLiaison) {
  if (Témoins_.Reçus)
    Lecture = [Voir = Témoins_.Reçus, Lecture = std::move(Lecture)](const Octets& Reçus) {
      Voir(Reçus);
      Lecture(Reçus);
    };
  return std::make_shared<ClientPortComm>(Contexte(), std::move(Lecture), std::move(ÉtatLiaison));
}

std::shared_ptr<IAccèsDistant> PlateformeMachine::CréerAccèsDistant() {
  return std::make_shared<AccèsDistantInutile>();
}

}  // namespace Ombrey
