// The loop that ties the line, its pace and the terminal together.
#pragma once

#include <optional>
#include <string>

#include "terminal/device.h"
#include "terminal/engine.h"

namespace Rg80 {

/// Blocks SIGINT and SIGTERM but for the loop's waits, which they end. Call once, ahead of `Servir`.
void PréparerSignaux();

/// Serves the line until a signal comes, or until nothing more is expected when JusquÀVide is set. ÀÉmettre is where
/// the terminal leaves its bytes. Bauds: the pace, in both directions; none: as fast as the line takes it. Sleeps
/// whenever nothing is due. Raises std::runtime_error when the line is lost.
void Servir(Liaison& Fil, IInterlocuteur& Engin, std::string& ÀÉmettre, std::optional<unsigned> Bauds, bool JusquÀVide);

}  // namespace Rg80
