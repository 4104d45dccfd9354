// The one place that chooses the engine: a file is SQLite's, an address a server's.
#include "host/engine.h"

#include <string_view>
#include <utility>

#include "base/files.h"
#include "host/plugin_loader.h"
#include "platform/database/sqlite/sqlite_connection.h"

namespace Tarvel {

namespace {

using Ombrey::ConnexionSqlite;

/// How a server's address begins.
constexpr std::string_view ProtocoleServeur = "postgresql://";

bool EstSurServeur(const std::string& Base) { return Base.starts_with(ProtocoleServeur); }

/// The one symbol of the module that brings servers.
using OuvrirServeur = void (*)(const std::string& Adresse, const Ombrey::Horloge& Maintenant,
                               std::shared_ptr<Ombrey::IConnexion>& Connexion);

}  // namespace

std::optional<std::filesystem::path> FichierDeBase(const std::string& Base) {
  if (Base.empty() || EstSurServeur(Base)) return std::nullopt;
  return Ombrey::Chemin(Base);
}

std::string FauteDAdresse(const std::string& Base) {
  if (Base.starts_with("postgres://")) return "l'adresse d'un serveur commence par postgresql://";
  if (!EstSurServeur(Base)) return "";
  const std::size_t Début = ProtocoleServeur.size();
  // An account goes up to the first "/", whatever else stands in it.
  const std::string AvantLeNom = Base.substr(Début, Base.find('/', Début) - Début);
  const std::size_t Compte = AvantLeNom.rfind('@');
  const bool DansLeCompte = Compte != std::string::npos && AvantLeNom.find(':') < Compte;
  // Others of this machine see a command line, and a settings file is copied without a thought.
  if (DansLeCompte || Base.find("password=") != std::string::npos)
    return "le mot de passe n'a pas sa place dans l'adresse de la base : il se met dans ~/.pgpass";
  return "";
}

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
