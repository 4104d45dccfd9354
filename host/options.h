// The station's command line.
#pragma once

#include <chrono>
#include <filesystem>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>

namespace Tarvel {

/// A command line that can't be followed; what() says why, for the operator.
class ErreurOptions : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

enum class Tâche { Station, CréerBase, Aide, Version };

struct Options {
  Tâche QueFaire = Tâche::Station;
  std::filesystem::path Base;     ///< the cooperative's database, to open or to create
  std::filesystem::path Ini;      ///< settings file; it may be missing
  std::filesystem::path Dossier;  ///< working folder; the database's own unless given
  std::filesystem::path Greffon;  ///< the plug-in's library; empty: the one beside the program
  bool Console = false;
  bool SansOpérateur = false;
  bool Exemple = false;
  std::optional<std::chrono::seconds> Durée;
};

/// Reads the arguments behind the program's name. Raises ErreurOptions.
[[nodiscard]] Options LireOptions(std::span<const std::string> Arguments);

[[nodiscard]] std::string TexteAide();
[[nodiscard]] std::string TexteVersion();

}  // namespace Tarvel
