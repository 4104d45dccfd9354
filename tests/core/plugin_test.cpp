// The plug-in as the host drives it: start, button, menu, end, and ends at bad moments.
#include "core/plugin.h"

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "link/checksum.h"
#include "link/daily_error_file.h"
#include "tests/support/fake_host.h"
#include "tests/support/fake_platform.h"
#include "tests/support/test_folder.h"

namespace Ombrey::Essais {
namespace {

using std::chrono::milliseconds;

class Hôte : public ::testing::Test {
 protected:
  Hôte() {
    Plateforme.LeSystème.Dossier = Dossier.Chemin();
    Plateforme.Ini = {{"Port", "COM2:"}, {"Bauds", "9600"}, {"Parité", "N"}, {"BitsStop", "1"}, {"TailleMots", "8"}};
    Base->Etat->Dossier = Dossier.Chemin().string() + "/";
    LePlugIn->IPlugInTarvel_FixerFichierTarvelIni("tarvel.ini");
    LePlugIn->IPlugInTarvel_FixerBaseDeD(Base);
  }
  ~Hôte() override { LePlugIn->IPlugInTarvel_Terminer(); }

  std::string Initialiser() { return LePlugIn->IPlugInTarvel_Initialiser(Événements); }
  FausseVueSuivi& Vue() { return *Plateforme.LesFenêtres.VueSuivi; }
  /// Newest line of the message list without its time stamp.
  std::string Message(std::size_t Rang = 0) {
    return Vue().Lignes[0].size() > Rang ? Vue().Lignes[0][Rang].Texte.substr(sizeof "08:30:00 : " - 1) : "(none)";
  }
  void Laisser(int Durée) { Plateforme.LeSystème.Laisser(milliseconds(Durée)); }
  /// A terminal that answers every link test and has no load.
  void TerminalVide() {
    Plateforme.Port->SurEcriture = [this](const Octets& Texte) {
      if (Texte == Octets("\x05"
                          "8"))
        Plateforme.Port->Envoyer(
            Octets("\x06"
                   "8"));
      if (Texte == Octets("\x05"
                          "A"))
        Plateforme.Port->Envoyer(
            Octets("\x15"
                   "A"));
    };
  }

