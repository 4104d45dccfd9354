// A working folder belongs to one running station.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "platform/loop/descriptor.h"

namespace Ombrey {

/// Holds a file, which it makes when there is none, until the object or its process goes, however that ends.
class VerrouFichier {
 public:
  /// Raises ErreurExécution when it is held, with Occupé, the process that holds it and Remède, or when it can't be
  /// locked, with Impossible. A folder where this process can write nothing needs no lock.
  VerrouFichier(const std::filesystem::path& Fichier, const std::string& Occupé, const std::string& Impossible,
                const std::string& Remède);

 private:
  Descripteur Fichier_;
};

/// Holds a folder.
class VerrouDossier {
 public:
  /// Raises ErreurExécution, with the folder and the process that holds it, when it is held, or when this folder
  /// can't be locked. A folder where this process can write nothing needs no lock.
  explicit VerrouDossier(const std::filesystem::path& Dossier);

 private:
  VerrouFichier Fichier_;
};

/// This machine's name on its network.
[[nodiscard]] std::string NomMachine();

/// The process that holds the folder, such as "tarvel, processus 4711"; none when it can be had.
[[nodiscard]] std::optional<std::string> OccupantDossier(const std::filesystem::path& Dossier);

}  // namespace Ombrey
