// The one place that chooses the engine: a file is SQLite's, an address a server's.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "platform/database/connection.h"

namespace Tarvel {

/// The file that an embedded base is; none for a server's address and for an empty text.
[[nodiscard]] std::optional<std::filesystem::path> FichierDeBase(const std::string& Base);
/// What is wrong with the address of a server, in words; empty for a good one and for a file.
[[nodiscard]] std::string FauteDAdresse(const std::string& Base);

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
