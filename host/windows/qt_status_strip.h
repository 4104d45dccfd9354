// What is always in sight: the link, the next poll, the last load, the base.
#pragma once

#include <QLabel>

#include "host/watch.h"

namespace Ombrey {

/// A text on one line that gives way: what has no room ends in dots and is whole in the tool tip.
class LigneÉlidée : public QLabel {
 public:
  using QLabel::QLabel;
  void Dire(const QString& Phrase);

 protected:
  void paintEvent(QPaintEvent* Événement) override;
  [[nodiscard]] QSize minimumSizeHint() const override;
};

class BandeauQt : public QWidget {
 public:
  explicit BandeauQt(QWidget* Parent);
  /// A state has its own words, shape and colour.
  void MontrerLiaison(Tarvel::SantéLiaison État, const QString& Phrase);
  void DireRelevé(const QString& Phrase) { Relevé_->Dire(Phrase); }
  void DireDernier(const QString& Phrase) { Dernier_->Dire(Phrase); }
  /// Pourquoi: why it doesn't answer; empty when all is well.
  void DireBase(const QString& Phrase, const QString& Pourquoi);

 private:
  QLabel* Signe_;
  LigneÉlidée* Liaison_;
  LigneÉlidée* Relevé_;
  LigneÉlidée* Dernier_;
  LigneÉlidée* Base_;
};

}  // namespace Ombrey
