// Checksum, framing and readable bytes, worked out here independently of the plug-in.
#include "terminal/frame.h"

namespace Rg80 {

namespace {

constexpr unsigned MasqueOctet = 0xFF;
constexpr unsigned MasqueDemi = 0x0F;
constexpr unsigned BitsDemi = 4;
constexpr unsigned PremierCode1252 = 0x80;
constexpr unsigned PremierCodeLatin = 0xA0;

// Windows-1252 from 0x80 to 0x9F; 0 where the code page has no character.
constexpr std::array<unsigned, PremierCodeLatin - PremierCode1252> Table1252{
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

void AjouterUtf8(std::string& Cible, unsigned Point) {
  constexpr unsigned FinUnOctet = 0x80;
  constexpr unsigned FinDeuxOctets = 0x800;
  constexpr unsigned BitsSuite = 6;
  const auto Suite = [](unsigned Valeur) { return static_cast<char>(0x80U | (Valeur & 0x3FU)); };
  if (Point < FinUnOctet) {
    Cible += static_cast<char>(Point);
  } else if (Point < FinDeuxOctets) {
    Cible += static_cast<char>(0xC0U | (Point >> BitsSuite));
    Cible += Suite(Point);
  } else {
    Cible += static_cast<char>(0xE0U | (Point >> (2 * BitsSuite)));
    Cible += Suite(Point >> BitsSuite);
    Cible += Suite(Point);
  }
}

void AjouterLisible(std::string& Cible, char Octet) {
  for (const NomDeContrôle& Nommé : NomsDeContrôle) {
    if (Nommé.Code == Octet) {
      Cible.append("<").append(Nommé.Nom).append(">");
      return;
    }
  }
  const unsigned Code = static_cast<unsigned char>(Octet);
  unsigned Point = Code;
  if (Code >= PremierCode1252 && Code < PremierCodeLatin) Point = Table1252[Code - PremierCode1252];
  if (Point >= ' ' && Point != 0x7F) {
    AjouterUtf8(Cible, Point);
    return;
  }
  constexpr std::string_view Chiffres = "0123456789ABCDEF";
  Cible += '<';
  Cible += Chiffres[Code >> BitsDemi];
  Cible += Chiffres[Code & MasqueDemi];
  Cible += '>';
}

}  // namespace

std::string CaractèresChecksum(unsigned Somme) {
  const unsigned Bas = Somme & MasqueOctet;
  return {static_cast<char>('0' + (Bas >> BitsDemi)), static_cast<char>('0' + (Bas & MasqueDemi))};
}

std::string Encadrer(std::string_view Texte) {
  std::string Trame;
  Trame.reserve(Texte.size() + SurcoûtTrame);
  Trame += STX;
  Trame += Texte;
  Trame += ETX;
  unsigned Somme = 0;
  for (const char Octet : Trame) Somme += static_cast<unsigned char>(Octet);
  return Trame + CaractèresChecksum(Somme);
}

std::string Lisible(std::string_view Octets) {
  std::string Texte;
  Texte.reserve(Octets.size());
  for (const char Octet : Octets) AjouterLisible(Texte, Octet);
  return Texte;
}

}  // namespace Rg80
