// Writing loads: each once, whatever is sent again and whatever the office corrects meanwhile.
#include "host/load_table.h"

#include <algorithm>
#include <utility>

#include "host/base_values.h"
#include "host/conditions.h"
#include "host/load_columns.h"

namespace Tarvel {
namespace {

using Ombrey::ColonneDeTable;
using Ombrey::EstNull;
using Ombrey::Instruction;
using Ombrey::TexteOuVide;
using Ombrey::ValeurChamp;

std::string NomSql(const std::string& Nom) {
  std::string Texte = "\"";
  for (const char C : Nom) Texte.append(C == '"' ? 2 : 1, C);
  return Texte + '"';
}

void Joindre(std::string& Liste, const std::string& Élément) { Liste += (Liste.empty() ? "" : ", ") + Élément; }

void ExigerFait(Conditions& Choix, const std::string& Nom, const ColonneImport& Colonne, const ValeurImport& Lue) {
  constexpr const char* MêmeSeconde = ") < 0.5 / 86400 OR ";
  if (Lue.EstDateDeRemplacement) return;
  if (Colonne.Genre == GenreValeur::Date && !EstNull(Lue.Valeur))
    Choix.Et("(abs(" + Nom + " - ", Lue.Valeur, MêmeSeconde + Nom + " IS NULL)");
  else if (EstNull(Lue.Valeur))
    Choix.Et(Nom + " IS NULL");
  else
    Choix.Et(Nom + " = ", Lue.Valeur);
}

}  // namespace

void CompléterArchive(Ombrey::IConnexion& Connexion) {
  const std::vector<ColonneDeTable> LesSiennes = Connexion.ColonnesDe(TableArchive);
  for (const ColonneDeTable& Une : Connexion.ColonnesDe(TableChargements)) {
    const auto EstElle = [&](const ColonneDeTable& C) { return Connexion.EstMêmeNom(C.Nom, Une.Nom); };
    if (std::ranges::none_of(LesSiennes, EstElle)) Connexion.AjouterColonne(TableArchive, Une);
  }
}

ChargementImporté TableDesChargements::Ecrire(const LigneImport& Ligne) {
  if (const auto Connu = Chercher(TableChargements, Ligne)) {
    CompléterExploitation(*Connu, Ligne);
    return {*Connu, false, ""};
  }
  if (const auto Archivé = Chercher(TableArchive, Ligne)) return Reprendre(*Archivé, Ligne);
  std::string Récit = Archiver(Valeur(Ligne, "CodeSite"), Valeur(Ligne, "NoChargement"));
  return {Insérer(Ligne), true, std::move(Récit)};
}

const ValeurChamp& TableDesChargements::Valeur(const LigneImport& Ligne, const char* Colonne) const {
  return Ligne[Définition_.Place(Colonne)].Valeur;
}

std::optional<std::int64_t> TableDesChargements::Chercher(const char* Table, const LigneImport& Ligne) const {
  Conditions Choix;
  for (const ColonneChargement& Colonne : ColonnesChargement) {
    const auto Place = Colonne.EstReçue ? Définition_.Chercher(Colonne.Nom) : std::nullopt;
    if (Place) ExigerFait(Choix, ColonneReçue(Colonne.Nom), Définition_.Colonnes[*Place], Ligne[*Place]);
  }
  return Ombrey::Comme<std::int64_t>(
      Connexion_.Lire("SELECT MAX(IdChargement) FROM " + std::string(Table) + Choix.Sql(), Choix.Valeurs()));
}

void TableDesChargements::CompléterExploitation(std::int64_t Id, const LigneImport& Ligne) {
  Connexion_.Exécuter("UPDATE Chargement SET Métayage = ?1 WHERE IdChargement = ?2 AND Métayage = ?3",
                      {Valeur(Ligne, "Métayage"), Id, ExploitationInconnue});
}

ChargementImporté TableDesChargements::Reprendre(std::int64_t IdArchivé, const LigneImport& Ligne) {
  CompléterArchive(Connexion_);
  // The office may have given it another number since.
  const auto Ancien =
      LireRangée("SELECT CodeSite, NoChargement FROM ChargementArchive WHERE IdChargement = ?1", {IdArchivé});
  std::string Récit = Archiver(Ancien.at(0), Ancien.at(1));

  const std::string Noms = Colonnes("IdChargement");
  const std::int64_t Id = Connexion_.Insérer(
      "INSERT INTO Chargement (" + Noms + ") SELECT " + Noms + " FROM ChargementArchive WHERE IdChargement = ?1",
      {IdArchivé}, "IdChargement");
  Connexion_.Exécuter("DELETE FROM ChargementArchive WHERE IdChargement = ?1", {IdArchivé});
  CompléterExploitation(Id, Ligne);
  return {Id, false, std::move(Récit)};
}

std::int64_t TableDesChargements::Insérer(const LigneImport& Ligne) {
  std::string Noms;
  std::string Places;
  std::vector<ValeurChamp> Valeurs;
  const auto Ajouter = [&](const std::string& Nom, const ValeurChamp& Valeur) {
    Valeurs.push_back(Valeur);
    Joindre(Noms, NomSql(Nom));
    Joindre(Places, "?" + std::to_string(Valeurs.size()));
  };
  for (std::size_t Rang = 0; Rang < Ligne.size(); ++Rang) Ajouter(Définition_.Colonnes[Rang].Nom, Ligne[Rang].Valeur);
  for (const ColonneChargement& Colonne : ColonnesChargement) {
    const auto Place = Colonne.EstReçue ? Définition_.Chercher(Colonne.Nom) : std::nullopt;
    if (Place && !Ligne[*Place].EstDateDeRemplacement) Ajouter(ColonneReçue(Colonne.Nom), Ligne[*Place].Valeur);
  }
  return Connexion_.Insérer("INSERT INTO Chargement (" + Noms + ") VALUES (" + Places + ")", Valeurs, "IdChargement");
}

/// Makes room for a load of this number; what the operator is told about it.
std::string TableDesChargements::Archiver(const ValeurChamp& Site, const ValeurChamp& Numéro) {
  const auto Porteur = LireRangée(
      "SELECT IdChargement, CodeSite, NoChargement, DateCh, Métayage, Masse FROM Chargement"
      " WHERE CodeSite = ?1 AND NoChargement = ?2",
      {Site, Numéro});
  if (Porteur.empty()) return {};
  CompléterArchive(Connexion_);
  const std::string Noms = Colonnes("");
  Connexion_.Exécuter(
      "INSERT INTO ChargementArchive (" + Noms + ") SELECT " + Noms + " FROM Chargement WHERE IdChargement = ?1",
      {Porteur[0]});
  Connexion_.Exécuter("DELETE FROM Chargement WHERE IdChargement = ?1", {Porteur[0]});

  const auto Texte = [&](std::size_t Rang) { return TexteDe(Porteur[Rang]); };
  return "Le chargement n° " + Texte(2) + " du site " + Texte(1) + ", arrivé le " + Ombrey::MomentLisible(Porteur[3]) +
         " (exploitation " + Texte(4) + ", " + Texte(5) +
         " kg), passe dans ChargementArchive : son numéro sert à un autre. Il compte toujours dans les cumuls.";
}

std::vector<ValeurChamp> TableDesChargements::LireRangée(const char* Sql,
                                                         const std::vector<ValeurChamp>& Valeurs) const {
  Instruction Requête = Connexion_.Préparer(Sql);
  std::vector<ValeurChamp> Rangée;
  if (!Requête.Lier(Valeurs).Avancer()) return Rangée;
  for (std::size_t Rang = 0; Rang < Requête.Colonnes().size(); ++Rang) Rangée.push_back(Requête.Valeur(Rang));
  return Rangée;
}

/// All columns of the table of loads but one.
std::string TableDesChargements::Colonnes(const char* Sauf) const {
  std::string Noms;
  for (const ColonneDeTable& Une : Connexion_.ColonnesDe(TableChargements))
    if (Une.Nom != Sauf) Joindre(Noms, NomSql(Une.Nom));
  return Noms;
}

}  // namespace Tarvel
