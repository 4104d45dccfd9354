// The serial ports that a machine has, and what is usually chosen for one.
#include "platform/serial/machine_ports.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <tuple>
#include <utility>

#include "base/text_helpers.h"
#include "platform/serial/device_tree.h"

namespace Ombrey {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view PréfixeCom = "ttyS";
constexpr int NombreCom = 16;

/// In the order in which they are offered: a name that stays the adapter's own comes first.
enum class Sorte { NomStable, DeLaMachine, Adaptateur };

struct Candidat {
  Sorte LaSorte = Sorte::DeLaMachine;
  std::string Préfixe;
  int Numéro = 0;
  PortTrouvé Port;
};

/// The name that udev keeps for an adapter under whatever number it comes; empty when there is none.
std::string NomStable(const fs::path& Dev, const fs::path& Appareil) {
  std::error_code Erreur;
  const fs::path Réel = fs::canonical(Appareil, Erreur);
  if (Erreur) return "";
  for (fs::directory_iterator Lien(Dev / "serial/by-id", Erreur), Fin; !Erreur && Lien != Fin; Lien.increment(Erreur)) {
    std::error_code Pendant;
    if (fs::canonical(Lien->path(), Pendant) == Réel) return Lien->path().string();
  }
  return "";
}

std::optional<Candidat> Examiner(const fs::path& Dev, const fs::path& Entrée) {
  std::error_code Erreur;
  if (!fs::exists(Entrée / "device", Erreur)) return std::nullopt;
  const std::string Nom = Entrée.filename().string();
  const std::size_t Chiffres = Nom.find_last_not_of("0123456789") + 1;
  Candidat Trouvé;
  Trouvé.Préfixe = Nom.substr(0, Chiffres);
  const auto Numéro = NombreLu<int>(std::string_view(Nom).substr(Chiffres));
  if (!Numéro) return std::nullopt;
  Trouvé.Numéro = *Numéro;
  const std::string Appareil = (Dev / Nom).string();
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
  const auto Adaptateur = AdaptateurDe(Entrée);
  const std::string Modèle = Adaptateur && !Adaptateur->Nom.empty() ? Adaptateur->Nom : "modèle inconnu";
  const std::string Stable = NomStable(Dev, Appareil);
  Trouvé.LaSorte = Stable.empty() ? Sorte::Adaptateur : Sorte::NomStable;
  Trouvé.Port.Nom = Stable.empty() ? Appareil : Stable;
  Trouvé.Port.Description = "adaptateur USB : " + Modèle + (Stable.empty() ? "" : " (" + Appareil + ")");
  return Trouvé;
}

}  // namespace

std::vector<PortTrouvé> PortsListésDans(const fs::path& Classe, const fs::path& Dev) {
  std::vector<Candidat> Candidats;
  std::error_code Erreur;
  for (fs::directory_iterator Entrée(Classe, Erreur), Fin; !Erreur && Entrée != Fin; Entrée.increment(Erreur))
    if (auto Trouvé = Examiner(Dev, Entrée->path())) Candidats.push_back(std::move(*Trouvé));
  std::sort(Candidats.begin(), Candidats.end(), [](const Candidat& A, const Candidat& B) {
    return std::tie(A.LaSorte, A.Préfixe, A.Numéro) < std::tie(B.LaSorte, B.Préfixe, B.Numéro);
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
