// What a terminal driver is asked for, and whether it was granted.
#include "platform/serial/line_mode.h"

#include <sys/stat.h>

#include <algorithm>
#include <iterator>

namespace Ombrey {

namespace {

struct CodeVitesse {
  int Bauds;
  speed_t Code;
};

constexpr CodeVitesse CodesVitesse[] = {
    {50, B50},   {75, B75},     {110, B110},   {134, B134},   {150, B150},   {200, B200},   {300, B300},
    {600, B600}, {1200, B1200}, {1800, B1800}, {2400, B2400}, {4800, B4800}, {9600, B9600}, {19200, B19200},
};

constexpr tcflag_t TaillesMots[] = {CS5, CS6, CS7, CS8};
constexpr int PetiteTaille = 5;

tcflag_t BitsParité(Parité LaParité) {
  switch (LaParité) {
    case Parité::Paire:
      return PARENB;
    case Parité::Impaire:
      return PARENB | PARODD;
    case Parité::Marque:
      return PARENB | PARODD | CMSPAR;
    case Parité::Espace:
      return PARENB | CMSPAR;
    case Parité::Aucune:
      break;
  }
  return 0;
}

}  // namespace

termios ModeBrut(termios Mode, const RéglagesLiaison& Réglages) {
  cfmakeraw(&Mode);
  // INPCK without parity too: without it a driver is free not to mark a break, which is a NUL then.
  Mode.c_iflag = IGNBRK | INPCK;
  Mode.c_cflag &= ~static_cast<tcflag_t>(CSIZE | PARENB | PARODD | CMSPAR | CSTOPB | CRTSCTS);
  Mode.c_cflag |= CLOCAL | CREAD | TaillesMots[Réglages.Bits - PetiteTaille] | BitsParité(Réglages.LaParité);
  if (Réglages.BitsStop == 2) Mode.c_cflag |= CSTOPB;
  Mode.c_cc[VMIN] = 1;
  Mode.c_cc[VTIME] = 0;
  const auto* Vitesse = std::find_if(std::begin(CodesVitesse), std::end(CodesVitesse),
                                     [&](const CodeVitesse& C) { return C.Bauds == Réglages.Bauds; });
  cfsetispeed(&Mode, Vitesse->Code);
  cfsetospeed(&Mode, Vitesse->Code);
  return Mode;
}

bool EstAppliqué(const termios& Demandé, const termios& Relu) {
  constexpr tcflag_t Comptent = CSIZE | PARENB | PARODD | CMSPAR | CSTOPB;
  return cfgetospeed(&Relu) == cfgetospeed(&Demandé) && (Relu.c_cflag & Comptent) == (Demandé.c_cflag & Comptent);
}

std::string ConseilDroit(mode_t Mode, const std::string& Groupe, const Demandeur& Qui) {
  constexpr mode_t LireEtÉcrire = S_IRGRP | S_IWGRP;
  if (Groupe.empty() || Groupe == "root" || (Mode & LireEtÉcrire) != LireEtÉcrire || Qui.EnUse) return "";
  const std::string Début = " Il appartient au groupe « " + Groupe + " »";
  if (Qui.Inscrit) return Début + ", où votre compte est inscrit : ouvrez une nouvelle session.";
  return Début + " : « sudo usermod -aG " + Groupe + " " + Qui.Compte +
         " » y ajoute votre compte, puis ouvrez une nouvelle session.";
}

}  // namespace Ombrey
