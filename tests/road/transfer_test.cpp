// The reference data on their way from the database to the terminal's files, with the operator at the console.
#include <csignal>

#include "tests/road/post.h"

namespace Ombrey::Essais {
namespace {

using namespace std::chrono_literals;

TEST(Transfer, GoesOnFromTheSetThatFailedOnceTheTerminalIsBack) {
  const Poste P;
  auto Rg80 = P.Terminal({});
  const auto Station = P.Station({});
  Station->Taper("menu");
  ASSERT_TRUE(Station->Attendre("Communication établie avec le RG80.")) << Station->Dit();
  Station->Taper("transferer");
  ASSERT_TRUE(
      Station->Attendre("boîte «Transmission des données» (Recommencer, Annuler) : Appelations ⏎ "
                        "Le RG80 n'est pas prêt (NACK)."))
      << Station->Dit();
  // The terminal goes away altogether and comes back waiting for files.
  Rg80->Signaler(SIGKILL);
  EXPECT_EQ(Rg80->Fin(), -SIGKILL);
  Station->Taper("recommencer");
  ASSERT_TRUE(Station->Attendre("boîte «Erreur du port» (OK)")) << Station->Dit();
  Station->Taper("ok");
  ASSERT_TRUE(Station->Attendre("Appelations ⏎ Erreur du port de communication au RG80.")) << Station->Dit();
  Rg80 = P.Terminal({"--f6"});
  Station->Taper("recommencer");
  for (const char* Reçu : {"(appellations) reçu, enregistrements : 5", "(coopérateurs) reçu, enregistrements : 12",
                           "(badges) reçu, enregistrements : 15", "(groupements) reçu, enregistrements : 4",
                           "(observations) reçu, enregistrements : 4"})
    EXPECT_TRUE(Rg80->Attendre(Reçu)) << Rg80->Dit() << Station->Dit();
  // One byte for one letter, accents and "œ" too.
  EXPECT_EQ(P.Lu("recu/fichier-4.txt"),
            "05C\xF4teaux rouges      750000000"
            "10C\xF4teaux ros\xE9s       800000000"
            "20C\xF4teaux blancs      780000000"
            "30Pays d'Oriel rouge  990000000"
            "40C\x9Cur de garrigue    520000000");
  EXPECT_TRUE(P.Lu("recu/fichier-1.txt").starts_with("000101Amiel" + std::string(30, ' ') + "000102Barth\xE8s"));
  Station->Taper("fermer");
  Station->Taper("fin");
  EXPECT_EQ(Station->Fin(), 0);
}

}  // namespace
}  // namespace Ombrey::Essais
