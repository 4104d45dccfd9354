// A cooperative's database in a temporary file, for tests of the rooms that read it.
#pragma once

#include <filesystem>
#include <memory>
#include <random>
#include <string>

#include "common/regional_forms.h"
#include "platform/database/sqlite_connection.h"
#include "platform/database/sqlite_engine.h"

namespace Ombrey::Essais {

/// The tables, empty. Today is 22 September 2026.
class PetiteCoopérative {
 public:
  PetiteCoopérative() {
    std::filesystem::create_directory(Dossier_);
    Connexion = ConnexionSqlite::Créer(Dossier_ / "base.db", [] { return NuméroDeJour({2026, 9, 22, 12, 0, 0}); });
    Connexion->ExécuterTout(
        "CREATE TABLE Coopérateur(IdCoopérateur TEXT, Nom TEXT, Prénom TEXT);"
        "CREATE TABLE Métayage(IdMétayage TEXT, Propriétaire TEXT, Récoltant TEXT, Part REAL, CodeBadge TEXT,"
        " IdGrp TEXT);"
        "CREATE TABLE Sélection(IdSélection TEXT, Désignation TEXT, QuotasSurface REAL);"
        "CREATE TABLE Qualité(IdQualité TEXT, Désignation TEXT);"
        "CREATE TABLE Groupement(IdGrp TEXT, Nom TEXT);"
        "CREATE TABLE QuotasGrp(IdGrp TEXT, Sélection TEXT, QuotaJournalier REAL);"
        "CREATE TABLE Chargement(CodeSite TEXT, NoChargement INTEGER, DateCh REAL, Métayage TEXT, Sélection TEXT,"
        " Qualité TEXT, Degré REAL, Masse REAL, Synchronisé INTEGER);");
    Base = std::make_shared<BaseSqlite>(Connexion);
  }
  PetiteCoopérative(const PetiteCoopérative&) = delete;
  PetiteCoopérative& operator=(const PetiteCoopérative&) = delete;
  ~PetiteCoopérative() {
    Base.reset();
    Connexion.reset();
    std::error_code Ignorée;
    std::filesystem::remove_all(Dossier_, Ignorée);
  }

  std::shared_ptr<ConnexionSqlite> Connexion;
  std::shared_ptr<IDatabase> Base;

 private:
  std::filesystem::path Dossier_ =
      std::filesystem::temp_directory_path() / ("cooperative-" + std::to_string(std::random_device{}()));
};

}  // namespace Ombrey::Essais
