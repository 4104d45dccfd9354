// The columns of a load: how the database declares them, and how an import file brings their values.
#pragma once

#include <array>
#include <string>

namespace Tarvel {

/// The table that imports fill, as the events name it, and the one for loads whose number another load has taken over.
inline constexpr const char* TableChargements = "Chargement";
inline constexpr const char* TableArchive = "ChargementArchive";

/// The weights of both by holding, appellation and year, which the engine itself keeps.
inline constexpr const char* TableCumuls = "CumulSaison";

/// What stands for a holding that couldn't be had when the load came in.
inline constexpr const char* ExploitationInconnue = "0";

struct ColonneChargement {
  const char* Nom;
  const char* Type;
  bool EstObligatoire;  ///< an import layout names it, and each of its lines has a value there
  const char* Genre;    ///< kind of its values in an import file
  int Largeur;          ///< their greatest width there; 0 for the cooperative's own names, which have none
  bool EstReçue;  ///< the site's and the terminal's word: kept a second time as it came, apart from what the office
                  ///< corrects
};

inline constexpr std::array<ColonneChargement, 18> ColonnesChargement = {{
    {"CodeSite", "TEXT", true, "texte", 0, true},
    {"NoChargement", "INTEGER", true, "entier", 4, true},
    {"DateCh", "REAL", true, "date", 19, true},
    {"DateSortie", "REAL", false, "date", 19, true},
    {"Métayage", "TEXT", true, "texte", 6, false},
    {"Sélection", "TEXT", false, "texte", 2, true},
    {"Cépage", "TEXT", false, "texte", 0, false},
    {"Qualité", "TEXT", false, "texte", 2, true},
    {"Degré", "NUMERIC", false, "nombre", 5, true},
    {"NoQuai", "INTEGER", false, "entier", 1, true},
    {"Masse", "NUMERIC", false, "entier", 4, true},
    {"Cuve", "TEXT", false, "texte", 3, true},
    {"Operateur", "TEXT", false, "texte", 10, false},
    {"Ramassage", "TEXT", false, "texte", 10, false},
    {"InfoChargnt1", "TEXT", false, "texte", 10, false},
    {"InfoChargnt2", "TEXT", false, "texte", 10, false},
    {"InfoChargnt3", "TEXT", false, "texte", 10, false},
    {"InfoChargnt4", "TEXT", false, "texte", 10, false},
}};

/// Name of the column that keeps what the terminal sent for this one.
[[nodiscard]] inline std::string ColonneReçue(const std::string& Nom) { return "Reçu" + Nom; }

}  // namespace Tarvel
