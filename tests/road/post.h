// A reception post of its own: a folder with a sample cooperative and settings, and what to look up in it afterwards.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "common/regional_forms.h"
#include "host/schema.h"
#include "platform/database/sqlite_connection.h"
#include "tests/road/program.h"

namespace Ombrey::Essais {

/// A load that the sample cooperative knows: number, owner 123 and harvester 456, 1234 kg.
inline std::string Enregistrement(int Numéro) {
  char Texte[64];
  std::snprintf(Texte, sizeof Texte, "%04d220926083009150001230004560071000000050112521234007", Numéro);
  return Texte;
}

class Poste {
 public:
  Poste() {
    std::string Modèle = (std::filesystem::temp_directory_path() / "ombrey-road-XXXXXX").string();
    Dossier_ = mkdtemp(Modèle.data());
    // The station keeps its settings of the user here, not in the home of whoever runs the tests.
    setenv("XDG_CONFIG_HOME", Dossier_.c_str(), 1);
    static const std::filesystem::path Modèles = [] {
      auto Fichier = std::filesystem::temp_directory_path() / ("ombrey-road-model-" + std::to_string(getpid()) + ".db");
      std::filesystem::remove(Fichier);
      Tarvel::CréerBase(Fichier, true);
      std::atexit([] {
        std::error_code Sans;
        std::filesystem::remove(
            std::filesystem::temp_directory_path() / ("ombrey-road-model-" + std::to_string(getpid()) + ".db"), Sans);
      });
      return Fichier;
    }();
    std::filesystem::copy_file(Modèles, Base());
    Régler(Lien());
  }
  Poste(const Poste&) = delete;
  Poste& operator=(const Poste&) = delete;
  ~Poste() {
    std::error_code Sans;
    std::filesystem::remove_all(Dossier_, Sans);
  }

  [[nodiscard]] std::string En(const std::string& Nom) const { return (Dossier_ / Nom).string(); }
  [[nodiscard]] std::string Base() const { return En("cave.db"); }
  [[nodiscard]] std::string Ini() const { return En("tarvel.ini"); }
  [[nodiscard]] std::string Lien() const { return En("ligne"); }
  [[nodiscard]] std::string Lu(const std::string& Nom) const {
    std::ifstream Flux(En(Nom), std::ios::binary);
    return {std::istreambuf_iterator<char>(Flux), {}};
  }
  void Écrire(const std::string& Nom, const std::string& Texte) const {
    std::ofstream(En(Nom), std::ios::binary) << Texte;
  }
  void Régler(const std::string& Port, int Période = 20) const {
    Écrire("tarvel.ini", "[PlugInOmbrey]\nPort=" + Port +
                             "\nBauds=9600\nParité=aucune\nBitsStop=1\nTailleMots=8\nPériode interrogation=" +
                             std::to_string(Période) + "\n");
  }

  std::unique_ptr<Programme> Station(const std::vector<std::string>& Plus = {"--sans-operateur"},
                                     const std::function<void()>& Avant = {}) const {
    std::vector<std::string> Arguments{"--base", Base(), "--ini", Ini(), "--dossier", En("poste"), "--console"};
    Arguments.insert(Arguments.end(), Plus.begin(), Plus.end());
    return std::make_unique<Programme>("tarvel", Arguments, Avant);
  }
  std::unique_ptr<Programme> Terminal(std::vector<std::string> Plus) const {
    Plus.insert(Plus.end(), {"--lien", Lien(), "--sortie", En("recu")});
    auto Lancé = std::make_unique<Programme>("rg80", Plus);
    EXPECT_TRUE(Lancé->Attendre("ligne : ")) << Lancé->Dit();
    return Lancé;
  }

  /// First value of a query on the database, as it is now on the disk.
  [[nodiscard]] std::string Valeur(const std::string& Sql) const {
    return TexteOuVide(ConnexionSqlite::Ouvrir(Base())->Lire(Sql), Régional{});
  }
  /// Rows, distinct numbers and archived rows: "8 8 0" for eight loads, each once.
  [[nodiscard]] std::string Rentrés() const {
    return Valeur(
        "SELECT count(*) || ' ' || count(DISTINCT NoChargement) || ' ' || (SELECT count(*) FROM ChargementArchive)"
        " FROM Chargement");
  }

 private:
  std::filesystem::path Dossier_;
};

}  // namespace Ombrey::Essais
