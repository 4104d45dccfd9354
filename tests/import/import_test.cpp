// From the reception text to the import text: the frame, its fields, the load's holding, the import line by the host's
// layout, and what the host tells about loads. On a cooperative of one pair, one holding and one layout.
#include "base/checksum.h"
#include "import/frame_processing.h"
#include "import/import_notifications.h"
#include "tests/transfer/small_cooperative.h"

namespace Ombrey::Essais {

const std::string RecordModèle = "0012190908083009150001230004560071000000050112521234007";

struct Import : AvecCoopérative {
  Import() {
    Exécuter(
        "INSERT INTO Coopérateur VALUES ('00123','Aubry','Zoé'),('456','Bost','Guy');"
        "INSERT INTO Métayage VALUES ('5001','0123','456',33.3333,10,'007'),('5002','1','1',100,11,NULL);"
        "INSERT INTO MSysEtats VALUES ('Synchronisation des chargements',-1,'Masse','|'),"
        " ('Synchronisation des chargements',0,replace(replace("
        "'CodeSite,x/NoChargement,N,4/DateCh/DateSortie/Métayage/Cépage/Sélection/Qualité/Degré/NoQuai/Masse/Cuve/"
        "Operateur/InfoChargnt3/Inconnue', '/', char(13)), ',', char(9)), ';');");
  }
  std::string Traiter(const std::string& Reçu) {
    Tampon = Octets(Reçu);
    NoChargement.clear();
    return Traitement.TraiterDonnéesReçues(Tampon, Réponse, NoChargement);
  }
  /// The model record with Valeur written over it from Position on, counted from 1, in a good frame.
  std::string Record(std::size_t Position, const std::string& Valeur) {
    const std::string R = std::string(RecordModèle).replace(Position - 1, Valeur.size(), Valeur);
    return Traiter(std::string(CalculerCheckSum(Octets("\x02" + R + "\x03")).Bruts()));
  }
  std::string Vérifier(std::string Propriétaire, std::string Récoltant, std::string Part, const std::string& Groupe) {
    return Exploitations.VérifierExploitation(Propriétaire, Récoltant, Part, Groupe);
  }

