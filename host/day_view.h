// What the day has brought: its loads, their sums by appellation and class, the tonnage by hour, the quotas of the day.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "contracts/database.h"
#include "contracts/system.h"

namespace Tarvel {

struct ChargementDuJour {
  std::string Site;
  std::string Numéro;  ///< with "*" behind it when another load has taken it over
  std::string Heure;   ///< HH:MM
  double Masse = 0;    ///< kg
  std::optional<double> Degré;
  std::string Appellation;
  std::string Classe;
  std::string Propriétaire;
  std::string Récoltant;
  std::string MasseIllisible{};  ///< what was typed there when it is no number
  std::int64_t Entrée = 0;       ///< higher than that of each load that came in before it
};

/// The loads of one appellation and class.
struct SommeDuJour {
  std::string Appellation;
  std::string Classe;
  std::size_t Nombre = 0;
  double Masse = 0;
  std::optional<double> DegréHecto;  ///< kg × % vol / 100, of the loads that have a degree; none when no load has one
};

/// An appellation that has quotas for the day, those of all groups together.
struct QuotaDuJour {
  std::string Appellation;
  double Quota = 0;
  double Reçu = 0;
};

struct Journée {
  std::vector<ChargementDuJour> Chargements;  ///< the newest first
  std::vector<SommeDuJour> Sommes;            ///< in the order of appellation and class
  std::vector<QuotaDuJour> Quotas;
  std::array<double, 24> MasseParHeure{};  ///< kg

  [[nodiscard]] double Masse() const;
};

/// Reads today's loads, of one site or (an empty code) of all, the quotas with what all sites have received. Raises
/// ErreurExécution when the database can't be read.
[[nodiscard]] Journée LireJournée(Ombrey::IDatabase& Base, const std::string& Site);

/// The day's loads in which every word of Mots stands somewhere, upper and lower case alike, with their own sums. The
/// quotas stay.
[[nodiscard]] Journée Filtrer(const Journée& Toute, const std::string& Mots);

/// How many loads, and their tonnage.
[[nodiscard]] std::string TexteTotal(const Journée& Jour);

/// Number, weight and time of the day's load of this site that came in last, or that there is none.
[[nodiscard]] std::string TexteDernier(const Journée& Jour, const std::string& Site);

/// Which database, and where. Of a server's also what one question and its answer take, when Base is there; raises
/// what that question raises.
[[nodiscard]] std::string TexteBase(const std::string& Nom, bool EstSurServeur, Ombrey::IDatabase* Base = nullptr);

[[nodiscard]] std::string TexteBaseMuette(const std::string& Pourquoi);

/// As « 12,3 t ».
[[nodiscard]] std::string Tonnes(double Kilos);

/// Rows as texts, their headings first: loads, sums, quotas, and the hours that have brought something.
using Rangées = std::vector<std::vector<std::string>>;
[[nodiscard]] Rangées TableauChargements(const Journée& Jour, const Ombrey::Régional& Formes);
[[nodiscard]] Rangées TableauSommes(const Journée& Jour, const Ombrey::Régional& Formes);
[[nodiscard]] Rangées TableauQuotas(const Journée& Jour);
[[nodiscard]] Rangées TableauHeures(const Journée& Jour);

/// The latest 1,000 loads whose number another one has taken over, the latest first.
[[nodiscard]] Rangées TableauArchive(Ombrey::IDatabase& Base, const Ombrey::Régional& Formes);

}  // namespace Tarvel
