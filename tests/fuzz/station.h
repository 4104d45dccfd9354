// The plug-in's rooms from the line to the import text, on the machine in memory and the sample cooperative.
#pragma once

#include "host/schema.h"
#include "import/frame_processing.h"
#include "link/transmission.h"
#include "platform/database/recordsets.h"
#include "platform/database/sqlite/sqlite_connection.h"
#include "tests/support/fake_host.h"
#include "tests/support/fake_platform.h"
#include "tests/support/test_folder.h"

namespace Ombrey::Essais {

/// The sample cooperative, made once for the program. Nothing of it needs to outlive a failure of the machine.
inline std::shared_ptr<ConnexionSqlite> Coopérative() {
  static const DossierEssai Dossier;
  static const std::shared_ptr<ConnexionSqlite> Connexion = [] {
    Tarvel::CréerBase(Dossier.Chemin() / "b", true);
    auto Ouverte = ConnexionSqlite::Ouvrir(Dossier.Chemin() / "b", [] { return 46287.5; });
    Ouverte->ExécuterTout("PRAGMA synchronous = OFF; PRAGMA locking_mode = EXCLUSIVE");
    return Ouverte;
  }();
  return Connexion;
}

struct Station {
  Station() {
    Hôte->Base = std::make_shared<BaseLue>(Coopérative());
    Hôte->Cépages = "Syrah";
    État.BaseDeD = Hôte;
  }

  FaussePlateforme Plateforme;
  FauxSystème& Système = Plateforme.LeSystème;
  FaussesFenêtres& Fenêtres = Plateforme.LesFenêtres;
  FauxCanal Canal;
  std::shared_ptr<FausseBaseDeD> Hôte = std::make_shared<FausseBaseDeD>();
  ÉtatPartagé État{Plateforme, Canal};
  VérificationExploitation Exploitations{État};
  MiseEnFormeImport MiseEnForme{État};
  TraitementTrame Traitement{État, Exploitations, MiseEnForme};
};

}  // namespace Ombrey::Essais
