// The base's values as the host reads and shows them: numbers with the comma, whatever the machine's forms are.
#pragma once

#include <optional>
#include <string>

#include "base/regional_forms.h"
#include "base/text_helpers.h"
#include "contracts/database.h"
#include "contracts/system.h"

namespace Tarvel {

inline constexpr Ombrey::Régional FormesFrançaises{};

/// Empty for a value that is none.
[[nodiscard]] inline std::string TexteDe(const Ombrey::ValeurChamp& Valeur) {
  return Ombrey::TexteOuVide(Valeur, FormesFrançaises);
}

/// As the figures read it, so that all that is shown agrees with the terminal. None for a text that is no number: the
/// office may have written anything.
[[nodiscard]] inline std::optional<double> NombreDe(const Ombrey::ValeurChamp& Valeur) {
  return Ombrey::NombreTapé(TexteDe(Valeur), FormesFrançaises);
}

}  // namespace Tarvel
