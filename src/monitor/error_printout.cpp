// The error list on paper.
#include "monitor/error_printout.h"

#include <cstddef>

#include "base/regional_forms.h"

namespace Ombrey {
namespace {

constexpr int PointsTitre = 14;
constexpr int PointsLignes = 10;
constexpr std::size_t LongueurFilet = 30;
constexpr double PartUtileDePage = 0.9;
const std::string Retrait(5, ' ');

}  // namespace

void ImprimerErreurs(IImprimante& Imprimante, const DateHeure& Moment, const std::deque<std::string>& Lignes) {
  Imprimante.Imprimer("");
  Imprimante.FixerPolice(PointsTitre, true, true);
  Imprimante.Imprimer(Retrait + TexteDateHeure(Moment) + " - Liste des erreurs survenues :");
  Imprimante.Imprimer(std::string(LongueurFilet, '_'));
  Imprimante.Imprimer("");
  Imprimante.FixerPolice(PointsLignes, false, false);
  for (auto Ligne = Lignes.rbegin(); Ligne != Lignes.rend(); ++Ligne) {
    if (Imprimante.PositionVerticale() > PartUtileDePage * Imprimante.HauteurPage()) Imprimante.NouvellePage();
    Imprimante.Imprimer(Retrait + *Ligne);
  }
  Imprimante.TerminerDocument();
}

}  // namespace Ombrey
