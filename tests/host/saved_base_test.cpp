// A copy of the base that goes back.
#include "host/saved_base.h"

#include <fstream>

#include "tests/host/cooperative_fixture.h"

namespace Tarvel {
namespace {

TEST_F(Coopérative, ASavedBaseGoesBackAndTheFormerOneIsKept) {
  const auto Copie = Dossier_ / "copie.db";
  ASSERT_EQ(Importer(Ligne("12")), "");
  static_cast<void>(SauvegarderBase(Fichier_, Copie));
  ASSERT_EQ(Importer(Ligne("13")), "");
  EXPECT_THROW(static_cast<void>(RestaurerBase(Fichier_, Copie)), Ombrey::ErreurExécution) << "a station works on it";

  Base_.reset();
  Connexion_.reset();
  EXPECT_THROW(static_cast<void>(RestaurerBase(Fichier_, Fichier_)), Ombrey::ErreurExécution);
  static_cast<void>(RestaurerBase(Fichier_, Copie));
  std::ofstream(Copie) << "no base any more";
  EXPECT_THROW(static_cast<void>(RestaurerBase(Fichier_, Copie)), Ombrey::ErreurExécution);
  for (const auto& [Base, Attendus] : {std::pair("coopé.db", "1"), std::pair("coopé.db.remplacee", "2")}) {
    Connexion_ = Ombrey::ConnexionSqlite::Ouvrir(Dossier_ / Base);
    EXPECT_EQ(Lire("SELECT count(*) FROM Chargement"), Attendus) << Base;
  }
}

}  // namespace
}  // namespace Tarvel
