// A name for an adapter that stays its own, whatever number the system gives it.
#include "platform/serial/udev_rule.h"

#include <algorithm>
#include <fstream>
#include <string>
#include <system_error>

namespace Ombrey {
namespace {

namespace fs = std::filesystem;

/// From an adapter's port up to the device that bears the adapter's number.
constexpr int NiveauxMax = 6;

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

/// An attribute as a pattern of a rule: "?" stands for any character. Empty when there is none.
std::string Motif(const fs::path& Attribut) {
  std::ifstream Flux(Attribut);
  std::string Texte;
  std::getline(Flux, Texte);
  Texte.erase(Texte.find_last_not_of(" \t\r") + 1);  // as the system compares it
  return Simplifié(std::move(Texte), '?');
}

std::string Clause(const char* Clé, const std::string& Valeur) {
  return Valeur.empty() ? "" : std::string(Clé) + "==\"" + Valeur + "\", ";
}

/// What the rule knows the device by, and in French how.
struct Signe {
  std::string Clauses;
  std::string Dit;
};

Signe SigneDe(const std::string& Nom, const fs::path& Classe) {
  std::error_code Erreur;
  fs::path Dossier = fs::canonical(Classe / Nom / "device", Erreur);
  std::string Interface;
  for (int Niveau = 0; !Erreur && Niveau < NiveauxMax && Dossier.has_relative_path(); ++Niveau) {
    // An adapter with several ports has one number for all of them.
    if (Interface.empty()) Interface = Motif(Dossier / "bInterfaceNumber");
    const std::string Marque = Motif(Dossier / "idVendor");
    if (!Marque.empty()) {
      const std::string Numéro = Motif(Dossier / "serial");
      const std::string Place = Simplifié(Dossier.filename().string(), '?');
      return {Clause("ENV{ID_USB_INTERFACE_NUM}", Interface) + (Numéro.empty() ? Clause("KERNELS", Place) : "") +
                  Clause("ATTRS{idVendor}", Marque) + Clause("ATTRS{idProduct}", Motif(Dossier / "idProduct")) +
                  Clause("ATTRS{serial}", Numéro),
              Numéro.empty() ? "sa prise " + Place + " (il n'a pas de numéro de série)" : "son numéro de série"};
    }
    Dossier = Dossier.parent_path();
  }
  return {Clause("KERNEL", Nom), "son nom"};
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
