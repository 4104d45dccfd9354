// The reply with a load's figures.
#include "quotas/cumuls.h"

#include <gtest/gtest.h>

#include "tests/import/sample_base.h"
#include "tests/support/fake_host.h"
#include "tests/support/fake_platform.h"

namespace Ombrey::Essais {
namespace {

class EssaiCumuls : public ::testing::Test {
 protected:
  EssaiCumuls() {
    Petite.Exécuter(
        "INSERT INTO Chargement VALUES ('1',12,'5001','05'),('S''2',12,'5002','06'),('1',13,'5009','05'),"
        "('1',14,'5002','06')");
    Hôte->Base = Petite.Ouvrir();
    État.BaseDeD = Hôte;
  }
  void MettreAJour(std::string NoChargement) { Cumuls.MettreAJourCumuls(NoChargement); }

  FaussePlateforme Plateforme;
  FauxCanal Canal;
  FauxServices Services;
  PetiteBase Petite;
  std::shared_ptr<FausseBaseDeD> Hôte = std::make_shared<FausseBaseDeD>();
  ÉtatPlugIn État{Plateforme, Canal};
  RéponseCumuls Cumuls{État, Services};
};

TEST_F(EssaiCumuls, FiguresAndTheUnusableOnes) {
  struct Cas {
    std::int32_t RestantExploit, CumulGroupe, RestantGroupe;
    bool CumulLève;
    const char* Record;
  };
  const Cas Table[] = {
      {1234, 56, 7, false, "000000001234000056000007"},
      {999999, -1, 0, false, "000000000000000000000000"},        // no quota, unusable, none left
      {1234, 56, 7, true, "000000001234001234000007"},           // a figure that fails repeats the one before it
      {999999, 56, 7, true, "000000000000000000000007"},         // … as it went out
      {1000000, 999998, 7, false, "0000001000000999998000007"},  // never cut
  };
  for (const Cas& C : Table) {
    Hôte->RestantExploit = C.RestantExploit;
    Hôte->CumulGroupe = C.CumulGroupe;
    Hôte->RestantGroupe = C.RestantGroupe;
    Hôte->CumulLève = C.CumulLève;
    MettreAJour("12");
    ASSERT_FALSE(Services.Transmis.empty());
    EXPECT_EQ(Services.Transmis.back().first, 8);
    EXPECT_EQ(Services.Transmis.back().second, std::vector<Octets>{Octets(C.Record)});
    EXPECT_FALSE(État.Erreur.EstPrésente());
    EXPECT_EQ(
        Canal.Messages.back(),
        std::pair(std::string("Mise à jour des cumuls : Exploitation : 5001 - Appellation : 05 - Groupe : 007"), true));
  }
  EXPECT_EQ(Hôte->JourDemandé, 46287);  // 22 September 2026, without the time of day
}

TEST_F(EssaiCumuls, TheLastLoadStandsInAndAnUnknownOneIsPassedOver) {
  MettreAJour("");  // no load yet
  MettreAJour("99");
  MettreAJour("13");  // its holding is gone
  EXPECT_TRUE(Services.Transmis.empty());
  EXPECT_TRUE(Canal.Messages.empty());
  État.DernierNoChargement = "12";
  Hôte->Etat->Synchro->Site = "S'2";
  std::string NoChargement;
  EXPECT_THROW(Cumuls.MettreAJourCumuls(NoChargement), ErreurExécution);  // the load of this site has no group
  EXPECT_EQ(NoChargement, "12");
  Hôte->Etat->Synchro->Site = "1";
  MettreAJour("");
  EXPECT_EQ(Services.Transmis.size(), 1U);
}

TEST_F(EssaiCumuls, ANumberThatIsNoneNeverReachesTheDatabase) {
  for (const char* NoChargement : {"1x", "12 OR 1=1", "-1", " 12", "1'"}) {
    try {
      MettreAJour(NoChargement);
      ADD_FAILURE() << NoChargement;
    } catch (const ErreurExécution& Erreur) {
      EXPECT_STREQ(Erreur.what(), "Incompatibilité de type");
    }
  }
  EXPECT_TRUE(Services.Transmis.empty());
}

TEST_F(EssaiCumuls, AFailedTransmissionIsTold) {
  Services.SurTransmission = [](std::int32_t, std::vector<Octets>&) { return std::string("pas de réponse"); };
  MettreAJour("12");
  EXPECT_EQ(Canal.Erreurs, std::vector<std::string>{"Transmission du quotas vers le RG80 : pas de réponse"});
  ASSERT_EQ(Canal.Messages.size(), 4U);  // the error stands in both lists
  EXPECT_EQ(Canal.Messages[1].first, "Transmission de l'exportation vers le RG80 : pas de réponse");
  EXPECT_EQ(Canal.Messages[2].first, "CLIQUEZ SUR RG80 EN ATTENTE DES QUOTAS.");

  Services.SurTransmission = [&](std::int32_t, std::vector<Octets>&) {
    État.Abandon = true;
    return std::string("abandon");
  };
  MettreAJour("12");
  EXPECT_EQ(Canal.Erreurs.size(), 1U);
}

TEST_F(EssaiCumuls, ARaisedTransmissionStaysPending) {
  Services.SurTransmission = [](std::int32_t, std::vector<Octets>&) -> std::string { throw ErreurExécution("port"); };
  MettreAJour("12");
  EXPECT_EQ(État.Erreur.Texte(), "port");
  EXPECT_TRUE(Canal.Erreurs.empty());
}

}  // namespace
}  // namespace Ombrey::Essais
