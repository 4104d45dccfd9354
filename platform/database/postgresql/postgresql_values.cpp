// What a PostgreSQL server's row says.
#include "platform/database/postgresql/postgresql_values.h"

#include <charconv>
#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

#include "base/regional_forms.h"
#include "contracts/system.h"

namespace Ombrey {
namespace {

/// The server's numbers for its types.
enum Oid : unsigned { Booléen = 16, Entier8 = 20, Entier2 = 21, Entier4 = 23, Réel4 = 700, Réel8 = 701, Date = 1082 };
enum OidLong : unsigned { Instant = 1114, InstantDeZone = 1184, Décimal = 1700 };

template <class Nombre>
Nombre Lu(std::string_view Texte) {
  Nombre Valeur{};
  std::from_chars(Texte.data(), Texte.data() + Texte.size(), Valeur);
  return Valeur;
}

/// A whole number stays one, as far as it can.
ValeurChamp DécimalLu(std::string_view Texte) {
  constexpr std::size_t ChiffresSûrs = 18;
  if (Texte.find_first_of(".eN") == Texte.npos && Texte.size() <= ChiffresSûrs) return Lu<std::int64_t>(Texte);
  return Lu<double>(Texte);
}

ValeurChamp DateLue(const char* Texte) {
  DateHeure Moment{};
  const int Lus = std::sscanf(Texte, "%d-%d-%d %d:%d:%d", &Moment.Année, &Moment.Mois, &Moment.Jour, &Moment.Heure,
                              &Moment.Minute, &Moment.Seconde);
  constexpr int Trois = 3;
  return Lus < Trois ? ValeurChamp{std::string(Texte)} : ValeurChamp{NuméroDeJour(Moment)};
}

}  // namespace

ValeurChamp ValeurDe(const PGresult* Lignes, int Ligne, int Colonne) {
  if (PQgetisnull(Lignes, Ligne, Colonne) != 0) return std::monostate{};
  const char* const Texte = PQgetvalue(Lignes, Ligne, Colonne);
  switch (PQftype(Lignes, Colonne)) {
    case Booléen:
      return std::int64_t{*Texte == 't' ? -1 : 0};
    case Entier8:
    case Entier4:
    case Entier2:
      return Lu<std::int64_t>(Texte);
    case Réel4:
    case Réel8:
      return Lu<double>(Texte);
    case Décimal:
      return DécimalLu(Texte);
    case Date:
    case Instant:
    case InstantDeZone:
      return DateLue(Texte);
    default:
      return std::string(Texte, static_cast<std::size_t>(PQgetlength(Lignes, Ligne, Colonne)));
  }
}

}  // namespace Ombrey
