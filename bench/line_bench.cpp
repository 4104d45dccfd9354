// The loop while a long file leaves the line: how long anything else has to wait for its turn.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <stdexcept>
#include <string>

#include "platform/loop/descriptor.h"
#include "platform/loop/poll_loop.h"
#include "platform/serial/port_server.h"

namespace Ombrey::Mesures {
namespace {

using namespace std::chrono_literals;
using Horloge = std::chrono::steady_clock;
using Secondes = std::chrono::duration<double>;

constexpr int Bauds = 9600;
constexpr double SecondesParOctet = 10.0 / Bauds;

/// Comes back every 5 ms as long as the loop lets it, keeps the longest time that it had to wait, and takes from the
/// far end of the line what has arrived by then.
class Témoin {
 public:
  explicit Témoin(IBoucle& Boucle) : Boucle_(Boucle) {
    std::array<char, 128> Nom{};
    if (unlockpt(Maître_.Numéro()) != 0 || ptsname_r(Maître_.Numéro(), Nom.data(), Nom.size()) != 0) {
      throw std::runtime_error("no pseudo-terminal");
    }
    NomPort_ = Nom.data();
    Armer();
  }
  [[nodiscard]] const std::string& NomPort() const { return NomPort_; }
  /// Ends the watch.
  [[nodiscard]] Secondes PlusLongueAttente() {
    Délai_.reset();
    return std::max<Secondes>(PlusLongue_, Horloge::now() - Dernier_);
  }

 private:
  void Armer() {
    Délai_ = Boucle_.Après(5ms, [this] { Passer(); });
  }
  void Passer() {
    const auto Maintenant = Horloge::now();
    PlusLongue_ = std::max<Secondes>(PlusLongue_, Maintenant - Dernier_);
    Dernier_ = Maintenant;
    Lire(Maintenant);
    Armer();
  }
  void Lire(Horloge::time_point Maintenant) {
    const auto Arrivés = static_cast<std::size_t>(Secondes(Maintenant - Début_).count() / SecondesParOctet);
    std::array<char, 256> Place;  // NOLINT(cppcoreguidelines-pro-type-member-init): filled by the read
    const auto Nombre = read(Maître_.Numéro(), Place.data(), std::min(Place.size(), Arrivés - Lus_));
    if (Nombre > 0) Lus_ += static_cast<std::size_t>(Nombre);
  }

  IBoucle& Boucle_;
  Descripteur Maître_{posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)};
  std::string NomPort_;
  IBoucle::Jeton Délai_;
  Horloge::time_point Début_ = Horloge::now();
  Horloge::time_point Dernier_ = Début_;
  Secondes PlusLongue_{};
  std::size_t Lus_ = 0;
};

void LongFile(benchmark::State& État) {
  BouclePoll Boucle;
  Témoin Autre(Boucle);
  const ContextePort Contexte{Boucle, {}, nullptr};
  ServeurPortComm Serveur(Contexte);
  const auto Port =
      Serveur.ObtenirPort(Autre.NomPort(), std::make_shared<ClientPortComm>(
                                               Contexte, [](const Octets&) {}, [](const std::string&, bool) {}));
  Port->FixerBauds(Bauds);
  Port->FixerTailleMots(8);
  Port->FixerParité("aucune");
  Port->FixerBitsStop(1);
  const Octets Fichier(static_cast<std::size_t>(État.range(0)), 'x');
  const bool Ouvert = Port->Ouvrir();
  const auto Début = Horloge::now();
  bool Parti = Ouvert;
  for ([[maybe_unused]] auto Tour : État) Parti = Port->Ecrire(Fichier) && Parti;
  const Secondes Durée = Horloge::now() - Début;
  État.counters["longest_wait_ms"] = Autre.PlusLongueAttente().count() * 1e3;
  État.counters["of_wire"] = Durée.count() / (static_cast<double>(État.range(0)) * SecondesParOctet);
  if (!Parti) État.SkipWithError(Port->DernièreErreurPort().c_str());
}

BENCHMARK(LongFile)
    ->Name("the loop while a long file leaves the line, bytes:")
    ->Arg(20'000)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

}  // namespace
}  // namespace Ombrey::Mesures
