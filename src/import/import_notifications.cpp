// What the host tells about loads.
#include "import/import_notifications.h"

#include "base/regional_forms.h"
#include "contracts/phrases.h"
#include "contracts/system.h"

namespace Ombrey {
namespace {

/// The host names a load's row by the layout that brought it or by its table.
bool ConcerneChargements(const std::string& Table) { return Table == TitreImport || Table == "Chargement"; }

}  // namespace

void NotificationsImport::ChargementAjouté() { État_.Canal.Rafraîchir(); }

void NotificationsImport::KVSynchro_DonnéesImportées(const std::string& SiteSource) {
  État_.Canal.AjouterMessage("Importation d'un nouveau chargement de " + SiteSource, false);
  État_.Canal.Rafraîchir();
}

void NotificationsImport::EtatBdD_EnregistrementImporté(const std::string& Table, IRecordset& RecSet) {
  if (!ConcerneChargements(Table)) return;
  const Régional Formes = État_.Formes();
  État_.Canal.AjouterMessage(Phrase::NouveauChargement + TexteOuVide(RecSet.FieldsNommé("CodeSite"), Formes) + ", n° " +
                                 TexteOuVide(RecSet.FieldsNommé("NoChargement"), Formes),
                             false);
  État_.Canal.Rafraîchir();
}

void NotificationsImport::EtatBdD_EnregistrementMisAJour(const std::string& Table, IRecordset& /*RecSet*/) {
  if (ConcerneChargements(Table)) État_.Canal.Rafraîchir();
}

}  // namespace Ombrey
