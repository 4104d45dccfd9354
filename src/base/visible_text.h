// Text as it is shown on one line, control characters made visible; and its length in characters.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Ombrey {

/// The text on one line: a line break (CR LF, CR or LF) becomes " ⏎ ", any other control character a visible sign.
/// Bytes that are no UTF-8 are read as Windows-1252.
[[nodiscard]] std::string TexteVisible(std::string_view Texte);

/// The text with a blank for each line break (CR LF, CR or LF) and tab, without those at its end.
[[nodiscard]] std::string SurUneLigne(std::string_view Texte);

/// Number of characters of a UTF-8 text.
[[nodiscard]] std::size_t NombreCaractères(std::string_view Texte);

}  // namespace Ombrey
