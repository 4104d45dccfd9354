// What a line is set to, read back from a pseudo-terminal as far as that keeps it; who is told how to get the right.
#include "platform/serial/line_device.h"
#include "platform/serial/line_mode.h"
#include "tests/serial/pseudo_terminal.h"

namespace Ombrey::Essais {

TEST(Mode, IsWhatTheSettingsSayWhateverAnotherProgramLeft) {
  // Settings, speed, the flags that a pseudo-terminal keeps and the others.
  constexpr tcflag_t Autres = CSIZE | PARENB;
  const std::tuple<RéglagesLiaison, speed_t, tcflag_t, tcflag_t> Table[] = {
      {{50, 5, Parité::Aucune, 1}, B50, 0, CS5},
      {{110, 6, Parité::Aucune, 2}, B110, CSTOPB, CS6},
      {{300, 7, Parité::Paire, 2}, B300, CSTOPB, CS7 | PARENB},
      {{1200, 7, Parité::Impaire, 1}, B1200, PARODD, CS7 | PARENB},
      {{9600, 8, Parité::Marque, 1}, B9600, PARODD | CMSPAR, CS8 | PARENB},
      {{19200, 8, Parité::Espace, 1}, B19200, CMSPAR, CS8 | PARENB}};
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
  const std::tuple<mode_t, const char*, Demandeur, const char*> Table[] = {
      {0660, "dialout", {"anne", false, false}, "« sudo usermod -aG dialout anne »"},
      {0660, "dialout", {"anne", true, false}, "inscrit : ouvrez une nouvelle session"},
      {0660, "dialout", {"anne", true, true}, nullptr},
      {0660, "root", {"anne", false, false}, nullptr},
      {0660, "", {"anne", false, false}, nullptr},
      {0620, "tty", {"anne", false, false}, nullptr},
      {0600, "dialout", {"anne", false, false}, nullptr}};
  for (const auto& [Mode, Groupe, Qui, Mots] : Table) {
    const std::string Dit = ConseilDroit(Mode, Groupe, Qui);
    EXPECT_TRUE(Mots ? Dit.find(Mots) != std::string::npos : Dit.empty()) << Groupe << Mode << Dit;
  }
}

}  // namespace Ombrey::Essais
