// Files, checked step by step.
#include "common/files.h"

#include <cerrno>
#include <fstream>
#include <system_error>

#include "common/failures.h"
#include "common/system_error.h"

namespace Ombrey {
namespace {

ErreurExécution Échec(const char* Quoi, const std::filesystem::path& Fichier, const std::error_code& Code) {
  return ErreurExécution(Quoi + TexteChemin(Fichier) + " : " + TexteErreurSystème(Code.value()));
}

}  // namespace

std::filesystem::path Chemin(std::string_view Texte) { return {std::u8string(Texte.begin(), Texte.end())}; }

std::string TexteChemin(const std::filesystem::path& Fichier) {
  const std::u8string Texte = Fichier.u8string();
  return {Texte.begin(), Texte.end()};
}

void CréerDossier(const std::filesystem::path& Dossier) {
  std::filesystem::path Niveau;
  for (const auto& Élément : Dossier) {
    Niveau /= Élément;
    std::error_code Code;
    const bool Créé = std::filesystem::create_directory(Niveau, Code);
    if (Créé) std::filesystem::permissions(Niveau, std::filesystem::perms::owner_all, Code);
    if (Code) throw Échec("Impossible de créer le dossier ", Niveau, Code);
  }
}

void EcrireFichier(const std::filesystem::path& Fichier, std::string_view Octets) {
  errno = 0;
  std::ofstream Flux(Fichier, std::ios::binary | std::ios::trunc);
  Flux.write(Octets.data(), static_cast<std::streamsize>(Octets.size()));
  Flux.close();
  if (Flux.fail())
    throw Échec("Impossible d'écrire le fichier ", Fichier, std::error_code(errno, std::generic_category()));
}

void DéplacerFichier(const std::filesystem::path& De, const std::filesystem::path& Vers) {
  if (std::filesystem::exists(Vers)) throw ErreurExécution("Le fichier existe déjà : " + TexteChemin(Vers));
  std::error_code Code;
  std::filesystem::rename(De, Vers, Code);
  if (Code) throw Échec("Impossible de déplacer le fichier ", De, Code);
}

}  // namespace Ombrey
