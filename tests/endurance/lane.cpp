// What befalls a lane, and what must have become of its loads.
#include "tests/endurance/lane.h"

#include <cstdio>
#include <sstream>

namespace Ombrey::Essais {

static constexpr const char* MotDeMort = "=== station tuée";

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

}  // namespace Ombrey::Essais
