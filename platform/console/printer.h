// A printer for a machine without one: a text of pages in a file.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <utility>

#include "contracts/toolkit.h"

namespace Ombrey {

/// Lines of UTF-8 text, a form feed between two pages. The unit of positions and heights is the line; the typeface
/// counts for nothing. The file reaches the disk whole at the end of the document, or not at all.
class ImprimanteTexte : public IImprimante {
 public:
  static constexpr int LignesParPage = 60;

  /// SurFin is called once the file is in its place.
  ImprimanteTexte(std::filesystem::path Fichier, std::function<void()> SurFin)
      : Fichier_(std::move(Fichier)), SurFin_(std::move(SurFin)) {}
  void FixerPolice(int Points, bool Gras, bool Souligné) override;
  void Imprimer(const std::string& Ligne) override;
  [[nodiscard]] double PositionVerticale() const override { return Position_; }
  [[nodiscard]] double HauteurPage() const override { return LignesParPage; }
  void NouvellePage() override;
  void TerminerDocument() override;

 private:
  std::filesystem::path Fichier_;
  std::function<void()> SurFin_;
  std::string Texte_;
  int Position_ = 0;
};

}  // namespace Ombrey
