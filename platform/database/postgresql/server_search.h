// Where the servers of an address are to be found.
#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace Ombrey {

/// A server to be tried; what is empty is libpq's own habit.
struct ServeurÀEssayer {
  std::string Hôte;       ///< as the certificate and the password file know it
  std::string AdresseIp;  ///< so that libpq needn't ask for it
  std::string Port;
};

/// The servers of the address, of its service file or of the environment, in their order; one for each address of a
/// name. A name that can't be found in time stays without one, and isn't given to libpq, which would wait for it: it is
/// left out. Patience is called over and over meanwhile.
[[nodiscard]] std::vector<ServeurÀEssayer> ServeursDe(const std::string& Adresse,
                                                      std::chrono::steady_clock::time_point Échéance,
                                                      const std::function<bool()>& Patience);

}  // namespace Ombrey
