// A lane of the endurance run: one terminal with its queue, one station, and what befalls them.
#pragma once

#include "platform/system/machine_system.h"
#include "tests/endurance/adapter.h"
#include "tests/endurance/offered_loads.h"
#include "tests/road/post.h"

namespace Ombrey::Essais {

/// What the station must wait out takes it two seconds.
constexpr const char* TauxLongs =
    "silence=0.02,nak=0.05,checksum=0.04,bruit=0.03,coupe=0.03,retard=0.02,ack-perdu=0.03";
constexpr const char* TauxCourts = "silence=0.01,nak=0.08,checksum=0.08,bruit=0.02,coupe=0.02,ack-perdu=0.02";
using Décompte = std::map<std::string, std::size_t>;

inline std::string JourCourt() { return TexteFormaté(HeureLocale(), "jjmmaaaa").erase(4, 2); }

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

}  // namespace Ombrey::Essais
