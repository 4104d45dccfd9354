// What the operator hasn't read yet outlives the station: it stands in files of the working folder until he has.
#pragma once

#include <filesystem>
#include <vector>

#include "host/watch.h"

namespace Tarvel {

/// The facts of the file, none where there is no such file; a line that can't be read is passed over.
[[nodiscard]] std::vector<FaitRépété> LireFaits(const std::filesystem::path& Fichier);

/// Raises ErreurExécution when the file can't be written.
void EcrireFaits(const std::filesystem::path& Fichier, const std::vector<FaitRépété>& Faits);

}  // namespace Tarvel
