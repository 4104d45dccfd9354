// A station that is started once more calls the one that has its folder, which shows itself.
#pragma once

#include <filesystem>
#include <functional>

#include "platform/loop/descriptor.h"
#include "platform/loop/loop.h"

namespace Ombrey {

/// While it lives, Appelée runs in a pump whenever somebody calls the station of this folder. Where the system gives no
/// ear, none is had: a station works without.
class ÉcouteAppels {
 public:
  ÉcouteAppels(IBoucle& Boucle, const std::filesystem::path& Dossier, std::function<void()> Appelée);

 private:
  Descripteur Oreille_;
  IBoucle::Jeton Veille_;
};

/// False when nobody hears.
bool AppelerStation(const std::filesystem::path& Dossier);

}  // namespace Ombrey
