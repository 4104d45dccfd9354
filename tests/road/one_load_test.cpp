// One load on its way through the plug-in into a real database, over a line that takes no time: whatever comes and
// whatever fails, a load is acknowledged only when it is in, and comes in once the fault is mended.
#include <random>

#include "base/checksum.h"
#include "core/plugin.h"
#include "host/cooperative_database.h"
#include "tests/road/post.h"
#include "tests/support/fake_host.h"
#include "tests/support/fake_platform.h"

namespace Ombrey::Essais {

/// What the terminal sends for a load: "ACK A" and the frame.
static Octets Offre(const std::string& LEnregistrement) {
  return Octets(std::string("\6A")) + CalculerCheckSum(Octets("\x02" + LEnregistrement + "\x03"));
}

static const std::string FichierImport = "import/RG80 import " + std::to_string(getpid()) + ".txt";

struct OneLoad : Poste, testing::Test {
  OneLoad() {
    Plateforme.LeSystème.Dossier = En("poste");
    Plateforme.Ini = {{"Port", "COM1:"}, {"Bauds", "9600"}, {"Parité", "N"}, {"BitsStop", "1"}, {"TailleMots", "8"}};
    Plateforme.Port->SurEcriture = [this](const Octets& Texte) { Répondre(std::string(Texte.Bruts())); };
    LePlugIn->IPlugInTarvel_FixerBaseDeD(std::make_shared<Tarvel::BaseDeDTarvel>(Base(), Plateforme.LeSystème));
    EXPECT_EQ(LePlugIn->IPlugInTarvel_Initialiser(std::make_shared<FauxÉvénements>()), "");
    LePlugIn->IPlugInTarvel_Afficher();
  }
  ~OneLoad() override { LePlugIn->IPlugInTarvel_Terminer(); }

  /// One poll, to which the terminal gives these bytes: the texts of the boxes, then "ACK" or "NAK" as it was answered.
  std::string Relever(const Octets& Offerts) {
    Offerts_ = Offerts;
    Réponse_.clear();
    Plateforme.LesFenêtres.Boîtes.clear();
    LePlugIn->Retard_FinTempo("");
    std::string Textes;
    for (const auto& Boîte : Plateforme.LesFenêtres.Boîtes) Textes += Boîte.Texte + " : ";
    return Textes + Réponse_;
  }
  void Répondre(const std::string& Texte) {
    if (Texte == "\5A") return Plateforme.Port->Envoyer(Offerts_);
    // An EOT ends the reply; anything else alone is a fault.
    if (Texte.size() == 1) Réponse_ += Texte == "\6" ? "ACK" : Texte == "\x15" ? "NAK" : Texte == "\4" ? "" : "?";
    if (Texte.size() > 1) Plateforme.Port->Envoyer(Octets(std::string_view(Texte[0] == '\5' ? "\6\x38" : "\6")));
    Cumuls += Texte.size() > 2 ? 1 : 0;
  }
  void Oublier() {
    Faire("$ rm -rf poste/imports-refusés");
    Faire("DELETE FROM Chargement");
  }

