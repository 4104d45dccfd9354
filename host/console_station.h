// The station without a screen: lines out, commands in.
#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "contracts/host.h"
#include "host/console_papers.h"
#include "host/edition.h"
#include "host/options.h"
#include "host/overview.h"
#include "platform/console/commands.h"
#include "platform/console/input.h"
#include "platform/console/output.h"
#include "platform/console/port_questions.h"
#include "platform/console/windows.h"
#include "platform/loop/poll_loop.h"
#include "platform/loop/witnesses.h"
#include "platform/serial/line_journal.h"

namespace Tarvel {

class ÉditionConsole final : public IÉdition {
 public:
  /// Choisies outlives the edition; the descriptors stay their owner's.
  ÉditionConsole(const Options& Choisies, int Entrée, int Sortie);

  [[nodiscard]] Ombrey::IBoucle& Boucle() override { return Boucle_; }
  [[nodiscard]] Ombrey::IFenêtres& Fenêtres() override { return Fenêtres_; }
  [[nodiscard]] Ombrey::IQuestionnairePort& Questionnaire() override { return Questions_; }
  /// Beside the file of the real windows, whose places a console has no right to overwrite.
  [[nodiscard]] std::filesystem::path FichierRéglages() const override;
  [[nodiscard]] Aperçu& LAperçu() override { return Aperçu_; }
  void Suivre(std::shared_ptr<Ombrey::IBaseDeD> Base) override { Base_ = std::move(Base); }
  void Raccorder(IGestesStation& Gestes) override;
  void SuivreLiaison(const Ombrey::JournalLiaison& Journal) override;
  void OffrirBouton(const std::string& Infobulle) override;
  void OffrirMenu(const std::string& Texte) override;
  void Dire(const std::string& Texte) override { Sortie_.Ligne("hôte : " + Texte); }
  void Finir() override { Fenêtres_.Finir(); }
  [[nodiscard]] bool Avancer(const Ombrey::Avancement& Où) override { return Fenêtres_.Avancer(Où); }
  void SePrésenter() override { Dire("Un second démarrage de cette station a été refusé."); }

 private:
  /// Choix: how many of the last messages, and whether faults alone.
  void MontrerLigne(const Ombrey::JournalLiaison& Journal, const std::string& Choix);
  void RappelerSuspension();
  /// Blank ones apart.
  void DireEnLignes(const std::string& Texte);
  void AjouterVues();
  void MarquerLu(const std::string& Liste);
  void AjouterTableau(const char* Nom, const char* Argument, const char* Aide,
                      std::function<Rangées(const std::string&)> Lire);
  /// The state of the link, the last load and the base.
  [[nodiscard]] std::string TexteÉtat() const;
  [[nodiscard]] std::string Site() const;
  /// This site's loads, behind the word « tous » those of all, in which all other words stand.
  [[nodiscard]] Journée LireJour(const std::string& Mots) const;
  [[nodiscard]] bool Prendre(const std::optional<std::string>& Ligne);

  const Options& Options_;
  bool FinAvecEntrée_;
  IGestesStation* Gestes_ = nullptr;
  Ombrey::BouclePoll Boucle_;
  Ombrey::SortieConsole Sortie_;
  Ombrey::FenêtresConsole Fenêtres_;
  Ombrey::CommandesConsole Commandes_;
  Ombrey::QuestionsPort Questions_;
  PapiersConsole Papiers_;
  Ombrey::EntréeConsole Entrée_;
  Aperçu Aperçu_;
  std::optional<std::chrono::system_clock::time_point> Suspendue_;  ///< what RappelerSuspension knows of
  Ombrey::IBoucle::Jeton Rappel_;
  std::shared_ptr<Ombrey::IBaseDeD> Base_;
};

}  // namespace Tarvel
