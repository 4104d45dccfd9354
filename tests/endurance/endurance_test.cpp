// The promise, put to the proof: each load once and only once, whatever befalls the line, the station and the database.
#include <cstdio>
#include <deque>
#include <sstream>

#include "platform/system/machine_system.h"
#include "tests/endurance/adapter.h"
#include "tests/endurance/offered_loads.h"
#include "tests/road/post.h"

namespace Ombrey::Essais {

/// What the station must wait out takes it two seconds.
constexpr const char* TauxLongs =
    "silence=0.02,nak=0.05,checksum=0.04,bruit=0.03,coupe=0.03,retard=0.02,ack-perdu=0.03";
constexpr const char* TauxCourts = "silence=0.01,nak=0.08,checksum=0.08,bruit=0.02,coupe=0.02,ack-perdu=0.02";
constexpr const char* MotDeMort = "=== station tuée";
using Décompte = std::map<std::string, std::size_t>;

std::size_t Réglage(const char* Nom, std::size_t Ordinaire) {
  const char* const Texte = std::getenv(Nom);
  return Texte ? std::stoul(Texte) : Ordinaire;
}

std::string JourCourt() { return TexteFormaté(HeureLocale(), "jjmmaaaa").erase(4, 2); }

/// A terminal with its queue, a station in a folder of its own, and what befalls them.
class Voie {
 public:
  /// On a base of its own, or on another lane's.
  Voie(std::uint32_t Graine, std::string Site, unsigned Premier, unsigned Nombre, bool EstLongue, const Voie* Voisine)
      : Hasard_(Graine),
        Site_(std::move(Site)),
        Offerts_(ChargementsOfferts(Premier, Nombre, Jour_, Hasard_)),
        VerrouLongDû_(EstLongue && Voisine != nullptr),
        Cadence_(Graine % 2 == 0 ? " --cadence 9600" : "") {
    if (Voisine != nullptr) P_.Faire("$ ln -sf " + Voisine->P_.En("cave.db") + " cave.db");
    std::ofstream File(P_.En("file.txt"));
    // A busy terminal takes a minute, so that the long run alone meets it, twice; each meets a late answer.
    const unsigned Tardif = Hasard_(Nombre), Occupé = Hasard_(Nombre);
    for (unsigned Rang = 0; Rang < Nombre; ++Rang) {
      const bool Occupe = EstLongue && (Rang == Occupé || Rang == (Occupé + Nombre / 2) % Nombre);
      File << (Occupe ? "!occupe " : Rang == Tardif ? "!retard " : "") << Offerts_[Rang] << '\n';
    }
    File.close();
    P_.Faire("$ sed -i s,/ligne$,/adaptateur, tarvel.ini");
    P_.LancerTerminal("--chargements file.txt --journal journal.txt --jusqu-a-vide --graine " + std::to_string(Graine) +
                      " --panne " + (EstLongue ? TauxLongs : TauxCourts) + Cadence_);
    Adaptateur_.emplace(P_.En("ligne"), P_.En("adaptateur"));
  }

  /// Until the queue is empty, then a proper end. What stays behind is looked at by Vérifier.
  void Tenir(std::chrono::seconds Patience) {
    const auto Limite = std::chrono::steady_clock::now() + Patience;
    Lancer();
    while (!EstVide() && std::chrono::steady_clock::now() < Limite) Malmener();
    ASSERT_TRUE(EstVide()) << Tout();
    EXPECT_EQ(P_.Rg80->Fin(), 0);
    EXPECT_NE(P_.Rg80->Dit().find(", acquittés " + std::to_string(Offerts_.size()) + ","), std::string::npos);
    P_.Station->Taper("fin");
    EXPECT_EQ(P_.Station->Fin(), 0) << P_.Station->Dit();
    Passé_ += P_.Station->Dit();
  }
  void Vérifier(const Suivi& Changements);
  [[nodiscard]] const Poste& Lieu() const { return P_; }
  /// The trace of all its stations, played to one on a base as it was at first, with more options of the terminal.
  void Rejouer(const std::string& Plus, std::chrono::seconds Patience) const;
  Décompte Comptes;

