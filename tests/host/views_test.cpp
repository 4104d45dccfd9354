// What the operator is shown at a glance: the day, the link, what is refused and what nobody has read.

#include "base/files.h"
#include "host/guarded_loop.h"
#include "host/overview.h"
#include "platform/loop/poll_loop.h"
#include "platform/system/machine_system.h"
#include "tests/support/test_folder.h"
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
        "INSERT INTO Chargement VALUES ('3', 1, 46287 + 485 / 1440.0, '10', '05', '9', 12.5, 1480, -1, 9),"
        " ('3', 2, 46287 + 845 / 1440.0, '10', '05', '9', NULL, 520, -1, 2),"
        " ('4', 1, 46287 + 846 / 1440.0, '0', '99', '8', 'x', 1000, -1, 10), ('3', 3, 46286, '10', '05', '9', 1, 1, "
        "-1, 1);"
        "CREATE TABLE ChargementArchive AS SELECT * FROM Chargement WHERE NoChargement = 3;"
        "INSERT INTO ChargementArchive SELECT '5', 9, 'hier', Métayage, Sélection, Qualité, Degré, Masse, 0, 0"
        " FROM ChargementArchive; UPDATE Chargement SET Masse = '1 t' WHERE CodeSite = '4';"
        "INSERT INTO ChargementArchive SELECT '3', 2, DateCh - 0.2, Métayage, Sélection, Qualité, 10, 80, 0, 3"
        " FROM Chargement WHERE CodeSite = '3' AND NoChargement = 2");
  }
  /// The rows below the headings.
  static std::string Dire(Rangées Tableau) {
    std::string Tout;
    Tableau.erase(Tableau.begin());
    for (const auto& Rangée : Tableau) {
      for (const std::string& Un : Rangée) Tout += Un + '|';
      Tout += '\n';
    }
    return Tout;
  }
  Ombrey::IDatabase& Base = *Coopérative.Base;
};

TEST_F(Vues, TheDaysLoadsSumsAndQuotasOfASiteOrOfAllAndOfWhatOneLooksFor) {
  const std::string Deux =
      "3|2|14:05|520||Aligoté|Saine|Dupré Élise|Martin|\n3|2*|09:17|80|10|Aligoté|Saine|Dupré Élise|Martin|\n"
      "3|1|08:05|1480|12,5|Aligoté|Saine|Dupré Élise|Martin|\n";
  const std::string Quatre = "4|1|14:06|1 t||99 (inconnu)|8 (inconnu)|||\n";
  const std::string Aligoté = "Aligoté|Saine|3|2080|193|\n", Inconnue = "99 (inconnu)|8 (inconnu)|1|0||\n";
  const struct {
    const char *Site, *Mots;
    std::string Chargements, Sommes;
    double Après14h;
  } Table[] = {{"", "", Quatre + Deux, Inconnue + Aligoté, 520},
               {"3", "", Deux, Aligoté, 520},
               {"4", "", Quatre, Inconnue, 0},
               {"", "ÉLISE  8:05", Deux.substr(Deux.rfind("3|1")), "Aligoté|Saine|1|1480|185|\n", 0},
               {"", "14:05", Deux.substr(0, Deux.find("3|2*")), "Aligoté|Saine|1|520||\n", 520},
               {"", "inconnu", Quatre, Inconnue, 0},
               {"", "aligoté zzz", "", "", 0}};
  for (const auto& Cas : Table) {
    const Journée Jour = Filtrer(LireJournée(Base, Cas.Site), Cas.Mots);
    EXPECT_EQ(Dire(TableauChargements(Jour, {})), Cas.Chargements);
    EXPECT_EQ(Dire(TableauSommes(Jour, {})), Cas.Sommes);
    EXPECT_EQ(Dire(TableauQuotas(Jour)), "Aligoté|7500|2080|5420|\n") << "the quotas are those of all sites";
    EXPECT_EQ(Jour.MasseParHeure[14], Cas.Après14h);
  }
  EXPECT_EQ(TexteDernier(LireJournée(Base, ""), "3"), "Dernier : n° 1, 1480 kg, 08:05")
      << "the site's own, which came in behind those that were weighed later";
  EXPECT_EQ(TexteDernier(LireJournée(Base, ""), "5"), "Aucun chargement aujourd'hui");
  EXPECT_EQ(
      Dire(TableauArchive(Base, {})),
      "5|9|hier|1|1|Aligoté|Saine|Dupré Élise|Martin|\n3|2|22/09/2026 09:17|80|10|Aligoté|Saine|Dupré Élise|Martin|\n"
      "3|3|21/09/2026 00:00|1|1|Aligoté|Saine|Dupré Élise|Martin|\n");
}

