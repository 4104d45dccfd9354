// The link on the machine in memory, with a scripted terminal: the waiting primitive (codes, priorities, time-outs,
// what stays in the buffer), the transmission, the collection dialogue and the poll around it (every way out, what the
// terminal gets, which files stay).
#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

#include "base/files.h"
#include "base/kept_files.h"
#include "base/regional_forms.h"
#include "link/checksum.h"
#include "link/daily_error_file.h"
#include "link/polling.h"
#include "link/transmission.h"
#include "tests/support/fake_host.h"
#include "tests/support/fake_platform.h"
#include "tests/support/test_folder.h"

namespace Ombrey::Essais {
namespace {

/// The bytes of a text in which ^ stands for ACK, ! for NAK, ? for ENQ, < for STX, > for ETX, $ for EOT.
Octets Ligne(std::string Dessin) {
  for (char& Signe : Dessin) {
    const std::size_t Rang = std::string_view("^!?<>$").find(Signe);
    if (Rang != std::string_view::npos) Signe = "\x06\x15\x05\x02\x03\x04"[Rang];
  }
  return Octets(Dessin);
}

struct Liaison : testing::Test {
  Liaison() {
    UnÉchange.FixerPort(Port);
    Port->Client =
        Plateforme.CréerClientPortComm([this](const Octets& T) { UnÉchange.EventPortComRG80_Lecture(T); }, {});
  }
  /// What the terminal answers to each writing from now on, in the drawing of the line's bytes; "" for silence.
  void Répondre(const Mots& Dessins) {
    Port->Ecrits.clear();
    Port->SurEcriture = [this, Dessins](const Octets&) {
      const std::size_t Rang = Port->Ecrits.size() - 1;
      if (Rang < Dessins.size()) Port->Envoyer(Ligne(Dessins[Rang]));
    };
  }
  void Terminer() { Achever(État, UnÉchange, *Port); }
  CodeÉchange Obtenir(const Attente& Demande) { return UnÉchange.AttendreRéponse(Demande, Reçu); }
  std::string Envoyer(const Mots& Dessins) {
    std::vector<Octets> Lignes;
    for (const auto& Dessin : Dessins) Lignes.push_back(Ligne(Dessin));
    return Transmission(État, UnÉchange, 8).TransmettreLignes(Lignes);
  }
  /// Everything written since the last Répondre.
  Octets Ecrit() const { return std::accumulate(Port->Ecrits.begin(), Port->Ecrits.end(), Octets()); }

