// The serial ports that a machine has, and what is usually chosen for one.
#include "platform/serial/machine_ports.h"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>

namespace Ombrey {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view PréfixeCom = "ttyS";
constexpr int NombreCom = 16;
/// From an adapter's port up to the device that bears the adapter's name.
constexpr int NiveauxMax = 6;

std::string PremièreLigne(const fs::path& Fichier) {
  std::ifstream Flux(Fichier);
  std::string Ligne;
  std::getline(Flux, Ligne);
  return Ligne;
}

struct Candidat {
  bool Adaptateur = false;
  std::string Préfixe;
  int Numéro = 0;
  PortTrouvé Port;
};

/// The product name of the adapter, from the first folder above that has one.
std::string NomAdaptateur(const fs::path& Entrée) {
  std::error_code Erreur;
  fs::path Dossier = fs::canonical(Entrée / "device", Erreur);
  for (int Niveau = 0; !Erreur && Niveau < NiveauxMax && Dossier.has_relative_path(); ++Niveau) {
    if (std::string Produit = PremièreLigne(Dossier / "product"); !Produit.empty()) return Produit;
    Dossier = Dossier.parent_path();
  }
  return "modèle inconnu";
}

std::optional<Candidat> Examiner(const fs::path& Entrée) {
  std::error_code Erreur;
  if (!fs::exists(Entrée / "device", Erreur)) return std::nullopt;
  const std::string Nom = Entrée.filename().string();
  const std::size_t Chiffres = Nom.find_last_not_of("0123456789") + 1;
  Candidat Trouvé;
  Trouvé.Préfixe = Nom.substr(0, Chiffres);
  if (std::from_chars(Nom.data() + Chiffres, Nom.data() + Nom.size(), Trouvé.Numéro).ec != std::errc())
    return std::nullopt;
  const std::string Appareil = "/dev/" + Nom;
  Trouvé.Port.Nom = Appareil;
  // The kernel lists the places of ports that a machine could have; those without a circuit are of type 0.
  if (const std::string Type = PremièreLigne(Entrée / "type"); !Type.empty()) {
    if (Type == "0") return std::nullopt;
    if (Trouvé.Préfixe == PréfixeCom && Trouvé.Numéro < NombreCom)
      Trouvé.Port.Nom = "COM" + std::to_string(Trouvé.Numéro + 1) + ":";
    Trouvé.Port.Description = "port série de la machine (" + Appareil + ")";
    return Trouvé;
  }
  if (Trouvé.Préfixe != "ttyUSB" && Trouvé.Préfixe != "ttyACM") return std::nullopt;
  Trouvé.Adaptateur = true;
  Trouvé.Port.Description = "adaptateur USB : " + NomAdaptateur(Entrée);
  return Trouvé;
}

}  // namespace

std::vector<PortTrouvé> PortsListésDans(const fs::path& Classe) {
  std::vector<Candidat> Candidats;
  std::error_code Erreur;
  for (fs::directory_iterator Entrée(Classe, Erreur), Fin; !Erreur && Entrée != Fin; Entrée.increment(Erreur))
    if (auto Trouvé = Examiner(Entrée->path())) Candidats.push_back(std::move(*Trouvé));
  std::sort(Candidats.begin(), Candidats.end(), [](const Candidat& A, const Candidat& B) {
    return std::tie(A.Adaptateur, A.Préfixe, A.Numéro) < std::tie(B.Adaptateur, B.Préfixe, B.Numéro);
  });
  std::vector<PortTrouvé> Ports;
  Ports.reserve(Candidats.size());
  for (auto& Trouvé : Candidats) Ports.push_back(std::move(Trouvé.Port));
  return Ports;
}

std::vector<PortTrouvé> PortsDeLaMachine() { return PortsListésDans("/sys/class/tty"); }

const ChoixPort& ChoixUsuels() {
  static const ChoixPort Choix = {
      {"1200", "2400", "4800", "9600", "19200"},
      {"aucune", "paire", "impaire", "marque", "espace"},
      {"1", "2"},
      {"7", "8"},
  };
  return Choix;
}

}  // namespace Ombrey
