// Request, frame, answer, EOT: every way out, and what stands on the line each time.
#include "link/transmission.h"

#include "tests/link/link_fixture.h"

namespace Ombrey::Essais {
namespace {

struct Envoi {
  const char* Nom;
  std::vector<const char*> Lignes;
  std::vector<const char*> Réponses;  ///< to each writing in turn, "" for silence
  const char* Résultat;
  const char* Ecrit;  ///< all that went on the line
};

constexpr const char* DonnéesRefusées =
    "Erreur de données ou de checksum renvoyée par le RG80 \x02"
    "abc\x03";

class Transmettre : public Liaison, public ::testing::WithParamInterface<Envoi> {};

TEST_P(Transmettre, EndsAsTold) {
  const Envoi& Cas = GetParam();
  std::vector<Octets> Réponses;
  for (const char* Réponse : Cas.Réponses) Réponses.push_back(Ligne(Réponse));
  Plateforme.Port->RépondreDansLOrdre(Réponses);
  std::vector<Octets> Lignes;
  for (const char* Texte : Cas.Lignes) Lignes.push_back(Ligne(Texte));
  EXPECT_EQ(Transmission(État, UnÉchange).TransmettreLignes(8, Lignes), Cas.Résultat);
  EXPECT_EQ(Ecrit(), Ligne(Cas.Ecrit));
}

#define TRAME "<abc>2;"
INSTANTIATE_TEST_SUITE_P(
    Table, Transmettre,
    ::testing::Values(
        Envoi{"acknowledged", {"abc"}, {"^8", "^"}, "", "?8" TRAME "$"}, Envoi{"nothing to send", {"", ""}, {}, "", ""},
        Envoi{"framed already", {"<abc>"}, {"^8", "^"}, "", "?8" TRAME "$"},
        Envoi{"silence to the request", {"abc"}, {""}, "Aucune réponse du RG80.", "?8"},
        Envoi{"answer with another code", {"abc"}, {"^1"}, "Aucune réponse du RG80.", "?8"},
        Envoi{"not ready", {"abc", "abc"}, {"!8"}, "Le RG80 n'est pas prêt (NACK).", "?8"},
        Envoi{"silence to the frame", {"abc"}, {"^8", ""}, "Aucune réponse du RG80.", "?8" TRAME},
        Envoi{"stray character ahead of the answer", {"abc"}, {"^8", "x^"}, "Aucune réponse du RG80.", "?8" TRAME},
        Envoi{"four refusals, then taken",
              {"abc"},
              {"^8", "!", "", "^8", "!", "", "^8", "!", "", "^8", "!", "", "^8", "^"},
              "",
              "?8" TRAME "$?8" TRAME "$?8" TRAME "$?8" TRAME "$?8" TRAME "$"},
        Envoi{"fifth refusal",
              {"abc"},
              {"^8", "!", "", "^8", "!", "", "^8", "!", "", "^8", "!", "", "^8", "!"},
              DonnéesRefusées,
              "?8" TRAME "$?8" TRAME "$?8" TRAME "$?8" TRAME "$?8" TRAME},
        Envoi{"refusals count over all lines",
              {"abc", "abc"},
              {"^8", "!", "", "^8", "!", "", "^8", "!", "", "^8", "^", "", "^8", "!", "", "^8", "!"},
              DonnéesRefusées,
              "?8" TRAME "$?8" TRAME "$?8" TRAME "$?8" TRAME "$?8" TRAME "$?8" TRAME}));

TEST_F(Liaison, PortFailureAtRequestAndAtFrame) {
  for (const std::size_t Passés : {0U, 1U}) {
    Plateforme.Port->EcritureRefusée = Passés == 0;
    Plateforme.Port->SurEcriture = [this](const Octets&) {
      Plateforme.Port->Envoyer(Ligne("^8"));
      Plateforme.Port->EcritureRefusée = true;
    };
    std::vector<Octets> Lignes{Octets("abc")};
    EXPECT_EQ(Transmission(État, UnÉchange).TransmettreLignes(8, Lignes), "Erreur du port de communication au RG80.");
    EXPECT_EQ(Plateforme.Port->Ecrits.size(), Passés);
  }
}

TEST_F(Liaison, PendingFailureOfACalleeIsReported) {
  État.Erreur.Noter(ErreurExécution("panne"));
  std::vector<Octets> Lignes{Octets()};
  EXPECT_EQ(Transmission(État, UnÉchange).TransmettreLignes(8, Lignes),
            "Transmission de l'exportation vers le RG80 : panne");
}

}  // namespace
}  // namespace Ombrey::Essais