  VérificationExploitation Exploitations{État};
  MiseEnFormeImport MiseEnForme{État};
  TraitementTrame Traitement{État, Exploitations, MiseEnForme};
  Octets Tampon, Réponse;
  std::string NoChargement;
};

TEST_F(Import, AGoodFrameBecomesTheHostsLineWhateverStandsBehindItAndInPlaceOfItsETX) {
  for (const char EnPlaceDuETX : {'\x03', 'x'}) {
    std::string Trame = "\x02" + RecordModèle + "\x03<;";  // sum 203: 12 and 11 behind "0"
    Trame[56] = EnPlaceDuETX;
    EXPECT_EQ(Traiter("noise" + Trame + "suite"),
              "1;12;19/09/08 08:30;19/09/08 09:15;5001;Chardonnay;05;01;12,5;2;1234;7;0;01;;");
    EXPECT_EQ(Réponse, Octets(1, ACK));
    EXPECT_EQ(NoChargement, "12");
    EXPECT_EQ(Tampon, Octets("suite"));
  }
}

TEST_F(Import, OneRightChecksumCharacterIsNotEnough) {
  for (const char* Faux : {"<:", "=;"}) {
    EXPECT_EQ(Traiter("\x02" + RecordModèle + "\x03" + Faux), "");
    EXPECT_EQ(Réponse, Octets(1, NAK));
    EXPECT_TRUE(Tampon.EstVide());
  }
}

TEST_F(Import, AFieldIsReworkedOrRefusedOnItsOwn) {
  struct Cas {
    std::size_t Position;
    std::string Valeur, Ligne;
    Mots Dits;  ///< errors and boxes
  };
  const Cas Table[] = {
      {17, "6x", "1;12;19/09/08 08:30;22/09/2026 08:30:00;5001;Chardonnay;05;01;12,5;2;1234;7;0;01;;", {}},
      {45, "000", "1;12;19/09/08 08:30;19/09/08 09:15;5001;Chardonnay;05;01;0;2;1234;7;0;01;;", {}},
      {45, "12000034000", "1;12;19/09/08 08:30;19/09/08 09:15;5001;Chardonnay;05;01;12;;0034;;0;01;;", {}},
      {19, "0001x3", "", {"Code exploitation introuvable : /01x3/0456/100.0000/007"}},
      {45,
       "9e9",
       "",
       {"RG80 Ombrey | TraiterDonnéesReçues : Dépassement de capacité : degré « 9e9 » du chargement n° 12"}}};
  for (const Cas& C : Table) {
    EXPECT_EQ(Record(C.Position, C.Valeur), C.Ligne);
    EXPECT_EQ(Réponse, Octets(1, ACK));
    EXPECT_EQ(Tampon.EstVide(), !C.Ligne.empty()) << C.Valeur;
    const Mots Boîtés = Fenêtres.Dites();
    Canal.Erreurs.insert(Canal.Erreurs.end(), Boîtés.begin(), Boîtés.end());
    EXPECT_EQ(std::exchange(Canal.Erreurs, {}), C.Dits);
  }
}

TEST_F(Import, TheHoldingIsChosenByShareThenByGroup) {
  Exécuter(
      "INSERT INTO Métayage VALUES"
      " ('6001','000200','201',33.3333,11,'8'),('6002','200','201',66.5,12,'7'),('6003','200','201',33,13,NULL),"
      " ('6004','200','201',50,14,'009'),('6010','201','201',100,15,NULL),('6020','200','202',12,16,NULL);"
      "INSERT INTO Coopérateur VALUES ('200','A',''),('0201','B',''),('202','C','')");
  // clang-format off
  const std::array<const char*, 5> Table[] = {
      {"000200", "000201", "033.0000", "007", "6001"},   // whole numbers count, the first of two wins
      {"000200", "000201", "066.0000", "008", "6002"},   // 66,5 rounds to the even neighbour
      {"000200", "000201", "067.0000", "009", "6004"},   // so this share fits none, and the group decides
      {"000200", "000201", "012.0000", "000", "6001"},   // neither, and no group isn't group 0: the first row
      {"000200", "000201", "x12.0000", "007", "6001"},   // an unreadable share fits every row
      {"000200", "000202", "099.0000", "007", "6020"},   // the pair's only holding
      {"000000", "000201", "099.0000", "007", "6010"}};  // no owner: the harvester with himself
  // clang-format on
  for (const auto& [Propriétaire, Récoltant, Part, Groupe, Code] : Table) {
    EXPECT_EQ(Vérifier(Propriétaire, Récoltant, Part, Groupe), Code) << Part;
  }
  EXPECT_TRUE(Canal.Messages.empty());
  EXPECT_TRUE(Hôte->Coopérateurs.empty());
}

TEST_F(Import, UnknownCodesAreCreatedAndListed) {
  EXPECT_EQ(Vérifier("000900", "000456", "050.5000", "007"), "77");
  const auto& [Id, Nom, Quand] = Hôte->Coopérateurs.at(0);
  EXPECT_EQ(Id + "|" + Nom + "|" + Quand, "900|900-Crée par le RG80|22/09/2026 08:30:00");
  EXPECT_EQ(Hôte->Métayages.at(0), (Mots{"900", "456", "0", "050.5000", "7", ""}));
  Hôte->RésultatAjout = -3;
  EXPECT_EQ(Vérifier("000123", "000901", "050.0000", "007"), "0");
  EXPECT_EQ(Fenêtres.Dites(), Mots{"RG80 Ombrey | Ajout d'un coopérateur inconnu : 901\rerreur -3"});
  const Mots Erreurs = {
      "Création d'un coopérateur inconnu : 000900",
      "Création d'une exploitation inconnue : Code = 77, Proprio:000900, Exploit:456, Part:050.5000, Groupe:007",
      "Création d'un coopérateur inconnu : 000901",
      "Création d'une exploitation inconnue : Code = 0, Proprio:00123, Exploit:000901, Part:050.0000, Groupe:007, "
      "erreur -3"};
  EXPECT_EQ(Canal.Erreurs, Erreurs);
  Canal.Erreurs.clear();
  const auto Autre = std::make_shared<FausseBaseDeD>();
  Autre->Base = Hôte->Base;
  Fenêtres.PendantBoîte = [&] { État.BaseDeD = Autre; };
  EXPECT_EQ(Record(19, "000902"), "");
  EXPECT_EQ(Autre->Métayages.size(), 0U) << "nothing is created in another base";
  EXPECT_EQ(Canal.Erreurs, Mots{"Création d'un coopérateur inconnu : 000902"});
  État.BaseDeD = Hôte;
  Fenêtres.PendantBoîte = [&] { État.Abandon = true; };
  EXPECT_EQ(Vérifier("000900", "000901", "050.0000", "007"), "");
  EXPECT_EQ(Hôte->Coopérateurs.size() + Hôte->Métayages.size(), 6U) << "nothing is created once the plug-in ends";
}

TEST_F(Import, FailuresAreShownAndGiveNoHolding) {
  const std::array<const char*, 3> Table[] = {
      {"1e50  ", "007", "Dépassement de capacité"},
      {"000456", "a'b", "Incompatibilité de type : groupe « a'b »"}};  // must be created under a number
  for (const auto& [Propriétaire, Groupe, Description] : Table) {
    EXPECT_EQ(Vérifier(Propriétaire, "000456", "100.0000", Groupe), "");
    EXPECT_EQ(Fenêtres.Dites(), Mots{std::string("Vérification d'exploitation | ") + Description});
  }
}

TEST_F(Import, TheLayoutAloneOrdersTheLine) {
  // clang-format off
  const std::array<std::string, 4> Table[] = {
      {"NoChargement\tN\t4", ";", "1", "12;"},
      {"InfoChargnt3\rQualité\rInfoChargnt1\rRamassage", "|", "1", "  |  |0|0|"},  // two blanks are a value
      {"Cépage\rCodeSite\rSélection\r", "\t", "S'2", "Pinot\tgris\tS'2\t05\t"},
      {"nochargement\rInconnue\r\rMasse", ";", "1", ";;;1234;"},  // names are exact
      {"CodeSite\rMasse", "", "", "11234"},
      {"Sélection\rMasse", ";", "1", ""}};                        // no column takes the variety
  // clang-format on
  const Mots Données = {"12", "d", "s", "5001", "05", "  ", "12,5", "2", "1234", "7", "  "};
  Hôte->Cépages = "Pinot\tgris\rAligoté";
  for (const auto& [LongChps, Format, Site, Ligne] : Table) {
    Coopérative.Connexion->Exécuter("UPDATE MSysEtats SET LongChps = ?1, Format = nullif(?2, '')", {LongChps, Format});
    Hôte->Site = Site;
    EXPECT_EQ(MiseEnForme.MiseEnFormePourImport(Données), Ligne) << LongChps;
  }
  Exécuter("UPDATE MSysEtats SET Exportation = -1");
  EXPECT_EQ(MiseEnForme.MiseEnFormePourImport(Données), "");
}

TEST_F(Import, TheHostsEventsReachTheOperator) {
  NotificationsImport Notifications(État);
  const auto Lignes = Hôte->Base->OpenRecordset("SELECT 'S2' AS CodeSite, 12 AS NoChargement");
  Notifications.EtatBdD_EnregistrementImporté("Synchronisation des chargements", *Lignes);
  Notifications.EtatBdD_EnregistrementImporté("chargement", *Lignes);
  Notifications.EtatBdD_EnregistrementMisAJour("Chargement", *Lignes);
  Notifications.EtatBdD_EnregistrementMisAJour("Coopérateur", *Lignes);
  Notifications.KVSynchro_DonnéesImportées("");
  EXPECT_EQ(Canal.Rafraîchissements, 3);
  ASSERT_EQ(Canal.Messages.size(), 2U);
  EXPECT_EQ(Canal.Messages[0].first, "Importation d'un nouveau chargement : Site S2, n° 12");
  EXPECT_EQ(Canal.Messages[1].first, "Importation d'un nouveau chargement de ");
}

}  // namespace Ombrey::Essais
