// A text on pages: on the printer, or as PDF.
#pragma once

#include <QPageSize>
#include <filesystem>
#include <string>

namespace Ombrey {

/// Texts as HTML, whose title the document bears; each page bears its number. Raise ErreurExécution. Where Fichier
/// stands already, it is replaced.
void ÉcrirePdf(const std::string& Html, QPageSize::PageSizeId Papier, const std::filesystem::path& Fichier);
/// On the machine's default printer, whose name is the result.
std::string ImprimerSurPapier(const std::string& Html);

}  // namespace Ombrey
