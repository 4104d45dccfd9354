// A file that the operator has named, where none may stand yet.
#pragma once

#include <filesystem>
#include <functional>
#include <string>

namespace Tarvel {

/// Raises ErreurExécution when the name is taken.
void ExigerNouveau(const std::filesystem::path& Fichier);

/// What is to be told: what Écrire says once it has written the file, or why there is none.
[[nodiscard]] std::string ÉcrireNouveau(const std::filesystem::path& Fichier,
                                        const std::function<std::string(const std::filesystem::path&)>& Écrire);

}  // namespace Tarvel
