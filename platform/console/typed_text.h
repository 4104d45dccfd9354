// What an operator typed, in a form for comparing.
#pragma once

#include <string>
#include <string_view>

namespace Ombrey {

/// Small letters without accents, for comparing what an operator typed: "Coopérateurs" gives "cooperateurs".
[[nodiscard]] std::string FormeComparable(std::string_view Texte);

}  // namespace Ombrey
