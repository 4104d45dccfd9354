// The reply with a load's figures.
#include "quotas/reply.h"

#include "tests/transfer/small_cooperative.h"

namespace Ombrey::Essais {

struct Réponse : AvecCoopérative {
  Réponse() {
    Exécuter(
        "INSERT INTO Métayage VALUES ('5001','123','456',33,10,'007'),('5002','1','1',100,11,NULL);"
        "INSERT INTO Chargement(CodeSite, NoChargement, Métayage, Sélection) VALUES"
        " ('1',12,'5001','05'),('S''2',12,'5002','06'),('1',13,'5009','05')");
  }
  void MettreAJour(std::string NoChargement) { Cumuls.MettreAJourCumuls(NoChargement); }

  RéponseCumuls Cumuls{État, Services};
};

TEST_F(Réponse, FiguresAndTheUnusableOnes) {
  const std::pair<std::array<std::optional<std::int32_t>, 3>, const char*> Table[] = {
      {{1234, 56, 7}, "000000001234000056000007"},
      {{999999, -1, 0}, "000000000000000000000000"},            // no quota, unusable, none left
      {{1234, std::nullopt, 7}, "000000001234001234000007"},    // a figure that fails repeats the one before it
      {{999999, std::nullopt, 7}, "000000000000000000000007"},  // … as it went out
      {{1000000, 999998, 7}, "0000001000000999998000007"}};     // never cut
  for (const auto& [Chiffres, Record] : Table) {
    Hôte->Chiffres = Chiffres;
    MettreAJour("12");
    EXPECT_EQ(Services.Transmis.back(), std::pair(8, std::vector{Octets(Record)}));
    EXPECT_FALSE(État.Erreur.EstPrésente());
  }
  EXPECT_EQ(Hôte->JourDemandé, 46287);  // 22 September 2026, without the time of day
  EXPECT_EQ(Canal.Messages[0].first, "Mise à jour des cumuls : Exploitation : 5001 - Appellation : 05 - Groupe : 007");
}

TEST_F(Réponse, TheLastLoadStandsInAndAnUnknownOneIsPassedOver) {
  for (const char* Inconnu : {"", "99", "13"}) MettreAJour(Inconnu);  // no load yet, none, its holding is gone
  EXPECT_TRUE(Canal.Messages.empty());
  État.DernierNoChargement = "12";
  Hôte->Site = "S'2";
  EXPECT_THROW(MettreAJour(""), ErreurExécution);  // the load of this site has no group
  for (const char* Faux : {"1x", "12 OR 1=1", "-1", " 12", "1'"}) EXPECT_THROW(MettreAJour(Faux), ErreurExécution);
  EXPECT_TRUE(Services.Transmis.empty());
  Hôte->Site = "1";
  MettreAJour("");
  EXPECT_EQ(Services.Transmis.size(), 1U);
}

TEST_F(Réponse, AFailedTransmissionIsToldUnlessThePlugInEnds) {
  for (const bool Fin : {false, true}) {
    Services.SurTransmission = [&](auto, auto&) {
      État.Abandon = Fin;
      return "pas de réponse";
    };
    MettreAJour("12");
    EXPECT_EQ(Canal.Erreurs, Mots{"Transmission du quotas vers le RG80 : pas de réponse"});
  }
  EXPECT_EQ(Canal.Messages[1].first, "Transmission de l'exportation vers le RG80 : pas de réponse");
  EXPECT_EQ(Canal.Messages[2].first, "CLIQUEZ SUR RG80 EN ATTENTE DES QUOTAS.");
  Services.SurTransmission = [](auto, auto&) -> std::string { throw ErreurExécution("port"); };
  MettreAJour("12");
  EXPECT_EQ(État.Erreur.Texte(), "port");
}

}  // namespace Ombrey::Essais
