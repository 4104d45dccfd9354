// Small files read whole, and replaced so that they reach the disk whole or not at all.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace Ombrey {

/// The file's bytes, or none when there is no such file. Raises ErreurExécution when it is there and can't be read, is
/// no ordinary file, or is far too big for a settings file.
[[nodiscard]] std::optional<std::string> LireFichier(const std::filesystem::path& Chemin);

/// Replaces the file's contents, or makes the file for its owner alone. A link stays and its target is replaced; mode
/// and owner stay as far as the system allows. Where the folder takes no new file, the file is written in place. Raises
/// ErreurExécution, and the former bytes then stand there, unless only the folder refused to be put on the disk behind
/// it.
void RemplacerFichier(const std::filesystem::path& Chemin, std::string_view Contenu);

}  // namespace Ombrey
