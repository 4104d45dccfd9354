// Names and settings of a port, and the list of the machine's ports.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "common/failures.h"
#include "platform/serial/line_settings.h"
#include "platform/serial/machine_ports.h"
#include "tests/support/test_folder.h"

namespace Ombrey {
namespace {

namespace fs = std::filesystem;

template <class Action>
std::string Refus(Action&& Faire) {
  try {
    Faire();
  } catch (const ErreurExécution& Erreur) {
    return Erreur.what();
  }
  return "";
}

TEST(NomDePort, LeadsToItsDeviceOrIsRefused) {
  const std::pair<const char*, const char*> Bons[] = {{"COM1:", "/dev/ttyS0"},
                                                      {"com2", "/dev/ttyS1"},
                                                      {"Com16:", "/dev/ttyS15"},
                                                      {"/dev/ttyUSB0", "/dev/ttyUSB0"},
                                                      {"/tmp/lien:", "/tmp/lien:"}};
  for (const auto& [Nom, Chemin] : Bons) EXPECT_EQ(CheminDuPort(Nom), Chemin);
  for (const std::string Nom : {"", ":", "COM", "COM0:", "COM01:", "COM17:", "COM1::", "COM1 ", "COM-1",
                                "COM+1:", "COM99999999999:", "ttyUSB0", "LPT1:", "./com1"})
    EXPECT_NE(Refus([&] { static_cast<void>(CheminDuPort(Nom)); }).find("« " + Nom + " »"), std::string::npos) << Nom;
  EXPECT_NE(Refus([] { static_cast<void>(CheminDuPort(std::string("/dev/x\0y", 8))); }), "");
}

TEST(RéglagesDeLigne, TakeLettersAndWordsInEitherCase) {
  const std::pair<const char*, Parité> Bonnes[] = {
      {"N", Parité::Aucune}, {"n", Parité::Aucune},      {"Aucune", Parité::Aucune}, {"SANS", Parité::Aucune},
      {"E", Parité::Paire},  {"paire", Parité::Paire},   {"o", Parité::Impaire},     {"IMPAIRE", Parité::Impaire},
      {"m", Parité::Marque}, {"Marque", Parité::Marque}, {"S", Parité::Espace},      {"espace", Parité::Espace}};
  for (const auto& [Texte, Valeur] : Bonnes)
    EXPECT_EQ(VérifierRéglages("COM1:", {9600, 8, Texte, 1}).LaParité, Valeur) << Texte;
}

TEST(RéglagesDeLigne, RefuseWhatMeansNothingAndNameIt) {
  const std::pair<RéglagesDemandés, const char*> Mauvais[] = {
      {{0, 8, "N", 1}, "« 0 »"},    {{9601, 8, "N", 1}, "« 9601 »"}, {{-9600, 8, "N", 1}, "« -9600 »"},
      {{9600, 4, "N", 1}, "« 4 »"}, {{9600, 9, "N", 1}, "« 9 »"},    {{9600, 8, "", 1}, "«  »"},
      {{9600, 8, "X", 1}, "« X »"}, {{9600, 8, "NE", 1}, "« NE »"},  {{9600, 8, "N", 0}, "« 0 »"},
      {{9600, 8, "N", 3}, "« 3 »"}};
  for (const auto& [Demandés, Valeur] : Mauvais) {
    const std::string Texte = Refus([&, D = Demandés] { static_cast<void>(VérifierRéglages("COM7:", D)); });
    EXPECT_NE(Texte.find("COM7:"), std::string::npos) << Texte;
    EXPECT_NE(Texte.find(Valeur), std::string::npos) << Texte;
  }
}

TEST(RéglagesDeLigne, GiveTheTimeOfACharacter) {
  using namespace std::chrono_literals;
  EXPECT_EQ(VérifierRéglages("COM1:", {9600, 8, "N", 1}).TempsCaractère(), 10 * 1000000000ns / 9600);
  EXPECT_EQ(VérifierRéglages("COM1:", {300, 7, "E", 2}).TempsCaractère(), 11 * 1000000000ns / 300);
}

TEST(PortsDeLaMachine, AreTheOnesWithACircuitAndTheAdapters) {
  const Essais::DossierEssai Dossier;
  const auto Déposer = [&](const std::string& Nom, const std::string& Fichier, const std::string& Texte) {
    fs::create_directories(Dossier.Chemin() / Nom / "device");
    if (!Fichier.empty()) std::ofstream(Dossier.Chemin() / Nom / Fichier) << Texte << '\n';
  };
  Déposer("ttyUSB1", "device/product", "RS232 Adapter");
  Déposer("ttyS0", "type", "4");
  Déposer("ttyS1", "type", "0");
  Déposer("ttyS10", "type", "4");
  Déposer("ttyS2", "type", "4");
  Déposer("ttyprintk", "", "");
  fs::create_directories(Dossier.Chemin() / "tty1");
  const auto Ports = PortsListésDans(Dossier.Chemin());
  std::string Noms;
  for (const auto& Port : Ports) Noms += Port.Nom + " ";
  EXPECT_EQ(Noms, "COM1: COM3: COM11: /dev/ttyUSB1 ");
  EXPECT_EQ(Ports.back().Description, "adaptateur USB : RS232 Adapter");
  EXPECT_TRUE(PortsListésDans(Dossier.Chemin() / "rien").empty());
}

}  // namespace
}  // namespace Ombrey
