// The operator's channel of the living plug-in: makes the monitoring window at its first use, and none after the end.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "common/operator_channel.h"
#include "monitor/monitoring_window.h"

namespace Ombrey {

class CanalFenêtre final : public ICanalOpérateur {
 public:
  /// Créer makes the window when the first line comes.
  explicit CanalFenêtre(std::function<std::unique_ptr<FSuiviChargnt>()> Créer) : Créer_(std::move(Créer)) {}

  void AjouterMessage(const std::string& Texte, bool Coché) override {
    if (auto* const Fenêtre = Obtenir()) Fenêtre->AjouterMessage(Texte, Coché);
  }
  void AjouterErreur(const std::string& Texte) override {
    if (auto* const Fenêtre = Obtenir()) Fenêtre->AjouterErreur(Texte);
  }
  void Rafraîchir() override {
    if (auto* const Fenêtre = Obtenir()) Fenêtre->Rafraîchir();
  }
  [[nodiscard]] bool EstVisible() const override { return FSuiviChargnt_ && FSuiviChargnt_->EstVisible(); }
  void Afficher() override {
    if (auto* const Fenêtre = Obtenir()) Fenêtre->Afficher();
  }

  /// Unloads the window. What is said from now on is dropped: a late message brings no window back.
  void Décharger() {
    Fermé_ = true;
    FSuiviChargnt_.reset();
  }

 private:
  /// Not held by the callers: a window that waits goes away when the plug-in ends, which ends its wait.
  FSuiviChargnt* Obtenir() {
    if (!FSuiviChargnt_ && !Fermé_) FSuiviChargnt_ = Créer_();
    return FSuiviChargnt_.get();
  }

  std::function<std::unique_ptr<FSuiviChargnt>()> Créer_;
  std::unique_ptr<FSuiviChargnt> FSuiviChargnt_;
  bool Fermé_ = false;
};

}  // namespace Ombrey
