// The one symbol that the plug-in's library exports.
#include <memory>

#include "contracts/host.h"
#include "contracts/platform.h"
#include "core/plugin.h"

static_assert(Ombrey::VersionContrat == 2, "the name below bears the contract's version");

/// Tarvel-PlugIn Ombrey: makes a plug-in that works on Plateforme. See contracts/host.h for the name.
extern "C" [[gnu::visibility("default")]] void PlgInOmbrey_CreerPlugIn_2(
    Ombrey::IPlateforme& Plateforme, std::shared_ptr<Ombrey::IPlugInTarvel>& Nouveau) {
  Nouveau = Ombrey::PlugIn::Créer(Plateforme);
}
