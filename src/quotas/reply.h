// The reply that follows each load: the running figures of its holding and group.
#pragma once

#include <string>

#include "common/context.h"
#include "common/operator_channel.h"

namespace Ombrey {

/// Asks the host for the figures of a load and sends them to the terminal.
class RéponseCumuls {
 public:
  RéponseCumuls(ÉtatPartagé& État, IServicesLiaison& Services) : État_(État), Services_(Services) {}

  /// Sends the figures of the load; an empty NoChargement becomes the number of the last load received. Nothing happens
  /// when there was none yet, or the database holds no such load of the current site. A figure that can't be worked
  /// out repeats the one before it. A transmission that fails is reported to the operator. Raises when the load number
  /// is no number or the database can't be read.
  void MettreAJourCumuls(std::string& NoChargement);

 private:
  struct Chargement {
    std::string IdMétayage;
    std::string Sélection;
    std::string IdGrp;
  };

  [[nodiscard]] bool LireChargement(const std::string& NoChargement, Chargement& Lu);
  [[nodiscard]] std::string ComposerEnregistrement(Chargement& C);
  void Transmettre(const std::string& Enregistrement);

  ÉtatPartagé& État_;
  IServicesLiaison& Services_;
};

}  // namespace Ombrey
