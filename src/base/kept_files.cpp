// Files that are kept for somebody to look at.
#include "base/kept_files.h"

#include <algorithm>
#include <system_error>
#include <utility>
#include <vector>

#include "base/files.h"

namespace Ombrey {
namespace {

namespace fs = std::filesystem;

std::vector<fs::directory_entry> Fichiers(const fs::path& Dossier) {
  std::vector<fs::directory_entry> Tous;
  std::error_code Code;
  for (fs::directory_iterator Un(Dossier, Code); !Code && Un != fs::directory_iterator(); Un.increment(Code)) {
    std::error_code Inconnu;
    if (Un->is_regular_file(Inconnu)) Tous.push_back(*Un);
  }
  return Tous;
}

}  // namespace

std::optional<fs::path> FichierDeContenu(const fs::path& Dossier, const std::string& Contenu) {
  for (const fs::directory_entry& Un : Fichiers(Dossier)) {
    std::error_code Code;
    if (Un.file_size(Code) == Contenu.size() && !Code && ContenuOuVide(Un.path()) == Contenu) return Un.path();
  }
  return std::nullopt;
}

void LimiterFichiers(const fs::path& Dossier, std::size_t Nombre) {
  std::vector<std::pair<fs::file_time_type, fs::path>> ParÂge;
  std::error_code Code;
  for (const fs::directory_entry& Un : Fichiers(Dossier)) ParÂge.emplace_back(Un.last_write_time(Code), Un.path());
  if (ParÂge.size() <= Nombre) return;
  std::ranges::sort(ParÂge);
  ParÂge.resize(ParÂge.size() - Nombre);
  for (const auto& [Moment, Fichier] : ParÂge) fs::remove(Fichier, Code);
}

}  // namespace Ombrey
