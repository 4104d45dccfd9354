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

#include <algorithm>
#include <cerrno>
#include <iterator>

#include "base/failures.h"
#include "base/system_error.h"

namespace Ombrey {

namespace {

struct CodeVitesse {
  int Bauds;
  speed_t Code;
};

constexpr CodeVitesse CodesVitesse[] = {
    {50, B50},   {75, B75},     {110, B110},   {134, B134},   {150, B150},   {200, B200},   {300, B300},
    {600, B600}, {1200, B1200}, {1800, B1800}, {2400, B2400}, {4800, B4800}, {9600, B9600}, {19200, B19200},
};

constexpr tcflag_t TaillesMots[] = {CS5, CS6, CS7, CS8};
constexpr int PetiteTaille = 5;

/// Major numbers of the device files under /dev/pts.
constexpr unsigned PremierMajeurPty = 136;
constexpr unsigned DernierMajeurPty = 143;

/// "COM1: (/dev/ttyS0)", or the path alone.
std::string Désignation(const std::string& NomPort, const std::string& Chemin) {
  return NomPort == Chemin ? NomPort : NomPort + " (" + Chemin + ")";
}

/// How to get the right to a device, for whom it is refused.
std::string ConseilDroit(const std::string& Chemin) {
  struct stat État {};
  if (stat(Chemin.c_str(), &État) != 0) return "";
  const group* Groupe = getgrgid(État.st_gid);
  if (!Groupe) return "";
  const std::string NomGroupe = Groupe->gr_name;
  const passwd* Compte = getpwuid(geteuid());
  const std::string NomCompte = Compte ? Compte->pw_name : "$USER";
  return " Il appartient au groupe « " + NomGroupe + " » : « sudo usermod -aG " + NomGroupe + " " + NomCompte +
         " » y ajoute votre compte, puis ouvrez une nouvelle session.";
}

[[noreturn]] void Refuser(const std::string& NomPort, int Numéro) {
  const std::string Chemin = CheminDuPort(NomPort);
  const std::string Port = "Le port " + Désignation(NomPort, Chemin);
  switch (Numéro) {
    case ENOENT:
    case ENODEV:
    case ENXIO:
      throw ErreurExécution(Port + " est absent de cette machine.");
    case EIO:
      throw ErreurExécution(Port + " ne répond pas : il n'y a pas d'appareil derrière lui.");
    case EBUSY:
    case EWOULDBLOCK:
      throw ErreurExécution(Port + " est déjà utilisé par un autre programme.");
    case EACCES:
      throw ErreurExécution("Vous n'avez pas le droit d'utiliser le port " + Désignation(NomPort, Chemin) + "." +
                            ConseilDroit(Chemin));
    case ENOTTY:
    case EISDIR:
      throw ErreurExécution(Port + " n'est pas un port série.");
    default:
      throw ErreurExécution(Port + " ne peut pas être ouvert : " + TexteErreurSystème(Numéro) + ".");
  }
}

/// Raw mode: every byte passes as it is, a read never waits, and silence differs from the end of the device (VMIN 1).
/// A character of wrong parity is read as NUL, which no checksum lets pass.
termios ModeBrut(termios Mode, const RéglagesLigne& Réglages) {
  cfmakeraw(&Mode);
  Mode.c_iflag |= IGNBRK;
  Mode.c_iflag &= ~static_cast<tcflag_t>(IXON | IXOFF | IXANY | INPCK);
  Mode.c_cflag &= ~static_cast<tcflag_t>(CSIZE | PARENB | PARODD | CMSPAR | CSTOPB | CRTSCTS);
  Mode.c_cflag |= CLOCAL | CREAD | TaillesMots[Réglages.Bits - PetiteTaille];
  if (Réglages.BitsStop == 2) Mode.c_cflag |= CSTOPB;
  if (Réglages.LaParité != Parité::Aucune) {
    Mode.c_iflag |= INPCK;
    Mode.c_cflag |= PARENB;
  }
  if (Réglages.LaParité == Parité::Impaire || Réglages.LaParité == Parité::Marque) Mode.c_cflag |= PARODD;
  if (Réglages.LaParité == Parité::Marque || Réglages.LaParité == Parité::Espace) Mode.c_cflag |= CMSPAR;
  Mode.c_cc[VMIN] = 1;
  Mode.c_cc[VTIME] = 0;
  const auto* Vitesse = std::find_if(std::begin(CodesVitesse), std::end(CodesVitesse),
                                     [&](const CodeVitesse& C) { return C.Bauds == Réglages.Bauds; });
  cfsetispeed(&Mode, Vitesse->Code);
  cfsetospeed(&Mode, Vitesse->Code);
  return Mode;
}

Passage Résultat(ssize_t Nombre) {
  if (Nombre > 0) return {static_cast<std::size_t>(Nombre), false, 0};
  if (Nombre == 0) return {0, true, 0};
  const bool PourInstant = errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR;
  return {0, !PourInstant, PourInstant ? 0 : errno};
}

}  // namespace

dev_t IdentitéAppareil(const std::string& Chemin) {
  struct stat État {};
  return stat(Chemin.c_str(), &État) == 0 && S_ISCHR(État.st_mode) ? État.st_rdev : dev_t{0};
}

AppareilLigne::AppareilLigne(const std::string& NomPort, const RéglagesLigne& Réglages) {
  const std::string Chemin = CheminDuPort(NomPort);
  struct stat État {};
  // Looked at before it is opened: opening alone can start something on a device that is no serial port.
  if (stat(Chemin.c_str(), &État) != 0) Refuser(NomPort, errno);
  if (!S_ISCHR(État.st_mode)) Refuser(NomPort, ENOTTY);
  Descripteur_ = Descripteur(open(Chemin.c_str(), O_RDWR | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  if (!Descripteur_.EstOuvert() || fstat(Numéro(), &État) != 0) Refuser(NomPort, errno);
  Identité_ = État.st_rdev;
  const unsigned Majeur = major(Identité_);
  PseudoTerminal_ = Majeur >= PremierMajeurPty && Majeur <= DernierMajeurPty;
  Prendre(NomPort);
  Régler(NomPort, Réglages);
}

AppareilLigne::~AppareilLigne() {
  // What a pseudo-terminal has taken is on its far side already; a real device would have close wait for it.
  if (PseudoTerminal_) return;
  JeterEnvoi();
  ioctl(Numéro(), TIOCNXCL);
}

/// The lock keeps out our own programs, the superuser's too; the exclusive mode keeps out those that know no lock.
/// A pseudo-terminal would stay exclusive when its program is killed, until its far side ends.
void AppareilLigne::Prendre(const std::string& NomPort) const {
  termios Mode{};
  if (tcgetattr(Numéro(), &Mode) != 0) Refuser(NomPort, errno);
  if (flock(Numéro(), LOCK_EX | LOCK_NB) != 0) Refuser(NomPort, errno);
  if (!PseudoTerminal_ && ioctl(Numéro(), TIOCEXCL) != 0) Refuser(NomPort, errno);
}

void AppareilLigne::Régler(const std::string& NomPort, const RéglagesLigne& Réglages) const {
  termios Présent{};
  if (tcgetattr(Numéro(), &Présent) != 0) Refuser(NomPort, errno);
  const termios Voulu = ModeBrut(Présent, Réglages);
  if (tcsetattr(Numéro(), TCSANOW, &Voulu) != 0) Refuser(NomPort, errno);
  // The call succeeds when any part of the settings was taken.
  if (tcgetattr(Numéro(), &Présent) != 0) Refuser(NomPort, errno);
  constexpr tcflag_t Comptent = CSIZE | PARENB | PARODD | CMSPAR | CSTOPB;
  const bool Appliqués =
      cfgetospeed(&Présent) == cfgetospeed(&Voulu) && (Présent.c_cflag & Comptent) == (Voulu.c_cflag & Comptent);
  if (!Appliqués && !PseudoTerminal_)
    throw ErreurExécution("Le port " + Désignation(NomPort, CheminDuPort(NomPort)) +
                          " n'accepte pas ces réglages de vitesse, de parité ou de taille des mots.");
  tcflush(Numéro(), TCIFLUSH);
}

Passage AppareilLigne::Lire(char* Place, std::size_t Taille) const { return Résultat(read(Numéro(), Place, Taille)); }

Passage AppareilLigne::Ecrire(std::string_view Octets) const {
  return Octets.empty() ? Passage{} : Résultat(write(Numéro(), Octets.data(), Octets.size()));
}

std::size_t AppareilLigne::EnAttente() const {
  int Nombre = 0;
  return ioctl(Numéro(), TIOCOUTQ, &Nombre) == 0 ? static_cast<std::size_t>(std::max(Nombre, 0)) : 0;
}

void AppareilLigne::AttendreFinEnvoi() const { tcdrain(Numéro()); }

void AppareilLigne::JeterEnvoi() const { tcflush(Numéro(), TCOFLUSH); }

}  // namespace Ombrey
