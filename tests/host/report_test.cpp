// The loads for spreadsheets and for paper, on each engine.
#include "base/regional_forms.h"
#include "host/day_slip.h"
#include "host/load_report.h"
#include "host/station_register.h"
#include "platform/database/recordsets.h"
#include "platform/system/folder_lock.h"
#include "platform/system/machine_system.h"
#include "tests/host/cooperative_fixture.h"

namespace Tarvel {

struct Rapport : SurChaqueMoteur {
  /// Three loads of 22 September and, under a number taken over, one of the day before.
  void SetUp() override {
    SurChaqueMoteur::SetUp();
    if (IsSkipped()) return;
    EXPECT_EQ(Importer(Ligne("12", "21/09/26 23:59")), "");
    EXPECT_EQ(Importer(Ligne("12") + Ligne("13", "22/09/26 00:00", "15", "20") + Ligne("14", "22/09/26 18:05", "6")),
              "");
    Connexion_->ExécuterTout(
        "UPDATE Chargement SET Cépage = '=1+1', Cuve = 'a \"b\"; c' WHERE NoChargement = 13;"
        "UPDATE Coopérateur SET Nom = '@Maurin' WHERE IdCoopérateur = '456'");
  }
  [[nodiscard]] std::string Csv(const std::string& Du, const std::string& Au) {
    Ombrey::BaseLue Base(Connexion_);
    return TexteCsv(LireChargements(Base, {LireJour(Du), LireJour(Au)}));
  }
};

TEST_P(Rapport, OpensInAFrenchSpreadsheetAndHoldsNoFormula) {
  const std::string Entête = Csv("01/01/2020", "2020-01-02");
  EXPECT_TRUE(Entête.starts_with("\xEF\xBB\xBFSite;N° de chargement;Arrivée;")) << Entête;
  // clang-format off
  const std::string Douze = ";4;123;Delmas François;456;'@Maurin Solène;7;Garrigue;05;Côteaux rouges;Syrah;01;Saine;12,5;2;1234;7;";
  const std::string Veille = "1;12;21/09/2026 23:59;22/09/2026 09:15" + Douze + "oui\r\n";
  const std::string Jour =
      "1;13;22/09/2026 00:00;22/09/2026 09:15;15;456;'@Maurin Solène;456;'@Maurin Solène;7;Garrigue;20;Côteaux blancs;'=1+1;01;Saine;12,5;2;1234;\"a \"\"b\"\"; c\";\r\n"
      "1;12;22/09/2026 08:30;22/09/2026 09:15" + Douze + "\r\n"
      "1;14;22/09/2026 18:05;22/09/2026 09:15;6;210;Estève Anaïs;305;Fabrègues Jérôme;2;Plaine;05;Côteaux rouges;Syrah;01;Saine;12,5;2;1234;7;\r\n";
  // clang-format on
  EXPECT_EQ(Csv("", ""), Entête + Veille + Jour);
  EXPECT_EQ(Csv("21/09/2026", "2026-09-21"), Entête + Veille);
  EXPECT_EQ(Csv("22/09/2026", ""), Entête + Jour);
}

TEST_P(Rapport, ATicketAndTheStationsTellTheLatestLoad) {
  Ombrey::BaseLue Base(Connexion_);
  const int Jour = LireJour("22/09/2026").value();
  EXPECT_NE(TextePapier(Base, Jour, {"13"}).find("Chargement n° 13"), std::string::npos);
  EXPECT_THROW(static_cast<void>(TextePapier(Base, Jour - 1, {"13"})), Ombrey::ErreurExécution);
  for (const char* Site : {"2", "1", "1"}) RegistreStations(Connexion_, Site).Signaler();
  Rangées Stations = TableauStations(Base, {});
  for (auto& Une : Stations) Une[3] = Une[3].substr(0, 10);
  const std::string Ici = Ombrey::NomMachine(), Jourdhui = TexteJour(Ombrey::NuméroDeJour(Ombrey::HeureLocale()));
  Stations.erase(Stations.begin());
  EXPECT_EQ(Stations, (Rangées{{"1", Ici, "n° 14, 22/09/2026 18:05", Jourdhui}, {"2", Ici, "", Jourdhui}}));
  // Another one of the same number and minute.
  EXPECT_EQ(Importer(Ligne("13", "22/09/26 00:00", "15", "20", "1300")), "");
  for (const auto& [Heure, Masse, Y] :
       {std::tuple("", "1234", false), {"", "1300", true}, {"00:00", "1234", true}, {"00:00", "1300", true}})
    EXPECT_EQ(TextePapier(Base, Jour, {"13", "1", Heure}).find(std::string(Masse) + " kg") != std::string::npos, Y)
        << Heure << Masse;
}
SUR_CHAQUE_MOTEUR(Rapport);

TEST(Export, ReplacesAFormerOneAndNothingElse) {
  const Ombrey::Essais::DossierEssai Dossier;
  std::ofstream(Dossier.Chemin() / "cave.db") << "une base";
  const auto Fichier = Dossier.Chemin() / "export.csv";
  for (int Fois = 0; Fois < 2; ++Fois)
    EXPECT_EQ(ExporterCsv({}, Fichier), "0 chargement exporté dans " + Fichier.string());
  EXPECT_THROW(ExporterCsv({}, Dossier.Chemin() / "cave.db"), Ombrey::ErreurExécution);
  EXPECT_THROW(ExporterCsv({}, Dossier.Chemin() / "absent/export.csv"), Ombrey::ErreurExécution);
  for (const char* Texte : {"32/01/2026", "2026-02-30", "1/2/26", "22/09/2026 08:30", "", "hier"})
    EXPECT_EQ(LireJour(Texte), std::nullopt) << Texte;
}

}  // namespace Tarvel