 private:
  void Malmener();
  void Tuer();
  void VérifierRéponses(const Suivi& Changements);
  void Lancer() { P_.LancerStation("interroger", "--sans-operateur --trace trace --site " + Site_); }

  [[nodiscard]] bool EstVide() const {
    const std::string& Dit = P_.Rg80->Dit();
    return Dit.find("\nbilan : ", Dit.size() - std::min<std::size_t>(Dit.size(), 300)) != std::string::npos;
  }
  /// The load that the terminal offered last.
  [[nodiscard]] std::string Courant() const {
    const std::string& Dit = P_.Rg80->Dit();
    const std::size_t Place = Dit.rfind(" offert, essai ");
    return Place == std::string::npos ? "" : Dit.substr(Place - 4, 4);
  }
  /// Until one of the two says it, from now on.
  bool Attendre(const std::string& Mots, std::chrono::milliseconds Patience) const {
    const std::size_t Terminal = P_.Rg80->Dit().size(), Station = P_.Station->Dit().size();
    return Bientôt(
        [&] {
          return P_.Station->Dit().find(Mots, Station) != std::string::npos ||
                 P_.Rg80->Dit().find(Mots, Terminal) != std::string::npos || EstVide();
        },
        Patience);
  }
  /// Some moment of a dialogue, or a few milliseconds behind it.
  void AttendreUnMoment() {
    static const std::vector<std::string> Moments = {
        "offert, essai",      "acquitté, en attente", "Importation d'un nouveau", "demande 8 : prêt",
        "Mise à jour des cu", "réponse reçue : ",     "ChargementAjouté:",        "Vérification de nouveaux"};
    Attendre(Moments[Hasard_(Moments.size())], std::chrono::milliseconds(Hasard_(400)));
    Attendre("bilan : ", std::chrono::milliseconds(Hasard_(30)));
  }
  /// For a failure: all that the terminal, the line and the station have said.
  [[nodiscard]] std::string Tout() const {
    return "\n--- terminal\n" + P_.Rg80->Dit() + "--- ligne\n" + Contenu(P_.En("journal.txt")) + "--- station\n" +
           Passé_ + P_.Station->Dit();
  }

