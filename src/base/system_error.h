// What the operating system refused, in French words.
#pragma once

#include <string>

namespace Ombrey {

/// Words for an errno value, such as "disque plein"; a number without words of its own gives "erreur système 71".
[[nodiscard]] std::string TexteErreurSystème(int Numéro);

}  // namespace Ombrey
