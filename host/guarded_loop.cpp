// A loop whose actions can't unwind one another.
#include "host/guarded_loop.h"

#include <exception>

namespace Tarvel {

Ombrey::IBoucle::Jeton BoucleGardée::Surveiller(int Descripteur, Sens Quoi, Action Faire) {
  return Boucle_.Surveiller(Descripteur, Quoi, Garder(std::move(Faire)));
}

Ombrey::IBoucle::Jeton BoucleGardée::Après(std::chrono::milliseconds Délai, Action Faire) {
  return Boucle_.Après(Délai, Garder(std::move(Faire)));
}

Ombrey::IBoucle::Action BoucleGardée::Garder(Action Faire) const {
  return [Faire = std::move(Faire), Dire = Dire_, Derrière = Derrière_] {
    try {
      Faire();
      Derrière();
    } catch (const std::exception& Erreur) {
      Dire(Erreur.what());
    }
  };
}

}  // namespace Tarvel
