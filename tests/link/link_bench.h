// A station's link on the machine in memory, with a scripted terminal at the other end.
#pragma once

#include <gtest/gtest.h>

#include <numeric>
#include <sstream>

#include "link/daily_error_file.h"
#include "link/transmission.h"
#include "tests/support/fake_platform.h"

namespace Ombrey::Essais {

/// The bytes of a drawing: ^ stands for ACK, ! for NAK, ? for ENQ, < for STX, > for ETX, $ for EOT, L for the offer of
/// a load, M for that of another, T for the request and the frame that a text "abc" becomes.
inline Octets Ligne(std::string_view Dessin) {
  Octets Tous;
  for (const char C : Dessin) {
    const std::size_t Rang = std::string_view("^!?<>$").find(C);
    if (C == 'T') {
      Tous += Ligne("?8<abc>2;");
    } else if (C == 'L' || C == 'M') {
      Tous += Ligne("^A<") + Octets(58, C);
    } else {
      Tous += Rang == std::string_view::npos ? C : "\x06\x15\x05\x02\x03\x04"[Rang];
    }
  }
  return Tous;
}

/// The clock starts shortly ahead of the wrap of the tick count.
inline constexpr std::uint64_t Début = 0xFFFFFFFFULL - 1500;

/// Frame processing and figures are a script, too.
struct Banc : testing::Test, SallesDuLien {
  Banc() {
    Système.Horloge = Début;
    std::filesystem::create_directories(Système.Dossier / "import");
    std::filesystem::create_directories(DossierErreurs(Système));
    Hôte->Dossier = (Système.Dossier / "import").string() + "/";
    Canal.Visible = true;
    Répondre("L");
  }
  /// What comes behind each writing from now on, writings divided by "|", pieces by blanks; "2500:" ahead of one says
  /// when, in milliseconds (5). A piece "=x" is held by the port, "." ends the plug-in, "~2500" is how long the writing
  /// itself lasts.
  void Répondre(const std::string& Dits) {
    Port->SurEcriture = [this, Flux = std::make_shared<std::istringstream>(Dits)](const Octets&) {
      std::string Tous;
      std::getline(*Flux, Tous, '|');
      std::istringstream Morceaux(Tous);
      for (std::string Morceau; Morceaux >> Morceau;) {
        if (Morceau[0] == '~') Système.Horloge += std::stoul(Morceau.substr(1));
        if (Morceau[0] == '~') continue;
        const std::size_t Heure = Morceau.find(':') + 1;
        Système.Après(milliseconds(Heure == 0 ? 5 : std::stoi(Morceau)),
                      [this, Dessin = Morceau.substr(Heure)] { Dire(Dessin); });
      }
    };
  }
  void Dire(const std::string& Dessin) {
    if (Dessin == ".") return Fin();
    if (Dessin[0] != '=') return Port->Client->Lecture(Ligne(Dessin));
    Port->Tenus = Ligne(Dessin.substr(1));
  }
  std::string Envoyer(const Mots& Dessins) {
    std::vector<Octets> Lignes;
    for (const auto& Dessin : Dessins) Lignes.push_back(Ligne(Dessin));
    return Transmission(État, UnÉchange, 8).TransmettreLignes(Lignes);
  }
  Octets Ecrit() const { return std::accumulate(Port->Ecrits.begin(), Port->Ecrits.end(), Octets()); }
  /// The import fails, and this comes while the operator is told.
  void Refuser(std::function<void()> Geste = [] {}) {
    Hôte->Importe = false;
    Fenêtres.PendantBoîte = std::move(Geste);
  }

  std::string TraiterDonnéesReçues(Octets& Tampon, Octets& Réponse, std::string& NoChargement) override {
    Tampon.RetirerTête(Tampon.Chercher(Ligne("<")) + 59);
    PendantTrame();
    if (!Accusé.EstVide()) Réponse = Accusé;
    NoChargement = Numéro;
    return Import;
  }
  void MettreAJourCumuls(std::string&) override { PendantCumuls(); }
  static std::ptrdiff_t Fichiers(const std::filesystem::path& Où) {
    if (!std::filesystem::is_directory(Où)) return 0;
    return std::distance(std::filesystem::directory_iterator(Où), std::filesystem::directory_iterator());
  }

  std::string Import = "12;Aligoté;", Numéro = "12";
  Octets Accusé = Ligne("^");
  std::function<void()> PendantTrame = [] {}, PendantCumuls = [] {};
  std::function<void()> AutreBase = [this] { État.BaseDeD = std::make_shared<FausseBaseDeD>(); };
  std::function<void()> Fin = [this] { Terminer(UnÉchange); };
  std::function<void()> Panne = [this] { État.Erreur.Noter(ErreurExécution("panne")); };
};

inline const std::string Muet = "Aucune réponse du RG80.";

}  // namespace Ombrey::Essais
