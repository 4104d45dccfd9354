// Drives that other machines write to as well.
#pragma once

#include <filesystem>
#include <string>

namespace Ombrey {

/// What the system says of its mounts.
inline constexpr const char* MontagesDuSystème = "/proc/self/mountinfo";

/// The kind of the network drive that holds the file, or the nearest folder above it that is there; empty for a drive
/// of this machine, or when that can't be told.
[[nodiscard]] std::string DisqueRéseau(std::filesystem::path Fichier,
                                       const std::filesystem::path& Montages = MontagesDuSystème);

}  // namespace Ombrey
