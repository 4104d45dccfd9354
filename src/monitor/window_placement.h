// Place and size of the monitoring window and its controls: as designed, on resizing, and in the settings store.
#pragma once

#include <cstddef>
#include <span>
#include <string>

#include "contracts/system.h"
#include "contracts/toolkit.h"

namespace Ombrey {

/// The window's inner area as designed.
inline constexpr Rectangle IntérieurSuivi{0, 0, 11145, 9120};

/// The controls with their texts and designed places.
[[nodiscard]] std::span<const DessinContrôleSuivi> DessinSuivi();

/// Lays the controls out for the window's present outer size. A control that would get a negative size keeps its
/// place, and the others follow from that.
void DisposerContrôles(IVueSuiviChargnt& Vue);

/// The window's measures in the per-user settings, in twips. A missing key, a text that is no number and a size that
/// no screen has all count as not set.
class RéglagesPlacement {
 public:
  RéglagesPlacement(IRéglages& Réglages, const Régional& Formes) : Réglages_(Réglages), Formes_(Formes) {}

  /// Place with each of its measures replaced by the saved one, where there is one.
  [[nodiscard]] Rectangle LirePlace(Rectangle Place) const;
  /// True when the window filled the screen when its place was saved.
  [[nodiscard]] bool LireAgrandie() const { return Lire(CléAgrandie) > 0; }
  /// These raise ErreurExécution when the store can't be written.
  void EcrirePlace(const Rectangle& Place) const;
  void EcrireAgrandie(bool Agrandie) const { Ecrire(CléAgrandie, Agrandie ? 1 : 0); }
  void EcrireLargeur(std::size_t Colonne, int Twips) const;
  /// Saved width of the grid's column, counted from 0; 0 or below when none is to be applied.
  [[nodiscard]] int LireLargeur(std::size_t Colonne) const;

 private:
  static constexpr const char* CléAgrandie = "Agrandie";

  [[nodiscard]] int Lire(const std::string& Clé) const;
  void Ecrire(const std::string& Clé, int Twips) const;

  IRéglages& Réglages_;
  Régional Formes_;
};

}  // namespace Ombrey
