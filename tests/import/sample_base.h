// A cooperative of one pair, one holding and one layout, in a real database of its own.
#pragma once

#include <filesystem>
#include <memory>
#include <random>
#include <string>

#include "platform/database/sqlite_connection.h"
#include "platform/database/sqlite_engine.h"

namespace Ombrey::Essais {

class PetiteBase {
 public:
  PetiteBase()
      : Fichier_(std::filesystem::temp_directory_path() / ("ombrey-" + std::to_string(std::random_device{}()) + ".db")),
        Connexion_(ConnexionSqlite::Créer(Fichier_)) {
    Connexion_->ExécuterTout(
        "CREATE TABLE Coopérateur (IdCoopérateur TEXT PRIMARY KEY, Nom TEXT, Prénom TEXT);"
        "CREATE TABLE Métayage (IdMétayage TEXT PRIMARY KEY, Propriétaire TEXT, Récoltant TEXT, Part REAL,"
        " CodeBadge INTEGER, IdGrp TEXT);"
        "CREATE TABLE Chargement (CodeSite TEXT, NoChargement INTEGER, Métayage TEXT, Sélection TEXT);"
        "CREATE TABLE MSysEtats (Titre TEXT, Exportation INTEGER, LongChps TEXT, Format TEXT);"
        "INSERT INTO Coopérateur VALUES ('00123','Aubry','Zoé'),('456','Bost','Guy');"
        "INSERT INTO Métayage VALUES ('5001','0123','456',33.3333,10,'007'),('5002','1','1',100,11,NULL);"
        "INSERT INTO MSysEtats VALUES ('Synchronisation des chargements',-1,'Masse','|'),"
        " ('Synchronisation des chargements',0,replace(replace("
        "'CodeSite,x/NoChargement,N,4/DateCh/DateSortie/Métayage/Cépage/Sélection/Qualité/Degré/NoQuai/Masse/Cuve/"
        "Operateur/InfoChargnt3/Inconnue', '/', char(13)), ',', char(9)), ';');");
  }
  ~PetiteBase() {
    Connexion_.reset();
    std::error_code Ignorée;
    for (const char* Suite : {"", "-wal", "-shm"}) std::filesystem::remove(Fichier_.string() + Suite, Ignorée);
  }
  PetiteBase(const PetiteBase&) = delete;
  PetiteBase& operator=(const PetiteBase&) = delete;

  [[nodiscard]] std::shared_ptr<IDatabase> Ouvrir() { return std::make_shared<BaseSqlite>(Connexion_); }
  void Exécuter(const std::string& Sql) { Connexion_->ExécuterTout(Sql); }

 private:
  std::filesystem::path Fichier_;
  std::shared_ptr<ConnexionSqlite> Connexion_;
};

}  // namespace Ombrey::Essais
