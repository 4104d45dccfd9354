// The import's rooms on a small cooperative.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "import/frame_processing.h"
#include "tests/import/sample_base.h"
#include "tests/support/fake_host.h"
#include "tests/support/fake_platform.h"

namespace Ombrey::Essais {

class EssaiImport : public ::testing::Test {
 protected:
  EssaiImport() {
    Hôte->Base = Petite.Ouvrir();
    État.BaseDeD = Hôte;
    InitConstantes(État);
  }
  [[nodiscard]] std::vector<std::string> TextesDesBoîtes() const {
    std::vector<std::string> Textes;
    for (const BoîteMontrée& B : Plateforme.LesFenêtres.Boîtes) Textes.push_back(B.Titre + " | " + B.Texte);
    return Textes;
  }

  FaussePlateforme Plateforme;
  FauxCanal Canal;
  PetiteBase Petite;
  std::shared_ptr<FausseBaseDeD> Hôte = std::make_shared<FausseBaseDeD>();
  ÉtatPlugIn État{Plateforme, Canal};
  VérificationExploitation Exploitations{État};
  MiseEnFormeImport MiseEnForme{État};
  TraitementTrame Traitement{État, Exploitations, MiseEnForme};
};

}  // namespace Ombrey::Essais
