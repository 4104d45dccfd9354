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
  return {Clause("ENV{ID_USB_INTERFACE_NUM}", Interface) + (Numéro.empty() ? Clause("KERNELS", Place) : "") +
              Clause("ATTRS{idVendor}", Marque) + Clause("ATTRS{idProduct}", Modèle) + Clause("ATTRS{serial}", Numéro),
          Numéro.empty() ? "sa prise " + Place + " (il n'a pas de numéro de série)" : "son numéro de série"};
}

}  // namespace

std::string RègleUdev(const fs::path& Appareil, std::string_view Site, const fs::path& Classe) {
  std::error_code Erreur;
  const fs::path Réel = fs::canonical(Appareil, Erreur);
  const std::string Nom = Simplifié((Erreur ? Appareil : Réel).filename().string(), '?');
  if (!fs::exists(Classe / Nom, Erreur)) return "";
  const std::string Instance = Simplifié(std::string(Site), '_');
  const auto [Clauses, Dit] = SigneDe(Nom, Classe);
  return "# Le port du site " + Instance + ", reconnu par " + Dit + ".\n" + "SUBSYSTEM==\"tty\", " + Clauses +
         "SYMLINK+=\"ombrey-" + Instance + "\", TAG+=\"systemd\", ENV{SYSTEMD_WANTS}+=\"ombrey-port@" + Instance +
         ".service\"\n";
}

fs::path FichierRègleUdev(std::string_view Site) {
  return "/etc/udev/rules.d/70-ombrey-" + Simplifié(std::string(Site), '_') + ".rules";
}

}  // namespace Ombrey
