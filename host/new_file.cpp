// A file that the operator has named.
#include "host/new_file.h"

#include <system_error>

#include "base/failures.h"
#include "base/files.h"

namespace Tarvel {

std::string ÉcrireNouveau(const std::filesystem::path& Fichier,
                          const std::function<std::string(const std::filesystem::path&)>& Écrire) {
  std::error_code Erreur;
  if (std::filesystem::exists(Fichier, Erreur))
    return "Le fichier " + Ombrey::TexteChemin(Fichier) + " existe déjà : donnez un autre nom.";
  std::string Dit;
  Ombrey::ErreurEnAttente Échec;
  return Ignorer(Échec, [&] { Dit = Écrire(Fichier); }) ? Dit : Échec.Texte();
}

}  // namespace Tarvel
