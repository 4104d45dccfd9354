// The console: lines, boxes, commands and views, through pipes.
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <sstream>

#include "common/failures.h"
#include "host/console_station.h"
#include "platform/console/monitoring_view.h"
#include "platform/console/transfer_view.h"
#include "platform/console/visible_text.h"
#include "tests/console/console_fixture.h"

namespace Ombrey::Essais {
namespace {

using Textes = std::vector<std::string>;

/// The station's and the windows' gestures, recorded; one of them can be made to do something.
class Gestes : public Tarvel::IGestesStation, public IGestesSuivi, public IGestesChargntDonnées {
 public:
  std::vector<std::string> Faits;
  std::function<void()> SurBouton;
  std::function<void()> SurInterroger;
  std::function<void()> SurImprimer;
  std::function<void()> SurTransférer;
  std::function<void()> SurFin;
  std::function<void()> SurMasquer;
  std::function<void()> SurFermer;

  void Bouton() override { Faire("bouton", SurBouton); }
  void Menu() override { Faire("menu", {}); }
  void Configurer() override { Faire("configurer", {}); }
  void Finir() override { Faire("fin", SurFin); }
  void BtnInterroger_Click() override { Faire("interroger", SurInterroger); }
  void BtnForcerCumulsRG80_Click() override { Faire("quotas", {}); }
  void BtnImprimer_Click() override { Faire("imprimer", SurImprimer); }
  void BtnMasquer_Click() override { Faire("masquer", SurMasquer); }
  void Onglets_Click() override {}
  void ListeMessages_DblClick(Onglet) override {}
  void Form_Activate() override { Faire("activer", {}); }
  void Form_Resize() override {}
  bool Form_QueryUnload(bool) override { return false; }
  void BtnTransférer_Click() override { Faire("transferer", SurTransférer); }
  void BtnFermer_Click() override { Faire("fermer", SurFermer); }

 private:
  void Faire(const char* Nom, const std::function<void()>& Suite) {
    Faits.emplace_back(Nom);
    if (Suite) Suite();
  }
};

const DessinContrôle CasesDEssai[] = {
    {"Label1", GenreContrôle::Libellé, "En attente (F6).", {}, 3},
    {"ChkCoop", GenreContrôle::CaseÀCocher, "Coopérateurs", {}, 0},
    {"ChkBadges", GenreContrôle::CaseÀCocher, "Badges", {}, 1},
};

class Console : public testing::Test {
 protected:
  Console() { signal(SIGPIPE, SIG_IGN); }

  void Ouvrir(const Tarvel::Options& Choisies = {}) {
    Édition =
        std::make_unique<Tarvel::ÉditionConsole>(Choisies, Écran.Clavier.Sortie.Numéro(), Écran.Écran.Entrée.Numéro());
    Édition->Raccorder(G);
    Suivi = Fenêtres().CréerVueSuivi(G, "Liste", {}, {});
    G.SurMasquer = [this] { Suivi->Cacher(); };
  }
  void OuvrirTransfert() {
    Transfert = Fenêtres().CréerVueChargntDonnées(G, "Transfert", {}, CasesDEssai);
    G.SurFermer = [this] { Transfert->Cacher(); };
  }
  IFenêtres& Fenêtres() { return Édition->Fenêtres(); }
  void Pomper() { Épuiser(Édition->Boucle()); }
  void Taper(std::string_view Texte) {
    Écran.Taper(Texte);
    Pomper();
  }