  FaussePlateforme Plateforme;
  std::shared_ptr<PlugIn> LePlugIn = PlugIn::Créer(Plateforme);
  int Cumuls = 0;
  Octets Offerts_;
  std::string Réponse_;
};

TEST_F(OneLoad, AFrameCutOrDamagedAtAnyByteIsLeftAndTheNextOneTaken) {
  const Octets Entière = Offre(Enregistrement());
  EXPECT_EQ(Relever(Entière + Entière), "") << "the station before this one may have asked for the first of the two";
  Faire("DELETE FROM Chargement");
  for (std::size_t Place = 0; Place < 61; ++Place) {
    SCOPED_TRACE(Place);
    // The frame's wait is over at 59 of its 61 characters.
    EXPECT_EQ(Relever(Entière.Extrait(0, Place)), Place < 59 ? "" : "Données trop courtes : ");
    // Damaged behind the STX; what stands in place of the ETX, at 58, isn't looked at.
    std::string Abîmée(Entière.Bruts());
    Abîmée[std::max<std::size_t>(Place, 3) - (Place == 58 ? 1 : 0)] ^= 0x10;
    EXPECT_EQ(Relever(Octets(Abîmée)), "Erreur de check-sum : NAK");
  }
  EXPECT_EQ(Rentrés(), "0 0 0");
  // An answer that was given up arrives behind the next request; then the rest of one ahead of another load's, which
  // has quotes for its appellation.
  EXPECT_EQ(Relever(Entière + Entière), "ACK");
  EXPECT_EQ(Relever(Entière.Extrait(30) + Offre(Enregistrement(0, "0013").replace(40, 2, "'\""))), "ACK");
  EXPECT_EQ(Valeur("SELECT Sélection FROM Chargement WHERE NoChargement = 13"), "'\"");
  EXPECT_EQ(Rentrés(), "2 2 0");
  LePlugIn->IPlugInTarvel_FixerBaseDeD(std::make_shared<Tarvel::BaseDeDTarvel>(Base(), Plateforme.LeSystème));
  std::string DuDernier;
  LePlugIn->MettreAJourCumuls(DuDernier);
  EXPECT_EQ(Cumuls, 2) << "the last load was another base's";
}

TEST_F(OneLoad, EachFieldIsReworkedOrRefused) {
  const std::string Matin = "ACK22/09/2026 08:30|12.5|1234|";
  // Box, answer and row; places in the record with what stands there.
  const std::pair<std::string, std::vector<std::pair<std::size_t, std::string>>> Table[] = {
      // clang-format off
      {"TraiterDonnéesReçues : Incompatibilité de type : degré « 12X » du chargement n° 12 : ", {{44, "12X"}}},
      {"TraiterDonnéesReçues : Dépassement de capacité : degré « 9e9 » du chargement n° 12 : ", {{44, "9e9"}}},
      {"NAK", {{0, "00A2"}, {0, "-012"}, {0, "1'2;"}, {40, "';"}, {42, "0;"}, {40, "\x01\x7F"}, {40, "\x02\x03"}, {47, "X"},
               {47, "';"}, {48, "12X4"}, {48, "-123"}, {48, "    "}, {52, "0;7"}}},
      {"", {{0, "0000"}, {18, "00012X"}, {18, "      "}, {18, "1' OR'"}, {18, "123;45"}, {24, "X00456"}, {24, "00001e"},
            {24, "1' OR'"}, {24, "000;56"}}},
      {"ACK23/09/2026 10:11|12.5|1234|05|7", {{6, "13"}, {4, "XX"}, {4, "310226"}, {10, "X8"}, {12, "';"}}},
      {Matin + "05|7", {{14, "99"}, {14, "XX"}, {30, "X'7"}, {30, "';-"}, {33, "1X0000;"}, {42, "''"}}},
      {Matin + "''|7", {{40, "''"}}}, {Matin + "é€|7", {{40, "\xE9\x80"}}}, {Matin + "05|X'\"", {{52, "X'\""}}},
      // clang-format on
  };
  Plateforme.LeSystème.Mur = {2026, 9, 23, 10, 11, 0};
  // What a killed station left behind is never taken for this load's.
  Faire(
      "$ mkdir -p poste/import && echo '1;77;22/09/26 08:30;22/09/26 09:15;4;05;;01;12,5;2;1234;7;0;0;0;0;01;0;\r' >" +
      ("'poste/" + FichierImport + "'"));
  for (const auto& [Issue, Champs] : Table)
    for (const auto& [Place, Texte] : Champs) {
      const std::string Dit = Relever(Offre(Enregistrement(Place, Texte)));
      EXPECT_EQ(Dit + Valeur("SELECT Arrivée || '|' || Degré || '|' || Masse || '|' || Sélection || '|' || Cuve"
                             " FROM ChargementLisible"),
                Issue)
          << Place << Texte;
      Oublier();
    }
}

TEST_F(OneLoad, GarbageWithATrueChecksumNeverCostsALoad) {
  std::mt19937 Dés(20260922);
  const auto Tirer = [&](std::size_t Nombre) { return Dés() % Nombre; };
  const std::string Méchants("';\"\\|\t\r\n\0\x02\x03\x05\x06\x15 %_[]&-.,eE", 25);
  int Acquittés = 0;
  for (int Essai = 0; Essai < 400; ++Essai) {
    // A good record in which some bytes are bad; or anything.
    std::string Texte = Enregistrement(0, std::to_string(1000 + Essai));
    for (std::size_t Coups = 1 + Tirer(4); Coups > 0; --Coups) Texte[Tirer(55)] = Méchants[Tirer(25)];
    if (Essai % 3 == 0) std::generate(Texte.begin(), Texte.end(), [&] { return static_cast<char>(Tirer(256)); });
    const bool EstAcquitté = Relever(Offre(Texte)).ends_with("ACK");
    ASSERT_EQ(Rentrés(), EstAcquitté ? "1 1 0" : "0 0 0") << Texte;
    ASSERT_FALSE(std::filesystem::exists(En("poste/" + FichierImport)));
    Acquittés += EstAcquitté ? 1 : 0;
    Faire("DELETE FROM Chargement");
  }
  EXPECT_GT(Acquittés, 40) << "too few got far enough to prove anything";
}

/// What fails and how it is mended; how the first box begins, none where it is empty; the largest file that the disk
/// has room for.
struct Panne {
  std::string Casser, Réparer, Boîte;
  rlim_t Disque = RLIM_INFINITY;
};

static Panne Sans(const std::string& Table, const std::string& Boîte) {
  return {"ALTER TABLE " + Table + " RENAME TO Ailleurs", "ALTER TABLE Ailleurs RENAME TO " + Table, Boîte};
}

static const std::string Refusé = "Erreur d'importation des données issues du RG80.";
static const std::string ÉchecLecture = "LireDonnéesDeRG80 : Echec de lecture de données du RG80 : ";
static const std::string Écriture = ÉchecLecture + "Impossible d'écrire le fichier ";
static const Panne Pannes[] = {
    // clang-format off
    Sans("Chargement", Refusé), Sans("ChargementArchive", Refusé), Sans("Métayage", "Table introuvable : Métayage"),
    Sans("MSysEtats", "TraiterDonnéesReçues : Table introuvable : MSysEtats"),
    {"UPDATE MSysEtats SET Titre = 'x' || Titre", "UPDATE MSysEtats SET Titre = substr(Titre, 2)", ""},
    {"UPDATE MSysEtats SET LongChps = LongChps || char(13) || 'Rien' || char(9) || 'texte'",
     "UPDATE MSysEtats SET LongChps = substr(LongChps, 1, length(LongChps) - 11)", Refusé},
    {"UPDATE Métayage SET Part = NULL; INSERT INTO Métayage (IdMétayage, Propriétaire, Récoltant) VALUES (0, 123, 456)",
     "UPDATE Métayage SET Part = 100; DELETE FROM Métayage WHERE IdGrp IS NULL", "Utilisation incorrecte de Null"},
    {"$ rm -r poste/import; touch poste/import", "$ rm poste/import", ÉchecLecture},
    {"$ mkdir -p 'poste/" + FichierImport + "/x'", "$ rm -r poste/import", Écriture},
    {"$ rm -rf poste/données; touch poste/données", "$ rm poste/données", ÉchecLecture},
    {"", "", ÉchecLecture, 0}, {"", "", Écriture, 20}, {"", "", Refusé, 300},
    // clang-format on
};

TEST_F(OneLoad, AFailingMachineIsReportedAndTheLoadComesInOnceItIsMended) {
  Relever(Octets("\x15\x41"));
  Plateforme.LeSystème.Laisser(std::chrono::seconds(3));  // the line is nobody else's any more
  Relever(Octets("\x15\x41"));
  for (const auto& [Casser, Réparer, Boîte, Disque] : Pannes) {
    SCOPED_TRACE(Casser + std::to_string(Disque));
    Relever(Octets("\x15\x41"));
    Faire(Casser);
    LimiterFichiers(Disque);
    const std::string Issue = Relever(Offre(Enregistrement()));
    LimiterFichiers(RLIM_INFINITY);
    EXPECT_TRUE(Boîte.empty() ? Issue.empty() : Issue.starts_with(Boîte)) << Issue;
    EXPECT_TRUE(Boîte == Refusé ? Issue.ends_with("NAK") : !Issue.ends_with("K")) << Issue;
    // A refused import file is kept for the operator; none is left in the way.
    EXPECT_EQ(std::filesystem::exists(Plateforme.LeSystème.DossierImportsConservés()), Boîte == Refusé);
    EXPECT_FALSE(std::filesystem::is_regular_file(En("poste/" + FichierImport)));
    Faire(Réparer);
    EXPECT_EQ(Rentrés() + std::to_string(Cumuls), "0 0 00");
    EXPECT_EQ(Relever(Offre(Enregistrement())), "ACK");
    EXPECT_EQ(Rentrés() + std::to_string(std::exchange(Cumuls, 0)), "1 1 01");
    Oublier();
  }
  // Figures that can't be worked out don't take a load back.
  Faire(Sans("Sélection", "").Casser);
  EXPECT_TRUE(Relever(Offre(Enregistrement())).ends_with("ACK"));
  EXPECT_EQ(Rentrés() + std::to_string(Cumuls), "1 1 01");
}

}  // namespace Ombrey::Essais
