// The encoders and the five files, byte by byte against records worked out by hand.
#include "transfer/data_sets.h"

#include <gtest/gtest.h>

#include "tests/support/fake_host.h"
#include "tests/support/fake_platform.h"
#include "tests/transfer/small_cooperative.h"

namespace Ombrey::Essais {
namespace {

TEST(RecordEncoders, Numbers) {
  struct Cas {
    const char* Texte;
    const char* Attendu;
    std::uint8_t Longueur;
    char Séparateur = ',';
  };
  const Cas Table[] = {
      {"12", "000012", 6},
      {"000345", "000345", 6},
      {" 7 ", "07", 2},
      {"", "000", 3},
      {"abc", "000", 3},
      {"2,5", "0002", 4},
      {"3,5", "0004", 4},
      {"2.5", "0000", 4},
      {"3.5", "0004", 4, '.'},
      {"1234567", "1234567", 6},
      {"-5", "-005", 3},
      {"-0,2", "000", 3},
      {"1e3", "01000", 5},
      {"1,5,2", "00", 2},
      {"2147483647", "2147483647", 8},
  };
  for (const auto& [Texte, Attendu, Longueur, Séparateur] : Table)
    EXPECT_EQ(CadrerNombre(Texte, Longueur, Régional{Séparateur}), Octets(Attendu)) << Texte;
  EXPECT_THROW((void)CadrerNombre("2147483647,6", 8, {}), ErreurExécution);
}

TEST(RecordEncoders, TextsAndShares) {
  EXPECT_EQ(CadrerTexte("Élevé ", 8), Octets("\xC9lev\xE9   "));
  EXPECT_EQ(CadrerTexte("Muscat à petits grains", 8), Octets("Muscat \xE0"));
  EXPECT_EQ(CadrerTexte("ж", 2), Octets("? "));
  const std::pair<ValeurChamp, const char*> Parts[] = {
      {100.0, "1000000"},
      {33.3333, "0330000"},
      {50.25, "0500000"},
      {50.5, "0500000"},
      {std::string("33.5"), "0340000"},
      {std::string("12,6"), "0130000"},
      {std::string("tout"), "0000000"},
      {std::monostate{}, "0000000"},
      {1000.0, "10000000"},
  };
  for (const auto& [Valeur, Attendu] : Parts) EXPECT_EQ(EncoderPart(Valeur, 7, {}), Octets(Attendu)) << Attendu;
  EXPECT_THROW((void)EncoderPart(40000.0, 7, {}), ErreurExécution);
}

class Fichiers : public testing::Test {
 protected:
  FaussePlateforme Plateforme;
  FauxCanal Canal;
  ÉtatPlugIn État{Plateforme, Canal};
  PetiteCoopérative Coopérative;
  std::vector<std::string> Titres;

