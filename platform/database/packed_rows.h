// Rows of a query, packed: what a snapshot keeps in memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "contracts/database.h"

namespace Ombrey {

/// Rows one behind the other in blocks. A value takes one byte for its kind and length and then no more bytes than it
/// needs: none for Null or 0, one for a number up to 127, a text's own bytes.
class LignesCompactes {
 public:
  static constexpr std::size_t TailleBloc = std::size_t{4} * 1024;

  /// Where a row stands. Equal to Fin() behind the last one.
  struct Place {
    std::size_t Bloc = 0;
    std::size_t Rang = 0;
    friend bool operator==(const Place&, const Place&) = default;
  };

  explicit LignesCompactes(std::size_t NombreColonnes) : NombreColonnes_(NombreColonnes) {}

  // One row is built value by value, then closed.
  void AjouterNull() { Ligne_ += '\0'; }
  void AjouterEntier(std::int64_t Valeur);
  void AjouterRéel(double Valeur);
  void AjouterTexte(std::string_view Valeur);
  void TerminerLigne();

  [[nodiscard]] std::size_t Nombre() const { return Nombre_; }
  [[nodiscard]] Place Début() const { return {0, 0}; }
  [[nodiscard]] Place Fin() const { return {Blocs_.size(), 0}; }
  [[nodiscard]] Place Dernière() const { return Dernière_; }
  [[nodiscard]] Place Suivante(Place Ici) const;
  /// Value of the row's column, counted from 0; the column must exist.
  [[nodiscard]] ValeurChamp Valeur(Place Ici, std::size_t Colonne) const;
  /// Bytes held.
  [[nodiscard]] std::size_t Occupation() const;

 private:
  [[nodiscard]] std::size_t Sauter(Place Ici, std::size_t NombreValeurs) const;

  std::size_t NombreColonnes_;
  std::size_t Nombre_ = 0;
  std::string Ligne_;
  std::vector<std::string> Blocs_;
  Place Dernière_;
};

}  // namespace Ombrey
