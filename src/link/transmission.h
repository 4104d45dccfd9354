// Sending texts to the terminal, each in one data frame.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "common/context.h"
#include "contracts/octets.h"
#include "link/exchange.h"

namespace Ombrey {

/// One transmission, under the number that announces it.
class Transmission {
 public:
  Transmission(ÉtatPartagé& État, Échange& LÉchange, std::int32_t NumFichier)
      : État_(État), Échange_(LÉchange), Code_(std::to_string(NumFichier)) {}

  /// Announces each line under the number's decimal text and sends it in a frame, in order; an empty line sends
  /// nothing. Empty result: all were acknowledged. Else the reason, and the lines behind the failed one haven't gone.
  /// A frame that the terminal refuses goes again, four times in all over the whole call. The lines come back in
  /// framed form, without their checksum. Raises what the port raises.
  std::string TransmettreLignes(std::vector<Octets>& Lignes);

 private:
  enum class Suite { Suivante, Encore, Arrêt };

  Suite EnvoyerLigne(Octets& Ligne);
  bool Annoncer();
  Suite EnvoyerTrame(const Octets& Ligne);

  ÉtatPartagé& État_;
  Échange& Échange_;
  Octets Code_;
  int NACKs_ = 0;  ///< refusals that were answered by another try, over all lines
  std::string Erreur_;
};

}  // namespace Ombrey