  Fichiers() {
    const auto Hôte = std::make_shared<FausseBaseDeD>();
    Hôte->Base = Coopérative.Base;
    État.BaseDeD = Hôte;
  }
  void Exécuter(const char* Script) { Coopérative.Connexion->ExécuterTout(Script); }
  /// The file of the data set with this name, as raw bytes.
  std::string Construire(const std::string& Nom) {
    Titres.clear();
    std::vector<Octets> Lignes{Octets("left over"), Octets("from before")};
    for (const auto& Jeu : JeuxDeDonnées()) {
      if (Jeu.Nom == Nom)
        Jeu.Construire(
            État, [this](const std::string& T) { Titres.push_back(T); }, Lignes);
    }
    EXPECT_EQ(Lignes.size(), 1U);
    return std::string(Lignes[0].Bruts());
  }
};

std::string Blancs(std::size_t Nombre) { return std::string(Nombre, ' '); }

TEST_F(Fichiers, HoldTheRecordsWorkedOutByHand) {
  Exécuter(
      "INSERT INTO Coopérateur VALUES('12','Dupré',''),"
      "('000345','ABCDEFGHIJKLMNOPQRSTUVWXYZABCDEFGHé','x'),('7','ABCDEFGHIJKLMNOPQRSTUVWXYZABCDEFGHIé','x'),"
      "('8',NULL,NULL),('99','Sans exploitation','');"
      "INSERT INTO Métayage VALUES('1','12','12',100,'1001','7'),('2','12','000345',33.3333,'1002',NULL),"
      "('3','7','8',50.5,'1234567','a''c');"
      "INSERT INTO Sélection VALUES('5','Aligoté',8.5),('10','Crémant de Bourgogne blanc',9.5),('20',NULL,NULL),"
      "('60','Rebêche',1),('70','Lies',1),('90','Divers',1);"
      "INSERT INTO Qualité VALUES('1','Saine'),('x','Pourriture grise très avancée');"
      "INSERT INTO QuotasGrp VALUES('7','10',1500.5),('7','5',NULL),('7','60',9),('8','10',1),"
      "('a''c','20',123456789);");
  struct Cas {
    const char* Jeu;
    std::string Attendu;
    const char* PremierTitre;
    const char* DernierTitre;
  };
  const Cas Table[] = {
      {"Appelations",
       "10Cr\xE9mant de Bourgogne001000000"
       "20" +
           Blancs(20) +
           "000000000"
           "05Aligot\xE9" +
           Blancs(13) + "000800000",
       "Appelation 10", "3 appelations en cours..."},
      {"Coopérateurs",
       "000345ABCDEFGHIJKLMNOPQRSTUVWXYZABCDEFGH\xE9"
       "000012Dupr\xE9" +
           Blancs(30) +
           "000007ABCDEFGHIJKLMNOPQRSTUVWXYZABCDEFGHI"
           "000008" +
           Blancs(35),
       "Coopérateur 000345", "4 coopérateurs en cours..."},
      {"Badges",
       "0010010000120000121000000007"
       "0010020003450000120330000000"
       "1234560000080000070500000000",
       "Badge 1001", "3 badges en cours..."},
      {"Groupements",
       "0077" + Blancs(19) + "10000015000500000000" + Blancs(40) + "000a'c" + Blancs(17) + "2012345678" + Blancs(50),
       "Groupement 7", "2 groupements en cours..."},
      {"Observations", "01Saine" + Blancs(15) + "00Pourriture grise tr\xE8", "Observation 1",
       "2 observations en cours..."},
  };
  for (const auto& [Jeu, Attendu, PremierTitre, DernierTitre] : Table) {
    EXPECT_EQ(Construire(Jeu), Attendu) << Jeu;
    EXPECT_EQ(Titres.front(), PremierTitre);
    EXPECT_EQ(Titres.back(), DernierTitre);
  }
  EXPECT_TRUE(Canal.Messages.empty());
}

TEST_F(Fichiers, AreEmptyWithoutRows) {
  for (const auto& Jeu : JeuxDeDonnées()) {
    EXPECT_EQ(Construire(Jeu.Nom), "");
    EXPECT_EQ(Titres.size(), 1U);
    EXPECT_EQ(Titres.back().substr(0, 2), "0 ");
  }
}

TEST_F(Fichiers, CutAWideNumberAtTheVeryEndOfTheFile) {
  Exécuter("INSERT INTO Métayage VALUES('1','1','1',1,'1','12345')");
  EXPECT_EQ(Construire("Badges"), "0000010000010000010010000123");
}

TEST_F(Fichiers, LeaveOutQuotasBeyondTheSixth) {
  Exécuter(
      "INSERT INTO Métayage VALUES('1','1','1',1,'1','7'),('2','1','1',1,'1','8');"
      "INSERT INTO Sélection VALUES('11','',0),('12','',0),('13','',0),('14','',0),('15','',0),('16','',0),"
      "('17','',0),('18','',0);"
      "INSERT INTO QuotasGrp SELECT '7',IdSélection,1 FROM Sélection;"
      "INSERT INTO QuotasGrp SELECT '8',IdSélection,2 FROM Sélection WHERE IdSélection<'17';");
  EXPECT_EQ(Construire("Groupements"), "0077" + Blancs(19) +
                                           "110000000112000000011300000001140000000115000000011600000001" + "0088" +
                                           Blancs(19) + "110000000212000000021300000002140000000215000000021600000002");
  ASSERT_EQ(Canal.Messages.size(), 1U);
  EXPECT_EQ(Canal.Messages[0].first,
            "Groupement 7 : quotas non transmis : 2 (le RG80 n'en tient que 6 par groupement).");
  EXPECT_FALSE(Canal.Messages[0].second);
}

TEST_F(Fichiers, FailWhenTheDataDontFit) {
  struct Cas {
    const char* Script;
    const char* Jeu;
    const char* Raison;
  };
  const Cas Table[] = {
      {"INSERT INTO Qualité VALUES('9999999999','')", "Observations",
       "Dépassement de capacité (Observation 9999999999)"},
      {"INSERT INTO Qualité WITH RECURSIVE N(I) AS (SELECT 1 UNION ALL SELECT I+1 FROM N WHERE I<32771) SELECT I,'' "
       "FROM N",
       "Observations", "Plus de 32767 enregistrements"},
      {"INSERT INTO Sélection SELECT IdQualité,'',0 FROM Qualité WHERE IdQualité<>'9999999999'", "Appelations",
       "Plus de 32767 enregistrements"},
  };
  for (const auto& [Script, Jeu, Raison] : Table) {
    Exécuter(Script);
    try {
      Construire(Jeu);
      FAIL() << Raison;
    } catch (const ErreurExécution& Erreur) {
      EXPECT_STREQ(Erreur.what(), Raison);
    }
  }
  État.BaseDeD.reset();
  EXPECT_THROW(Construire("Badges"), ErreurExécution);
}

}  // namespace
}  // namespace Ombrey::Essais
