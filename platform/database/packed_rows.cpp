// Rows of a query, packed: what a snapshot keeps in memory.
#include "platform/database/packed_rows.h"

#include <algorithm>
#include <cstring>

namespace Ombrey {
namespace {

// The first byte of a value: its kind in the two low bits, a size in the other six.
enum Genre : unsigned { Nul = 0, Entier = 1, Réel = 2, Texte = 3 };
constexpr unsigned BitsGenre = 2;
constexpr std::size_t TexteLong = 63;  // the text's size follows, in eight bytes

char Entête(Genre Sorte, std::size_t Taille) {
  return static_cast<char>(static_cast<unsigned char>(Taille << BitsGenre | Sorte));
}

void AjouterOctets(std::string& Ligne, std::uint64_t Valeur, std::size_t Nombre) {
  for (std::size_t Rang = 0; Rang < Nombre; ++Rang) Ligne += static_cast<char>(Valeur >> (8 * Rang) & 0xFF);
}

std::uint64_t LireOctets(const char* Source, std::size_t Nombre) {
  std::uint64_t Valeur = 0;
  for (std::size_t Rang = 0; Rang < Nombre; ++Rang)
    Valeur |= static_cast<std::uint64_t>(static_cast<unsigned char>(Source[Rang])) << (8 * Rang);
  return Valeur;
}

/// A value as it stands in a block.
struct Case {
  Genre Sorte;
  const char* Contenu;
  std::size_t Taille;
};

Case Déballer(const char* Source) {
  const auto Octet = static_cast<unsigned char>(*Source++);
  const auto Sorte = static_cast<Genre>(Octet & ((1U << BitsGenre) - 1));
  std::size_t Taille = Octet >> BitsGenre;
  if (Sorte == Texte && Taille == TexteLong) {
    Taille = LireOctets(Source, sizeof(std::uint64_t));
    Source += sizeof(std::uint64_t);
  }
  return {Sorte, Source, Taille};
}

std::int64_t EntierDe(const Case& Lue) {
  if (Lue.Taille == 0) return 0;
  const std::size_t Libres = 8 * (sizeof(std::uint64_t) - Lue.Taille);
  return static_cast<std::int64_t>(LireOctets(Lue.Contenu, Lue.Taille) << Libres) >> Libres;
}

/// The fewest bytes that give the number back, its sign included.
std::size_t TailleEntier(std::int64_t Valeur) {
  if (Valeur == 0) return 0;
  std::size_t Taille = 1;
  while (Taille < sizeof Valeur && Valeur >> (8 * Taille - 1) != (Valeur < 0 ? -1 : 0)) ++Taille;
  return Taille;
}

double RéelDe(const Case& Lue) {
  double Valeur = 0;
  std::memcpy(&Valeur, Lue.Contenu, sizeof Valeur);
  return Valeur;
}

}  // namespace

void LignesCompactes::AjouterEntier(std::int64_t Valeur) {
  const std::size_t Taille = TailleEntier(Valeur);
  Ligne_ += Entête(Entier, Taille);
  AjouterOctets(Ligne_, static_cast<std::uint64_t>(Valeur), Taille);
}

void LignesCompactes::AjouterRéel(double Valeur) {
  Ligne_ += Entête(Réel, sizeof Valeur);
  Ligne_.append(reinterpret_cast<const char*>(&Valeur), sizeof Valeur);
}

void LignesCompactes::AjouterTexte(std::string_view Valeur) {
  Ligne_ += Entête(Texte, std::min(Valeur.size(), TexteLong));
  if (Valeur.size() >= TexteLong) AjouterOctets(Ligne_, Valeur.size(), sizeof(std::uint64_t));
  Ligne_ += Valeur;
}

void LignesCompactes::TerminerLigne() {
  if (Blocs_.empty() || Blocs_.back().size() + Ligne_.size() > TailleBloc) {
    Blocs_.emplace_back();
    if (Blocs_.size() > 1) Blocs_.back().reserve(TailleBloc);  // the first one grows: most queries give few rows
  }
  Dernière_ = {Blocs_.size() - 1, Blocs_.back().size()};
  Blocs_.back() += Ligne_;
  Ligne_.clear();
  ++Nombre_;
}

std::size_t LignesCompactes::Sauter(Place Ici, std::size_t NombreValeurs) const {
  const std::string& Bloc = Blocs_[Ici.Bloc];
  std::size_t Rang = Ici.Rang;
  for (; NombreValeurs > 0; --NombreValeurs) {
    const Case Lue = Déballer(Bloc.data() + Rang);
    Rang = static_cast<std::size_t>(Lue.Contenu - Bloc.data()) + Lue.Taille;
  }
  return Rang;
}

LignesCompactes::Place LignesCompactes::Suivante(Place Ici) const {
  Ici.Rang = Sauter(Ici, NombreColonnes_);
  if (Ici.Rang == Blocs_[Ici.Bloc].size()) Ici = {Ici.Bloc + 1, 0};
  return Ici;
}

ValeurChamp LignesCompactes::Valeur(Place Ici, std::size_t Colonne) const {
  const Case Lue = Déballer(Blocs_[Ici.Bloc].data() + Sauter(Ici, Colonne));
  switch (Lue.Sorte) {
    case Entier:
      return EntierDe(Lue);
    case Réel:
      return RéelDe(Lue);
    case Texte:
      return std::string(Lue.Contenu, Lue.Taille);
    case Nul:
      break;
  }
  return std::monostate{};
}

std::size_t LignesCompactes::Occupation() const {
  std::size_t Total = Ligne_.capacity() + Blocs_.capacity() * sizeof(std::string);
  for (const std::string& Bloc : Blocs_) Total += Bloc.capacity();
  return Total;
}

}  // namespace Ombrey
