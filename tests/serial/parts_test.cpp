// The parts of a port: bursts, names and settings, the list of the machine's ports, the rule for an adapter's name;
// what a line is set to, read back from a pseudo-terminal as far as that keeps it; who is told how to get the right.

#include "base/failures.h"
#include "platform/serial/burst.h"
#include "platform/serial/line_device.h"
#include "platform/serial/line_mode.h"
#include "platform/serial/line_settings.h"
#include "platform/serial/machine_ports.h"
#include "platform/serial/udev_rule.h"
#include "tests/serial/pseudo_terminal.h"
#include "tests/serial/usb_tree.h"
#include "tests/support/test_folder.h"

namespace Ombrey::Essais {

using namespace std::chrono_literals;

/// A frame on its own; what stands outside one comes in whatever pieces.
void Noter(std::vector<std::string>& Closes, const Octets& Close) {
  const bool Suite = !Closes.empty() && Closes.back()[0] != 2 && Close[0] != 2;
  if (!Suite) Closes.emplace_back();
  Closes.back() += Close.Bruts();
}

TEST(Rafale, IsTheSameInWhateverPiecesTheBytesCome) {
  const std::string Trame = "\x02" + std::string(55, '7') + "\x03" + "2;";
  const std::string Ack = "\x06!";
  // What comes in, what goes up without any silence, and what only silence closes.
  // clang-format off
  const std::tuple<std::string, std::vector<std::string>, std::string> Table[] = {
      {"", {}, ""}, {Ack, {Ack}, ""}, {Ack + Trame, {Ack, Trame}, ""}, {"xy\x03!2", {"xy\x03!2"}, ""},
      {Trame + Trame + Ack, {Trame, Trame, Ack}, ""},
      {Ack + Trame.substr(0, 58), {Ack}, Trame.substr(0, 58)},
      {"\x02x\x03\x02\x03!", {"\x02x\x03\x02\x03", "!"}, ""},  // STX and ETX as checksum
  };
  // clang-format on
  for (const auto& [Reçus, Attendues, Tenus] : Table) {
    for (const std::size_t Morceau : {std::size_t{1}, std::size_t{8}, std::size_t{14}, std::size_t{4096}}) {
      SCOPED_TRACE(Reçus + " by " + std::to_string(Morceau));
      Rafale Rafale(1041667ns);  // of a character at 9600 baud
      std::vector<std::string> Closes;
      for (std::size_t Début = 0; Début < Reçus.size(); Début += Morceau)
        for (const Octets& Close : Rafale.Ajouter(std::string_view(Reçus).substr(Début, Morceau))) Noter(Closes, Close);
      EXPECT_EQ(Closes, Attendues);
      EXPECT_EQ(Rafale.SilenceAttendu().has_value(), !Tenus.empty());
      EXPECT_EQ(Rafale.Clore().Bruts(), Tenus);
    }
  }
}

TEST(Rafale, WaitsLongerOnASlowLineAndHoldsNoMoreThanItsBound) {
  Rafale Lente(100ms);
  EXPECT_TRUE(Lente.Ajouter("\x02").empty());
  EXPECT_EQ(Lente.SilenceAttendu(), 350ms);
  Rafale Pleine(1ms);
  EXPECT_EQ(Pleine.Ajouter("\x02" + std::string(Rafale::TailleMax, 'x')).at(0).Taille(), Rafale::TailleMax);
}

TEST(NomDePort, LeadsToItsDeviceOrIsRefused) {
  const std::pair<const char*, const char*> Bons[] = {
      {"COM1:", "/dev/ttyS0"}, {"com2", "/dev/ttyS1"}, {"Com16:", "/dev/ttyS15"}, {"/tmp/x:", "/tmp/x:"}};
  for (const auto& [Nom, Chemin] : Bons) EXPECT_EQ(CheminDuPort(Nom), Chemin);
  for (const std::string& Nom :
       std::vector<std::string>{"", ":", "COM", "COM0:", "COM01:", "COM17:", "COM1::", "COM1 ", "COM-1",
                                "COM+1:", "COM99999999999:", "ttyUSB0", "./com1", std::string("/dev/x\0y", 8)})
    EXPECT_THROW(static_cast<void>(CheminDuPort(Nom)), ErreurExécution) << Nom;
}

TEST(RéglagesDeLigne, AreTakenOrRefusedByTheirValue) {
  // clang-format off
  const std::pair<const char*, Parité> Bonnes[] = {
      {"N", Parité::Aucune}, {"Aucune", Parité::Aucune}, {"SANS", Parité::Aucune}, {"E", Parité::Paire},
      {"paire", Parité::Paire}, {"o", Parité::Impaire}, {"m", Parité::Marque}, {"espace", Parité::Espace}};
  const std::vector<RéglagesDemandés> Mauvais = {
      {0, 8, "N", 1}, {9601, 8, "N", 1}, {-9600, 8, "N", 1}, {9600, 4, "N", 1}, {9600, 9, "N", 1}, {9600, 8, "", 1},
      {9600, 8, "NE", 1}, {9600, 8, "N", 0}, {9600, 8, "N", 3}};
  // clang-format on
  for (const auto& [Texte, Valeur] : Bonnes)
    EXPECT_EQ(VérifierRéglages("COM1:", {9600, 8, Texte, 1}).LaParité, Valeur) << Texte;
  for (const RéglagesDemandés& Demandés : Mauvais)
    EXPECT_THROW(static_cast<void>(VérifierRéglages("COM7:", Demandés)), ErreurExécution) << &Demandés - Mauvais.data();
  EXPECT_EQ(VérifierRéglages("COM1:", {300, 7, "E", 2}).TempsCaractère(), std::chrono::nanoseconds(11000000000) / 300);
}

TEST(PortsDeLaMachine, AreTheAdaptersByTheirStableNamesAndTheOnesWithACircuit) {
  const DossierEssai Dossier;
  const ArbreUsb Usb(Dossier.Chemin());
  const std::filesystem::path Classe = Usb.Racines.Sys / "class/tty";
  for (const char* Nom : {"ttyS0", "ttyS2", "ttyS10", "ttyS1", "ttyprintk", "tty1"})
    std::filesystem::create_directories(Classe / Nom / (std::string(Nom) == "tty1" ? "" : "device"));
  for (const char* Nom : {"ttyS0", "ttyS2", "ttyS10"}) std::ofstream(Classe / Nom / "type") << "4\n";
  std::ofstream(Classe / "ttyS1/type") << "0\n";
  const PseudoTerminal Loin[2];
  Usb.Brancher({"ttyUSB1", "1-1"}, Loin[0].Nom());
  Usb.Brancher({"ttyUSB2", "1-2", "A1"}, Loin[1].Nom());
  std::filesystem::create_symlink("../../ttyUSB2", Usb.Racines.Dev / "serial/by-id/usb-A1");
  std::string Noms;
  for (const auto& Port : PortsListésDans(Classe, Usb.Racines.Dev)) Noms += Port.Nom + " " + Port.Description + "\n";
  for (std::size_t Ici; (Ici = Noms.find(Usb.Racines.Dev)) != std::string::npos;)
    Noms.replace(Ici, Usb.Racines.Dev.string().size(), "/DEV");
  EXPECT_EQ(Noms,
            "/DEV/serial/by-id/usb-A1 adaptateur USB : RS232 1-2 (/DEV/ttyUSB2)\n"
            "COM1: port série de la machine (/DEV/ttyS0)\nCOM3: port série de la machine (/DEV/ttyS2)\n"
            "COM11: port série de la machine (/DEV/ttyS10)\n/DEV/ttyUSB1 adaptateur USB : RS232 1-1\n");
  EXPECT_TRUE(PortsListésDans(Dossier.Chemin() / "rien").empty());
}

TEST(RègleUdev, KnowsAnAdapterByWhatStaysItsOwn) {
  // The device, the site and its name in the rule, what the device is known by.
  // clang-format off
  const std::tuple<Adaptateur, const char*, const char*, const char*> Cas[] = {
      {{"ttyUSB3", "1-1.2", "A50 \"69\" ", "01", "mxuport", "2"}, "chai", "chai",
       R"(ENV{ID_USB_INTERFACE_NUM}=="01", ENV{.ID_PORT}=="2", ATTRS{idVendor}=="1a86", ATTRS{idProduct}=="7523", ATTRS{serial}=="A50??69?", )"},
      {{"ttyUSB0", "1-1.2", "", ""}, "chai", "chai", R"(KERNELS=="1-1.2", ATTRS{idVendor}=="1a86", ATTRS{idProduct}=="7523", )"},
      {{"ttyUSB0", "1-1.2", "0001"}, "chai", "chai",
       R"(ENV{ID_USB_INTERFACE_NUM}=="00", KERNELS=="1-1.2", ATTRS{idVendor}=="1a86", ATTRS{idProduct}=="7523", ATTRS{serial}=="0001", )"},
      {{"ttyS0"}, "un \"site\"/..", "un__site__..", R"(KERNEL=="ttyS0", )"}};
  // clang-format on
  for (const auto& [Appareil, Site, Instance, Clauses] : Cas) {
    const DossierEssai Dossier;
    const ArbreUsb Usb(Dossier.Chemin());
    const std::filesystem::path Classe = Usb.Racines.Sys / "class/tty";
    Usb.Brancher({"ttyUSB9", "1-9", "0001"}, "");
    if (Appareil.Nom != "ttyS0") Usb.Brancher(Appareil, "");
    std::filesystem::create_directories(Classe / Appareil.Nom);
    const std::string Règle = RègleUdev("/dev/" + Appareil.Nom, Site, Classe), Nom = Instance;
    EXPECT_EQ(Règle.substr(Règle.find('\n') + 1),
              std::string(R"(SUBSYSTEM=="tty", )") + Clauses + R"(SYMLINK+="ombrey-)" + Nom +
                  R"(", TAG+="systemd", ENV{SYSTEMD_WANTS}+="ombrey-port@)" + Nom + ".service\"\n");
    EXPECT_EQ(RègleUdev("/dev/ttyUSB8", Site, Classe), "");
    EXPECT_EQ(FichierRègleUdev(Site), "/etc/udev/rules.d/70-ombrey-" + Nom + ".rules");
  }
}

