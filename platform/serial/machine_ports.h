// The serial ports that a machine has, read from the system's device tree.
#pragma once

#include <filesystem>
#include <vector>

#include "platform/serial/port_settings.h"

namespace Ombrey {

/// The ports listed in a folder that is made like /sys/class/tty, with their devices in Dev: adapters by their stable
/// names, then the machine's own ports, then the adapters that have none.
[[nodiscard]] std::vector<PortTrouvé> PortsListésDans(const std::filesystem::path& Classe,
                                                      const std::filesystem::path& Dev = "/dev");

}  // namespace Ombrey
