// Delimited text: items between delimiters, as the host's layouts and the field tables hold them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Ombrey {

/// Reads delimited text by the delimiter set last; nothing else is kept. Places count from 1. A closing delimiter
/// opens no further item; the empty text holds no item.
class ListeChamps {
 public:
  explicit ListeChamps(std::string Séparateur = ";") : Séparateur_(std::move(Séparateur)) {}
  void Séparateur(std::string Délimiteur) { Séparateur_ = std::move(Délimiteur); }
  [[nodiscard]] std::vector<std::string> Décomposer(std::string_view Texte) const;
  /// Raises "Dépassement de capacité" above 32767 items.
  [[nodiscard]] std::int16_t Nombre(std::string_view Texte) const;
  /// The item at this place; empty when there is none.
  [[nodiscard]] std::string Champ(std::string_view Texte, std::int16_t Place) const;
  /// Place of the first item equal to Cherché, 0 when there is none.
  [[nodiscard]] std::int16_t Rang(std::string_view Texte, std::string_view Cherché) const;

 private:
  std::string Séparateur_;
};

}  // namespace Ombrey
