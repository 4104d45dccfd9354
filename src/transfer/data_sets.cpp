// The data sets that the terminal takes: the order of sending, and what each file holds.
#include "transfer/data_sets.h"

#include <array>

#include "contracts/line_protocol.h"
#include "contracts/octets.h"
#include "transfer/record_encoders.h"

namespace Ombrey {
namespace {

using namespace std::chrono_literals;

// Offset, width, column, encoder.

constexpr std::array<ChampEnregistrement, 4> ChampsAppelations{{
    {0, 2, 0, EncoderNombre},   // IdSélection
    {2, 20, 1, EncoderTexte},   // Désignation
    {22, 4, 2, EncoderNombre},  // QuotasSurface
    {26, 5, 3, EncoderNombre},  // reserved: the query's constant 0
}};
constexpr std::array<ChampEnregistrement, 2> ChampsCoopérateurs{{
    {0, 6, 0, EncoderNombre},  // IdCoopérateur
    {6, 35, 1, EncoderTexte},  // Nom
}};
constexpr std::array<ChampEnregistrement, 5> ChampsBadges{{
    {0, 6, 0, EncoderNombre},   // CodeBadge
    {6, 6, 1, EncoderNombre},   // Récoltant
    {12, 6, 2, EncoderNombre},  // Propriétaire
    {18, 7, 3, EncoderPart},    // Part
    {25, 3, 4, EncoderNombre},  // IdGrp
}};
constexpr std::array<ChampEnregistrement, 2> ChampsQuota{{
    {0, 2, 0, EncoderNombre},  // IdSélection
    {2, 8, 1, EncoderNombre},  // QuotaJournalier
}};
constexpr Emplacements QuotasDuGroupement{
    .Décalage = 23,
    .Largeur = 10,
    .Nombre = 6,
    .SqlAvant =
        "SELECT IdSélection, QuotaJournalier FROM Sélection"
        " LEFT JOIN QuotasGrp ON Sélection.IdSélection=QuotasGrp.Sélection WHERE IdGrp = ",
    .SqlAprès = " AND IdSélection <> '60' AND IdSélection <> '70' AND IdSélection <> '90' ORDER BY IdSélection",
    .Champs = ChampsQuota,
};
constexpr std::array<ChampEnregistrement, 2> ChampsGroupements{{
    {0, 3, 0, EncoderNombre},  // Métayage.IdGrp
    {3, 20, 1, EncoderTexte},  // the same: the terminal's name of a group is its code
}};
constexpr std::array<ChampEnregistrement, 2> ChampsObservations{{
    {0, 2, 0, EncoderNombre},  // IdQualité
    {2, 20, 1, EncoderTexte},  // Désignation
}};
constexpr auto Jeux = std::to_array<JeuDeDonnées>({
    {.Case = "ChkAppelations",
     .Nom = "Appelations",
     .NumFichier = 4,
     .Pause = 0ms,
     .Champs = ChampsAppelations,
     .Sql = "SELECT IdSélection, Désignation, QuotasSurface, 0 FROM Sélection"
            " WHERE IdSélection <> '60' AND IdSélection <> '70' AND IdSélection <> '90' ORDER BY IdSélection",
     .Titre = "Appelation ",
     .TitreFin = " appelations en cours..."},
    {.Case = "ChkCoop",
     .Nom = "Coopérateurs",
     .NumFichier = 1,
     .Pause = 1000ms,
     .Champs = ChampsCoopérateurs,
     .Sql = "SELECT DISTINCT Coopérateur.IdCoopérateur, Nom FROM Coopérateur"
            " INNER JOIN Métayage ON Coopérateur.IdCoopérateur = Métayage.Propriétaire"
            " UNION SELECT DISTINCT Coopérateur.IdCoopérateur, Nom FROM Coopérateur"
            " INNER JOIN Métayage ON Coopérateur.IdCoopérateur = Métayage.Récoltant ORDER BY IdCoopérateur",
     .Titre = "Coopérateur ",
     .TitreFin = " coopérateurs en cours..."},
    {.Case = "ChkBadges",
     .Nom = "Badges",
     .NumFichier = 5,
     .Pause = 1000ms,
     .Champs = ChampsBadges,
     .Sql = "SELECT CodeBadge, Récoltant, Propriétaire, Part, IdGrp FROM Métayage ORDER BY CodeBadge",
     .SqlComptage = "SELECT Count(IdMétayage) FROM Métayage",
     .Titre = "Badge ",
     .TitreFin = " badges en cours..."},
    {.Case = "ChkGroupnts",
     .Nom = "Groupements",
     .NumFichier = 2,
     .Pause = 1000ms,
     .Champs = ChampsGroupements,
     .Sql = "SELECT DISTINCT Métayage.IdGrp, Métayage.IdGrp FROM Métayage ORDER BY Métayage.IdGrp",
     .Titre = "Groupement ",
     .TitreFin = " groupements en cours...",
     .Créneaux = &QuotasDuGroupement},
    {.Case = "ChkObserv",
     .Nom = "Observations",
     .NumFichier = 6,
     .Pause = 1000ms,
     .Champs = ChampsObservations,
     .Sql = "SELECT IdQualité, Désignation FROM Qualité ORDER BY IdQualité",
     .SqlComptage = "SELECT Count(IdQualité) FROM Qualité",
     .Titre = "Observation ",
     .TitreFin = " observations en cours..."},
});

/// The sets whose files the line's header knows by name make them of the length that it says.
constexpr bool LongueursConformes() {
  for (const JeuDeDonnées& Jeu : Jeux)
    for (const FichierTerminal& Connu : FichiersTerminal)
      if (Connu.Numéro == Jeu.NumFichier && Connu.LongEnreg != Jeu.Longueur()) return false;
  return true;
}
static_assert(LongueursConformes());

}  // namespace

std::span<const JeuDeDonnées> JeuxDeDonnées() { return Jeux; }

}  // namespace Ombrey
