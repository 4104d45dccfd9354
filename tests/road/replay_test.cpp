// A day's traffic, written down by the station and played to it again by the terminal.
#include <sstream>

#include "platform/serial/line_journal.h"
#include "terminal/trace.h"
#include "tests/road/post.h"

namespace Ombrey::Essais {

TEST(Trace, KeepsEveryByteForTheReplay) {
  std::string Tous;
  for (int Code = 0; Code < 256; ++Code) Tous += static_cast<char>(Code);
  std::istringstream Ligne(
      LigneTrace({InstantLiaison::Présent(), MessageLiaison::Source::Terminal, Octets(Tous), "\tx"}));
  EXPECT_EQ(Rg80::LireTrace(Ligne, "trace").at(0).Octets, Tous);
}

/// The operator's part: the reference data, once the loads are in.
static void Transférer(Poste& P, const std::string& Quand, int Fois) {
  while (Fois-- > 0) EXPECT_TRUE(P.Rg80->Attendre(Quand, 60s)) << P.Dit();
  P.Station->Taper("menu");
  EXPECT_TRUE(P.Station->Attendre("[x] Observations")) << P.Dit();
  P.Station->Taper("transferer");
}

TEST(Replay, OfADayIsAnsweredAsItWasAndAnotherBaseShowsWhereNot) {
  Poste Jour, Neuf, Autre, Admise;
  std::ofstream(Jour.En("charges")) << "!checksum " << Enregistrement() << "\n!bruit " << Enregistrement(0, "0013")
                                    << "\n!coupe !nak " << Enregistrement(0, "0014") << '\n';
  Jour.LancerTerminal("--f6 --chargements charges");
  Jour.LancerStation("interroger", "--sans-operateur --trace trace");
  Transférer(Jour, "réponse reçue : ", 3);
  EXPECT_TRUE(Jour.Station->Attendre("[ ] Observations", 60s)) << Jour.Dit();
  Jour.Station->Taper("fin");
  EXPECT_EQ(Jour.Station->Fin(), 0);

  const std::tuple<Poste*, const char*, const char*> Rejeux[] = {
      {&Neuf, "", "différences 0\n"},
      {&Autre, "", "la station dit « <STX>000000"},
      {&Admise, " --autre-base", "non comptés : 3\n"}};  // the appellations' file remains
  for (const auto& [P, Plus, Mots] : Rejeux) {
    if (P != &Neuf) P->Faire("UPDATE Sélection SET QuotasSurface = QuotasSurface + 1");
    P->LancerTerminal("--rejouer " + Jour.En("trace") + Plus, "");
    P->LancerStation();
    Transférer(*P, "attendu de l'opérateur : « <ENQ>8 »", 1);
    EXPECT_EQ(P->Rg80->Fin(60s), P == &Neuf ? 0 : 1) << P->Dit();
    EXPECT_NE(P->Dit().find(Mots), std::string::npos) << P->Dit();
    P->Station->Taper("fin");
    EXPECT_EQ(P->Station->Fin(), 0);
    EXPECT_EQ(P->Rentrés(), "3 3 0");
  }
}

}  // namespace Ombrey::Essais
