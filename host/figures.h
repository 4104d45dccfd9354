// The running figures: what a holding or a group has brought in, and what it may still bring.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "contracts/database.h"
#include "contracts/system.h"
#include "host/conditions.h"
#include "platform/database/connection.h"

namespace Tarvel {

/// Tells the operator one sentence.
using Avis = std::function<void(const std::string&)>;

/// Which loads count. An empty text or a missing day doesn't narrow the choice. Days are numbers since 1899-12-30, both
/// included.
struct FiltreChargements {
  std::string Groupe{};
  std::string Métayage{};
  std::string Cépage{};
  std::string Sélection{};
  std::string Qualité{};
  std::optional<double> Du{};
  std::optional<double> Au{};
  /// The season when it is all that narrows the period: its year, else none.
  std::optional<int> Saison{};
};

/// Figures in kilograms, rounded to whole numbers and kept within 32 bits. All sites count, and loads whose number
/// another load has taken over do so too. Where no period is given, it is the season: the present calendar year.
class Figures {
 public:
  /// Avis, when it is there, is told of numbers that can't be read.
  Figures(Ombrey::IConnexion& Connexion, const Ombrey::ISystème& Système, Avis LAvis = {})
      : Connexion_(Connexion), Système_(Système), Avis_(std::move(LAvis)) {}

  /// Weight of the group's loads; 0 without a group.
  [[nodiscard]] std::int32_t CumulGroupe(FiltreChargements Filtre) const;
  /// The holding's quota, which is surface × quota by surface of the appellation × share in percent, less what it has
  /// brought in. Negative once it is exceeded.
  [[nodiscard]] std::int32_t RestantExploit(FiltreChargements Filtre) const;
  /// The group's quota of the day for the appellation, less what it has brought in on that day; today when no day is
  /// given. Negative once it is exceeded.
  [[nodiscard]] std::int32_t RestantGroupe(FiltreChargements Filtre) const;

 private:
  /// The number that a query gives, written with comma or point; none for Null, an empty text, and what is no number.
  [[nodiscard]] std::optional<double> Nombre(const char* Colonne, const char* Sql,
                                             const std::vector<Ombrey::ValeurChamp>& Valeurs) const;
  [[nodiscard]] double Masse(const FiltreChargements& Filtre) const;
  void DireIllisibles(const Conditions& Choix) const;
  [[nodiscard]] bool ACumuls() const;
  void BornerALaSaison(FiltreChargements& Filtre) const;

  Ombrey::IConnexion& Connexion_;
  const Ombrey::ISystème& Système_;
  Avis Avis_;
  mutable std::optional<bool> ACumuls_;
};

}  // namespace Tarvel
