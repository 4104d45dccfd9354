// Files, checked step by step.
#include "base/files.h"

#include <cerrno>
#include <fstream>
#include <iterator>
#include <system_error>

#include "base/failures.h"
#include "base/system_error.h"

namespace Ombrey {
namespace {

ErreurExécution Échec(const char* Quoi, const std::filesystem::path& Fichier, const std::error_code& Code) {
  return ErreurExécution(Quoi + TexteChemin(Fichier) + " : " + TexteErreurSystème(Code.value()));
}

void Ecrire(const std::filesystem::path& Fichier, std::string_view Contenu, std::ios::openmode Mode) {
  errno = 0;
  std::ofstream Flux(Fichier, std::ios::binary | Mode);
  Flux.write(Contenu.data(), static_cast<std::streamsize>(Contenu.size()));
  Flux.close();
  if (Flux.fail()) {
    throw Échec("Impossible d'écrire le fichier ", Fichier, std::error_code(errno, std::generic_category()));
  }
}

}  // namespace

std::filesystem::path Chemin(std::string_view Texte) { return {std::u8string(Texte.begin(), Texte.end())}; }

std::string TexteChemin(const std::filesystem::path& Fichier) {
  const std::u8string Texte = Fichier.u8string();
  return {Texte.begin(), Texte.end()};
}

std::string ContenuOuVide(const std::filesystem::path& Fichier) {
  std::ifstream Flux(Fichier, std::ios::binary);
  return {std::istreambuf_iterator<char>(Flux), {}};
}

void CréerDossier(const std::filesystem::path& Dossier) {
  std::error_code Code;
  if (std::filesystem::is_directory(Dossier, Code)) return;
  std::filesystem::path Atteint;
  for (const auto& Élément : Dossier) {
    Atteint /= Élément;
    const bool Créé = std::filesystem::create_directory(Atteint, Code);
    if (Créé) std::filesystem::permissions(Atteint, std::filesystem::perms::owner_all, Code);
    if (Code) throw Échec("Impossible de créer le dossier ", Atteint, Code);
  }
}

void EcrireFichier(const std::filesystem::path& Fichier, std::string_view Contenu) {
  Ecrire(Fichier, Contenu, std::ios::trunc);
}

void AjouterAuFichier(const std::filesystem::path& Fichier, std::string_view Contenu) {
  Ecrire(Fichier, Contenu, std::ios::app);
}

void DéplacerFichier(const std::filesystem::path& De, const std::filesystem::path& Vers) {
  std::error_code Code;
  if (std::filesystem::exists(Vers, Code)) throw ErreurExécution("Le fichier existe déjà : " + TexteChemin(Vers));
  std::filesystem::rename(De, Vers, Code);
  if (Code == std::errc::cross_device_link) {
    std::filesystem::copy_file(De, Vers, Code);
    // What goes is the half of a copy, or what has been copied whole.
    std::error_code Ignoré;
    std::filesystem::remove(Code ? Vers : De, Ignoré);
  }
  if (Code) throw Échec("Impossible de déplacer le fichier ", De, Code);
}

}  // namespace Ombrey
