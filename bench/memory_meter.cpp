// Counts what C++ allocates in this program: the global operators, by the size that the allocator really gives.
#include "bench/memory_meter.h"

#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <new>

namespace {

// The program has one thread.
std::size_t Tenus = 0;
std::size_t PlusHaut = 0;

void Rendre(void* Place) noexcept {
  Tenus -= malloc_usable_size(Place);
  std::free(Place);  // NOLINT(cppcoreguidelines-no-malloc)
}

}  // namespace

void* operator new(std::size_t Taille) {
  void* Place = std::malloc(std::max<std::size_t>(Taille, 1));  // NOLINT(cppcoreguidelines-no-malloc)
  if (!Place) throw std::bad_alloc();
  Tenus += malloc_usable_size(Place);
  PlusHaut = std::max(PlusHaut, Tenus);
  return Place;
}

void operator delete(void* Place) noexcept { Rendre(Place); }
void operator delete(void* Place, std::size_t) noexcept { Rendre(Place); }

namespace Ombrey::Mesures {

MesureMémoire::MesureMémoire() : Départ_(Tenus) { PlusHaut = Tenus; }

std::size_t MesureMémoire::Sommet() const { return PlusHaut - Départ_; }

}  // namespace Ombrey::Mesures
