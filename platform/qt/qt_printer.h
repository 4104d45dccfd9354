// The printer: the default one of the machine, or a PDF file where there is none.
#pragma once

#include <QFont>
#include <QPainter>
#include <QPrinter>
#include <QRectF>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "contracts/toolkit.h"

namespace Ombrey {

/// Ends a drawing. Raises ErreurExécution when the printer has failed.
void FinirDessin(QPainter& Peintre, const QPrinter& Imprimante);
/// Has Dessiner draw into the file, which is there whole in the end or not at all: false, with nothing left behind,
/// when it can't be written.
[[nodiscard]] bool DessinerEnFichier(QPrinter& Imprimante, const std::filesystem::path& Fichier,
                                     const std::function<void()>& Dessiner);

/// Lines are set as they come and drawn at the end of the document: one that is dropped leaves neither paper nor file.
/// Unit: the printer's dots. A line too long for the page goes on in the next one.
class ImprimanteQt : public IImprimante {
 public:
  /// Called with the path of the PDF file once it is written.
  using AnnonceFichier = std::function<void(const std::string& Chemin)>;
  /// Without a printer, a file of the name Nom goes to the first of Dossiers that takes it.
  ImprimanteQt(std::string Nom, std::vector<std::filesystem::path> Dossiers, AnnonceFichier Annoncer);

  void FixerPolice(int Points, bool Gras, bool Souligné) override;
  void Imprimer(const std::string& Ligne) override;
  [[nodiscard]] double PositionVerticale() const override { return Position_; }
  [[nodiscard]] double HauteurPage() const override;
  void NouvellePage() override;
  void TerminerDocument() override;

 private:
  struct LigneComposée {
    int Page;
    QRectF Place;
    QFont Police;
    QString Texte;
  };
  void Dessiner();
  void EcrireFichier();

  QPrinter Imprimante_{QPrinter::HighResolution};
  std::string Nom_;
  std::vector<std::filesystem::path> Dossiers_;
  AnnonceFichier Annoncer_;
  bool SurPapier_ = false;
  QFont Police_;
  double Position_ = 0;
  int Page_ = 0;
  std::vector<LigneComposée> Lignes_;
};

}  // namespace Ombrey
