// Loads the module that shows the station in windows, so that a console carries nothing of it.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "host/edition.h"
#include "host/options.h"

namespace Tarvel {

/// The one symbol of the module: fills Édition. Raises ErreurOptions when no display can be had.
inline constexpr const char* NomFabriqueFenêtres = "Tarvel_CreerEditionFenetree";
using FabriqueFenêtres = void (*)(const Options& Choisies, std::unique_ptr<IÉdition>& Édition);

/// The module's other symbols, which need no screen: HTML as PDF, and on the default printer, whose name is filled in.
/// Both raise ErreurExécution.
inline constexpr const char* NomÉcriturePdf = "Tarvel_EcrirePdf";
using ÉcriturePdf = void (*)(const std::string& Html, bool Ticket, const std::filesystem::path& Fichier);
inline constexpr const char* NomImpression = "Tarvel_Imprimer";
using Impression = void (*)(const std::string& Html, std::string& Imprimante);
/// The same; they raise ErreurExécution as well when the module can't be loaded.
void ÉcrirePapier(const std::string& Html, bool Ticket, const std::filesystem::path& Fichier);
std::string ImprimerPapier(const std::string& Html);

/// True when the module stands beside the program: an edition without windows lacks it.
[[nodiscard]] bool FenêtresInstallées();

/// True when the environment names a screen.
[[nodiscard]] bool ÉcranNommé();

/// Raises ErreurOptions when no display is named, ErreurExécution when the module can't be loaded.
[[nodiscard]] std::unique_ptr<IÉdition> CréerÉditionFenêtrée(const Options& Choisies);

}  // namespace Tarvel
