// A working folder belongs to one running station.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "platform/loop/descriptor.h"

namespace Ombrey {

/// Of a working folder: where its station writes the files that it imports.
inline constexpr const char* DossierImport = "import";

/// Holds a file, which it makes when there is none, until the object or its process goes, however that ends.
class VerrouFichier {
 public:
  /// Raises ErreurExécution when it is held, with Occupé, the process that holds it and Remède, or when it can't be
  /// locked, with Impossible. A folder where this process can write nothing needs no lock.
  VerrouFichier(const std::filesystem::path& Fichier, const std::string& Occupé, const std::string& Impossible,
                const std::string& Remède);
  /// False where no lock was needed.
  [[nodiscard]] bool EstTenu() const { return Fichier_.EstOuvert(); }

 private:
  Descripteur Fichier_;
};

/// Holds a working folder, by a file in it and by its import folder itself: two stations that may write there never
/// work side by side, though one of them, or both, may write nothing beside. Makes both folders when they are missing.
class VerrouDossier {
 public:
  /// Raises ErreurExécution, with the folder and the process that holds it, when it is held or can't be locked, or when
  /// this process can write no import file there: it could take no load, and who may write can change while it works.
  explicit VerrouDossier(const std::filesystem::path& Dossier);

 private:
  VerrouFichier Fichier_;
  Descripteur Imports_;
};

/// This machine's name on its network.
[[nodiscard]] std::string NomMachine();

/// The process that holds the folder, such as "tarvel, processus 4711"; none when it can be had.
[[nodiscard]] std::optional<std::string> OccupantDossier(const std::filesystem::path& Dossier);

}  // namespace Ombrey
