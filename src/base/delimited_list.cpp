// Delimited text: cutting, counting and searching its items.
#include "base/delimited_list.h"

#include <cstddef>
#include <limits>
#include <utility>

#include "base/failures.h"

namespace Ombrey {
namespace {

std::int16_t EnPlace(std::size_t Nombre) {
  if (Nombre > static_cast<std::size_t>(std::numeric_limits<std::int16_t>::max())) {
    throw ErreurExécution(Description::DépassementDeCapacité);
  }
  return static_cast<std::int16_t>(Nombre);
}

}  // namespace

std::vector<std::string> ListeChamps::Décomposer(std::string_view Texte) const {
  std::vector<std::string> Éléments;
  while (!Texte.empty()) {
    const std::size_t Fin = Séparateur_.empty() ? std::string_view::npos : Texte.find(Séparateur_);
    Éléments.emplace_back(Texte.substr(0, Fin));
    Texte.remove_prefix(Fin == std::string_view::npos ? Texte.size() : Fin + Séparateur_.size());
  }
  return Éléments;
}

std::int16_t ListeChamps::Nombre(std::string_view Texte) const { return EnPlace(Décomposer(Texte).size()); }

std::string ListeChamps::Champ(std::string_view Texte, std::int16_t Place) const {
  auto Éléments = Décomposer(Texte);
  if (Place < 1 || static_cast<std::size_t>(Place) > Éléments.size()) return {};
  return std::move(Éléments[static_cast<std::size_t>(Place) - 1]);
}

std::int16_t ListeChamps::Rang(std::string_view Texte, std::string_view Cherché) const {
  const auto Éléments = Décomposer(Texte);
  for (std::size_t Rang = 0; Rang < Éléments.size(); ++Rang) {
    if (Éléments[Rang] == Cherché) return EnPlace(Rang + 1);
  }
  return 0;
}

}  // namespace Ombrey
