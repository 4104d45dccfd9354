// What the operating system refused, in French words.
#include "base/system_error.h"

#include <algorithm>
#include <cerrno>
#include <iterator>

namespace Ombrey {

namespace {

struct MotsErreur {
  int Numéro;
  const char* Texte;
};

constexpr MotsErreur Mots[] = {
    {EACCES, "accès refusé"},
    {EPERM, "opération interdite"},
    {ENOENT, "introuvable"},
    {ENOTDIR, "un élément du chemin n'est pas un dossier"},
    {EISDIR, "c'est un dossier"},
    {EEXIST, "existe déjà"},
    {ENODEV, "appareil absent"},
    {ENXIO, "appareil absent"},
    {EBUSY, "déjà utilisé par un autre programme"},
    {EIO, "erreur d'entrée-sortie"},
    {ENOSPC, "disque plein"},
#ifdef EDQUOT  // not on every system
    {EDQUOT, "quota de disque atteint"},
#endif
    {EFBIG, "fichier trop grand"},
    {EROFS, "disque en lecture seule"},
    {EMFILE, "trop de fichiers ouverts"},
    {ENFILE, "trop de fichiers ouverts sur la machine"},
    {ENOMEM, "mémoire insuffisante"},
    {ENAMETOOLONG, "nom trop long"},
    {ELOOP, "liens en boucle"},
    {EINVAL, "valeur refusée"},
    {ENOTTY, "ce n'est pas un port série"},
};

}  // namespace

std::string TexteErreurSystème(int Numéro) {
  const auto* Trouvé =
      std::find_if(std::begin(Mots), std::end(Mots), [&](const MotsErreur& M) { return M.Numéro == Numéro; });
  return Trouvé == std::end(Mots) ? "erreur système " + std::to_string(Numéro) : Trouvé->Texte;
}

}  // namespace Ombrey
