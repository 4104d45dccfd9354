// The field tables of the load record and of the reply record.
#include "import/load_record.h"

namespace Ombrey {
namespace {

constexpr std::int16_t LongueurEnregistrement = 55;

/// DateSortie starts at the load's date and ends at the time of leaving; InfoChargnt3 repeats Qualité.
constexpr const char* TableChargement =
    "NoChargement;1;4;"
    "DateCh;5;10;"
    "DateSortie;5;14;"
    "Métayage;19;12;"
    "Sélection;41;2;"
    "Qualité;43;2;"
    "Degré;45;3;"
    "NoQuai;48;1;"
    "Masse;49;4;"
    "Cuve;53;3;"
    "InfoChargnt3;43;2;";

constexpr const char* TableCumuls =
    "CumulExploit;1;6;"
    "RestantExploit;7;6;"
    "CumulGroupe;13;6;"
    "RestantGroupe;19;6;";

}  // namespace

void InitConstantes(ÉtatPlugIn& État) {
  État.LongEnregChargement = LongueurEnregistrement;
  État.ChampsChargement = TableChargement;
  État.ChampsCumuls = TableCumuls;
}

}  // namespace Ombrey
