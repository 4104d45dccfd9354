// The station: drives the plug-in by the host's rules, and ends it properly.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
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
  /// called behind each poll and once a second, not in the midst of a poll or a transfer. Raises ErreurExécution when
  /// the work can't begin: no database, no working folder, no plug-in.
  void Exécuter(
      const OuvrirBase& Ouvrir, std::function<void()> AuRepos = [] {});

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
  void NoterRelevé(std::optional<std::int32_t> Délai);
  void ProgrammerRepos(std::chrono::milliseconds Dans);
  void Pomper();
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
  std::function<void()> AuRepos_;
  Ombrey::IBoucle::Jeton Repos_;  ///< none while a poll or a transfer is under way
};

}  // namespace Tarvel
