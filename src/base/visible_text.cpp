// Text as it is shown.
#include "base/visible_text.h"

#include <algorithm>

#include "base/ansi_text.h"
#include "contracts/octets.h"

namespace Ombrey {
namespace {

constexpr unsigned char PremierVisible = 0x20;
constexpr unsigned char Suppression = 0x7F;

/// The sign that Unicode has for a control character below 0x20, or for DEL.
std::string SigneContrôle(unsigned char Code) {
  constexpr unsigned char SigneSuppression = 0xA1;
  std::string Signe = "\xE2\x90";
  Signe += static_cast<char>(Code == Suppression ? SigneSuppression : 0x80 + Code);
  return Signe;
}

/// True for the two bytes of a control character between U+0080 and U+009F, which some terminals obey.
bool EstContrôleHaut(std::string_view Texte, std::size_t Rang) {
  return Rang + 1 < Texte.size() && Texte[Rang] == '\xC2' && static_cast<unsigned char>(Texte[Rang + 1]) < 0xA0;
}

}  // namespace

std::string TexteVisible(std::string_view Texte) {
  if (!EstUtf8(Texte)) return TexteVisible(DepuisAnsi(Octets(Texte)));
  std::string Visible;
  Visible.reserve(Texte.size());
  for (std::size_t Rang = 0; Rang < Texte.size(); ++Rang) {
    const auto Code = static_cast<unsigned char>(Texte[Rang]);
    if (Texte[Rang] == '\r' || Texte[Rang] == '\n') {
      if (Texte.substr(Rang, 2) == "\r\n") ++Rang;
      Visible += " ⏎ ";
    } else if (Code < PremierVisible || Code == Suppression) {
      Visible += SigneContrôle(Code);
    } else if (EstContrôleHaut(Texte, Rang)) {
      Visible += "�";
      ++Rang;
    } else {
      Visible += Texte[Rang];
    }
  }
  return Visible;
}

std::string SurUneLigne(std::string_view Texte) {
  std::string Ligne;
  for (const char C : Texte.substr(0, Texte.find_last_not_of(" \r\n\t") + 1)) {
    if (C == '\n' && Ligne.ends_with('\r')) Ligne.pop_back();
    Ligne += C;
  }
  std::ranges::replace_if(
      Ligne, [](char C) { return C == '\r' || C == '\n' || C == '\t'; }, ' ');
  return Ligne;
}

std::size_t NombreCaractères(std::string_view Texte) {
  std::size_t Nombre = 0;
  for (const char Octet : Texte) {
    if ((static_cast<unsigned char>(Octet) & 0xC0) != 0x80) ++Nombre;
  }
  return Nombre;
}

}  // namespace Ombrey
