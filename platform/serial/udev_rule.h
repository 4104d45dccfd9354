// A name for an adapter that stays its own, whatever number the system gives it.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace Ombrey {

/// Text of a rule for udev, comments in French included, that gives the device (such as /dev/ttyUSB0, or a link to it)
/// the site's name: by the adapter's serial number, by its place on the machine where it bears none or another one here
/// bears the same, by its own name where it is no adapter. With it the service of the site is let onto a device that
/// came back. Classe is made like /sys/class/tty. Empty when the system knows no such device.
[[nodiscard]] std::string RègleUdev(const std::filesystem::path& Appareil, std::string_view Site,
                                    const std::filesystem::path& Classe = "/sys/class/tty");

/// The name that the rule of a site gives: /dev/ombrey-SITE, with "_" for each character that a name can't bear.
[[nodiscard]] std::string LienDuSite(std::string_view Site);

/// The file that the rule of a site belongs to.
[[nodiscard]] std::filesystem::path FichierRègleUdev(std::string_view Site);

}  // namespace Ombrey
