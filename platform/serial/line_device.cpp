// An open serial device.
#include "platform/serial/line_device.h"

#include <fcntl.h>
#include <grp.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <termios.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <string_view>
#include <thread>

#include "base/failures.h"
#include "base/system_error.h"
#include "base/text_helpers.h"
#include "contracts/octets.h"
#include "platform/serial/line_mode.h"

namespace Ombrey {

namespace {

/// Major numbers of the device files under /dev/pts.
constexpr unsigned PremierMajeurPty = 136;
constexpr unsigned DernierMajeurPty = 143;

/// Beside the system's error numbers.
constexpr int RéglagesRefusés = -1;

/// How long after the coming of a device udev's rule may take to open it to its group.
constexpr auto DélaiDroit = std::chrono::milliseconds(500);

/// How many open files are looked at for whoever holds a port: 40 ms of the loop's time, and plenty for a post.
constexpr int RegardsAuPlus = 10'000;

/// What an adapter takes as accepted and can't do, where its driver is known to say nothing of it.
struct LimitePilote {
  std::string_view Pilote;
  int BaudsMin;
  int BitsMin;
};
constexpr LimitePilote LimitesPilotes[] = {{"ftdi_sio", 200, 7}};

/// "COM1: (/dev/ttyS0)", or the path alone.
std::string Désignation(const AdressePort& Adresse) {
  return Adresse.Nom == Adresse.Chemin ? Adresse.Nom : Adresse.Nom + " (" + Adresse.Chemin + ")";
}

/// How to get the right to a device, for whom it is refused.
std::string Conseil(const std::string& Chemin) {
  struct stat État {};
  const group* Groupe = stat(Chemin.c_str(), &État) == 0 ? getgrgid(État.st_gid) : nullptr;
  const passwd* Compte = getpwuid(geteuid());
  if (!Groupe) return "";
  Demandeur Qui{Compte ? Compte->pw_name : "$USER"};
  Qui.EnUse = getegid() == État.st_gid || group_member(État.st_gid) != 0;
  Qui.Inscrit = Compte && Compte->pw_gid == État.st_gid;
  for (char** Membre = Groupe->gr_mem; *Membre; ++Membre) Qui.Inscrit = Qui.Inscrit || Qui.Compte == *Membre;
  return ConseilDroit(État.st_mode, Groupe->gr_name, Qui);
}

/// Who else has the device open, to stand behind a word; empty where that isn't to be seen.
std::string ParQui(const std::string& Chemin) {
  const std::string Eux = Énumérer(Tenants(IdentitéAppareil(Chemin), getpid(), RegardsAuPlus));
  return Eux.empty() ? "" : " : " + Eux;
}

[[noreturn]] void RefuserPort(const AdressePort& Adresse, int Numéro) {
  const std::string Port = "Le port " + Désignation(Adresse);
  switch (Numéro) {
    case ENOENT:
    case ENODEV:
    case ENXIO:
      throw ErreurExécution(Port + " est absent de cette machine.");
    case EIO:
      throw ErreurExécution(Port + " ne répond pas : il n'y a pas d'appareil derrière lui.");
    case EBUSY:
    case EWOULDBLOCK:
      throw ErreurExécution(Port + " est déjà utilisé par un autre programme" + ParQui(Adresse.Chemin) + ".");
    case EACCES:
      throw ErreurExécution("Vous n'avez pas le droit d'utiliser le port " + Désignation(Adresse) + "." +
                            Conseil(Adresse.Chemin));
    case RéglagesRefusés:
      throw ErreurExécution(Port + " n'accepte pas ces réglages de vitesse, de parité ou de taille des mots.");
    case ENOTTY:
    case EISDIR:
      throw ErreurExécution(Port + " n'est pas un port série.");
    default:
      throw ErreurExécution(Port + " ne peut pas être ouvert : " + TexteErreurSystème(Numéro) + ".");
  }
}

void RefuserAuPilote(const AdressePort& Adresse, const RéglagesLiaison& Réglages, const std::string& Pilote) {
  for (const LimitePilote& Limite : LimitesPilotes) {
    if (Limite.Pilote != Pilote) continue;
    const std::string Début = "Le port " + Désignation(Adresse) + " ne peut pas être réglé sur ";
    const std::string Adaptateur = " : son adaptateur (pilote " + Pilote + ") n'en fait pas moins de ";
    if (Réglages.Bauds < Limite.BaudsMin)
      throw ErreurExécution(Début + std::to_string(Réglages.Bauds) + " bauds" + Adaptateur +
                            std::to_string(Limite.BaudsMin) + ".");
    if (Réglages.Bits < Limite.BitsMin)
      throw ErreurExécution(Début + "des mots de " + std::to_string(Réglages.Bits) + " bits" + Adaptateur +
                            std::to_string(Limite.BitsMin) + ".");
  }
}

Passage Résultat(ssize_t Nombre) {
  if (Nombre > 0) return {static_cast<std::size_t>(Nombre), false, 0};
  if (Nombre == 0) return {0, true, 0};
  const bool PourInstant = errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR;
  return {0, !PourInstant, PourInstant ? 0 : errno};
}

extern "C" void RienFaire(int) {}

/// While it lives, the driver's waits are short: each tick of a timer ends the one that stands.
class AttentesBrèves {
 public:
  AttentesBrèves() {
    struct sigaction Action {};
    Action.sa_handler = RienFaire;
    sigaction(SIGALRM, &Action, &Ancienne_);
    sigevent Coup{};
    Coup.sigev_notify = SIGEV_THREAD_ID;  // a tick that another thread took would end nothing here
    Coup.sigev_signo = SIGALRM;
    Coup._sigev_un._tid = gettid();
    constexpr timespec Pas{0, 10'000'000};
    constexpr itimerspec Cadence{Pas, Pas};
    EnMarche_ = timer_create(CLOCK_MONOTONIC, &Coup, &Minuterie_) == 0;
    if (EnMarche_) timer_settime(Minuterie_, 0, &Cadence, nullptr);
  }
  AttentesBrèves(const AttentesBrèves&) = delete;
  AttentesBrèves& operator=(const AttentesBrèves&) = delete;
  ~AttentesBrèves() {
    if (EnMarche_) timer_delete(Minuterie_);
    sigaction(SIGALRM, &Ancienne_, nullptr);
  }

