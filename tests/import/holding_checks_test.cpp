// From the codes of a load to a holding.
#include "import/holding_checks.h"

#include "tests/import/import_fixture.h"

namespace Ombrey::Essais {
namespace {

class EssaiExploitation : public EssaiImport {
 protected:
  std::string Vérifier(std::string Propriétaire, std::string Récoltant, std::string Part, std::string Groupe) {
    return Exploitations.VérifierExploitation(Propriétaire, Récoltant, Part, Groupe);
  }
};

TEST_F(EssaiExploitation, TheRowIsChosenByShareThenByGroup) {
  Petite.Exécuter(
      "INSERT INTO Métayage VALUES"
      " ('6001','000200','201',33.3333,11,'8'),('6002','200','201',66.5,12,'7'),('6003','200','201',33,13,NULL),"
      " ('6004','200','201',50,14,'009'),('6010','201','201',100,15,NULL),('6020','200','202',12,16,NULL);"
      "INSERT INTO Coopérateur VALUES ('200','A',''),('0201','B',''),('202','C','')");
  struct Cas {
    const char *Propriétaire, *Récoltant, *Part, *Groupe, *Code;
  };
  const Cas Table[] = {
      {"000200", "000201", "033.0000", "007", "6001"},  // whole numbers count, the first of two wins
      {"000200", "000201", "066.0000", "008", "6002"},  // 66,5 rounds to the even neighbour
      {"000200", "000201", "067.0000", "009", "6004"},  // so this share fits none, and the group decides
      {"000200", "000201", "012.0000", "999", "6001"},  // neither: the first row
      {"000200", "000201", "x12.0000", "007", "6001"},  // an unreadable share fits every row
      {"000200", "000202", "099.0000", "007", "6020"},  // the pair's only holding
      {"000000", "000201", "099.0000", "007", "6010"},  // no owner: the harvester with himself
  };
  for (const Cas& C : Table) EXPECT_EQ(Vérifier(C.Propriétaire, C.Récoltant, C.Part, C.Groupe), C.Code) << C.Part;
  EXPECT_TRUE(Canal.Messages.empty());
  EXPECT_TRUE(Plateforme.LesFenêtres.Boîtes.empty());
  EXPECT_TRUE(Hôte->Coopérateurs.empty());
}

TEST_F(EssaiExploitation, UnknownCodesAreCreatedAndListed) {
  EXPECT_EQ(Vérifier("000900", "000901", "050.5000", "007"), "77");
  ASSERT_EQ(Hôte->Coopérateurs.size(), 2U);
  EXPECT_EQ(Hôte->Coopérateurs[0].IdCoopérateur, "900");
  EXPECT_EQ(Hôte->Coopérateurs[0].Nom, "900-Crée par le RG80");
  EXPECT_EQ(Hôte->Coopérateurs[0].Horodatage, "22/09/2026 08:30:00");
  EXPECT_EQ(Hôte->Métayages, (std::vector<std::vector<std::string>>{{"900", "000901", "0", "050.5000", "7", ""}}));
  EXPECT_EQ(Canal.Erreurs,
            (std::vector<std::string>{"Création d'un coopérateur inconnu : 000900",
                                      "Création d'un coopérateur inconnu : 000901",
                                      "Création d'une exploitation inconnue : Code = 77, Proprio:000900, "
                                      "Exploit:000901, Part:050.5000, Groupe:007"}));
  EXPECT_TRUE(Plateforme.LesFenêtres.Boîtes.empty());
}

TEST_F(EssaiExploitation, AFailedCreationGivesZero) {
  Hôte->RésultatAjout = -3;
  EXPECT_EQ(Vérifier("000123", "000901", "050.0000", "007"), "0");
  EXPECT_EQ(TextesDesBoîtes(),
            std::vector<std::string>{"RG80 Ombrey | Ajout d'un coopérateur inconnu : 901\rerreur -3"});
  EXPECT_EQ(Canal.Erreurs.back(),
            "Création d'une exploitation inconnue : Code = 0, Proprio:00123, Exploit:000901, Part:050.0000, "
            "Groupe:007, erreur -3");
}

TEST_F(EssaiExploitation, NothingIsCreatedOnceThePlugInEnds) {
  Hôte->RésultatAjout = -3;
  Plateforme.LesFenêtres.PendantBoîte = [&](const BoîteMontrée&) { État.Abandon = true; };
  EXPECT_EQ(Vérifier("000900", "000901", "050.0000", "007"), "");
  EXPECT_EQ(Hôte->Coopérateurs.size(), 1U);
  EXPECT_TRUE(Hôte->Métayages.empty());
}

TEST_F(EssaiExploitation, FailuresAreShownAndGiveNoHolding) {
  struct Cas {
    const char *Préparation, *Propriétaire, *Groupe, *Description;
  };
  const Cas Table[] = {
      {"", "1e50  ", "007", "Dépassement de capacité"},
      {"", "000456", "a'b", "Incompatibilité de type"},  // a group that must be created under a number
      {"INSERT INTO Métayage VALUES ('6030','123','456',NULL,11,'8'),('6031','123','456',1,11,'8')", "000123", "007",
       "Utilisation incorrecte de Null"},
  };
  Petite.Exécuter("UPDATE Métayage SET Part = 1");
  for (const Cas& C : Table) {
    Plateforme.LesFenêtres.Boîtes.clear();
    Petite.Exécuter(C.Préparation);
    EXPECT_EQ(Vérifier(C.Propriétaire, "000456", "100.0000", C.Groupe), "");
    EXPECT_EQ(TextesDesBoîtes(),
              std::vector<std::string>{std::string("Vérification d'exploitation | ") + C.Description});
  }
  Plateforme.LesFenêtres.Boîtes.clear();
  EXPECT_EQ(Vérifier("' OR 1", "000456", "100.0000", "007"), "");
  EXPECT_TRUE(Plateforme.LesFenêtres.Boîtes.empty());
}

}  // namespace
}  // namespace Ombrey::Essais