  FaussePlateforme Plateforme;
  FauxSystème& Système = Plateforme.LeSystème;
  FaussesFenêtres& Fenêtres = Plateforme.LesFenêtres;
  std::shared_ptr<PortScripté> Port = Plateforme.Port;
  FauxCanal Canal;
  ÉtatPartagé État{Plateforme, Canal};
  Échange UnÉchange{État};
  Octets Reçu;
};

using enum CodeÉchange;

TEST(CheckSum, WorkedByHand) {
  // clang-format off
  const std::pair<Octets, Octets> Table[] = {
      {Ligne("abc"), Octets("26")}, {Ligne("<abc>"), Octets("2;")}, {Octets(), Octets("00")},
      {Octets("\xFF"), Octets("??")}, {Octets("\x80\x80"), Octets("00")},
      {Ligne("<0012190908083009150001230004560071000000050112521234007>"), Octets("<;")}};
  // clang-format on
  for (const auto& [Texte, Deux] : Table) {
    EXPECT_EQ(CalculerCheckSum(Texte), Texte + Deux);
    EXPECT_FALSE(VérifierCheckSum(Texte, Deux.Extrait(0, 1), Octets("@")));
  }
}

Attente Chargement(std::size_t LongMin, bool Resynchroniser = true) {
  return {.LongMin = LongMin, .Motif3 = Ligne("^A"), .Motif4 = Ligne("!A"), .Resynchroniser = Resynchroniser};
}
Attente Trame(bool Consommer = true, const char* Texte = "") {
  return {.Texte = Ligne(Texte), .LongMin = 1, .Motif1 = Ligne("^"), .Motif2 = Ligne("!"), .Consommer = Consommer};
}

struct Reconnaissance {
  const char *Nom, *Arrive;  ///< here and below in the drawing of the line's bytes
  Attente Demande;
  CodeÉchange Code;
  const char *Réponse, *Reste;  ///< "-" for an untouched answer
};
// clang-format off
const Reconnaissance Reconnaissances[] = {
    {"noise ahead", "zz^A", Chargement(2), Motif3, "^A", "^A"},
    {"yes before no, whatever their order", "!A^A", Chargement(2), Motif3, "^A", "^A"},
    {"too short", "^A<0012", Chargement(59), Silence, "-", "^A<0012"},
    {"dropped noise stays dropped", "zz^A<0012", Chargement(7), Motif3, "^A<0012", "^A<0012"},
    {"too short once the noise is gone", "zz^A", Chargement(4), Silence, "-", "^A"},
    {"other code", "^B", Chargement(2), Silence, "-", "^B"},
    {"not told to look anywhere", "^A", Chargement(2, false), Silence, "-", "^A"},
    {"frame refused, more behind", "!x", Trame(), Motif2, "!x", "x"},
    {"stray character ahead", "x^", Trame(), Silence, "-", "x^"},
    {"not consumed", "^", Trame(false), Motif1, "^", "^"}};
// clang-format on

TEST_F(Liaison, GivesCodeAndLeavesTheRest) {
  for (const auto& Cas : Reconnaissances) {
    Reçu = Ligne("-");
    UnÉchange.Tampon().Vider();
    const std::size_t Lus = Cas.Demande.LongMin > 1;  // by a read, and the rest by the event: each counts once
    Port->ParLire = Ligne(Cas.Arrive).Extrait(0, Lus);
    Port->Envoyer(Ligne(Cas.Arrive).Extrait(Lus));
    EXPECT_EQ(Obtenir(Cas.Demande), Cas.Code) << Cas.Nom;
    EXPECT_EQ(Reçu, Ligne(Cas.Réponse)) << Cas.Nom;
    EXPECT_EQ(UnÉchange.Tampon(), Ligne(Cas.Reste)) << Cas.Nom;
  }
}

TEST_F(Liaison, AnswerCountsUpToTheTimeOutAndNotBeyondAlsoAcrossTheWrapOfTheTickCount) {
  for (const auto& [Quand, Code] : {std::pair{2000U, Motif1}, {2001U, Silence}}) {
    Système.Horloge = 0xFFFFFFFFULL - 500;
    Port->Envoyer(Ligne("^"), milliseconds(Quand));
    EXPECT_EQ(Obtenir(Trame()), Code);
    EXPECT_EQ(Système.Horloge, 0xFFFFFFFFULL - 500 + Quand);
  }
  EXPECT_LT(Système.Pompages, 8) << "an idle wait is one pump, not a busy loop";
}

TEST_F(Liaison, LinkTest) {
  const std::pair<const char*, bool> Table[] = {{"^8", true}, {"!8", true}, {"", false}, {"^1", false}, {"x^8", false}};
  for (const auto& [Dessin, Répond] : Table) {
    Canal.Messages.clear();
    UnÉchange.Tampon() = Ligne("old");
    Répondre({Dessin});
    EXPECT_EQ(UnÉchange.TesterConnexion(), Répond) << Dessin;
    EXPECT_EQ(Canal.Messages.size(), Répond ? 1U : 0U);
    EXPECT_EQ(Ecrit(), Ligne("?8"));
  }
  EXPECT_FALSE(Fenêtres.Sablier);
}

// clang-format off
#define T "?8<abc>2;"
#define N "^8", "!", ""
#define MUET "Aucune réponse du RG80."
#define PORT "Erreur du port de communication au RG80."
#define REFUS "Erreur de données ou de checksum renvoyée par le RG80 \x02" "abc\x03"
// clang-format on
struct Envoi {
  const char* Nom;
  Mots Lignes, Réponses;         ///< answers to each writing in turn, "" for silence
  const char *Résultat, *Ecrit;  ///< and all that went on the line
};
// clang-format off
const Envoi Envois[] = {
    {"nothing to send", {"", ""}, {}, "", ""},
    {"framed already", {"<abc>"}, {"^8", "^"}, "", T "$"},
    {"silence to the request", {"abc"}, {""}, MUET, "?8"},
    {"not ready", {"abc", "abc"}, {"!8"}, "Le RG80 n'est pas prêt (NACK).", "?8"},
    {"stray character ahead of the answer", {"abc"}, {"^8", "x^"}, MUET, T},
    {"four refusals, then taken", {"abc"}, {N, N, N, N, "^8", "^"}, "", T "$" T "$" T "$" T "$" T "$"},
    {"fifth refusal", {"abc"}, {N, N, N, N, "^8", "!"}, REFUS, T "$" T "$" T "$" T "$" T},
    {"refusals count over all lines", {"abc", "abc"}, {N, N, N, "^8", "^", "", N, "^8", "!"}, REFUS,
     T "$" T "$" T "$" T "$" T "$" T}};
// clang-format on

TEST_F(Liaison, TransmissionEndsAsTold) {
  for (const Envoi& Cas : Envois) {
    Répondre(Cas.Réponses);
    EXPECT_EQ(Envoyer(Cas.Lignes), Cas.Résultat) << Cas.Nom;
    EXPECT_EQ(Ecrit(), Ligne(Cas.Ecrit)) << Cas.Nom;
  }
}

TEST_F(Liaison, PendingFailureOfACalleeIsReported) {
  État.Erreur.Noter(ErreurExécution("panne"));
  EXPECT_EQ(Envoyer({""}), "Transmission de l'exportation vers le RG80 : panne");
}

const std::string Trame12 = "<" + std::string(58, 'x');

/// Frame processing and figures are a script.
struct Banc : Liaison, ITraitementChargement {
  Banc() {
    Système.Dossier = Dossier.Chemin();
    std::filesystem::create_directories(Système.Dossier / "import");
    std::filesystem::create_directories(DossierErreurs(Système));
    Etat.Dossier = (Système.Dossier / "import").string() + "/";
    État.EventPlugin = Événements;
    État.BaseDeD = Base;
    État.EtatBdD = Base->Etat;
    UneInterrogation.Commencer();
    Canal.Visible = true;
    UnÉchange.Tampon() = Ligne("!A");  // an answer that came too late
    Répondre({"^A" + Trame12});
  }
  std::string TraiterDonnéesReçues(Octets& Tampon, Octets& Réponse, std::string& NoChargement) override {
    Tampon.RetirerTête(Tampon.Chercher(Ligne("<")) + Trame12.size());
    PendantTrame();
    if (!Accusé.EstVide()) Réponse = Accusé;
    NoChargement = Numéro;
    return Import;
  }
  void MettreAJourCumuls(std::string&) override { PendantCumuls(); }
  std::ptrdiff_t Fichiers(const std::filesystem::path& Où) const {
    if (!std::filesystem::is_directory(Où)) return 0;
    return std::distance(std::filesystem::directory_iterator(Où), std::filesystem::directory_iterator());
  }

