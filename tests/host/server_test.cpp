// A base on a server: what the server, the network and the other stations may do to a load.
#include <netinet/in.h>
#include <sys/socket.h>

#include <chrono>
#include <thread>

#include "host/copied_base.h"
#include "host/diagnostic.h"
#include "host/station_register.h"
#include "platform/loop/descriptor.h"
#include "tests/host/cooperative_fixture.h"

namespace Tarvel {

using namespace std::chrono_literals;
using Ombrey::Essais::Bientôt;
using Ombrey::Essais::ServeurDEssai;
using Temps = std::chrono::steady_clock;

struct Serveur : Coopérative {
  Serveur() : Coopérative(Ombrey::Essais::Moteur::Postgresql) {}
  ~Serveur() override {
    if (auto* const Lui = ServeurDEssai::Lui()) Lui->Continuer();
  }
  void SetUp() override {
    Coopérative::SetUp();
    if (!IsSkipped()) Autre_ = OuvrirMoteur(Adresse_);
  }
  void Couper() { Autre_->Exécuter("SELECT pg_terminate_backend(?1)", {Lire("SELECT pg_backend_pid()")}); }

  std::shared_ptr<Ombrey::IConnexion> Autre_;
};

TEST_F(Serveur, ALinkThatIsCutComesBackAndATransactionInItsMidstIsUndone) {
  Couper();
  EXPECT_EQ(Importer(Ligne()), "");
  {
    Ombrey::Transaction Tout(*Connexion_);
    Connexion_->Exécuter("DELETE FROM Chargement");
    Couper();
    EXPECT_NE(RefusDe([&] { Tout.Valider(); }), "");
  }
  EXPECT_EQ(Lire("SELECT count(*) FROM Chargement"), "1");
}

TEST_F(Serveur, ALoadIsRefusedThatTheServerWouldOnlyPromiseToKeep) {
  static_cast<void>(Lire("SELECT set_config('synchronous_commit', 'off', 1 = 2)"));
  const std::string Dit = Importer(Ligne());
  EXPECT_TRUE(Dit.starts_with("faux : ")) << Dit;
  EXPECT_NE(Dit.find("synchronous_commit = off"), std::string::npos) << Dit;
  EXPECT_EQ(Lire("SELECT count(*) FROM Chargement"), "0");
}

TEST_F(Serveur, AServerThatIsFrozenOrGoneHoldsNobodyUpForLong) {
  for (const bool EstParti : {false, true}) {
    SCOPED_TRACE(EstParti);
    EstParti ? ServeurDEssai::Lui()->Arrêter(SIGKILL) : ServeurDEssai::Lui()->Geler();
    const auto Début = Temps::now();
    EXPECT_TRUE(Importer(Ligne()).starts_with("faux : "));
    EXPECT_TRUE(Importer(Ligne()).starts_with("faux : "));
    EXPECT_LT(Temps::now() - Début, 20s);
    EstParti ? ServeurDEssai::Lui()->Démarrer() : ServeurDEssai::Lui()->Continuer();
    EXPECT_TRUE(Bientôt([this] { return Importer(Ligne()).empty(); }, 60s));
    EXPECT_EQ(Lire("SELECT count(*) FROM Chargement"), "1");
  }
}

/// The office holds one load and wants the other; the station the other way round. The server gives up the station.
TEST_F(Serveur, ALoadThatADeadlockThrewOutComesInAtTheSecondTry) {
  ASSERT_EQ(Importer(Ligne("12") + Ligne("13")), "");
  std::thread Bureau([&] {
    ServeurDEssai::Faire(
        Adresse_,
        "SET deadlock_timeout = '1min'; UPDATE \\\"Chargement\\\" SET \\\"Cuve\\\" = '9' WHERE"
        " \\\"NoChargement\\\" = 13; DO 'BEGIN LOOP EXIT WHEN EXISTS (SELECT FROM pg_locks WHERE NOT"
        " granted); PERFORM pg_sleep(0.02); END LOOP; END'; UPDATE \\\"Chargement\\\" SET \\\"Cuve\\\" = '9'"
        " WHERE \\\"NoChargement\\\" = 12");
  });
  while (Autre_->Lire("SELECT count(*) FROM pg_locks WHERE locktype = 'transactionid'") ==
         Ombrey::ValeurChamp{std::int64_t{0}})
    std::this_thread::sleep_for(10ms);
  EXPECT_EQ(Importer(Ligne("12", "23/09/26 08:30") + Ligne("13", "23/09/26 08:30")), "");
  Bureau.join();
  EXPECT_EQ(Lire("SELECT NoChargement, Cuve FROM Chargement ORDER BY 1") + " " +
                Lire("SELECT NoChargement, Cuve FROM ChargementArchive ORDER BY 1"),
            "12 7,13 7 12 9,13 9");
  const auto YEnEut = [this] {
    return Autre_->Lire("SELECT count(*) FROM pg_stat_database WHERE datname = current_database() AND deadlocks > 0") ==
           Ombrey::ValeurChamp{std::int64_t{1}};
  };
  EXPECT_TRUE(Bientôt(YEnEut, 30s)) << "there was no deadlock";
}

/// A server that takes the link and says nothing, ahead of the one that works.
TEST_F(Serveur, AnAddressOfSeveralServersIsGoneThroughInTimeWhileWindowsArePainted) {
  const Ombrey::Descripteur Muet(socket(AF_INET, SOCK_STREAM, 0));
  sockaddr_in Place{.sin_family = AF_INET, .sin_port = 0, .sin_addr = {htonl(INADDR_LOOPBACK)}, .sin_zero = {}};
  socklen_t Taille = sizeof Place;
  auto* const Sienne = reinterpret_cast<sockaddr*>(&Place);
  ASSERT_EQ(
      bind(Muet.Numéro(), Sienne, Taille) + listen(Muet.Numéro(), 9) + getsockname(Muet.Numéro(), Sienne, &Taille), 0);
  const std::string Port = std::to_string(ntohs(Place.sin_port));
  std::string Deux = Adresse_ + "&target_session_attrs=read-write&port=" + Port + ",5432";
  Deux.insert(Deux.find("host=") + 5, "localhost,");
  const auto Début = Temps::now();
  const auto Connexion = OuvrirMoteur(Deux);
  EXPECT_LT(Temps::now() - Début, 15s);
  int Peints = 0;
  std::string Dit;
  Connexion->FixerPatience([&] {
    ++Peints;
    Dit = RefusDe([&] { Connexion->Exécuter("DELETE FROM Métayage"); });
    return true;
  });
  Connexion->Exécuter("SELECT pg_sleep(0.3)");
  EXPECT_NE(Dit.find("une autre question"), std::string::npos) << Dit;
  EXPECT_GT(Peints, 2);
  EXPECT_EQ(Connexion->Lire("SELECT count(*) FROM Métayage"), Ombrey::ValeurChamp{std::int64_t{15}});
  Autre_->Exécuter("SELECT pg_terminate_backend(pid) FROM pg_stat_activity WHERE pid <> pg_backend_pid()");
  Peints = 0;
  EXPECT_EQ(Connexion->Lire("SELECT 1"), Ombrey::ValeurChamp{std::int64_t{1}});
  EXPECT_GT(Peints, 20) << "the silent server was waited for with the windows alive";
}

/// What the session finds ahead of the server's own functions stands for a clock and for a pooler.
TEST_F(Serveur, ARoleIsToldWhichRightsItLacksAndTheDiagnosisSaysWhatMendsABase) {
  ServeurDEssai::Faire(Adresse_,
                       "CREATE ROLE poste2 LOGIN; GRANT SELECT ON ALL TABLES IN SCHEMA public TO poste2;"
                       " GRANT INSERT ON \\\"Métayage\\\" TO poste2; CREATE ROLE poste3 LOGIN;"
                       " GRANT ALL ON ALL TABLES IN SCHEMA public TO poste3;"
                       " GRANT ALL ON ALL SEQUENCES IN SCHEMA public TO poste3;"
                       " REVOKE INSERT ON \\\"Station\\\" FROM poste3; CREATE SCHEMA tard; CREATE FUNCTION tard.now() "
                       "RETURNS timestamptz LANGUAGE sql AS"
                       " 'SELECT pg_catalog.now() - interval ''90 s'''; CREATE SCHEMA lent;"
                       " CREATE FUNCTION lent.pg_backend_pid() RETURNS int LANGUAGE sql AS 'SELECT 1'");
  const auto Sous = [&](std::string Compte) { return "postgresql://" + Compte + Adresse_.substr(Adresse_.find('@')); };
  const std::string Chemin = Adresse_ + "&options=-csearch_path%3D";
  const std::array<std::string, 3> Cas[] = {
      // clang-format off
      {Adresse_, "bon     droits : ", ""},
      {Sous("poste2"), "mauvais droits : Il manque", "   INSERT sur Coopérateur   INSERT, UPDATE, DELETE sur Chargement "},
      {Sous("poste2"), "mauvais droits : Il manque", "par GRANT"},
      {Sous("poste3"), "à voir  droits : ", "INSERT sur Station"},
      {Adresse_ + "&options=-cdefault_transaction_read_only%3Don", "mauvais base : ", "donnez l'adresse du serveur qui écrit"},
      {Adresse_, "bon     horloge du serveur : ", ""},
      {Sous("personne"), "mauvais base : Le serveur de la base ne peut pas être joint", "~/.pgpass"},
      {Chemin + "tard,public,pg_catalog", "à voir  horloge du serveur : ", ", le serveur retarde. À faire : sudo tim"},
      {Chemin + "lent,public,pg_catalog", "mauvais base : L'adresse de la base est celle d'un répartiteur", ""},
      // clang-format on
  };
  for (const auto& [Base, Dit, ÀFaire] : Cas) {
    Options Choisies;
    Choisies.Base = Base;
    const std::string Texte = "\n" + TexteConstats(Diagnostiquer(Choisies));
    const std::size_t Début = Texte.find("\n" + Dit);
    ASSERT_NE(Début, std::string::npos) << Texte;
    EXPECT_NE(Texte.substr(Début + 1, Texte.find('\n', Début + 1) - Début).find(ÀFaire), std::string::npos) << Texte;
  }
  const auto Compte = OuvrirMoteur(Sous("poste2"));
  EXPECT_NE(SansSigneDeVie(*Compte).find("il manque INSERT, UPDATE sur Station"), std::string::npos);
  EXPECT_TRUE(
      RefusDe([&] { Compte->Exécuter("DELETE FROM Chargement"); }).starts_with("Droit refusé par le serveur ("));
}

TEST_F(Serveur, ACooperativeGoesToAServerAndBackWithAllThatItHas) {
  const std::string Fichier = Dossier_ / "départ.db";
  const std::string Retour = Dossier_ / "retour.db";
  const std::string Autre = NouvelleBase(Moteur_, Gardé_);
  CréerBase(Fichier, true);
  const auto Départ = OuvrirMoteur(Fichier);
  Départ->ExécuterTout(
      "ALTER TABLE Chargement ADD COLUMN [N° de ticket] VARCHAR(9); UPDATE Métayage SET Surface = '8,5';"
      "INSERT INTO Chargement (IdChargement, CodeSite, NoChargement, DateCh, Métayage, Degré, [N° de ticket])"
      " VALUES (7, '1', 12, 46287.5, '4', 12.5, 'l''été'); CREATE TABLE Visite (Quoi TEXT)");
  const std::string Fait = CopierBase(Fichier, Autre);
  EXPECT_NE(Fait.find("\n  Métayage : 15"), Fait.npos) << Fait;
  EXPECT_TRUE(Fait.ends_with("\nRestent sur place : Visite")) << Fait;
  OuvrirMoteur(Autre)->ExécuterTout(
      "ALTER TABLE Chargement ADD COLUMN [Vu le] TIMESTAMP; UPDATE Chargement SET [Vu le] = '2026-09-22 12:00:00'");
  EXPECT_TRUE(CopierBase(Autre, Retour).ends_with("\n  Paramètre : 2"));
  for (const std::string& Base : {Autre, Retour}) {
    const auto Copie = OuvrirCoopérative(Base);
    EXPECT_EQ(Copie->Lire("SELECT Surface FROM Métayage WHERE IdMétayage = '4'"), Ombrey::ValeurChamp{8.5}) << Base;
    EXPECT_EQ(Copie->Lire("SELECT [N° de ticket] FROM Chargement WHERE Degré = 12.5"), Ombrey::ValeurChamp{"l'été"});
    const auto Suivant = Copie->Lire(
        "INSERT INTO Chargement (CodeSite, NoChargement, DateCh, Métayage) VALUES ('1', 13, 46287, '4')"
        " RETURNING IdChargement");
    EXPECT_EQ(Suivant, Ombrey::ValeurChamp{std::int64_t{8}});
  }
  EXPECT_EQ(OuvrirMoteur(Retour)->Lire("SELECT [Vu le] FROM Chargement WHERE NoChargement = 12"),
            Ombrey::ValeurChamp{46287.5});
  Départ->Exécuter("UPDATE Métayage SET Surface = '8 ha'");
  const std::string Neuve = NouvelleBase(Moteur_, Gardé_);
  for (const auto& [Vers, Raison] : {std::pair(Autre, "a déjà une table"), {Neuve, "« 8 ha »"}})
    EXPECT_NE(RefusDe([&, Où = Vers] { static_cast<void>(CopierBase(Fichier, Où)); }).find(Raison), std::string::npos)
        << Raison;
  EXPECT_TRUE(OuvrirMoteur(Neuve)->ColonnesDe("Métayage").empty());
}

TEST_F(Serveur, KeepsTimesAndTruthAsTheDialectMeansThem) {
  const auto Valeur = [&](const std::string& Quoi) {
    const std::string Sql = "SELECT " + Quoi + " FROM (SELECT TIMESTAMP '2026-09-22 08:30:00' AS Vu, 1 AS Un) AS t";
    return TexteOuVide(Ombrey::BaseLue(Connexion_).OpenRecordset(Sql, {})->Fields(0), Ombrey::Régional{});
  };
  const std::pair<const char*, const char*> Cas[] = {
      {"Vu", "46287,3541666667"}, {"Un = 1 AND (1 = 1) = (2 = 2)", "-1"}, {"True & False", "-10"}};
  for (const auto& [Quoi, Attendu] : Cas) EXPECT_EQ(Valeur(Quoi), Attendu);
  EXPECT_TRUE(RefusDe([&] { Valeur("vu"); }).starts_with("Colonne introuvable : vu"));
}

TEST_P(SurChaqueMoteur, TwoStationsNeverHaveTheSameSite) {
  Connexion_->PrendreSite("Œ 2");
  const auto Autre = OuvrirMoteur(Adresse_);
  Autre->PrendreSite("3");
  EXPECT_NE(RefusDe([&] { Autre->PrendreSite("Œ 2"); }).find("code de site « Œ 2 »"), std::string::npos);
  Fermer();
  EXPECT_EQ(RefusDe([&] { OuvrirMoteur(Adresse_)->PrendreSite("Œ 2"); }), "");
}

TEST_P(SurChaqueMoteur, AStationHearsOfWhatOthersCommitAndNotOfItself) {
  Connexion_->PrendreSite("1");
  const auto Autre = OuvrirMoteur(Adresse_);
  static_cast<void>(Connexion_->ADuNouveau());
  ASSERT_EQ(Importer(Ligne()), "");
  EXPECT_FALSE(Connexion_->ADuNouveau());
  Ombrey::Transaction Tout(*Autre);
  Autre->Exécuter("UPDATE Chargement SET CodeSite = '2'");
  Tout.Valider();
  EXPECT_TRUE(Bientôt([this] { return Connexion_->ADuNouveau(); }, 10s));
}
SUR_CHAQUE_MOTEUR(SurChaqueMoteur);

}  // namespace Tarvel
