// The daily error file.
#include "link/daily_error_file.h"

#include <algorithm>
#include <iterator>
#include <system_error>

#include "common/failures.h"
#include "common/files.h"
#include "common/regional_forms.h"

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
  std::ifstream Flux(Fichier, std::ios::binary);
  if (!Flux) return;
  const bool RienQueDesBlancs =
      std::all_of(std::istreambuf_iterator<char>(Flux), std::istreambuf_iterator<char>(),
                  [](char Caractère) { return Caractère == ' ' || Caractère == '\r' || Caractère == '\n'; });
  Flux.close();
  std::error_code Ignoré;
  if (RienQueDesBlancs) std::filesystem::remove(Fichier, Ignoré);
}

void FichierErreurs::Ajouter(const std::string& Ligne) {
  if (!EstOuvert()) return;
  Flux_ << Ligne << "\r\n" << std::flush;
  if (!Flux_) throw ErreurExécution("Impossible d'écrire dans le fichier d'erreurs");
}

}  // namespace Ombrey
