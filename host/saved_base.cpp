// Whole copies of an embedded base, and the way back.
#include "host/saved_base.h"

#include <algorithm>
#include <set>

#include "base/failures.h"
#include "base/files.h"
#include "base/regional_forms.h"
#include "host/engine.h"
#include "host/load_columns.h"
#include "host/new_file.h"
#include "host/schema.h"

namespace Tarvel {
namespace {

using Ombrey::ErreurExécution;
using Ombrey::TexteChemin;
namespace fs = std::filesystem;

/// A name beside the file's that nothing bears yet.
fs::path NomLibre(const fs::path& Fichier, const char* Raison) {
  fs::path Libre = Fichier.string() + Raison;
  for (int Rang = 2; fs::exists(Libre); ++Rang) Libre = Fichier.string() + Raison + "-" + std::to_string(Rang);
  return Libre;
}

/// What was received of each load, whatever the office has made of it since.
std::set<std::string> Faits(Ombrey::IConnexion& Connexion) {
  std::set<std::string> Tous;
  for (const char* Table : {TableChargements, TableArchive}) {
    const auto Siennes = Connexion.ColonnesDe(Table);
    std::string Noms;
    for (const ColonneChargement& Une : ColonnesChargement) {
      const bool EstGardée =
          std::ranges::find(Siennes, ColonneReçue(Une.Nom), &Ombrey::ColonneDeTable::Nom) != Siennes.end();
      if (Une.EstReçue) Noms += (Noms.empty() ? "" : ", ") + (EstGardée ? ColonneReçue(Une.Nom) : Une.Nom);
    }
    auto Requête = Connexion.Préparer("SELECT " + Noms + " FROM " + Table);
    while (Requête.Avancer()) {
      std::string Lus;
      for (std::size_t Rang = 0; Rang < Requête.Colonnes().size(); ++Rang)
        Lus += Ombrey::TexteOuVide(Requête.Valeur(Rang), {}) + '\n';
      Tous.insert(Lus);
    }
  }
  return Tous;
}

/// What has come in since the copy was made stands in the former base alone. One that can't be read is no hindrance:
/// it may be why the copy goes back.
std::string DireManquants(const fs::path& Ancienne, const fs::path& Copie) {
  std::size_t Manquants = 0;
  Ombrey::ErreurEnAttente Illisible;
  if (!Garder(Illisible, [&] {
        const auto Gardés = Faits(*OuvrirAuRepos(Copie));
        Manquants = static_cast<std::size_t>(std::ranges::count_if(
            Faits(*OuvrirAuRepos(Ancienne)), [&](const std::string& Un) { return !Gardés.contains(Un); }));
      }))
    return " Ses chargements ne sont pas comptés : " + Illisible.Texte();
  return " Chargements qu'elle a et que la sauvegarde n'a pas : " + std::to_string(Manquants) + ".";
}

}  // namespace

std::string SauvegarderBase(const fs::path& Base, const fs::path& Copie, const Ombrey::Progrès& Dire) {
  // What a station on another machine has not yet put into the file can't be had from here.
  if (!Ombrey::DisqueRéseau(Base).empty() && EstOuvertAilleurs(Base))
    throw ErreurExécution("La base « " + TexteChemin(Base) +
                          " » est sur un disque de réseau, et un programme y travaille : arrêtez-le d'abord.");
  ExigerNouveau(Copie);
  static_cast<void>(OuvrirAuRepos(Base));
  // A killed copy never bears the name of a whole one.
  const fs::path Partielle = NomLibre(Copie, ".partielle");
  CopierFichier(Base, Partielle, Dire);
  Ombrey::DéplacerFichier(Partielle, Copie);
  return "La base « " + TexteChemin(Base) + " » est sauvegardée dans « " + TexteChemin(Copie) + " ».";
}

std::string RestaurerBase(const fs::path& Base, const fs::path& Copie, const Ombrey::Progrès& Dire) {
  const fs::path Neuve = NomLibre(Base, ".neuve");
  const bool YEnAUne = fs::exists(Base);
  if (YEnAUne && fs::exists(Copie) && fs::equivalent(Base, Copie))
    throw ErreurExécution("La sauvegarde et la base sont le même fichier.");
  if (YEnAUne && EstOuvertAilleurs(Base))
    throw ErreurExécution("Une station ou un autre programme travaille sur la base « " + TexteChemin(Base) +
                          " » : arrêtez-les avant de la remplacer.");
  static_cast<void>(OuvrirAuRepos(Copie));
  CopierFichier(Copie, Neuve, Dire);
  std::string Fait = "La base « " + TexteChemin(Base) + " » est celle de la sauvegarde « " + TexteChemin(Copie) + " ».";
  const fs::path Ancienne = NomLibre(Base, ".remplacee");
  if (YEnAUne) {
    for (const char* Suffixe : {"-wal", "-shm", "-journal", ""})
      if (fs::exists(Base.string() + Suffixe))
        Ombrey::DéplacerFichier(Base.string() + Suffixe, Ancienne.string() + Suffixe);
    Fait += " L'ancienne est gardée sous « " + TexteChemin(Ancienne) + " ».";
  }
  Ombrey::DéplacerFichier(Neuve, Base);
  return YEnAUne ? Fait + DireManquants(Ancienne, Copie) : Fait;
}

}  // namespace Tarvel
