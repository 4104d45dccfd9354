// The one place that chooses the engine: a file is SQLite's, an address a server's.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "platform/database/connection.h"

namespace Tarvel {

/// How a server's address begins.
inline constexpr std::string_view ProtocoleServeur = "postgresql://";
[[nodiscard]] inline bool EstSurServeur(const std::string& Base) { return Base.starts_with(ProtocoleServeur); }

/// Opens a database, whatever tables it has. Raises ErreurExécution when it can't be had.
[[nodiscard]] std::shared_ptr<Ombrey::IConnexion> OuvrirMoteur(const std::string& Base,
                                                               Ombrey::Horloge Maintenant = {});
/// A new database file, or the server's database as it stands. Raises ErreurExécution when there is such a file
/// already, which stays as it is.
[[nodiscard]] std::shared_ptr<Ombrey::IConnexion> CréerMoteur(const std::string& Base);
/// Takes back what CréerMoteur made; nobody has it open.
void AbandonnerBase(const std::string& Base);

/// For a base that is a file. A whole copy, as it stands at one moment, while others work on it; and whether a program
/// has it open.
void CopierFichier(const std::filesystem::path& Base, const std::filesystem::path& Copie,
                   const Ombrey::Progrès& Dire = {});
[[nodiscard]] bool EstOuvertAilleurs(const std::filesystem::path& Base);

}  // namespace Tarvel
