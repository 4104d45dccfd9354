// Whole copies of an embedded base, and the way back.
#pragma once

#include <filesystem>
#include <string>

#include "platform/database/connection.h"

namespace Tarvel {

/// Copies the cooperative's base, as it stands at one moment, to a new file; stations may work on it meanwhile. Raises
/// ErreurExécution, and leaves no copy, when it can't or when the file is there already. The result says in French what
/// was done.
std::string SauvegarderBase(const std::filesystem::path& Base, const std::filesystem::path& Copie,
                            const Ombrey::Progrès& Dire = {});

/// Puts a saved copy in the place of the base, on which nobody may work. The base that stood there isn't lost: it keeps
/// its folder and gets another name, which the result tells, and how many of its
/// loads the copy lacks. Raises ErreurExécution, and the base then stays as it is,
/// when a program has it open or when the copy is damaged or no cooperative's.
std::string RestaurerBase(const std::filesystem::path& Base, const std::filesystem::path& Copie,
                          const Ombrey::Progrès& Dire = {});

}  // namespace Tarvel
