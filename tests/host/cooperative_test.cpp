// The tables, the queries of the plug-in on the sample, creations and figures.
#include "platform/database/dialect.h"
#include "tests/host/cooperative_fixture.h"

namespace Tarvel {
namespace {

using Base = Coopérative;

TEST_F(Base, LooksUpByIndexSoThatGrowthCostsNothing) {
  const auto Plan = [&](const std::string& Sql) {
    std::string Texte;
    auto Étapes = Connexion_->Préparer("EXPLAIN QUERY PLAN " + Ombrey::TraduireEnSqlite(Sql));
    while (Étapes.Avancer()) Texte += std::get<std::string>(Étapes.Valeur(3)) + "\n";
    return Texte;
  };
  // The year's loads grow, and so do the members; the list of the day's loads is the first.
  for (const char* Sql : {"SELECT * FROM Chargement WHERE DateCh > Date() ORDER BY DateCh DESC",
                          "SELECT * FROM Coopérateur WHERE Clng(IdCoopérateur) = '123'",
                          "SELECT * FROM Métayage WHERE Clng(Propriétaire) = '210' AND Clng(Récoltant) = '305'",
                          "SELECT * FROM Chargement INNER JOIN Métayage ON Chargement.Métayage = Métayage.IdMétayage "
                          "WHERE NoChargement = 12 AND CodeSite = '1'"})
    EXPECT_EQ(Plan(Sql).find("SCAN"), std::string::npos) << Sql << "\n" << Plan(Sql);
}

TEST_F(Base, CreatesMembersAndHoldingsThatTheQueriesFind) {
  const auto Membre = [&](const char* Code) {
    Ombrey::NouveauCoopérateur Nouveau{Code, "900-Crée par le RG80", "22/09/2026 08:30:00"};
    return Base_->TexteErreurBase(Base_->AjouterCoopérateur(Nouveau));
  };
  EXPECT_EQ(Membre("900"), "");
  EXPECT_EQ(Membre("000900"), "ce code existe déjà");
  for (const char* Code : {"12A", "", "-1", "1000000", "1e9", "';--"})
    EXPECT_EQ(Membre(Code), "le code n'est pas un nombre de six chiffres au plus") << Code;
  EXPECT_EQ(Lire("SELECT Nom || Prénom || DateCréation FROM Coopérateur WHERE IdCoopérateur = '900'"),
            "900-Crée par le RG8046287.3541666667");

  const auto Exploitation = [&](const char* Propriétaire, const char* Récoltant, const char* Part, const char* Groupe) {
    std::string Code = "0";
    const std::int16_t Résultat = Base_->AjouterMétayage(Propriétaire, Récoltant, Code, Part, Groupe, "");
    return Code + Base_->TexteErreurBase(Résultat);
  };
  EXPECT_EQ(Exploitation("000900", "123", "033.5000", "7"), "16");
  EXPECT_EQ(
      Lire("SELECT Propriétaire || '/' || Récoltant || '/' || Part || '/' || IdGrp || ifnull(CodeBadge, ' sans') FROM "
           "Métayage WHERE IdMétayage = '16'"),
      "900/123/33.5/7 sans");
  Connexion_->Exécuter("INSERT INTO Groupement (IdGrp) VALUES ('008')");
  int Code = 17;
  for (const auto& [Groupe, Ecrit] :
       {std::pair{"8", "008"}, {"042", "42"}, {"999", "999"}, {"1000", ""}, {"", ""}, {"0", "0"}}) {
    EXPECT_EQ(Exploitation("900", "900", "100.0000", Groupe), std::to_string(Code));
    EXPECT_EQ(Lire("SELECT IdGrp FROM Métayage WHERE IdMétayage = '" + std::to_string(Code++) + "'"), Ecrit) << Groupe;
  }
  EXPECT_EQ(Exploitation("900", "901", "100", "7"), "0le propriétaire ou le récoltant est inconnu");
  EXPECT_EQ(Exploitation("900", "123", "ABC.DEFG", "7"), "0la part n'est pas un nombre entre 0 et 999,9999");
  Connexion_->Exécuter("UPDATE Métayage SET IdMétayage = '999999' WHERE IdMétayage = '17'");
  EXPECT_EQ(Exploitation("900", "123", "100", "7"), "0il n'y a plus de code d'exploitation libre");
}

TEST_F(Base, WorksOutTheFiguresOfTheSeasonAndTheDay) {
  std::string Vide;
  std::string Rouge = "05";
  const auto Exploit = [&](std::string Métayage, std::string Sélection) {
    return Base_->CalculerRestantExploit(Métayage, Vide, Sélection, Vide, {}, {});
  };
  const auto CumulGroupe = [&](const char* Groupe) { return Base_->CalculerCumulGroupe(Groupe, "", "", "05"); };
  const auto RestantGroupe = [&](std::string Groupe, std::string Sélection) {
    const double Aujourdhui = Ombrey::NuméroDeJour({2026, 9, 22, 0, 0, 0});
    return Base_->CalculerRestantGroupe(Groupe, Vide, Sélection, Vide, Aujourdhui, {});
  };
  EXPECT_EQ(CumulGroupe("7"), 0);
  EXPECT_EQ(Exploit("4", "05"), 60'000);  // 8 ha × 7500 kg × 100 %

  ASSERT_EQ(Importer(Ligne("1", "22/09/26 08:30", "4", "05", "1000") + Ligne("2", "21/09/26 08:30", "5", "05", "500") +
                     Ligne("3", "22/09/26 09:00", "4", "10", "70") + Ligne("4", "31/12/25 23:59", "4", "05", "9000") +
                     Ligne("5", "22/09/26 10:00", "1", "05", "800")),
            "");
  ASSERT_EQ(Importer(Ligne("1", "22/09/26 11:00", "5", "05", "30")), "");  // its former bearer is archived, and counts
  EXPECT_EQ(CumulGroupe("7"), 1530);
  EXPECT_EQ(CumulGroupe("007"), 1530);
  EXPECT_EQ(CumulGroupe(""), 0);
  EXPECT_EQ(Exploit("4", "05"), 59'000);
  EXPECT_EQ(RestantGroupe("7", "05"), 23'970);
  EXPECT_EQ(RestantGroupe("7", "10"), 12'430);  // 12500.5 less 70, a half to the even number

  for (const auto& [Métayage, Sélection] : {std::pair{"4", "60"}, {"15", "05"}, {"4", "99"}, {"0", "05"}})
    EXPECT_EQ(Exploit(Métayage, Sélection), SansQuota) << Métayage << "/" << Sélection;
  for (const auto& [Groupe, Sélection] : {std::pair{"5", "20"}, {"3", "05"}, {"", "05"}, {"1", "' OR 1=1"}})
    EXPECT_EQ(RestantGroupe(Groupe, Sélection), SansQuota) << Groupe << "/" << Sélection;
  Connexion_->Exécuter("UPDATE Chargement SET Masse = 1e12");
  EXPECT_EQ(CumulGroupe("7"), INT32_MAX);
  EXPECT_EQ(Exploit("4", "05"), 59'000);
  EXPECT_EQ(RestantGroupe("7", "05"), INT32_MIN);
}

struct Nouvelles : Ombrey::IÉcouteurKVSynchro {
  void KVSynchro_DonnéesImportées(const std::string& Site) override { Sites += Site + " "; }
  std::string Sites;
};

TEST_F(Base, KnowsItsSiteItsVarietiesAndTheOtherSitesLoads) {
  for (const auto& [Changement, Site] :
       {std::pair{"UPDATE Paramètre SET Valeur = 'Œ Ω'", "Œ ?"}, {"DELETE FROM Paramètre", "1"}}) {
    Connexion_->Exécuter(Changement);
    EXPECT_EQ(Base_->KVSynchro()->CodeSiteCourant(), Site);
  }
  std::string Rouge = "05";
  std::string Inconnue = "'";
  EXPECT_EQ(Base_->ListeCépages({}, Rouge, true), "Syrah");
  EXPECT_EQ(Base_->ListeCépages({}, Rouge, false), "Syrah\rGrenache noir\rMourvèdre");
  EXPECT_EQ(Base_->ListeCépages("M", Rouge, true), "Mourvèdre");
  EXPECT_EQ(Base_->ListeCépages({}, Inconnue, true), "");

  // What stands there at the start is no news, even if nobody activates the base.
  ASSERT_EQ(Importer("3" + Ligne().substr(1)), "");
  Rouvrir();
  Nouvelles Écouteur;
  Base_->KVSynchro()->Connecter(&Écouteur);
  ASSERT_EQ(Importer(Ligne()), "");
  Base_->Actualiser();
  EXPECT_EQ(Écouteur.Sites, "");
  ASSERT_EQ(Importer("3" + Ligne("8").substr(1)), "");
  bool Drapeau = false;
  Base_->ActiverBase(Drapeau);
  ASSERT_EQ(Importer("2" + Ligne("9").substr(1)), "");
  Base_->Actualiser();
  Base_->Actualiser();
  EXPECT_EQ(Écouteur.Sites, "2 ");
}

}  // namespace
}  // namespace Tarvel
