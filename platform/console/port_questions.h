// The port's settings, asked of the operator line by line.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/console/commands.h"
#include "platform/console/windows.h"
#include "platform/serial/port_settings.h"

namespace Ombrey {

/// Shows each setting with its present value. An empty answer keeps it, "annuler" leaves all as it was. Without an
/// operator the questions count as cancelled.
class QuestionsPort : public IQuestionnairePort {
 public:
  using ChercherPorts = std::function<std::vector<PortTrouvé>()>;
  /// Usuels is kept by reference.
  QuestionsPort(FenêtresConsole& Fenêtres, CommandesConsole& Commandes, ChercherPorts Chercher, const ChoixPort& Usuels)
      : Fenêtres_(Fenêtres), Commandes_(Commandes), Chercher_(std::move(Chercher)), Usuels_(Usuels) {}
  bool Demander(RéglagesPort& Réglages, const std::function<std::string(const RéglagesPort&)>& Essayer) override;
  void DireRetenus() override { Fenêtres_.Ligne("réglages du port : retenus."); }

 private:
  [[nodiscard]] bool DemanderPort(std::string& Port);
  [[nodiscard]] bool DemanderValeur(const char* Question, const std::vector<std::string>& Choix, std::string& Valeur);
  [[nodiscard]] bool DemanderTout(RéglagesPort& Réglages);
  /// The answer, or none when the operator gives up or isn't there.
  [[nodiscard]] std::optional<std::string> Interroger(const std::string& Question);

  FenêtresConsole& Fenêtres_;
  CommandesConsole& Commandes_;
  ChercherPorts Chercher_;
  const ChoixPort& Usuels_;
};

}  // namespace Ombrey
