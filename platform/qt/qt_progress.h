// How far a transfer is: each data set, the bytes left and the time they take, and a button that stops it.
#pragma once

#include <QDialog>
#include <QElapsedTimer>
#include <QLabel>
#include <QPointer>
#include <QProgressBar>
#include <QString>
#include <QStringList>
#include <map>

#include "platform/loop/witnesses.h"

namespace Ombrey {

/// Stands above the transfer window, which has no room for it and takes no click meanwhile. A transfer that is over at
/// once doesn't show it.
class ProgressionQt {
 public:
  explicit ProgressionQt(QWidget* Parent) : Parent_(Parent) {}
  ProgressionQt(const ProgressionQt&) = delete;
  ProgressionQt& operator=(const ProgressionQt&) = delete;
  ~ProgressionQt() { Fermer(); }

  /// A transfer of these data sets begins; none: it has ended.
  void Commencer(const QStringList& Jeux);
  /// This set's turn has come; none: no set's.
  void Entamer(const QString& Jeu);
  void Dire(const QString& Jeu, const QString& État);
  /// False once the operator has stopped the sending.
  [[nodiscard]] bool Avancer(const Avancement& Où);
  [[nodiscard]] bool EstArrêtée() const { return Arrêtée_; }

 private:
  void Créer();
  void Fermer();
  void Montrer();

  QPointer<QWidget> Parent_;
  QPointer<QDialog> Fenêtre_;
  QProgressBar* Barre_ = nullptr;
  std::map<QString, QString> Dits_;  ///< of each set, also before there is a window
  std::map<QString, QLabel*> États_;
  QStringList Jeux_;
  QString EnCours_;
  QElapsedTimer Depuis_;
  bool Arrêtée_ = false;
};

}  // namespace Ombrey
