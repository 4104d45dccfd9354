// The rule that gives an adapter a name of its own, from folders made like the system's.
#include "platform/serial/udev_rule.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>

#include "tests/support/test_folder.h"

namespace Ombrey {
namespace {

namespace fs = std::filesystem;

TEST(RègleUdev, KnowsAnAdapterByWhatStaysItsOwn) {
  const struct {
    const char* Nom;
    std::map<std::string, std::string> Attributs;  ///< by folder below the USB device
    const char* Site;
    const char* Clauses;
  } Cas[] = {
      {"ttyUSB3",
       {{"serial", "A50 \"69\" "}, {"idVendor", "0403"}, {"idProduct", "6011"}, {"1-1.2:1.1/bInterfaceNumber", "01"}},
       "chai",
       R"(ENV{ID_USB_INTERFACE_NUM}=="01", ATTRS{idVendor}=="0403", ATTRS{idProduct}=="6011", ATTRS{serial}=="A50??69?", )"},
      {"ttyUSB0",
       {{"idVendor", "1a86"}, {"idProduct", "7523"}},
       "chai",
       R"(KERNELS=="1-1.2", ATTRS{idVendor}=="1a86", ATTRS{idProduct}=="7523", )"},
      {"ttyS0", {}, "chai", R"(KERNEL=="ttyS0", )"},
      {"ttyS0", {}, "un \"site\"/..", R"(KERNEL=="ttyS0", )"}};
  for (const auto& [Nom, Attributs, Site, Clauses] : Cas) {
    SCOPED_TRACE(std::string(Nom) + " " + Site);
    const Essais::DossierEssai Dossier;
    const fs::path Usb = Dossier.Chemin() / "devices" / "1-1.2";
    const fs::path Port = Usb / "1-1.2:1.1" / Nom;
    fs::create_directories(Port);
    fs::create_directories(Dossier.Chemin() / "tty" / Nom);
    fs::create_symlink(Port, Dossier.Chemin() / "tty" / Nom / "device");
    for (const auto& [Fichier, Texte] : Attributs) std::ofstream(Usb / Fichier) << Texte << '\n';
    const std::string Instance = *Site == 'c' ? "chai" : "un__site__..";
    const std::string Règle = RègleUdev(fs::path("/dev") / Nom, Site, Dossier.Chemin() / "tty");
    EXPECT_EQ(Règle.substr(Règle.find('\n') + 1),
              std::string(R"(SUBSYSTEM=="tty", )") + Clauses + R"(SYMLINK+="ombrey-)" + Instance +
                  R"(", TAG+="systemd", ENV{SYSTEMD_WANTS}+="ombrey-port@)" + Instance + ".service\"\n");
    EXPECT_EQ(RègleUdev("/dev/ttyUSB9", Site, Dossier.Chemin() / "tty"), "");
    EXPECT_EQ(FichierRègleUdev(Site), "/etc/udev/rules.d/70-ombrey-" + Instance + ".rules");
  }
}

}  // namespace
}  // namespace Ombrey