TEST(ÉtatDeLaLiaison, IsReadFromWhatThePlugInSays) {
  // What the plug-in says, the port's own word, and what is made of it.
  // clang-format off
  const std::string Panne = "Erreur du port de communication au RG80.";
  const std::string Occupé = "Le port COM1: (/dev/ttyS0) est déjà utilisé par un autre programme : minicom, processus 4711.";
  const std::string SansPort = "Aucun port n'est réglé (Station > Configurer le port)";
  const std::array<std::string, 3> Table[] = {
      {"Module initialisé.", "", "Le RG80 n'a pas encore été interrogé"},
      {"08:30:00 : Aucun chargement à récupérer.", "", "Le RG80 répond"},
      {"Echec de lecture de données du RG80 : Aucune réponse du RG80.", "", "Le RG80 est muet depuis 12 min"},
      {Panne, "", "Le port est en panne (depuis 12 min)"}, {Panne, Occupé, Occupé.substr(0, Occupé.size() - 1) + " (depuis 12 min)"},
      {"Mise à jour des cumuls : Exploitation : 12", "Le port COM1: (/dev/ttyS0) est absent de cette machine.", "Le RG80 répond"},
      {"Vérification. Erreur " + SansPort, "", SansPort}};
  // clang-format on
  for (const auto& [Dit, Port, Phrase] : Table) {
    ÉtatLiaison Vue;
    if (!Port.empty()) Vue.NoterPort(1000, Port);
    for (const Secondes Quand : {1000, 1700}) Vue.Noter(Quand, Dit);
    EXPECT_EQ(Vue.Texte(1000 + 725), Phrase);
  }
  ÉtatLiaison Vue;
  Vue.NoterPort(1000, Occupé);
  for (const auto& [Quand, Dit] : {std::pair(1100, "08:30:00 : Aucun chargement à récupérer."), {1200, Panne.c_str()}})
    Vue.Noter(Quand, Dit);
  EXPECT_EQ(Vue.Texte(1205), "Le port est en panne (depuis moins d'une minute)") << "the reason was an earlier one's";
  Aperçu Poste;
  const std::optional<std::int32_t> EnCours;
  for (const auto& [Attente, Dit] : {std::pair(EnCours, "Relevé en cours"),
                                     {60000, "Prochain relevé à "},
                                     {EnCours, "Relevé en cours"},
                                     {2000, "Relevés à 2 s d'intervalle"},
                                     {EnCours, "Relevés à 2 s d'intervalle"}}) {
    Poste.NoterRelevé(Attente);
    EXPECT_EQ(Poste.TexteRelevé().find(Dit), 0U) << Dit;
  }
}

struct Aperçus : testing::Test {
  Aperçus() { Vue.Ouvrir(Dossier.Chemin(), Dossier.Chemin()); }
  /// Number 12 comes over the line, in two pieces; this year's unless another is told.
  void Offrir(const std::string& Année = "26", std::size_t Taille = Ombrey::LongTrameChargement) {
    const std::string Trame = "\00200122209" + Année + "08050806000123000456001100000005011x510850007\00342";
    Vue.NoterOctets(Ombrey::Octets(Trame.substr(0, 20)));
    Vue.NoterOctets(Ombrey::Octets(Trame.substr(20, Taille - 20)));
  }
  [[nodiscard]] std::string Résumé() const {
    std::string Tout;
    Rangées Toutes = Vue.Refusés();
    Toutes.erase(Toutes.begin());
    for (const auto& Une : Toutes) Tout += Une[0] + " " + Une[2] + " " + Une[4] + "|";
    return Tout;
  }
  const DossierEssai Dossier;
  Aperçu Vue;
};

TEST_F(Aperçus, ARefusedLoadIsOneRowWithItsFieldsAndFileUntilTheQueueMovesOn) {
  Ombrey::EcrireFichier(Dossier.Chemin() / "gardé", "ligne");
  Offrir();
  for (const char* Dit : {"Code exploitation introuvable : /12", "TraiterDonnéesReçues : degré du chargement n° 12",
                          "Aucune réponse du RG80."})
    Vue.NoterLigne(Dit);
  EXPECT_EQ(Résumé(), "12 1 TraiterDonnéesReçues : degré du chargement n° 12|") << "one frame counts once";
  Offrir();
  Vue.NoterBoîte("Vérification d'exploitation", "Le serveur de la base ne répond pas");
  Vue.NoterLigne("Code exploitation introuvable : /12");
  EXPECT_EQ(Résumé(), "12 2 Le serveur de la base ne répond pas|") << Vue.Détail(0);
  Vue.NoterRefus({"La base est verrouillée.", "ligne", false});
  EXPECT_EQ(Résumé(), "12 2 La base est verrouillée.|");
  for (const char* Su : {"Récoltant : 000456", "Degré (dixièmes) : 1x5", "gardé"})
    EXPECT_NE(Vue.Détail(0).find(Su), std::string::npos) << Vue.Détail(0);
  Offrir("26", 30);
  Vue.NoterBoîte("RG80 Ombrey", "Données trop courtes");
  EXPECT_EQ(Résumé(), "En tête de file 1 Données trop courtes|12 2 La base est verrouillée.|");
  const std::string Parti = "N'est plus proposé par le RG80 depuis ";
  Vue.NoterBoîte("RG80 Ombrey", "TraiterDonnéesReçues : degré du chargement n° 13");
  EXPECT_EQ(Vue.NombreRefusés(), 1U) << "deleted at the terminal";
  EXPECT_EQ(Vue.Refusés().at(3).at(5).find(Parti), 0U);
  Vue.NoterLigne("Vérification de nouveaux chargements sur le RG80. Aucun chargement à récupérer.");
  EXPECT_EQ(Vue.NombreRefusés(), 0U) << "deleted at the terminal";
  EXPECT_EQ(Vue.Refusés().at(2).at(5).find(Parti), 0U);
  Vue.RefusésLus();
  EXPECT_EQ(Résumé() + Vue.Détail(0), "");
}

