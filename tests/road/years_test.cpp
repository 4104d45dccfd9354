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
  std::ofstream(P.En("offerts")) << Enregistrement(4, GetParam().Date) << "\n";
  P.LancerTerminal("--chargements offerts");
  P.LancerStation("interroger", "--sans-operateur", std::string("exec faketime '") + GetParam().Horloge + "' ");
  ASSERT_TRUE(P.Rg80->Attendre("réponse reçue : 000000058766001234023766")) << P.Dit();
  P.Station->Taper("liste");
  EXPECT_TRUE(P.Station->Attendre("liste : 1\n")) << P.Dit();
  P.Station->Taper("fin");
  EXPECT_EQ(P.Station->Fin(), 0) << P.Dit();
  EXPECT_EQ(P.Valeur("SELECT Arrivée FROM ChargementLisible"), GetParam().Arrivée);
}

INSTANTIATE_TEST_SUITE_P(ToCome, Years,
                         testing::Values(Jour{"2030-01-01 00:05:00", "010130", "01/01/2030 08:30"},
                                         Jour{"2050-09-22 12:00:00", "220950", "22/09/2050 08:30"}));

}  // namespace Ombrey::Essais
