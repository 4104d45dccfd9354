// What « À propos » tells: versions, and where everything is.
#pragma once

#include <filesystem>
#include <string>

#include "host/options.h"
#include "host/overview.h"
#include "platform/database/connection.h"

namespace Tarvel {

/// The operator's guide, where the program is installed or was built; empty when it isn't there.
[[nodiscard]] std::filesystem::path GuideOpérateur();

/// The versions of program, plug-in, base and engine, as far as they are known by now, and where this station's files
/// are; a line each.
[[nodiscard]] std::string TexteÀPropos(const Options& Choisies, const Aperçu& Vu);

/// Engine and schema of this base, for it.
void NoterMoteur(Aperçu& Vu, Ombrey::IConnexion& Connexion);

}  // namespace Tarvel
