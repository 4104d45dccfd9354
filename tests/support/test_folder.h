// A folder of its own for a test.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>

namespace Ombrey::Essais {

/// A folder of its own for each test, gone with it.
class DossierEssai {
 public:
  DossierEssai()
      : Chemin_(std::filesystem::temp_directory_path() /
                ("ombrey-" + std::to_string(::getpid()) + "-" +
                 ::testing::UnitTest::GetInstance()->current_test_info()->name())) {
    std::string Nom = Chemin_.filename().string();
    for (char& Caractère : Nom) {
      if (Caractère == '/') Caractère = '-';
    }
    Chemin_.replace_filename(Nom);
    std::filesystem::remove_all(Chemin_);
    std::filesystem::create_directories(Chemin_);
  }
  DossierEssai(const DossierEssai&) = delete;
  DossierEssai& operator=(const DossierEssai&) = delete;
  ~DossierEssai() {
    std::error_code Code;
    std::filesystem::remove_all(Chemin_, Code);
  }
  [[nodiscard]] const std::filesystem::path& Chemin() const { return Chemin_; }

 private:
  std::filesystem::path Chemin_;
};

}  // namespace Ombrey::Essais
