// The data sets that the terminal takes: the order of sending, and what each file holds.
#pragma once

#include <chrono>
#include <cstdint>
#include <span>

#include "transfer/file_builder.h"

namespace Ombrey {

/// One row of the transfer window.
struct JeuDeDonnées {
  const char* Case;  ///< check box
  const char* Nom;   ///< on the screen and in messages
  std::int32_t NumFichier;
  std::chrono::milliseconds Pause;  ///< the terminal's time between two files
  DispositionFichier Fichier;
};

/// In the order of sending, which is also that on the screen.
[[nodiscard]] std::span<const JeuDeDonnées> JeuxDeDonnées();

}  // namespace Ombrey
