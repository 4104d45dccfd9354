// Windows-1252 to UTF-8 and back.
#include "base/ansi_text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>

namespace Ombrey {
namespace {

constexpr unsigned char PremierPropre = 0x80;  // 0x80 to 0x9F differ from the first page of Unicode
constexpr unsigned char DernierPropre = 0x9F;
constexpr char Remplaçant = '?';

constexpr std::array<char16_t, DernierPropre - PremierPropre + 1> CodesPropres = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

/// Letters that can also be stored as a plain letter with a combining accent behind it.
struct Accent {
  char32_t Signe;
  std::u32string_view Nues;
  std::u32string_view Accentuées;  ///< in the same order
};

constexpr std::array<Accent, 8> Accents = {{{0x0300, U"AEIOUaeiou", U"ÀÈÌÒÙàèìòù"},
                                            {0x0301, U"AEIOUYaeiouy", U"ÁÉÍÓÚÝáéíóúý"},
                                            {0x0302, U"AEIOUaeiou", U"ÂÊÎÔÛâêîôû"},
                                            {0x0303, U"ANOano", U"ÃÑÕãñõ"},
                                            {0x0308, U"AEIOUYaeiouy", U"ÄËÏÖÜŸäëïöüÿ"},
                                            {0x030A, U"Aa", U"Åå"},
                                            {0x030C, U"SZsz", U"ŠŽšž"},
                                            {0x0327, U"Cc", U"Çç"}}};

struct Caractère {
  char32_t Code;
  std::size_t Longueur;
};

/// Form of a UTF-8 sequence by its length: fixed bits of the first byte, and the smallest code that may use it.
struct Forme {
  unsigned char Masque;
  unsigned char Motif;
  char32_t PlusPetit;
};

constexpr std::array<Forme, 4> Formes = {
    {{0x80, 0x00, 0}, {0xE0, 0xC0, 0x80}, {0xF0, 0xE0, 0x800}, {0xF8, 0xF0, 0x10000}}};

/// The character at the front of Texte; none when the bytes there are no UTF-8.
std::optional<Caractère> LireCaractère(std::string_view Texte) {
  const auto Octet = [&](std::size_t Rang) { return static_cast<unsigned char>(Texte[Rang]); };
  for (std::size_t Longueur = 1; Longueur <= Formes.size(); ++Longueur) {
    const Forme& F = Formes[Longueur - 1];
    if ((Octet(0) & F.Masque) != F.Motif) continue;
    if (Texte.size() < Longueur) return std::nullopt;
    char32_t Code = Octet(0) & static_cast<unsigned char>(~F.Masque);
    for (std::size_t Rang = 1; Rang < Longueur; ++Rang) {
      if ((Octet(Rang) & 0xC0U) != 0x80U) return std::nullopt;
      Code = (Code << 6U) | (Octet(Rang) & 0x3FU);
    }
    const bool Substitut = Code >= 0xD800 && Code <= 0xDFFF;
    if (Code < F.PlusPetit || Code > 0x10FFFF || Substitut) return std::nullopt;
    return Caractère{Code, Longueur};
  }
  return std::nullopt;
}

/// The accented letter that the character and the one behind it stand for; none when they stand for themselves.
std::optional<char32_t> Composer(char32_t Nue, char32_t Signe) {
  const auto* const Sien = std::ranges::find(Accents, Signe, &Accent::Signe);
  if (Sien == Accents.end()) return std::nullopt;
  const std::size_t Rang = Sien->Nues.find(Nue);
  if (Rang == std::u32string_view::npos) return std::nullopt;
  return Sien->Accentuées[Rang];
}

/// As LireCaractère, with a letter and its accent as one character.
std::optional<Caractère> LireLettre(std::string_view Texte) {
  const auto Lue = LireCaractère(Texte);
  if (!Lue || Lue->Longueur == Texte.size()) return Lue;
  const auto Suite = LireCaractère(Texte.substr(Lue->Longueur));
  if (!Suite) return Lue;
  const auto Composée = Composer(Lue->Code, Suite->Code);
  return Composée ? Caractère{*Composée, Lue->Longueur + Suite->Longueur} : Lue;
}

char OctetAnsi(char32_t Code) {
  const bool MêmeCode = Code < PremierPropre || (Code > DernierPropre && Code <= 0xFF);
  if (MêmeCode) return static_cast<char>(Code);
  const auto Place = std::find(CodesPropres.begin(), CodesPropres.end(), Code);
  if (Place == CodesPropres.end()) return Remplaçant;
  return static_cast<char>(PremierPropre + (Place - CodesPropres.begin()));
}

}  // namespace

Octets VersAnsi(std::string_view Texte) {
  std::string Résultat;
  Résultat.reserve(Texte.size());
  while (!Texte.empty()) {
    const auto Lu = LireLettre(Texte);
    Résultat += Lu ? OctetAnsi(Lu->Code) : Remplaçant;
    Texte.remove_prefix(Lu ? Lu->Longueur : 1);
  }
  return Octets(Résultat);
}

std::string DepuisAnsi(const Octets& Texte) {
  std::string Résultat;
  Résultat.reserve(Texte.Taille());
  for (std::size_t Rang = 0; Rang < Texte.Taille(); ++Rang) {
    const unsigned char Octet = Texte[Rang];
    const bool Propre = Octet >= PremierPropre && Octet <= DernierPropre;
    const char16_t Code = Propre ? CodesPropres[Octet - PremierPropre] : Octet;
    if (Code < 0x80) {
      Résultat += static_cast<char>(Code);
    } else if (Code < 0x800) {
      Résultat += static_cast<char>(0xC0 | (Code >> 6));
      Résultat += static_cast<char>(0x80 | (Code & 0x3F));
    } else {
      Résultat += static_cast<char>(0xE0 | (Code >> 12));
      Résultat += static_cast<char>(0x80 | ((Code >> 6) & 0x3F));
      Résultat += static_cast<char>(0x80 | (Code & 0x3F));
    }
  }
  return Résultat;
}

bool EstUtf8(std::string_view Bruts) {
  while (!Bruts.empty()) {
    const auto Lu = LireCaractère(Bruts);
    if (!Lu) return false;
    Bruts.remove_prefix(Lu->Longueur);
  }
  return true;
}

}  // namespace Ombrey
