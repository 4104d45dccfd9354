// A cooperative goes from one engine to the other.
#include "host/copied_base.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <utility>
#include <variant>
#include <vector>

#include "base/failures.h"
#include "base/text_helpers.h"
#include "contracts/database.h"
#include "contracts/system.h"
#include "host/base_values.h"
#include "host/load_columns.h"
#include "host/schema.h"
#include "host/schema_upgrade.h"

namespace Tarvel {
namespace {

using Ombrey::ErreurExécution;
using Ombrey::IConnexion;
using Ombrey::Instruction;
using Ombrey::ValeurChamp;

/// The columns of a table, as both sides call them.
struct Table {
  std::string Nom;
  std::vector<Ombrey::ColonneDeTable> Colonnes;  ///< as the target declares them

  [[nodiscard]] std::string Noms() const {
    std::string Liste;
    for (const auto& Une : Colonnes) Liste += (Liste.empty() ? "[" : ", [") + Une.Nom + "]";
    return Liste;
  }
  /// Every key stands in the first two columns.
  [[nodiscard]] Instruction Lire(IConnexion& Connexion) const {
    return Connexion.Préparer("SELECT " + Noms() + " FROM " + Nom + " ORDER BY [" + Colonnes[0].Nom + "], [" +
                              Colonnes[1].Nom + "]");
  }
};

/// The kind that both engines know best. A server's dates are read as numbers of days, an embedded base keeps what it
/// was given.
std::string GenreNeutre(const std::string& Type, bool DUnServeur) {
  const std::string Petites = Ombrey::MinusculesAscii(Type);
  const auto Contient = [&](const char* Mot) { return Petites.find(Mot) != std::string::npos; };
  if (DUnServeur && (Contient("timestamp") || Type == "date")) return "REAL";
  if (DUnServeur && (Contient("interval") || Contient("point"))) return "TEXT";
  if (Contient("int") || Contient("bool")) return "INTEGER";
  if (Contient("real") || Contient("doub") || Contient("floa")) return "REAL";
  if (Contient("num") || Contient("dec")) return "NUMERIC";
  return "TEXT";
}

Table PréparerTable(IConnexion& Source, IConnexion& Cible, const std::string& Nom) {
  const auto Siennes = Cible.ColonnesDe(Nom);
  for (const auto& Une : Source.ColonnesDe(Nom)) {
    const bool EstLà = std::ranges::any_of(Siennes, [&](const auto& C) { return Cible.EstMêmeNom(C.Nom, Une.Nom); });
    const std::string Genre = GenreNeutre(Une.Type, !Source.SonFichier());
    if (!EstLà) Cible.ExécuterTout("ALTER TABLE " + Nom + " ADD COLUMN [" + Une.Nom + "] " + Genre);
  }
  Table Sienne{Nom, {}};
  for (const auto& Une : Cible.ColonnesDe(Nom)) {
    const auto Chez = Source.ColonnesDe(Nom);
    if (std::ranges::any_of(Chez, [&](const auto& C) { return Source.EstMêmeNom(C.Nom, Une.Nom); }))
      Sienne.Colonnes.push_back(Une);
  }
  if (Sienne.Colonnes.size() != Source.ColonnesDe(Nom).size())
    throw ErreurExécution("Table " + Nom + " : deux colonnes ont le même nom pour la base neuve");
  return Sienne;
}

/// An embedded base keeps "8,5" in a column of numbers as it was typed, a server keeps numbers there; each writes a
/// number in a column of texts in a manner of its own.
ValeurChamp Convertie(const ValeurChamp& Valeur, const Ombrey::ColonneDeTable& Colonne) {
  const auto* const Texte = std::get_if<std::string>(&Valeur);
  const bool EstDeTextes = GenreNeutre(Colonne.Type, false) == "TEXT";
  if (EstDeTextes && !Texte && !Ombrey::EstNull(Valeur)) return TexteOuVide(Valeur, Ombrey::Régional{'.'});
  if (!Texte || EstDeTextes) return Valeur;
  if (Ombrey::SansEspaces(*Texte).empty()) return {};
  const auto Nombre = Ombrey::NombreTapé(*Texte, {});
  if (!Nombre) throw ErreurExécution("« " + *Texte + " » n'est pas un nombre");
  return *Nombre;
}

std::vector<ValeurChamp> Rangée(const Instruction& Requête, const Table& Sienne) {
  std::vector<ValeurChamp> Valeurs;
  for (std::size_t Rang = 0; Rang < Sienne.Colonnes.size(); ++Rang) {
    try {
      Valeurs.push_back(Convertie(Requête.Valeur(Rang), Sienne.Colonnes[Rang]));
    } catch (const ErreurExécution& Erreur) {
      throw ErreurExécution("Table " + Sienne.Nom + ", ligne « " + TexteDe(Requête.Valeur(0)) + " », colonne " +
                            Sienne.Colonnes[Rang].Nom + " : " + Erreur.what());
    }
  }
  return Valeurs;
}

/// Rows are written and read again: each counts twice.
class Décompte {
 public:
  Décompte(IConnexion& Source, const Ombrey::Progrès& Dire) : Dire_(Dire) {
    for (const std::string Nom : TablesCoopérative()) {
      const auto Nombre = Ombrey::Comme<std::int64_t>(Source.Lire("SELECT COUNT(*) FROM " + Nom));
      Total_ += 2 * static_cast<std::size_t>(Nombre.value_or(0));
    }
  }
  void Avancer() {
    if (++Faits_ % LignesParPas == 0 && Dire_) Dire_(Faits_, Total_);
  }

