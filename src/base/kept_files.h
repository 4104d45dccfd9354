// Files that are kept for somebody to look at: each different content once, and not for ever.
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>

namespace Ombrey {

/// A file of just this content in the folder, none when there is none. A file that can't be read is passed over.
[[nodiscard]] std::optional<std::filesystem::path> FichierDeContenu(const std::filesystem::path& Dossier,
                                                                    const std::string& Contenu);

/// Removes the oldest files of the folder until no more than Nombre are left. Raises nothing.
void LimiterFichiers(const std::filesystem::path& Dossier, std::size_t Nombre);

}  // namespace Ombrey