  Gestes G;
  Terminal Écran;
  std::unique_ptr<Tarvel::ÉditionConsole> Édition;
  std::unique_ptr<IVueSuiviChargnt> Suivi;
  std::unique_ptr<IVueChargntDonnées> Transfert;
};

TEST(TexteVisible, ShowsEveryControlCharacterOnOneLine) {
  const std::pair<std::string, std::string> Cas[] = {
      {"Pesée n° 3", "Pesée n° 3"},
      {"a\r\nb\rc\nd", "a ⏎ b ⏎ c ⏎ d"},
      {std::string("\x02\x06\x1B[2J\x7F", 7), "␂␆␛[2J␡"},
      {"x\xC2\x9Bm", "x�m"},
      {"caf\xE9", "café"},
  };
  for (const auto& [Texte, Attendu] : Cas) EXPECT_EQ(TexteVisible(Texte), Attendu);
  EXPECT_EQ(FormeComparable("DÉCOCHER Coopérateurs"), "decocher cooperateurs");
}

TEST_F(Console, PrintsTheLinesOfTheLists) {
  Ouvrir();
  Suivi->InsérerLigne(Onglet::Suivis, 0, "08:00:00 : Module initialisé.", true);
  Suivi->InsérerLigne(Onglet::Erreurs, 0, "08:00:01 : Perdu\r\nvraiment", false);
  Suivi->InsérerLigne(Onglet::Suivis, 0, "08:00:01 : Perdu", false);
  Suivi->RetirerLigne(Onglet::Suivis, 1);
  Taper("messages\nerreurs\n");
  EXPECT_EQ(Écran.Lignes(), (Textes{"message [x] 08:00:00 : Module initialisé.", "erreur 08:00:01 : Perdu ⏎ vraiment",
                                    "message [ ] 08:00:01 : Perdu", "messages : 1", "  [ ] 08:00:01 : Perdu",
                                    "erreurs : 1", "  08:00:01 : Perdu ⏎ vraiment"}));
}

TEST_F(Console, ListsTheLoadsInColumnsAfterReadingThemAgain) {
  Ouvrir();
  Suivi->RemplirGrille({"N°Pesée", "Propriétaire"}, {{"7", "Estève Anaïs"}, {"12", ""}});
  Taper("liste\n");
  EXPECT_EQ(G.Faits, (Textes{"activer"}));
  EXPECT_EQ(Écran.Lignes(),
            (Textes{"liste : 2", "  N°Pesée | Propriétaire", "  7       | Estève Anaïs", "  12      |"}));
}

struct CasBoîte {
  BoutonsBoîte Boutons;
  const char* Tapé;
  RéponseBoîte Attendue;
};

TEST_F(Console, ABoxWaitsForOneOfItsButtons) {
  const CasBoîte Cas[] = {
      {BoutonsBoîte::Ok, "recommencer\nOK\n", RéponseBoîte::Ok},
      {BoutonsBoîte::RecommencerAnnuler, "ok\nbouton\nRecommencer\n", RéponseBoîte::Recommencer},
      {BoutonsBoîte::RecommencerAnnuler, "annuler\n", RéponseBoîte::Annuler},
  };
  Ouvrir();
  for (const CasBoîte& C : Cas) {
    Écran.Taper(C.Tapé);
    EXPECT_EQ(Fenêtres().Boîte("Une\rligne", "Titre", C.Boutons), C.Attendue);
  }
  EXPECT_TRUE(Écran.AVu("boîte «Titre» (Recommencer, Annuler) : Une ⏎ ligne"));
  EXPECT_TRUE(G.Faits.empty()) << "a button behind an open box must not work";
}

TEST_F(Console, TheInnermostBoxIsAnsweredFirst) {
  Ouvrir();
  RéponseBoîte Dedans{};
  const auto Jeton = Édition->Boucle().Après(std::chrono::milliseconds(0), [&] {
    Écran.Taper("recommencer\nok\n");
    Dedans = Fenêtres().Boîte("dedans", "T", BoutonsBoîte::RecommencerAnnuler);
  });
  EXPECT_EQ(Fenêtres().Boîte("dehors", "T", BoutonsBoîte::Ok), RéponseBoîte::Ok);
  EXPECT_EQ(Dedans, RéponseBoîte::Recommencer);
}

TEST_F(Console, ABoxAnswersItselfWhenNobodyCan) {
  const std::function<void()> Raisons[] = {
      [this] { Écran.Clavier.Entrée.Fermer(); },  // end of the input
      [this] { Écran.Taper("fin\n"); },           // end of the station
  };
  for (const auto& Raison : Raisons) {
    Ouvrir();
    G.SurFin = [this] { Édition->Finir(); };
    Raison();
    EXPECT_EQ(Fenêtres().Boîte("?", "T", BoutonsBoîte::RecommencerAnnuler), RéponseBoîte::Annuler);
    EXPECT_EQ(Fenêtres().Boîte("?", "T", BoutonsBoîte::Ok), RéponseBoîte::Ok);
    Suivi.reset();
    Écran = Terminal();
  }
  Tarvel::Options Seul;
  Seul.SansOpérateur = true;
  Ouvrir(Seul);
  EXPECT_EQ(Fenêtres().Boîte("?", "T", BoutonsBoîte::RecommencerAnnuler), RéponseBoîte::Annuler);
}

TEST_F(Console, APreparedListOfCommandsRunsOneAfterTheOther) {
  Ouvrir();
  // The button takes a while before its window is up: what follows must not get ahead of it.
  G.SurBouton = [this] {
    Pomper();
    Suivi->MontrerModale();
  };
  Taper("bouton\nmasquer\nquotas\n");
  EXPECT_EQ(G.Faits, (Textes{"bouton", "activer", "masquer", "quotas"}));
  EXPECT_FALSE(Suivi->EstVisible());
}

TEST_F(Console, TheEndPassesABusyCommand) {
  Ouvrir();
  bool Fini = false;
  G.SurFin = [&] { Fini = true; };
  G.SurInterroger = [&] {
    for (int Pompe = 0; Pompe < 100 && !Fini; ++Pompe) Édition->Boucle().Pomper(std::chrono::milliseconds(20));
  };
  Taper("interroger\nfin\n");
  EXPECT_EQ(G.Faits, (Textes{"interroger", "fin"}));
}

TEST_F(Console, ShowingAWindowEndsWithTheWindowOrTheStation) {
  Ouvrir();
  const auto Détruire = Édition->Boucle().Après(std::chrono::milliseconds(0), [this] { Suivi.reset(); });
  Suivi->MontrerModale();
  EXPECT_EQ(Écran.Lignes(), (Textes{"fenêtre «Liste» ouverte"}));
  OuvrirTransfert();
  const auto Finir = Édition->Boucle().Après(std::chrono::milliseconds(0), [this] { Édition->Finir(); });
  Transfert->MontrerModale();
}

TEST_F(Console, WorksTheTransferWindow) {
  Ouvrir();
  Taper("transferer\n");
  EXPECT_TRUE(Écran.AVu("la fenêtre de transfert n'est pas ouverte"));
  OuvrirTransfert();
  Écran.Taper("décocher COOPERATEURS\ncocher rien\ninterroger\ntransferer\nfermer\n");
  G.SurTransférer = [this] {
    EXPECT_FALSE(Transfert->EstCochée("ChkCoop"));
    EXPECT_TRUE(Transfert->EstCochée("ChkBadges"));
    Transfert->FixerTitre("Envoi");
    Transfert->FixerTitre("Envoi");
  };
  Transfert->MontrerModale();
  EXPECT_EQ(G.Faits, (Textes{"transferer", "fermer"})) << "the polling stands still while the window is open";
  EXPECT_EQ(std::count(Écran.Lignes().begin(), Écran.Lignes().end(), "titre : Envoi"), 1);
  EXPECT_TRUE(Écran.AVu("il n'y a pas de case «rien»"));
}

TEST_F(Console, TheTransferWindowClosesWhenTheInputEnds) {
  Tarvel::Options Service;
  Service.Durée = std::chrono::seconds(60);
  Ouvrir(Service);
  OuvrirTransfert();
  Écran.Clavier.Entrée.Fermer();
  Transfert->MontrerModale();
  EXPECT_TRUE(G.Faits.empty()) << "with a time limit the end of the input isn't the station's end";
}

TEST_F(Console, ReadsWhateverIsTyped) {
  Ouvrir();
  Taper("bou");
  Taper("ton\r\n  QUOTAS  \n\nd\xE9part\nbouton de trop\nimprimer\n" + std::string(10000, 'x') + "\nmenu");
  Écran.Clavier.Entrée.Fermer();
  Pomper();
  EXPECT_EQ(G.Faits, (Textes{"bouton", "quotas", "menu", "fin"}));
  EXPECT_EQ(Écran.Lignes(),
            (Textes{"console : commande inconnue : «départ». «aide» donne la liste des commandes.",
                    "console : la commande s'écrit «bouton».", "console : la commande s'écrit «imprimer FICHIER».",
                    "console : ligne trop longue, ignorée."}));
}

TEST_F(Console, AFailingCommandIsALineAndNothingMore) {
  Ouvrir();
  G.SurInterroger = [] { throw ErreurExécution("Variable objet non définie"); };
  Taper("interroger\nquotas\n");
  EXPECT_EQ(Écran.Lignes(), (Textes{"console : Variable objet non définie"}));
  EXPECT_EQ(G.Faits, (Textes{"interroger", "quotas"}));
}

TEST_F(Console, OutlivesItsReader) {
  Ouvrir();
  Écran.Écran.Sortie.Fermer();
  Taper("aide\nquotas\n");
  EXPECT_EQ(G.Faits, (Textes{"quotas"}));
}

TEST_F(Console, PrintsPagesIntoAFileWholeOrNotAtAll) {
  Ouvrir();
  const std::filesystem::path Dossier = testing::TempDir() + "console_" + std::to_string(getpid());
  std::filesystem::create_directory(Dossier);
  bool Terminer = true;
  G.SurImprimer = [&] {
    const auto Imprimante = Fenêtres().OuvrirImprimante();
    for (int Ligne = 0; Ligne < 61; ++Ligne) Imprimante->Imprimer("ligne");
    EXPECT_EQ(Imprimante->PositionVerticale(), 1) << "a full page turns by itself";
    if (Terminer) Imprimante->TerminerDocument();
  };
  const std::string Fichier = (Dossier / "erreurs.txt").string();
  Taper("imprimer " + Fichier + "\n");
  EXPECT_TRUE(G.Faits.empty()) << "nothing to print";
  Suivi->InsérerLigne(Onglet::Erreurs, 0, "x", false);
  Terminer = false;
  Taper("imprimer " + Fichier + "\n");
  EXPECT_FALSE(std::filesystem::exists(Fichier));
  Terminer = true;
  Taper("imprimer " + Fichier + "\nimprimer " + (Dossier / "absent" / "f").string() + "\nimprimer " + Dossier.string() +
        "\n");
  std::ostringstream Contenu;
  Contenu << std::ifstream(Fichier).rdbuf();
  EXPECT_EQ(Contenu.str().size(), 61 * std::string("ligne\n").size() + 1);
  EXPECT_EQ(Contenu.str().find('\f'), 60 * std::string("ligne\n").size());
  EXPECT_TRUE(Écran.AVu("imprimé : " + Fichier));
  EXPECT_TRUE(Écran.AVu("absent/f ne peut pas être écrit"));
  EXPECT_TRUE(Écran.AVu(Dossier.string() + " n'est pas un fichier ordinaire"));
  EXPECT_THROW((void)Fenêtres().OuvrirImprimante(), ErreurExécution) << "one document for one command";
  std::filesystem::remove_all(Dossier);
}

struct CasQuestions {
  const char* Tapé;
  bool Retenu;
  RéglagesPort Attendus;
};

TEST(QuestionsPort, AsksForThePortLineByLine) {
  const RéglagesPort Présents{"COM1:", "9600", "aucune", "1", ""};
  const CasQuestions Cas[] = {
      {"\n\n\n\n8\n", true, {"COM1:", "9600", "aucune", "1", "8"}},
      {"2\n4800\npaire\n2\n\n7\n", true, {"/dev/ttyUSB0", "4800", "paire", "2", "7"}},
      {"/dev/faux\n\n\n\n8\nnon\n2\n\n\n\n\n", true, {"/dev/ttyUSB0", "9600", "aucune", "1", "8"}},
      {"/dev/faux\n\n\n\n8\noui\n", true, {"/dev/faux", "9600", "aucune", "1", "8"}},
      {"/dev/faux\n\n\n\n8\nannuler\n", false, Présents},
      {"2\nAnnuler\n", false, Présents},
      {"2\n\n", false, Présents},  // and there the input ends
  };
  const ChoixPort Usuels{{"4800", "9600"}, {"aucune", "paire"}, {"1", "2"}, {"7", "8"}};
  const auto Ports = [] { return std::vector<PortTrouvé>{{"COM1:", "série"}, {"/dev/ttyUSB0", "adaptateur"}}; };
  const auto Essai = [](const RéglagesPort& R) {
    return R.Port == "/dev/faux" ? "Le port est absent." : std::string();
  };
  for (const CasQuestions& C : Cas) {
    Terminal Opérateur;
    BouclePoll Boucle;
    SortieConsole Sortie(Opérateur.Écran.Entrée.Numéro());
    FenêtresConsole LesFenêtres(Boucle, Sortie);
    CommandesConsole Commandes(LesFenêtres);
    const EntréeConsole Entrée(Boucle, Opérateur.Clavier.Sortie.Numéro(), [&](const auto& Ligne) {
      if (!Ligne) LesFenêtres.FermerEntrée();
      return !Ligne || Commandes.Exécuter(*Ligne);
    });
    QuestionsPort Questions(LesFenêtres, Commandes, Ports, Usuels);
    Opérateur.Taper(C.Tapé);
    Opérateur.Clavier.Entrée.Fermer();
    RéglagesPort Réglages = Présents;
    EXPECT_EQ(Questions.Demander(Réglages, Essai), C.Retenu) << C.Tapé;
    EXPECT_EQ(Réglages, C.Attendus) << C.Tapé;
  }
}

}  // namespace
}  // namespace Ombrey::Essais
