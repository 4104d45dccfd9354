// The serial ports that a machine has, read from the system's device tree.
#pragma once

#include <filesystem>
#include <vector>

#include "platform/serial/port_settings.h"

namespace Ombrey {

/// The ports listed in a folder that is made like /sys/class/tty, the machine's own ahead of the adapters.
[[nodiscard]] std::vector<PortTrouvé> PortsListésDans(const std::filesystem::path& Classe);

}  // namespace Ombrey
