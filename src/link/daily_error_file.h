// The daily error file: one text file a calendar day in the folder "données" beside the application.
#pragma once

#include <filesystem>
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

/// Today's error file in one dialogue. A file that couldn't be opened takes no line and says nothing.
class FichierErreurs {
 public:
  /// Makes a missing file. Raises nothing.
  explicit FichierErreurs(std::filesystem::path Fichier);
  /// Appends one line, on the disk's side of the program when the call returns. The file is opened for each: while
  /// the dialogue waits, the end of the plug-in may have cleaned it away, or somebody its folder. Raises
  /// ErreurExécution when it can't be written.
  void Ajouter(const std::string& Ligne);

 private:
  std::filesystem::path Fichier_;
  bool Ouvrable_;
};

}  // namespace Ombrey
