// A long work of the command line.
#include "host/long_work.h"

#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <utility>

#include "base/failures.h"

namespace Tarvel {
namespace {

/// A handler can reach nothing but a global.
volatile std::sig_atomic_t FinDemandée = 0;
extern "C" void TarvelFinDemandée(int) { FinDemandée = 1; }

constexpr std::chrono::seconds EntreLignes(2);

}  // namespace

LongTravail::LongTravail(std::string Nom) : Nom_(std::move(Nom)) {
  FinDemandée = 0;
  for (const int Signal : {SIGINT, SIGTERM}) std::signal(Signal, TarvelFinDemandée);
}

void LongTravail::Avancer(std::size_t Faits, std::size_t Total) {
  if (FinDemandée != 0) throw Ombrey::ErreurExécution(Nom_ + " : arrêtée, rien n'est gardé");
  const auto Maintenant = Temps::now();
  if (Maintenant - Dernière_ < EntreLignes || Faits == 0 || Total < Faits) return;
  Dernière_ = Maintenant;
  const double Fraction = static_cast<double>(Faits) / static_cast<double>(Total);
  const double Passées = std::chrono::duration<double>(Maintenant - Début_).count();
  // Whoever reads it from elsewhere has no such key.
  std::fprintf(stderr, "tarvel : %s : %.0f%s%.0f s%s\n", Nom_.c_str(), 100 * Fraction, EncoreTant.data(),
               Passées / Fraction - Passées, isatty(STDERR_FILENO) != 0 ? " (Ctrl+C l'arrête)" : "");
}

}  // namespace Tarvel
