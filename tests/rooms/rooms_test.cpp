// The walls of the house: what each room may include.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <string>

namespace {

const std::filesystem::path Source = SOURCE_DIR;

struct Inclusion {
  std::string Fichier;
  std::string Salle;  ///< folder of the file below the root, such as "src/link"
  std::string Entête;
  bool EntreGuillemets;
};

std::vector<Inclusion> Inclusions(const std::string& Dossier) {
  static const std::regex Forme(R"(^\s*#\s*include\s*([<"])([^>"]+)[>"])");
  std::vector<Inclusion> Toutes;
  for (const auto& Entrée : std::filesystem::recursive_directory_iterator(Source / Dossier)) {
    const auto Extension = Entrée.path().extension();
    if (Extension != ".h" && Extension != ".cpp") continue;
    std::ifstream Flux(Entrée.path());
    const auto Relatif = Entrée.path().lexically_relative(Source);
    for (std::string Ligne; std::getline(Flux, Ligne);) {
      std::smatch Parties;
      if (!std::regex_search(Ligne, Parties, Forme)) continue;
      Toutes.push_back({Relatif.string(), Relatif.parent_path().string(), Parties[2], Parties[1] == "\""});
    }
  }
  return Toutes;
}

/// The room that a quoted include stands in.
std::string SalleDe(const std::string& Entête) {
  const std::string Dossier = std::filesystem::path(Entête).parent_path().string();
  const bool DansLaRacine = Dossier.starts_with("platform") || Dossier.starts_with("host") ||
                            Dossier.starts_with("terminal") || Dossier.starts_with("tests");
  return DansLaRacine ? Dossier : "src/" + Dossier;
}

TEST(Rooms, PlugInNeedsTheStandardLibraryAlone) {
  // clang-format off
  const std::set<std::string> Norme = {
      "algorithm", "array", "atomic", "bit", "bitset", "cctype", "cerrno", "charconv", "chrono", "climits", "cmath",
      "compare", "concepts", "cstddef", "cstdint", "cstdlib", "cstring", "ctime", "deque", "exception", "filesystem",
      "fstream", "functional", "initializer_list", "iomanip", "ios", "iosfwd", "iostream", "istream", "iterator",
      "limits", "list", "locale", "map", "memory", "numeric", "optional", "ostream", "queue", "random", "ranges",
      "ratio", "regex", "set", "span", "sstream", "stack", "stdexcept", "string", "string_view", "system_error",
      "tuple", "type_traits", "typeinfo", "unordered_map", "unordered_set", "utility", "variant", "vector"};
  // clang-format on
  const auto Toutes = Inclusions("src");
  ASSERT_GT(Toutes.size(), 100U) << "the search found nothing to judge";
  for (const Inclusion& I : Toutes) {
    EXPECT_TRUE(I.EntreGuillemets || Norme.contains(I.Entête)) << I.Fichier << " includes <" << I.Entête << ">";
  }
}

TEST(Rooms, NoIncludeRunsUpTheFloors) {
  const std::map<std::string, int> Étages{{"src/contracts", 1}, {"src/common", 2}, {"src/link", 3},
                                          {"src/monitor", 3},   {"src/import", 4}, {"src/quotas", 4},
                                          {"src/transfer", 4},  {"src/core", 5}};
  for (const Inclusion& I : Inclusions("src")) {
    if (!I.EntreGuillemets) continue;
    const std::string Cible = SalleDe(I.Entête);
    ASSERT_TRUE(Étages.contains(Cible)) << I.Fichier << " includes " << I.Entête;
    EXPECT_TRUE(Cible == I.Salle || Étages.at(Cible) < Étages.at(I.Salle)) << I.Fichier << " includes " << I.Entête;
  }
}

TEST(Rooms, ThoseBesideThePlugInKeepToTheirs) {
  for (const std::string Dossier : {"platform", "host", "terminal"}) {
    for (const Inclusion& I : Inclusions(Dossier)) {
      const bool Qt = I.Salle == "platform/qt" || I.Fichier == "host/main_qt.cpp";  // the windows, and who opens them
      if (!I.EntreGuillemets) {
        EXPECT_TRUE(Qt || !std::regex_search(I.Entête, std::regex("^Q[A-Z]|^Qt"))) << I.Fichier << ": " << I.Entête;
        EXPECT_TRUE(!I.Entête.starts_with("sqlite3") || I.Salle == "platform/database") << I.Fichier;
        continue;
      }
      const std::string Cible = SalleDe(I.Entête);
      if (Dossier == "terminal") {
        EXPECT_EQ(Cible, "terminal") << I.Fichier << " includes " << I.Entête;
      } else if (Cible.starts_with("src/")) {
        EXPECT_TRUE(Cible == "src/contracts" || Cible == "src/common") << I.Fichier << " includes " << I.Entête;
      } else {
        EXPECT_TRUE(Dossier == "host" || Cible.starts_with("platform")) << I.Fichier << " includes " << I.Entête;
      }
    }
  }
}

}  // namespace