TEST_F(Aperçus, ARefusedLoadsRowGoesWhenThatVeryLoadHasComeInAndOutlivesTheStationUntilThen) {
  // What is said of the load 12 of another year, as the terminal gives it, the load that comes in, and what stays.
  const std::string Degré = "TraiterDonnéesReçues : degré du chargement n° 12";
  const std::tuple<std::string, const char*, const char*, std::string> Cas[] = {
      {Degré, "26", "12", ""},
      {Degré, "25", "12", "12 1 " + Degré + "|"},
      {Degré, "26", "13", "12 1 " + Degré + "|"},
      {"Erreur de check-sum", "26", "13", ""}};
  for (const auto& [Dit, Année, Reçu, Reste] : Cas) {
    Offrir(Année);
    Vue.NoterBoîte("RG80 Ombrey", Dit);
    Offrir();
    EXPECT_EQ(Vue.NoterReçu(Reçu), "");
    EXPECT_EQ(Résumé(), Reste);
    Aperçu Suivant;
    Suivant.Ouvrir(Dossier.Chemin(), Dossier.Chemin());
    EXPECT_EQ(Suivant.Refusés(), Vue.Refusés());
    EXPECT_EQ(Suivant.Détail(0), Vue.Détail(0));
    EXPECT_EQ(Vue.NombreRefusés(), 0U) << "the terminal gives another";
    Vue.RefusésLus();
  }
  FaitsRépétés Faits(Unicité::Sujet);
  for (std::size_t Fois = 0; Fois < FaitsRépétés::AuPlus + 2; ++Fois) Faits.Noter({}, {std::to_string(Fois), ""});
  EXPECT_EQ(Faits.Tous().size(), FaitsRépétés::AuPlus);
}

TEST_F(Aperçus, AClockAheadIsToldOnceAndWhatNobodyHasReadOutlivesTheStation) {
  const std::string Année = std::to_string(Ombrey::HeureLocale().Année % 100 + 1);
  Offrir(Année);
  EXPECT_TRUE(
      Vue.NoterReçu("12").starts_with("Le chargement n° 12 est arrivé au RG80 le 22/09/20" + Année + " à 08:05, et "));
  EXPECT_EQ(Vue.NoterReçu("12"), "") << "said once an hour";
  EXPECT_FALSE(std::filesystem::exists(Dossier.Chemin() / Aperçu::FichierRefus)) << "written for nothing at each load";
  EXPECT_EQ(Vue.NoterBoîte("RG80 Ombrey", "Erreur de check-sum"), "(chargement n° 12, tel que reçu)");
  Vue.NoterRetrait("RG80 Ombrey", "Erreur de check-sum");
  for (const char* Texte : {"un\ndeux", "trois", "un\ndeux"}) Vue.NoterRetrait("RG80 Ombrey", Texte);
  Aperçu Suivant;
  Suivant.Ouvrir(Dossier.Chemin(), Dossier.Chemin());
  EXPECT_EQ(Suivant.NonLus(), Vue.NonLus());
  EXPECT_EQ(Suivant.NonLus().at(1).at(1) + Suivant.NonLus().at(1).at(2), "un\ndeux2");
  EXPECT_EQ(Suivant.NonLus().at(3).at(1), "Erreur de check-sum (chargement n° 12, tel que reçu)");
  Suivant.ToutEstLu();
  Vue.Ouvrir(Dossier.Chemin(), Dossier.Chemin());
  EXPECT_EQ(Vue.NonLus().size(), 1U);
}

TEST(BoucleGardée, LetsNoFailureOutOfThePump) {
  Ombrey::BouclePoll Boucle;
  std::string Dits;
  BoucleGardée Gardée(Boucle, [&](const std::string& Texte) { Dits += Texte; });
  const auto Jeton = Gardée.Après(std::chrono::milliseconds(0), [] { throw Ombrey::ErreurExécution("panne"); });
  EXPECT_TRUE(Gardée.Pomper(std::chrono::seconds(5)));
  EXPECT_EQ(Dits, "panne");
}

}  // namespace Tarvel
