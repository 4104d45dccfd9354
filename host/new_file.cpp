// A file that the operator has named.
#include "host/new_file.h"

#include <system_error>

#include "base/failures.h"
#include "base/files.h"

namespace Tarvel {

void ExigerNouveau(const std::filesystem::path& Fichier) {
  std::error_code Erreur;
  if (std::filesystem::exists(Fichier, Erreur))
    throw Ombrey::ErreurExécution("Le fichier " + Ombrey::TexteChemin(Fichier) + " existe déjà : donnez un autre nom.");
}

std::string ÉcrireNouveau(const std::filesystem::path& Fichier,
                          const std::function<std::string(const std::filesystem::path&)>& Écrire) {
  std::string Dit;
  Ombrey::ErreurEnAttente Échec;
  const bool Écrit = Garder(Échec, [&] {
    ExigerNouveau(Fichier);
    Dit = Écrire(Fichier);
  });
  return Écrit ? Dit : Échec.Texte();
}

}  // namespace Tarvel
