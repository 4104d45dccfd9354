// The plug-in as the host drives it: start, button, menu, end, and ends at bad moments.
#include "core/plugin.h"

#include <gtest/gtest.h>

#include "contracts/line_protocol.h"
#include "link/daily_error_file.h"
#include "tests/support/fake_platform.h"
#include "tests/support/test_folder.h"

namespace Ombrey::Essais {

struct Vie : testing::Test, Monde {
  Vie() {
    Système.Dossier = Dossier.Chemin();
    Ini = {{"Port", "COM2:"}, {"Bauds", "9600"}, {"Parité", "N"}, {"BitsStop", "1"}, {"TailleMots", "8"}};
    Hôte->Dossier = Dossier.Chemin().string() + "/";
    LePlugIn->IPlugInTarvel_FixerBaseDeD(Hôte);
  }
  ~Vie() override {
    if (LePlugIn) LePlugIn->IPlugInTarvel_Terminer();
  }
  std::string Initialiser() { return LePlugIn->IPlugInTarvel_Initialiser(Événements); }
  void Lancer() {
    EXPECT_EQ(Initialiser(), "");
    LePlugIn->IPlugInTarvel_Afficher();
    LePlugIn->IPlugInTarvel_AjouterBouton(3, Style, Texte);
    LePlugIn->IPlugInTarvel_AjouterMenu(3, Texte);
  }
  FausseVueSuivi& Vue() { return *Fenêtres.VueSuivi; }
  /// Line of the message list, the newest first, without its time stamp.
  std::string Message(std::size_t Rang = 0) { return Vue().Lignes[Onglet::Suivis].at(Rang).first.substr(11); }
  void Dans(std::uint64_t Délai, std::function<void()> Faire) { Système.Après(milliseconds(Délai), std::move(Faire)); }
  void Bouton() { LePlugIn->IPlugInTarvel_BoutonBarreOutilsAppelé(3, ""); }
  void Menu() { LePlugIn->IPlugInTarvel_MenuAppelé(3, ""); }
  /// While the operator is asked for the port's settings, which he doesn't give.
  void EnQuestion(std::function<void()> Faire) {
    Port->SurConfigurer = [Faire = std::move(Faire)] {
      Faire();
      return false;
    };
  }
  void Laisser(int Durée) { Système.Laisser(milliseconds(Durée)); }
  /// A terminal that answers every link test and has no load.
  void TerminalVide() {
    Port->SurEcriture = [this](const Octets& Ecrit) {
      Port->Envoyer(Octets(1, Ecrit[1] == '8' ? ACK : NAK) + Ecrit.Extrait(1));
    };
  }

