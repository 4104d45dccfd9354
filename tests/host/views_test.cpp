// What the operator is shown at a glance: the day, the link, what is refused and what nobody has read.
#include <ranges>

#include "host/day_view.h"
#include "host/watch.h"
#include "tests/transfer/small_cooperative.h"

namespace Tarvel {

using namespace Ombrey::Essais;

struct Vues : AvecCoopérative {
  Vues() {
    Exécuter(
        "INSERT INTO Coopérateur VALUES('1','Dupré','Élise'),('2','Martin',NULL);"
        "INSERT INTO Métayage VALUES('10','1','2',33.3333,'5','7');"
        "INSERT INTO Sélection VALUES('05','Aligoté',1),('06','Crémant',1); INSERT INTO Qualité VALUES('9','Saine');"
        "INSERT INTO QuotasGrp VALUES('7','05',5000),('8','05',2500),('7','06',NULL);"
        "INSERT INTO Chargement VALUES ('3', 1, 46287 + 485 / 1440.0, '10', '05', '9', 12.5, 1480, -1),"
        " ('3', 2, 46287 + 845 / 1440.0, '10', '05', '9', NULL, 520, -1),"
        " ('4', 1, 46287 + 846 / 1440.0, '0', '99', '8', 'x', 1000, -1), ('3', 3, 46286, '10', '05', '9', 1, 1, -1);"
        "CREATE TABLE ChargementArchive AS SELECT * FROM Chargement WHERE NoChargement = 3");
  }
  /// The rows below the headings.
  static std::string Dire(const Rangées& Tableau) {
    std::string Tout;
    for (const auto& Rangée : Tableau | std::views::drop(1)) {
      for (const std::string& Un : Rangée) Tout += Un + '|';
      Tout += '\n';
    }
    return Tout;
  }
  Ombrey::IDatabase& Base = *Coopérative.Base;
};

TEST_F(Vues, TheDaysLoadsSumsAndQuotasOfASiteOrOfAllAndOfWhatOneLooksFor) {
  const std::string Deux =
      "3|2|14:05|520||Aligoté|Saine|Dupré Élise|Martin|\n3|1|08:05|1480|12,5|Aligoté|Saine|Dupré Élise|Martin|\n";
  const std::string Quatre = "4|1|14:06|1000||99 (inconnu)|8 (inconnu)|||\n";
  const std::string Aligoté = "Aligoté|Saine|2|2000|185|\n", Inconnue = "99 (inconnu)|8 (inconnu)|1|1000|0|\n";
  const struct {
    const char *Site, *Mots;
    std::string Chargements, Sommes;
    double Après14h;
  } Table[] = {{"", "", Quatre + Deux, Inconnue + Aligoté, 1520},
               {"3", "", Deux, Aligoté, 520},
               {"", "ÉLISE  8:05", Deux.substr(Deux.find('\n') + 1), "Aligoté|Saine|1|1480|185|\n", 0},
               {"", "inconnu", Quatre, Inconnue, 1000},
               {"", "aligoté zzz", "", "", 0}};
  for (const auto& Cas : Table) {
    const Journée Jour = Filtrer(LireJournée(Base, Cas.Site), Cas.Mots);
    EXPECT_EQ(Dire(TableauChargements(Jour, {})), Cas.Chargements);
    EXPECT_EQ(Dire(TableauSommes(Jour, {})), Cas.Sommes);
    EXPECT_EQ(Dire(TableauQuotas(Jour)), "Aligoté|7500|2000|5500|\n") << "the quotas are those of all sites";
    EXPECT_EQ(Jour.MasseParHeure[14], Cas.Après14h);
  }
  EXPECT_EQ(Dire(TableauArchive(Base, {})), "3|3|21/09/2026 00:00|1|1|05|9|10|\n");
}

TEST(ÉtatDeLaLiaison, IsReadFromWhatThePlugInSays) {
  const struct {
    const char *Ligne, *Port, *Dite;
  } Table[] = {{"Module initialisé.", "", "Le RG80 n'a pas encore été interrogé"},
               {"08:30:00 : Aucun chargement à récupérer.", "", "Le RG80 répond"},
               {"Echec de lecture de données du RG80 : Aucune réponse du RG80.", "", "Le RG80 est muet depuis 12 min"},
               {"Erreur du port de communication au RG80.", "", "Le port est en panne (depuis 12 min)"},
               {"Erreur du port de communication au RG80.", "Le port COM1: est occupé par minicom.",
                "Le port COM1: est occupé par minicom. (depuis 12 min)"},
               {"Mise à jour des cumuls : Exploitation : 12", "Le port COM1: est absent.", "Le RG80 répond"},
               {"Vérification. Erreur Aucun port n'est réglé (Station > Configurer le port)", "",
                "Aucun port n'est réglé (Station > Configurer le port)"}};
  for (const auto& Cas : Table) {
    ÉtatLiaison Liaison;
    if (*Cas.Port) Liaison.NoterPort(1000, Cas.Port);
    for (const Secondes Quand : {1000, 1700}) Liaison.Noter(Quand, Cas.Ligne);
    EXPECT_EQ(Liaison.Texte(1000 + 725), Cas.Dite);
  }
}

TEST(FaitsRépétés, AreOneRowEachWithTheirCountTheLatestOnTop) {
  FaitsRépétés Faits;
  const char* const Degré = "TraiterDonnéesReçues : Incompatibilité de type : degré « 1x5 » du chargement n° 12";
  for (int Minute = 0; const char* Texte : {Degré, "Erreur de check-sum", "Aucune réponse du RG80.", Degré}) {
    const Refus Lu = LireRefus(Texte);
    if (!Lu.Sujet.empty()) Faits.Noter({2026, 9, 22, 8, Minute++, 0}, Lu.Sujet, Lu.Motif, Lu.ÀFaire);
  }
  std::string Dits;
  for (const FaitRépété& Un : Faits.Tous())
    Dits += Un.Sujet + " × " + std::to_string(Un.Fois) + (Un.ÀFaire.empty() ? "" : ", advice") + " " +
            std::to_string(Un.Premier.Minute) + "-" + std::to_string(Un.Dernier.Minute) + "\n";
  EXPECT_EQ(Dits, std::string("12 × 2, advice 0-2\n") + SansNuméro + " × 1, advice 1-1\n");
  Faits.Retirer("12");
  EXPECT_EQ(Faits.Tous().size(), 1U);
}

}  // namespace Tarvel
