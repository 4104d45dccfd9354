// What can stand in a frame: cuts, noise, garbage, letters. Whatever comes, a load is acknowledged only when it is in.
#include <fstream>
#include <random>

#include "tests/road/bench_post.h"

namespace Ombrey::Essais {
namespace {

TEST(BadRecords, AFrameCutAtAnyByteIsLeftAndTheNextOneTaken) {
  PosteDEssai P;
  const Octets Entière = Octets(
                             "\x06"
                             "A") +
                         Trame(Enregistrement(12));
  ASSERT_EQ(Entière.Taille(), 61U);
  for (std::size_t Reçus = 0; Reçus < Entière.Taille(); ++Reçus) {
    SCOPED_TRACE(Reçus);
    const std::string Boîtes = P.ReleverBrut(Entière.Extrait(0, Reçus));
    // The frame's wait is over at 59 characters, two of which are the answer's.
    const bool Examinée = Reçus >= 59;
    EXPECT_EQ(Boîtes, Examinée ? "Données trop courtes" : "");
    EXPECT_EQ(P.Issue(),
              Examinée ? "Aucun chargement importé" : "Echec de lecture de données du RG80 : Aucune réponse du RG80.");
    EXPECT_EQ(P.Réponse, "");
    EXPECT_EQ(P.Rentrés(), "0 0 0");
  }
  EXPECT_EQ(P.ReleverBrut(Entière), "");
  EXPECT_EQ(P.Réponse, "ACK");
  EXPECT_EQ(P.Rentrés(), "1 1 0");
  EXPECT_EQ(P.Cumuls.size(), 1U);
}

TEST(BadRecords, ADamagedByteAnywhereIsNeverAcknowledged) {
  PosteDEssai P;
  const std::string Entière(Trame(Enregistrement(12)).Bruts());
  for (std::size_t Place = 1; Place < Entière.size(); ++Place) {
    if (Place == 56) continue;  // the ETX: what stands in its place isn't looked at
    SCOPED_TRACE(Place);
    std::string Abîmée = Entière;
    Abîmée[Place] ^= 0x10;
    EXPECT_EQ(P.Relever(Octets(Abîmée)), "Erreur de check-sum");
    EXPECT_EQ(P.Réponse, "NAK");
  }
  EXPECT_EQ(P.Rentrés(), "0 0 0");
}

struct Champ {
  const char* Nom;
  std::size_t Place;  ///< in the record, from 0
  const char* Texte;
  const char* Réponse;
  const char* Boîte;
  const char* Lu;  ///< what the row then holds of DateCh, Degré, Masse, Sélection and Cuve; nullptr: no row
};

constexpr const char* Sain = "22/09/2026 08:30|12.5|1234|05|7";

class Champs : public ::testing::TestWithParam<Champ> {};

TEST_P(Champs, EndAsTold) {
  const Champ& Cas = GetParam();
  PosteDEssai P;
  P.Plateforme.LeSystème.Mur = {2026, 9, 23, 10, 11, 0};
  std::string Texte = Enregistrement(12);
  Texte.replace(Cas.Place, std::string(Cas.Texte).size(), Cas.Texte);
  EXPECT_EQ(P.Relever(Trame(Texte)), Cas.Boîte);
  EXPECT_EQ(P.Réponse, Cas.Réponse);
  EXPECT_EQ(P.Valeur("SELECT strftime('%d/%m/%Y %H:%M', DateCh + 2415018.5) || '|' || Degré || '|' || Masse || '|' ||"
                     " Sélection || '|' || Cuve FROM Chargement"),
            Cas.Lu ? Cas.Lu : "");
  EXPECT_EQ(P.Cumuls.size(), Cas.Lu ? 1U : 0U);
  // The line is as good as before.
  P.Relever(Trame(Enregistrement(13)));
  EXPECT_EQ(P.Réponse, "ACK");
  EXPECT_EQ(P.Valeur("SELECT count(*) FROM Chargement WHERE NoChargement = 13"), "1");
}

INSTANTIATE_TEST_SUITE_P(
    Table, Champs,
    ::testing::Values(
        Champ{"number", 0, "00A2", "NAK", "", nullptr}, Champ{"number signed", 0, "-012", "NAK", "", nullptr},
        Champ{"number quoted", 0, "1'2;", "NAK", "", nullptr}, Champ{"number none", 0, "0000", "", "", nullptr},
        Champ{"month", 6, "13", "ACK", "", "23/09/2026 10:11|12.5|1234|05|7"},
        Champ{"day letters", 4, "XX", "ACK", "", "23/09/2026 10:11|12.5|1234|05|7"},
        Champ{"day none", 4, "310226", "ACK", "", "23/09/2026 10:11|12.5|1234|05|7"},
        Champ{"hour of leaving", 14, "99", "ACK", "", Sain}, Champ{"owner", 18, "00012X", "", "", nullptr},
        Champ{"owner blank", 18, "      ", "", "", nullptr}, Champ{"owner quoted", 18, "1' OR'", "", "", nullptr},
        Champ{"harvester", 24, "X00456", "", "", nullptr}, Champ{"harvester exponent", 24, "00001e", "", "", nullptr},
        Champ{"group", 30, "X'7", "ACK", "", Sain}, Champ{"share", 33, "1X0000;", "ACK", "", Sain},
        Champ{"appellation", 40, "';", "NAK", "", nullptr},
        Champ{"appellation quote", 40, "''", "ACK", "", "22/09/2026 08:30|12.5|1234|''|7"},
        Champ{"appellation accents", 40, "\xE9\x80", "ACK", "", "22/09/2026 08:30|12.5|1234|é€|7"},
        Champ{"appellation control", 40, "\x01\x7F", "NAK", "", nullptr},
        Champ{"appellation STX", 40, "\x02\x03", "NAK", "", nullptr},
        Champ{"degree", 44, "12X", "", "TraiterDonnéesReçues : Incompatibilité de type", nullptr},
        Champ{"degree blank", 44, "   ", "", "TraiterDonnéesReçues : Incompatibilité de type", nullptr},
        Champ{"bay", 47, "X", "NAK", "", nullptr}, Champ{"weight", 48, "12X4", "NAK", "", nullptr},
        Champ{"weight signed", 48, "-123", "NAK", "", nullptr}, Champ{"weight blank", 48, "    ", "NAK", "", nullptr},
        Champ{"vat", 52, "X'\"", "ACK", "", "22/09/2026 08:30|12.5|1234|05|X'\""},
        Champ{"vat separator", 52, "0;7", "NAK", "", nullptr}),
    [](const auto& Cas) {
      std::string Nom = Cas.param.Nom;
      std::replace(Nom.begin(), Nom.end(), ' ', '_');
      return Nom;
    });

TEST(BadRecords, GarbageWithATrueChecksumNeverCostsALoad) {
  PosteDEssai P;
  std::mt19937 Dés(20260922);
  const auto Tirer = [&](int De, int À) { return std::uniform_int_distribution<int>(De, À)(Dés); };
  constexpr const char* Méchants = "';\"\\|\t\r\n\0\x02\x03\x05\x06\x15 %_[]&-.,eE";
  constexpr std::size_t NombreMéchants = 25;
  int Acquittés = 0;
  for (int Essai = 0; Essai < 600; ++Essai) {
    // Anything; or a good record in which some bytes are bad.
    std::string Texte = Enregistrement(Tirer(1, 9999));
    if (Essai % 3 == 0) {
      for (char& C : Texte) C = static_cast<char>(Tirer(0, 255));
    } else {
      for (int Coups = Tirer(1, 4); Coups > 0; --Coups)
        Texte[static_cast<std::size_t>(Tirer(0, 54))] = Méchants[Tirer(0, NombreMéchants - 1)];
    }
    const std::string Avant = P.Rentrés();
    P.Relever(Trame(Texte));
    const bool EstEntrée = P.Rentrés() != Avant;
    const bool EstAcquittée = P.Réponse == "ACK";
    ASSERT_TRUE(P.Réponse.empty() || P.Réponse == "ACK" || P.Réponse == "NAK") << P.Réponse;
    if (EstAcquittée) {
      ++Acquittés;
      ASSERT_EQ(P.Valeur("SELECT count(*) FROM Chargement WHERE NoChargement = CAST('" + Texte.substr(0, 4) +
                         "' AS INTEGER)"),
                "1");
    } else {
      ASSERT_FALSE(EstEntrée) << "a load is in that the terminal will keep";
    }
    ASSERT_FALSE(std::filesystem::exists(P.En("poste/import/RG80 import.txt")));
  }
  EXPECT_GT(Acquittés, 40) << "too few got far enough to prove anything";
  EXPECT_EQ(P.Valeur("PRAGMA integrity_check"), "ok");
  EXPECT_EQ(P.Valeur("SELECT count(*) FROM Chargement WHERE typeof(NoChargement) <> 'integer' OR typeof(DateCh) <>"
                     " 'real' OR (typeof(Masse) <> 'integer' AND Masse IS NOT NULL)"),
            "0");
}

TEST(BadRecords, AnImportFileThatAKilledStationLeftIsNeverTakenForThisLoads) {
  PosteDEssai P;
  P.Relever(Trame(Enregistrement(12)));
  std::filesystem::create_directories(P.En("poste/import"));
  P.Écrire("poste/import/RG80 import.txt",
           "1;77;22/09/26 08:30;22/09/26 09:15;4;05;Syrah;01;12,5;2;1234;7;0;0;0;0;01;0;\r\n");
  std::string Illisible = Enregistrement(13);
  Illisible.replace(44, 3, "12X");
  P.Relever(Trame(Illisible));
  EXPECT_EQ(P.Réponse, "");
  EXPECT_EQ(P.Rentrés(), "1 1 0");
}

TEST(BadRecords, ANullShareIsReportedAndTheLoadWaitsUntilItIsMended) {
  PosteDEssai P;
  P.Connexion->Exécuter(
      "INSERT INTO Métayage (IdMétayage, Propriétaire, Récoltant, Part, IdGrp) VALUES ('90', '123', '456', NULL, '5')");
  std::string Texte = Enregistrement(12);
  Texte.replace(33, 7, "0500000");
  EXPECT_EQ(P.Relever(Trame(Texte)), "Utilisation incorrecte de Null");
  EXPECT_EQ(P.Réponse, "");
  EXPECT_EQ(P.Issue(), "Aucun chargement importé");
  EXPECT_EQ(P.Rentrés(), "0 0 0");
  P.Connexion->Exécuter("UPDATE Métayage SET Part = 50 WHERE IdMétayage = '90'");
  EXPECT_EQ(P.Relever(Trame(Texte)), "");
  EXPECT_EQ(P.Valeur("SELECT Métayage FROM Chargement"), "90");
}

}  // namespace
}  // namespace Ombrey::Essais
