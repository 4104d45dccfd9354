// Who looks at what the plug-in says, in windows or on a console.
#pragma once

#include <functional>
#include <string>

namespace Ombrey {

/// Each is called as the plug-in says it, and may be none.
struct TémoinsFenêtres {
  std::function<void(const std::string& Ligne)> Ligne;                                ///< into its message list
  std::function<void(const std::string& Titre, const std::string& Message)> Boîte;    ///< shown now
  std::function<void(const std::string& Titre, const std::string& Message)> Retirée;  ///< went unread
};

}  // namespace Ombrey