 private:
  static constexpr std::size_t LignesParPas = 256;
  const Ombrey::Progrès& Dire_;
  std::size_t Faits_ = 0;
  std::size_t Total_ = 0;
};

/// So many rows go at once: a server is asked that much less often.
constexpr std::size_t Lot = 500;

Instruction PréparerAjout(IConnexion& Cible, const Table& Sienne, std::size_t Lignes) {
  std::string Places;
  for (std::size_t Rang = 0; Rang < Lignes * Sienne.Colonnes.size(); ++Rang) {
    if (Rang % Sienne.Colonnes.size() == 0) Places += Rang == 0 ? "(" : "), (";
    Places += (Places.ends_with('(') ? "?" : ", ?") + std::to_string(Rang + 1);
  }
  return Cible.Préparer("INSERT INTO " + Sienne.Nom + " (" + Sienne.Noms() + ") VALUES " + Places + ")");
}

std::size_t CopierLignes(IConnexion& Source, IConnexion& Cible, const Table& Sienne, Décompte& LeDécompte) {
  Instruction Ajout = PréparerAjout(Cible, Sienne, Lot);
  Instruction Lignes = Sienne.Lire(Source);
  std::vector<ValeurChamp> Valeurs;
  std::size_t Nombre = 0;
  for (; Lignes.Avancer(); ++Nombre) {
    for (ValeurChamp& Une : Rangée(Lignes, Sienne)) Valeurs.push_back(std::move(Une));
    LeDécompte.Avancer();
    if ((Nombre + 1) % Lot != 0) continue;
    Ajout.Lier(Valeurs).Exécuter();
    Valeurs.clear();
  }
  if (!Valeurs.empty()) PréparerAjout(Cible, Sienne, Nombre % Lot).Lier(Valeurs).Exécuter();
  return Nombre;
}

/// Row by row; a number may be whole on one side and have decimals of zero on the other.
void Comparer(IConnexion& Source, IConnexion& Cible, const Table& Sienne, Décompte& LeDécompte) {
  Instruction Ici = Sienne.Lire(Source);
  Instruction Là = Sienne.Lire(Cible);
  for (;;) {
    const bool YEnA = Ici.Avancer();
    bool EstPareil = YEnA == Là.Avancer();
    if (EstPareil && !YEnA) return;
    LeDécompte.Avancer();
    if (EstPareil) EstPareil = std::ranges::equal(Rangée(Ici, Sienne), Rangée(Là, Sienne), {}, TexteDe, TexteDe);
    if (!EstPareil)
      throw ErreurExécution("La copie de la table " + Sienne.Nom + " diffère de l'original : rien n'est gardé");
  }
}

/// What the office keeps beside the cooperative's tables: nothing of it is in the copy.
std::string Laissées(IConnexion& Source, IConnexion& Cible) {
  Instruction Noms = Source.Préparer(Source.NomsDesTables());
  std::string Liste;
  while (Noms.Avancer()) {
    const std::string Nom = TexteDe(Noms.Valeur(0));
    if (!Nom.starts_with(TableCumuls) && Cible.ColonnesDe(Nom).empty())
      Liste += (Liste.empty() ? "\nRestent sur place : " : ", ") + Nom;
  }
  return Liste;
}

}  // namespace

std::string CopierBase(const std::string& De, const std::string& Vers, const Ombrey::Progrès& Dire) {
  const auto Source = OuvrirCoopérative(De);
  if (NuméroSchémaDe(*Source) != NuméroSchéma)
    throw ErreurExécution("La base « " + De +
                          " » est d'une autre version : une station de cette version l'ouvre d'abord");
  const Ombrey::SansHâte Patiente(*Source);
  std::optional<Ombrey::Transaction> PersonneNEcrit;
  if (!Source->EstEnLectureSeule()) PersonneNEcrit.emplace(*Source);
  std::string Fait = "La base « " + De + " » est copiée dans « " + Vers + " » :";
  Décompte LeDécompte(*Source, Dire);
  CréerBase(Vers, [&](IConnexion& Cible) {
    for (const std::string Nom : TablesCoopérative()) {
      Cible.Exécuter("DELETE FROM " + Nom);
      const Table Sienne = PréparerTable(*Source, Cible, Nom);
      const std::size_t Nombre = CopierLignes(*Source, Cible, Sienne, LeDécompte);
      Comparer(*Source, Cible, Sienne, LeDécompte);
      Fait += "\n  " + Nom + " : " + std::to_string(Nombre);
    }
    Fait += Laissées(*Source, Cible);
    for (const char* Nom : {TableChargements, TableArchive}) Cible.ReprendreNumérotation(Nom, "IdChargement");
  });
  return Fait;
}

}  // namespace Tarvel
