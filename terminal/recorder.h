// Where the terminal's doings go: the line, the journal, standard output and the folder of what was received.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "terminal/engine.h"

namespace Rg80 {

/// Writes at once whatever happens, so that a killed run leaves nothing out. Bytes for the line gather in
/// `ÀÉmettre`, which the loop empties.
class Greffier : public ISuite {
 public:
  /// Empty texts: no journal, no folder. Creates the folder when missing, for its owner alone; the journal is begun
  /// anew. Raises ErreurDemande.
  Greffier(const std::string& Journal, const std::string& Sortie);

  void Émettre(std::string_view Octets) override { ÀÉmettre_ += Octets; }
  void Consigner(Sens Direction, std::string_view Octets) override;
  void Annoncer(const std::string& Texte) override;
  bool GarderRéponse(std::string_view Texte) override;
  bool GarderFichier(char Code, std::string_view Texte) override;

  [[nodiscard]] std::string& ÀÉmettre() { return ÀÉmettre_; }

 private:
  bool Écrire(const std::filesystem::path& Fichier, std::ios::openmode Mode, std::string_view Texte);

  std::ofstream Journal_;
  std::filesystem::path Sortie_;
  std::string ÀÉmettre_;
};

}  // namespace Rg80
