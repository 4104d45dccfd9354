// An operator at a console.
#pragma once

#include <gtest/gtest.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <string>

#include "platform/loop/descriptor.h"

namespace Ombrey::Essais {

/// An operator: all that he types is known ahead, all that he sees is read afterwards.
class Terminal {
 public:
  /// Types it all and ends the input.
  explicit Terminal(const std::string& Tapé) {
    int Bouts[2] = {-1, -1};
    EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, Bouts), 0);
    Console = Descripteur(Bouts[0]);
    Opérateur = Descripteur(Bouts[1]);
    EXPECT_EQ(send(Bouts[1], Tapé.data(), Tapé.size(), 0), static_cast<ssize_t>(Tapé.size()));
    shutdown(Bouts[1], SHUT_WR);
  }
  /// What was shown since the last call.
  [[nodiscard]] std::string Vu() const {
    std::array<char, 65536> Bloc{};
    const ssize_t Lus = recv(Opérateur.Numéro(), Bloc.data(), Bloc.size(), MSG_DONTWAIT);
    return {Bloc.data(), static_cast<std::size_t>(std::max<ssize_t>(Lus, 0))};
  }

  Descripteur Console;  ///< the program's end
  Descripteur Opérateur;
};

}  // namespace Ombrey::Essais
