// The station: drives the plug-in by the host's rules, and ends it properly.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "contracts/host.h"
#include "contracts/platform.h"
#include "contracts/system.h"
#include "host/edition.h"
#include "host/guarded_loop.h"
#include "host/options.h"
#include "platform/serial/line_journal.h"
#include "platform/serial/port_settings.h"
#include "platform/system/service_notice.h"

namespace Tarvel {

/// Ends the plug-in and starts it anew when the operator has changed the port's settings: they count from the start on.
class Station final : public IGestesStation, private Ombrey::IQuestionnairePort {
 public:
  /// Both outlive the station.
  Station(const Options& Choisies, IÉdition& Édition);
  Station(const Station&) = delete;
  Station& operator=(const Station&) = delete;
  ~Station() override = default;

  using OuvrirBase = std::function<std::shared_ptr<Ombrey::IBaseDeD>(Ombrey::ISystème&)>;

  /// Runs on the database that Ouvrir gives until the operator, a signal or the time limit ends it. Once. AuRepos is
  /// called whenever nothing is in the midst of anything, the line above all. Raises ErreurExécution when the work
  /// can't begin: no database, no working folder, no plug-in.
  void Exécuter(
      const OuvrirBase& Ouvrir, const std::function<void()>& AuRepos = [] {});

  void Bouton() override;
  void Menu() override;
  void Configurer() override;
  void Finir() override;

 private:
  bool Demander(Ombrey::RéglagesPort& Réglages,
                const std::function<std::string(const Ombrey::RéglagesPort&)>& Essayer) override;
  void DireRetenus() override;
  void Charger();
  void Démarrer();
  void RepartirAuBesoin();
  void Pomper(const std::function<void()>& AuRepos);
  template <class Appel>
  void Tenter(Appel Faire);

  const Options& Options_;
  IÉdition& Édition_;
  BoucleGardée Boucle_;
  Ombrey::JournalLiaison Journal_;
  Ombrey::IPlateforme* Plateforme_ = nullptr;  ///< while Exécuter runs
  std::shared_ptr<Ombrey::IBaseDeD> Base_;
  Ombrey::AvisService Service_{Boucle_};
  std::shared_ptr<Ombrey::IPlugInTarvel> PlugIn_;
  bool Offerts_ = false;  ///< button and menu entry
  bool EnFin_ = false;
  bool RéglagesChangés_ = false;
};

}  // namespace Tarvel
