// The one place that chooses the engine: a file is SQLite's, an address a server's.
#include "host/engine.h"

#include <utility>

#include "base/files.h"
#include "host/plugin_loader.h"
#include "platform/database/sqlite/sqlite_connection.h"

namespace Tarvel {

namespace {

using Ombrey::ConnexionSqlite;

/// The one symbol of the module that brings servers.
using OuvrirServeur = void (*)(const std::string& Adresse, const Ombrey::Horloge& Maintenant,
                               std::shared_ptr<Ombrey::IConnexion>& Connexion);

}  // namespace

std::shared_ptr<Ombrey::IConnexion> OuvrirMoteur(const std::string& Base, Ombrey::Horloge Maintenant) {
  if (!EstSurServeur(Base)) return ConnexionSqlite::Ouvrir(Ombrey::Chemin(Base), std::move(Maintenant));
  const auto Ouvrir = reinterpret_cast<OuvrirServeur>(
      SymboleDuModule("tarvel-postgresql.so", "Tarvel_OuvrirServeur",
                      "Les bases sur un serveur demandent le module tarvel-postgresql.so",
                      ", qui n'est pas installé ici : paquet ombrey-postgresql."));
  std::shared_ptr<Ombrey::IConnexion> Connexion;
  Ouvrir(Base, Maintenant, Connexion);
  return Connexion;
}

std::shared_ptr<Ombrey::IConnexion> CréerMoteur(const std::string& Base) {
  return EstSurServeur(Base) ? OuvrirMoteur(Base) : ConnexionSqlite::Créer(Ombrey::Chemin(Base));
}

void AbandonnerBase(const std::string& Base) {
  if (!EstSurServeur(Base)) Ombrey::SupprimerBase(Ombrey::Chemin(Base));
}

void CopierFichier(const std::filesystem::path& Base, const std::filesystem::path& Copie, const Ombrey::Progrès& Dire) {
  ConnexionSqlite::Ouvrir(Base)->Sauvegarder(Copie, Dire);
}

bool EstOuvertAilleurs(const std::filesystem::path& Base) { return ConnexionSqlite::EstOuverteAilleurs(Base); }

}  // namespace Tarvel
