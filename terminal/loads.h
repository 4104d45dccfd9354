// The loads that the terminal holds: read from a file or made up.
#pragma once

#include <chrono>
#include <istream>
#include <stdexcept>
#include <string>
#include <vector>

#include "terminal/faults.h"

namespace Rg80 {

inline constexpr std::size_t LongueurChargement = 55;
inline constexpr std::size_t LongueurNuméro = 4;

/// A weighed load that waits to be collected.
struct Chargement {
  std::string Enregistrement;  // LongueurChargement bytes of Windows-1252, content unchecked
  Pannes PannesDuPremierEnvoi;
  unsigned Essais = 0;

  /// The load number as it stands at the record's head, for messages.
  [[nodiscard]] std::string Numéro() const;
};

/// What the command line or a file that it names has wrong: a French sentence.
class ErreurDemande : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// One record a line; ahead of it, `!checksum ` and the like name the faults of its first sending. Raises
/// ErreurDemande with the line's number when a record hasn't its length. Nom: the file's name, for that message.
[[nodiscard]] std::vector<Chargement> LireChargements(std::istream& Flux, const std::string& Nom);

/// Nombre believable loads of the given day, numbered from PremierNuméro (0 to 9999, and round again).
[[nodiscard]] std::vector<Chargement> ChargementsAuHasard(unsigned Nombre, unsigned PremierNuméro,
                                                          std::chrono::year_month_day Jour, Hasard& Dés);

/// The number behind the highest one of Existants; 1 when there is none.
[[nodiscard]] unsigned NuméroSuivant(const std::vector<Chargement>& Existants);

}  // namespace Rg80
