// The one place that chooses the engine: a file is SQLite's, an address a server's.
#include "host/engine.h"

#include <utility>

#include "base/files.h"
#include "platform/database/sqlite/sqlite_connection.h"

namespace Tarvel {

using Ombrey::ConnexionSqlite;

std::shared_ptr<Ombrey::IConnexion> OuvrirMoteur(const std::string& Base, Ombrey::Horloge Maintenant) {
  return ConnexionSqlite::Ouvrir(Ombrey::Chemin(Base), std::move(Maintenant));
}

std::shared_ptr<Ombrey::IConnexion> CréerMoteur(const std::string& Base) {
  return ConnexionSqlite::Créer(Ombrey::Chemin(Base));
}

void AbandonnerBase(const std::string& Base) { Ombrey::SupprimerBase(Ombrey::Chemin(Base)); }

void CopierFichier(const std::filesystem::path& Base, const std::filesystem::path& Copie) {
  ConnexionSqlite::Ouvrir(Base)->Sauvegarder(Copie);
}

bool EstOuvertAilleurs(const std::filesystem::path& Base) { return ConnexionSqlite::EstOuverteAilleurs(Base); }

}  // namespace Tarvel
