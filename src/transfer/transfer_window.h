// The window that sends the cooperative's reference data to the terminal.
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "common/context.h"
#include "common/operator_channel.h"
#include "contracts/octets.h"
#include "contracts/toolkit.h"
#include "transfer/data_sets.h"

namespace Ombrey {

/// One opening of the window; a further opening takes a new object. Whoever calls Afficher holds the line, this object
/// and the plug-in's state until it comes back.
class FChargntDonnées final : public IGestesChargntDonnées {
 public:
  explicit FChargntDonnées(ÉtatPartagé& État) : État_(État) {}
  FChargntDonnées(const FChargntDonnées&) = delete;
  FChargntDonnées& operator=(const FChargntDonnées&) = delete;

  /// Shows the window if the terminal answers, and comes back when it is closed. No poll may come meanwhile. Raises
  /// ErreurExécution when the link test does.
  void Afficher(IServicesLiaison& PlugIn);
  /// The plug-in ends: an Afficher that runs comes back as soon as what it waits for does. Abandon is set already.
  void Décharger();

  /// Sends the ticked data sets, in their order, up to the first that fails.
  void BtnTransférer_Click() override;
  void BtnFermer_Click() override;

 private:
  void MontrerSiConnecté();
  [[nodiscard]] std::string TransférerCochées();
  [[nodiscard]] std::optional<std::string> Transférer(const JeuDeDonnées& Jeu, std::vector<Octets>& Lignes);
  void Attendre(std::chrono::milliseconds Pause);
  void DireOmissions();

  ÉtatPartagé& État_;
  IServicesLiaison* PlugIn_ = nullptr;  ///< for as long as Afficher runs
  std::unique_ptr<IVueChargntDonnées> Vue_;
  std::vector<std::string> Omissions_;  ///< of the files that went, until the operator is told
};

}  // namespace Ombrey
