// The station on a console: command line, lines, boxes, commands and views, and the plug-in's life on it.
#include <fcntl.h>
#include <gtest/gtest.h>

#include <csignal>

#include "host/console_station.h"
#include "host/station.h"
#include "tests/console/typist.h"
#include "tests/support/fake_host.h"
#include "tests/support/test_folder.h"

namespace Ombrey::Essais {

using namespace std::chrono_literals;
using Arguments = std::vector<std::string>;

Tarvel::Options Choisies(const std::string& Dossier, Arguments Plus) {
  Plus.insert(Plus.end(), {"--base", Dossier + "/base.db", "--ini", Dossier + "/tarvel.ini"});
  return Tarvel::LireOptions(Plus);
}

const DessinContrôle Contrôles[] = {{"Label1", GenreContrôle::Libellé, "En attente (F6).", {}, 3},
                                    {"ChkCoop", GenreContrôle::CaseÀCocher, "Coopérateurs", {}, 0},
                                    {"ChkBadges", GenreContrôle::CaseÀCocher, "&Badges", {}, 1}};

/// A console with a station and windows that note on it, as "> ok", what the gestures bring.
class Séance : public Tarvel::IGestesStation, public IGestesSuivi, public IGestesChargntDonnées {
 public:
  explicit Séance(const std::string& Tapé, const Arguments& Plus = {})
      : T(Tapé), Édition(Choisies("", Plus), T.Console.Numéro(), T.Console.Numéro()) {
    Édition.Raccorder(*this);
  }
  std::string Jouer() {
    while (Édition.Boucle().Pomper(20ms)) continue;
    return T.Vu();
  }

  /// Takes a while before its window is up: the commands behind must not get ahead of it.
  void Bouton() override {
    while (Édition.Boucle().Pomper(20ms)) continue;
    Suivi->MontrerModale();
    Noter("retour");
  }
  void Menu() override { Transfert->MontrerModale(); }
  void Configurer() override {
    const auto Jeton = Édition.Boucle().Après(0ms, [this] { BtnForcerCumulsRG80_Click(); });
    Demander("Dehors", BoutonsBoîte::Ok);
  }
  void Finir() override {
    Noter("fin");
    Édition.Finir();
  }
  void BtnForcerCumulsRG80_Click() override { Demander("Dedans", BoutonsBoîte::RecommencerAnnuler); }
  void BtnInterroger_Click() override {
    Suivi->InsérerLigne(Onglet::Suivis, 0, "08:00 : Ancien", true);
    Suivi->InsérerLigne(Onglet::Suivis, 0, "08:01 : Lu", true);
    Suivi->InsérerLigne(Onglet::Erreurs, 0, "08:02 : Perdu\r\n\x1B[2J\x7F\xC2\x9Bm", false);
    Suivi->InsérerLigne(Onglet::Suivis, 0, "08:02 : Perdu", false);
    Suivi->RetirerLigne(Onglet::Suivis, 2);
    throw ErreurExécution("Variable objet non définie");
  }
  void BtnImprimer_Click() override {
    if (++Impressions == 4) return;  // put off
    const auto Imprimante = Édition.Fenêtres().OuvrirImprimante();
    for (int Ligne = 0; Ligne < 61; ++Ligne) Imprimante->Imprimer("x");
    Imprimante->TerminerDocument();
  }
  void BtnMasquer_Click() override { Suivi.reset(); }
  void Form_Activate() override {
    Relecture = Édition.Boucle().Après(0ms, [this] {
      if (Suivi) Suivi->RemplirGrille({"N°", "Propriétaire"}, {{"7", "Estève Anaïs"}, {"12", ""}});
    });
  }
  void BtnTransférer_Click() override {
    Transfert->Cocher("ChkBadges", false);
    for (const bool Active : {false, false, true, true}) Transfert->Activer(Active);
    for (int Fois = 0; Fois < 2; ++Fois) Transfert->FixerTitre(Transfert->EstCochée("ChkCoop") ? "Tout" : "Badges");
  }
  void BtnFermer_Click() override { Transfert->Cacher(); }
  void Onglets_Click() override {}
  void ListeMessages_DblClick(Onglet) override {}
  void Form_Resize() override {}
  bool Form_QueryUnload(bool) override { return false; }

