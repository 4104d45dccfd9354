// What is always in sight.
#include "host/windows/qt_status_strip.h"

#include <QGridLayout>
#include <QPainter>
#include <QStyle>
#include <algorithm>

#include "host/day_view.h"
#include "platform/qt/qt_measures.h"

namespace Ombrey {

namespace {
/// A state's own shape and colour, so that neither is needed to read the other.
struct Enseigne {
  Tarvel::SantéLiaison État;
  const char* Signe;
  const char* Couleur;
};
constexpr Enseigne Enseignes[] = {
    {Tarvel::SantéLiaison::Répond, "●", "#1b7f3b"},      {Tarvel::SantéLiaison::Muette, "▲", "#b45f00"},
    {Tarvel::SantéLiaison::PortEnPanne, "■", "#b00020"}, {Tarvel::SantéLiaison::SansPort, "■", "#b00020"},
    {Tarvel::SantéLiaison::Inconnue, "○", "#606060"},    {Tarvel::SantéLiaison::Suspendue, "❚❚", "#b45f00"},
};
constexpr const char* CouleurPanne = "color: #b00020";
constexpr int CaractèresAuMoins = 8;
}  // namespace

void LigneÉlidée::Dire(const QString& Phrase) {
  if (text() == Phrase) return;
  setText(Phrase);
  setToolTip(Phrase.toHtmlEscaped());
}

QSize LigneÉlidée::minimumSizeHint() const {
  return {fontMetrics().averageCharWidth() * CaractèresAuMoins, QLabel::minimumSizeHint().height()};
}

void LigneÉlidée::paintEvent(QPaintEvent* /*Événement*/) {
  QPainter Peintre(this);
  style()->drawItemText(&Peintre, contentsRect(), static_cast<int>(alignment()), palette(), isEnabled(),
                        fontMetrics().elidedText(text(), Qt::ElideRight, contentsRect().width()), foregroundRole());
}

BandeauQt::BandeauQt(QWidget* Parent)
    : QWidget(Parent),
      Signe_(new QLabel(this)),
      Liaison_(new LigneÉlidée(this)),
      Relevé_(new LigneÉlidée(this)),
      Dernier_(new LigneÉlidée(Texte(Tarvel::TexteDernier({}, {})), this)),
      Base_(new LigneÉlidée(this)) {
  for (QLabel* Un : {Signe_, static_cast<QLabel*>(Liaison_), static_cast<QLabel*>(Relevé_),
                     static_cast<QLabel*>(Dernier_), static_cast<QLabel*>(Base_)})
    Un->setTextFormat(Qt::PlainText);
  for (QLabel* Un : {Dernier_, Base_}) Un->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  QFont Police = Liaison_->font();
  Police.setBold(true);
  Liaison_->setFont(Police);
  auto* const Plan = new QGridLayout(this);
  Plan->addWidget(Signe_, 0, 0);
  Plan->addWidget(Liaison_, 0, 1);
  Plan->addWidget(Dernier_, 0, 2);
  Plan->addWidget(Relevé_, 1, 1);
  Plan->addWidget(Base_, 1, 2);
  Plan->setColumnStretch(1, 1);
  Plan->setHorizontalSpacing(fontMetrics().averageCharWidth());
  Plan->setVerticalSpacing(2);
}

void BandeauQt::MontrerLiaison(Tarvel::SantéLiaison État, const QString& Phrase) {
  const auto* const Sienne = std::ranges::find(Enseignes, État, &Enseigne::État);
  if (const QString Signe = QString::fromUtf8(Sienne->Signe); Signe_->text() != Signe) {
    Signe_->setText(Signe);
    Signe_->setStyleSheet(QStringLiteral("color: ") + QString::fromUtf8(Sienne->Couleur));
  }
  if (Signe_->accessibleName() != Phrase) Signe_->setAccessibleName(Phrase);
  Liaison_->Dire(Phrase);
}

void BandeauQt::DireBase(const QString& Phrase, const QString& Pourquoi) {
  Base_->Dire(Phrase);
  Base_->setToolTip((Pourquoi.isEmpty() ? Phrase : Pourquoi).toHtmlEscaped());
  const QString Feuille = Pourquoi.isEmpty() ? QString() : QString::fromUtf8(CouleurPanne);
  if (Base_->styleSheet() != Feuille) Base_->setStyleSheet(Feuille);
}

}  // namespace Ombrey
