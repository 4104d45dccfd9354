// The bytes of the line from the words that the terminal's stand-in has for them.
#pragma once

#include <string>

#include "terminal/frame.h"

namespace Rg80 {

/// Each "<STX>" and the like as the control character that it names.
inline std::string Bytes(std::string Text) {
  for (const NomDeContrôle& Named : NomsDeContrôle) {
    const std::string Name = "<" + std::string(Named.Nom) + ">";
    for (auto At = Text.find(Name); At != std::string::npos; At = Text.find(Name))
      Text.replace(At, Name.size(), 1, Named.Code);
  }
  return Text;
}

}  // namespace Rg80
