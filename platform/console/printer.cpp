// A text of pages in a file.
#include "platform/console/printer.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "common/failures.h"
#include "platform/console/visible_text.h"
#include "platform/loop/system_error.h"

namespace Ombrey {
namespace {

constexpr mode_t DroitsImprimé = 0666;

bool EcrireTout(int Descripteur, std::string_view Reste) {
  while (!Reste.empty()) {
    const ssize_t Écrits = write(Descripteur, Reste.data(), Reste.size());
    if (Écrits < 0 && errno == EINTR) continue;
    if (Écrits <= 0) return false;
    Reste.remove_prefix(static_cast<std::size_t>(Écrits));
  }
  return true;
}

/// Gives a file made by mkstemp, which is its owner's alone, the rights that any new file would have.
bool OuvrirDroits(int Descripteur) {
  const mode_t Masque = umask(0);
  umask(Masque);
  return fchmod(Descripteur, DroitsImprimé & ~Masque) == 0;
}

/// Writes a new file beside the old one and puts it in its place. 0, or the system's error number.
int EcrireFichier(const std::filesystem::path& Fichier, std::string_view Texte) {
  struct stat Présent {};
  // A device or a pipe of this name must not be replaced by a file.
  if (stat(Fichier.c_str(), &Présent) == 0 && !S_ISREG(Présent.st_mode)) return EEXIST;
  std::string Provisoire = Fichier.string() + ".XXXXXX";
  const int Descripteur = mkstemp(Provisoire.data());
  if (Descripteur < 0) return errno;
  int Raison = EcrireTout(Descripteur, Texte) && OuvrirDroits(Descripteur) && fsync(Descripteur) == 0 ? 0 : errno;
  if (close(Descripteur) != 0 && Raison == 0) Raison = errno;
  if (Raison == 0 && std::rename(Provisoire.c_str(), Fichier.c_str()) != 0) Raison = errno;
  if (Raison != 0) unlink(Provisoire.c_str());
  return Raison;
}

}  // namespace

void ImprimanteTexte::FixerPolice(int /*Points*/, bool /*Gras*/, bool /*Souligné*/) {}

void ImprimanteTexte::Imprimer(const std::string& Ligne) {
  if (Position_ == LignesParPage) NouvellePage();
  Texte_ += TexteVisible(Ligne) + '\n';
  ++Position_;
}

void ImprimanteTexte::NouvellePage() {
  Texte_ += '\f';
  Position_ = 0;
}

void ImprimanteTexte::TerminerDocument() {
  if (const int Raison = EcrireFichier(Fichier_, Texte_); Raison != 0) {
    throw ErreurExécution("Impossible d'écrire «" + Fichier_.string() + "» : " + TexteErreurSystème(Raison) + ".");
  }
  SurFin_();
}

}  // namespace Ombrey
