// Asking the operator for a port's settings and keeping them in the settings file.
#pragma once

#include <functional>
#include <string>

#include "contracts/system.h"
#include "platform/serial/port_settings.h"
#include "platform/serial/serial_port.h"

namespace Ombrey {

/// Shows the settings of the file's section, and writes the keys that the operator changed. False when it was
/// cancelled or nobody can be asked; the file is then as it was. A trial asks the terminal: Libérer lets go ahead of it
/// of the device of this path, should the caller hold it. Raises ErreurExécution when the file can't be read or
/// written.
bool ConfigurerPort(const ContextePort& Contexte, const std::string& FichierIni, const std::string& Section,
                    const std::function<void(const std::string& Chemin)>& Libérer);

/// The texts of the section that the reader is set to; empty where a key is missing.
[[nodiscard]] RéglagesPort LireRéglages(ILecteurIni& Lecteur);

/// Checks the settings, then opens the port with them and closes it again, unless DéjàOuvert. The empty text, or why
/// the port can't be had.
[[nodiscard]] std::string EssayerPort(const RéglagesPort& Réglages,
                                      const std::function<bool(const std::string&)>& DéjàOuvert);

}  // namespace Ombrey
