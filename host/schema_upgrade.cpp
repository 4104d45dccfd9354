// The schema's number, and what brings an older base up to it.
#include "host/schema_upgrade.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <filesystem>
#include <string>

#include "base/failures.h"
#include "base/regional_forms.h"
#include "host/engine.h"
#include "host/load_columns.h"
#include "platform/database/kept_sums.h"

namespace Tarvel {
namespace {

using Ombrey::ErreurExécution;
using Ombrey::IConnexion;

/// What the terminal sent is what the row says by now; a date with seconds was the time of an import.
std::string Valeur1Vers2(const ColonneChargement& Colonne) {
  const std::string Nom = Colonne.Nom;
  if (std::string(Colonne.Genre) != "date") return Nom;
  const std::string Minutes = Nom + " * 1440";
  return "CASE WHEN abs(" + Minutes + " - round(" + Minutes + ")) < 0.01 THEN " + Nom + " END";
}

void GarderCeQuiFutReçu(IConnexion& Connexion, const std::string& Table) {
  std::string Colonnes;
  std::string Valeurs;
  const auto Connues = Connexion.ColonnesDe(Table);
  for (const ColonneChargement& Colonne : ColonnesChargement) {
    const std::string Nom = ColonneReçue(Colonne.Nom);
    if (!Colonne.EstReçue || std::ranges::find(Connues, Nom, &Ombrey::ColonneDeTable::Nom) != Connues.end()) continue;
    Colonnes += "ALTER TABLE " + Table + " ADD COLUMN " + Nom + " " + Colonne.Type + ";";
    Valeurs += (Valeurs.empty() ? " SET " : ", ") + Nom + " = " + Valeur1Vers2(Colonne);
  }
  if (Valeurs.empty()) return;
  Connexion.ExécuterTout(Colonnes);
  Connexion.Exécuter("UPDATE " + Table + Valeurs);
}

/// A view of the loads, those of the archive marked, with dates that people read.
std::string VueLisible(const IConnexion& Connexion) {
  return R"(
DROP VIEW IF EXISTS ChargementLisible;
CREATE VIEW ChargementLisible AS
  SELECT CodeSite, NoChargement, )" +
         Connexion.DateLisible("DateCh") + " AS Arrivée, " + Connexion.DateLisible("DateSortie") +
         R"( AS Sortie, Métayage, Sélection, Cépage, Qualité, Degré, NoQuai, Masse, Cuve, Synchronisé, Archive
  FROM (SELECT CodeSite, NoChargement, DateCh, DateSortie, Métayage, Sélection, Cépage, Qualité, Degré, NoQuai, Masse,
          Cuve, Synchronisé, '' AS Archive FROM Chargement
        UNION ALL
        SELECT CodeSite, NoChargement, DateCh, DateSortie, Métayage, Sélection, Cépage, Qualité, Degré, NoQuai, Masse,
          Cuve, Synchronisé, 'archivé' FROM ChargementArchive) AS Tous
  ORDER BY DateCh;
)";
}

void De1Vers2(IConnexion& Connexion) {
  for (const char* Table : {TableChargements, TableArchive}) GarderCeQuiFutReçu(Connexion, Table);
  Connexion.ExécuterTout(
      "CREATE INDEX ChargementParNuméroReçu ON Chargement (ReçuCodeSite, ReçuNoChargement);"
      "CREATE INDEX ArchiveParNuméroReçu ON ChargementArchive (ReçuCodeSite, ReçuNoChargement);"
      "CREATE TABLE Schéma (Numéro INTEGER NOT NULL);"
      "INSERT INTO Schéma (Numéro) VALUES (1);");
  Connexion.ExécuterTout(VueLisible(Connexion));
}

void De2Vers3(IConnexion& Connexion) { Connexion.TenirSommes(CumulsDeSaison()); }

/// Which stations work on the base, and when each was last known to live.
void De3Vers4(IConnexion& Connexion) {
  Connexion.Exécuter(
      "CREATE TABLE IF NOT EXISTS Station (CodeSite TEXT NOT NULL PRIMARY KEY, Machine TEXT NOT NULL DEFAULT '', Vue "
      "REAL NOT NULL)");
}

