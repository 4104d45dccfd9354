// A text on pages: on the printer, or as PDF.
#pragma once

#include <QPageSize>
#include <filesystem>
#include <string>

namespace Ombrey {

/// Texts as HTML; each page bears its number. Raise ErreurExécution.
void ÉcrirePdf(const std::string& Html, QPageSize::PageSizeId Papier, const std::filesystem::path& Fichier);
/// On the machine's default printer, whose name is the result.
std::string ImprimerSurPapier(const std::string& Html, const std::string& Titre);

}  // namespace Ombrey
