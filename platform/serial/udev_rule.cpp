// A name for an adapter that stays its own, whatever number the system gives it.
#include "platform/serial/udev_rule.h"

#include <algorithm>
#include <string>
#include <system_error>

#include "platform/serial/device_tree.h"

namespace Ombrey {
namespace {

namespace fs = std::filesystem;

bool EstSimple(char Caractère) {
  return (Caractère >= '0' && Caractère <= '9') || (Caractère >= 'a' && Caractère <= 'z') ||
         (Caractère >= 'A' && Caractère <= 'Z') || Caractère == '-' || Caractère == '_' || Caractère == '.';
}

/// The same text with another character in the place of each that a name or a rule can't bear.
std::string Simplifié(std::string Texte, char Remplaçant) {
  std::replace_if(
      Texte.begin(), Texte.end(), [](char C) { return !EstSimple(C); }, Remplaçant);
  return Texte;
}

/// In the pattern "?" stands for any character.
std::string Clause(const char* Clé, const std::string& Valeur) {
  return Valeur.empty() ? "" : std::string(Clé) + "==\"" + Simplifié(Valeur, '?') + "\", ";
}

std::string NomSimple(std::string_view Site) { return Simplifié(std::string(Site), '_'); }

/// What the rule knows the device by, and in French how.
struct Signe {
  std::string Clauses;
  std::string Dit;
};

Signe SigneDe(const std::string& Nom, const fs::path& Classe) {
  const auto Adaptateur = AdaptateurDe(Classe / Nom);
  if (!Adaptateur) return {Clause("KERNEL", Nom), "son nom"};
  const auto& [Dossier, Interface, Marque, Modèle, Numéro, NomAdaptateur] = *Adaptateur;
  const std::string Place = Simplifié(Dossier.filename().string(), '?');
  const bool Seul = !Numéro.empty() && !PortSignalé(Classe, SignalementDe(Classe / Nom)).empty();
  // An adapter's ports on one interface have a number of their own, which the system's rules keep under this name.
  return {Clause("ENV{ID_USB_INTERFACE_NUM}", Interface) +
              Clause("ENV{.ID_PORT}", PremièreLigne(Classe / Nom / "device/port_number")) +
              (Seul ? "" : Clause("KERNELS", Place)) + Clause("ATTRS{idVendor}", Marque) +
              Clause("ATTRS{idProduct}", Modèle) + Clause("ATTRS{serial}", Numéro),
          Seul ? "son numéro de série"
               : "sa prise " + Place +
                     (Numéro.empty() ? " (il n'a pas de numéro de série)"
                                     : " (un autre adaptateur a le même numéro de série)")};
}

}  // namespace

std::string RègleUdev(const fs::path& Appareil, std::string_view Site, const fs::path& Classe) {
  std::error_code Erreur;
  const fs::path Réel = fs::canonical(Appareil, Erreur);
  const std::string Nom = Simplifié((Erreur ? Appareil : Réel).filename().string(), '?');
  if (!fs::exists(Classe / Nom, Erreur)) return "";
  const std::string Instance = NomSimple(Site);
  const auto [Clauses, Dit] = SigneDe(Nom, Classe);
  return "# Le port du site " + Instance + ", reconnu par " + Dit + ".\n" + "SUBSYSTEM==\"tty\", " + Clauses +
         "SYMLINK+=\"" + fs::path(LienDuSite(Site)).filename().string() +
         "\", TAG+=\"systemd\", ENV{SYSTEMD_WANTS}+=\"ombrey-port@" + Instance + ".service\"\n";
}

std::string LienDuSite(std::string_view Site) { return "/dev/ombrey-" + NomSimple(Site); }

fs::path FichierRègleUdev(std::string_view Site) { return "/etc/udev/rules.d/70-ombrey-" + NomSimple(Site) + ".rules"; }

}  // namespace Ombrey
