// From the reception text to the import text.
#include "import/frame_processing.h"

#include <random>

#include "link/checksum.h"
#include "tests/import/import_fixture.h"

namespace Ombrey::Essais {
namespace {

const std::string RecordModèle = "0012190908083009150001230004560071000000050112521234007";
const std::string TrameModèle = "\x02" + RecordModèle + "\x03<;";  // sum 203: 12 and 11 behind "0"

/// The model record with Valeur written over it from Position on, counted from 1.
std::string Record(std::size_t Position, const std::string& Valeur) {
  return std::string(RecordModèle).replace(Position - 1, Valeur.size(), Valeur);
}

class EssaiTrame : public EssaiImport {
 protected:
  std::string Traiter(const std::string& Reçu) {
    Tampon = Octets(Reçu);
    Réponse = Octets("lu");
    NoChargement.clear();
    return Traitement.TraiterDonnéesReçues(Tampon, Réponse, NoChargement);
  }
  std::string TraiterRecord(const std::string& Enregistrement) {
    return Traiter(std::string(CalculerCheckSum(STX + Enregistrement + ETX).Bruts()));
  }
  static Octets CalculerCheckSum(const std::string& Texte) { return Ombrey::CalculerCheckSum(Octets(Texte)); }

  Octets Tampon;
  Octets Réponse;
  std::string NoChargement;
};

TEST_F(EssaiTrame, WorkedFrame) {
  EXPECT_EQ(Traiter("\x06"
                    "A" +
                    TrameModèle + "suite"),
            "1;12;19/09/08 08:30;19/09/08 09:15;5001;Chardonnay;05;01;12,5;2;1234;7;0;01;;");
  EXPECT_EQ(Réponse, Octets(1, ACK));
  EXPECT_EQ(NoChargement, "12");
  EXPECT_EQ(Tampon, Octets("suite"));
  EXPECT_TRUE(Plateforme.LesFenêtres.Boîtes.empty());
  EXPECT_TRUE(Canal.Erreurs.empty());
}

TEST_F(EssaiTrame, TheCharacterInPlaceOfTheEtxIsNotLookedAt) {
  std::string Trame = TrameModèle;
  Trame[56] = 'x';
  EXPECT_NE(Traiter(Trame), "");
  EXPECT_EQ(Réponse, Octets(1, ACK));
}

TEST_F(EssaiTrame, AFrameCutAnywhereWaitsForTheNextDialogue) {
  for (std::size_t Longueur = 1; Longueur < TrameModèle.size(); ++Longueur) {
    EXPECT_EQ(Traiter("\x06"
                      "A" +
                      TrameModèle.substr(0, Longueur)),
              "");
    EXPECT_EQ(Tampon, Octets(TrameModèle.substr(0, Longueur)));
    EXPECT_EQ(Réponse, Octets("lu"));
  }
  EXPECT_EQ(TextesDesBoîtes(), std::vector<std::string>(58, "RG80 Ombrey | Données trop courtes"));
  EXPECT_EQ(Traiter("\x06"
                    "A"),
            "");  // nothing to cut, nothing to say
  EXPECT_EQ(Tampon, Octets("\x06"
                           "A"));
  EXPECT_EQ(Plateforme.LesFenêtres.Boîtes.size(), 58U);
}

TEST_F(EssaiTrame, AWrongChecksumIsRefusedAndItsFrameGoes) {
  std::string Trame = TrameModèle;
  Trame[10] = '1';
  EXPECT_EQ(Traiter(Trame + "suite"), "");
  EXPECT_EQ(Réponse, Octets(1, NAK));
  EXPECT_EQ(NoChargement, "");
  EXPECT_EQ(Tampon, Octets("suite"));
  EXPECT_EQ(TextesDesBoîtes(), std::vector<std::string>{"RG80 Ombrey | Erreur de check-sum"});
}

TEST_F(EssaiTrame, AnEndingPlugInRefusesNothing) {
  Plateforme.LesFenêtres.PendantBoîte = [&](const BoîteMontrée&) { État.Abandon = true; };
  std::string Trame = TrameModèle;
  Trame[10] = '1';
  EXPECT_EQ(Traiter(Trame), "");
  EXPECT_EQ(Réponse, Octets("lu"));
}

TEST_F(EssaiTrame, EveryFieldIsReworkedOnItsOwn) {
  struct Cas {
    std::size_t Position;
    std::string Valeur, No, Ligne;
  };
  const std::string Maintenant = "22/09/2026 08:30:00";
  const Cas Table[] = {
      {1, "0000", "", "1;;19/09/08 08:30;19/09/08 09:15;5001;Chardonnay;05;01;12,5;2;1234;7;0;01;;"},
      {7, "13", "12", "1;12;" + Maintenant + ";" + Maintenant + ";5001;Chardonnay;05;01;12,5;2;1234;7;0;01;;"},
      {11, "24", "12", "1;12;" + Maintenant + ";19/09/08 09:15;5001;Chardonnay;05;01;12,5;2;1234;7;0;01;;"},
      {17, "6x", "12", "1;12;19/09/08 08:30;" + Maintenant + ";5001;Chardonnay;05;01;12,5;2;1234;7;0;01;;"},
      {43, "\xE9\x02", "12", "1;12;19/09/08 08:30;19/09/08 09:15;5001;Chardonnay;05;é\x02;12,5;2;1234;7;0;é\x02;;"},
      {45, "000", "12", "1;12;19/09/08 08:30;19/09/08 09:15;5001;Chardonnay;05;01;0;2;1234;7;0;01;;"},
      {45, "12000034000", "12", "1;12;19/09/08 08:30;19/09/08 09:15;5001;Chardonnay;05;01;12;;0034;;0;01;;"},
  };
  for (const Cas& C : Table) {
    EXPECT_EQ(TraiterRecord(Record(C.Position, C.Valeur)), C.Ligne);
    EXPECT_EQ(NoChargement, C.No);
    EXPECT_EQ(Réponse, Octets(1, ACK));
    EXPECT_TRUE(Tampon.EstVide());
  }
}

TEST_F(EssaiTrame, LettersInANumericField) {
  struct Cas {
    std::size_t Position;
    std::string Valeur, Erreur, Boîte;
  };
  const std::string Introuvable = "Code exploitation introuvable : ";
  const Cas Table[] = {
      {19, "0001x3", Introuvable + "/01x3/0456/100.0000/007", ""},
      {25, "' OR '", Introuvable + "/0123/OR '/100.0000/007", ""},
      {19, "1e9999", Introuvable + "/9999/0456/100.0000/007", ""},
      {31, "a;b", "", ""},
      {34, "'';", "", ""},
      {45, "1x5", "", "RG80 Ombrey | TraiterDonnéesReçues : Incompatibilité de type"},
      {45, "9e9", "", "RG80 Ombrey | TraiterDonnéesReçues : Dépassement de capacité"},
  };
  for (const Cas& C : Table) {
    Canal.Erreurs.clear();
    Plateforme.LesFenêtres.Boîtes.clear();
    const bool Bon = C.Erreur.empty() && C.Boîte.empty();
    EXPECT_EQ(TraiterRecord(Record(C.Position, C.Valeur)).empty(), !Bon) << C.Valeur;
    EXPECT_EQ(Réponse, Octets(1, ACK));
    EXPECT_EQ(Tampon.EstVide(), Bon) << C.Valeur;
    EXPECT_EQ(Canal.Erreurs, C.Erreur.empty() ? std::vector<std::string>{} : std::vector<std::string>{C.Erreur});
    EXPECT_EQ(TextesDesBoîtes(), C.Boîte.empty() ? std::vector<std::string>{} : std::vector<std::string>{C.Boîte});
  }
}

TEST_F(EssaiTrame, GarbageNeverEscapesAndIsAlwaysTold) {
  std::mt19937 Hasard(20260922);
  for (int Tour = 0; Tour < 500; ++Tour) {
    std::string Enregistrement = RecordModèle;
    for (int Fautes = Tour % 55; Fautes >= 0; --Fautes) {
      Enregistrement[Hasard() % Enregistrement.size()] = static_cast<char>(Hasard());
    }
    const std::size_t Dits = Canal.Messages.size() + Plateforme.LesFenêtres.Boîtes.size();
    const std::string Ligne = TraiterRecord(Enregistrement);
    if (Ligne.empty()) {
      EXPECT_GT(Canal.Messages.size() + Plateforme.LesFenêtres.Boîtes.size(), Dits);
    }
    EXPECT_EQ(Réponse, Octets(1, ACK));
  }
}

TEST_F(EssaiTrame, ADatabaseThatFailsIsShownAndTheLoadIsNotImported) {
  Petite.Exécuter("DROP TABLE MSysEtats");
  EXPECT_EQ(Traiter(TrameModèle), "");
  ASSERT_EQ(Plateforme.LesFenêtres.Boîtes.size(), 1U);
  EXPECT_EQ(Plateforme.LesFenêtres.Boîtes[0].Texte.rfind("TraiterDonnéesReçues : ", 0), 0U);
  État.BaseDeD.reset();
  EXPECT_EQ(Traiter(TrameModèle), "");
  EXPECT_EQ(TextesDesBoîtes()[1], "Vérification d'exploitation | Variable objet non définie");
}

}  // namespace
}  // namespace Ombrey::Essais
