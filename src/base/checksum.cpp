// The frame checksum.
#include "base/checksum.h"

#include <cstddef>
#include <cstdint>

namespace Ombrey {
namespace {

struct CheckSum {
  unsigned char c1;
  unsigned char c2;
};

CheckSum Calculer(const Octets& Texte) {
  std::uint32_t Somme = 0;
  for (std::size_t i = 0; i < Texte.Taille(); ++i) Somme += Texte[i];
  return {static_cast<unsigned char>('0' + ((Somme & 0xF0U) >> 4U)), static_cast<unsigned char>('0' + (Somme & 0x0FU))};
}

}  // namespace

Octets CalculerCheckSum(Octets Texte) {
  const CheckSum Attendu = Calculer(Texte);
  Texte += static_cast<char>(Attendu.c1);
  Texte += static_cast<char>(Attendu.c2);
  return Texte;
}

bool VérifierCheckSum(const Octets& Texte, const Octets& c1, const Octets& c2) {
  if (c1.EstVide() || c2.EstVide()) return false;
  const CheckSum Attendu = Calculer(Texte);
  return c1[0] == Attendu.c1 && c2[0] == Attendu.c2;
}

}  // namespace Ombrey
