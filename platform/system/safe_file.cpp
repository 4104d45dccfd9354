// Small files read whole and replaced whole; folders for their owner alone.
#include "platform/system/safe_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <system_error>
#include <utility>

#include "base/failures.h"
#include "base/system_error.h"
#include "platform/loop/descriptor.h"

namespace Ombrey {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t TailleMax = 16 * std::size_t{1024} * 1024;
constexpr int LiensMax = 40;
constexpr mode_t MasqueDroits = 07777;

[[noreturn]] void RefuserFichier(const fs::path& Chemin, const std::string& Action, int Numéro) {
  throw ErreurExécution(Chemin.string() + " ne peut pas être " + Action + " : " + TexteErreurSystème(Numéro) + ".");
}

[[noreturn]] void RefuserGenre(const fs::path& Chemin) {
  throw ErreurExécution(Chemin.string() + " n'est pas un fichier.");
}

/// The file at the end of a chain of links; it needn't exist.
fs::path Cible(fs::path Chemin) {
  std::error_code Erreur;
  for (int Lien = 0; fs::is_symlink(Chemin, Erreur); ++Lien) {
    if (Lien == LiensMax) RefuserFichier(Chemin, "écrit", ELOOP);
    const fs::path Suite = fs::read_symlink(Chemin, Erreur);
    if (Erreur) RefuserFichier(Chemin, "écrit", Erreur.value());
    Chemin = Chemin.parent_path() / Suite;
  }
  return Chemin;
}

fs::path DossierDe(const fs::path& Chemin) { return Chemin.has_parent_path() ? Chemin.parent_path() : fs::path("."); }

void EcrireTout(const Descripteur& Fichier, std::string_view Contenu, const fs::path& Nom) {
  while (!Contenu.empty()) {
    const ssize_t Écrits = write(Fichier.Numéro(), Contenu.data(), Contenu.size());
    if (Écrits < 0 && errno == EINTR) continue;
    if (Écrits < 0) RefuserFichier(Nom, "écrit", errno);
    Contenu.remove_prefix(static_cast<std::size_t>(Écrits));
  }
  if (fsync(Fichier.Numéro()) != 0) RefuserFichier(Nom, "écrit", errno);
}

/// A new file beside another, removed again unless it was kept.
class Provisoire {
 public:
  explicit Provisoire(const fs::path& Final)
      : Final_(Final), Nom_((DossierDe(Final) / ("." + Final.filename().string() + ".XXXXXX")).string()) {
    Fichier_ = Descripteur(mkostemp(Nom_.data(), O_CLOEXEC));
    if (!Fichier_.EstOuvert()) Motif_ = errno;
  }
  Provisoire(const Provisoire&) = delete;
  Provisoire& operator=(const Provisoire&) = delete;
  ~Provisoire() {
    if (!Gardé_ && Fichier_.EstOuvert()) unlink(Nom_.c_str());
  }

  /// Why there is none; 0 when there is.
  [[nodiscard]] int Motif() const { return Motif_; }

  /// Who isn't the superuser can give a file to a group of his own, at most. The file is the right one without it.
  void Imiter(const struct stat& Modèle) const {
    const int Fichier = Fichier_.Numéro();
    const bool Donné = fchown(Fichier, Modèle.st_uid, Modèle.st_gid) == 0 ||
                       fchown(Fichier, static_cast<uid_t>(-1), Modèle.st_gid) == 0;
    if (!Donné && errno != EPERM) RefuserFichier(Final_, "écrit", errno);
    if (fchmod(Fichier_.Numéro(), Modèle.st_mode & MasqueDroits) != 0) RefuserFichier(Final_, "écrit", errno);
  }

  void Ecrire(std::string_view Contenu) const { EcrireTout(Fichier_, Contenu, Final_); }

