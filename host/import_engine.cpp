// From an import file to rows of the table of loads.
#include "host/import_engine.h"

#include <array>
#include <fstream>
#include <optional>
#include <span>

#include "base/ansi_text.h"
#include "base/files.h"
#include "base/regional_forms.h"
#include "host/import_layout.h"

namespace Tarvel {
namespace {

using Ombrey::ConnexionSqlite;
using Ombrey::ErreurExécution;
using Ombrey::EstNull;
using Ombrey::Instruction;
using Ombrey::ValeurChamp;

constexpr std::string_view FinDeLigne = "\r\n";
constexpr std::size_t TailleMaximale = 16UL * 1024 * 1024;  // some 150,000 loads

std::string LireFichier(const std::string& Nom) {
  std::ifstream Fichier(Ombrey::Chemin(Nom), std::ios::binary);
  std::string Contenu;
  std::array<char, 4096> Morceau{};
  while (Fichier && Contenu.size() <= TailleMaximale) {
    Fichier.read(Morceau.data(), Morceau.size());
    Contenu.append(Morceau.data(), static_cast<std::size_t>(Fichier.gcount()));
  }
  if (Contenu.size() > TailleMaximale) throw ErreurExécution("Fichier d'import trop long : " + Nom);
  if (Fichier.bad() || !Fichier.eof()) throw ErreurExécution("Fichier d'import illisible : " + Nom);
  return DepuisAnsi(Ombrey::Octets(Contenu));
}

std::vector<std::string> Lignes(std::string_view Contenu) {
  std::vector<std::string> Toutes;
  while (!Contenu.empty()) {
    const std::size_t Fin = Contenu.find(FinDeLigne);
    if (Fin == std::string_view::npos) throw ErreurContenu("Fichier d'import incomplet : la dernière ligne est coupée");
    if (Fin > 0) Toutes.emplace_back(Contenu.substr(0, Fin));
    Contenu.remove_prefix(Fin + FinDeLigne.size());
  }
  if (Toutes.empty()) throw ErreurContenu("Fichier d'import vide");
  return Toutes;
}

std::string EntreGuillemets(const std::string& Nom) {
  std::string Texte = "\"";
  for (const char C : Nom) Texte.append(C == '"' ? 2 : 1, C);
  return Texte + '"';
}

/// A choice of rows: the conditions, and the values that they compare with.
struct Choix {
  std::string Sql;
  std::vector<ValeurChamp> Valeurs;

  void Exiger(const std::string& Condition, const ValeurChamp& Valeur) {
    Sql += (Sql.empty() ? " WHERE " : " AND ") + Condition;
    Valeurs.push_back(Valeur);
  }
};

/// Writes loads into the table, inside a transaction of the caller's.
class Écriture {
 public:
  Écriture(ConnexionSqlite& Connexion, const DéfinitionImport& Définition)
      : Connexion_(Connexion), Définition_(Définition) {}

  ChargementImporté Ecrire(const std::vector<ValeurChamp>& Valeurs) {
    const Choix Même = Choisir(Identité, &Critère::Même, Valeurs);
    if (const auto Id = Chercher(Même)) {
      Modifier(*Id, Valeurs, Dates::Nouvelles);
      return {*Id, false};
    }
    if (const auto Id = Chercher(Renvoi(Valeurs))) {
      Modifier(*Id, Valeurs, Dates::Gardées);
      return {*Id, false};
    }
    // A load whose number was taken over, and that the terminal now sends again, comes back from the archive.
    Connexion_.Exécuter("DELETE FROM ChargementArchive" + Même.Sql, Même.Valeurs);
    Archiver(Choisir(std::span(Identité).first<CritèresDuNuméro>(), &Critère::Même, Valeurs));
    Insérer(Valeurs);
    return {Connexion_.DernièreLigne(), true};
  }

 private:
  enum class Dates { Nouvelles, Gardées };

  [[nodiscard]] Choix Choisir(std::span<const Critère> Critères, const char* Critère::*Condition,
                              const std::vector<ValeurChamp>& Valeurs) const {
    Choix Lignes;
    for (const Critère& C : Critères) Lignes.Exiger(C.*Condition, Valeurs[Définition_.Place(C.Colonne)]);
    return Lignes;
  }

