// The cooperative's tables: a new database, and a look at whether a database has them.
#include "host/schema.h"

#include <array>
#include <string>
#include <utility>
#include <vector>

#include "base/failures.h"
#include "host/engine.h"
#include "host/load_columns.h"
#include "host/sample.h"
#include "host/schema_upgrade.h"

namespace Tarvel {
namespace {

using Ombrey::ErreurExécution;
using Ombrey::IConnexion;
using Ombrey::Transaction;

constexpr std::array<const char*, 11> Tables = {"Coopérateur", "Métayage",          "Sélection", "Qualité",
                                                "Groupement",  "QuotasGrp",         "MSysEtats", "Chargement",
                                                "Cépage",      "ChargementArchive", "Paramètre"};

// Codes are texts that are looked up as numbers: each look-up has an index on the number. A variety's name and the
// site's code go into every import line as they are: with a separator or a control character no load would come in.
std::string TablesDeRéférence(const IConnexion& Connexion) {
  return R"(
CREATE TABLE Coopérateur (IdCoopérateur TEXT NOT NULL PRIMARY KEY, Nom TEXT NOT NULL DEFAULT '',
  Prénom TEXT NOT NULL DEFAULT '', DateCréation REAL);
CREATE UNIQUE INDEX CoopérateurParNuméro ON Coopérateur (CAST(IdCoopérateur AS INTEGER));

CREATE TABLE Groupement (IdGrp TEXT NOT NULL PRIMARY KEY, Nom TEXT NOT NULL DEFAULT '');
CREATE UNIQUE INDEX GroupementParNuméro ON Groupement (CAST(IdGrp AS INTEGER));

CREATE TABLE Métayage (IdMétayage TEXT NOT NULL PRIMARY KEY, Propriétaire TEXT NOT NULL, Récoltant TEXT NOT NULL,
  Part NUMERIC, CodeBadge INTEGER, IdGrp TEXT, Surface NUMERIC);
CREATE UNIQUE INDEX MétayageParNuméro ON Métayage (CAST(IdMétayage AS INTEGER));
CREATE INDEX MétayageParPaire ON Métayage (CAST(Propriétaire AS INTEGER), CAST(Récoltant AS INTEGER));
CREATE INDEX MétayageParGroupe ON Métayage (IdGrp);
CREATE INDEX MétayageParBadge ON Métayage (CodeBadge);

CREATE TABLE Sélection (IdSélection TEXT NOT NULL PRIMARY KEY, Désignation TEXT NOT NULL DEFAULT '',
  QuotasSurface NUMERIC);
CREATE TABLE Cépage (Sélection TEXT NOT NULL, Rang INTEGER NOT NULL, Désignation TEXT NOT NULL
  CONSTRAINT SansPointVirgule CHECK ()" +
         Connexion.SansCoupure("Désignation") + R"(), PRIMARY KEY (Sélection, Rang));
CREATE TABLE Qualité (IdQualité TEXT NOT NULL PRIMARY KEY, Désignation TEXT NOT NULL DEFAULT '');
CREATE TABLE QuotasGrp (IdGrp TEXT NOT NULL, Sélection TEXT NOT NULL, QuotaJournalier NUMERIC,
  PRIMARY KEY (IdGrp, Sélection));
CREATE UNIQUE INDEX QuotasGrpParNuméro ON QuotasGrp (CAST(IdGrp AS INTEGER), Sélection);

CREATE TABLE MSysEtats (Titre TEXT NOT NULL, Exportation INTEGER NOT NULL DEFAULT 0, LongChps TEXT, Format TEXT,
  PRIMARY KEY (Titre, Exportation));
CREATE TABLE Paramètre (Nom TEXT NOT NULL PRIMARY KEY, Valeur TEXT NOT NULL DEFAULT ''
  CONSTRAINT SansPointVirgule CHECK ()" +
         Connexion.SansCoupure("Valeur") + R"());
)";
}

constexpr const char* IndexDesChargements = R"(
CREATE UNIQUE INDEX ChargementParNuméro ON Chargement (CodeSite, NoChargement);
CREATE INDEX ChargementParDate ON Chargement (DateCh);
CREATE INDEX ChargementParAppellation ON Chargement (Sélection, DateCh, Métayage, Masse);
CREATE INDEX ChargementParExploitation ON Chargement (Métayage, Sélection, DateCh, Masse);
CREATE INDEX ArchiveParNuméro ON ChargementArchive (CodeSite, NoChargement);
CREATE INDEX ArchiveParAppellation ON ChargementArchive (Sélection, DateCh, Métayage, Masse);
CREATE INDEX ArchiveParExploitation ON ChargementArchive (Métayage, Sélection, DateCh, Masse);
)";

/// The loads of the day, and those whose number another load has taken over, have the same columns.
std::string CréationChargements(const std::string& Table, const std::string& Clé) {
  std::string Sql = "CREATE TABLE " + Table + " (IdChargement " + Clé;
  for (const ColonneChargement& C : ColonnesChargement)
    Sql.append(", ").append(C.Nom).append(" ").append(C.Type).append(C.EstObligatoire ? " NOT NULL" : "");
  return Sql + ", Synchronisé INTEGER NOT NULL DEFAULT 0)";
}

std::string LongChps() {
  std::string Texte;
  for (const ColonneChargement& C : ColonnesChargement) {
    if (!Texte.empty()) Texte += '\r';
    Texte.append(C.Nom).append("\t").append(C.Genre).append("\t").append(std::to_string(C.Largeur));
  }
  return Texte;
}

void CréerTables(IConnexion& Connexion) {
  Connexion.ExécuterTout(TablesDeRéférence(Connexion));
  // A load's own number never comes back, so that a station can tell what is new to it.
  Connexion.Exécuter(CréationChargements("Chargement", Connexion.CléNumérotée(true)));
  Connexion.Exécuter(CréationChargements("ChargementArchive", Connexion.CléNumérotée(false)));
  Connexion.ExécuterTout(IndexDesChargements);
  Connexion.Exécuter("INSERT INTO MSysEtats (Titre, Exportation, LongChps, Format) VALUES (?1, 0, ?2, ';')",
                     {TitreImport, LongChps()});
  Connexion.Exécuter("INSERT INTO Paramètre (Nom, Valeur) VALUES ('CodeSite', '1')");
  for (int Numéro = PremierSchéma; Numéro < NuméroSchéma; ++Numéro) PasserAuSchémaSuivant(Connexion, Numéro);
}

void RefuserDisqueRéseau(const std::string& Base, const std::filesystem::path& Montages) {
  const auto Fichier = FichierDeBase(Base);
  const std::string Genre = Fichier ? Ombrey::DisqueRéseau(*Fichier, Montages) : "";
  if (!Genre.empty())
    throw ErreurExécution("La base « " + Base + " » est sur un disque de réseau (" + Genre +
                          ") : deux machines y perdraient des chargements. Un seul poste tient sa base sur un disque à"
                          " lui ; plusieurs postes en ont une sur un serveur (postgresql://…)");
}

}  // namespace

void CréerBase(const std::string& Base, bool AvecExemple) {
  CréerBase(Base, [&](IConnexion& Neuve) {
    if (AvecExemple) InsérerExemple(Neuve);
  });
}

std::span<const char* const> TablesCoopérative() { return Tables; }

void CréerBase(const std::string& Base, const std::function<void(IConnexion&)>& Remplir) {
  RefuserDisqueRéseau(Base, Ombrey::MontagesDuSystème);
  auto Connexion = CréerMoteur(Base);
  try {
    const Ombrey::SansHâte Patiente(*Connexion);
    Transaction Tout(*Connexion);
    for (const char* Table : Tables)
      if (!Connexion->ColonnesDe(Table).empty())
        throw ErreurExécution("La base « " + Base + " » a déjà une table " + Table + " : rien n'y est créé");
    CréerTables(*Connexion);
    Remplir(*Connexion);
    Tout.Valider();
  } catch (const ErreurExécution&) {
    Connexion.reset();
    AbandonnerBase(Base);
    throw;
  }
}

std::shared_ptr<IConnexion> OuvrirCoopérative(const std::string& Base, Ombrey::Horloge Maintenant,
                                              const std::filesystem::path& Montages) {
  RefuserDisqueRéseau(Base, Montages);
  return OuvrirAuRepos(Base, std::move(Maintenant));
}

std::shared_ptr<IConnexion> OuvrirAuRepos(const std::string& Base, Ombrey::Horloge Maintenant) {
  auto Connexion = OuvrirMoteur(Base, std::move(Maintenant));
  std::string Absentes;
  for (const char* Table : Tables)
    if (Connexion->ColonnesDe(Table).empty()) Absentes.append(" ").append(Table);
  if (!Absentes.empty())
    throw ErreurExécution("La base « " + Base + " » n'est pas celle d'une coopérative. Il manque :" + Absentes);
  return Connexion;
}

void VérifierDroits(IConnexion& Connexion) {
  if (Connexion.EstEnLectureSeule()) return;
  std::string Manquants;
  std::vector<std::string> Toutes(Tables.begin(), Tables.end());
  Toutes.emplace_back(TableCumuls);
  for (const std::string& Nom : Toutes) {
    std::vector<std::string> Droits = {"SELECT"};
    if (Nom == "Coopérateur" || Nom == "Métayage") Droits.emplace_back("INSERT");
    if (Nom == TableChargements || Nom == TableArchive) Droits = {"SELECT", "INSERT", "UPDATE", "DELETE"};
    const std::string Siens = Connexion.DroitsManquants(Nom, Droits);
    if (!Siens.empty()) Manquants.append("\n  ").append(Siens).append(" sur ").append(Nom);
  }
  if (!Manquants.empty())
    throw ErreurExécution("Il manque des droits à ce compte sur la base « " + Connexion.Nom() + " » :" + Manquants);
}

}  // namespace Tarvel
