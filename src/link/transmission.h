// Sending texts to the terminal, each in one data frame.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "common/plugin_state.h"
#include "link/exchange.h"

namespace Ombrey {

class Transmission {
 public:
  Transmission(ÉtatPlugIn& État, Échange& LÉchange) : État_(État), Échange_(LÉchange) {}

  /// Announces each line under NumFichier's decimal text and sends it in a frame, in order; an empty line sends
  /// nothing. Empty result: all were acknowledged. Else the reason, and the lines behind the failed one haven't gone.
  /// A frame that the terminal refuses goes again, four times in all over the whole call. The lines come back in
  /// framed form, without their checksum. Raises what the port raises.
  std::string TransmettreLignes(std::int32_t NumFichier, std::vector<Octets>& Lignes);

 private:
  ÉtatPlugIn& État_;
  Échange& Échange_;
};

}  // namespace Ombrey
