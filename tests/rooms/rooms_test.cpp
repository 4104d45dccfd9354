// The walls of the house: what each room may include.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <string>

#include "contracts/host.h"

namespace {

const std::filesystem::path Source = SOURCE_DIR;

struct Mur {
  const char* Fichiers;  ///< here and below a regular expression; the first row that fits a file counts
  const char* Salles;    ///< folders below the root whose headers it may include
  const char* Système;   ///< headers of the machine that it may include
};

constexpr const char* Norme = "[a-z_]+";  // those of systems and toolkits have a folder, ".h" or a capital
constexpr const char* Posix = "(?!sqlite3|libpq|Q[A-Z]|Qt).*";  // anything but the database's and the windows' own
constexpr const char* Dessous = "src/(contracts|base)|platform/.*";

// clang-format off
constexpr Mur Murs[] = {
    {"src/contracts/.*", "src/contracts", Norme},
    {"src/base/.*", "src/(contracts|base)", Norme},
    {"src/common/.*", "src/(contracts|base|common)", Norme},
    {"src/link/.*", "src/(contracts|base|common|link)", Norme},
    {"src/monitor/.*", "src/(contracts|base|common|monitor)", Norme},
    {"src/import/.*", "src/(contracts|base|common|link|monitor|import)", Norme},
    {"src/quotas/.*", "src/(contracts|base|common|link|monitor|quotas)", Norme},
    {"src/transfer/.*", "src/(contracts|base|common|link|monitor|transfer)", Norme},
    {"src/core/.*", "src/.*", Norme},
    {"platform/qt/.*", Dessous, "(?!sqlite3|libpq).*"},
    {"platform/database/sqlite/.*", Dessous, "(?!libpq|Q[A-Z]|Qt).*"},
    {"platform/database/postgresql/.*", Dessous, "(?!sqlite3|Q[A-Z]|Qt).*"},
    {"platform/.*", Dessous, Posix},
    {"host/windows/.*", "src/(contracts|base)|platform/.*|host(/windows)?", "(?!sqlite3|libpq).*"},
    {"host/.*", "src/(contracts|base)|platform/.*|host", Posix},
    {"terminal/.*", "terminal", Posix}};
// clang-format on

bool Convient(const std::string& Texte, const char* Forme) { return std::regex_match(Texte, std::regex(Forme)); }

/// The folder that a quoted include stands in.
std::string SalleDe(const std::string& Entête) {
  const std::string Dossier = std::filesystem::path(Entête).parent_path().string();
  return Convient(Dossier, "(platform|host|terminal|tests)(/.*)?") ? Dossier : "src/" + Dossier;
}

using Appuis = std::map<std::string, std::set<std::string>>;  ///< who includes whom

/// What goes round in a circle, or leans on one; empty when nothing does.
std::string Circuit(Appuis Reste) {
  const auto Libre = [&](const auto& Un) {
    return std::ranges::none_of(Un.second,
                                [&](const auto& Autre) { return Autre != Un.first && Reste.contains(Autre); });
  };
  for (auto Un = Reste.begin(); (Un = std::ranges::find_if(Reste, Libre)) != Reste.end();) Reste.erase(Un);
  std::string Noms;
  for (const auto& Un : Reste) Noms += Un.first + " ";
  return Noms;
}

TEST(Rooms, IncludeOnlyWhatStandsBelowThemAndNothingInACircle) {
  static const std::regex Forme(R"(^\s*#\s*include\s*([<"])([^>"]+)[>"])");
  int Jugées = 0;
  Appuis Fichiers;
  Appuis Salles;
  for (const char* Dossier : {"src", "platform", "host", "terminal"}) {
    for (const auto& Entrée : std::filesystem::recursive_directory_iterator(Source / Dossier)) {
      const std::string Fichier = Entrée.path().lexically_relative(Source).string();
      if (!Convient(Fichier, ".*\\.(h|cpp)")) continue;
      const auto* const Sien =
          std::find_if(std::begin(Murs), std::end(Murs), [&](const Mur& M) { return Convient(Fichier, M.Fichiers); });
      ASSERT_NE(Sien, std::end(Murs)) << Fichier << " stands in no room";
      std::ifstream Flux(Entrée.path());
      for (std::string Ligne; std::getline(Flux, Ligne);) {
        std::smatch Parties;
        if (!std::regex_search(Ligne, Parties, Forme)) continue;
        ++Jugées;
        const bool Nôtre = Parties[1] == "\"";
        const std::string Nom = Parties[2];
        EXPECT_TRUE(Convient(Nôtre ? SalleDe(Nom) : Nom, Nôtre ? Sien->Salles : Sien->Système))
            << Fichier << " includes " << Nom;
        if (!Nôtre) continue;
        Fichiers[Fichier].insert((SalleDe(Nom) / std::filesystem::path(Nom).filename()).string());
        Salles[Entrée.path().parent_path().lexically_relative(Source).string()].insert(SalleDe(Nom));
      }
    }
  }
  EXPECT_GT(Jugées, 500) << "the search found nothing to judge";
  EXPECT_EQ(Circuit(Fichiers), "");
  EXPECT_EQ(Circuit(Salles), "");
}

/// A document that sends its reader to a file that has moved is worse than none.
TEST(Documents, NameFilesThatAreThere) {
  static const std::regex Nom(
      R"([`(]((\.\./)?(src|platform|host|terminal|tests|bench|docs|packaging|images)/[\w./-]+)[`)])");
  int Nommés = 0;
  for (const char* Dossier : {".", "docs", "src/contracts"}) {
    for (const auto& Entrée : std::filesystem::directory_iterator(Source / Dossier)) {
      if (Entrée.path().extension() != ".md") continue;
      std::ifstream Flux(Entrée.path());
      const std::string Texte{std::istreambuf_iterator<char>(Flux), {}};
      for (std::sregex_iterator Trouvé(Texte.begin(), Texte.end(), Nom), Fin; Trouvé != Fin; ++Trouvé, ++Nommés) {
        const std::string Cible = (*Trouvé)[1];
        const bool Là = exists(Source / Cible) || exists(Entrée.path().parent_path() / Cible);
        EXPECT_TRUE(Là) << Entrée.path() << " names " << Cible;
      }
    }
  }
  EXPECT_GT(Nommés, 100) << "the search found nothing to judge";
}

/// Whatever else it showed could take the place of the host's own.
TEST(PlugInLibrary, ShowsItsFactoryAndNothingElse) {
  FILE* const Symboles = popen("nm -D --defined-only " BIN_DIR "/PlgInOmbrey.so | cut -d' ' -f2-", "r");
  ASSERT_NE(Symboles, nullptr);
  std::string Lus(200, '\0');
  Lus.resize(std::fread(Lus.data(), 1, Lus.size(), Symboles));
  EXPECT_EQ(pclose(Symboles), 0);
  EXPECT_EQ(Lus, "T " + (Ombrey::NomFabrique + std::to_string(Ombrey::VersionContrat)) + "\n");
}

}  // namespace
