// Whole copies of an embedded base, and the way back.
#include "host/saved_base.h"

#include "base/failures.h"
#include "base/files.h"
#include "host/engine.h"
#include "host/schema.h"

namespace Tarvel {
namespace {

using Ombrey::ErreurExécution;
using Ombrey::TexteChemin;
namespace fs = std::filesystem;

/// A name beside the base's that nothing bears yet.
fs::path NomLibre(const fs::path& Base, const char* Raison) {
  fs::path Libre = Base.string() + Raison;
  for (int Rang = 2; fs::exists(Libre); ++Rang) Libre = Base.string() + Raison + "-" + std::to_string(Rang);
  return Libre;
}

}  // namespace

std::string SauvegarderBase(const fs::path& Base, const fs::path& Copie, const Ombrey::Progrès& Dire) {
  // What a station on another machine has not yet put into the file can't be had from here.
  if (!Ombrey::DisqueRéseau(Base).empty() && EstOuvertAilleurs(Base))
    throw ErreurExécution("La base « " + TexteChemin(Base) +
                          " » est sur un disque de réseau, et un programme y travaille : arrêtez-le d'abord.");
  static_cast<void>(OuvrirAuRepos(Base));
  CopierFichier(Base, Copie, Dire);
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
  if (YEnAUne) {
    const fs::path Ancienne = NomLibre(Base, ".remplacee");
    for (const char* Suffixe : {"-wal", "-shm", "-journal", ""})
      if (fs::exists(Base.string() + Suffixe))
        Ombrey::DéplacerFichier(Base.string() + Suffixe, Ancienne.string() + Suffixe);
    Fait += " L'ancienne est gardée sous « " + TexteChemin(Ancienne) + " ».";
  }
  Ombrey::DéplacerFichier(Neuve, Base);
  return Fait;
}

}  // namespace Tarvel
