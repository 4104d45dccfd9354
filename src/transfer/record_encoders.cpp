// The fields of the terminal's file records: fixed width, no separators.
#include "transfer/record_encoders.h"

#include <cstddef>

#include "base/ansi_text.h"
#include "base/regional_forms.h"
#include "base/text_helpers.h"

namespace Ombrey {
namespace {

constexpr std::size_t DécimalesPart = 4;

Octets ChiffresCadrés(std::int32_t Nombre, std::size_t Longueur) {
  std::string Chiffres = std::to_string(Nombre);
  const std::size_t Signe = Nombre < 0 ? 1 : 0;
  const std::size_t Écrits = Chiffres.size() - Signe;
  if (Écrits < Longueur) Chiffres.insert(Signe, Longueur - Écrits, '0');
  return Octets(Chiffres);
}

}  // namespace

Octets CadrerNombre(const std::string& Texte, std::uint8_t Longueur, const Régional& Formes) {
  return ChiffresCadrés(EstNumérique(Texte, Formes) ? EnEntier32(Texte, Formes) : 0, Longueur);
}

Octets CadrerTexte(const std::string& Texte, std::uint8_t Longueur) {
  Octets Champ(Longueur, ' ');
  Champ.Recouvrir(0, VersAnsi(Texte));
  return Champ;
}

Octets EncoderNombre(const ValeurChamp& Valeur, std::uint8_t Longueur, const Régional& Formes) {
  return CadrerNombre(TexteOuVide(Valeur, Formes), Longueur, Formes);
}

Octets EncoderTexte(const ValeurChamp& Valeur, std::uint8_t Longueur, const Régional& Formes) {
  return CadrerTexte(TexteOuVide(Valeur, Formes), Longueur);
}

Octets EncoderPart(const ValeurChamp& Valeur, std::uint8_t Longueur, const Régional& Formes) {
  std::string Texte = TexteOuVide(Valeur, Formes);
  const std::int32_t Entiers = NormaliserNombre(Texte, Formes) ? EnEntier16(Texte, Formes) : 0;
  return ChiffresCadrés(Entiers, Longueur > DécimalesPart ? Longueur - DécimalesPart : 0) + Octets(DécimalesPart, '0');
}

}  // namespace Ombrey
