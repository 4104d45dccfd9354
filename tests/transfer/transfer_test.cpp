// The encoders and the five files, byte by byte against records worked out by hand; the transfer window: order, pauses,
// ticks and titles, failures with Retry and Cancel, and the plug-in's end meanwhile.
#include "tests/transfer/small_cooperative.h"
#include "transfer/file_builder.h"
#include "transfer/transfer_window.h"

namespace Ombrey::Essais {

std::string Blancs(std::size_t Nombre) { return std::string(Nombre, ' '); }

TEST(RecordEncoders, NumbersAndShares) {
  // clang-format off
  const std::tuple<const char*, const char*, std::uint8_t> Nombres[] = {
      {"12", "000012", 6}, {"000345", "000345", 6}, {" 7 ", "07", 2}, {"", "000", 3}, {"abc", "000", 3},
      {"2,5", "0002", 4}, {"3,5", "0004", 4}, {"2.5", "0000", 4}, {"1234567", "1234567", 6}, {"-5", "-005", 3},
      {"-0,2", "000", 3}, {"1e3", "01000", 5}, {"1,5,2", "00", 2}, {"2147483647", "2147483647", 8}};
  const std::pair<ValeurChamp, const char*> Parts[] = {
      {100.0, "1000000"}, {33.3333, "0330000"}, {50.25, "0500000"}, {50.5, "0500000"}, {std::string("33.5"), "0340000"},
      {std::string("12,6"), "0130000"}, {std::string("tout"), "0000000"}, {{}, "0000000"}, {1000.0, "10000000"}};
  // clang-format on
  for (const auto& [Texte, Attendu, Longueur] : Nombres)
    EXPECT_EQ(CadrerNombre(Texte, Longueur, {}), Octets(Attendu)) << Texte;
  for (const auto& [Valeur, Attendu] : Parts) EXPECT_EQ(EncoderPart(Valeur, 7, {}), Octets(Attendu)) << Attendu;
  EXPECT_THROW((void)EncoderPart(40000.0, 7, {}), ErreurExécution);
}

const std::string T = "Transmission des données | ";
constexpr const char* Muet = "Aucune réponse du RG80.";
void Transférer(FausseVueChargntDonnées& Vue) { Vue.Gestes.BtnTransférer_Click(); }

struct Transfert : AvecCoopérative {
  Mots Titres;
  const std::uint64_t Début = Système.Horloge = 0xFFFFFFFFULL - 1300;  // the ticks wrap in a pause
  std::string Journal;  ///< numbers of the files sent, with their milliseconds; ticks at the end
  std::int32_t Refusé = 0;