  void Garder() {
    if (std::rename(Nom_.c_str(), Final_.c_str()) != 0) RefuserFichier(Final_, "écrit", errno);
    Gardé_ = true;
    const Descripteur Dossier(open(DossierDe(Final_).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    // A file system that can't do this for folders has done it with the rename.
    if (Dossier.EstOuvert() && fsync(Dossier.Numéro()) != 0 && errno != EINVAL) RefuserFichier(Final_, "écrit", errno);
  }

 private:
  fs::path Final_;
  std::string Nom_;
  Descripteur Fichier_;
  int Motif_ = 0;
  bool Gardé_ = false;
};

/// Over the file's own bytes, where its folder takes no second file. The room is had before the first byte changes, and
/// a failure puts the former bytes back: only the machine's death in this moment can leave a part of each.
void RemplacerSurPlace(const fs::path& Final, std::string_view Contenu) {
  const std::string Ancien = LireFichier(Final).value_or("");
  const Descripteur Fichier(open(Final.c_str(), O_RDWR | O_CLOEXEC | O_NOCTTY));
  if (!Fichier.EstOuvert()) RefuserFichier(Final, "écrit", errno);
  try {
    const bool Grandit = Contenu.size() > Ancien.size();
    const int Place = Grandit ? posix_fallocate(Fichier.Numéro(), 0, static_cast<off_t>(Contenu.size())) : 0;
    if (Place != 0) RefuserFichier(Final, "écrit", Place);
    EcrireTout(Fichier, Contenu, Final);
    if (ftruncate(Fichier.Numéro(), static_cast<off_t>(Contenu.size())) != 0 || fsync(Fichier.Numéro()) != 0)
      RefuserFichier(Final, "écrit", errno);
  } catch (const ErreurExécution&) {
    const auto Taille = static_cast<off_t>(Ancien.size());
    const bool Remis =
        pwrite(Fichier.Numéro(), Ancien.data(), Ancien.size(), 0) == Taille && ftruncate(Fichier.Numéro(), Taille) == 0;
    if (!Remis) throw ErreurExécution(Final.string() + " n'a pu être ni écrit ni remis comme il était.");
    throw;
  }
}

}  // namespace

std::optional<std::string> LireFichier(const fs::path& Chemin) {
  const Descripteur Fichier(open(Chemin.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  if (!Fichier.EstOuvert()) {
    if (errno == ENOENT) return std::nullopt;
    RefuserFichier(Chemin, "lu", errno);
  }
  struct stat État {};
  if (fstat(Fichier.Numéro(), &État) != 0) RefuserFichier(Chemin, "lu", errno);
  if (S_ISDIR(État.st_mode)) RefuserFichier(Chemin, "lu", EISDIR);
  if (!S_ISREG(État.st_mode)) RefuserGenre(Chemin);
  std::string Contenu;
  std::array<char, 16384> Bloc;  // NOLINT(cppcoreguidelines-pro-type-member-init): filled by the read
  for (;;) {
    const ssize_t Lus = read(Fichier.Numéro(), Bloc.data(), Bloc.size());
    if (Lus == 0) return Contenu;
    if (Lus < 0 && errno == EINTR) continue;
    if (Lus < 0) RefuserFichier(Chemin, "lu", errno);
    Contenu.append(Bloc.data(), static_cast<std::size_t>(Lus));
    if (Contenu.size() > TailleMax) RefuserFichier(Chemin, "lu", EFBIG);
  }
}

void RemplacerFichier(const fs::path& Chemin, std::string_view Contenu) {
  const fs::path Final = Cible(Chemin);
  struct stat Ancien {};
  const bool Présent = stat(Final.c_str(), &Ancien) == 0;
  if (!Présent && errno != ENOENT) RefuserFichier(Final, "écrit", errno);
  if (Présent && !S_ISREG(Ancien.st_mode)) RefuserGenre(Final);
  // Renaming asks for no right to the file itself: one that was made read-only must stay as it is.
  if (Présent && access(Final.c_str(), W_OK) != 0) RefuserFichier(Final, "écrit", errno);
  Provisoire Nouveau(Final);
  if (Présent && (Nouveau.Motif() == EACCES || Nouveau.Motif() == EPERM)) return RemplacerSurPlace(Final, Contenu);
  if (Nouveau.Motif() != 0) RefuserFichier(Final, "écrit", Nouveau.Motif());
  if (Présent) Nouveau.Imiter(Ancien);
  Nouveau.Ecrire(Contenu);
  Nouveau.Garder();
}

}  // namespace Ombrey
