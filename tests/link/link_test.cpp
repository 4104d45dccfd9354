// The waiting primitive (codes, priorities, what stays in the buffer), and dialogues in a row (time-outs, stale
// answers, the transmission, the link test).
#include <algorithm>

#include "tests/link/link_bench.h"

namespace Ombrey::Essais {

using enum CodeÉchange;

Attente Chargement(std::size_t LongMin, bool Resynchroniser = true) {
  return {.LongMin = LongMin, .Motif3 = Ligne("^A"), .Motif4 = Ligne("!A"), .Resynchroniser = Resynchroniser};
}
Attente Trame(bool Consommer = true) {
  return {.LongMin = 1, .Motif1 = Ligne("^"), .Motif2 = Ligne("!"), .Consommer = Consommer};
}

struct Reconnaissance {
  const char *Nom, *Arrive;
  Attente Demande;
  CodeÉchange Code;
  const char *Réponse, *Reste;  ///< "-" for an untouched answer
};
// clang-format off
const Reconnaissance Reconnaissances[] = {
    {"noise ahead", "zz^A", Chargement(2), Motif3, "^A", "^A"},
    {"yes before no, whatever their order", "!A^A", Chargement(2), Motif3, "^A", "^A"},
    {"dropped noise stays dropped", "zz^A<0012", Chargement(7), Motif3, "^A<0012", "^A<0012"},
    {"too short once the noise is gone", "zz^A", Chargement(4), Silence, "-", "^A"},
    {"not told to look anywhere", "^A", Chargement(2, false), Silence, "-", "^A"},
    {"frame refused, more behind", "!x", Trame(), Motif2, "!x", "x"},
    {"not consumed", "^", Trame(false), Motif1, "^", "^"}};
// clang-format on

TEST_F(Banc, AWaitGivesItsCodeAndLeavesTheRest) {
  for (const auto& Cas : Reconnaissances) {
    Octets Reçu = Ligne("-");
    UnÉchange.Tampon().Vider();
    const std::size_t Lus = Cas.Demande.LongMin > 1;  // by a read, and the rest by the event: each counts once
    Port->ParLire = Ligne(Cas.Arrive).Extrait(0, Lus);
    Port->Envoyer(Ligne(Cas.Arrive).Extrait(Lus));
    EXPECT_EQ(UnÉchange.AttendreRéponse(Cas.Demande, Reçu), Cas.Code) << Cas.Nom;
    EXPECT_EQ(Reçu, Ligne(Cas.Réponse)) << Cas.Nom;
    EXPECT_EQ(UnÉchange.Tampon(), Ligne(Cas.Reste)) << Cas.Nom;
  }
}

/// Dialogues in a row. P asks for a load, T tests the link; E sends the text "abc" under code 8, D sends it twice, F in
/// its frame, R sends nothing; Z is three seconds of rest, N a new station.
struct Suite {
  const char *Nom, *Actes;
  std::string Dits, Ecrit, Issue;  ///< all that was written, and what the last act came to
  std::uint64_t Durée;
  int Avertis = 0;  ///< times that the operator was told of dropped characters
};
const std::string PasPrêt = "Le RG80 n'est pas prêt (NACK).";
const std::string Refusée =
    "Erreur de données ou de checksum renvoyée par le RG80 \x02"
    "abc\x03";
const std::string Laissé = "Chargement laissé sans réponse : le RG80 répondait peut-être à une demande plus ancienne.";
const std::pair Avertissement{
    std::string("Le RG80 a envoyé des caractères que personne n'attendait : ils sont laissés sans réponse."), false};
const std::string Bavard = [] {
  std::string Tous;
  for (int Quand = 1; Quand < 20000; Quand += 500) Tous += std::to_string(Quand) + ":z ";
  return Tous;
}();
// clang-format off
const Suite Suites[] = {
    {"nothing to send", "R", "", "", "", 0},
    {"framed already", "F", "^8|^", "T$", "", 10},
    {"silence to the request", "E", "", "?8", Muet, 2001},
    {"not ready", "D", "!8", "?8", PasPrêt, 5},
    {"stray character ahead of the answer", "E", "^8|x^", "T", Muet, 2006},
    {"answer in time", "E", "^8|2000:^", "T$", "", 2005},
    {"a long text: the answer's time begins behind it", "E", "^8|~6000 1999:^", "T$", "", 8004},
    {"answer too late", "E", "^8|2001:^", "T", Muet, 2006},
    {"four refusals, then taken", "E", "^8|!||^8|!||^8|!||^8|!||^8|^", "T$T$T$T$T$", "", 50},
    {"fifth refusal", "E", "^8|!||^8|!||^8|!||^8|!||^8|!", "T$T$T$T$T", Refusée, 50},
    {"refusals count over all lines", "D", "^8|!||^8|!||^8|!||^8|^||^8|!||^8|!", "T$T$T$T$T$T", Refusée, 60},
    {"link test", "T", "^8", "?8", "yes", 5}, {"refused", "T", "!8", "?8", "yes", 5}, {"mute", "T", "", "?8", "no", 2001},
    {"another code", "T", "^1", "?8", "no", 2001}, {"noise", "T", "x^8", "?8", "no", 2001},
    {"calm: no wait, and a load that comes again has lost its ACK", "PPE", "L||L||^8|^", "?A^?A^T$", "", 20},
    {"silence counts from the end of the wait in vain", "PP", "|L", "?A?A^", "", 4010},
    {"silent for long enough", "PZP", "|L", "?A?A^", "", 5010},
    {"late answer", "PPP", "2500:L|!A|L", "?A?A?A^", "", 4510, 1},
    {"late answer between two dialogues", "PZP", "2500:L|L", "?A?A^", "", 5010, 1},
    {"held by the driver at the next request", "PP", "4:=z !A|L", "?A?A^", "", 2014, 1},
    {"several answers: only what comes last is ours", "PP", "|LL", "?A?A", Laissé, 4006},
    {"with a gap between them", "PP", "|5:L 8:L", "?A?A", Laissé, 4009},
    {"another answer has begun", "PP", "|L =^A<00", "?A?A", Laissé, 4006},
    {"several answers on a calm line", "P", "LL", "?A^", "", 5},
    {"copy of the acknowledged load", "PPP", "L|||L", "?A^?A?A", Laissé, 4011},
    {"left busy by the station before this one", "NPPPP", "L||L|L|L", "?A^?A?A^?A^", "", 2020},
    {"a lost ACK on a line that never gets calm blocks no queue", "PZPZPZPZPZPZP",
     "L|600:z|L 600:z|L 600:z|L 600:z|L 600:z|L 600:z|L", "?A^?A?A?A?A?A?A^", "", 18039, 1},
    {"taken over with polls close together: the second waits, once", "NPEPPP", "L||^8|^||!A|M||L", "?A^T$?A?A^?A^", "", 2034},
    {"taken over and silent", "NPZPZPP", "L||!A|!A|L", "?A^?A?A?A^", "", 6024},
    {"calm again behind an answer, silence and another answer", "PPPPP", "L|||!A|L|L", "?A^?A?A?A?A^", "", 6021},
    {"another load", "PPP", "L|||M", "?A^?A?A^", "", 4015},
    {"never silent", "PP", Bavard + "|L", "?A?A^", "", 12010, 1},
    {"answer to an older request", "EE", "|^8|^8 30:^", "?8T$", "", 4040},
    {"and nothing behind it", "EE", "|^8|^8", "?8T", Muet, 6007},
    {"refusal of an older request, in pieces", "EE", "|^8|! 8:8 30:^", "?8T$", "", 4040},
    {"ACK in time that shows late that it stands alone", "EE", "|^8|1999:^", "?8T$", "", 6009},
    {"ACK too late", "EE", "|^8|2001:^", "?8T", Muet, 6007},
    {"held by the port when the time is up", "E", "1900:=!8", "?8", PasPrêt, 2001},
    {"end in the silence", "PP", "2500:.", "?A", "Echec de lecture de données du RG80 : " + Muet, 2500}};
// clang-format on

struct DialoguesDeSuite : Banc, testing::WithParamInterface<Suite> {
  std::string Jouer(char Acte) {
    if (Acte == 'N') UnÉchange.NoterReprise();
    if (Acte == 'Z') Système.Laisser(milliseconds(3000));
    if (Acte == 'P') return Collecte(État, UnÉchange, *this).LireDonnéesDeRG80();
    if (Acte == 'T') return UnÉchange.TesterConnexion() ? "yes" : "no";
    const std::map<char, Mots> Textes = {{'E', {"abc"}}, {'D', {"abc", "abc"}}, {'F', {"<abc>"}}, {'R', {"", ""}}};
    return Textes.contains(Acte) ? Envoyer(Textes.at(Acte)) : "";
  }
};
INSTANTIATE_TEST_SUITE_P(Table, DialoguesDeSuite, testing::ValuesIn(Suites));

TEST_P(DialoguesDeSuite, EndAsTold) {
  const Suite& Cas = GetParam();
  SCOPED_TRACE(Cas.Nom);
  Répondre(Cas.Dits);
  std::string Dernière;
  for (const char Acte : std::string_view(Cas.Actes)) Dernière = Jouer(Acte);
  EXPECT_EQ(Dernière, Cas.Issue);
  EXPECT_EQ(Ecrit(), Ligne(Cas.Ecrit));
  EXPECT_EQ(Système.Horloge - Début, Cas.Durée);
  EXPECT_LT(Système.Pompages, 100) << "an idle wait is one pump, not a busy loop";
  EXPECT_EQ(std::count(Canal.Messages.begin(), Canal.Messages.end(), Avertissement), Cas.Avertis);
  EXPECT_FALSE(Fenêtres.Sablier);
}

TEST_F(Banc, PendingFailureOfACalleeIsReported) {
  Panne();
  EXPECT_EQ(Envoyer({""}), "Transmission de l'exportation vers le RG80 : panne");
}

}  // namespace Ombrey::Essais