  DossierEssai Dossier;
  FaussePlateforme Plateforme;
  std::shared_ptr<FausseBaseDeD> Base = std::make_shared<FausseBaseDeD>();
  std::shared_ptr<FauxÉvénements> Événements = std::make_shared<FauxÉvénements>();
  std::shared_ptr<PlugIn> LePlugIn = PlugIn::Créer(Plateforme);
};

TEST_F(Hôte, StartSetsThePortInOrderAndFirstPollComesAfterTenSeconds) {
  EXPECT_EQ(Initialiser(), "");
  EXPECT_EQ(Message(), "Module initialisé.");
  EXPECT_EQ(Plateforme.NomPortDemandé, "COM2:");
  const std::vector<std::string> Ordre{"NomPort",   "Bauds",   "Parité",        "BitsStop",      "TailleMots",
                                       "FixerMode", "Activer", "FixerDossierB", "FixerDossierA", "Ouvrir"};
  EXPECT_EQ(Plateforme.Port->Appels, Ordre);
  EXPECT_EQ(Base->Activations, 1);
  EXPECT_EQ(Plateforme.Ini["Période interrogation"], "2000");
  EXPECT_FALSE(Vue().Visible);

  LePlugIn->IPlugInTarvel_Afficher();
  Laisser(9999);
  EXPECT_TRUE(Plateforme.Port->Ecrits.empty());
  Laisser(1);
  EXPECT_EQ(Plateforme.Port->Ecrits.size(), 1U);
}

struct Début {
  const char* Nom;
  std::function<void(FaussePlateforme&)> Préparer;
  const char* Résultat;  ///< nullptr: a raised failure
  const char* Message;
  std::int32_t Ouvertures;
  const char* Période;
};

class Démarrage : public Hôte, public ::testing::WithParamInterface<Début> {};

TEST_P(Démarrage, EndsAsTold) {
  const Début& Cas = GetParam();
  Cas.Préparer(Plateforme);
  if (Cas.Résultat) {
    EXPECT_EQ(Initialiser(), Cas.Résultat);
    EXPECT_EQ(Message(), Cas.Message);
  } else {
    try {
      Initialiser();
      ADD_FAILURE() << "no failure raised";
    } catch (const ErreurExécution& Échec) {
      EXPECT_STREQ(Échec.what(), Cas.Message);
    }
  }
  EXPECT_EQ(std::count(Plateforme.Port->Appels.begin(), Plateforme.Port->Appels.end(), "Ouvrir"), Cas.Ouvertures);
  EXPECT_EQ(Plateforme.Ini["Période interrogation"], Cas.Période);
  // Whatever went wrong, polling starts, and each poll says what is missing.
  LePlugIn->IPlugInTarvel_Afficher();
  Laisser(10000);
  EXPECT_TRUE(Message().starts_with("Vérification de nouveaux chargements sur le RG80. ")) << Message();
}

void SansPort(FaussePlateforme& P) { P.Ini.erase("Port"); }

INSTANTIATE_TEST_SUITE_P(
    Table, Démarrage,
    ::testing::Values(
        Début{"good", [](FaussePlateforme&) {}, "", "Module initialisé.", 1, "2000"},
        Début{"busy port", [](FaussePlateforme& P) { P.Port->Ouvrable = false; }, "", "Module initialisé.", 1, "2000"},
        Début{"no settings", SansPort, "Erreur de configuration du port de communication",
              "Echec d'initialisation : Erreur de configuration du port de communication", 0, "2000"},
        Début{"operator fills in the settings",
              [](FaussePlateforme& P) {
                SansPort(P);
                P.Port->SurConfigurer = [&P] { P.Ini["Port"] = "COM3:"; };
              },
              "", "Module initialisé.", 1, "2000"},
        Début{"unknown port", [](FaussePlateforme& P) { P.PortDisponible = false; },
              "Impossible d'initialiser le port de communication.\rport inconnu",
              "Echec d'initialisation : Impossible d'initialiser le port de communication.\rport inconnu", 0, "2000"},
        Début{"speed is no number", [](FaussePlateforme& P) { P.Ini["Bauds"] = "vite"; }, nullptr,
              "Incompatibilité de type : réglage Bauds = « vite »", 0, ""},
        Début{"speed too high", [](FaussePlateforme& P) { P.Ini["Bauds"] = "38400"; }, nullptr,
              "Dépassement de capacité : réglage Bauds = « 38400 »", 0, ""},
        Début{"period kept", [](FaussePlateforme& P) { P.Ini["Période interrogation"] = "10000"; }, "",
              "Module initialisé.", 1, "10000"},
        Début{"period no number", [](FaussePlateforme& P) { P.Ini["Période interrogation"] = "abc"; }, "",
              "Module initialisé.", 1, "2000"}));

TEST_F(Hôte, KeepsTheFirstNumbersThatItIsOffered) {
  std::int16_t Style = 7;
  std::string Texte;
  for (const auto& [Numéro, Pris] :
       {std::pair{0, false}, std::pair{3, true}, std::pair{4, false}, std::pair{3, true}}) {
    const auto Offert = static_cast<std::uint8_t>(Numéro);
    EXPECT_EQ(LePlugIn->IPlugInTarvel_AjouterBouton(Offert, Style, Texte), Pris) << Numéro;
    EXPECT_EQ(LePlugIn->IPlugInTarvel_AjouterMenu(Offert, Texte), Pris) << Numéro;
  }
  EXPECT_EQ(Texte, "&Charger les données vers le RG80");
  EXPECT_EQ(Style, 7);
  ASSERT_EQ(Plateforme.LesFenêtres.PressePapiers.size(), 2U);
}

TEST_F(Hôte, ToolbarButtonTestsTheLinkAndShowsTheWindow) {
  Initialiser();
  LePlugIn->IPlugInTarvel_Afficher();
  std::int16_t Style = 0;
  std::string Texte;
  LePlugIn->IPlugInTarvel_AjouterBouton(3, Style, Texte);
  LePlugIn->IPlugInTarvel_BoutonBarreOutilsAppelé(4, "");
  EXPECT_TRUE(Plateforme.Port->Ecrits.empty()) << "another plug-in's button";
  TerminalVide();
  Plateforme.LeSystème.Après(milliseconds(1000), [this] { Vue().Gestes.BtnMasquer_Click(); });
  LePlugIn->IPlugInTarvel_BoutonBarreOutilsAppelé(3, "");
  EXPECT_EQ(Message(0), "Connexion établie avec le RG80.");
  EXPECT_EQ(Message(1), "Communication établie avec le RG80.");
  EXPECT_FALSE(Vue().Visible);
}

TEST_F(Hôte, ButtonAndMenuDuringAPollWaitForItsEndAndRunOnce) {
  Initialiser();
  LePlugIn->IPlugInTarvel_Afficher();
  std::int16_t Style = 0;
  std::string Texte;
  LePlugIn->IPlugInTarvel_AjouterBouton(3, Style, Texte);
  LePlugIn->IPlugInTarvel_AjouterMenu(3, Texte);
  Plateforme.LeSystème.Après(milliseconds(10500), [this] {
    LePlugIn->IPlugInTarvel_MenuAppelé(3, "");
    LePlugIn->IPlugInTarvel_MenuAppelé(3, "");
    TerminalVide();
  });
  int Ouvertures = 0;
  Plateforme.LesFenêtres.SurVueChargntDonnées = [&](FausseVueChargntDonnées& Fenêtre) {
    ++Ouvertures;
    EXPECT_EQ(Plateforme.Port->Ecrits.size(), 2U) << "poll first, then the window's link test";
    // Polling is suspended: a poll asked for while the window is open comes behind its closing.
    Vue().Gestes.BtnInterroger_Click();
    Plateforme.LeSystème.Après(milliseconds(60000), [this, &Fenêtre] {
      EXPECT_EQ(Plateforme.Port->Ecrits.size(), 2U);
      Fenêtre.Gestes.BtnFermer_Click();
    });
  };
  Laisser(75000);
  EXPECT_EQ(Ouvertures, 1);
  EXPECT_GT(Plateforme.Port->Ecrits.size(), 3U) << "polling goes on";
}

TEST_F(Hôte, EndWhileTheTransferWindowIsOpenClosesIt) {
  Initialiser();
  LePlugIn->IPlugInTarvel_Afficher();
  std::string Texte;
  LePlugIn->IPlugInTarvel_AjouterMenu(3, Texte);
  TerminalVide();
  Plateforme.LeSystème.Après(milliseconds(5000), [this] { LePlugIn->IPlugInTarvel_Terminer(); });
  LePlugIn->IPlugInTarvel_MenuAppelé(3, "");
  EXPECT_EQ(Plateforme.LesFenêtres.VueChargntDonnées, nullptr);
  EXPECT_TRUE(Plateforme.LesFenêtres.Boîtes.empty());
}

TEST_F(Hôte, EndCleansFilesAndReleasesEverything) {
  Initialiser();
  LePlugIn->IPlugInTarvel_Afficher();
  const auto Deposer = [this](const std::filesystem::path& Nom) { std::ofstream(Dossier.Chemin() / Nom) << "\r\n"; };
  for (const char* Nom : {"RG80 a.txt", "RG80 b.txt", "autre.txt"}) Deposer(Nom);
  Laisser(10000);
  ASSERT_TRUE(std::filesystem::exists(FichierErreursDuJour(Plateforme.LeSystème)));
  for (int i = 0; i < 2; ++i) EXPECT_EQ(LePlugIn->IPlugInTarvel_Terminer(), "");
  EXPECT_FALSE(std::filesystem::exists(FichierErreursDuJour(Plateforme.LeSystème)));
  EXPECT_FALSE(std::filesystem::exists(Dossier.Chemin() / "RG80 b.txt"));
  EXPECT_TRUE(std::filesystem::exists(Dossier.Chemin() / "autre.txt"));
  EXPECT_EQ(Plateforme.Port->Appels.back(), "Fermer");
  EXPECT_EQ(Base.use_count(), 1);
  EXPECT_EQ(Événements.use_count(), 1);
  EXPECT_EQ(LePlugIn.use_count(), 1);
  EXPECT_EQ(Base->Etat->Écouteur, nullptr);
  LePlugIn->IPlugInTarvel_ChargementAjouté("1", "12");
  EXPECT_EQ(Plateforme.LesFenêtres.VueSuivi, nullptr) << "no window comes back";
  EXPECT_EQ(Plateforme.LesFenêtres.VuesSuiviCréées, 1);
}

TEST_F(Hôte, EndInAnyWaitEndsItAtOnceAndLetsThePlugInGo) {
  // In a poll, in a poll that had been put off, and in the shown window; the host drops its reference at once.
  enum class Attente { Interrogation, Reportée, Fenêtre };
  for (const Attente Dans : {Attente::Interrogation, Attente::Reportée, Attente::Fenêtre}) {
    auto Courant = PlugIn::Créer(Plateforme);
    Courant->IPlugInTarvel_FixerBaseDeD(Base);
    Courant->IPlugInTarvel_Initialiser(Événements);
    Courant->IPlugInTarvel_Afficher();
    std::int16_t Style = 0;
    std::string Texte;
    Courant->IPlugInTarvel_AjouterBouton(3, Style, Texte);
    const std::weak_ptr<PlugIn> Faible = Courant;
    auto& Système = Plateforme.LeSystème;
    const auto Fin = Système.Horloge + 15000;
    const auto Terminer = [&Courant] {
      Courant->IPlugInTarvel_Terminer();
      Courant.reset();
    };
    if (Dans == Attente::Fenêtre) {
      Système.Après(milliseconds(3000), Terminer);
      Courant.get()->IPlugInTarvel_BoutonBarreOutilsAppelé(3, "");
    } else {
      // The poll of ten seconds lasts two, and the one put off in it two more.
      if (Dans == Attente::Reportée) Système.Après(milliseconds(10500), [&] { Courant->Retard_FinTempo(""); });
      Système.Après(milliseconds(Dans == Attente::Reportée ? 13000 : 10100), Terminer);
    }
    Laisser(static_cast<int>(Fin - Système.Horloge));
    EXPECT_TRUE(Faible.expired()) << static_cast<int>(Dans);
    EXPECT_TRUE(Plateforme.LesFenêtres.Boîtes.empty());
  }
}

}  // namespace
}  // namespace Ombrey::Essais