  Dé Hasard_;
  std::string Jour_ = JourCourt();
  std::string Site_;
  std::vector<std::string> Offerts_;
  bool VerrouLongDû_;
  std::string Cadence_;  ///< the terminal's option, so that what it says takes as long again
  Poste P_;
  std::optional<Adaptateur> Adaptateur_;
  std::string Passé_;              ///< what the stations have said
  std::set<std::string> Mortels_;  ///< loads on offer when a station was killed
};

/// Another program that writes.
struct Verrou {
  explicit Verrou(const Poste& P) : Base(P.Base()), Tout(*Base) {
    Base->Exécuter("UPDATE Paramètre SET Valeur = Valeur");
  }
  std::shared_ptr<ConnexionSqlite> Base;
  Transaction Tout;
};

void Voie::Malmener() {
  for (unsigned Encore = Hasard_(8); Encore > 0; --Encore) Attendre("acquitté, en attente", 2s);
  AttendreUnMoment();
  std::optional<Verrou> Pris;
  if (VerrouLongDû_ && Courant() > Offerts_[Offerts_.size() / 2].substr(0, 4)) {
    VerrouLongDû_ = false;
    ++Comptes["long locks"];
    Pris.emplace(P_);
    Attendre("Erreur d'importation des données", AttenteVerrou + 4s);
    return;
  }
  const bool Débranche = Hasard_(3) == 0, Tue = Hasard_(2) == 0, Relance = Hasard_(2) == 0;
  // The other lane may hold it longer than anybody waits.
  if (Hasard_(3) == 0) Ignorer([&] { Pris.emplace(P_); });
  Comptes["locks"] += Pris ? 1 : 0;
  Comptes["port losses"] += Débranche ? 1 : 0;
  Adaptateur_->Brancher(!Débranche);
  if (Tue) Tuer();
  if (Tue && Relance) Lancer();
  AttendreUnMoment();
  if (Pris && Hasard_(2) == 0) Pris->Tout.Valider();
  Pris.reset();
  Adaptateur_->Brancher(true);
  if (Tue && !Relance) Lancer();
}

void Voie::Tuer() {
  P_.Station->Signaler(SIGKILL);
  EXPECT_EQ(P_.Station->Fin(), -SIGKILL) << "ended by itself" << P_.Station->Dit();
  ++Comptes["kills"];
  Mortels_.insert(Courant());
  Passé_ += P_.Station->Dit() + "\n" + MotDeMort + "\n";
}

void Voie::Vérifier(const Suivi& Changements) {
  Comptes["loads"] = Offerts_.size();
  EXPECT_EQ(ChargementsRentrés(*P_.Base(), Site_), Offerts_);
  VérifierRéponses(Changements);
  EXPECT_TRUE(std::filesystem::is_empty(P_.En("poste/import")));
  EXPECT_FALSE(testing::Test::HasFailure()) << Site_ << Tout();
}

void Voie::Rejouer(const std::string& Plus, std::chrono::seconds Patience) const {
  Poste Neuf;
  Neuf.Faire(Suivi::Tables);
  Neuf.LancerTerminal("--rejouer " + P_.En("trace") + Plus + Cadence_, "");
  Neuf.LancerStation("interroger", "--sans-operateur --site " + Site_);
  EXPECT_EQ(Neuf.Rg80->Fin(Patience), 0) << Contenu(P_.En("trace")) << Neuf.Dit();
  EXPECT_EQ(ChargementsRentrés(*Neuf.Base(), Site_), Offerts_);
  const std::string& Dit = Neuf.Rg80->Dit();
  std::printf("replay: loads %zu, %s", Offerts_.size(), Dit.substr(Dit.rfind("\nrejeu : ") + 1).c_str());
}

void Voie::VérifierRéponses(const Suivi& Changements) {
  std::set<std::string> Servis = Mortels_;
  std::size_t Rang = 0;
  std::istringstream Terminal(P_.Rg80->Dit()), Stations(Passé_);
  for (std::string Ligne; std::getline(Terminal, Ligne);) {
    constexpr std::string_view Réponse = "réponse reçue : ", Panne = "[panne : ";
    if (Ligne.find(" offert, essai ") != std::string::npos) {
      ++Comptes["offers"];
      Rang = std::stoul(Ligne.substr(Ligne.find(' '))) - std::stoul(Offerts_[0].substr(0, 4));
    }
    const std::string Numéro = Offerts_.at(Rang).substr(0, 4);
    if (Ligne.starts_with(Réponse)) {
      ++Comptes["replies"];
      Servis.insert(Numéro);
      const std::string Reçue = Ligne.substr(Réponse.size());
      EXPECT_TRUE(Changements.Permet(Site_, std::stol(Numéro), Reçue, JourCourt() != Jour_)) << Numéro << Reçue;
    }
    if (const std::size_t Place = Ligne.find(Panne); Place != std::string::npos) {
      std::istringstream Noms(Ligne.substr(Place + Panne.size(), Ligne.size() - Place - Panne.size() - 1));
      for (std::string Nom; std::getline(Noms >> std::ws, Nom, ',');) ++Comptes["fault " + Nom];
    }
  }
  bool EstDit = false;
  for (std::string Ligne; std::getline(Stations, Ligne);) {
    constexpr std::string_view Ajouté = "hôte : ChargementAjouté:";
    if (Ligne.find("CLIQUEZ SUR RG80 EN ATTENTE DES QUOTAS.") != std::string::npos) EstDit = true;
    if (Ligne.starts_with(Ajouté) && EstDit) Servis.insert(EnChiffres(std::stol(Ligne.substr(Ajouté.size())), 4));
    if (Ligne.starts_with(Ajouté) || Ligne == MotDeMort) EstDit = false;
  }
  for (const std::string& Un : Offerts_)
    EXPECT_TRUE(Servis.contains(Un.substr(0, 4))) << "no reply, and nobody said so" << Un;
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
  for (const auto Base = Une_.Lieu().Base(); Ouvertes_ > 0; std::this_thread::sleep_for(1ms * Hasard_(40))) {
    Ignorer([&] { Corriger(*Base); });
  }
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
