// Adapters in folders made like the system's, with pseudo-terminals as their devices.
#pragma once

#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <fstream>

#include "platform/serial/device_tree.h"

namespace Ombrey {

struct Adaptateur {
  std::string Nom;  ///< of its port, such as ttyUSB0
  std::string Prise = "1-1";
  std::string Numéro{};  ///< none: it bears no serial number
  std::string Interface = "00";
  std::string Pilote = "ch341-uart";
  std::string Port{};  ///< its number among those of the interface
};

struct ArbreUsb {
  explicit ArbreUsb(const std::filesystem::path& Dossier) : Racines{Dossier / "dev", Dossier / "sys"} {
    std::filesystem::create_directories(Racines.Dev / "serial/by-id");
    for (const char* Nom : {"dev/char", "class/tty"}) std::filesystem::create_directories(Racines.Sys / Nom);
  }
  void Brancher(const Adaptateur& Un, const std::string& Appareil) const {
    namespace fs = std::filesystem;
    const fs::path Usb = Racines.Sys / "devices" / Un.Prise;
    const fs::path Port = Usb / (Un.Prise + ":1." + Un.Interface) / Un.Nom;
    const fs::path Entrée = Port / "tty" / Un.Nom;
    fs::create_directories(Entrée);
    fs::create_symlink(Port, Entrée / "device");
    fs::create_symlink(fs::path("../drivers") / Un.Pilote, Port / "driver");
    const std::pair<fs::path, std::string> Attributs[] = {{Usb / "idVendor", "1a86"},
                                                          {Usb / "idProduct", "7523"},
                                                          {Usb / "product", "RS232 " + Un.Prise},
                                                          {Usb / "serial", Un.Numéro},
                                                          {Port.parent_path() / "bInterfaceNumber", Un.Interface},
                                                          {Port / "port_number", Un.Port}};
    for (const auto& [Fichier, Texte] : Attributs) std::ofstream(Fichier) << Texte << '\n';
    fs::create_symlink(Entrée, Racines.Sys / "class/tty" / Un.Nom);
    struct stat État {};
    if (stat(Appareil.c_str(), &État) != 0) return;
    fs::remove(EntréeDe(Racines, État.st_rdev));
    fs::create_symlink(Entrée, EntréeDe(Racines, État.st_rdev));
    fs::create_symlink(Appareil, Racines.Dev / Un.Nom);
  }
  void Débrancher(const std::string& Nom) const {
    std::filesystem::remove(Racines.Dev / Nom);
    const auto Entrée = Racines.Sys / "class/tty" / Nom;
    std::filesystem::remove_all(std::filesystem::canonical(Entrée / "device"));
    std::filesystem::remove(Entrée);
  }

  RacinesSystème Racines;
};

}  // namespace Ombrey
