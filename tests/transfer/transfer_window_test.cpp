// The transfer window: order, pauses, ticks and titles, failures with Retry and Cancel, and the plug-in's end
// meanwhile.
#include "transfer/transfer_window.h"

#include <gtest/gtest.h>

#include "tests/support/fake_host.h"
#include "tests/support/fake_platform.h"
#include "tests/transfer/small_cooperative.h"

namespace Ombrey::Essais {
namespace {

using namespace std::chrono_literals;

class RetardNoté : public IRetard {
 public:
  std::vector<std::int32_t> Appels;  ///< delays; 0 for Arrêter
  void Démarrer(std::int32_t Délai, const std::string&) override { Appels.push_back(Délai); }
  void Arrêter() override { Appels.push_back(0); }
};

class ServicesTestés : public FauxServices {
 public:
  std::function<void()> SurTest = [] {};
  bool TesterConnexion() override {
    SurTest();
    return Connecté;
  }
};

class Transfert : public testing::Test {
 protected:
  FaussePlateforme Plateforme;
  FaussesFenêtres& Fenêtres = Plateforme.LesFenêtres;
  FauxSystème& Système = Plateforme.LeSystème;
  FauxCanal Canal;
  ÉtatPlugIn État{Plateforme, Canal};
  ServicesTestés Services;
  std::shared_ptr<RetardNoté> Retard = std::make_shared<RetardNoté>();
  PetiteCoopérative Coopérative;
  std::vector<std::pair<std::int32_t, std::uint64_t>> Envois;  ///< file number and time
  std::map<std::int32_t, std::string> Refus;                   ///< result by file number
  std::vector<std::string> Ordre = {"ChkAppelations", "ChkCoop", "ChkBadges", "ChkGroupnts", "ChkObserv"};

  Transfert() {
    const auto Hôte = std::make_shared<FausseBaseDeD>();
    Hôte->Base = Coopérative.Base;
    État.BaseDeD = Hôte;
    État.PériodeInterrogation = 1500;
    Coopérative.Connexion->ExécuterTout(
        "INSERT INTO Coopérateur VALUES('1','Dupré','');INSERT INTO Métayage VALUES('1','1','1',100,'5','7');"
        "INSERT INTO Sélection VALUES('10','Aligoté',1);INSERT INTO Qualité VALUES('1','Saine');");
    Services.SurTransmission = [this](std::int32_t NumFichier, std::vector<Octets>&) {
      Envois.emplace_back(NumFichier, Système.Horloge);
      EXPECT_TRUE(Fenêtres.Sablier);
      EXPECT_FALSE(Fenêtres.VueChargntDonnées->Active);
      return Refus[NumFichier];
    };
  }

  /// Opens the window, lets Geste act in it, and closes it.
  void Ouvrir(const std::function<void(FausseVueChargntDonnées&)>& Geste) {
    Fenêtres.SurVueChargntDonnées = [Geste](FausseVueChargntDonnées& Vue) {
      Geste(Vue);
      Vue.Gestes.BtnFermer_Click();
    };
    FChargntDonnées(État).Afficher(Services, Retard);
  }
  static void Transférer(FausseVueChargntDonnées& Vue) { Vue.Gestes.BtnTransférer_Click(); }

