// A message of the line in words.
#pragma once

#include <string>

#include "contracts/octets.h"

namespace Ombrey {

/// What a message says, and whether it shows a fault.
struct Récit {
  std::string Texte;
  bool Faute = false;
};

/// What the station says; Code is that of its last request.
[[nodiscard]] Récit LireDeStation(const Octets& Message, char Code);
/// The terminal's answer to a request.
[[nodiscard]] Récit LireRéponseÀDemande(const Octets& Message);
/// The terminal's answer to a frame.
[[nodiscard]] Récit LireRéponseÀTrame(const Octets& Message);
/// The frame of a load, which is read by its places.
[[nodiscard]] Récit LireTrameChargement(const Octets& Trame);

/// The bytes in UTF-8, so that they can be had back: the six control characters by name (<STX>), whatever else has no
/// sign of its own, and "<", as two hexadecimal digits (<0D>), all others as their character of Windows-1252.
[[nodiscard]] std::string TexteBrut(const Octets& Bruts);

}  // namespace Ombrey
