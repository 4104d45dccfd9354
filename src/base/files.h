// Whole files: read at one go, written with every step checked; and paths from UTF-8 text.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace Ombrey {

/// The path that a UTF-8 text names.
[[nodiscard]] std::filesystem::path Chemin(std::string_view Texte);
/// The path as UTF-8 text.
[[nodiscard]] std::string TexteChemin(const std::filesystem::path& Fichier);

/// Creates the folder and what is missing above it, for their owner alone. Raises ErreurExécution.
void CréerDossier(const std::filesystem::path& Dossier);

/// The file's whole content; empty also when it is missing or can't be read.
[[nodiscard]] std::string ContenuOuVide(const std::filesystem::path& Fichier);

/// Writes a new file of just these bytes, replacing an old one. Raises ErreurExécution when a byte can't be written;
/// what there is of the file then stays.
void EcrireFichier(const std::filesystem::path& Fichier, std::string_view Contenu);
/// The same at the end of a file, which is made when it is missing.
void AjouterAuFichier(const std::filesystem::path& Fichier, std::string_view Contenu);

/// Moves a file to a place where none may stand yet. Raises ErreurExécution.
void DéplacerFichier(const std::filesystem::path& De, const std::filesystem::path& Vers);

}  // namespace Ombrey