  Transfert() {
    Services.SurTransmission = [this](std::int32_t Numéro, auto&) {
      EXPECT_TRUE(Fenêtres.Sablier);
      EXPECT_FALSE(Fenêtres.VueChargntDonnées->Active);
      Noter(std::to_string(Numéro));
      return Numéro == Refusé ? Muet : "";
    };
  }
  void Noter(Mot Quoi) { Journal += " " + Quoi + ":" + std::to_string(Système.Horloge - Début); }
  /// The file of the data set with this rank in the order of sending, as raw bytes; the reason when it can't be made.
  std::string Construire(std::size_t Rang) {
    Titres.clear();
    std::vector<Octets> Lignes{Octets("left over"), Octets("from before")};
    const auto Titrer = [this](Mot Titre) { Titres.push_back(Titre); };
    const std::string Raison = RefusDe([&] {
      static_cast<void>(ConstruireFichier(JeuxDeDonnées()[Rang], {*Hôte->Base, {}}, Titrer, Lignes));
    });
    EXPECT_EQ(Lignes.size(), 1U);
    return Raison.empty() ? std::string(Lignes[0].Bruts()) : Raison;
  }
  /// Opens the window, lets Geste act in it, and closes it.
  void Ouvrir(const std::function<void(FausseVueChargntDonnées&)>& Geste) {
    Fenêtres.SurVueChargntDonnées = [this, Geste](FausseVueChargntDonnées& Vue) {
      Geste(Vue);
      EXPECT_TRUE(Vue.Active);
      EXPECT_FALSE(Fenêtres.Sablier);
      EXPECT_EQ(Vue.Titres.back(), "Transmission des données");
      Journal += " ";
      for (const auto& [Case, Cochée] : Vue.Cases) Journal += Cochée ? 'x' : '-';
      Vue.Gestes.BtnFermer_Click();
    };
    FChargntDonnées(État).Afficher(Services);
  }
};

TEST_F(Transfert, FilesHoldTheRecordsWorkedOutByHand) {
  EXPECT_EQ(Construire(0), "") << "no rows";
  // clang-format off
  Exécuter(
      "INSERT INTO Coopérateur VALUES('12','Dupré',''),('8',NULL,NULL),('99','Sans exploitation',''),"
      "('000345','ABCDEFGHIJKLMNOPQRSTUVWXYZABCDEFGHé','x'),('7','ABCDEFGHIJKLMNOPQRSTUVWXYZABCDEFGHIé','x');"
      "INSERT INTO Métayage VALUES('1','12','12',100,'1001','7'),('2','12','000345',33.3333,'1002',NULL),"
      "('3','7','8',50.5,'1234567','a''c');"
      "INSERT INTO Sélection VALUES('5','Aligoté',8.5),('10','Crémant de Bourgogne blanc',9.5),('20',NULL,NULL),"
      "('60','Rebêche',1),('70','Lies',1),('90','Divers',1);"
      "INSERT INTO Qualité VALUES('1','Saine'),('x','Pourriture grise très avancée'); INSERT INTO QuotasGrp"
      " VALUES('7','10',1500.5),('7','5',NULL),('7','60',9),('8','10',1),('a''c','20',123456789);");
  const std::pair<std::string, std::string> Table[] = {
      {"10Cr\xE9mant de Bourgogne001000000" "20" + Blancs(20) + "000000000" "05Aligot\xE9" + Blancs(13) + "000800000",
       "Appelation 10/3 appelations en cours..."},
      {"000345ABCDEFGHIJKLMNOPQRSTUVWXYZABCDEFGH\xE9" "000012Dupr\xE9" + Blancs(30) +
       "000007ABCDEFGHIJKLMNOPQRSTUVWXYZABCDEFGHI" "000008" + Blancs(35),
       "Coopérateur 000345/4 coopérateurs en cours..."},
      {"0010010000120000121000000007" "0010020003450000120330000000" "1234560000080000070500000000",
       "Badge 1001/3 badges en cours..."},
      {"0077" + Blancs(19) + "10000015000500000000" + Blancs(40) + "000a'c" + Blancs(17) + "2012345678" + Blancs(50),
       "Groupement 7/2 groupements en cours..."},
      {"01Saine" + Blancs(15) + "00Pourriture grise tr\xE8", "Observation 1/2 observations en cours..."}};
  // clang-format on
  for (std::size_t Rang = 0; const auto& [Attendu, PremierEtDernier] : Table) {
    EXPECT_EQ(Construire(Rang++), Attendu);
    EXPECT_EQ(Titres.front() + "/" + Titres.back(), PremierEtDernier);
  }
}

TEST_F(Transfert, GroupZeroIsNoGroupAndQuotasBeyondTheSixthAreToldOnceTheFileWent) {
  // clang-format off
  Exécuter(
      "INSERT INTO Métayage VALUES('1','1','1',1,'1','7'),('2','1','1',1,'1','8'),('3','1','1',1,'1','000'),('4','1','1',1,'1','0');"
      "INSERT INTO Sélection"
      " VALUES('11','',0),('12','',0),('13','',0),('14','',0),('15','',0),('16','',0),('17','',0),('18','',0);"
      "INSERT INTO QuotasGrp SELECT '7',IdSélection,1 FROM Sélection;"
      "INSERT INTO QuotasGrp SELECT '8',IdSélection,2 FROM Sélection WHERE IdSélection<'17';");
  EXPECT_EQ(Construire(3), "0077" + Blancs(19) + "110000000112000000011300000001140000000115000000011600000001"
                           "0088" + Blancs(19) + "110000000212000000021300000002140000000215000000021600000002");
  // clang-format on
  Refusé = 2;
  Fenêtres.Réponses = {RéponseBoîte::Recommencer};
  Fenêtres.PendantBoîte = [this] { Refusé = 0; };
  Ouvrir([](auto& Vue) {
    for (int Fois = 0; Fois < 2; ++Fois) Transférer(Vue);
  });
  const std::string Omis = "Groupement 7 : quotas non transmis : 2 (le RG80 n'en tient que 6 par groupement).";
  EXPECT_EQ(Fenêtres.Dites(), (Mots{T + "Groupements\r\nAucune réponse du RG80. ?", T + Omis}));
  EXPECT_EQ(Canal.Erreurs, Mots{Omis});
}

TEST_F(Transfert, FilesFailWhenTheDataDontFit) {
  Exécuter("INSERT INTO Qualité VALUES('9999999999','')");
  EXPECT_EQ(Construire(4), "Dépassement de capacité (Observation 9999999999)");
  Exécuter(
      "INSERT INTO Qualité WITH RECURSIVE N(I) AS (SELECT 1 UNION ALL SELECT I+1 FROM N WHERE I<32771)"
      " SELECT I,'' FROM N");
  EXPECT_EQ(Construire(4), "Plus de 32767 enregistrements");
}

/// Another station writes behind every query.
struct BaseChangeante : IDatabase {
  explicit BaseChangeante(PetiteCoopérative& LaSienne) : Sienne(LaSienne) {}
  std::string Name() const override { return Sienne.Base->Name(); }
  std::unique_ptr<IRecordset> OpenRecordset(Mot Sql, TypeRecordset Type) override {
    auto Lignes = Sienne.Base->OpenRecordset(Sql, Type);
    Sienne.Connexion->ExécuterTout(Changement);
    return Lignes;
  }
  PetiteCoopérative& Sienne;
  std::string Changement;
};

TEST_F(Transfert, FilesFailWhenTheDataChangeBetweenCountAndReading) {
  const auto Base = std::make_shared<BaseChangeante>(Coopérative);
  Hôte->Base = Base;
  for (const char* Changement : {"INSERT INTO Qualité VALUES('1','')", "DELETE FROM Qualité"}) {
    Base->Changement = Changement;
    EXPECT_EQ(Construire(4), "Les données ont changé pendant la lecture");
  }
}

TEST_F(Transfert, SendsTheSetsInOrderWithAPauseAheadOfEachButTheFirst) {
  Exécuter("INSERT INTO Qualité VALUES('1','Saine')");
  Système.Après(milliseconds(1200), [] {});
  Ouvrir([](auto& Vue) {
    EXPECT_EQ(Vue.Titres, Mots{"Chargement des données vers le RG80"});
    Transférer(Vue);
    EXPECT_EQ(Vue.Graisses, "+Appelations-Appelations+Coop-Coop+Badges-Badges+Groupnts-Groupnts+Observ-Observ");
    Vue.Cocher("ChkObserv", true);
    for (int Fois = 0; Fois < 2; ++Fois) Transférer(Vue);  // the second time nothing is left to send
  });
  EXPECT_EQ(Journal, " 4:0 1:1000 5:2000 2:3000 6:4000 6:5000 -----");
  EXPECT_EQ(Services.Transmis[4].second, std::vector{Octets("01Saine" + Blancs(15))});
}

TEST_F(Transfert, RetriesFromTheSetThatFailedAndKeepsTheTicksOnCancel) {
  Refusé = 1;
  Fenêtres.Réponses = {RéponseBoîte::Recommencer};  // and Cancel from then on
  Ouvrir(Transférer);
  EXPECT_EQ(Journal, " 4:0 1:1000 1:2000 -xxxx");
  EXPECT_EQ(Fenêtres.Dites(), Mots(2, T + "Coopérateurs\r\nAucune réponse du RG80. ?"));
}

TEST_F(Transfert, TakesAnyFailureOfASetAsItsReason) {
  Exécuter("ALTER TABLE Coopérateur RENAME TO Autre;");
  État.Erreur.Noter(ErreurExécution("d'un dialogue précédent"));
  Ouvrir(Transférer);
  EXPECT_EQ(Fenêtres.Dites(),
            Mots{T + "Coopérateurs\r\nTable introuvable : Coopérateur (no such table: Coopérateur) ?"});
  EXPECT_FALSE(État.Erreur.EstPrésente());
  Services.SurTransmission = [](auto, auto&) { return "Refusé \x02é\x7F" + std::string(5000, '0'); };
  Ouvrir(Transférer);
  EXPECT_EQ(Fenêtres.Dites(), Mots{T + "Appelations\r\nRefusé ␂é␡" + std::string(77, '0') + "… (5003 caractères) ?"});
}

}  // namespace Ombrey::Essais
