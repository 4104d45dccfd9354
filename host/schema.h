// The cooperative's tables: a new database, and a look at whether a database has them.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <span>
#include <string>

#include "contracts/host.h"
#include "platform/database/connection.h"
#include "platform/system/network_drive.h"

namespace Tarvel {

using Ombrey::TitreImport;

/// Makes a new database with all tables, indexes, the import layout and the site's code; with AvecExemple also a small
/// cooperative to try things out on. Raises ErreurExécution, and leaves nothing behind, when it can't; a database that
/// is there already stays as it is.
void CréerBase(const std::string& Base, bool AvecExemple);
/// The same, filled in the same transaction by Remplir.
void CréerBase(const std::string& Base, const std::function<void(Ombrey::IConnexion&)>& Remplir);

/// All tables that hold what a cooperative has.
[[nodiscard]] std::span<const char* const> TablesCoopérative();

/// Opens a database that has all the tables that a station needs. Raises ErreurExécution when it can't be opened, with
/// the names of those that are missing, or when it is a file on a network drive: programs on two machines share neither
/// the memory nor always the locks that keep them from losing each other's loads.
[[nodiscard]] std::shared_ptr<Ombrey::IConnexion> OuvrirCoopérative(
    const std::string& Base, Ombrey::Horloge Maintenant = {},
    const std::filesystem::path& Montages = Ombrey::MontagesDuSystème);
/// The same for one that nobody works on, on whatever drive.
[[nodiscard]] std::shared_ptr<Ombrey::IConnexion> OuvrirAuRepos(const std::string& Base,
                                                                Ombrey::Horloge Maintenant = {});

/// Raises ErreurExécution with the rights that a station's user lacks. A base that can only be read wants none.
void VérifierDroits(Ombrey::IConnexion& Connexion);

}  // namespace Tarvel
