// What stands between a station and its terminal: the settings, the device, who holds it, and its lasting name.
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "base/failures.h"
#include "base/files.h"
#include "base/text_helpers.h"
#include "host/diagnostic.h"
#include "platform/serial/device_tree.h"
#include "platform/serial/machine_ports.h"
#include "platform/serial/port_dialogue.h"
#include "platform/serial/port_settings.h"
#include "platform/serial/udev_rule.h"
#include "platform/system/folder_lock.h"
#include "platform/system/safe_file.h"
#include "platform/system/settings_files.h"

namespace Tarvel {
namespace {

namespace fs = std::filesystem;
using Ombrey::Chemin;
using Ombrey::TexteChemin;
using Ombrey::Énumérer;
using std::string_literals::operator""s;

constexpr const char* SectionPort = "PlugInOmbrey";
constexpr std::string_view DébutNomStable = "/dev/ombrey-";

/// The port's settings of the file; a finding, and no port, when there are none to go on with.
Ombrey::RéglagesPort ExaminerRéglages(const Options& Choisies, std::vector<Constat>& Constats) {
  constexpr const char* Sujet = "réglages";
  const std::string Fichier = TexteChemin(Choisies.Ini);
  Ombrey::RéglagesPort Lus;
  std::error_code Code;
  if (!fs::exists(Choisies.Ini, Code)) {
    const bool SansDroit = Code == std::errc::permission_denied;
    Constats.push_back({Jugement::Mauvais, Sujet,
                        "le fichier " + Fichier + (SansDroit ? " est dans un dossier fermé à ce compte." : " manque."),
                        SansDroit ? "relancez avec sudo, ou par le compte de la station"
                                  : "cp /usr/share/doc/ombrey/examples/site.ini " + PourCommande(Fichier)});
    return Lus;
  }
  try {
    Ombrey::LecteurIniFichier Lecteur;
    Lecteur.FixerFichier(Fichier);
    Lecteur.FixerSection(SectionPort);
    Lus = Ombrey::LireRéglages(Lecteur);
  } catch (const Ombrey::ErreurExécution& Erreur) {
    const bool SansDroit = access(Choisies.Ini.c_str(), F_OK) == 0 && access(Choisies.Ini.c_str(), R_OK) != 0;
    Constats.push_back({Jugement::Mauvais, Sujet, Erreur.what(),
                        SansDroit ? "sudo chmod a+r " + PourCommande(Fichier)
                                  : "remettez un fichier de texte (UTF-8 ou Windows-1252)"});
    return Lus;
  }
  const std::string Faute =
      Lus.Port.empty() ? "aucun port n'y est réglé." : EssayerPort(Lus, [](const std::string&) { return true; });
  if (Faute.empty()) {
    Constats.push_back({Jugement::Bon, Sujet,
                        Fichier + " : " + Lus.Port + ", " + Lus.Bauds + " bauds, parité " + Lus.Parité + ", " +
                            Lus.TailleMots + " bits, stop " + Lus.BitsStop});
    return Lus;
  }
  Constats.push_back({Jugement::Mauvais, Sujet, Fichier + " : " + Faute,
                      "corrigez sa section [PlugInOmbrey], ou passez par Station > Configurer le port"});
  return {};
}

std::vector<std::string> NomsPorts(const LieuxMachine& Lieux) {
  std::vector<std::string> Noms;
  for (const Ombrey::PortTrouvé& Port : Ombrey::PortsListésDans(Lieux.Ports))
    Noms.push_back(Port.Nom + " (" + Port.Description + ")");
  return Noms;
}

std::string RemèdePort(const std::string& Appareil, const std::string& Refus, const std::vector<std::string>& Eux,
                       const LieuxMachine& Lieux) {
  if (Refus.find("sudo ") != std::string::npos) return "la commande ci-dessus";
  std::error_code Code;
  if (!fs::exists(Appareil, Code)) {
    const std::string Présents = Énumérer(NomsPorts(Lieux));
    return "branchez l'adaptateur, ou choisissez un autre port ; la machine a : " +
           (Présents.empty() ? "aucun port série"s : Présents);
  }
  if (!Eux.empty())  // the refusal may have told their names
    return "arrêtez ce qui le tient" + (Refus.find(Eux.front()) == std::string::npos ? " : " + Énumérer(Eux) : ""s);
  if (access(Appareil.c_str(), R_OK | W_OK) != 0)
    return "débranchez et rebranchez l'adaptateur, puis regardez « ls -lL " + PourCommande(Appareil) + " »";
  return "sudo fuser -v " + PourCommande(Appareil) + " montre qui le tient ; vérifiez câble et adaptateur";
}

void ExaminerPort(const Ombrey::RéglagesPort& Réglages, const Options& Choisies, const LieuxMachine& Lieux,
                  std::vector<Constat>& Constats) {
  constexpr const char* Sujet = "port";
  const std::string Appareil = Ombrey::CheminDuPort(Réglages.Port);
  const std::vector<std::string> Eux = Ombrey::Tenants(Ombrey::IdentitéAppareil(Appareil));
  // A station that works on these settings holds the port by right.
  const auto Station = Choisies.Dossier.empty() ? std::nullopt : Ombrey::OccupantDossier(Choisies.Dossier);
  if (Station && std::ranges::find(Eux, *Station) != Eux.end()) {
    Constats.push_back({Jugement::Bon, Sujet, Appareil + " est à la station qui travaille (" + *Station + ")."});
    return;
  }
  const std::string Refus = EssayerPort(Réglages, [](const std::string&) { return false; });
  // Who looks on from another account than the station's can't tell who has its port, and needn't have a right to it.
  const bool EstFermé = Refus.find(" est déjà utilisé ") != std::string::npos ||
                        (!Refus.empty() && access(Appareil.c_str(), R_OK | W_OK) != 0 && errno == EACCES);
  if (Refus.empty())
    Constats.push_back({Jugement::Bon, Sujet, Appareil + " est libre et s'ouvre."});
  else if (Station && Eux.empty() && EstFermé)
    Constats.push_back({Jugement::ÀVoir, Sujet,
                        Appareil +
                            " : ce compte ne peut pas l'essayer et ne voit pas qui le tient ; une station travaille (" +
                            *Station + ").",
                        ParSonCompte(Choisies.Dossier, Choisies)});
  else
    Constats.push_back({Jugement::Mauvais, Sujet, Refus, RemèdePort(Appareil, Refus, Eux, Lieux)});
}

/// The device that the rule is for: the one of the settings, else the machine's only adapter. Empty when that isn't
/// clear.
std::string AdaptateurEnMain(const std::string& Port, const LieuxMachine& Lieux) {
  const std::string Appareil = Port.empty() ? "" : Ombrey::CheminDuPort(Port);
  std::error_code Code;
  if (!Appareil.empty() && fs::exists(Appareil, Code)) return Appareil;
  std::vector<std::string> Adaptateurs;
  for (const Ombrey::PortTrouvé& Trouvé : Ombrey::PortsListésDans(Lieux.Ports))
    if (Trouvé.Nom.starts_with('/') && !Trouvé.Nom.starts_with("/dev/ttyS")) Adaptateurs.push_back(Trouvé.Nom);
  return Adaptateurs.size() == 1 ? Adaptateurs.front() : "";
}

void ExaminerNom(const std::string& Port, const Options& Choisies, const LieuxMachine& Lieux,
                 std::vector<Constat>& Constats) {
  constexpr const char* Sujet = "règle udev";
  // The service of a site may use the device of its own name only, and is called after its settings file.
  const std::string Site = TexteChemin(Choisies.Ini.stem());
  const std::string Appareil = AdaptateurEnMain(Port, Lieux);
  const std::string Règle = Appareil.empty() ? "" : Ombrey::RègleUdev(Appareil, Site, Lieux.Ports);
  if (Règle.empty()) {
    const bool YEnAura = Port.empty() || Port.starts_with(DébutNomStable);
    Constats.push_back({YEnAura ? Jugement::ÀVoir : Jugement::Bon, Sujet,
                        YEnAura ? "l'adaptateur du site « " + Site + " » n'est pas reconnu."
                                : "ce port n'est pas un appareil de la machine, il n'en faut pas.",
                        YEnAura ? "branchez cet adaptateur seul et relancez, ou mettez Port= à son nom présent" : ""});
    return;
  }
  const fs::path Fichier = Lieux.Règles / Ombrey::FichierRègleUdev(Site).filename();
  const std::string NomStable = Ombrey::LienDuSite(Site);
  const std::string Ensuite = Port == NomStable ? "" : ", puis mettez Port=" + NomStable + " dans les réglages";
  const std::string Relire = "sudo udevadm control --reload && sudo udevadm trigger --subsystem-match=tty";
  std::error_code Code;
  try {
    const auto Présente = Ombrey::LireFichier(Fichier);
    if (Présente == Règle)
      Constats.push_back({Jugement::Bon, Sujet, TexteChemin(Fichier) + " donne à l'adaptateur le nom " + NomStable});
    else if (Présente)
      Constats.push_back(
          {Jugement::ÀVoir, Sujet, TexteChemin(Fichier) + " parle d'un autre appareil que " + Appareil + ".",
           "si l'adaptateur a changé : sudo rm " + PourCommande(TexteChemin(Fichier)) + ", puis relancez"});
    else {
      Ombrey::EcrireFichier(Fichier, Règle);
      Constats.push_back(
          {Jugement::ÀVoir, Sujet,
           TexteChemin(Fichier) + " vient d'être écrite : elle donne à " + Appareil + " le nom " + NomStable + ".",
           Relire + Ensuite});
    }
  } catch (const Ombrey::ErreurExécution&) {
    const std::string Commande = "sudo tarvel --diagnostic --ini " + PourCommande(TexteChemin(Choisies.Ini));
    if (Port.starts_with("/dev/serial/by-"))
      Constats.push_back({Jugement::Bon, Sujet,
                          Port + " reste à l'adaptateur ; il n'en faut un autre que pour un service ombrey@SITE, et " +
                              Commande + " le donne."});
    else
      Constats.push_back(
          {Jugement::ÀVoir, Sujet,
           Appareil + " n'a pas de nom qui lui reste, et ce compte ne peut pas écrire " + TexteChemin(Fichier) + ".",
           Commande});
  }
}

}  // namespace

void ExaminerLigne(const Options& Choisies, const LieuxMachine& Lieux, std::vector<Constat>& Constats) {
  const Ombrey::RéglagesPort Réglages = ExaminerRéglages(Choisies, Constats);
  if (!Réglages.Port.empty()) ExaminerPort(Réglages, Choisies, Lieux, Constats);
  ExaminerNom(Réglages.Port, Choisies, Lieux, Constats);
}

}  // namespace Tarvel
