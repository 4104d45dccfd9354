// Names of the faults and the dice. The standard distributions differ between libraries, so none is used.
#include "terminal/faults.h"

namespace Rg80 {

std::string Pannes::Mention() const {
  std::string Texte;
  for (const NomDePanne& Nommée : NomsDePannes) {
    if (A(Nommée.Laquelle)) Texte.append(Texte.empty() ? " [panne : " : ", ").append(Nommée.Nom);
  }
  return Texte.empty() ? Texte : Texte + "]";
}

std::optional<Panne> PanneNommée(std::string_view Nom) {
  for (const NomDePanne& Nommée : NomsDePannes) {
    if (Nommée.Nom == Nom) return Nommée.Laquelle;
  }
  return std::nullopt;
}

Pannes Hasard::Tirer() {
  constexpr double Étendue = 4294967296.0;  // 2^32, the number of values of the engine
  Pannes Tirées;
  for (const NomDePanne& Nommée : NomsDePannes) {
    const double Dé = static_cast<double>(Moteur_()) / Étendue;
    if (Dé < Taux_[static_cast<std::size_t>(Nommée.Laquelle)]) Tirées.Ajouter(Nommée.Laquelle);
  }
  return Tirées;
}

unsigned Hasard::Entre(unsigned Premier, unsigned Dernier) {
  return Premier + static_cast<unsigned>(Moteur_() % (std::uint64_t{Dernier} - Premier + 1));
}

std::string Hasard::Bruit() {
  constexpr unsigned LongueurMax = 8;
  constexpr unsigned DernierCode = 255;
  std::string Octets(Entre(1, LongueurMax), ' ');
  for (char& Octet : Octets) Octet = static_cast<char>(Entre(' ', DernierCode));
  return Octets;
}

}  // namespace Rg80
