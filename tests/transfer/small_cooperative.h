// A cooperative's database in a temporary file, for tests of the rooms that read it.
#pragma once

#include <gtest/gtest.h>

#include "platform/database/recordsets.h"
#include "platform/database/sqlite/sqlite_connection.h"
#include "tests/support/fake_platform.h"
#include "tests/support/test_folder.h"

namespace Ombrey::Essais {

/// The tables, empty. Today is 22 September 2026.
struct PetiteCoopérative {
  PetiteCoopérative() {
    Connexion->ExécuterTout(
        "CREATE TABLE Coopérateur(IdCoopérateur TEXT, Nom TEXT, Prénom TEXT);"
        "CREATE TABLE Métayage(IdMétayage TEXT, Propriétaire TEXT, Récoltant TEXT, Part REAL, CodeBadge TEXT,"
        " IdGrp TEXT); CREATE TABLE Sélection(IdSélection TEXT, Désignation TEXT, QuotasSurface REAL);"
        "CREATE TABLE Qualité(IdQualité TEXT, Désignation TEXT); CREATE TABLE Groupement(IdGrp TEXT, Nom TEXT);"
        "CREATE TABLE QuotasGrp(IdGrp TEXT, Sélection TEXT, QuotaJournalier REAL);"
        "CREATE TABLE MSysEtats(Titre TEXT, Exportation INTEGER, LongChps TEXT, Format TEXT);"
        "CREATE TABLE Chargement(CodeSite TEXT, NoChargement INTEGER, DateCh REAL, Métayage TEXT, Sélection TEXT,"
        " Qualité TEXT, Degré REAL, Masse REAL, Synchronisé INTEGER, IdChargement INTEGER);");
  }
  DossierEssai Dossier;
  std::shared_ptr<ConnexionSqlite> Connexion = ConnexionSqlite::Créer(Dossier.Chemin() / "b", [] { return 46287.5; });
  std::shared_ptr<IDatabase> Base = std::make_shared<BaseLue>(Connexion);
};

/// A plug-in's rooms on such a database.
struct AvecCoopérative : testing::Test, Salles {
  AvecCoopérative() { Hôte->Base = Coopérative.Base; }
  void Exécuter(Mot Script) { Coopérative.Connexion->ExécuterTout(Script); }

  PetiteCoopérative Coopérative;
};

}  // namespace Ombrey::Essais
