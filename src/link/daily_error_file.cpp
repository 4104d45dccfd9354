// The daily error file.
#include "link/daily_error_file.h"

#include <fstream>
#include <system_error>
#include <utility>

#include "base/files.h"
#include "base/regional_forms.h"

namespace Ombrey {

std::filesystem::path DossierErreurs(const ISystème& Système) {
  return Système.CheminApplication() / Chemin("données");
}

std::filesystem::path FichierErreursDuJour(const ISystème& Système) {
  return DossierErreurs(Système) / Chemin("RG80 Err Import " + TexteFormaté(Système.Maintenant(), "mmjj") + ".txt");
}

void NettoyerFichierErreurs(const ISystème& Système) {
  CréerDossier(DossierErreurs(Système));
  const auto Fichier = FichierErreursDuJour(Système);
  std::error_code Ignoré;
  if (!std::filesystem::is_regular_file(Fichier, Ignoré)) return;
  std::ifstream Flux(Fichier, std::ios::binary);
  char Caractère = ' ';
  while (Flux.get(Caractère)) {
    if (Caractère != ' ' && Caractère != '\r' && Caractère != '\n') return;
  }
  // A file that couldn't be read to its end may hold anything: it stays.
  if (!Flux.eof() || Flux.bad()) return;
  Flux.close();
  std::filesystem::remove(Fichier, Ignoré);
}

FichierErreurs::FichierErreurs(std::filesystem::path Fichier)
    : Fichier_(std::move(Fichier)), Ouvrable_(std::ofstream(Fichier_, std::ios::binary | std::ios::app).is_open()) {}

void FichierErreurs::Ajouter(const std::string& Ligne) {
  if (!Ouvrable_) return;
  CréerDossier(Fichier_.parent_path());
  AjouterAuFichier(Fichier_, Ligne + "\r\n");
}

}  // namespace Ombrey
