// Text as a console shows it: one line, control characters made visible; and the forms for comparing and lining up.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Ombrey {

/// The text on one line: a line break (CR LF, CR or LF) becomes " ⏎ ", any other control character a visible sign.
/// Bytes that are no UTF-8 are read as Windows-1252.
[[nodiscard]] std::string TexteVisible(std::string_view Texte);

/// Small letters without accents, for comparing what an operator typed: "Coopérateurs" gives "cooperateurs".
[[nodiscard]] std::string FormeComparable(std::string_view Texte);

/// Number of characters of a UTF-8 text.
[[nodiscard]] std::size_t NombreCaractères(std::string_view Texte);

}  // namespace Ombrey
