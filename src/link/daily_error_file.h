// The daily error file: one text file a calendar day in the folder "données" beside the application.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>

#include "contracts/system.h"

namespace Ombrey {

/// The folder that holds the error files; it need not exist yet.
[[nodiscard]] std::filesystem::path DossierErreurs(const ISystème& Système);
/// Path of today's file, "RG80 Err Import " with month and day.
[[nodiscard]] std::filesystem::path FichierErreursDuJour(const ISystème& Système);
/// Removes today's file when it holds nothing but blanks and line ends. Makes the folder when it is missing. Raises
/// ErreurExécution when the folder can't be made.
void NettoyerFichierErreurs(const ISystème& Système);

/// Today's error file, open for one dialogue. A file that can't be opened takes no line and says nothing.
class FichierErreurs {
 public:
  /// Opens for appending; a missing file is made. Raises nothing.
  explicit FichierErreurs(const std::filesystem::path& Fichier) : Flux_(Fichier, std::ios::binary | std::ios::app) {}
  [[nodiscard]] bool EstOuvert() const { return Flux_.is_open(); }
  /// Appends one line, flushed at once. Raises ErreurExécution when it can't be written.
  void Ajouter(const std::string& Ligne);
  void Fermer() { Flux_.close(); }

 private:
  std::ofstream Flux_;
};

}  // namespace Ombrey
