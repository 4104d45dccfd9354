// The cooperative's tables: a new database, and a look at whether a database has them.
#pragma once

#include <filesystem>
#include <memory>

#include "contracts/host.h"
#include "platform/database/sqlite/sqlite_connection.h"

namespace Tarvel {

using Ombrey::TitreImport;

/// Makes a new database file with all tables, indexes, the import layout and the site's code; with AvecExemple also a
/// small cooperative to try things out on. Raises ErreurExécution, and leaves no file behind, when it can't; a file
/// that is there already stays as it is.
void CréerBase(const std::filesystem::path& Fichier, bool AvecExemple);

/// Opens a database file that has all the tables that a station needs. Raises ErreurExécution when it can't be opened,
/// or with the names of those that are missing.
[[nodiscard]] std::shared_ptr<Ombrey::ConnexionSqlite> OuvrirCoopérative(
    const std::filesystem::path& Fichier, Ombrey::ConnexionSqlite::Horloge Maintenant = {});

}  // namespace Tarvel
