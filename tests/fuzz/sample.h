// The sample cooperative of the targets.
#pragma once

#include "host/schema.h"
#include "platform/database/recordsets.h"
#include "platform/database/sqlite/sqlite_connection.h"
#include "tests/support/fake_platform.h"
#include "tests/support/test_folder.h"

namespace Ombrey::Essais {

/// Made once for the program. Nothing of it needs to outlive a failure of the machine.
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

}  // namespace Ombrey::Essais
