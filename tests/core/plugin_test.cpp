// The plug-in as the host drives it: start, button, menu, end, and ends at bad moments.
#include "core/plugin.h"

#include <gtest/gtest.h>

#include "contracts/line_protocol.h"
#include "link/daily_error_file.h"
#include "tests/transfer/small_cooperative.h"

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
  /// A terminal that answers every link test, takes every file and has no load.
  void TerminalVide() {
    Port->SurEcriture = [this](const Octets& Ecrit) {
      if (Ecrit.Taille() == 1) return;
      const Octets Code = Ecrit[0] == ENQ ? Ecrit.Extrait(1) : Octets();
      Port->Envoyer(Octets(1, Code == Octets("A") ? NAK : ACK) + Code);
    };
  }
  void Transférer(std::shared_ptr<IDatabase> Base) {
    Coopérative.Connexion->ExécuterTout("INSERT INTO Sélection VALUES ('05', 'Aligoté', 1)");
    Hôte->Base = std::move(Base);
    TerminalVide();
    Fenêtres.SurVueChargntDonnées = [](auto& Fenêtre) { Fenêtre.Gestes.BtnTransférer_Click(); };
    Menu();
  }

  DossierEssai Dossier;
  PetiteCoopérative Coopérative;
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
    Port->Ecrits.clear();
    Mots Venus;
    const auto Tenir = [&](const char* Quoi) {
      EXPECT_EQ(std::ranges::count(Port->Ecrits, Octets("\5A")), Venus.empty()) << "polled ahead of the " << Quoi;
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
      EXPECT_TRUE(Vue().Visible) << "the button comes ahead of the menu";
      Tenir("transfer window");
      Fenêtre.Gestes.BtnFermer_Click();
    };
    Dans(10002, [&] {
      for (int Fois = 0; Fois < 2; ++Fois) {
        LePlugIn->IPlugInTarvel_Configurer();
        Menu();
        Bouton();
      }
    });
    Dans(25000, [this] { Vue().Gestes.BtnMasquer_Click(); });
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
/// A call, and when the end comes in it: so many milliseconds later, in a box, when the base is
/// asked for, or where the row has it come.
constexpr int EnBoîte = -1, EnLecture = -2, OùElleLeDit = 0;
struct Fin {
  const char* Où;
  void (*Préparer)(Vie&, const Geste& Finir);
  int Quand;
  bool EstLancé = true;
};
/// A poll lasts from 10 to 12 seconds; one that is put off in it, two more.
// clang-format off
const Fin Fins[] = {
    {"start", [](Vie&, auto& Finir) { Finir(); }, OùElleLeDit, false},
    {"first question", [](Vie& H, auto& Finir) {
       H.Ini.erase("Port");
       H.EnQuestion(Finir);
       EXPECT_EQ(H.Initialiser(), ""); }, OùElleLeDit, false},
    {"question", [](Vie& H, auto& Finir) {
       H.EnQuestion(Finir);
       H.LePlugIn->IPlugInTarvel_Configurer(); }, OùElleLeDit},
    {"question put off", [](Vie& H, auto&) {
       H.EnQuestion([] { ADD_FAILURE() << "asked behind the end"; });
       H.Dans(10500, [&H] { H.LePlugIn->IPlugInTarvel_Configurer(); });
       H.Dans(19000, [Tenu = H.LePlugIn] {}); }, 10600},
    {"poll", [](auto&, auto&) {}, 10100},
    {"poll with another put off", [](Vie& H, auto&) { H.Dans(10500, [&H] { H.LePlugIn->Retard_FinTempo(""); }); }, 11000},
    {"poll that was put off", [](Vie& H, auto&) { H.Dans(10500, [&H] { H.LePlugIn->Retard_FinTempo(""); }); }, 13000},
    {"writing", [](Vie& H, auto& Finir) { H.Port->SurEcriture = [Finir](auto&) { Finir(); }; }, OùElleLeDit},
    {"box of a poll", [](Vie& H, auto&) { H.Port->EcritureRefusée = true; }, EnBoîte},
    {"box of a line", [](Vie& H, auto&) { H.Vue().Gestes.ListeMessages_DblClick(Onglet::Suivis); }, EnBoîte},
    {"figures", [](Vie& H, auto&) { H.Vue().Gestes.BtnForcerCumulsRG80_Click(); }, 1000},
    {"« RG80 ? »", [](Vie& H, auto&) { H.Vue().Gestes.BtnInterroger_Click(); }, 1000},
    {"box of « RG80 ? »", [](Vie& H, auto&) {
       H.Port->EcritureRefusée = true;
       H.Vue().Gestes.BtnInterroger_Click(); }, EnBoîte},
    {"box of a printout", [](Vie& H, auto&) {
       for (int Rang = 0; Rang < 60; ++Rang) dynamic_cast<FSuiviChargnt&>(H.Vue().Gestes).AjouterErreur("panne");
       H.Vue().Gestes.BtnImprimer_Click(); }, EnBoîte},
    {"event of a load that is in", [](Vie& H, auto& Finir) {
       H.Coopérative.Connexion->ExécuterTout("INSERT INTO MSysEtats VALUES ('Synchronisation des chargements', 0, 'NoChargement', ';')");
       H.Hôte->Base = H.Coopérative.Base;
       H.Événements->SurSignal = [Finir](Mot) { Finir(); };
       H.Port->SurEcriture = [&H](const Octets& Ecrit) {
         if (Ecrit == Octets("\5A")) H.Port->Envoyer(Octets("\006A\0020012190908083009150001230004560071000000050112521234007\003<;"));
       }; }, OùElleLeDit},
    {"ChargementAjouté", [](Vie& H, auto&) { H.LePlugIn->IPlugInTarvel_ChargementAjouté("1", "12"); }, EnLecture},
    {"list as its window comes up", [](Vie& H, auto&) { H.Vue().Gestes.Form_Activate(); }, EnLecture},
    {"link test", [](Vie& H, auto&) { H.Bouton(); }, 1000},
    {"monitoring window", [](Vie& H, auto&) { H.Bouton(); }, 3000},
    {"link test of the menu", [](Vie& H, auto&) { H.Menu(); }, 1000},
    {"box of the menu", [](Vie& H, auto&) { H.Menu(); }, EnBoîte},
    {"transfer window", [](Vie& H, auto&) {
       H.TerminalVide();
       H.Menu(); }, 3000},
    {"sending of a set", [](Vie& H, auto&) { H.Transférer(H.Coopérative.Base); }, 12},
    {"pause between two sets", [](Vie& H, auto&) { H.Transférer(H.Coopérative.Base); }, 500},
    {"box of a set", [](Vie& H, auto&) { H.Transférer(nullptr); }, EnBoîte},
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
  const Geste Finir = [&] {
    if (!LePlugIn) return;
    LePlugIn->IPlugInTarvel_Terminer();
    LePlugIn.reset();  // the host drops its reference at once
    Arrivée = Système.Horloge;
    Ecrits = Port->Ecrits.size();
    Fenêtres.Boîtes.clear();
  };
  if (GetParam().Quand == EnLecture) Hôte->PendantBase = Finir;
  if (GetParam().Quand == EnBoîte) Fenêtres.PendantBoîte = Finir;
  if (GetParam().Quand > 0) Dans(static_cast<std::uint64_t>(GetParam().Quand), Finir);
  GetParam().Préparer(*this, Finir);
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
