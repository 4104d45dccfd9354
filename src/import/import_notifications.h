// What the host tells about loads: a line in the message list, and the load list read again.
#pragma once

#include <string>

#include "common/context.h"
#include "contracts/database.h"
#include "contracts/host.h"

namespace Ombrey {

/// Listens to the host's import engine and to its synchronisation.
class NotificationsImport : public IÉcouteurEtatBdD, public IÉcouteurKVSynchro {
 public:
  explicit NotificationsImport(ÉtatPartagé& État) : État_(État) {}

  /// A load was added by somebody.
  void ChargementAjouté();
  void KVSynchro_DonnéesImportées(const std::string& SiteSource) override;
  void EtatBdD_EnregistrementImporté(const std::string& Table, IRecordset& RecSet) override;
  void EtatBdD_EnregistrementMisAJour(const std::string& Table, IRecordset& RecSet) override;

 private:
  ÉtatPartagé& État_;
};

}  // namespace Ombrey