  std::vector<std::int32_t> Numéros() const {
    std::vector<std::int32_t> Tous;
    for (const auto& Envoi : Envois) Tous.push_back(Envoi.first);
    return Tous;
  }
  std::string Cochées() const {
    std::string Toutes;
    for (const auto& Case : Ordre) Toutes += Fenêtres.DernièresCases.at(Case) ? 'x' : '-';
    return Toutes;
  }
  void ExpectIdle(FausseVueChargntDonnées& Vue) const {
    EXPECT_TRUE(Vue.Active);
    EXPECT_FALSE(Fenêtres.Sablier);
    EXPECT_EQ(Vue.Titres.back(), "Transmission des données");
  }
};

TEST_F(Transfert, SendsTheSetsInOrderWithAPauseAheadOfEachButTheFirst) {
  Ouvrir([this](auto& Vue) {
    EXPECT_EQ(Vue.Titres.back(), "Chargement des données vers le RG80");
    Transférer(Vue);
    ExpectIdle(Vue);
    std::vector<std::pair<std::string, bool>> Graisses;
    for (const auto& Case : Ordre) {
      Graisses.emplace_back(Case, true);
      Graisses.emplace_back(Case, false);
    }
    EXPECT_EQ(Vue.Graisses, Graisses);
    Transférer(Vue);  // nothing is left to send
  });
  EXPECT_EQ(Numéros(), (std::vector<std::int32_t>{4, 1, 5, 2, 6}));
  EXPECT_EQ(Envois[0].second, 1000U);
  for (std::size_t Rang = 1; Rang < Envois.size(); ++Rang)
    EXPECT_EQ(Envois[Rang].second - Envois[Rang - 1].second, 1000U);
  EXPECT_EQ(Cochées(), "-----");
  EXPECT_TRUE(Fenêtres.Boîtes.empty());
  EXPECT_EQ(Retard->Appels, (std::vector<std::int32_t>{0, 1500}));
  EXPECT_EQ(Services.Transmis[2].second, std::vector<Octets>{Octets("0000050000010000011000000007")});
}

TEST_F(Transfert, PausesAcrossTheWrapOfTheTicksEvenForALoneSet) {
  Système.Horloge = 0xFFFFFFFFULL - 300;
  Système.Après(100ms, [] {});
  const auto Début = Système.Horloge;
  Ouvrir([this](auto& Vue) {
    for (std::size_t Rang = 0; Rang < 4; ++Rang) Vue.Cocher(Ordre[Rang], false);
    Transférer(Vue);
  });
  EXPECT_EQ(Envois, (std::vector<std::pair<std::int32_t, std::uint64_t>>{{6, Début + 1000}}));
}

TEST_F(Transfert, RetriesFromTheSetThatFailed) {
  Refus[1] = "Le RG80 n'est pas prêt (NACK).";
  Fenêtres.Réponses = {RéponseBoîte::Recommencer, RéponseBoîte::Recommencer};
  Fenêtres.PendantBoîte = [this](const BoîteMontrée& Boîte) {
    EXPECT_EQ(Boîte.Texte, "Coopérateurs\r\nLe RG80 n'est pas prêt (NACK).");
    EXPECT_EQ(Boîte.Titre, "Transmission des données");
    EXPECT_EQ(Boîte.Boutons, BoutonsBoîte::RecommencerAnnuler);
    if (Fenêtres.Boîtes.size() == 2) Refus.clear();
  };
  Ouvrir(Transférer);
  EXPECT_EQ(Numéros(), (std::vector<std::int32_t>{4, 1, 1, 1, 5, 2, 6}));
  EXPECT_EQ(Cochées(), "-----");
}

TEST_F(Transfert, KeepsTheTicksOnCancel) {
  Refus[5] = "Aucune réponse du RG80.";
  Ouvrir([this](auto& Vue) {
    Transférer(Vue);
    ExpectIdle(Vue);
    EXPECT_EQ(Vue.Graisses.back(), (std::pair<std::string, bool>{"ChkBadges", false}));
  });
  EXPECT_EQ(Cochées(), "--xxx");
  EXPECT_EQ(Fenêtres.Boîtes.size(), 1U);
}

TEST_F(Transfert, ShowsTheHeadOfARefusedFrame) {
  Refus[4] =
      "Erreur de données ou de checksum renvoyée par le RG80 \x02"
      "10é\x7F" +
      std::string(5000, '0') + "\x03";
  Ouvrir(Transférer);
  EXPECT_EQ(Fenêtres.Boîtes.at(0).Texte,
            "Appelations\r\nErreur de données ou de checksum renvoyée par le RG80 ␂10é␡" + std::string(75, '0'));
}

TEST_F(Transfert, TakesAnyFailureOfASetAsItsReason) {
  Coopérative.Connexion->ExécuterTout("ALTER TABLE Coopérateur RENAME TO Autre;");
  État.Erreur.Noter(ErreurExécution("d'un dialogue précédent"));
  Ouvrir([this](auto& Vue) {
    Transférer(Vue);
    ExpectIdle(Vue);
  });
  ASSERT_EQ(Fenêtres.Boîtes.size(), 1U);
  EXPECT_EQ(Fenêtres.Boîtes[0].Texte.find("Coopérateurs\r\n"), 0U);
  EXPECT_GT(Fenêtres.Boîtes[0].Texte.size(), std::string("Coopérateurs\r\n").size());
  EXPECT_FALSE(État.Erreur.EstPrésente());

  Services.SurTransmission = [](auto, auto&) -> std::string { throw ErreurExécution("Erreur d'écriture"); };
  Ouvrir(Transférer);
  EXPECT_EQ(Fenêtres.Boîtes.at(1).Texte, "Appelations\r\nErreur d'écriture");
  EXPECT_EQ(Cochées(), "xxxxx");
}

TEST_F(Transfert, OpensNoWindowWithoutAnAnswer) {
  Services.Connecté = false;
  FChargntDonnées(État).Afficher(Services, Retard);
  ASSERT_EQ(Fenêtres.Boîtes.size(), 1U);
  EXPECT_EQ(Fenêtres.Boîtes[0].Texte, "Il n'y a aucune communication avec le RG80");
  EXPECT_EQ(Fenêtres.Boîtes[0].Titre, "Transfert de données");
  Services.SurTest = [] { throw ErreurExécution("port"); };
  EXPECT_THROW(FChargntDonnées(État).Afficher(Services, Retard), ErreurExécution);
  EXPECT_EQ(Retard->Appels, (std::vector<std::int32_t>{0, 1500, 0, 1500}));
  EXPECT_THROW(FChargntDonnées(État).Afficher(Services, nullptr), ErreurExécution);
}

TEST_F(Transfert, EndsQuietlyWhereverThePlugInEnds) {
  enum class Lieu { Liaison, Attente, Pause, Envoi, Boîte };
  for (const Lieu Ici : {Lieu::Liaison, Lieu::Attente, Lieu::Pause, Lieu::Envoi, Lieu::Boîte}) {
    SCOPED_TRACE(static_cast<int>(Ici));
    État.Abandon = false;
    Envois.clear();
    Fenêtres.Boîtes.clear();
    Retard->Appels.clear();
    Fenêtres.Réponses = {RéponseBoîte::Recommencer};
    auto Fenêtre = std::make_shared<FChargntDonnées>(État);
    const auto Finir = [&] {
      État.Abandon = true;
      Fenêtre->Décharger();
    };
    Services.SurTest = [&] {
      if (Ici == Lieu::Liaison) Finir();
    };
    Services.SurTransmission = [&](std::int32_t NumFichier, auto&) -> std::string {
      Envois.emplace_back(NumFichier, Système.Horloge);
      if (Ici == Lieu::Pause) Système.Après(500ms, Finir);
      if (Ici == Lieu::Envoi) Finir();
      return Ici == Lieu::Envoi || Ici == Lieu::Boîte ? "Aucune réponse du RG80." : "";
    };
    Fenêtres.PendantBoîte = [&](const BoîteMontrée&) { Finir(); };
    Fenêtres.SurVueChargntDonnées = [&](FausseVueChargntDonnées& Vue) {
      if (Ici == Lieu::Attente) return Finir();
      Vue.Gestes.BtnTransférer_Click();
    };
    Fenêtre->Afficher(Services, Retard);
    const bool RienEnvoyé = Ici == Lieu::Liaison || Ici == Lieu::Attente;
    EXPECT_EQ(Envois.size(), RienEnvoyé ? 0U : 1U);
    EXPECT_EQ(Fenêtres.Boîtes.size(), Ici == Lieu::Boîte ? 1U : 0U);
    EXPECT_EQ(Retard->Appels, std::vector<std::int32_t>{0});
    EXPECT_FALSE(Fenêtres.Sablier);
    EXPECT_EQ(Fenêtres.VueChargntDonnées, nullptr);
  }
}

}  // namespace
}  // namespace Ombrey::Essais
