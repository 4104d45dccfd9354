// The day on paper and in files, the base's copy and the diagnosis, from the console.
#pragma once

#include <functional>
#include <string>
#include <utility>

#include "host/options.h"
#include "host/side_work.h"
#include "platform/console/commands.h"
#include "platform/console/output.h"
#include "platform/loop/loop.h"

namespace Tarvel {

/// Each is done beside the station, and says its lines behind its name.
class PapiersConsole {
 public:
  /// All of them outlive the papers.
  PapiersConsole(Ombrey::IBoucle& Boucle, Ombrey::SortieConsole& Sortie, const Options& Choisies)
      : Sortie_(Sortie), Travaux_(Boucle, Choisies) {}

  /// Site: the code of the site whose tickets are asked for.
  void Offrir(Ombrey::CommandesConsole& Commandes, const std::function<std::string()>& Site);

 private:
  /// What a work of this name says, and its end where it has said nothing.
  std::pair<TravauxÀCôté::Dire, TravauxÀCôté::Achèvement> Paroles(const std::string& Nom);

  Ombrey::SortieConsole& Sortie_;
  TravauxÀCôté Travaux_;
};

}  // namespace Tarvel
