// What every engine's refusals have in common, in an operator's French. A name follows where the words end in a colon.
#pragma once

namespace Ombrey::RefusDeBase {

inline constexpr const char* TableIntrouvable = "Table introuvable : ";
inline constexpr const char* ColonneIntrouvable = "Colonne introuvable : ";
inline constexpr const char* FonctionInconnue = "Fonction inconnue : ";
inline constexpr const char* BaseVerrouillée = "La base de données est verrouillée par un autre programme";
inline constexpr const char* LectureSeule = "La base de données est en lecture seule";
inline constexpr const char* TexteTropLong = "Texte trop long";
inline constexpr const char* ValeurRefusée = "Valeur refusée par la base de données";
inline constexpr const char* RequêteRefusée = "La base de données refuse la requête";

}  // namespace Ombrey::RefusDeBase
