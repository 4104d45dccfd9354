// The station under clocks of years to come: a load of the day is filed under it, listed, and counts.
#include "tests/road/post.h"

namespace Ombrey::Essais {

struct Jour {
  const char* Horloge;
  const char* Date;  ///< in the terminal's record
  const char* Arrivée;
};

struct Years : testing::TestWithParam<Jour> {};

TEST_P(Years, ALoadOfTheDayIsFiledListedAndCounted) {
  if (std::system("command -v faketime >/dev/null") != 0) GTEST_SKIP() << "faketime isn't installed";
  Poste P;
  // The second one bears the same number: the first goes to the archive, and counts.
  for (std::ofstream Offerts(P.En("offerts")); const char* Masse : {"1000", "1234"})
    Offerts << Enregistrement(4, GetParam().Date).replace(48, 4, Masse) << "\n";
  P.LancerTerminal("--chargements offerts");
  P.LancerStation("interroger", "--sans-operateur", std::string("exec faketime '") + GetParam().Horloge + "' ");
  ASSERT_TRUE(P.Rg80->Attendre("réponse reçue : 000000059000001000024000")) << P.Dit();
  ASSERT_TRUE(P.Rg80->Attendre("réponse reçue : 000000057766002234022766")) << P.Dit();
  EXPECT_TRUE(P.Station->Attendre(std::string("hôte : Le chargement n° 12 du site 1, arrivé le ") + GetParam().Arrivée +
                                  " (exploitation 4, 1000 kg), passe dans ChargementArchive"))
      << P.Dit();
  P.Station->Taper("liste");
  EXPECT_TRUE(P.Station->Attendre("liste : 1\n")) << P.Dit();
  P.Station->Taper("fin");
  EXPECT_EQ(P.Station->Fin(), 0) << P.Dit();
  const std::string Arrivée = GetParam().Arrivée;
  EXPECT_EQ(
      P.Valeur(
          "SELECT group_concat(Arrivée || Masse || Archive) FROM (SELECT * FROM ChargementLisible ORDER BY Masse)"),
      Arrivée + "1000archivé," + Arrivée + "1234");
}

INSTANTIATE_TEST_SUITE_P(ToCome, Years,
                         testing::Values(Jour{"2030-01-01 00:05:00", "010130", "01/01/2030 08:30"},
                                         Jour{"2050-09-22 12:00:00", "220950", "22/09/2050 08:30"}));

}  // namespace Ombrey::Essais
