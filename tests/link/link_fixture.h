// The link's classes on the machine in memory, with a scripted terminal.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "link/checksum.h"
#include "link/exchange.h"
#include "tests/support/fake_host.h"
#include "tests/support/fake_platform.h"
#include "tests/support/test_folder.h"

namespace Ombrey::Essais {

using std::chrono::milliseconds;

/// The bytes of a text in which ^ stands for ACK, ! for NAK, ? for ENQ, < for STX, > for ETX, $ for EOT.
inline Octets Ligne(std::string_view Dessin) {
  Octets Bruts;
  for (const char Signe : Dessin) {
    switch (Signe) {
      case '^':
        Bruts += ACK;
        break;
      case '!':
        Bruts += NAK;
        break;
      case '?':
        Bruts += ENQ;
        break;
      case '<':
        Bruts += STX;
        break;
      case '>':
        Bruts += ETX;
        break;
      case '$':
        Bruts += EOT;
        break;
      default:
        Bruts += Signe;
    }
  }
  return Bruts;
}

class Liaison : public ::testing::Test {
 protected:
  Liaison() {
    État.PortComm = Plateforme.Port;
    État.EventPortComRG80 =
        Plateforme.CréerClientPortComm([this](const Octets& Texte) { UnÉchange.EventPortComRG80_Lecture(Texte); });
    Plateforme.Port->Client = État.EventPortComRG80;
    État.LongEnregChargement = 55;
  }

  /// The end of the plug-in as the wait sees it.
  void Terminer() {
    État.Abandon = true;
    État.PortComm.reset();
    Plateforme.Port->EcritureRefusée = true;
  }
  /// Everything written so far, in one text.
  Octets Ecrit() const {
    Octets Tout;
    for (const Octets& Texte : Plateforme.Port->Ecrits) Tout += Texte;
    return Tout;
  }

  FaussePlateforme Plateforme;
  FauxCanal Canal;
  ÉtatPlugIn État{Plateforme, Canal};
  Échange UnÉchange{État};
};

}  // namespace Ombrey::Essais