TEST(Mode, IsWhatTheSettingsSayWhateverAnotherProgramLeft) {
  // Settings, speed, the flags that a pseudo-terminal keeps and the others.
  constexpr tcflag_t Autres = CSIZE | PARENB;
  // clang-format off
  const std::tuple<RéglagesLiaison, speed_t, tcflag_t, tcflag_t> Table[] = {
      {{50, 5, Parité::Aucune, 1}, B50, 0, CS5}, {{110, 6, Parité::Aucune, 2}, B110, CSTOPB, CS6},
      {{300, 7, Parité::Paire, 2}, B300, CSTOPB, CS7 | PARENB}, {{1200, 7, Parité::Impaire, 1}, B1200, PARODD, CS7 | PARENB},
      {{9600, 8, Parité::Marque, 1}, B9600, PARODD | CMSPAR, CS8 | PARENB},
      {{19200, 8, Parité::Espace, 1}, B19200, CMSPAR, CS8 | PARENB}};
  // clang-format on
  for (const auto& [Réglages, Vitesse, Gardés, LesAutres] : Table) {
    SCOPED_TRACE(Réglages.Bauds);
    const PseudoTerminal Loin;
    const Descripteur Voisin(open(Loin.Nom().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
    termios Laissé{};
    ASSERT_EQ(tcgetattr(Voisin.Numéro(), &Laissé), 0);
    Laissé.c_iflag = IGNPAR | PARMRK | ISTRIP | IXON | IXOFF | IXANY | ICRNL | BRKINT;
    Laissé.c_cflag |= CSTOPB | PARODD | CMSPAR | CRTSCTS;
    Laissé.c_cflag &= ~static_cast<tcflag_t>(CLOCAL);
    Laissé.c_cc[VMIN] = 0;
    ASSERT_EQ(tcsetattr(Voisin.Numéro(), TCSANOW, &Laissé), 0);
    const AppareilLiaison Ligne({Loin.Nom(), Loin.Nom()}, Réglages);
    termios Lu{};
    ASSERT_EQ(tcgetattr(Voisin.Numéro(), &Lu), 0);
    EXPECT_EQ(cfgetospeed(&Lu), Vitesse);
    EXPECT_EQ(Lu.c_cflag & (CSTOPB | PARODD | CMSPAR | CRTSCTS | CLOCAL | CREAD), Gardés | CLOCAL | CREAD);
    EXPECT_EQ(Lu.c_iflag, tcflag_t{IGNBRK | INPCK});
    EXPECT_EQ((Lu.c_lflag & (ICANON | ECHO | ISIG)) | (Lu.c_oflag & OPOST), 0U);
    EXPECT_EQ(Lu.c_cc[VMIN], 1);
    const termios Voulu = ModeBrut(Laissé, Réglages);
    EXPECT_EQ(Voulu.c_cflag & Autres, LesAutres);
    EXPECT_TRUE(EstAppliqué(Voulu, Voulu));
    for (const tcflag_t Bit : {tcflag_t{CS6}, tcflag_t{PARENB}, tcflag_t{PARODD}, tcflag_t{CMSPAR}, tcflag_t{CSTOPB}}) {
      termios Relu = Voulu;
      Relu.c_cflag ^= Bit;
      EXPECT_FALSE(EstAppliqué(Voulu, Relu)) << Bit;
    }
    termios Relu = Voulu;
    cfsetspeed(&Relu, B600);
    EXPECT_FALSE(EstAppliqué(Voulu, Relu));
  }
}

TEST(ConseilDroit, IsGivenWhereTheGroupHelps) {
  // clang-format off
  const std::tuple<mode_t, const char*, Demandeur, const char*> Table[] = {
      {0660, "dialout", {"anne", false, false}, "« sudo usermod -aG dialout anne »"},
      {0660, "dialout", {"anne", true, false}, "inscrit : ouvrez une nouvelle session"},
      {0660, "dialout", {"anne", true, true}, nullptr}, {0660, "root", {"anne", false, false}, nullptr},
      {0660, "", {"anne", false, false}, nullptr}, {0620, "tty", {"anne", false, false}, nullptr},
      {0600, "dialout", {"anne", false, false}, nullptr}};
  // clang-format on
  for (const auto& [Mode, Groupe, Qui, Mots] : Table) {
    const std::string Dit = ConseilDroit(Mode, Groupe, Qui);
    EXPECT_TRUE(Mots ? Dit.find(Mots) != std::string::npos : Dit.empty()) << Groupe << Mode << Dit;
  }
}

}  // namespace Ombrey::Essais
