// The seam between the station and what it looks like: a console, or windows.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "contracts/host.h"
#include "contracts/toolkit.h"
#include "host/overview.h"
#include "platform/loop/loop.h"
#include "platform/loop/signals.h"
#include "platform/loop/witnesses.h"
#include "platform/serial/line_journal.h"
#include "platform/serial/port_settings.h"

namespace Tarvel {

/// What the operator asks of the station. None of these raises anything.
class IGestesStation {
 public:
  virtual ~IGestesStation() = default;
  virtual void Bouton() = 0;  ///< the plug-in's toolbar button
  virtual void Menu() = 0;    ///< the plug-in's menu entry
  virtual void Configurer() = 0;
  /// Ends the station, from any depth of waiting: the plug-in ends at once, and whatever waits comes back.
  virtual void Finir() = 0;
};

/// One way for the station to appear. Outlives the station and its plug-in.
class IÉdition {
 public:
  virtual ~IÉdition() = default;
  [[nodiscard]] virtual Ombrey::IBoucle& Boucle() = 0;
  [[nodiscard]] virtual Ombrey::IFenêtres& Fenêtres() = 0;
  [[nodiscard]] virtual Ombrey::IQuestionnairePort& Questionnaire() = 0;
  /// What it shows at a glance; the station tells it what the windows don't.
  [[nodiscard]] virtual Aperçu& LAperçu() = 0;
  /// Where the places and widths of its windows are kept.
  [[nodiscard]] virtual std::filesystem::path FichierRéglages() const = 0;
  /// From now on the operator's gestures reach the station. Called once, ahead of the first pump.
  virtual void Raccorder(IGestesStation& Gestes) = 0;
  /// The station's database, from its opening on: what the edition shows of the day is read from it.
  virtual void Suivre(std::shared_ptr<Ombrey::IBaseDeD> /*Base*/) {}
  /// Another station has brought something in.
  virtual void MontrerNouveau() {}
  /// What passes on the line, as it grows; outlives the edition's windows.
  virtual void SuivreLiaison(const Ombrey::JournalLiaison& /*Journal*/) {}
  /// The work couldn't begin; there is no station behind the edition. Shows why and waits until it was read.
  virtual void Échouer(const std::string& /*Raison*/) {}
  /// How far a long sending is; false stops it.
  [[nodiscard]] virtual bool Avancer(const Ombrey::Avancement& Où) = 0;
  /// The same station was started once more: this one shows itself.
  virtual void SePrésenter() = 0;
  /// The plug-in took the toolbar button: its picture stands on the clipboard.
  virtual void OffrirBouton(const std::string& Infobulle) = 0;
  /// The plug-in took the menu entry; "&" stands ahead of the mnemonic letter.
  virtual void OffrirMenu(const std::string& Texte) = 0;
  /// Shows what the host was told, or what went wrong in it.
  virtual void Dire(const std::string& Texte) = 0;
  /// The station is ending: boxes and questions answer themselves, and windows hold nobody up.
  virtual void Finir() = 0;
};

/// What a database calls over and over while it makes the station wait: windows are painted meanwhile, and a station
/// that is asked to end waits no longer.
[[nodiscard]] inline std::function<bool()> PatienceDe(IÉdition& Édition) {
  return [&Édition] {
    Édition.Boucle().Peindre();
    return !Ombrey::SignauxFin::EstDemandée();
  };
}

}  // namespace Tarvel