  /// A date that is none is the time of the import, another one each time that the load is sent; a holding that
  /// couldn't be created is "0" until it can. The load is known by all that was weighed and measured.
  [[nodiscard]] Choix Renvoi(const std::vector<ValeurChamp>& Valeurs) const {
    Choix Lignes = Choisir(Identité, &Critère::Proche, Valeurs);
    for (std::size_t Rang = 0; Rang < Valeurs.size(); ++Rang) {
      const ColonneImport& C = Définition_.Colonnes[Rang];
      if (C.Genre != GenreValeur::Date && !EstIdentité(C.Nom))
        Lignes.Exiger(EntreGuillemets(C.Nom) + " IS ?", Valeurs[Rang]);
    }
    return Lignes;
  }

  [[nodiscard]] std::optional<std::int64_t> Chercher(const Choix& Lignes) const {
    const ValeurChamp Trouvé = Connexion_.Lire("SELECT IdChargement FROM Chargement" + Lignes.Sql, Lignes.Valeurs);
    const auto* Id = std::get_if<std::int64_t>(&Trouvé);
    return Id ? std::optional(*Id) : std::nullopt;
  }

  void Modifier(std::int64_t Id, const std::vector<ValeurChamp>& Valeurs, Dates LesDates) {
    std::string Sql = "UPDATE Chargement SET ";
    std::vector<ValeurChamp> Liées;
    for (std::size_t Rang = 0; Rang < Valeurs.size(); ++Rang) {
      const ColonneImport& C = Définition_.Colonnes[Rang];
      if (C.Genre == GenreValeur::Date && LesDates == Dates::Gardées) continue;
      Sql += EntreGuillemets(C.Nom) + " = ?, ";
      Liées.push_back(Valeurs[Rang]);
    }
    Liées.emplace_back(Id);
    Connexion_.Exécuter(Sql + "IdChargement = IdChargement WHERE IdChargement = ?", Liées);
  }

  void Insérer(const std::vector<ValeurChamp>& Valeurs) {
    std::string Noms;
    std::string Places;
    for (const ColonneImport& C : Définition_.Colonnes) {
      Noms += (Noms.empty() ? "" : ", ") + EntreGuillemets(C.Nom);
      Places += Places.empty() ? "?" : ", ?";
    }
    Connexion_.Exécuter("INSERT INTO Chargement (" + Noms + ") VALUES (" + Places + ")", Valeurs);
  }

  void Archiver(const Choix& Lignes) {
    const std::string DeLà = " FROM Chargement" + Lignes.Sql;
    if (EstNull(Connexion_.Lire("SELECT 1" + DeLà, Lignes.Valeurs))) return;
    CompléterArchive();
    std::string Noms;
    Instruction Colonnes = Connexion_.Préparer("SELECT name FROM pragma_table_info('Chargement')");
    while (Colonnes.Avancer())
      Noms += (Noms.empty() ? "" : ", ") + EntreGuillemets(std::get<std::string>(Colonnes.Valeur(0)));
    Connexion_.Exécuter("INSERT INTO ChargementArchive (" + Noms + ") SELECT " + Noms + DeLà, Lignes.Valeurs);
    Connexion_.Exécuter("DELETE" + DeLà, Lignes.Valeurs);
  }

  /// A column that the cooperative has added to its loads goes into the archive with them.
  void CompléterArchive() {
    std::string Ajouts;
    Instruction Manquantes = Connexion_.Préparer(
        "SELECT name, type FROM pragma_table_info('Chargement') WHERE name COLLATE NOCASE NOT IN"
        " (SELECT name FROM pragma_table_info('ChargementArchive'))");
    while (Manquantes.Avancer())
      Ajouts += "ALTER TABLE ChargementArchive ADD COLUMN " +
                EntreGuillemets(std::get<std::string>(Manquantes.Valeur(0))) + " " +
                std::get<std::string>(Manquantes.Valeur(1)) + ";";
    Connexion_.ExécuterTout(Ajouts);
  }

  ConnexionSqlite& Connexion_;
  const DéfinitionImport& Définition_;
};

}  // namespace

std::vector<ChargementImporté> MoteurImport::Importer(const std::string& Titre, const std::string& Fichier) {
  const DéfinitionImport Définition = LireDéfinition(Connexion_, Titre);
  std::vector<std::vector<ValeurChamp>> Chargements;
  for (const std::string& Ligne : Lignes(LireFichier(Fichier)))
    Chargements.push_back(LireLigne(Définition, Ligne, Système_.FormesRégionales()));

  std::vector<ChargementImporté> Importés;
  Importés.reserve(Chargements.size());
  Ombrey::Transaction Tout(Connexion_);
  Écriture Table(Connexion_, Définition);
  for (const auto& Valeurs : Chargements) Importés.push_back(Table.Ecrire(Valeurs));
  Tout.Valider();
  return Importés;
}

}  // namespace Tarvel