 private:
  struct sigaction Ancienne_ {};
  timer_t Minuterie_{};
  bool EnMarche_ = false;
};

}  // namespace

bool AttendSonDroit(const std::string& Chemin) {
  struct stat État {};
  if (stat(Chemin.c_str(), &État) != 0 || faccessat(AT_FDCWD, Chemin.c_str(), R_OK | W_OK, AT_EACCESS) == 0)
    return false;
  const auto Venu = std::chrono::seconds(État.st_ctim.tv_sec) + std::chrono::nanoseconds(État.st_ctim.tv_nsec);
  const auto Âge = std::chrono::system_clock::now().time_since_epoch() - Venu;
  return Âge >= Âge.zero() && Âge < DélaiDroit;
}

AppareilLiaison::AppareilLiaison(const AdressePort& Adresse, const RéglagesLiaison& Réglages,
                                 const RacinesSystème& Racines) {
  const char* Chemin = Adresse.Chemin.c_str();
  struct stat État {};
  // Looked at before it is opened: opening alone can start something on a device that is no serial port.
  if (stat(Chemin, &État) != 0) RefuserPort(Adresse, errno);
  if (!S_ISCHR(État.st_mode)) RefuserPort(Adresse, ENOTTY);
  RefuserAuPilote(Adresse, Réglages, PiloteDe(EntréeDe(Racines, État.st_rdev)));
  Descripteur_ = Descripteur(open(Chemin, O_RDWR | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  if (!Descripteur_.EstOuvert() || fstat(Numéro(), &État) != 0) RefuserPort(Adresse, errno);
  Identité_ = État.st_rdev;
  const unsigned Majeur = major(Identité_);
  PseudoTerminal_ = Majeur >= PremierMajeurPty && Majeur <= DernierMajeurPty;
  Prendre(Adresse, Réglages);
}

AppareilLiaison::~AppareilLiaison() {
  // What a pseudo-terminal has taken is on its far side already; a real device has close wait for it, half a minute
  // where the driver drops nothing and the device takes nothing.
  if (PseudoTerminal_) return;
  JeterEnvoi();
  ioctl(Numéro(), TIOCNXCL);
  const AttentesBrèves Brèves;
  Descripteur_.Fermer();
}

/// The lock keeps out our own programs, the superuser's too; the exclusive mode keeps out those that know no lock. It
/// comes last: where the device is refused, nothing stays behind.
/// A pseudo-terminal would stay exclusive when its program is killed, until its far side ends.
void AppareilLiaison::Prendre(const AdressePort& Adresse, const RéglagesLiaison& Réglages) const {
  termios Présent{};
  if (tcgetattr(Numéro(), &Présent) != 0 || flock(Numéro(), LOCK_EX | LOCK_NB) != 0) RefuserPort(Adresse, errno);
  const termios Voulu = ModeBrut(Présent, Réglages);
  // The call succeeds when any part of the settings was taken.
  if (tcsetattr(Numéro(), TCSANOW, &Voulu) != 0) RefuserPort(Adresse, errno == EINVAL ? RéglagesRefusés : errno);
  if (tcgetattr(Numéro(), &Présent) != 0) RefuserPort(Adresse, errno);
  if (!PseudoTerminal_ && !EstAppliqué(Voulu, Présent)) RefuserPort(Adresse, RéglagesRefusés);
  tcflush(Numéro(), TCIFLUSH);
  if (!PseudoTerminal_ && ioctl(Numéro(), TIOCEXCL) != 0) RefuserPort(Adresse, errno);
}

Passage AppareilLiaison::Lire(char* Place, std::size_t Taille) const { return Résultat(read(Numéro(), Place, Taille)); }

Passage AppareilLiaison::Ecrire(std::string_view Octets) const {
  if (Octets.empty()) return {};
  const ssize_t Écrits = write(Numéro(), Octets.data(), Octets.size());
  // A pseudo-terminal hands over what it took only when its kernel thread has had a processor: ours, as a rule.
  std::this_thread::yield();
  return Résultat(Écrits);
}

std::size_t AppareilLiaison::EnAttente() const {
  int Nombre = 0;
  return ioctl(Numéro(), TIOCOUTQ, &Nombre) == 0 ? static_cast<std::size_t>(std::max(Nombre, 0)) : 0;
}

void AppareilLiaison::JeterEnvoi() const { tcflush(Numéro(), TCOFLUSH); }

}  // namespace Ombrey