  DossierEssai Dossier;
  std::map<std::string, std::string>& Ini = Plateforme.Ini;
  std::shared_ptr<PlugIn> LePlugIn = PlugIn::Créer(Plateforme);
  std::int16_t Style = 7;
  std::string Texte;
};

TEST_F(Vie, StartSetsThePortInOrderAndFirstPollComesAfterTenSeconds) {
  Lancer();
  EXPECT_EQ(Port->Appels, (Mots{"NomPort COM2:", "Bauds 9600", "Parité N", "BitsStop 1", "TailleMots 8", "Mode 0",
                                "Activer 1", "DossierB c:\\temp", "DossierA c:\\temp", "Ouvrir ", "Activer 1"}));
  EXPECT_EQ(Hôte->Activations, 1);
  const auto Suivante = std::make_shared<FausseBaseDeD>();
  LePlugIn->IPlugInTarvel_FixerBaseDeD(Suivante);
  for (const auto& [Base, EstÉcoutée] : {std::pair(Hôte, false), {Suivante, true}}) {
    EXPECT_EQ(Base->Écouteur != nullptr, EstÉcoutée);
    EXPECT_EQ(Base->ÉcouteurSynchro != nullptr, EstÉcoutée);
  }
  EXPECT_FALSE(Vue().Visible);
  Laisser(9999);
  EXPECT_TRUE(Port->Ecrits.empty());
  Laisser(1);
  EXPECT_EQ(Port->Ecrits.size(), 1U);
  for (const bool Présente : {false, true}) {
    Port->Client->ÉtatLiaison(Présente ? "revenu" : "perdu", Présente);
    EXPECT_EQ(Message(), Présente ? "revenu" : "perdu");
    EXPECT_EQ(Vue().Lignes[Onglet::Suivis][0].second, Présente);
  }
}

TEST_F(Vie, StartsWithWhatTheOperatorFillsInThoughThePortIsBusyOrSaysWhatIsMissing) {
  Ini.erase("Port");
  Ini["Période interrogation"] = "abc";
  EXPECT_EQ(Initialiser(), "Erreur de configuration du port de communication");
  EXPECT_EQ(Message(), "Echec d'initialisation : Erreur de configuration du port de communication");
  EXPECT_EQ(Ini["Période interrogation"], "2000");
  LePlugIn->IPlugInTarvel_Afficher();
  Laisser(10000);
  EXPECT_EQ(Port->Ecrits.size(), 0U) << "the port that was only asked for its settings is no port";
  Port->SurConfigurer = [this] { return !(Ini["Port"] = "COM3:").empty(); };
  Port->Ouvrable = false;
  EXPECT_EQ(Initialiser(), "");
  EXPECT_EQ(Message(), "Module initialisé.");
  EXPECT_EQ(std::count(Port->Appels.begin(), Port->Appels.end(), "Ouvrir "), 1);
}

TEST_F(Vie, KeepsTheFirstNumbersThatItIsOffered) {
  LePlugIn->IPlugInTarvel_BoutonBarreOutilsAppelé(0, "");  // not yet offered
  LePlugIn->IPlugInTarvel_MenuAppelé(0, "");
  for (const auto& [Offert, Pris] : {std::pair{0, false}, {3, true}, {4, false}, {3, true}}) {
    const auto Numéro = static_cast<std::uint8_t>(Offert);
    EXPECT_EQ(LePlugIn->IPlugInTarvel_AjouterBouton(Numéro, Style, Texte), Pris) << Offert;
    EXPECT_EQ(LePlugIn->IPlugInTarvel_AjouterMenu(Numéro, Texte), Pris) << Offert;
  }
  LePlugIn->IPlugInTarvel_BoutonBarreOutilsAppelé(4, "");  // another plug-in's
  LePlugIn->IPlugInTarvel_MenuAppelé(4, "");
  EXPECT_EQ(Port->Ecrits.size() + Fenêtres.Dites().size(), 0U);
  EXPECT_EQ(Texte, "&Charger les données vers le RG80");
  EXPECT_EQ(Style, 7);
  ASSERT_EQ(Fenêtres.PressePapiers.size(), 2U);
  EXPECT_EQ(Fenêtres.PressePapiers[0].Pixels[0], 0U) << "nothing is drawn in its corner";
}

TEST_F(Vie, WhatWaitsForTheLineRunsOnceAheadOfTheNextPollWhateverThePeriod) {
  for (const char* Période : {"0", "-5", "0,4", "1", "2000"}) {
    SCOPED_TRACE(Période);
    Ini["Période interrogation"] = Période;
    LePlugIn->IPlugInTarvel_Terminer();
    LePlugIn = PlugIn::Créer(Plateforme);
    LePlugIn->IPlugInTarvel_FixerBaseDeD(Hôte);
    Lancer();
    TerminalVide();
    Mots Venus;
    const auto Tenir = [&](const char* Quoi) {
      Port->Ecrits.clear();
      Vue().Gestes.BtnInterroger_Click();
      Laisser(5000);
      EXPECT_TRUE(Port->Ecrits.empty()) << "a poll in the midst of the " << Quoi;
      Venus.emplace_back(Quoi);
    };
    Port->SurConfigurer = [&] {
      Tenir("question");
      return true;
    };
    Fenêtres.SurVueChargntDonnées = [&](FausseVueChargntDonnées& Fenêtre) {
      Menu();
      Tenir("transfer window");
      Fenêtre.Gestes.BtnFermer_Click();
    };
    Dans(10002, [&] {
      for (int Fois = 0; Fois < 2; ++Fois) {
        LePlugIn->IPlugInTarvel_Configurer();
        Menu();
      }
    });
    Laisser(30000);
    EXPECT_EQ(Venus, (Mots{"transfer window", "question"}));
    EXPECT_GT(Port->Ecrits.size(), 2U) << "polling goes on";
  }
  Dans(1000, [this] { Vue().Gestes.BtnMasquer_Click(); });
  Bouton();
  EXPECT_EQ(Message(), "Connexion établie avec le RG80.");
}

TEST_F(Vie, LeavesTheListenerThatHasTakenItsPlace) {
  const auto Autre = PlugIn::Créer(Plateforme);
  Autre->IPlugInTarvel_FixerBaseDeD(Hôte);
  const std::pair Siens(Hôte->Écouteur, Hôte->ÉcouteurSynchro);
  LePlugIn->IPlugInTarvel_Terminer();
  EXPECT_EQ(std::pair(Hôte->Écouteur, Hôte->ÉcouteurSynchro), Siens);
  Autre->IPlugInTarvel_Terminer();
  EXPECT_FALSE(Hôte->Écouteur);
  EXPECT_FALSE(Hôte->ÉcouteurSynchro);
}

TEST_F(Vie, EndCleansFilesAndReleasesEverything) {
  Lancer();
  const std::map<std::string, bool> Fichiers = {{"RG80 a.txt", false}, {"RG80 b.txt", false}, {"autre.txt", true}};
  for (const auto& [Nom, Reste] : Fichiers) std::ofstream(Dossier.Chemin() / Nom) << "\r\n";
  std::filesystem::create_symlink("RG80 boucle", Dossier.Chemin() / "RG80 boucle");
  Laisser(10000);
  ASSERT_TRUE(std::filesystem::exists(FichierErreursDuJour(Système)));
  for (int i = 0; i < 2; ++i) EXPECT_EQ(LePlugIn->IPlugInTarvel_Terminer(), "");
  EXPECT_FALSE(std::filesystem::exists(FichierErreursDuJour(Système)));
  for (const auto& [Nom, Reste] : Fichiers) EXPECT_EQ(std::filesystem::exists(Dossier.Chemin() / Nom), Reste) << Nom;
  EXPECT_EQ(Port->Appels.back(), "Fermer ");
  EXPECT_EQ(Hôte.use_count() + Événements.use_count() + LePlugIn.use_count(), 3);
  EXPECT_EQ(Hôte->Écouteur, nullptr);
  LePlugIn->IPlugInTarvel_ChargementAjouté("1", "12");
  EXPECT_EQ(Fenêtres.VueSuivi, nullptr) << "no window comes back";
}

using Geste = std::function<void()>;
/// A call in which the end comes, and how it is brought about there.
struct Fin {
  const char* Où;
  void (*Préparer)(Vie&, const Geste& Finir);
  bool EstLancé = true;
};
/// A poll lasts from 10 to 12 seconds; one that is put off in it, two more.
// clang-format off
const Fin Fins[] = {
    {"start", [](Vie&, const Geste& Finir) { Finir(); }, false},
    {"first question", [](Vie& H, const Geste& Finir) {
       H.Ini.erase("Port");
       H.EnQuestion(Finir);
       EXPECT_EQ(H.Initialiser(), ""); }, false},
    {"question", [](Vie& H, const Geste& Finir) {
       H.EnQuestion(Finir);
       H.LePlugIn->IPlugInTarvel_Configurer(); }},
    {"question put off", [](Vie& H, const Geste& Finir) {
       H.EnQuestion([] { ADD_FAILURE() << "asked behind the end"; });
       H.Dans(10500, [&H] { H.LePlugIn->IPlugInTarvel_Configurer(); });
       H.Dans(10600, Finir);
       H.Dans(19000, [Tenu = H.LePlugIn] {}); }},
    {"poll", [](Vie& H, const Geste& Finir) { H.Dans(10100, Finir); }},
    {"poll with another put off", [](Vie& H, const Geste& Finir) {
       H.Dans(10500, [&H] { H.LePlugIn->Retard_FinTempo(""); });
       H.Dans(11000, Finir); }},
    {"poll that was put off", [](Vie& H, const Geste& Finir) {
       H.Dans(10500, [&H] { H.LePlugIn->Retard_FinTempo(""); });
       H.Dans(13000, Finir); }},
    {"writing", [](Vie& H, const Geste& Finir) { H.Port->SurEcriture = [Finir](auto&) { Finir(); }; }},
    {"box of a poll", [](Vie& H, const Geste& Finir) {
       H.Port->EcritureRefusée = true;
       H.Fenêtres.PendantBoîte = Finir; }},
    {"box of a line", [](Vie& H, const Geste& Finir) {
       H.Fenêtres.PendantBoîte = Finir;
       H.Vue().Gestes.ListeMessages_DblClick(Onglet::Suivis); }},
    {"figures", [](Vie& H, const Geste& Finir) {
       H.Dans(1000, Finir);
       H.Vue().Gestes.BtnForcerCumulsRG80_Click(); }},
    {"link test", [](Vie& H, const Geste& Finir) {
       H.Dans(1000, Finir);
       H.Bouton(); }},
    {"monitoring window", [](Vie& H, const Geste& Finir) {
       H.Dans(3000, Finir);
       H.Bouton(); }},
    {"link test of the menu", [](Vie& H, const Geste& Finir) {
       H.Dans(1000, Finir);
       H.Menu(); }},
    {"box of the menu", [](Vie& H, const Geste& Finir) {
       H.Fenêtres.PendantBoîte = Finir;
       H.Menu(); }},
    {"transfer window", [](Vie& H, const Geste& Finir) {
       H.TerminalVide();
       H.Dans(3000, Finir);
       H.Menu(); }},
    {"transfer", [](Vie& H, const Geste& Finir) {
       H.TerminalVide();
       H.Fenêtres.SurVueChargntDonnées = [&](auto& Fenêtre) {
         H.Dans(100, Finir);
         Fenêtre.Gestes.BtnTransférer_Click();
       };
       H.Menu(); }},
};
// clang-format on
struct Finit : Vie, testing::WithParamInterface<Fin> {};
INSTANTIATE_TEST_SUITE_P(Table, Finit, testing::ValuesIn(Fins));

TEST_P(Finit, AtOnceAndForGoodInTheMidstOfACall) {
  SCOPED_TRACE(GetParam().Où);
  if (GetParam().EstLancé) Lancer();
  const std::weak_ptr<PlugIn> Faible = LePlugIn;
  std::uint64_t Arrivée = 0;
  std::size_t Ecrits = 0;
  GetParam().Préparer(*this, [&] {
    if (!LePlugIn) return;
    LePlugIn->IPlugInTarvel_Terminer();
    LePlugIn.reset();  // the host drops its reference at once
    Arrivée = Système.Horloge;
    Ecrits = Port->Ecrits.size();
    Fenêtres.Boîtes.clear();
  });
  if (Arrivée != 0) {
    EXPECT_EQ(Système.Horloge, Arrivée) << "the call goes on behind the end";
  }
  Laisser(20000);
  EXPECT_NE(Arrivée, 0U) << "the end never came";
  EXPECT_TRUE(Faible.expired());
  EXPECT_EQ(Fenêtres.VueSuivi, nullptr);
  EXPECT_EQ(Fenêtres.VueChargntDonnées, nullptr);
  EXPECT_EQ(Port->Ecrits.size(), Ecrits);
  EXPECT_EQ(Fenêtres.Dites(), Mots());
  EXPECT_FALSE(Fenêtres.Sablier);
}

}  // namespace Ombrey::Essais
