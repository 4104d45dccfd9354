// The promise, put to the proof: each load once and only once, whatever befalls the line, the station and the database.
#include <cstdio>
#include <deque>
#include <thread>

#include "tests/endurance/lane.h"

namespace Ombrey::Essais {

std::size_t Réglage(const char* Nom, std::size_t Ordinaire) {
  const char* const Texte = std::getenv(Nom);
  return Texte ? std::stoul(Texte) : Ordinaire;
}

/// Two stations on one base, whose terminals give the same numbers and meet the same unknown holdings, and the office,
/// which corrects what has just come in.
class Cave {
 public:
  Cave(std::uint32_t Graine, unsigned Premier, unsigned Nombre, bool EstLongue)
      : Hasard_(Graine),
        Une_(2 * Graine, "1", Premier, Nombre, EstLongue, nullptr),
        Autre_(2 * Graine + 1, "2", Premier, Nombre, EstLongue, &Une_) {
    Une_.Lieu().Faire(Suivi::Tables);
  }
  void Tenir(std::chrono::seconds Patience);
  void Vérifier(Décompte& Somme);
  /// What hangs on what the other lane and the office have written meanwhile isn't compared.
  void Rejouer(std::chrono::seconds Patience) const;

 private:
  void Corriger(ConnexionSqlite& Base);

