// A folder of its own for a measurement.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace Ombrey::Mesures {

/// A new folder under the system's temporary one, gone with the object.
class DossierTemporaire {
 public:
  DossierTemporaire() {
    std::string Modèle = (std::filesystem::temp_directory_path() / "ombrey-bench.XXXXXX").string();
    if (!mkdtemp(Modèle.data())) throw std::runtime_error("no temporary folder");
    Chemin_ = Modèle;
  }
  DossierTemporaire(const DossierTemporaire&) = delete;
  DossierTemporaire& operator=(const DossierTemporaire&) = delete;
  ~DossierTemporaire() {
    std::error_code Ignorée;
    std::filesystem::remove_all(Chemin_, Ignorée);
  }
  [[nodiscard]] const std::filesystem::path& Chemin() const { return Chemin_; }

 private:
  std::filesystem::path Chemin_;
};

}  // namespace Ombrey::Mesures
