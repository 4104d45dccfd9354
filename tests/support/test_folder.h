// A folder of its own for a test, its files, and how a call is refused.
#pragma once

#include <sys/resource.h>

#include <csignal>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace Ombrey::Essais {

/// A folder of its own for each test, gone with it.
struct DossierEssai {
  DossierEssai() = default;
  DossierEssai(const DossierEssai&) = delete;
  DossierEssai& operator=(const DossierEssai&) = delete;
  ~DossierEssai() {
    std::error_code Code;
    std::filesystem::remove_all(Chemin_, Code);
  }
  [[nodiscard]] const std::filesystem::path& Chemin() const { return Chemin_; }

 private:
  static std::filesystem::path Nouveau() {
    std::string Nom = std::filesystem::temp_directory_path() / "ombrey-XXXXXX";
    return ::mkdtemp(Nom.data()) ? Nom : throw std::filesystem::filesystem_error(Nom, std::error_code());
  }
  std::filesystem::path Chemin_ = Nouveau();
};

/// No file of this program grows beyond so many bytes, as on a full disk.
inline void LimiterFichiers(rlim_t Octets) {
  std::signal(SIGXFSZ, SIG_IGN);
  const rlimit Limite{Octets, RLIM_INFINITY};
  setrlimit(RLIMIT_FSIZE, &Limite);
}

/// All the bytes of a file; none where there is no such file.
inline std::string Contenu(const std::filesystem::path& Fichier) {
  std::ifstream Flux(Fichier, std::ios::binary);
  return {std::istreambuf_iterator<char>(Flux), {}};
}

/// What the exception says that Faire raises; empty when it raises none. One of another kind goes on.
template <class Erreur = std::exception, class Geste>
std::string RefusDe(Geste&& Faire) {
  try {
    Faire();
    return "";
  } catch (const Erreur& Raison) {
    return Raison.what();
  }
}

}  // namespace Ombrey::Essais
