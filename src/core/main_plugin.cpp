// The one symbol that the plug-in's library exports.
#include <memory>

#include "core/plugin.h"

/// Tarvel-PlugIn Ombrey: makes a plug-in that works on Plateforme. See contracts/host.h for the name.
extern "C" __attribute__((visibility("default"))) void PlgInOmbrey_CreerPlugIn(
    Ombrey::IPlateforme& Plateforme, std::shared_ptr<Ombrey::IPlugInTarvel>& Nouveau) {
  Nouveau = Ombrey::PlugIn::Créer(Plateforme);
}