  DossierEssai Dossier;
  std::shared_ptr<FausseBaseDeD> Base = std::make_shared<FausseBaseDeD>();
  FauxEtatBdD& Etat = *Base->Etat;
  std::string Import = "12;Aligoté;", Numéro = "12";
  Octets Accusé = Ligne("^");
  std::function<void()> PendantTrame = [] {}, PendantCumuls = [] {};
  std::shared_ptr<FauxÉvénements> Événements = std::make_shared<FauxÉvénements>();
  Interrogation UneInterrogation{État, UnÉchange, *this};
};

struct Issue {
  const char* Nom;
  void (*Préparer)(Banc&);
  const char* Ecrit;
  std::string Résultat;  ///< words of the poll's line
  Mots Boîtes;
  std::ptrdiff_t Gardés, Importés;  ///< files kept for the operator, calls of the import engine
};
const std::string Titre = "RG80 Ombrey | ", Echec = "Echec de lecture de données du RG80 : ";
const std::string Bloqué = "Impossible d'écrire le fichier /nonexistent/RG80 import.txt : introuvable - ";
const std::string Muet = Echec + MUET, Rien = "Aucun chargement importé";
const std::string Refus = Titre + "Erreur d'importation des données issues du RG80.";
const std::string Changée = "La base de données a été changée pendant le dialogue.";
void AutreBase(Banc& d) { d.État.BaseDeD = std::make_shared<FausseBaseDeD>(); }
// clang-format off
const Issue Issues[] = {
    {"imported", [](Banc&) {}, "?A^", "", {}, 0, 1},
    {"no load", [](Banc& d) { d.Répondre({"!A"}); }, "?A", "Aucun chargement à récupérer.", {}, 0, 0},
    {"silence", [](Banc& d) { d.Répondre({}); }, "?A", Muet, {}, 0, 0},
    {"frame too late", [](Banc& d) { d.Répondre({"^A" + std::string(56, 'x')}); }, "?A", Muet, {}, 0, 0},
    {"port", [](Banc& d) {
       d.Port->EcritureRefusée = true;
       d.Port->Erreur = "absent";
     }, "", Echec + PORT, {"Erreur du port | absent"}, 0, 0},
    {"no state object", [](Banc& d) { d.État.EtatBdD.reset(); }, "", "", {}, 0, 0},
    {"refused frame", [](Banc& d) { d.Accusé = Ligne("!"); d.Import = d.Numéro = ""; }, "?A!", Rien, {}, 0, 0},
    {"good frame, unknown holding: no answer, and none for what a killed station left behind", [](Banc& d) {
       d.Import = d.Numéro = "";
       EcrireFichier(d.Etat.Dossier + "RG80 import.txt", "12;Aligoté;");
     }, "?A", Rien, {}, 0, 0},
    {"load number 0000: no answer", [](Banc& d) { d.Numéro = ""; }, "?A", Rien, {}, 0, 0},
    {"engine gives up", [](Banc& d) { d.Etat.Importe = false; }, "?A!", "", {Refus}, 1, 1},
    {"engine leaves an error text", [](Banc& d) { d.Etat.Erreur = "Masse : « x »"; }, "?A!", "", {}, 1, 1},
    {"engine raises", [](Banc& d) { d.Etat.Lève = true; }, "?A", "Erreur la base ne répond pas - ",
     {Titre + "LireDonnéesDeRG80 : " + Echec + "la base ne répond pas - Etape 4 - 12"}, 0, 1},
    {"import file can't be written", [](Banc& d) { d.Etat.Dossier = "/nonexistent/"; }, "?A",
     "Erreur " + Bloqué, {Titre + "LireDonnéesDeRG80 : " + Echec + Bloqué + "Etape 2 - 12"}, 0, 0},
    {"failure left behind by the figures",
     [](Banc& d) { d.PendantCumuls = [&d] { d.État.Erreur.Noter(ErreurExécution("panne")); }; }, "?A^",
     "", {"Erreur etape 206 | panne", "Erreur etape 207 | panne"}, 0, 1},
    {"box that stands open for a while: the line and the file bear one name", [](Banc& d) {
       d.Etat.Importe = false;
       d.Fenêtres.PendantBoîte = [&d] { ++d.Système.Mur.Minute; };
     }, "?A!", "", {Refus}, 1, 1},
    {"another base in a wait", [](Banc& d) { d.Système.Après(milliseconds(2), [&d] { AutreBase(d); }); }, "?A", Changée,
     {}, 0, 0},
    {"another base in the frame", [](Banc& d) { d.PendantTrame = [&d] { AutreBase(d); }; }, "?A", Changée, {}, 0, 0},
    {"another base in the import", [](Banc& d) { d.Etat.PendantImport = [&d] { AutreBase(d); }; }, "?A", Changée, {}, 0, 1},
    {"another base in the box", [](Banc& d) {
       d.Etat.Importe = false;
       d.Fenêtres.PendantBoîte = [&d] { AutreBase(d); };
     }, "?A", Changée, {Refus}, 1, 1},
    {"another base behind the ACK", [](Banc& d) {
       d.Port->SurEcriture = [&d, Avant = d.Port->SurEcriture](const Octets& Ecrit) {
         Avant(Ecrit);
         if (Ecrit == Ligne("^")) AutreBase(d);
       };
     }, "?A^", Changée, {}, 0, 1},
    {"end in a wait", [](Banc& d) { d.Système.Après(milliseconds(2), [&d] { d.Terminer(); }); }, "?A", Muet, {}, 0, 0},
    {"end in a writing", [](Banc& d) { d.Port->SurEcriture = [&d](auto&) { d.Terminer(); }; }, "?A", Muet, {}, 0, 0},
    {"end in the frame", [](Banc& d) { d.PendantTrame = [&d] { d.Terminer(); }; }, "?A", "", {}, 0, 0},
    {"end in the box", [](Banc& d) {
       d.Etat.Importe = false;
       d.Fenêtres.PendantBoîte = [&d] { d.Terminer(); };
     }, "?A", "", {Refus}, 1, 1},
    {"end in the figures", [](Banc& d) {
       d.PendantCumuls = [&d] { d.État.Erreur.Noter(ErreurExécution("panne")), d.Terminer(); };
     }, "?A^", "Erreur panne - ", {}, 0, 1}};
// clang-format on

struct IssueDuDialogue : Banc, testing::WithParamInterface<Issue> {};
INSTANTIATE_TEST_SUITE_P(Table, IssueDuDialogue, testing::ValuesIn(Issues));

TEST_P(IssueDuDialogue, LeavesLineFilesAndListsAsTold) {
  const Issue& Cas = GetParam();
  Cas.Préparer(*this);
  UneInterrogation.Retard_FinTempo("");
  EXPECT_EQ(Canal.Messages.back(),
            std::pair("Vérification de nouveaux chargements sur le RG80. " + Cas.Résultat, Cas.Résultat.empty()));
  EXPECT_EQ(Ecrit(), Ligne(Cas.Ecrit)) << Cas.Nom;
  EXPECT_EQ(Fenêtres.Dites(), Cas.Boîtes);
  EXPECT_FALSE(État.Erreur.EstPrésente());
  EXPECT_EQ(Fichiers(Système.DossierImportsConservés()), Cas.Gardés);
  EXPECT_EQ(Fichiers(Système.Dossier / "import"), 0) << "the import file is never left behind";
  EXPECT_EQ(Etat.Importés, Mots(static_cast<std::size_t>(Cas.Importés), "12;Aligot\xE9;\r\n"));
  EXPECT_EQ(État.DernierNoChargement, Cas.Importés ? "12" : "");
  const bool Signalé = Ecrit() == Ligne("?A^") && !État.Abandon && Cas.Résultat != Changée;
  EXPECT_EQ(Événements->Signalés, Mots(Signalé, "ChargementAjouté:12"));
  EXPECT_EQ(Base->Actualisations, Signalé);
  EXPECT_TRUE(!État.Abandon || Système.Horloge < 1100) << "the end waits for nothing";
  std::ifstream Flux(Système.Dossier / "données/RG80 Err Import 0922.txt", std::ios::binary);
  const std::string Noté(std::istreambuf_iterator<char>(Flux), {});
  const std::string Voir = Système.Dossier.string() + "/imports-refusés/ImportRG80 22 09 08 30 00.txt\r\n";
  EXPECT_EQ(Noté.size() < 3 ? "" : Noté, Cas.Gardés ? "\r\n" + TexteHeure(Système.Mur) +
                                                          " : TableImporter = TRUE : " + Etat.Erreur + " - voir " + Voir
                                                    : "");
  EXPECT_GE(Canal.Rafraîchissements, Base->Actualisations);
}

using Dits = std::vector<std::pair<int, std::string>>;  ///< milliseconds behind a writing, and what comes then

/// One run of dialogues: P is a poll, E a frame "abc" under code 8, Z three seconds of rest, N a new
/// station. What comes as "=x" is held by the port, "." ends the plug-in.
struct Réplique {
  const char *Nom, *Actes;
  std::vector<Dits> Dites;   ///< behind each writing in turn
  std::string Ecrit, Issue;  ///< all that was written, and what the last act came to
  std::uint64_t Durée;
  int Avertis = 0;  ///< times that the operator was told of dropped characters
};
const std::string Offre = "^A" + Trame12;
const std::string Laissé = "Chargement laissé sans réponse : le RG80 répondait peut-être à une demande plus ancienne.";
const std::pair Avertissement{
    std::string("Le RG80 a envoyé des caractères que personne n'attendait : ils sont laissés sans réponse."), false};
const Dits Bavard = [] {
  Dits Tous;
  for (int Quand = 1; Quand < 20000; Quand += 500) Tous.emplace_back(Quand, "z");
  return Tous;
}();
const Dits Agité = {{5, Offre}, {600, "z"}};
// clang-format off
const Réplique Répliques[] = {
    {"calm: no wait, and a load that comes again has lost its ACK", "PPE",
     {{{5, Offre}}, {}, {{5, Offre}}, {}, {{5, "^8"}}, {{5, "^"}}}, "?A^?A^" T "$", "", 20},
    {"silence counts from the end of the wait in vain", "PP", {{}, {{5, Offre}}}, "?A?A^", "", 4006},
    {"silent for long enough", "PZP", {{}, {{5, Offre}}}, "?A?A^", "", 5006},
    {"late answer", "PPP", {{{2500, Offre}}, {{5, "!A"}}, {{5, Offre}}}, "?A?A?A^", "", 4510, 1},
    {"late answer between two dialogues", "PZP", {{{2500, Offre}}, {{5, Offre}}}, "?A?A^", "", 5006, 1},
    {"held by the driver at the next request", "PP", {{{4, "=z"}, {5, "!A"}}, {{5, Offre}}}, "?A?A^", "", 2010, 1},
    {"several answers: only what comes last is ours", "PP", {{}, {{5, Offre + Offre}}}, "?A?A", Laissé, 4006},
    {"another answer has begun", "PP", {{}, {{5, Offre}, {5, "=^A<00"}}}, "?A?A", Laissé, 4006},
    {"several answers on a calm line", "P", {{{5, Offre + Offre}}}, "?A^", "", 5},
    {"copy of the acknowledged load", "PPP", {{{5, Offre}}, {}, {}, {{5, Offre}}}, "?A^?A?A", Laissé, 4011},
    {"left busy by the station before this one", "NPPPP",
     {{{5, Offre}}, {}, {{5, Offre}}, {{5, Offre}}, {{5, Offre}}}, "?A^?A?A?A^", "", 2020},
    {"a lost ACK on a line that never gets calm blocks no queue", "PZPZPZPZPZPZP",
     {{{5, Offre}}, {{600, "z"}}, Agité, Agité, Agité, Agité, Agité, {{5, Offre}}},
     "?A^?A?A?A?A?A?A^", "", 18035, 1},
    {"taken over and silent", "NPZPZPP", {{{5, Offre}}, {}, {{5, "!A"}}, {{5, "!A"}}, {{5, Offre}}}, "?A^?A?A?A^", "", 6020},
    {"calm again behind an answer, silence and another answer", "PPPPP",
     {{{5, Offre}}, {}, {}, {{5, "!A"}}, {{5, Offre}}, {{5, Offre}}}, "?A^?A?A?A?A^", "", 6021},
    {"another load", "PPP", {{{5, Offre}}, {}, {}, {{5, "^A<" + std::string(58, 'y')}}}, "?A^?A?A^", "", 4011},
    {"never silent", "PP", {Bavard, {{5, Offre}}}, "?A?A^", "", 12006, 1},
    {"answer to an older request", "EE", {{}, {{5, "^8"}}, {{5, "^8"}, {30, "^"}}}, "?8" T "$", "", 4040},
    {"and nothing behind it", "EE", {{}, {{5, "^8"}}, {{5, "^8"}}}, "?8" T, MUET, 6007},
    {"refusal of an older request, in pieces", "EE", {{}, {{5, "^8"}}, {{5, "!"}, {8, "8"}, {30, "^"}}}, "?8" T "$", "", 4040},
    {"ACK in time that shows late that it stands alone", "EE", {{}, {{5, "^8"}}, {{1999, "^"}}}, "?8" T "$", "", 6009},
    {"ACK too late", "EE", {{}, {{5, "^8"}}, {{2001, "^"}}}, "?8" T, MUET, 6007},
    {"held by the port when the time is up", "E", {{{1900, "=!8"}}}, "?8", "Le RG80 n'est pas prêt (NACK).", 2001},
    {"end in the silence", "PP", {{{2500, "."}}}, "?A", Muet, 2500}};
// clang-format on

struct RéponsePérimée : Banc, testing::WithParamInterface<Réplique> {
  void Dire(const std::string& Dessin) {
    if (Dessin == ".") return Terminer();
    if (Dessin[0] == '=') {
      Port->Tenus = Ligne(Dessin.substr(1));
    } else {
      Port->Client->Lecture(Ligne(Dessin));
    }
  }
  std::string Jouer(char Acte) {
    if (Acte == 'N') UnÉchange.Reprendre();
    if (Acte == 'Z') Système.Laisser(milliseconds(3000));
    return Acte == 'P' ? Collecte(État, UnÉchange, *this).LireDonnéesDeRG80() : Acte == 'E' ? Envoyer({"abc"}) : "";
  }
};
INSTANTIATE_TEST_SUITE_P(Table, RéponsePérimée, testing::ValuesIn(Répliques));

TEST_P(RéponsePérimée, IsNobodysAnswer) {
  const Réplique& Cas = GetParam();
  SCOPED_TRACE(Cas.Nom);
  UneInterrogation.Terminer();
  UnÉchange.Tampon().Vider();
  Port->SurEcriture = [&](const Octets&) {
    if (Port->Ecrits.size() > Cas.Dites.size()) return;
    for (const auto& [Quand, Dessin] : Cas.Dites[Port->Ecrits.size() - 1])
      Système.Après(milliseconds(Quand), [this, Dessin] { Dire(Dessin); });
  };
  std::string Dernière;
  for (const char Acte : std::string_view(Cas.Actes)) Dernière = Jouer(Acte);
  EXPECT_EQ(Dernière, Cas.Issue);
  EXPECT_EQ(Ecrit(), Ligne(Cas.Ecrit));
  EXPECT_EQ(Système.Horloge - 1000, Cas.Durée);
  EXPECT_EQ(std::count(Canal.Messages.begin(), Canal.Messages.end(), Avertissement), Cas.Avertis);
}

TEST_F(Banc, ARefusalIsSaidAndNotedEvenWhenItsFileCannotBeKept) {
  Etat.Erreur = "Masse : « x »";
  EcrireFichier(Système.DossierImportsConservés(), "");
  UneInterrogation.Retard_FinTempo("");
  EXPECT_EQ(Canal.Messages.at(0), std::pair(Etat.Erreur, true));
  EXPECT_GT(std::filesystem::file_size(FichierErreursDuJour(Système)), Etat.Erreur.size());
  EXPECT_EQ(Fenêtres.Dites().size(), 1U);
}

TEST_F(Banc, KeptFilesAreOneForEachContentAndNoMoreThanAThousand) {
  CréerDossier(Système.DossierImportsConservés());
  for (int Rang = 0; Rang < 1000; ++Rang)
    EcrireFichier(Système.DossierImportsConservés() / std::to_string(Rang), std::to_string(Rang));
  Etat.Importe = false;
  for (const int Seconde : {1, 2}) {
    Système.Mur.Seconde = Seconde;
    Répondre({"^A" + Trame12});
    UneInterrogation.Retard_FinTempo("");
    EXPECT_EQ(Etat.Importés.size(), static_cast<std::size_t>(Seconde));
  }
  EXPECT_EQ(Fichiers(Système.DossierImportsConservés()), 1000);
  EXPECT_FALSE(FichierDeContenu(Système.DossierImportsConservés(), "0")) << "the oldest goes";
  EXPECT_TRUE(FichierDeContenu(Système.DossierImportsConservés(), "1")) << "and no other: one file was kept";
}

TEST_F(Banc, RequestsDuringAPollRunOnceWhenTheLineIsFreeAndTheTimerCountsFromTheEnd) {
  UneInterrogation.FixerPériode(500);
  std::vector<std::uint64_t> Départs;
  Port->SurEcriture = [&](const Octets&) {
    Départs.push_back(Système.Horloge);
    Port->Envoyer(Ligne("!A"), milliseconds(2000));
  };
  for (const int Quand : {100, 101, 102}) {
    Système.Après(milliseconds(Quand), [this] { UneInterrogation.Retard_FinTempo(""); });
  }
  UneInterrogation.Retard_FinTempo("");
  Système.Laisser(milliseconds(2600));
  UneInterrogation.Suspendre([this] { Système.Laisser(milliseconds(2000)); });
  Système.Laisser(milliseconds(501));
  EXPECT_EQ(Départs, (std::vector<std::uint64_t>{1000, 3000, 5500, 10000}));
}

TEST_F(Banc, AFileThatMovesWritesOverNoOther) {
  for (const char* Nom : {"a", "b"}) EcrireFichier(Dossier.Chemin() / Nom, "");
  EXPECT_THROW(DéplacerFichier(Dossier.Chemin() / "a", Dossier.Chemin() / "b"), ErreurExécution);
}

TEST_F(Banc, DailyFileGoesWhenItHoldsOnlyBlanks) {
  for (const auto& [Contenu, Reste] : {std::pair{"\r\n \r\n", false}, {"", false}, {"\r\nx", true}, {"\t", true}}) {
    EcrireFichier(FichierErreursDuJour(Système), Contenu);
    NettoyerFichierErreurs(Système);
    EXPECT_EQ(std::filesystem::exists(FichierErreursDuJour(Système)), Reste);
  }
}

}  // namespace
}  // namespace Ombrey::Essais
