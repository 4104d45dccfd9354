// The one crossing between UTF-8 text and the Windows-1252 bytes of line, records and import file.
#pragma once

#include <string>
#include <string_view>

#include "contracts/octets.h"

namespace Ombrey {

/// One byte for each character of the UTF-8 text; "?" for a character without a place in Windows-1252 and for each
/// byte that is no UTF-8. A letter stored with a combining accent is the accented letter. The five codes that 1252
/// leaves open stand for the control characters of the same number, so that any bytes survive the way there and back.
[[nodiscard]] Octets VersAnsi(std::string_view Texte);

/// The same text in UTF-8. Every byte has a character.
[[nodiscard]] std::string DepuisAnsi(const Octets& Texte);

/// True when the bytes are well-formed UTF-8 (pure ASCII included).
[[nodiscard]] bool EstUtf8(std::string_view Bruts);

}  // namespace Ombrey
