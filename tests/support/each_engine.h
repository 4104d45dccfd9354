// The engines that keep a cooperative's database, for tests that run on each of them.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/support/server.h"
#include "tests/support/test_folder.h"

namespace Ombrey::Essais {

enum class Moteur { Sqlite, Postgresql };

/// A name for a new base of the engine; empty where the engine isn't installed.
inline std::string NouvelleBase(Moteur Sien, const DossierEssai& Dossier) {
  if (Sien == Moteur::Postgresql) return ServeurDEssai::Lui() ? ServeurDEssai::Lui()->NouvelleBase() : "";
  std::filesystem::path Libre = Dossier.Chemin() / "coopé.db";
  for (int Rang = 2; exists(Libre); ++Rang) Libre.replace_filename("coopé" + std::to_string(Rang) + ".db");
  return Libre;
}

inline std::string NomMoteur(const testing::TestParamInfo<Moteur>& Un) {
  return Un.param == Moteur::Sqlite ? "Sqlite" : "Postgresql";
}

// NOLINTNEXTLINE(cppcoreguidelines-macro-usage)
#define SUR_CHAQUE_MOTEUR(Suite)                                                                                \
  INSTANTIATE_TEST_SUITE_P(Moteurs, Suite,                                                                      \
                           testing::Values(Ombrey::Essais::Moteur::Sqlite, Ombrey::Essais::Moteur::Postgresql), \
                           Ombrey::Essais::NomMoteur)

}  // namespace Ombrey::Essais
