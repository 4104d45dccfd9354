// Every query of the plug-in, run by the room that has it, on a base with odd values and on an empty one.
#include "base/text_helpers.h"
#include "host/day_view.h"
#include "import/holding_checks.h"
#include "import/import_staging.h"
#include "monitor/load_list.h"
#include "quotas/reply.h"
#include "tests/host/cooperative_fixture.h"
#include "tests/support/fake_host.h"
#include "transfer/data_sets.h"

namespace Tarvel {

using namespace Ombrey::Essais;

class Requêtes : public SurChaqueMoteur {
 protected:
  static constexpr const char* Étranges = R"(
INSERT INTO Coopérateur (IdCoopérateur, Nom, Prénom) VALUES ('0012', 'L''Hôte "[x]"; ?1', 'Élise'), ('7', '', ''),
  ('999999', '%_[Nom]', 'Zoé');
INSERT INTO Métayage (IdMétayage, Propriétaire, Récoltant, Part, CodeBadge, IdGrp) VALUES
  ('5', '0012', '7', 33.3333, 42, '7'), ('6', '12', '007', 66.6667, 43, '''8'), ('7', '7', '7', NULL, NULL, NULL),
  ('8', '999999', '999999', 0, 0, '0');
INSERT INTO Sélection (IdSélection, Désignation, QuotasSurface) VALUES ('05', 'Côteaux [d''Oc]', 7500.5),
  ('60', 'Déclassé', 1), ('9''', 'ORDER BY "x"', NULL);
INSERT INTO Qualité (IdQualité, Désignation) VALUES ('01', 'Saine ''bio'''), ('02', '');
INSERT INTO Groupement (IdGrp, Nom) VALUES ('7', 'Côteau; [sud]');
INSERT INTO QuotasGrp (IdGrp, Sélection, QuotaJournalier) VALUES ('7', '05', 12500.5), ('7', '60', 1), ('7', '9''', NULL),
  ('''8', '05', 3);
INSERT INTO Chargement (CodeSite, NoChargement, DateCh, Métayage, Sélection, Qualité, Degré, Masse, Synchronisé) VALUES
  ('S''1', 1, 46287, '5', '05', '01', 12.5, 1234, 0), ('S''1', 2, 46288, '5', '??', NULL, NULL, NULL, -1),
  ('S''1', 3, 46286.99, '5', '05', '01', 1, 1, 0), ('S''1', 4, 46287.5, '99', '05', '01', 1, 1, 0),
  ('1', 1, 46287.25, '8', '9''', '02', 0, 0, 0), ('S''1', 5, 46287.5, '6', '05', NULL, 1, 1, 0);
INSERT INTO MSysEtats (Titre, Exportation, LongChps, Format) SELECT Titre, -1, 'x', '|' FROM MSysEtats;
UPDATE Paramètre SET Valeur = 'S''1')";

  void Ouvrir(const char* Sql) {
    Fermer();
    Adresse_ = NouvelleBase(Moteur_, Gardé_);
    CréerBase(Adresse_, false);
    OuvrirMoteur(Adresse_)->ExécuterTout(Sql);
    Rouvrir();
    // The engine that has types keeps a number in such a column; the other one what was typed.
    if (Moteur_ == Moteur::Sqlite)
      Connexion_->ExécuterTout("UPDATE Métayage SET Part = '33,3333' WHERE IdMétayage = '5'");
    État_.BaseDeD = Base_;
    Lu_ = Base_->BaseDAO();
  }

  std::string Rangées(const std::string& Sql, Ombrey::TypeRecordset Type = Ombrey::TypeRecordset::Instantané) {
    std::string Texte;
    const auto Lues = Lu_->OpenRecordset(Sql, Type);
    for (; !Lues->Eof(); Lues->MoveNext(), Texte += '/')
      for (std::size_t Rang = 0; Rang < Lues->Colonnes().size(); ++Rang)
        Texte += (Rang == 0 ? "" : "|") + TexteOuVide(Lues->Fields(Rang), Ombrey::Régional{});
    return Texte;
  }
  /// The rows of a file, behind their count where a query of its own says it; those of a group's slots.
  std::string Fichier(std::size_t Rang) {
    const Ombrey::JeuDeDonnées& Sien = Ombrey::JeuxDeDonnées()[Rang];
    return (Sien.SqlComptage ? Rangées(Sien.SqlComptage) : "") + Rangées(Sien.Sql, Ombrey::TypeRecordset::VersLAvant);
  }
  std::string Quotas(const std::string& Groupe) {
    const Ombrey::Emplacements& Siens = *Ombrey::JeuxDeDonnées()[3].Créneaux;
    return Rangées(Siens.SqlAvant + Ombrey::TexteSql(Groupe) + Siens.SqlAprès);
  }
  std::string Liste() {
    std::string Texte;
    for (const auto& Rangée : LireChargementsDuJour(*Lu_, {}).Rangées) {
      for (const std::string& Valeur : Rangée) Texte += Valeur + "|";
      Texte += '/';
    }
    return Texte;
  }
  std::string Exploitation(std::string Propriétaire, std::string Récoltant, std::string Part, const char* Groupe) {
    return Ombrey::VérificationExploitation(État_).VérifierExploitation(Propriétaire, Récoltant, Part, Groupe);
  }
  /// What the operator reads of the load's figures.
  std::string Cumuls(std::string NoChargement) {
    Canal_.Messages.clear();
    Ombrey::RéponseCumuls(État_, Services_).MettreAJourCumuls(NoChargement);
    return Canal_.Messages.empty() ? "" : Canal_.Messages.back().first;
  }
  std::string LigneImport() {
    const Mots Reçues = {"12", "d", "s", "5", "05", "01", "12,5", "2", "1234", "7", "01"};
    return Ombrey::MiseEnFormeImport(État_).MiseEnFormePourImport(Reçues);
  }

