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
#include "tests/fuzz/station.h"

namespace Ombrey::Essais {
namespace {

constexpr const char* Valeurs =
    "SELECT CodeSite, NoChargement, strftime('%d %m %Y %H %M %S', DateCh + 2415018.5),"
    " strftime('%d %m %Y %H %M %S', DateSortie + 2415018.5), Métayage, Sélection, Cépage, Qualité, Degré, NoQuai, "
    "Masse,"
    " Cuve, Operateur, Ramassage, InfoChargnt1, InfoChargnt2, InfoChargnt3, InfoChargnt4 FROM Chargement"
    " WHERE IdChargement = ?";

bool EstDateDuLayout(std::size_t Rang) { return Rang == 2 || Rang == 3; }
bool EstNombreDuLayout(std::size_t Rang) { return Rang == 1 || (Rang >= 8 && Rang <= 10); }

/// A date of the file as Valeurs shows it.
std::string DateMontrée(std::string Texte) {
  for (char& C : Texte)
    if (C < '0' || C > '9') C = ' ';
  int J = 0, M = 0, A = 0, H = 0, N = 0, S = 0;
  std::sscanf(Texte.c_str(), "%d %d %d %d %d %d", &J, &M, &A, &H, &N, &S);  // NOLINT(cert-err34-c): digits alone
  if (A < 100) A += A < 76 ? 2000 : 1900;                                   // the nearest to 2026
  char Montrée[64];
  std::snprintf(Montrée, sizeof Montrée, "%02d %02d %04d %02d %02d %02d", J, M, A, H, N, S);
  return Montrée;
}

void ComparerLigne(const std::string& Ligne, const Tarvel::ChargementImporté& Importé) {
  const auto Textes = ListeChamps(";").Décomposer(Ligne);
  Instruction Requête = Coopérative()->Préparer(Valeurs);
  Exiger(Requête.Lier({Importé.IdChargement}).Avancer(), "the last load of the file is in the table");
  Exiger(Textes.size() == Requête.Colonnes().size(), "the line has all values");
  for (std::size_t Rang = 0; Rang < Textes.size(); ++Rang) {
    // The same load again changes nothing that the office may have corrected, and a date that is none is no news.
    if (!Importé.EstNouveau && (EstDateDuLayout(Rang) || !Tarvel::ColonnesChargement[Rang].EstReçue)) continue;
    const std::string Lu = TexteOuVide(Requête.Valeur(Rang), Régional{});
    std::string Attendu = Textes[Rang];
    bool Pareil = Lu == (EstDateDuLayout(Rang) && !Attendu.empty() ? DateMontrée(Attendu) : Attendu);
    if (EstNombreDuLayout(Rang) && !Attendu.empty()) {
      std::replace(Attendu.begin(), Attendu.end(), ',', '.');
      Pareil = EnRéel(Lu, Régional{}) == std::strtod(Attendu.c_str(), nullptr);
    }
    Exiger(Pareil, ("row: " + Lu + ", file: " + Textes[Rang]).c_str());
  }
}

/// The rows of both tables.
std::string Compte() {
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
    Exiger(Compte() == "0/0", "a file that is refused leaves nothing behind");
    return;
  }
  std::vector<std::string> Lignes = ListeChamps("\r\n").Décomposer(DepuisAnsi(Octets(Contenu)));
  std::erase(Lignes, "");
  Exiger(Importés.size() == Lignes.size(), "a load for each line");
  if (!EstLayoutHabituel) return;
  ComparerLigne(Lignes.back(), Importés.back());
  if (Lignes.size() > 1) return;
  const auto Encore = Moteur.Importer(Tarvel::TitreImport, Fichier);
  Exiger(Encore.size() == 1 && Encore[0].IdChargement == Importés[0].IdChargement && !Encore[0].EstNouveau &&
             Compte() == "1/0",
         "a load that comes twice is there once");
}

}  // namespace
}  // namespace Ombrey::Essais

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Données, std::size_t Taille) {
  using namespace Ombrey::Essais;
  static const std::string Habituel = std::get<std::string>(Coopérative()->Lire("SELECT LongChps FROM MSysEtats"));
  static const std::string Fichier = Coopérative()->Fichier().parent_path() / "import.txt";
  Entrée E(Données, Taille);
  const std::string Séparateur = E.Jusque('\f');
  const std::string Colonnes = E.Jusque('\f');
  const bool EstHabituel = Séparateur.empty() && Colonnes.empty();
  Coopérative()->Exécuter("DELETE FROM Chargement");
  Coopérative()->Exécuter("DELETE FROM ChargementArchive");
  Coopérative()->Exécuter("UPDATE MSysEtats SET Format = ?1, LongChps = ?2",
                          {EstHabituel ? ";" : Séparateur, Colonnes.empty() ? Habituel : Colonnes});
  std::ofstream(Fichier, std::ios::binary) << E.Reste;
  Importer(Fichier, std::string(E.Reste), EstHabituel);
  return 0;
}
