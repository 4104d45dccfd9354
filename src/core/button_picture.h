// The toolbar button's picture.
#pragma once

#include <vector>

#include "contracts/toolkit.h"

namespace Ombrey {

/// A load on the weighbridge beside its terminal, 16 and 24 pixels square, transparent around.
[[nodiscard]] std::vector<Image> ImagesBouton();

}  // namespace Ombrey
