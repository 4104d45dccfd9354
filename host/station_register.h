// Which stations work on a base.
#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <utility>

#include "contracts/database.h"
#include "contracts/system.h"
#include "host/day_view.h"
#include "platform/database/connection.h"

namespace Tarvel {

/// A station's own row, in which it says now and then that it lives. Where the base can't take it, the station works on
/// unlisted.
class RegistreStations {
 public:
  RegistreStations(std::shared_ptr<Ombrey::IConnexion> Connexion, std::string CodeSite)
      : Connexion_(std::move(Connexion)), CodeSite_(std::move(CodeSite)) {}
  /// To be called often: writes at the first call, then once a minute.
  void Signaler();

 private:
  std::shared_ptr<Ombrey::IConnexion> Connexion_;
  std::string CodeSite_;
  std::chrono::steady_clock::time_point Prochain_{};
};

/// Why a station of this account stays unlisted; mostly empty.
[[nodiscard]] std::string SansSigneDeVie(Ombrey::IConnexion& Connexion);

/// True when the base lists more stations than one. A former base that can only be read has no such list.
[[nodiscard]] bool SontPlusieurs(Ombrey::IDatabase& Base);

/// Site, machine, last load and last sign of life of each station.
[[nodiscard]] Rangées TableauStations(Ombrey::IDatabase& Base, const Ombrey::Régional& Formes);

}  // namespace Tarvel
