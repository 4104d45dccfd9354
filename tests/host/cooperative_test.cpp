// The tables, the queries of the plug-in on the sample, creations and figures.

#include "contracts/line_protocol.h"
#include "tests/host/cooperative_fixture.h"

namespace Tarvel {

using SurFichier = Coopérative;
using Base = SurChaqueMoteur;
SUR_CHAQUE_MOTEUR(Base);

TEST_P(Base, CreatesMembersThatTheQueriesFind) {
  for (const std::string Code : {"900", "12A", "", "-1", "1000000", "1e9", "';--"}) {
    Ombrey::NouveauCoopérateur Nouveau{Code, "900-Crée par le RG80", "22/09/2026 08:30:00"};
    EXPECT_EQ(Base_->TexteErreurBase(Base_->AjouterCoopérateur(Nouveau)),
              Code == "900" ? "" : "le code n'est pas un nombre de six chiffres au plus")
        << Code;
  }
  EXPECT_EQ(Lire("SELECT Nom || Prénom, round(DateCréation * 1440) FROM Coopérateur"
                 " WHERE CAST(IdCoopérateur AS INTEGER) = 900"),
            "900-Crée par le RG80 66653790");
}

TEST_P(Base, CreatesHoldingsUnderCodesThatAreFree) {
  // SQL ahead of it; owner, harvester, share and group; the code and the row behind it, or the refusal.
  // clang-format off
  const std::array<const char*, 6> Tous[] = {
      {"", "000101", "123", "033.5000", "7", "16: 101 123 33,5 7 "},
      {"", "101", "0123", "100.0000", "8", "16: 101 123 33,5 7 "},  // another station met the pair
      {"INSERT INTO Groupement (IdGrp) VALUES ('008')", "101", "210", "100", "8", "17: 101 210 100 008 "},
      {"", "101", "305", "100", "042", "18: 101 305 100 42 "},
      {"", "101", "318", "100", "1000", "19: 101 318 100  "},
      {"", "101", "402", "100", "", "20: 101 402 100  "},
      {"DELETE FROM Métayage WHERE IdMétayage = '20'; INSERT INTO Chargement (CodeSite, NoChargement, DateCh, Métayage)"
       " VALUES ('1', 2, 46287, '20')", "101", "402", "100", "", "21: 101 402 100  "},
      {"", "101", "999", "100", "7", "0le propriétaire ou le récoltant est inconnu"},
      {"", "101", "456", "ABC.DEFG", "7", "0la part n'est pas un nombre entre 0 et 999,9999"},
      // The highest code is taken: the first that is free, and that no load of a deleted holding bears.
      {"UPDATE Métayage SET IdMétayage = '999999' WHERE IdMétayage = '17'", "101", "456", "100", "0", "17: 101 456 100 0 "},
      {"DELETE FROM Métayage WHERE IdMétayage IN ('2', '3'); INSERT INTO Chargement (CodeSite, NoChargement, DateCh, Métayage)"
       " VALUES ('1', 1, 46287, '2')", "101", "511", "100", "", "3: 101 511 100  "},
  };
  // clang-format on
  for (const auto& [Avant, Propriétaire, Récoltant, Part, Groupe, Attendu] : Tous) {
    Connexion_->ExécuterTout(Avant);
    std::string Code = "0";
    const std::string Refus =
        Base_->TexteErreurBase(Base_->AjouterMétayage(Propriétaire, Récoltant, Code, Part, Groupe, ""));
    const std::string Rangée =
        Lire("SELECT ': ' || Propriétaire, Récoltant, Part, IdGrp, CodeBadge FROM Métayage WHERE IdMétayage = '" +
             Code + "'");
    EXPECT_EQ(Code + Refus + Rangée, Attendu);
  }
}

TEST_P(Base, MakesAPairOnceThatSeveralStationsMeetAtTheSameMoment) {
  constexpr int Paires = 20, Stations = 4;
  std::vector<std::vector<std::string>> Codes(Stations);
  std::vector<std::thread> Fils;
  for (auto& Siens : Codes)
    Fils.emplace_back([&Siens, this] {
      Ombrey::Essais::FauxSystème Système;
      BaseDeDTarvel Station(OuvrirMoteur(Adresse_), Système);
      for (int Paire = 0; Paire < Paires; ++Paire) {
        Ombrey::NouveauCoopérateur Nouveau{std::to_string(900 + Paire), "", ""};
        const auto Membre = Station.AjouterCoopérateur(Nouveau);
        const auto Exploitation =
            Station.AjouterMétayage(Nouveau.IdCoopérateur, "101", Siens.emplace_back(), "100", "7", "");
        if (Membre != 0 || Exploitation != 0) Siens.back() = Station.TexteErreurBase(Membre ? Membre : Exploitation);
      }
    });
  for (std::thread& Fil : Fils) Fil.join();
  for (const auto& Siens : Codes) EXPECT_EQ(Siens, Codes[0]);
  EXPECT_EQ(Lire("SELECT count(*) || '/' || min(IdMétayage) || '/' || max(IdMétayage) FROM Métayage"
                 " WHERE CAST(Propriétaire AS INTEGER) >= 900"),
            "20/16/35");
}

TEST_F(SurFichier, ReadsNumbersAsPeopleWriteThem) {
  const std::array<const char*, 3> Tous[] = {
      {"UPDATE Métayage SET Surface = '8,5'", "1234 62516", ""},
      {"UPDATE Métayage SET Surface = ' 8.5 '", "1234 62516", ""},
      {"UPDATE Sélection SET QuotasSurface = '7 500,5'", "1234 58770", ""},
      {"UPDATE Sélection SET QuotasSurface = '7\u202F500.5'", "1234 58770", ""},
      {"UPDATE Métayage SET Part = '50,0000'", "1234 28766", ""},
      {"UPDATE Chargement SET Masse = '1 234,5'", "1234 58766", ""},  // a half to the even number
      {"UPDATE Chargement SET Masse = '1\u00A0234\u202F567.0 '", "1234567 -1174567", ""},
      {"UPDATE Chargement SET Masse = ' '", "0 60000", ""},
      {"UPDATE Chargement SET Masse = '12 t'", "0 60000",
       "Masse du chargement n° 12 du site 1 : « 12 t » n'est pas un nombre ; il compte pour 0 kg.\n"},
      {"UPDATE Chargement SET Masse = '1234,75'", "1235 58765", ""},
      {"UPDATE Métayage SET Surface = ''", "1234 999999", ""},
      {"UPDATE Métayage SET Surface = '8 ha'", "1234 999999",
       "Surface de l'exploitation : « 8 ha » n'est pas un nombre ; il n'y a donc pas de quota.\n"},
  };
  for (const auto& [Sql, Cumuls, Dit] : Tous) {
    SCOPED_TRACE(Sql);
    Refaire();
    Avis_.clear();
    ASSERT_EQ(Importer(Ligne()), "");
    Connexion_->Exécuter(Sql);
    EXPECT_EQ(CumulsDuRouge(), Cumuls);
    EXPECT_EQ(Avis_, Dit);
  }
  Connexion_->Exécuter("UPDATE QuotasGrp SET QuotaJournalier = '18 000,5'");
  std::string Groupe = "7", Vide, Rouge = "05";
  EXPECT_EQ(Base_->CalculerRestantGroupe(Groupe, Vide, Rouge, Vide, {}, {}), 16'766);
}

TEST_P(Base, WorksOutTheFiguresOfTheSeasonAndTheDay) {
  std::string Vide, Saine = "01";
  const auto Exploit = [&](std::string Métayage, std::string Sélection) {
    return Base_->CalculerRestantExploit(Métayage, Vide, Sélection, Saine, {}, {});
  };
  const auto CumulGroupe = [&](const char* Groupe) { return Base_->CalculerCumulGroupe(Groupe, "", "", "05"); };
  const auto RestantGroupe = [&](std::string Groupe, std::string Sélection) {
    const double Aujourdhui = Ombrey::NuméroDeJour({2026, 9, 22, 0, 0, 0});
    return Base_->CalculerRestantGroupe(Groupe, Vide, Sélection, Vide, Aujourdhui, {});
  };
  ASSERT_EQ(Importer(Ligne("1", "22/09/26 08:30", "4", "05", "1000") + Ligne("2", "21/09/26 08:30", "5", "05", "500") +
                     Ligne("3", "22/09/26 09:00", "4", "10", "70") + Ligne("4", "31/12/25 23:59", "4", "05", "9000") +
                     Ligne("5", "22/09/26 10:00", "1", "05", "800") + Ligne("6", "31/12/26 23:59", "4", "05", "2000")),
            "");
  ASSERT_EQ(Importer(Ligne("1", "22/09/26 11:00", "5", "05", "30")), "");  // its former bearer is archived, and counts
  EXPECT_EQ(CumulGroupe("7"), 3530);
  EXPECT_EQ(CumulGroupe("007"), 3530);
  EXPECT_EQ(CumulGroupe(""), 0);
  EXPECT_EQ(Exploit("4", "05"), 57'000);  // 8 ha × 7500 kg × 100 %, less 3000
  EXPECT_EQ(RestantGroupe("07", "05"), 23'970);
  EXPECT_EQ(RestantGroupe("7", "10"), 12'430);  // 12500.5 less 70, a half to the even number

  for (const auto& [Métayage, Sélection] : {std::pair{"4", "60"}, {"15", "05"}, {"4", "99"}, {"0", "05"}})
    EXPECT_EQ(Exploit(Métayage, Sélection), Ombrey::SansQuota) << Métayage << "/" << Sélection;
  for (const auto& [Groupe, Sélection] : {std::pair{"5", "20"}, {"3", "05"}, {"", "05"}, {"1", "' OR 1=1"}})
    EXPECT_EQ(RestantGroupe(Groupe, Sélection), Ombrey::SansQuota) << Groupe << "/" << Sélection;
  Connexion_->Exécuter("UPDATE Chargement SET Masse = 1e12");
  EXPECT_EQ(CumulGroupe("7"), INT32_MAX);
  EXPECT_EQ(Exploit("4", "05"), INT32_MIN);
  EXPECT_EQ(RestantGroupe("7", "05"), INT32_MIN);
}

struct Nouvelles : Ombrey::IÉcouteurKVSynchro {
  void KVSynchro_DonnéesImportées(const std::string& Site) override { Sites += Site + " "; }
  std::string Sites;
};

TEST_P(Base, KnowsItsSiteItsVarietiesAndTheOtherSitesLoads) {
  for (const auto& [Changement, Site, Ancien] :
       {std::array{"UPDATE Paramètre SET Valeur = 'Œ Ω'", "Œ ?", "1"}, {"DELETE FROM Paramètre", "1", "Œ ?"}}) {
    Connexion_->Exécuter(Changement);
    for (int Fois = 0; Fois < 2; ++Fois) Base_->Actualiser();
    EXPECT_EQ(Base_->KVSynchro()->CodeSiteCourant(), Ancien) << "another station may have the new one";
    EXPECT_EQ(std::exchange(Avis_, ""), "Le code du site est réglé sur « " + std::string(Site) +
                                            " » dans la base : cette station travaille sous « " + Ancien +
                                            " » jusqu'à son prochain démarrage.\n");
    Rouvrir();
    EXPECT_EQ(Base_->KVSynchro()->CodeSiteCourant(), Site);
  }
  std::string Rouge = "05", Inconnue = "'";
  EXPECT_EQ(Base_->ListeCépages({}, Rouge, false), "Syrah\rGrenache noir\rMourvèdre");
  EXPECT_EQ(Base_->ListeCépages("M", Rouge, true), "Mourvèdre");
  EXPECT_EQ(Base_->ListeCépages({}, Inconnue, true), "");

  // What stands there at the start is no news, even if nobody activates the base.
  ASSERT_EQ(Importer("3" + Ligne().substr(1)), "");
  Rouvrir();
  Nouvelles Parti, Écouteur;
  for (Nouvelles* Un : {&Parti, &Écouteur}) Base_->KVSynchro()->Connecter(Un);
  Base_->KVSynchro()->Déconnecter(&Parti);
  ASSERT_EQ(Importer(Ligne()), "");
  Base_->Actualiser();
  EXPECT_EQ(Écouteur.Sites, "");
  ASSERT_EQ(Importer("3" + Ligne("8").substr(1)), "");
  bool Drapeau = false;
  Base_->ActiverBase(Drapeau);
  ASSERT_EQ(Importer("2" + Ligne("9").substr(1)), "");
  Base_->Actualiser();
  Base_->Actualiser();
  Base_->KVSynchro()->Déconnecter(&Écouteur);
  Base_->EtatBdD()->Déconnecter(this);
  ASSERT_EQ(Importer("2" + Ligne("10").substr(1)), "");
  Base_->Actualiser();
  EXPECT_EQ(Écouteur.Sites + Annonces_, "2 ");
}

}  // namespace Tarvel
