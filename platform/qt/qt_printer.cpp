// The printer: the default one of the machine, or a PDF file where there is none.
#include "platform/qt/qt_printer.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPrinterInfo>
#include <algorithm>
#include <system_error>
#include <utility>

#include "base/failures.h"
#include "platform/qt/qt_measures.h"

namespace Ombrey {

namespace {
constexpr int PointsAuDébut = 10;
constexpr int Habillage = Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap | Qt::TextExpandTabs;

QString EnLignes(const std::string& Utf8) {
  QString Lignes = Texte(Utf8);
  return Lignes.replace(QLatin1String("\r\n"), QLatin1String("\n")).replace(QLatin1Char('\r'), QLatin1Char('\n'));
}
}  // namespace

void FinirDessin(QPainter& Peintre, const QPrinter& Imprimante) {
  if (!Peintre.end() || Imprimante.printerState() == QPrinter::Error)
    throw ErreurExécution("L'impression n'a pas abouti.");
}

bool DessinerEnFichier(QPrinter& Imprimante, const std::filesystem::path& Fichier,
                       const std::function<void()>& Dessiner) {
  std::filesystem::path Ébauche = Fichier;
  Ébauche += ".partiel";
  Imprimante.setOutputFileName(Texte(Ébauche.string()));
  const bool Dessinée = Ignorer(Dessiner);
  std::error_code Erreur;
  if (Dessinée) std::filesystem::rename(Ébauche, Fichier, Erreur);
  if (Dessinée && !Erreur) return true;
  std::filesystem::remove(Ébauche, Erreur);
  return false;
}

ImprimanteQt::ImprimanteQt(std::string Nom, std::vector<std::filesystem::path> Dossiers, AnnonceFichier Annoncer)
    : Nom_(std::move(Nom)), Dossiers_(std::move(Dossiers)), Annoncer_(std::move(Annoncer)) {
  const QPrinterInfo Défaut = QPrinterInfo::defaultPrinter();
  SurPapier_ = !Défaut.isNull();
  if (SurPapier_)
    Imprimante_.setPrinterName(Défaut.printerName());
  else
    Imprimante_.setOutputFormat(QPrinter::PdfFormat);
  Imprimante_.setDocName(Texte(Nom_));
  Imprimante_.setCreator(QStringLiteral("Tarvel"));
  Police_.setPointSize(PointsAuDébut);
}

double ImprimanteQt::HauteurPage() const { return Imprimante_.pageRect(QPrinter::DevicePixel).height(); }

void ImprimanteQt::FixerPolice(int Points, bool Gras, bool Souligné) {
  Police_.setPointSize(Points);
  Police_.setBold(Gras);
  Police_.setUnderline(Souligné);
}

void ImprimanteQt::Imprimer(const std::string& Ligne) {
  const QFontMetricsF Mesure(Police_, &Imprimante_);
  const QString Composée = EnLignes(Ligne);
  // The blanks ahead of a line stand ahead of what it goes on with, too.
  const auto Blancs =
      std::ranges::find_if(Composée, [](QChar Un) { return Un != QLatin1Char(' '); }) - Composée.begin();
  const double Retrait = Mesure.horizontalAdvance(Composée.left(Blancs));
  const double Largeur = Imprimante_.pageRect(QPrinter::DevicePixel).width() - Retrait;
  const QRectF Offerte(Retrait, 0, Largeur, HauteurPage());
  const QString Corps = Composée.mid(Blancs);
  const double Hauteur = std::max(Mesure.height(), Mesure.boundingRect(Offerte, Habillage, Corps).height());
  // A line that goes on in several isn't cut at the foot of the page.
  if (Position_ > 0 && Position_ + Hauteur > HauteurPage()) NouvellePage();
  if (!Corps.trimmed().isEmpty())
    Lignes_.push_back({Page_, QRectF(Retrait, Position_, Largeur, Hauteur), Police_, Corps});
  Position_ += Hauteur;
}

void ImprimanteQt::NouvellePage() {
  ++Page_;
  Position_ = 0;
}

void ImprimanteQt::TerminerDocument() {
  if (SurPapier_) return Dessiner();
  EcrireFichier();
}

void ImprimanteQt::Dessiner() {
  QPainter Peintre;
  if (!Peintre.begin(&Imprimante_)) throw ErreurExécution("L'imprimante n'a pas pu être ouverte.");
  int Page = 0;
  for (const LigneComposée& Ligne : Lignes_) {
    for (; Page < Ligne.Page; ++Page) {
      if (!Imprimante_.newPage()) throw ErreurExécution("L'impression s'est arrêtée : page refusée par l'imprimante.");
    }
    Peintre.setFont(Ligne.Police);
    Peintre.drawText(Ligne.Place, Habillage, Ligne.Texte);
  }
  FinirDessin(Peintre, Imprimante_);
}

void ImprimanteQt::EcrireFichier() {
  for (const std::filesystem::path& Dossier : Dossiers_) {
    std::error_code Erreur;
    if (!std::filesystem::is_directory(Dossier, Erreur)) continue;
    const std::filesystem::path Fichier = Dossier / Nom_;
    if (DessinerEnFichier(Imprimante_, Fichier, [this] { Dessiner(); })) return Annoncer_(Fichier.string());
  }
  throw ErreurExécution("Aucune imprimante n'est installée, et le fichier « " + Nom_ + " » n'a pas pu être écrit.");
}

}  // namespace Ombrey
