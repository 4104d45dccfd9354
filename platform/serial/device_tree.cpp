// What the system tells of the device behind a serial port.
#include "platform/serial/device_tree.h"

#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <string_view>
#include <system_error>

#include "base/visible_text.h"

namespace Ombrey {

namespace {

namespace fs = std::filesystem;

/// From a port up to the adapter that bears it.
constexpr int MontéesMax = 6;

/// Whether one of a process's open files is the device. Only what stands among the devices is asked for its number: a
/// file on a server that has gone would keep whoever asks waiting.
bool EstParmi(const fs::path& Ouverts, dev_t Appareil, int& Regards) {
  constexpr std::string_view Dossier = "/dev/";
  std::error_code Fermé;
  for (fs::directory_iterator Lien(Ouverts, Fermé), Fin; !Fermé && Lien != Fin && Regards > 0; Lien.increment(Fermé)) {
    --Regards;
    std::array<char, Dossier.size()> Début{};
    const ssize_t Lus = readlink(Lien->path().c_str(), Début.data(), Début.size());
    if (std::string_view(Début.data(), static_cast<std::size_t>(std::max<ssize_t>(Lus, 0))) == Dossier &&
        IdentitéAppareil(Lien->path()) == Appareil)
      return true;
  }
  return false;
}

}  // namespace

dev_t IdentitéAppareil(const std::string& Chemin) {
  struct stat État {};
  return stat(Chemin.c_str(), &État) == 0 && S_ISCHR(État.st_mode) ? État.st_rdev : dev_t{0};
}

std::vector<std::string> Tenants(dev_t Appareil, pid_t Sauf, int Regards) {
  std::vector<std::string> Trouvés;
  if (Appareil == 0) return Trouvés;
  std::error_code Code;
  for (fs::directory_iterator Processus("/proc", Code), Fin; !Code && Processus != Fin && Regards > 0;
       Processus.increment(Code)) {
    const std::string Numéro = Processus->path().filename();
    if (Numéro.find_first_not_of("0123456789") != std::string::npos || Numéro == std::to_string(Sauf)) continue;
    --Regards;
    if (!EstParmi(Processus->path() / "fd", Appareil, Regards)) continue;
    const std::string Nom = TexteVisible(PremièreLigne(Processus->path() / "comm"));
    Trouvés.push_back((Nom.empty() ? "?" : Nom) + ", processus " + Numéro);
  }
  return Trouvés;
}

std::string PremièreLigne(const fs::path& Fichier) {
  std::ifstream Flux(Fichier);
  std::string Ligne;
  std::getline(Flux, Ligne);
  Ligne.erase(Ligne.find_last_not_of(" \t\r") + 1);
  return Ligne;
}

std::optional<AdaptateurUsb> AdaptateurDe(const fs::path& Entrée) {
  std::error_code Erreur;
  AdaptateurUsb Adaptateur;
  Adaptateur.Dossier = fs::canonical(Entrée / "device", Erreur);
  for (int Montées = 0; !Erreur && Montées < MontéesMax && Adaptateur.Dossier.has_relative_path(); ++Montées) {
    const fs::path& Ici = Adaptateur.Dossier;
    if (Adaptateur.Interface.empty()) Adaptateur.Interface = PremièreLigne(Ici / "bInterfaceNumber");
    Adaptateur.Marque = PremièreLigne(Ici / "idVendor");
    if (!Adaptateur.Marque.empty()) {
      Adaptateur.Modèle = PremièreLigne(Ici / "idProduct");
      Adaptateur.Numéro = PremièreLigne(Ici / "serial");
      Adaptateur.Nom = PremièreLigne(Ici / "product");
      return Adaptateur;
    }
    Adaptateur.Dossier = Ici.parent_path();
  }
  return std::nullopt;
}

fs::path EntréeDe(const RacinesSystème& Racines, dev_t Identité) {
  return Racines.Sys / "dev/char" / (std::to_string(major(Identité)) + ":" + std::to_string(minor(Identité)));
}

std::string PiloteDe(const fs::path& Entrée) {
  std::error_code Erreur;
  return fs::read_symlink(Entrée / "device/driver", Erreur).filename().string();
}

std::string SignalementDe(const fs::path& Entrée, bool AvecPrise) {
  std::error_code Erreur;
  const auto Adaptateur = AdaptateurDe(Entrée);
  if (!Adaptateur) return fs::canonical(Entrée, Erreur).string();
  const bool Prise = AvecPrise || Adaptateur->Numéro.empty();
  return Adaptateur->Marque + ":" + Adaptateur->Modèle + ":" + Adaptateur->Numéro + ":" +
         (Prise ? Adaptateur->Dossier.string() : "") + ":" + Adaptateur->Interface + ":" +
         PremièreLigne(Entrée / "device/port_number");
}

std::string PortSignalé(const fs::path& Classe, const std::string& Signalement) {
  std::string Trouvé;
  std::error_code Erreur;
  for (fs::directory_iterator Entrée(Classe, Erreur), Fin; !Erreur && Entrée != Fin; Entrée.increment(Erreur)) {
    const fs::path& Ici = Entrée->path();
    if (SignalementDe(Ici) != Signalement && SignalementDe(Ici, true) != Signalement) continue;
    if (!Trouvé.empty()) return {};
    Trouvé = Ici.filename();
  }
  return Trouvé;
}

}  // namespace Ombrey
