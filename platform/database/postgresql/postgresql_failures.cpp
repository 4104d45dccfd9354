// What a PostgreSQL server refuses, in an operator's French.
#include "platform/database/postgresql/postgresql_failures.h"

#include <algorithm>
#include <array>

#include "base/visible_text.h"
#include "platform/database/connection.h"
#include "platform/database/failure_words.h"

namespace Ombrey {
namespace {

/// For the code, or for all that begin so.
struct Traduction {
  std::string_view Code;
  const char* Texte;
  bool AvecNom = false;  ///< the name that the server's words quote follows
};

constexpr std::array<Traduction, 22> Traductions = {{
    {"42P01", RefusDeBase::TableIntrouvable, true},
    {"42703", RefusDeBase::ColonneIntrouvable, true},
    {"42883", RefusDeBase::FonctionInconnue, true},
    {"42501", "Droit refusé par le serveur"},
    {"42P07", "La table existe déjà"},
    {"40001", "Une autre station a changé les mêmes données"},
    {"40P01", "Une autre station attendait les mêmes données"},
    {"55P03", RefusDeBase::BaseVerrouillée},
    {"57014", "Le serveur a interrompu une requête trop longue"},
    {"57P", "Le serveur de la base s'arrête ou a coupé la liaison"},
    {"53100", "Le disque du serveur est plein"},
    {"53300", "Le serveur n'accepte pas d'autre liaison"},
    {"53", "Les moyens du serveur sont épuisés"},
    {"25006", RefusDeBase::LectureSeule},
    {"22001", RefusDeBase::TexteTropLong},
    {"22003", Description::DépassementDeCapacité},
    {"22", "Valeur illisible pour la base de données"},
    {"23", RefusDeBase::ValeurRefusée},
    {"28", "Le serveur refuse l'accès"},
    {"3D000", "Le serveur n'a pas cette base"},
    {"08", LiaisonPerdue},
    {"58", "Erreur de lecture ou d'écriture du disque du serveur"},
}};

/// What the server's words put into quotes first, or what stands behind "column" or "function".
std::string NomCité(std::string_view Mots) {
  const std::size_t Début = Mots.find('"');
  const std::size_t Fin = Mots.find('"', Début + 1);
  if (Début != Mots.npos && Fin != Mots.npos) return std::string(Mots.substr(Début + 1, Fin - Début - 1));
  for (const std::string_view Genre : {"column ", "function "}) {
    if (!Mots.starts_with(Genre)) continue;
    const std::string_view Reste = Mots.substr(Genre.size());
    return std::string(Reste.substr(0, Reste.find_first_of(" (")));
  }
  return {};
}

}  // namespace

void LeverÉchecServeur(std::string_view Code, std::string_view Mots) {
  const auto* const Trouvée =
      std::ranges::find_if(Traductions, [&](const Traduction& T) { return Code.starts_with(T.Code); });
  const bool EstConnue = Trouvée != Traductions.end();
  const std::string Texte =
      (EstConnue ? Trouvée->Texte + (Trouvée->AvecNom ? NomCité(Mots) : "") : RefusDeBase::RequêteRefusée) +
      std::string(" (") + SurUneLigne(Mots) + ")";
  if (Code == "40001" || Code == "40P01") throw ÉchecPassager(Texte);
  throw ErreurExécution(Texte);
}

}  // namespace Ombrey
