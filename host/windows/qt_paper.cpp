// A text on pages.
#include "host/windows/qt_paper.h"

#include <QAbstractTextDocumentLayout>
#include <QPainter>
#include <QPrinter>
#include <QPrinterInfo>
#include <QTextDocument>
#include <system_error>

#include "base/failures.h"
#include "base/files.h"
#include "platform/qt/qt_measures.h"
#include "platform/qt/qt_printer.h"

namespace Ombrey {

namespace {
constexpr int Points = 9;
constexpr double Marge = 10;  ///< mm: what no printer cuts off from a PDF

constexpr const char* Feuille = "td, th { border-bottom: 1px solid #b0b0b0; padding: 2px 5px; }";

/// Lines of text, the last of them for the page's number.
void Dessiner(QPrinter& Imprimante, const std::string& Html) {
  QFont Police;
  Police.setPointSize(Points);
  const QRectF Page(QPointF(0, 0), Imprimante.pageRect(QPrinter::DevicePixel).size());
  const double Pied = QFontMetricsF(Police, &Imprimante).height() * 2;
  const QRectF Corps = Page.adjusted(0, 0, 0, -Pied);
  QTextDocument Document;
  Document.documentLayout()->setPaintDevice(&Imprimante);
  Document.setDefaultFont(Police);
  Document.setDocumentMargin(0);
  Document.setDefaultStyleSheet(QString::fromLatin1(Feuille));
  Document.setHtml(Texte(Html));
  Document.setPageSize(Corps.size());
  Imprimante.setDocName(Document.metaInformation(QTextDocument::DocumentTitle));
  QPainter Peintre;
  if (!Peintre.begin(&Imprimante)) throw ErreurExécution("L'impression n'a pas pu commencer.");
  QAbstractTextDocumentLayout::PaintContext Encre;
  Encre.palette.setColor(QPalette::Text, Qt::black);  // whatever the screen's colours are
  for (int Rang = 0; Rang < Document.pageCount(); ++Rang) {
    if (Rang > 0 && !Imprimante.newPage()) throw ErreurExécution("L'impression s'est arrêtée : page refusée.");
    Peintre.save();
    Peintre.translate(0, -Rang * Corps.height());
    Encre.clip = Corps.translated(0, Rang * Corps.height());
    Peintre.setClipRect(Encre.clip);
    Document.documentLayout()->draw(&Peintre, Encre);
    Peintre.restore();
    Peintre.setFont(Police);
    Peintre.drawText(Page, Qt::AlignRight | Qt::AlignBottom,
                     QStringLiteral("Page %1 / %2").arg(Rang + 1).arg(Document.pageCount()));
  }
  FinirDessin(Peintre, Imprimante);
}
}  // namespace

void ÉcrirePdf(const std::string& Html, QPageSize::PageSizeId Papier, const std::filesystem::path& Fichier) {
  QPrinter Imprimante(QPrinter::HighResolution);
  Imprimante.setOutputFormat(QPrinter::PdfFormat);
  Imprimante.setPageSize(QPageSize(Papier));
  Imprimante.setPageMargins({Marge, Marge, Marge, Marge}, QPageLayout::Millimeter);
  Imprimante.setCreator(QStringLiteral("Tarvel"));
  if (DessinerEnFichier(Imprimante, Fichier, [&] { Dessiner(Imprimante, Html); })) return;
  EcrireFichier(Fichier, "");  // says why where none can stand: Qt doesn't
  std::error_code Ignorée;
  std::filesystem::remove(Fichier, Ignorée);
  throw ErreurExécution("Le fichier " + TexteChemin(Fichier) + " n'a pas pu être écrit.");
}

std::string ImprimerSurPapier(const std::string& Html) {
  const QPrinterInfo Défaut = QPrinterInfo::defaultPrinter();
  if (Défaut.isNull()) throw ErreurExécution("Aucune imprimante n'est installée : enregistrez le document en PDF.");
  QPrinter Imprimante(Défaut, QPrinter::HighResolution);
  Dessiner(Imprimante, Html);
  return Défaut.printerName().toStdString();
}

}  // namespace Ombrey
