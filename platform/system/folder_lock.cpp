// A working folder belongs to one running station.
#include "platform/system/folder_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <fstream>
#include <sstream>

#include "base/failures.h"
#include "base/files.h"
#include "base/system_error.h"
#include "platform/system/safe_file.h"

namespace Ombrey {
namespace {

namespace fs = std::filesystem;

constexpr const char* NomVerrou = ".verrou";
constexpr const char* AutreDossier = "--dossier en choisit un autre.";
constexpr mode_t PourSonPropriétaire = 0600;

/// The whole file, for this opening of it: the system drops the lock when its process dies, and only then.
struct flock Tout() {
  struct flock Voulu {};
  Voulu.l_type = F_WRLCK;
  Voulu.l_whence = SEEK_SET;
  return Voulu;
}

std::string Nommer(const std::string& Processus) {
  std::string Nom = LireFichier(Chemin("/proc/" + Processus + "/comm")).value_or("");
  Nom.erase(std::min(Nom.find('\n'), Nom.size()));
  return (Nom.empty() ? "" : Nom + ", ") + "processus " + Processus;
}

/// The process that holds this folder itself, as the system knows it.
std::optional<std::string> TenantDe(const fs::path& Dossier) {
  struct stat État {};
  if (stat(Dossier.c_str(), &État) != 0) return std::nullopt;
  const std::string Lui = ":" + std::to_string(État.st_ino);
  std::ifstream Verrous("/proc/locks");
  for (std::string Ligne, Rang, Genre, Mode, Accès, Processus, Fichier; std::getline(Verrous, Ligne);) {
    std::istringstream(Ligne) >> Rang >> Genre >> Mode >> Accès >> Processus >> Fichier;
    if (Genre == "FLOCK" && Fichier.ends_with(Lui)) return Nommer(Processus);
  }
  return std::nullopt;
}

std::string DéjàPris(const fs::path& Dossier) {
  return "Une autre station travaille déjà dans le dossier " + TexteChemin(Dossier);
}

/// What the holder has written: the number of its process, and its machine.
std::string Décrire(const fs::path& Fichier) {
  std::string Processus;
  std::string Sienne;
  std::istringstream(LireFichier(Fichier).value_or("")) >> Processus >> Sienne;
  if (Processus.empty()) return "elle commence ou se termine";
  if (Sienne != NomMachine()) return "processus " + Processus + " de la machine " + Sienne;
  return Nommer(Processus);
}

}  // namespace

std::string NomMachine() {
  std::array<char, 256> Nom{};
  return gethostname(Nom.data(), Nom.size() - 1) == 0 ? Nom.data() : "";
}

VerrouFichier::VerrouFichier(const fs::path& Fichier, const std::string& Occupé, const std::string& Impossible,
                             const std::string& Remède)
    : Fichier_(open(Fichier.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, PourSonPropriétaire)) {
  const auto RefuserVerrou = [&](int Numéro) {
    throw ErreurExécution(Impossible + " ne peut pas être verrouillé : " + TexteErreurSystème(Numéro) + ". " + Remède);
  };
  if (!Fichier_.EstOuvert()) {
    const int Motif = errno;
    if (access(Fichier.parent_path().c_str(), W_OK) == 0) RefuserVerrou(Motif);
    return;
  }
  struct flock Voulu = Tout();
  if (fcntl(Fichier_.Numéro(), F_OFD_SETLK, &Voulu) != 0) {
    if (errno != EACCES && errno != EAGAIN) RefuserVerrou(errno);
    throw ErreurExécution(Occupé + " (" + Décrire(Fichier) + "). " + Remède);
  }
  const std::string Texte = std::to_string(getpid()) + " " + NomMachine() + "\n";
  // For others to read; the lock holds without it.
  if (ftruncate(Fichier_.Numéro(), 0) == 0)
    static_cast<void>(pwrite(Fichier_.Numéro(), Texte.data(), Texte.size(), 0) > 0);
}

VerrouDossier::VerrouDossier(const fs::path& Dossier)
    : Fichier_(Dossier / NomVerrou, DéjàPris(Dossier), "Le dossier de travail " + TexteChemin(Dossier), AutreDossier) {
  const fs::path Imports = Dossier / DossierImport;
  CréerDossier(Imports);
  if (access(Imports.c_str(), W_OK | X_OK) != 0)
    throw ErreurExécution("Cette station n'a pas le droit d'écrire dans " + TexteChemin(Imports) +
                          ", où passent les chargements. " + AutreDossier);
  Imports_ = Descripteur(open(Imports.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (flock(Imports_.Numéro(), LOCK_EX | LOCK_NB) == 0) return;
  const int Motif = errno;
  if (Motif == EWOULDBLOCK)
    throw ErreurExécution(DéjàPris(Dossier) + " (" + TenantDe(Imports).value_or("sous un autre compte") + "). " +
                          AutreDossier);
  // A network drive may know no lock of a folder: the file's holds alone then.
  if (!Fichier_.EstTenu())
    throw ErreurExécution("Le dossier " + TexteChemin(Imports) +
                          " ne peut pas être verrouillé : " + TexteErreurSystème(Motif) + ". " + AutreDossier);
}

std::optional<std::string> OccupantDossier(const fs::path& Dossier) {
  const Descripteur Fichier(open((Dossier / NomVerrou).c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW));
  struct flock Tenu = Tout();
  if (!Fichier.EstOuvert() || fcntl(Fichier.Numéro(), F_OFD_GETLK, &Tenu) != 0 || Tenu.l_type == F_UNLCK)
    return TenantDe(Dossier / DossierImport);
  return Décrire(Dossier / NomVerrou);
}

}  // namespace Ombrey
