// Pseudo-terminals and serial devices through POSIX.
#include "terminal/device.h"

#include <fcntl.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "terminal/loads.h"

namespace Rg80 {

namespace {

namespace fs = std::filesystem;

struct Vitesse {
  unsigned Bauds;
  speed_t Code;
};
constexpr std::array<Vitesse, 9> Vitesses{{{300, B300},
                                           {1200, B1200},
                                           {2400, B2400},
                                           {4800, B4800},
                                           {9600, B9600},
                                           {19200, B19200},
                                           {38400, B38400},
                                           {57600, B57600},
                                           {115200, B115200}}};

std::string Cause(int Numéro) {
  switch (Numéro) {
    case ENOENT:
      return "introuvable";
    case EACCES:
      return "accès refusé";
    case EBUSY:
      return "déjà utilisé par un autre programme";
    case EIO:
      return "erreur d'entrée-sortie";
    case ENOTDIR:
      return "un élément du chemin n'est pas un dossier";
    default:
      return "erreur système " + std::to_string(Numéro);
  }
}

speed_t CodeVitesse(unsigned Bauds) {
  const auto* const Trouvée =
      std::find_if(Vitesses.begin(), Vitesses.end(), [Bauds](const Vitesse& Une) { return Une.Bauds == Bauds; });
  if (Trouvée == Vitesses.end()) {
    throw ErreurDemande("Vitesse " + std::to_string(Bauds) + " inconnue d'un port série.");
  }
  return Trouvée->Code;
}

// Every byte through as it is, eight bits, no parity, one stop bit.
bool MettreEnBrut(int Descripteur, speed_t Code) {
  termios Réglages{};
  if (tcgetattr(Descripteur, &Réglages) != 0) return false;
  Réglages.c_iflag = 0;
  Réglages.c_oflag = 0;
  Réglages.c_lflag = 0;
  Réglages.c_cflag = CS8 | CREAD | CLOCAL;
  Réglages.c_cc[VMIN] = 1;
  Réglages.c_cc[VTIME] = 0;
  cfsetispeed(&Réglages, Code);
  cfsetospeed(&Réglages, Code);
  return tcsetattr(Descripteur, TCSANOW, &Réglages) == 0;
}

// What an earlier run can have left: a link to nowhere, or to a pseudo-terminal.
bool EstLienPérimé(const fs::path& Chemin) {
  std::error_code Erreur;
  if (!fs::is_symlink(Chemin, Erreur)) return false;
  return !fs::exists(Chemin, Erreur) || fs::read_symlink(Chemin, Erreur).string().starts_with("/dev/pts/");
}

void Lier(const std::string& Cible, const std::string& Lien) {
  std::error_code Erreur;
  if (fs::symlink_status(Lien, Erreur).type() != fs::file_type::not_found) {
    if (!EstLienPérimé(Lien)) throw ErreurDemande(Lien + " existe et n'est pas un lien vers une ligne.");
    fs::remove(Lien, Erreur);
  }
  fs::create_symlink(Cible, Lien, Erreur);
  if (Erreur) throw ErreurDemande("Lien " + Lien + " impossible : " + Cause(Erreur.value()) + ".");
}

}  // namespace

Liaison Liaison::SurLien(const std::string& Lien) {
  Liaison Neuve;
  Neuve.Principal_ = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK);
  std::array<char, 128> Nom{};
  if (Neuve.Principal_ < 0 || grantpt(Neuve.Principal_) != 0 || unlockpt(Neuve.Principal_) != 0 ||
      ptsname_r(Neuve.Principal_, Nom.data(), Nom.size()) != 0) {
    throw ErreurDemande("Pseudo-terminal impossible : " + Cause(errno) + ".");
  }
  Neuve.CheminSecondaire_ = Nom.data();
  Neuve.Secondaire_ = open(Nom.data(), O_RDWR | O_NOCTTY | O_CLOEXEC);
  if (Neuve.Secondaire_ < 0 || !MettreEnBrut(Neuve.Secondaire_, B9600)) {
    throw ErreurDemande(Neuve.CheminSecondaire_ + " : " + Cause(errno) + ".");
  }
  Lier(Neuve.CheminSecondaire_, Lien);
  Neuve.Lien_ = Lien;
  Neuve.Description_ = Lien + " -> " + Neuve.CheminSecondaire_;
  return Neuve;
}

Liaison Liaison::SurPort(const std::string& Chemin, unsigned Bauds) {
  const speed_t Code = CodeVitesse(Bauds);
  Liaison Neuve;
  Neuve.Principal_ = open(Chemin.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK);
  if (Neuve.Principal_ < 0) throw ErreurDemande("Port " + Chemin + " : " + Cause(errno) + ".");
  if (!MettreEnBrut(Neuve.Principal_, Code)) throw ErreurDemande("Port " + Chemin + " : pas un port série.");
  tcflush(Neuve.Principal_, TCIOFLUSH);
  Neuve.Description_ = Chemin + ", " + std::to_string(Bauds) + " bauds";
  return Neuve;
}

Liaison::Liaison(Liaison&& Autre) noexcept
    : Principal_(std::exchange(Autre.Principal_, -1)),
      Secondaire_(std::exchange(Autre.Secondaire_, -1)),
      Lien_(std::exchange(Autre.Lien_, {})),
      CheminSecondaire_(std::move(Autre.CheminSecondaire_)),
      Description_(std::move(Autre.Description_)) {}

Liaison::~Liaison() {
  if (!Lien_.empty()) {
    std::error_code Erreur;
    if (fs::read_symlink(Lien_, Erreur) == CheminSecondaire_) fs::remove(Lien_, Erreur);
  }
  if (Secondaire_ >= 0) close(Secondaire_);
  if (Principal_ >= 0) close(Principal_);
}

std::string Liaison::Lire(std::size_t Max) {
  constexpr std::size_t TailleLecture = 65536;
  std::string Octets(std::min(Max, TailleLecture), '\0');
  const ssize_t Lus = read(Principal_, Octets.data(), Octets.size());
  if (Lus < 0 && errno != EAGAIN && errno != EINTR) throw std::runtime_error("Ligne perdue : " + Cause(errno) + ".");
  Octets.resize(static_cast<std::size_t>(std::max<ssize_t>(Lus, 0)));
  return Octets;
}

std::size_t Liaison::Écrire(std::string_view Octets) {
  const ssize_t Écrits = write(Principal_, Octets.data(), Octets.size());
  if (Écrits < 0 && errno != EAGAIN && errno != EINTR) throw std::runtime_error("Ligne perdue : " + Cause(errno) + ".");
  return static_cast<std::size_t>(std::max<ssize_t>(Écrits, 0));
}

}  // namespace Rg80
