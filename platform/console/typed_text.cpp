// What an operator typed, in a form for comparing.
#include "platform/console/typed_text.h"

#include "base/ansi_text.h"
#include "base/text_helpers.h"
#include "contracts/octets.h"

namespace Ombrey {
namespace {

constexpr unsigned char PremièreCapitaleAccentuée = 0xC0;
/// The letters of Windows-1252 from 0xC0 on, without their accents; the multiplying and dividing signs stay out.
constexpr std::string_view SansAccent = "aaaaaaaceeeeiiiidnooooo*ouuuuypsaaaaaaaceeeeiiiidnooooo/ouuuuypy";

}  // namespace

std::string FormeComparable(std::string_view Texte) {
  std::string Forme;
  const Octets Lettres = VersAnsi(Texte);
  for (std::size_t Rang = 0; Rang < Lettres.Taille(); ++Rang) {
    const unsigned char Lettre = Lettres[Rang];
    if (Lettre >= PremièreCapitaleAccentuée) {
      Forme += SansAccent[Lettre - PremièreCapitaleAccentuée];
    } else {
      Forme += MinusculeAscii(static_cast<char>(Lettre));
    }
  }
  return Forme;
}

}  // namespace Ombrey