  Terminal T;
  Tarvel::ÉditionConsole Édition;
  std::unique_ptr<IVueSuiviChargnt> Suivi = Édition.Fenêtres().CréerVueSuivi(*this, "Liste", {}, {});
  std::unique_ptr<IVueChargntDonnées> Transfert =
      Édition.Fenêtres().CréerVueChargntDonnées(*this, "Transfert", {}, Contrôles);

 private:
  int Impressions = 0;
  IBoucle::Jeton Relecture;
  void Noter(const std::string& Geste) const { SortieConsole(T.Console.Numéro()).Ligne("> " + Geste); }
  void Demander(const char* Titre, BoutonsBoîte Boutons) {
    constexpr const char* Réponses[] = {"ok", "recommencer", "annuler"};
    Noter(Réponses[static_cast<int>(Édition.Fenêtres().Boîte("Une\rligne", Titre, Boutons))]);
  }
};

struct CasSéance {
  std::string Tapé;
  std::string Vu;
  Arguments Plus = {};
};

const std::string Dedans = "boîte «Dedans» (Recommencer, Annuler) : Une ⏎ ligne\n";
const std::string Dehors = "boîte «Dehors» (OK) : Une ⏎ ligne\n";
const std::string Liste = "liste : 2\n  N° | Propriétaire\n  7  | Estève Anaïs\n  12 |\n";
const std::string Ouverte = "fenêtre « Transfert » ouverte\n  En attente (F6).\n  [x] Coopérateurs [x] Badges\n";

TEST(Console, ShowsAndDoesWhatIsTypedInItsTurn) {
  const DossierEssai Dossier;
  const std::string Pages = Dossier.Chemin() / "pages";
  // clang-format off
  const CasSéance Cas[] = {
      {"imprimer f\ninterroger\nmessages\nerreurs\nimprimer /dev/null\nimprimer /absent/f\nimprimer " + Pages + "\nimprimer f\nimprimer g\n",
       "console : la liste des erreurs est vide, rien n'est imprimé.\nmessage [x] 08:00 : Ancien\n"
       "message [x] 08:01 : Lu\nerreur 08:02 : Perdu ⏎ ␛[2J␡�m\nmessage [ ] 08:02 : Perdu\n"
       "console : Variable objet non définie\nmessages : 2\n  [x] 08:01 : Lu\n  [ ] 08:02 : Perdu\n"
       "erreurs : 1\n  08:02 : Perdu ⏎ ␛[2J␡�m\nconsole : /dev/null n'est pas un fichier ordinaire.\n"
       "console : /absent/f ne peut pas être écrit : introuvable.\nimprimé : " + Pages + "\n"
       "console : une impression attend déjà la fin du dialogue en cours.\n> fin\n"},
      {"masquer\nliste\nmessages\nerreurs\nimprimer f\nquotas\n",
       "liste : aucun\nmessages : aucun\nerreurs : aucune\nconsole : la liste des erreurs est vide, rien n'est imprimé.\n"
       "console : il n'y a pas encore de fenêtre des chargements.\n> fin\n"},
      {"liste\nfin\n", Liste + "> fin\n> fin\n"},
      {" \r\n  LISTE  \r\n\nd\xE9part\nbouton de trop\nimprimer\n" + std::string(10000, 'x') + "\nok",
       Liste + "console : commande inconnue : « départ ». « aide » donne la liste des commandes.\n"
       "console : la commande s'écrit « bouton ».\nconsole : la commande s'écrit « imprimer FICHIER ».\n"
       "console : ligne trop longue, ignorée.\nconsole : aucune boîte n'attend de réponse.\n> fin\n"},
      // Boxes are answered from the inside, by buttons that they have, and by themselves when nobody can.
      {"configurer\nok\nbouton\nRecommencer\nannuler\nOK\n",
       Dehors + Dedans + "console : la boîte n'a pas ce bouton.\nconsole : répondez d'abord à la boîte ouverte.\n"
       "> recommencer\nconsole : la boîte n'a pas ce bouton.\n> ok\n> fin\n"},
      {"quotas\nannuler\nconfigurer\n", Dedans + "> annuler\n" + Dehors + Dedans + "> annuler\n> ok\n", {"--duree", "60"}},
      {"configurer\nfin\nquotas\n", Dehors + Dedans + "> fin\n> annuler\n> ok\n" + Dedans + "> annuler\n> fin\n"},
      {"quotas\nconfigurer\n", Dedans + "> annuler\n" + Dehors + "> ok\n", {"--sans-operateur"}},
      // A command on its way to a window holds the next ones back, but not the end; so does the transfer window.
      {"bouton\nmasquer\nok\n", "fenêtre « Liste » ouverte\n> retour\n"
       "console : aucune boîte n'attend de réponse.\n> fin\n"},
      {"bouton\nfin\n", "> fin\nfenêtre « Liste » ouverte\n> retour\n> fin\n"},
      {"transferer\nmenu\ndécocher COOPERATEURS\ncocher rien\ninterroger\ntransferer\nfermer\n",
       "console : la fenêtre de transfert n'est pas ouverte ; « menu » l'ouvre.\n" + Ouverte +
       "  [ ] Coopérateurs [x] Badges\nconsole : il n'y a pas de case « rien ».\n"
       "console : fermez d'abord la fenêtre de transfert.\n  [ ] Coopérateurs [ ] Badges\ntitre : Badges\n"
       "fenêtre « Badges » fermée\n> fin\n"},
      {"menu\nfin\n", Ouverte + "> fin\nfenêtre « Transfert » fermée\n> fin\n"},
  };
  // clang-format on
  for (const CasSéance& C : Cas) EXPECT_EQ(Séance(C.Tapé, C.Plus).Jouer(), C.Vu);
  EXPECT_EQ(Contenu(Pages).find("x\n\fx\n"), 118);
}

TEST(QuestionsPort, AsksForThePortLineByLine) {
  const RéglagesPort Présents{"COM1:", "9600", "aucune", "1", ""};
  // clang-format off
  const std::pair<const char*, RéglagesPort> Cas[] = {
      {"\n\n\n\n\n8\n", {"COM1:", "9600", "aucune", "1", "8"}},
      {"2\n4800\npaire\n2\n7\n", {"/dev/ttyUSB0", "4800", "paire", "2", "7"}},
      {"/dev/faux\n\n\n\n8\nnon\n3\n\n\n\n\n", {"3", "9600", "aucune", "1", "8"}},
      {"/dev/faux\n\n\n\n8\nannuler\n", Présents}, {"2\n\n", Présents}};
  // clang-format on
  const ChoixPort Usuels{{"4800", "9600"}, {"aucune", "paire"}, {"1", "2"}, {"7", "8"}};
  const auto Ports = [] { return std::vector<PortTrouvé>{{"COM1:", "série"}, {"/dev/ttyUSB0", "adaptateur"}}; };
  for (const auto& [Tapé, Attendus] : Cas) {
    const Terminal T(Tapé);
    BouclePoll Boucle;
    SortieConsole Sortie(T.Console.Numéro());
    FenêtresConsole Fenêtres(Boucle, Sortie);
    CommandesConsole Commandes(Fenêtres);
    const EntréeConsole Entrée(Boucle, T.Console.Numéro(), [&](const auto& Ligne) {
      if (!Ligne) Fenêtres.FermerEntrée();
      return !Ligne || Commandes.Exécuter(*Ligne);
    });
    RéglagesPort R = Présents;
    const bool EstRetenu = QuestionsPort(Fenêtres, Commandes, Ports, Usuels).Demander(R, [](const auto& Voulus) {
      return Voulus.Port == "/dev/faux" ? "Le port est absent." : std::string();
    });
    EXPECT_EQ(R, Attendus) << Tapé;
    EXPECT_EQ(EstRetenu, Attendus != Présents) << Tapé;
  }
}

TEST(Console, NeitherWaitsForItsReaderNorEndsWithHimAndTellsHimHowManyLinesHeMissed) {
  int Bouts[2];
  ASSERT_EQ(pipe2(Bouts, O_CLOEXEC), 0);
  const Descripteur Écrivain(Bouts[1]);
  Descripteur Lecteur(Bouts[0]);
  ASSERT_EQ(fcntl(Bouts[1], F_SETPIPE_SZ, 16384), 16384);
  SortieConsole Sortie(Bouts[1]);
  for (int Fois = 0; Fois < 6; ++Fois) Sortie.Ligne(std::string(4000, 'x'));
  std::string Lus(32768, '\0');
  ASSERT_EQ(read(Bouts[0], Lus.data(), Lus.size()), 4 * 4001);
  Sortie.Ligne("de retour");
  Lus.resize(static_cast<std::size_t>(std::max<ssize_t>(read(Bouts[0], Lus.data(), Lus.size()), 0)));
  EXPECT_EQ(Lus, "console : lignes perdues : 2\nde retour\n");
  signal(SIGPIPE, SIG_IGN);
  Lecteur.Fermer();
  Sortie.Ligne("à personne");
}

/// Base, site and folder, or why they are refused.
std::string Lues(const Arguments& Donnés) {
  try {
    const Tarvel::Options O = Tarvel::LireOptions(Donnés);
    return O.Base + " " + O.CodeSite + " " + O.Dossier.string();
  } catch (const Tarvel::ErreurOptions& Erreur) {
    return Erreur.what();
  }
}

TEST(Options, AreReadFromTheLineAndTheSettingsFileOrRefusedWithAReason) {
  const DossierEssai Dossier;
  const std::string D = Dossier.Chemin(), Ini = D + "/i", Ici = std::filesystem::current_path();
  const std::string Tout = "[Tarvel]\nBase=sous/b\nCodeSite=3\nDossier=/d\n";
  const std::string Serveur = "[Tarvel]\nBase=postgresql://h/cave\nDossier=d\n";
  const std::tuple<std::string, Arguments, std::string> Cas[] = {
      // clang-format off
      {"", {}, "il manque --ini"},
      {"", {"--base", "b"}, "il manque --ini"},
      {"", {"--ini", Ini}, "il manque --base, ou la clé Base dans la section [Tarvel] de " + Ini},
      {"", {"--ini", "i", "--base"}, "--base veut une valeur : B"},
      {"", {"--base", "", "--ini", "i"}, "--base veut une valeur : B"},
      {"", {"--base", "b", "--base", "c", "--ini", "i"}, "--base est donné deux fois"},
      {"", {"--base", "b", "--ini", "i", "traînard"}, "argument inconnu : « traînard »"},
      {"", {"--creer-base", "b", "--console"}, "--console ne va pas avec --creer-base"},
      {"", {"--exemple"}, "il manque --creer-base"},
      {"", {"--base", "b", "--ini", "i", "--duree", "99999999999"},
       "--duree veut un nombre entier de secondes, d'un an au plus, et non « 99999999999 »"},
      {"", {"--creer-base", "b"}, Ici + "/b  " + Ici},
      {"", {"--ini", "absent", "--base", "b"}, Ici + "/b  " + Ici},
      {Tout, {"--ini", Ini}, D + "/sous/b 3 /d"},
      {Tout, {"--ini", Ini, "--base", "/c/b", "--site", "é", "--dossier", "e"}, "/c/b é " + Ici + "/e"},
      {"[Tarvel]\nBase=/c/b\n", {"--ini", Ini}, "/c/b  /c"},
      {Serveur, {"--ini", Ini}, "postgresql://h/cave  " + D + "/d"},
      {"", {"--ini", Ini, "--base", "postgresql://h:5432,g/cave?user=a@b"},
       "postgresql://h:5432,g/cave?user=a@b  " + D + "/ombrey"},
      {"[Tarvel]\nBase=postgresql://moi:secret@h/cave", {"--ini", Ini},
       "le mot de passe n'a pas sa place dans l'adresse de la base : il se met dans ~/.pgpass"},
      {"", {"--ini", "absent", "--base", "postgresql://u:a?b@h/db"},
       "le mot de passe n'a pas sa place dans l'adresse de la base : il se met dans ~/.pgpass"},
      {"", {"--base", "postgresql://h/cave", "--restaurer", "f"},
       "la base d'un serveur se sauvegarde par pg_dump, et se remet par pg_restore"},
      // clang-format on
  };
  setenv("XDG_DATA_HOME", D.c_str(), 1);
  for (const auto& [Réglages, Donnés, Attendu] : Cas) {
    std::ofstream(Ini) << Réglages;
    EXPECT_EQ(Lues(Donnés), Attendu);
  }
}

TEST(Options, TellWhatIsToBeDone) {
  const Tarvel::Options Voulues = Choisies("/d", {"--duree", "9", "--sans-operateur"});
  EXPECT_TRUE(Voulues.SansOpérateur);
  EXPECT_FALSE(Voulues.Console);
  EXPECT_EQ(Voulues.Durée, 9s);
  EXPECT_EQ(Tarvel::LireOptions(Arguments{"--help", "traînard"}).QueFaire, Tarvel::Tâche::Aide);
  EXPECT_EQ(Tarvel::LireOptions(Arguments{"--version"}).QueFaire, Tarvel::Tâche::Version);
}

std::string Réglages(const std::string& Port) {
  return "[PlugInOmbrey]\nTailleMots=8\nBitsStop=1\nParité=aucune\nBauds=9600\nPort=" + Port +
         "\nPériode interrogation=2000\n";
}
const std::string Absent = Réglages("/dev/absent"), Autre = Réglages("/dev/autre");
const std::string SansPort = "[PlugInOmbrey]\nPériode interrogation=2000\n";

/// The settings, what is typed and seen, the settings afterwards, more options.
struct CasVie {
  std::string Réglés, Tapé;
  Arguments Vus;
  std::string Gardés;
  Arguments Plus = {};
};

// clang-format off
const CasVie Vies[] = {
    {Absent, "menu\nok\nok\nbouton\nok\nmasquer\nfin\n",
     {"message [x] ", " : Module initialisé.\n", "commande « bouton » : Comm. au RG80\n",
      "commande « menu » : Charger les données vers le RG80\n", "fenêtre « Liste des chargements » masquée\n",
      "boîte «Transfert de données» (OK) : Il n'y a aucune communication avec le RG80"}, Absent},
    {Absent, "configurer\n/dev/autre\n\n\n\n\nfin\n\n\n\n\n\noui\n",
     {"réglages du port : inchangés.\n", " : les réglages du port sont ouverts (« annuler » les ferme).\nLe RG80 "}, Absent},
    {Absent, "configurer\n/dev/autre\n\n\n\n\noui\nbouton\nok\nmasquer\nfin\n",
     {"réglages du port : retenus.\nhôte : Les réglages du port ont changé : le greffon repart avec eux.\nmessage [x] ",
      "(OK) : Le port /dev/autre est absent"}, Autre},
    {"", "/dev/autre\n\n\n\n\noui\nconfigurer\nannuler\nfin\n", {"Module initialisé."}, Autre},
    {"", "annuler\nfin\n", {"Le greffon n'est pas initialisé. Erreur de configuration du port"}, SansPort},
    {"", "", {"Erreur de configuration du port"}, SansPort, {"--sans-operateur", "--duree", "0"}},
    {"", "", {"README.md » ne se charge pas"}, "", {"--greffon", SOURCE_DIR "/README.md"}},
    {"", "", {"est fait pour la version 1 de l'interface des greffons, et ce programme pour la 2"}, "",
     {"--greffon", BIN_DIR "/../tests/former_plugin.so"}},
};
// clang-format on

/// The real plug-in on a console, with a host in memory and no terminal on the line.
struct VieDeStation : testing::TestWithParam<CasVie> {};
INSTANTIATE_TEST_SUITE_P(Table, VieDeStation, testing::ValuesIn(Vies));

TEST_P(VieDeStation, GoesWithThePlugInAndLetsItGo) {
  const CasVie& C = GetParam();
  SCOPED_TRACE(C.Tapé);
  const DossierEssai Dossier;
  const std::string D = Dossier.Chemin();
  setenv("XDG_CONFIG_HOME", D.c_str(), 1);
  std::ofstream(D + "/tarvel.ini") << C.Réglés;
  Tarvel::Options Voulues = Choisies(D, C.Plus);
  if (Voulues.Greffon.empty()) Voulues.Greffon = BIN_DIR "/PlgInOmbrey.so";
  auto Base = std::make_shared<FausseBaseDeD>();
  Base->Dossier = D + "/";
  const Terminal T(C.Tapé);
  std::string Rappels;  // as they would come after five minutes
  const std::string Refus = RefusDe([&] {
    Tarvel::ÉditionConsole Édition(Voulues, T.Console.Numéro(), T.Console.Numéro());
    Édition.LAperçu().SurChangement([&] { Rappels += Édition.LAperçu().TexteRappel() + "\n"; });
    Tarvel::Station(Voulues, Édition).Exécuter([&](ISystème&) { return Base; });
  });
  EXPECT_EQ(Base.use_count(), 1) << "the plug-in hasn't let go";
  EXPECT_EQ(Base->Écouteur, nullptr);
  const std::string Vu = Refus + T.Vu() + Rappels;
  for (const auto& Attendu : C.Vus) EXPECT_NE(Vu.find(Attendu), std::string::npos) << Attendu << "\n---\n" << Vu;
  const auto Repart = [](const std::string& Texte) { return Texte.find("repart avec eux") != std::string::npos; };
  EXPECT_EQ(Repart(Vu), std::ranges::any_of(C.Vus, Repart));
  EXPECT_EQ(Contenu(D + "/tarvel.ini"), C.Gardés);
}

}  // namespace Ombrey::Essais
