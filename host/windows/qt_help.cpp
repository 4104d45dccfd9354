// The operator's guide, and texts in windows of their own.
#include "host/windows/qt_help.h"

#include <QApplication>
#include <QClipboard>
#include <QDialog>
#include <QDialogButtonBox>
#include <QImageReader>
#include <QKeyEvent>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QTextBlock>
#include <QTextCursor>
#include <QUrl>
#include <QVBoxLayout>
#include <QWindow>
#include <algorithm>
#include <string>

#include "base/files.h"
#include "host/about.h"
#include "platform/qt/qt_measures.h"

namespace Ombrey {

namespace {
constexpr int Colonnes = 100;  ///< of the guide and of a text, in letters
constexpr int Rangées = 34;

/// As wide as its window: pictures made smaller, commands broken into lines.
class GuideQt : public QTextBrowser {
 protected:
  void resizeEvent(QResizeEvent* Événement) override {
    QTextBrowser::resizeEvent(Événement);
    Ajuster();
  }

 private:
  void Ajuster() {
    const double Place = viewport()->width() - 2 * document()->documentMargin();
    QTextCursor Tout(document());
    Tout.beginEditBlock();
    for (QTextBlock Bloc = document()->begin(); Bloc.isValid(); Bloc = Bloc.next()) {
      QTextCursor Curseur(Bloc);
      QTextBlockFormat Forme = Bloc.blockFormat();
      if (Forme.nonBreakableLines()) {
        Forme.setNonBreakableLines(false);
        Curseur.setBlockFormat(Forme);
      }
      for (auto Morceau = Bloc.begin(); !Morceau.atEnd(); ++Morceau) {
        QTextImageFormat Image = Morceau.fragment().charFormat().toImageFormat();
        if (!Image.isValid()) continue;
        const QUrl Source = document()->baseUrl().resolved(QUrl(Image.name()));
        Image.setWidth(std::min<double>(QImageReader(Source.toLocalFile()).size().width(), Place));
        Curseur.setPosition(Morceau.fragment().position());
        Curseur.setPosition(Curseur.position() + Morceau.fragment().length(), QTextCursor::KeepAnchor);
        Curseur.setCharFormat(Image);
        break;  // the block's pieces are made anew
      }
    }
    Tout.endEditBlock();
  }
};

void Dimensionner(QWidget& Fenêtre) {
  const QFontMetrics Lettres = Fenêtre.fontMetrics();
  const QSize Voulue(Lettres.averageCharWidth() * Colonnes, Lettres.lineSpacing() * Rangées);
  Fenêtre.resize(Voulue.boundedTo(Fenêtre.screen()->availableSize() * 9 / 10));
}
}  // namespace

AideQt::AideQt() { qApp->installEventFilter(this); }

bool AideQt::eventFilter(QObject* /*Cible*/, QEvent* Événement) {
  if (Événement->type() != QEvent::KeyPress) return false;
  return static_cast<QKeyEvent*>(Événement)->key() == Qt::Key_F1 && Montrer();
}

bool AideQt::Montrer() {
  const QString Fichier = Texte(TexteChemin(Tarvel::GuideOpérateur()));
  if (Fichier.isEmpty()) return false;
  if (!Guide_) {
    Guide_ = std::make_unique<GuideQt>();
    Guide_->setAttribute(Qt::WA_QuitOnClose, false);
    Guide_->setWindowTitle(QStringLiteral("Guide de l'opérateur"));
    Guide_->setSource(QUrl::fromLocalFile(Fichier), QTextDocument::MarkdownResource);
    QObject::connect(new QShortcut(QKeySequence(Qt::Key_Escape), Guide_.get()), &QShortcut::activated, Guide_.get(),
                     &QWidget::close);
    Guide_->winId();  // gives it its window, which can stand above another's
    Dimensionner(*Guide_);
  }
  const QWidget* const Modale = QApplication::activeModalWidget();
  if (!Guide_->isVisible()) Guide_->windowHandle()->setTransientParent(Modale ? Modale->windowHandle() : nullptr);
  Guide_->show();
  Guide_->raise();
  Guide_->activateWindow();
  return true;
}

QPlainTextEdit* MontrerTexte(QWidget* Parent, const QString& Titre, const QString& Texte) {
  auto* const Fenêtre = new QDialog(Parent);
  Fenêtre->setAttribute(Qt::WA_DeleteOnClose);
  Fenêtre->setWindowTitle(Titre);
  auto* const Zone = new QPlainTextEdit(Texte, Fenêtre);
  Zone->setReadOnly(true);
  Zone->setTabChangesFocus(true);
  Zone->setAccessibleName(Titre);
  auto* const Boutons = new QDialogButtonBox(Fenêtre);
  auto* const Copier = Boutons->addButton(QStringLiteral("&Copier"), QDialogButtonBox::ActionRole);
  Copier->setToolTip(QStringLiteral("Met tout le texte dans le presse-papiers, pour un courriel par exemple."));
  QObject::connect(Copier, &QPushButton::clicked, Zone,
                   [Zone] { QApplication::clipboard()->setText(Zone->toPlainText()); });
  QObject::connect(Boutons->addButton(QStringLiteral("&Fermer"), QDialogButtonBox::RejectRole), &QPushButton::clicked,
                   Fenêtre, &QDialog::close);
  auto* const Plan = new QVBoxLayout(Fenêtre);
  Plan->addWidget(Zone);
  Plan->addWidget(Boutons);
  Dimensionner(*Fenêtre);
  Fenêtre->show();
  return Zone;
}

void MontrerDiagnostic(QWidget* Parent, Tarvel::TravauxÀCôté& Travaux) {
  const QPointer Zone =
      MontrerTexte(Parent, QStringLiteral("Diagnostic"), QStringLiteral("Diagnostic en cours ; la station continue…"));
  Zone->setCursor(Qt::BusyCursor);
  const auto Dit = std::make_shared<QStringList>();
  const std::size_t Travail = Travaux.Diagnostiquer([Dit](const std::string& Ligne) { *Dit << Texte(Ligne); },
                                                    [Zone, Dit](bool) {
                                                      if (!Zone) return;
                                                      Zone->unsetCursor();
                                                      Zone->setPlainText(Dit->join(QLatin1Char('\n')));
                                                    });
  QObject::connect(Zone, &QObject::destroyed, [&Travaux, Travail] { Travaux.Abandonner(Travail); });
}

}  // namespace Ombrey
