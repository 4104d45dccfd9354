// The import engine's reading: the layout's separator and columns, each up to a form feed, then the import file. Both
// empty stand for the layout that a new database has: then the rows are compared with the file, too.
#include "host/import_engine.h"

#include <algorithm>
#include <fstream>

#include "base/ansi_text.h"
#include "base/delimited_list.h"
#include "base/regional_forms.h"
#include "host/load_columns.h"
#include "tests/fuzz/input.h"
#include "tests/fuzz/sample.h"

namespace Ombrey::Essais {

void ComparerLigne(const std::string& Ligne, const Tarvel::ChargementImporté& Importé) {
  const auto Textes = ListeChamps(";").Décomposer(Ligne);
  Exiger(Textes.size() == Tarvel::ColonnesChargement.size(), "the line has all values");
  for (std::size_t Rang = 0; Rang < Textes.size(); ++Rang) {
    const Tarvel::ColonneChargement& Colonne = Tarvel::ColonnesChargement[Rang];
    // A date can be written in many ways; the same load again changes nothing that the office may have corrected.
    if (Colonne.Genre == std::string_view("date") || (!Importé.EstNouveau && !Colonne.EstReçue)) continue;
    const std::string Requête = std::string("SELECT ") + Colonne.Nom + " FROM Chargement WHERE IdChargement = ?1";
    const std::string Lu = TexteOuVide(Coopérative()->Lire(Requête, {Importé.IdChargement}), Régional{});
    std::string Attendu = Textes[Rang];
    bool EstPareil = Lu == Attendu;
    if (Colonne.Genre != std::string_view("texte") && !Attendu.empty()) {
      std::replace(Attendu.begin(), Attendu.end(), ',', '.');
      EstPareil = EnRéel(Lu, Régional{}) == std::strtod(Attendu.c_str(), nullptr);
    }
    Exiger(EstPareil, "row: " + Lu + ", file: " + Textes[Rang]);
  }
}

/// The rows of both tables.
std::string Rangées() {
  return TexteOuVide(Coopérative()->Lire("SELECT (SELECT count(*) FROM Chargement) || '/' ||"
                                         " (SELECT count(*) FROM ChargementArchive)"),
                     Régional{});
}

void Importer(const std::string& Fichier, const std::string& Contenu, bool EstLayoutHabituel) {
  FauxSystème Système;
  Tarvel::MoteurImport Moteur(*Coopérative(), Système);
  std::vector<Tarvel::ChargementImporté> Importés;
  try {
    Importés = Moteur.Importer(Tarvel::TitreImport, Fichier);
  } catch (const ErreurExécution&) {
    Exiger(Rangées() == "0/0", "a file that is refused leaves nothing behind");
    return;
  }
  std::vector<std::string> Lignes = ListeChamps("\r\n").Décomposer(DepuisAnsi(Octets(Contenu)));
  std::erase(Lignes, "");
  Exiger(Importés.size() == Lignes.size(), "a load for each line");
  if (!EstLayoutHabituel) return;
  ComparerLigne(Lignes.back(), Importés.back());
  if (Lignes.size() > 1) return;
  const auto Encore = Moteur.Importer(Tarvel::TitreImport, Fichier);
  Exiger(Encore.size() == 1 && Encore[0].IdChargement == Importés[0].IdChargement, "a load that comes twice is known");
  Exiger(!Encore[0].EstNouveau && Rangées() == "1/0", "and there once");
}

void Essayer(Entrée E) {
  static const std::string Habituel = std::get<std::string>(Coopérative()->Lire("SELECT LongChps FROM MSysEtats"));
  static const std::string Fichier = Coopérative()->Fichier().parent_path() / "import.txt";
  const std::string Séparateur = E.Jusque('\f');
  const std::string Colonnes = E.Jusque('\f');
  const bool EstHabituel = Séparateur.empty() && Colonnes.empty();
  Coopérative()->ExécuterTout("DELETE FROM Chargement; DELETE FROM ChargementArchive");
  Coopérative()->Exécuter("UPDATE MSysEtats SET Format = ?1, LongChps = ?2",
                          {EstHabituel ? ";" : Séparateur, Colonnes.empty() ? Habituel : Colonnes});
  std::ofstream(Fichier, std::ios::binary) << E.Reste;
  Importer(Fichier, std::string(E.Reste), EstHabituel);
}

}  // namespace Ombrey::Essais
