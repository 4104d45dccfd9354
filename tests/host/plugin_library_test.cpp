// The plug-in's library, loaded as the program loads it.
#include <gtest/gtest.h>

#include "host/plugin_loader.h"
#include "tests/support/fake_platform.h"

namespace Ombrey::Essais {

TEST(PlugInLibrary, AFailureInsideIsCaughtOutsideByItsType) {
  FaussePlateforme Plateforme;
  const auto Greffon = Tarvel::ChargerGreffon(BIN_DIR "/PlgInOmbrey.so", Plateforme);
  std::string Texte;
  EXPECT_TRUE(Greffon->IPlugInTarvel_AjouterMenu(3, Texte));
  EXPECT_THROW(Greffon->IPlugInTarvel_MenuAppelé(3, ""), ErreurExécution) << "not yet shown";
  EXPECT_EQ(Greffon->IPlugInTarvel_Terminer(), "");
}

}  // namespace Ombrey::Essais
