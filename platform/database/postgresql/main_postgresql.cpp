// The module that brings PostgreSQL.
#include <memory>
#include <string>

#include "platform/database/connection.h"
#include "platform/database/postgresql/postgresql_connection.h"

extern "C" [[gnu::visibility("default")]] void Tarvel_OuvrirServeur(const std::string& Adresse,
                                                                    const Ombrey::Horloge& Maintenant,
                                                                    std::shared_ptr<Ombrey::IConnexion>& Connexion) {
  Connexion = std::make_shared<Ombrey::ConnexionPostgresql>(Adresse, Maintenant);
}
