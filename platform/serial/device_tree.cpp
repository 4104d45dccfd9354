// What the system tells of the device behind a serial port.
#include "platform/serial/device_tree.h"

#include <sys/sysmacros.h>

#include <fstream>
#include <system_error>

namespace Ombrey {

namespace {

namespace fs = std::filesystem;

/// From a port up to the adapter that bears it.
constexpr int NiveauxMax = 6;

}  // namespace

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
  for (int Niveau = 0; !Erreur && Niveau < NiveauxMax && Adaptateur.Dossier.has_relative_path(); ++Niveau) {
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

std::string SignalementDe(const fs::path& Entrée) {
  std::error_code Erreur;
  const auto Adaptateur = AdaptateurDe(Entrée);
  if (!Adaptateur) return fs::canonical(Entrée, Erreur).string();
  return Adaptateur->Marque + ":" + Adaptateur->Modèle + ":" +
         (Adaptateur->Numéro.empty() ? Adaptateur->Dossier.string() : Adaptateur->Numéro) + ":" +
         Adaptateur->Interface + ":" + PremièreLigne(Entrée / "device/port_number");
}

fs::path AppareilSignalé(const RacinesSystème& Racines, const std::string& Signalement) {
  fs::path Trouvé;
  std::error_code Erreur;
  for (fs::directory_iterator Entrée(Racines.Sys / "class/tty", Erreur), Fin; !Erreur && Entrée != Fin;
       Entrée.increment(Erreur)) {
    if (SignalementDe(Entrée->path()) != Signalement) continue;
    if (!Trouvé.empty()) return {};
    Trouvé = Racines.Dev / Entrée->path().filename();
  }
  return Trouvé;
}

}  // namespace Ombrey