  FaussePlateforme Plateforme_;
  FauxCanal Canal_;
  FauxServices Services_;
  Ombrey::ÉtatPartagé État_{Plateforme_, Canal_};
  std::shared_ptr<Ombrey::IDatabase> Lu_;
};
SUR_CHAQUE_MOTEUR(Requêtes);

class Parcours : public Requêtes {};
INSTANTIATE_TEST_SUITE_P(Moteurs, Parcours, testing::Values(Moteur::Sqlite), NomMoteur);

// The engine itself counts the rows that a statement came by without an index: whatever the road asks is in it.
TEST_P(Parcours, OfALoadAndOfAPollLooksUpByIndexSoThatGrowthCostsNothing) {
  Ouvrir(Étranges);
  EXPECT_EQ(Exploitation("000012", "000007", "066.6667", "007"), "6");
  for (const char* Masse : {"1234", "1300", "1234", "1234"})
    EXPECT_EQ(Importer(Ligne("12", "22/09/26 08:30", "6", "05", Masse)), "");
  static_cast<void>(Cumuls("5") + LigneImport() + Liste());
  Base_->Actualiser();
  EXPECT_EQ(Lire("SELECT nscan, sql FROM sqlite_stmt WHERE nscan > 0"), "");
}

TEST_P(Requêtes, ReadOddValuesAsTheyAreAndNothingWhereNothingIs) {
  // clang-format off
  const std::tuple<std::function<std::string()>, const char*, const char*> Toutes[] = {
      {[&] { return Fichier(0); }, "05|Côteaux [d'Oc]|7500,5|0/9'|ORDER BY \"x\"||0/", ""},
      {[&] { return Fichier(1); }, "0012|L'Hôte \"[x]\"; ?1/7|/999999|%_[Nom]/", ""},
      {[&] { return Fichier(2); }, "4/|7|7||/0|999999|999999|0|0/42|7|0012|33,3333|7/43|007|12|66,6667|'8/", "0/"},
      {[&] { return Fichier(3); }, "|/'8|'8/0|0/7|7/", ""},
      {[&] { return Fichier(4); }, "2/01|Saine 'bio'/02|/", "0/"},
      {[&] { return Quotas("7"); }, "05|12500,5/9'|/", ""},
      {[&] { return Quotas("'8"); }, "05|3/", ""},
      // Midnight of the evening is still the day's; a load is left out whose holding or whose owner isn't there.
      {[&] { return Liste(); },
       "S'1|2|23/09 00:00|||||L'Hôte \"[x]\"; ?1 Élise| |33,3333|7 Côteau; [sud]|1|/"
       "1|1|22/09 06:00|0|0|ORDER BY \"x\"||%_[Nom] Zoé|%_[Nom] Zoé|0| |0|/"
       "S'1|1|22/09 00:00|1234|12,5|Côteaux [d'Oc]|Saine 'bio'|L'Hôte \"[x]\"; ?1 Élise| |33,3333|7 Côteau; [sud]|0|/", ""},
      {[&] { return std::to_string(LireJournée(*Lu_, "").Chargements.size()); }, "5", "0"},
      {[&] { return Exploitation("000012", "000007", "066.6667", "007"); }, "6", "1"},
      {[&] { return Exploitation("000012", "000007", "001.0000", "007"); }, "5", "1"},  // by its group
      {[&] { return Cumuls("1"); }, "Mise à jour des cumuls : Exploitation : 5 - Appellation : 05 - Groupe : 7", ""},
      {[&] { return Cumuls("5"); }, "Mise à jour des cumuls : Exploitation : 6 - Appellation : 05 - Groupe : '8", ""},
      {[&] { return LigneImport(); }, "S'1;12;d;s;5;05;;01;12,5;2;1234;7;0;0;0;0;01;0;",
       "1;12;d;s;5;05;;01;12,5;2;1234;7;0;0;0;0;01;0;"},
  };
  // clang-format on
  for (const bool Vide : {false, true}) {
    Ouvrir(Vide ? "" : Étranges);
    for (const auto& [Lire, Attendu, SansRien] : Toutes) EXPECT_EQ(Lire(), Vide ? SansRien : Attendu);
  }
}

}  // namespace Tarvel
