// The reference data on their way from the database to the terminal's files, with the operator at the console.
#include "tests/road/post.h"

namespace Ombrey::Essais {
/// The whole of the five files as bytes; a slash stands for the blanks that fill a record up on the right.
static const std::tuple<const char*, std::size_t, std::string> Fichiers[] = {
    // clang-format off
    // Appellation, name, quota for a hectare.
    {"recu/fichier-4.txt", 31, "05C\364teaux rouges      750000000" "10C\364teaux ros\351s       800000000"
     "20C\364teaux blancs      780000000" "30Pays d'Oriel rouge  990000000" "40C\234ur de garrigue    520000000"},
    // Member, name.
    {"recu/fichier-1.txt", 41, "000101Amiel/000102Barth\350s/000103Castani\351/000123Delmas/000210Est\350ve/"
     "000305Fabr\350gues/000318G\351ly/000402L'H\364te/000456Maurin/000511Pag\350s/000624Rouqui\351/"
     "000730H\351ritiers de Saint-C\234ur/"},
    // Badge, harvester, owner, share, group.
    {"recu/fichier-5.txt", 28, "0010010001010001011000000001" "0010020001020001021000000001" "0010030001020001030500000001"
     "0010040004560001231000000007" "0010050001230001231000000007" "0010060003050002100670000002"
     "0010070003050002100330000005" "0010080003050003051000000002" "0010090003180003181000000002"
     "0010100004020004021000000005" "0010110005110004020500000005" "0010120005110005111000000007"
     "0010130003180006240330000000" "0010140006240007300500000005" "0010150004560004561000000007"},
    // Group, name, up to six appellations with their quota for a day.
    {"recu/fichier-2.txt", 83, "0011                   050002000010000150002000012000/"
     "0022                   05000180003000030000/" "0055                   05000160002000000000/"
     "0077                   05000250001000012500200000900030000220004000008000/"},
    // Observation, name.
    {"recu/fichier-6.txt", 22, "01Saine/02L\351g\350rement alt\351r\351e/03Alt\351r\351e/04Pourriture/"},
    // clang-format on
};

TEST(Transfer, GoesOnFromTheSetThatFailedOnceTheTerminalIsBackAndIsRightToTheByte) {
  Poste P;
  P.Faire("INSERT INTO Coopérateur (IdCoopérateur, Nom) VALUES ('900', 'Sans terre')");
  P.LancerTerminal("");
  P.LancerStation("arreter\nmenu", "");  // there is nothing to stop yet, and nothing is kept for later
  EXPECT_TRUE(P.Station->Attendre("Communication établie avec le RG80.")) << P.Dit();
  P.Station->Taper("etat\ntransferer");
  EXPECT_TRUE(P.Station->Attendre("état : Collecte suspendue depuis ")) << P.Dit();
  EXPECT_TRUE(P.Station->Attendre("(Recommencer, Annuler) : Appelations ⏎ Le RG80 n'est pas prêt (NACK).")) << P.Dit();
  // The terminal goes away altogether and comes back waiting for files.
  P.Rg80.reset();
  P.Station->Taper("recommencer\nok");
  EXPECT_TRUE(P.Station->Attendre("Appelations ⏎ Erreur du port de communication au RG80.")) << P.Dit();
  P.LancerTerminal("--f6");
  // On a busy machine the terminal may answer too late.
  int Essais = 0;
  do P.Station->Taper("recommencer");
  while (!P.Rg80->Attendre("(observations) reçu, enregistrements : 4", 10s) && ++Essais < 6);
  EXPECT_LT(Essais, 6) << P.Dit();
  for (const auto& [Nom, Longueur, Enregistrements] : Fichiers) {
    std::string Attendu;
    for (const char C : Enregistrements)
      Attendu += C == '/' ? std::string(Longueur - Attendu.size() % Longueur, ' ') : std::string(1, C);
    EXPECT_EQ(Contenu(P.En(Nom)), Attendu) << Nom;
  }
  P.Rg80->Signaler(SIGINT);
  P.Station->Taper("fermer");
  P.Finir("0 0 0");
}

}  // namespace Ombrey::Essais
