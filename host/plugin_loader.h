// Finds a plug-in's library and makes the plug-in.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "contracts/host.h"
#include "contracts/platform.h"

namespace Tarvel {

/// The plug-in's library where it stands unless the command line says otherwise, with the modules beside it: in the
/// program's own folder, as a build leaves them, or in the library folder of a program that was installed.
[[nodiscard]] std::filesystem::path GreffonHabituel();

/// Where a module of the program stands: beside it, or where an installed program has its modules.
[[nodiscard]] std::filesystem::path ModuleInstallé(const char* Nom);

/// The symbol of a module that is loaded for as long as the program runs. Raises ErreurExécution with the loader's
/// words between Début and Fin.
[[nodiscard]] void* SymboleDuModule(const char* Nom, const char* Symbole, const std::string& Début,
                                    const std::string& Fin);

/// Loads the library and has it make a plug-in that works on Plateforme, which must outlive it. The library stays
/// loaded to the program's end: whatever the plug-in handed out may be dropped at any time. Raises ErreurExécution
/// when there is no such file, it can't be loaded, or it is no plug-in.
[[nodiscard]] std::shared_ptr<Ombrey::IPlugInTarvel> ChargerGreffon(const std::filesystem::path& Fichier,
                                                                    Ombrey::IPlateforme& Plateforme);

}  // namespace Tarvel
