// The machine fails under a load: tables gone, disk full, folders in the way. Nothing unsaved is acknowledged, and once
// the fault is mended the load comes in.
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>

#include "tests/road/bench_post.h"

namespace Ombrey::Essais {
namespace {

/// No file of this process grows beyond Taille, the way a full disk ends a writing.
class DisquePlein {
 public:
  explicit DisquePlein(rlim_t Taille) {
    std::signal(SIGXFSZ, SIG_IGN);
    getrlimit(RLIMIT_FSIZE, &Avant_);
    rlimit Borne = Avant_;
    Borne.rlim_cur = Taille;
    setrlimit(RLIMIT_FSIZE, &Borne);
  }
  DisquePlein(const DisquePlein&) = delete;
  DisquePlein& operator=(const DisquePlein&) = delete;
  ~DisquePlein() { setrlimit(RLIMIT_FSIZE, &Avant_); }

 private:
  rlimit Avant_{};
};

constexpr const char* Refusé = "Erreur d'importation des données issues du RG80.";

struct Panne {
  const char* Nom;
  std::function<void(PosteDEssai&)> Casser;
  const char* Boîte;  ///< how the first box begins; empty: none comes
  const char* Réponse;
  int Gardés;  ///< refused import files kept for the operator
  std::function<void(PosteDEssai&)> Réparer;
  rlim_t Disque = RLIM_INFINITY;
};

std::function<void(PosteDEssai&)> Sql(const char* Texte) {
  return [Texte](PosteDEssai& P) { ConnexionSqlite::Ouvrir(P.Base())->ExécuterTout(Texte); };
}

const Panne Pannes[] = {
    {"no loads", Sql("ALTER TABLE Chargement RENAME TO Ailleurs"), Refusé, "NAK", 1,
     Sql("ALTER TABLE Ailleurs RENAME TO Chargement")},
    {"no archive", Sql("ALTER TABLE ChargementArchive RENAME TO Ailleurs"), Refusé, "NAK", 1,
     Sql("ALTER TABLE Ailleurs RENAME TO ChargementArchive")},
    {"no holdings", Sql("ALTER TABLE Métayage RENAME TO Ailleurs"), "Table introuvable : Métayage", "", 0,
     Sql("ALTER TABLE Ailleurs RENAME TO Métayage")},
    {"no layouts", Sql("ALTER TABLE MSysEtats RENAME TO Ailleurs"),
     "TraiterDonnéesReçues : Table introuvable : MSysEtats", "", 0, Sql("ALTER TABLE Ailleurs RENAME TO MSysEtats")},
    {"layout gone", Sql("UPDATE MSysEtats SET Titre = 'autre'"), "", "", 0,
     Sql("UPDATE MSysEtats SET Titre = 'Synchronisation des chargements'")},
    {"layout of another table",
     Sql("UPDATE MSysEtats SET LongChps = LongChps || char(13) || 'Rien' || char(9) || 'texte'"), Refusé, "NAK", 1,
     Sql("UPDATE MSysEtats SET LongChps = substr(LongChps, 1, length(LongChps) - 11)")},
    {"load refused by a trigger",
     Sql("CREATE TRIGGER Non BEFORE INSERT ON Chargement BEGIN SELECT RAISE(ABORT, 'non'); END"), Refusé, "NAK", 1,
     Sql("DROP TRIGGER Non")},
    {"disk full under the error file", [](PosteDEssai&) {},
     "LireDonnéesDeRG80 : Echec de lecture de données du RG80 : ", "", 0, [](PosteDEssai&) {}, 0},
    {"disk full under the import file", [](PosteDEssai&) {},
     "LireDonnéesDeRG80 : Echec de lecture de données du RG80 : Impossible d'écrire le fichier ", "", 0,
     [](PosteDEssai&) {}, 20},
    {"disk full under the database", [](PosteDEssai&) {}, Refusé, "NAK", 1, [](PosteDEssai&) {}, 300},
    {"a file in place of the import folder",
     [](PosteDEssai& P) {
       std::filesystem::remove_all(P.En("poste/import"));
       P.Écrire("poste/import", "");
     },
     "LireDonnéesDeRG80 : Echec de lecture de données du RG80 : ", "", 0,
     [](PosteDEssai& P) { std::filesystem::remove(P.En("poste/import")); }},
    {"a folder in place of the import file",
     [](PosteDEssai& P) { std::filesystem::create_directories(P.En("poste/import/RG80 import.txt/x")); },
     "LireDonnéesDeRG80 : Echec de lecture de données du RG80 : Impossible d'écrire le fichier ", "", 0,
     [](PosteDEssai& P) { std::filesystem::remove_all(P.En("poste/import")); }},
    {"a file in place of the error folder",
     [](PosteDEssai& P) {
       std::filesystem::remove_all(P.En("poste/données"));
       P.Écrire("poste/données", "");
     },
     "LireDonnéesDeRG80 : Echec de lecture de données du RG80 : ", "", 0,
     [](PosteDEssai& P) { std::filesystem::remove(P.En("poste/données")); }},
};

std::ptrdiff_t FichiersGardés(const PosteDEssai& P) {
  const std::filesystem::directory_iterator Tous(P.Plateforme.LeSystème.DossierImportsConservés());
  return std::distance(begin(Tous), end(Tous));
}

TEST(FailingMachine, IsReportedAndTheLoadComesInOnceItIsMended) {
  for (const Panne& Cas : Pannes) {
    SCOPED_TRACE(Cas.Nom);
    PosteDEssai P;
    P.Relever(Octets());
    Cas.Casser(P);
    {
      const DisquePlein Plein(Cas.Disque);
      const std::string Boîtes = P.Relever(Trame(Enregistrement(12)));
      EXPECT_TRUE(*Cas.Boîte == '\0' ? Boîtes.empty() : Boîtes.starts_with(Cas.Boîte)) << Boîtes;
      EXPECT_EQ(P.Réponse, Cas.Réponse);
      EXPECT_TRUE(P.Cumuls.empty());
    }
    EXPECT_EQ(FichiersGardés(P), Cas.Gardés);
    EXPECT_FALSE(std::filesystem::is_regular_file(P.En("poste/import/RG80 import.txt")));
    Cas.Réparer(P);
    EXPECT_EQ(P.Rentrés(), "0 0 0");
    EXPECT_EQ(P.Relever(Trame(Enregistrement(12))), "");
    EXPECT_EQ(P.Réponse, "ACK");
    EXPECT_EQ(P.Rentrés(), "1 1 0");
    EXPECT_EQ(P.Valeur("PRAGMA integrity_check"), "ok");
  }
}

TEST(FailingMachine, FiguresThatCannotBeWorkedOutDontTakeTheLoadBack) {
  PosteDEssai P;
  Sql("ALTER TABLE Sélection RENAME TO Ailleurs")(P);
  P.Relever(Trame(Enregistrement(12)));
  EXPECT_EQ(P.Réponse, "ACK");
  EXPECT_EQ(P.Rentrés(), "1 1 0");
  ASSERT_EQ(P.Cumuls.size(), 1U);
  EXPECT_EQ(P.Cumuls[0].size(), 24U);
}

TEST(FailingMachine, ASecondRefusalInTheSameSecondStillRefusesAndLosesNothing) {
  PosteDEssai P;
  std::string Texte = Enregistrement(12);
  Texte.replace(48, 4, "12X4");
  P.Relever(Trame(Texte));
  EXPECT_EQ(P.Réponse, "NAK");
  const std::string Boîtes = P.Relever(Trame(Texte));
  EXPECT_TRUE(Boîtes.starts_with("LireDonnéesDeRG80 : Echec de lecture de données du RG80 : Le fichier existe déjà"))
      << Boîtes;
  EXPECT_EQ(P.Réponse, "");
  EXPECT_EQ(P.Rentrés(), "0 0 0");
}

/// An answer that was given up arrives behind the next request, ahead of that one's own.
TEST(FailingMachine, ALateFrameAheadOfTheAnswerIsTakenOnce) {
  PosteDEssai P;
  const Octets Offre = Octets(
                           "\x06"
                           "A") +
                       Trame(Enregistrement(12));
  P.ReleverBrut(Offre + Offre);
  EXPECT_EQ(P.Réponse, "ACK");
  EXPECT_EQ(P.Rentrés(), "1 1 0");
  // The rest of a cut frame, then the whole of another.
  P.ReleverBrut(Offre.Extrait(30) +
                Octets("\x06"
                       "A") +
                Trame(Enregistrement(13)));
  EXPECT_EQ(P.Réponse, "ACK");
  EXPECT_EQ(P.Rentrés(), "2 2 0");
}

}  // namespace
}  // namespace Ombrey::Essais
