// Counts what C++ allocates in this program.
#pragma once

#include <cstddef>

namespace Ombrey::Mesures {

/// From its construction on: how far the bytes held by C++ allocations rose above what was held then. One at a time.
class MesureMémoire {
 public:
  MesureMémoire();
  [[nodiscard]] std::size_t Sommet() const;

 private:
  std::size_t Départ_;
};

}  // namespace Ombrey::Mesures