  Dé Hasard_;
  Voie Une_, Autre_;
  std::atomic<int> Ouvertes_{2};
  std::size_t Corrections_ = 0;
};

void Cave::Tenir(std::chrono::seconds Patience) {
  std::vector<std::thread> Fils;
  for (Voie* Voie : {&Une_, &Autre_})
    Fils.emplace_back([=, this] {
      EXPECT_EQ(RefusDe([&] { Voie->Tenir(Patience); }), "");
      --Ouvertes_;
    });
  for (const auto Base = Une_.Lieu().Base(); Ouvertes_ > 0; std::this_thread::sleep_for(1ms * Hasard_(40)))
    Ignorer([&] { Corriger(*Base); });
  for (std::thread& Fil : Fils) Fil.join();
}

void Cave::Corriger(ConnexionSqlite& Base) {
  static const std::vector<std::string> Colonnes = {
      "Degré = Degré + 0.1", "Masse = Masse + 7",
      "Métayage = (SELECT IdMétayage FROM Métayage WHERE IdGrp IS NOT NULL ORDER BY random() LIMIT 1)"};
  Transaction Tout(Base);
  const ValeurChamp Un = Base.Lire(
      "SELECT IdChargement FROM (SELECT * FROM Chargement ORDER BY IdChargement DESC LIMIT 2) ORDER BY random()");
  if (EstNull(Un)) return;
  Base.Exécuter("UPDATE Chargement SET " + Colonnes[Hasard_(Colonnes.size())] + " WHERE IdChargement = ?1", {Un});
  Base.Exécuter(
      "REPLACE INTO Bureau SELECT IdChargement, Métayage, Degré, Masse FROM Chargement WHERE IdChargement = ?1", {Un});
  Tout.Valider();
  ++Corrections_;
}

void Cave::Vérifier(Décompte& Somme) {
  const Poste& P = Une_.Lieu();
  EXPECT_EQ(P.Valeur("PRAGMA integrity_check"), "ok");
  const Suivi Changements(P.Base());
  for (Voie* Voie : {&Une_, &Autre_}) {
    Voie->Vérifier(Changements);
    for (const auto& [Nom, Combien] : Voie->Comptes) Somme[Nom] += Combien;
  }
  Somme["corrections"] += Corrections_;
  // What the office has written stays, and all the rest is as it came; nothing archived; what was created, created
  // once.
  EXPECT_EQ(
      P.Valeur(
          "SELECT group_concat(CodeSite || '/' || NoChargement) FROM Chargement AS C"
          " LEFT JOIN Bureau AS B USING (IdChargement) WHERE NOT (InfoChargnt3 = C.Qualité"
          " AND Operateur || Ramassage || InfoChargnt1 || InfoChargnt2 || InfoChargnt4 = '00000'"
          " AND Cépage IS (SELECT Désignation FROM Cépage WHERE Sélection = C.Sélection AND Rang = 1)"
          " AND NoChargement || DateCh || DateSortie || C.Sélection || C.Qualité || NoQuai || Cuve ="
          " ReçuNoChargement || ReçuDateCh || ReçuDateSortie || ReçuSélection || ReçuQualité ||"
          " ReçuNoQuai || ReçuCuve AND C.Degré = ifnull(B.Degré, ReçuDegré) AND C.Masse = ifnull(B.Masse, ReçuMasse)"
          " AND C.Métayage = ifnull(B.Métayage, C.Métayage))"),
      "");
  EXPECT_EQ(P.Valeur("SELECT count(*) FROM ChargementArchive"), "0");
  EXPECT_EQ(P.Valeur("SELECT count(*) FROM Métayage"), "17") << "two were unknown";
  EXPECT_EQ(P.Valeur("SELECT count(*) FROM Coopérateur"), "15") << "three were unknown";
}

void Cave::Rejouer(std::chrono::seconds Patience) const {
  std::thread Fil([&] { Autre_.Rejouer(" --autre-base", Patience); });
  Une_.Rejouer(" --autre-base", Patience);
  Fil.join();
}

constexpr unsigned Courte = 64;
unsigned NombreEnTout() { return static_cast<unsigned>(Réglage("ENDURANCE_CHARGEMENTS", Courte)); }

/// The environment can make it long (loads in all) and repeat another seed.
TEST(Endurance, EachLoadIsInOnceWithItsValuesAndItsFiguresWhateverGoesWrong) {
  constexpr unsigned NombreCaves = 4;
  const auto Nombre = NombreEnTout() / NombreCaves / 2;
  const auto Graine = static_cast<std::uint32_t>(Réglage("ENDURANCE_GRAINE", 4));
  const bool EstLongue = Nombre * NombreCaves * 2 > Courte;
  std::printf("endurance: seed %u\n", Graine);
  std::fflush(stdout);
  const auto Début = std::chrono::steady_clock::now();
  std::deque<Cave> Caves;
  std::vector<std::thread> Fils;
  for (unsigned Rang = 0; Rang < NombreCaves; ++Rang)
    Caves.emplace_back(Graine * NombreCaves + Rang, 1 + Rang * Nombre, Nombre, EstLongue);
  for (Cave& Une : Caves) Fils.emplace_back([&Une, EstLongue] { Une.Tenir(EstLongue ? 600s : 60s); });
  for (std::thread& Fil : Fils) Fil.join();
  Décompte Somme;
  if (HasFailure()) return;
  for (Cave& Une : Caves) Une.Vérifier(Somme);
  const auto Durée = std::chrono::duration_cast<std::chrono::seconds>(std::chrono::steady_clock::now() - Début);
  std::printf("endurance: seed %u, %lld s, bases %u", Graine, static_cast<long long>(Durée.count()), NombreCaves);
  for (const auto& [Nom, Combien] : Somme) std::printf(", %s %zu", Nom.c_str(), Combien);
  std::puts("");
  EXPECT_GT(Somme["fault retard"], 0U);
  if (!EstLongue) return;
  for (const char* Nom : {"corrections", "fault ack-perdu", "fault bruit", "fault checksum", "fault coupe", "fault nak",
                          "fault occupe", "fault silence", "kills", "locks", "long locks", "port losses"})
    EXPECT_GT(Somme[Nom], 0U) << Nom;
  Fils.clear();
  for (Cave& Une : Caves) Fils.emplace_back([&Une] { Une.Rejouer(1200s); });
  for (std::thread& Fil : Fils) Fil.join();
}

/// On a base that nobody else changes, so that every figure must come back.
TEST(Endurance, ReplayedFromItsTraceTheStationAnswersAsItDid) {
  const auto Graine = static_cast<std::uint32_t>(Réglage("ENDURANCE_GRAINE", 4));
  const bool EstLongue = NombreEnTout() > Courte;
  Voie Une(Graine, "1", 1, static_cast<unsigned>(Réglage("ENDURANCE_REJOUES", EstLongue ? 60 : 20)), EstLongue,
           nullptr);
  Une.Tenir(EstLongue ? 600s : 120s);
  if (!HasFailure()) Une.Rejouer("", EstLongue ? 1200s : 400s);
}

}  // namespace Ombrey::Essais
