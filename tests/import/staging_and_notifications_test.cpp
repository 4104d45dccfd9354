// The import line by the host's layout, and what the host tells about loads.
#include "import/import_notifications.h"
#include "import/import_staging.h"
#include "tests/import/import_fixture.h"

namespace Ombrey::Essais {
namespace {

TEST_F(EssaiImport, TheLayoutAloneOrdersTheLine) {
  struct Cas {
    std::string LongChps, Format, Ligne;
  };
  const Cas Table[] = {
      {"NoChargement\tN\t4", ";", "12;"},
      {"InfoChargnt3\rQualité\rInfoChargnt1\rRamassage", "|", "  |  |0|0|"},  // two blanks are a value
      {"Cépage\rCodeSite\rSélection\r", "\t", "Pinot\tgris\tS'2\t05\t"},
      {"nochargement\rInconnue\r\rMasse", ";", ";;;1234;"},  // names are exact
      {"Sélection\rMasse", ";", ""},                         // no column takes the variety
      {"", ";", ""},
  };
  std::vector<std::string> DonnéesReçues = {"12", "d", "s", "5001", "05", "  ", "12,5", "2", "1234", "7", "  "};
  const auto Avant = DonnéesReçues;
  Hôte->Cépages = "Pinot\tgris\rAligoté";
  Hôte->Etat->Synchro->Site = "S'2";
  for (const Cas& C : Table) {
    Petite.Exécuter("UPDATE MSysEtats SET LongChps = '" + C.LongChps + "', Format = '" + C.Format + "'");
    EXPECT_EQ(MiseEnForme.MiseEnFormePourImport(DonnéesReçues), C.Ligne) << C.LongChps;
  }
  EXPECT_EQ(DonnéesReçues, Avant);

  Hôte->Etat->Synchro->Site.clear();
  Petite.Exécuter("UPDATE MSysEtats SET LongChps = 'CodeSite' || char(13) || 'Masse', Format = NULL");
  EXPECT_EQ(MiseEnForme.MiseEnFormePourImport(DonnéesReçues), "11234");
  Petite.Exécuter("UPDATE MSysEtats SET LongChps = NULL");
  EXPECT_THROW(static_cast<void>(MiseEnForme.MiseEnFormePourImport(DonnéesReçues)), ErreurExécution);
  Petite.Exécuter("UPDATE MSysEtats SET Exportation = -1");
  EXPECT_EQ(MiseEnForme.MiseEnFormePourImport(DonnéesReçues), "");
}

TEST_F(EssaiImport, TheHostsEventsReachTheOperator) {
  NotificationsImport Notifications(État);
  const auto Lignes = Hôte->Base->OpenRecordset("SELECT 'S2' AS CodeSite, 12 AS NoChargement");
  const auto Étrangères = Hôte->Base->OpenRecordset("SELECT 1 AS Rien");
  Notifications.EtatBdD_EnregistrementImporté("Synchronisation des chargements", *Lignes);
  Notifications.EtatBdD_EnregistrementImporté("chargement", *Étrangères);
  EXPECT_EQ(Canal.Rafraîchissements, 1);
  Notifications.EtatBdD_EnregistrementMisAJour("Chargement", *Lignes);
  Notifications.EtatBdD_EnregistrementMisAJour("Coopérateur", *Étrangères);
  EXPECT_EQ(Canal.Rafraîchissements, 2);
  Notifications.ChargementAjouté();
  EXPECT_EQ(Canal.Rafraîchissements, 3);
  Notifications.KVSynchro_DonnéesImportées("");
  EXPECT_EQ(Canal.Rafraîchissements, 4);
  EXPECT_EQ(Canal.Messages,
            (std::vector<std::pair<std::string, bool>>{{"Importation d'un nouveau chargement : Site S2, n° 12", false},
                                                       {"Importation d'un nouveau chargement de ", false}}));
}

}  // namespace
}  // namespace Ombrey::Essais