/// The office may correct the site, too; weights with the blanks that break no line count as what they are.
void De4Vers5(IConnexion& Connexion) {
  for (const char* Table : {TableChargements, TableArchive}) GarderCeQuiFutReçu(Connexion, Table);
  Connexion.ExécuterTout(
      "DROP INDEX ChargementParNuméroReçu; DROP INDEX ArchiveParNuméroReçu;"
      "CREATE INDEX ChargementParNuméroReçu ON Chargement (ReçuCodeSite, ReçuNoChargement);"
      "CREATE INDEX ArchiveParNuméroReçu ON ChargementArchive (ReçuCodeSite, ReçuNoChargement);"
      "CREATE INDEX IF NOT EXISTS ArchiveParDate ON ChargementArchive (DateCh);");
  De2Vers3(Connexion);
}

/// The holdings of a group, however its number is written; an ordinary load writes no note of replaced rows.
void De5Vers6(IConnexion& Connexion) {
  Connexion.ExécuterTout(
      "CREATE INDEX IF NOT EXISTS MétayageParNuméroDeGroupe ON Métayage (CAST(IdGrp AS INTEGER), IdMétayage)");
  De2Vers3(Connexion);
}

/// The step from each number to the next, from the first on.
constexpr std::array<void (*)(IConnexion&), NuméroSchéma - PremierSchéma> Étapes = {
    {De1Vers2, De2Vers3, De3Vers4, De4Vers5, De5Vers6}};

/// Whole and on the disk, beside the base, under a name that nothing bears yet; another station may take one meanwhile.
void GarderUneCopie(const std::string& Base, int Numéro) {
  const std::string Début = Base + ".schéma-" + std::to_string(Numéro);
  std::string Copie = Début;
  for (int Rang = 2;; Copie = Début + "-" + std::to_string(Rang++)) {
    if (std::filesystem::exists(Copie)) continue;
    try {
      return CopierFichier(Base, Copie);
    } catch (const ErreurExécution&) {
      if (!std::filesystem::exists(Copie)) throw;
    }
  }
}

}  // namespace

int NuméroSchémaDe(IConnexion& Connexion) {
  const bool ANuméro = !Connexion.ColonnesDe("Schéma").empty();
  if (!ANuméro) return PremierSchéma;
  const auto Numéro = Ombrey::Comme<std::int64_t>(Connexion.Lire("SELECT MAX(Numéro) FROM Schéma"));
  return static_cast<int>(Numéro.value_or(PremierSchéma));
}

Ombrey::SommesTenues CumulsDeSaison() {
  return {.Table = TableCumuls,
          .Sources = {TableChargements, TableArchive},
          .Identité = "IdChargement",
          .SansDouble = {"CodeSite", "NoChargement"}};
}

std::string RefaireCumuls(IConnexion& Connexion) {
  const Ombrey::SansHâte Patiente(Connexion);
  Ombrey::Transaction Tout(Connexion);
  const std::string Faux = Ombrey::TexteOuVide(Connexion.SommesFausses(CumulsDeSaison()), {});
  Connexion.RefaireSommes(CumulsDeSaison());
  Tout.Valider();
  return "Les cumuls de la saison sont refaits d'après les chargements. Ceux qui étaient faux : " + Faux;
}

void PasserAuSchémaSuivant(IConnexion& Connexion, int Numéro) {
  Étapes.at(static_cast<std::size_t>(Numéro - PremierSchéma))(Connexion);
  Connexion.Exécuter("UPDATE Schéma SET Numéro = ?1", {std::int64_t{Numéro} + 1});
}

void MettreAJourSchéma(IConnexion& Connexion) {
  const int Ancien = NuméroSchémaDe(Connexion);
  if (Ancien > NuméroSchéma)
    throw ErreurExécution("La base « " + Connexion.Nom() +
                          " » est celle d'une version plus récente de tarvel (schéma n° " + std::to_string(Ancien) +
                          ", et cette version connaît le n° " + std::to_string(NuméroSchéma) +
                          ") : installez-la sur ce poste");
  if (Ancien == NuméroSchéma || Connexion.EstEnLectureSeule()) return;
  const Ombrey::SansHâte Patiente(Connexion);
  // A server does the whole change or nothing of it; a file may also be copied in its midst.
  if (const auto Fichier = Connexion.SonFichier()) GarderUneCopie(Fichier->string(), Ancien);
  Ombrey::Transaction Tout(Connexion);
  // Another station may have been faster.
  for (int Numéro = NuméroSchémaDe(Connexion); Numéro < NuméroSchéma; ++Numéro)
    PasserAuSchémaSuivant(Connexion, Numéro);
  Tout.Valider();
}

}  // namespace Tarvel
