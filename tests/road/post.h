// A reception post of its own: a folder with a sample cooperative and settings, its two programs, and what to look up
// in it afterwards.
#pragma once

#include <gtest/gtest.h>

#include "base/regional_forms.h"
#include "host/schema.h"
#include "platform/database/sqlite/sqlite_connection.h"
#include "tests/support/program.h"
#include "tests/support/test_folder.h"

namespace Ombrey::Essais {

/// A load that the sample cooperative knows (number 12, owner 123, harvester 456, 1234 kg), with another text at a
/// place.
inline std::string Enregistrement(std::size_t Place = 0, const std::string& Texte = "") {
  return std::string("0012220926083009150001230004560071000000050112521234007").replace(Place, Texte.size(), Texte);
}

struct Poste {
  Poste() {
    // The station keeps its settings of the user here, not in the home of whoever runs the tests.
    setenv("XDG_CONFIG_HOME", En("").c_str(), 1);
    static const DossierEssai Modèles;
    const auto Modèle = Modèles.Chemin() / "cave.db";
    if (!std::filesystem::exists(Modèle)) Tarvel::CréerBase(Modèle, true);
    std::filesystem::copy_file(Modèle, En("cave.db"));
    std::ofstream(En("tarvel.ini")) << "[PlugInOmbrey]\nPort=" << En("ligne") << "\nBauds=9600\nParité=aucune\n"
                                    << "BitsStop=1\nTailleMots=8\nPériode interrogation=20\n";
  }

  [[nodiscard]] std::string En(const std::string& Nom) const { return Dossier.Chemin() / Nom; }
  [[nodiscard]] std::shared_ptr<ConnexionSqlite> Base() const { return ConnexionSqlite::Ouvrir(En("cave.db")); }
  /// SQL on the database or, behind "$ ", a command of the shell in the folder.
  void Faire(const std::string& Acte) const {
    if (!Acte.starts_with("$ ")) return Base()->ExécuterTout(Acte);
    EXPECT_EQ(std::system(("cd " + En("") + " && " + Acte.substr(2)).c_str()), 0) << Acte;
  }
  /// First value of a query on the database, as it is now on the disk.
  [[nodiscard]] std::string Valeur(const std::string& Sql) const { return TexteOuVide(Base()->Lire(Sql), Régional{}); }
  /// Rows, distinct numbers and archived rows of a sound database: "8 8 0" for eight loads, each once.
  [[nodiscard]] std::string Rentrés() const {
    EXPECT_EQ(Valeur("PRAGMA integrity_check"), "ok");
    return Valeur(
        "SELECT count(*) || ' ' || count(DISTINCT NoChargement) || ' ' ||"
        " (SELECT count(*) FROM ChargementArchive) FROM Chargement");
  }

  void LancerStation(const std::string& Tapé = "interroger", const std::string& Plus = "--sans-operateur",
                     const std::string& Par = "exec ") {
    Station = std::make_unique<Programme>("cd " + En("") + " && " + Par + BIN_DIR + "/tarvel --base '" + NomBase +
                                          "' --ini tarvel.ini --dossier poste --console " + Plus);
    Station->Taper(Tapé);
  }
  void LancerTerminal(const std::string& Plus, const std::string& Sortie = "--sortie recu ") {
    Rg80 = std::make_unique<Programme>("cd " + En("") + " && exec " BIN_DIR "/rg80 --lien ligne " + Sortie + Plus);
    EXPECT_TRUE(Rg80->Attendre("ligne : ")) << Rg80->Dit();
  }
  /// The terminal has ended by itself, the station does so by command.
  void Finir(const std::string& Attendus) const {
    EXPECT_EQ(Rg80->Fin(60s), 0) << Dit();
    Station->Taper("fin");
    EXPECT_EQ(Station->Fin(), 0) << Dit();
    EXPECT_EQ(Rentrés(), Attendus) << Dit();
  }
  [[nodiscard]] std::string Dit() const { return Station->Dit() + (Rg80 ? Rg80->Dit() : ""); }

  DossierEssai Dossier;  ///< outlives the programs
  std::string NomBase = "cave.db";
  std::unique_ptr<Programme> Rg80, Station;
};

}  // namespace Ombrey::Essais
