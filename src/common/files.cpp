// Files, checked step by step.
#include "common/files.h"

#include <fstream>
#include <system_error>

#include "common/failures.h"

namespace Ombrey {

std::filesystem::path Chemin(std::string_view Texte) { return {std::u8string(Texte.begin(), Texte.end())}; }

std::string TexteChemin(const std::filesystem::path& Fichier) {
  const std::u8string Texte = Fichier.u8string();
  return {Texte.begin(), Texte.end()};
}

void CréerDossier(const std::filesystem::path& Dossier) {
  std::error_code Code;
  if (std::filesystem::is_directory(Dossier, Code)) return;
  std::filesystem::create_directories(Dossier, Code);
  if (!Code) std::filesystem::permissions(Dossier, std::filesystem::perms::owner_all, Code);
  if (Code) throw ErreurExécution("Impossible de créer le dossier " + TexteChemin(Dossier) + " : " + Code.message());
}

void EcrireFichier(const std::filesystem::path& Fichier, std::string_view Octets) {
  std::ofstream Flux(Fichier, std::ios::binary | std::ios::trunc);
  Flux.write(Octets.data(), static_cast<std::streamsize>(Octets.size()));
  Flux.close();
  if (Flux.fail()) throw ErreurExécution("Impossible d'écrire le fichier " + TexteChemin(Fichier));
}

void DéplacerFichier(const std::filesystem::path& De, const std::filesystem::path& Vers) {
  if (std::filesystem::exists(Vers)) throw ErreurExécution("Le fichier existe déjà : " + TexteChemin(Vers));
  std::error_code Code;
  std::filesystem::rename(De, Vers, Code);
  if (Code) throw ErreurExécution("Impossible de déplacer le fichier " + TexteChemin(De) + " : " + Code.message());
}

}  // namespace Ombrey
