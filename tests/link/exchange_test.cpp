// The waiting primitive: codes, priorities, time-outs and what stays in the buffer.
#include "link/exchange.h"

#include <functional>

#include "tests/link/link_fixture.h"

namespace Ombrey::Essais {
namespace {

TEST(CheckSum, WorkedByHand) {
  struct Cas {
    std::string Texte;
    const char* Deux;
  };
  const Cas Table[] = {
      {"abc", "26"},
      {"\x02"
       "abc\x03",
       "2;"},
      {"", "00"},
      {std::string(1, '\xFF'), "??"},
      {std::string("\x80\x80", 2), "00"},
      {"\x02"
       "0012190908083009150001230004560071000000050112521234007\x03",
       "<;"},
  };
  for (const Cas& C : Table) {
    EXPECT_EQ(CalculerCheckSum(Octets(C.Texte)), Octets(C.Texte + C.Deux));
    const Octets Deux(C.Deux);
    EXPECT_TRUE(VérifierCheckSum(Octets(C.Texte), Deux.Extrait(0, 1), Deux.Extrait(1, 1)));
    EXPECT_FALSE(VérifierCheckSum(Octets(C.Texte), Deux.Extrait(0, 1), Octets("@")));
    EXPECT_FALSE(VérifierCheckSum(Octets(C.Texte), Octets(), Octets()));
  }
}

struct Reconnaissance {
  const char* Nom;
  const char* Arrive;  ///< in the drawing of the line's bytes
  Attente Demande;
  CodeÉchange Code;
  const char* Réponse;  ///< "-" for untouched
  const char* Reste;
};

Attente Chargement(std::size_t LongMin) { return {.LongMin = LongMin, .Motif3 = Ligne("^A"), .Motif4 = Ligne("!A")}; }
Attente Trame() { return {.LongMin = 1, .Motif1 = Ligne("^"), .Motif2 = Ligne("!")}; }

class ReconnaîtreRéponse : public Liaison, public ::testing::WithParamInterface<Reconnaissance> {};

TEST_P(ReconnaîtreRéponse, GivesCodeAndLeavesTheRest) {
  const Reconnaissance& Cas = GetParam();
  Plateforme.Port->Envoyer(Ligne(Cas.Arrive));
  Octets Réponse = Ligne("-");
  EXPECT_EQ(UnÉchange.AttendreRéponse(Cas.Demande, Réponse), Cas.Code);
  EXPECT_EQ(Réponse, Ligne(Cas.Réponse));
  EXPECT_EQ(État.TamponRéception, Ligne(Cas.Reste));
}

Attente SansResynchroniser() {
  Attente Demande = Chargement(2);
  Demande.Resynchroniser = false;
  return Demande;
}
Attente SansConsommer() {
  Attente Demande = Trame();
  Demande.Consommer = false;
  return Demande;
}

INSTANTIATE_TEST_SUITE_P(
    Table, ReconnaîtreRéponse,
    ::testing::Values(
        Reconnaissance{"noise ahead", "zz^A", Chargement(2), CodeÉchange::Motif3, "^A", "^A"},
        Reconnaissance{"no load", "!A", Chargement(2), CodeÉchange::Motif4, "!A", "!A"},
        Reconnaissance{"yes before no, whatever their order", "!A^A", Chargement(2), CodeÉchange::Motif3, "^A", "^A"},
        Reconnaissance{"too short", "^A<0012", Chargement(59), CodeÉchange::Silence, "-", "^A<0012"},
        Reconnaissance{"dropped noise stays dropped", "zz^A<0012", Chargement(7), CodeÉchange::Motif3, "^A<0012",
                       "^A<0012"},
        Reconnaissance{"too short once the noise is gone", "zz^A", Chargement(4), CodeÉchange::Silence, "-", "^A"},
        Reconnaissance{"other code", "^B", Chargement(2), CodeÉchange::Silence, "-", "^B"},
        Reconnaissance{"not told to look anywhere", "^A", SansResynchroniser(), CodeÉchange::Silence, "-", "^A"},
        Reconnaissance{"frame taken", "^", Trame(), CodeÉchange::Motif1, "^", ""},
        Reconnaissance{"frame refused, more behind", "!x", Trame(), CodeÉchange::Motif2, "!x", "x"},
        Reconnaissance{"stray character ahead", "x^", Trame(), CodeÉchange::Silence, "-", "x^"},
        Reconnaissance{"not consumed", "^", SansConsommer(), CodeÉchange::Motif1, "^", "^"}));

TEST_F(Liaison, AnswerCountsUpToTheTimeOutAndNotBeyond) {
  for (const auto& [Délai, Code] : {std::pair{2000, CodeÉchange::Motif1}, std::pair{2001, CodeÉchange::Silence}}) {
    État.TamponRéception.Vider();
    Plateforme.Port->Envoyer(Ligne("^"), milliseconds(Délai));
    Octets Réponse;
    EXPECT_EQ(UnÉchange.AttendreRéponse(Trame(), Réponse), Code) << Délai;
  }
}

TEST_F(Liaison, WaitEndsAcrossTheWrapOfTheTickCount) {
  Plateforme.LeSystème.Horloge = 0xFFFFFFFFULL - 500;
  Octets Réponse;
  EXPECT_EQ(UnÉchange.AttendreRéponse(Trame(), Réponse), CodeÉchange::Silence);
  EXPECT_EQ(Plateforme.LeSystème.Horloge, 0xFFFFFFFFULL - 500 + 2001);
  EXPECT_LT(Plateforme.LeSystème.Pompages, 5) << "an idle wait is one pump, not a busy loop";
}

TEST_F(Liaison, CharactersCountOnceByEventOrByRead) {
  Plateforme.Port->ParLire = Ligne("^");
  Plateforme.Port->Envoyer(Ligne("A"));
  Octets Réponse;
  EXPECT_EQ(UnÉchange.AttendreRéponse(Chargement(2), Réponse), CodeÉchange::Motif3);
  EXPECT_EQ(État.TamponRéception, Ligne("^A"));
}

TEST_F(Liaison, EndOfThePlugInEndsTheWaitAtOnceAndSaysNothing) {
  Plateforme.LeSystème.Après(milliseconds(50), [this] { Terminer(); });
  Attente Demande = Trame();
  Demande.Texte = Ligne("?8");
  Octets Réponse;
  EXPECT_EQ(UnÉchange.AttendreRéponse(Demande, Réponse), CodeÉchange::Silence);
  EXPECT_EQ(Plateforme.LeSystème.Horloge, 1050U);
  EXPECT_TRUE(Plateforme.LesFenêtres.Boîtes.empty());
}

TEST_F(Liaison, EndOfThePlugInWithinTheWritingIsNoPortFailure) {
  auto Port = Plateforme.Port;
  Port->EcritureRefusée = true;
  État.Abandon = true;
  Attente Demande = Trame();
  Demande.Texte = Ligne("?8");
  Octets Réponse;
  EXPECT_EQ(UnÉchange.AttendreRéponse(Demande, Réponse), CodeÉchange::Silence);
  EXPECT_TRUE(Plateforme.LesFenêtres.Boîtes.empty());
}

TEST_F(Liaison, RefusedSendingShowsThePortsWords) {
  Plateforme.Port->EcritureRefusée = true;
  Plateforme.Port->Erreur = "COM1: est absent";
  Attente Demande = Trame();
  Demande.Texte = Ligne("?8");
  Octets Réponse;
  EXPECT_EQ(UnÉchange.AttendreRéponse(Demande, Réponse), CodeÉchange::ErreurPort);
  ASSERT_EQ(Plateforme.LesFenêtres.Boîtes.size(), 1U);
  EXPECT_EQ(Plateforme.LesFenêtres.Boîtes[0].Titre, "Erreur du port");
  EXPECT_EQ(Plateforme.LesFenêtres.Boîtes[0].Texte, "COM1: est absent");
}

TEST_F(Liaison, LinkTest) {
  struct Cas {
    const char* Réponse;
    bool Répond;
  };
  for (const Cas& C : {Cas{"^8", true}, Cas{"!8", true}, Cas{"", false}, Cas{"^1", false}, Cas{"x^8", false}}) {
    Canal.Messages.clear();
    État.TamponRéception = Ligne("old");
    Plateforme.Port->RépondreDansLOrdre({Ligne(C.Réponse)});
    EXPECT_EQ(UnÉchange.TesterConnexion(), C.Répond) << C.Réponse;
    EXPECT_EQ(Canal.Messages.size(), C.Répond ? 1U : 0U);
    EXPECT_FALSE(Plateforme.LesFenêtres.Sablier);
  }
  EXPECT_EQ(Plateforme.Port->Ecrits.back(), Ligne("?8"));
  État.PortComm.reset();
  EXPECT_FALSE(UnÉchange.TesterConnexion());
}

}  // namespace
}  // namespace Ombrey::Essais
