// The class that the host creates: owns the state and the rooms' objects, and passes the host's calls on.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "common/context.h"
#include "common/operator_channel.h"
#include "contracts/host.h"
#include "contracts/octets.h"
#include "contracts/platform.h"
#include "contracts/port.h"
#include "core/window_channel.h"
#include "import/frame_processing.h"
#include "import/holding_checks.h"
#include "import/import_notifications.h"
#include "import/import_staging.h"
#include "link/collection.h"
#include "link/exchange.h"
#include "link/polling.h"
#include "quotas/reply.h"
#include "transfer/transfer_window.h"

namespace Ombrey {

/// The plug-in. Life: Créer, the host's property calls, Initialiser, Afficher (polling), Terminer. It keeps itself
/// alive until Terminer.
class PlugIn final : public IPlugInTarvel,
                     public IServicesLiaison,
                     public ITraitementChargement,
                     public std::enable_shared_from_this<PlugIn> {
 public:
  /// Plateforme must outlive the plug-in.
  [[nodiscard]] static std::shared_ptr<PlugIn> Créer(IPlateforme& Plateforme);
  ~PlugIn() override;
  PlugIn(const PlugIn&) = delete;
  PlugIn& operator=(const PlugIn&) = delete;

  // The plug-in's own public operations

  /// Sets the port from the settings file; true when all is set. Raises ErreurExécution on a setting that is no number
  /// of its type, without a port, or when the file can't be read.
  bool DefParamPort();
  /// One import line from a cut load record, without line end; empty when the host has no layout for it.
  [[nodiscard]] std::string MiseEnFormePourImport(const std::vector<std::string>& DonnéesReçues);
  [[nodiscard]] std::string SupprZéroDébut(std::string Texte) const;
  [[nodiscard]] std::string SupprZéroFin(std::string Texte) const;

  // IPlugInTarvel

  [[nodiscard]] std::string IPlugInTarvel_Nom() const override;
  [[nodiscard]] std::string IPlugInTarvel_Version() const override;
  bool IPlugInTarvel_AjouterBouton(std::uint8_t NumBouton, std::int16_t& Style, std::string& ToolTipText) override;
  bool IPlugInTarvel_AjouterMenu(std::uint8_t NumMenu, std::string& Texte) override;
  void IPlugInTarvel_BoutonBarreOutilsAppelé(std::int16_t Num, const std::string& Inutilisé) override;
  void IPlugInTarvel_MenuAppelé(std::int16_t Num, const std::string& Inutilisé) override;
  [[nodiscard]] std::shared_ptr<IBaseDeD> IPlugInTarvel_BaseDeD() const override;
  void IPlugInTarvel_FixerBaseDeD(std::shared_ptr<IBaseDeD> Objet) override;
  [[nodiscard]] std::shared_ptr<IServeurPortComm> IPlugInTarvel_ServeurPortComm() const override;
  void IPlugInTarvel_FixerServeurPortComm(std::shared_ptr<IServeurPortComm> Objet) override;
  [[nodiscard]] std::shared_ptr<void> IPlugInTarvel_EntreesSorties() const override;
  void IPlugInTarvel_FixerEntreesSorties(std::shared_ptr<void> Objet) override;
  void IPlugInTarvel_FixerFichierTarvelIni(const std::string& Chemin) override;
  std::string IPlugInTarvel_Initialiser(std::shared_ptr<IEventPlugin> EventPlugin) override;
  void IPlugInTarvel_Afficher() override;
  void IPlugInTarvel_Configurer() override;
  std::string IPlugInTarvel_Terminer() override;
  void IPlugInTarvel_Information(std::string& Texte) override;
  void IPlugInTarvel_ChargementAjouté(const std::string& CodeSite, const std::string& NumCharg) override;

  // What the rooms and the windows have done by the plug-in

  void Retard_FinTempo(const std::string& CodeRetour) override;
  void MettreAJourCumuls(std::string& NoChargement) override;
  bool TesterConnexion() override;
  std::string TransmettreLignes(std::int32_t NumFichier, std::vector<Octets>& Lignes) override;
  std::string TraiterDonnéesReçues(Octets& Tampon, Octets& Réponse, std::string& NoChargement) override;

 private:
  explicit PlugIn(IPlateforme& Plateforme);

  void Class_Initialize();
  /// A new client port object of this name, whose event feeds the reception buffer.
  [[nodiscard]] std::shared_ptr<IClientPortComm> NouvelEventPort(const std::string& NomPort);
  void ObtenirPort(const std::string& NomPort, const std::string& NomClient);
  void DemanderRéglages();
  std::string OuvrirLiaison(const std::string& NomPort);
  void LirePériode();
  void NettoyerFichiersImport();
  void DéconnecterÉvénements();
  void TesterEtMontrer();
  void TransférerDonnées();
  /// Runs a call that was put off: no caller waits for its failure, so the operator gets it.
  void Reporter(const std::function<void()>& Faire);

  std::string FichierIni_;
  std::uint8_t NumBouton_ = 0;
  std::uint8_t NumMenu_ = 0;
  std::shared_ptr<IServeurPortComm> ServeurPortComm_;
  std::shared_ptr<IClientPortComm> EventPortComRG80_;
  std::shared_ptr<IKVSynchro> KVSynchro_;
  std::shared_ptr<IAccèsDistant> AccèsDistant_;

  CanalFenêtre Canal_;
  std::weak_ptr<FChargntDonnées> FChargntDonnées_;  ///< the transfer window, while it is open
  ÉtatPartagé État_;
  Échange Échange_;
  VérificationExploitation Exploitations_;
  MiseEnFormeImport MiseEnForme_;
  TraitementTrame Trames_;
  NotificationsImport Notifications_;
  RéponseCumuls Cumuls_;
  Interrogation Interrogation_;
};

}  // namespace Ombrey
