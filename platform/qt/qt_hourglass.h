// The hourglass in place of the pointer, over every window of the program.
#pragma once

#include <QCursor>
#include <QGuiApplication>
#include <utility>

namespace Ombrey {

/// One holder's wish for it; it stands for as long as anybody holds it. Dropped ahead of the QApplication.
class SablierQt {
 public:
  SablierQt() = default;
  SablierQt(const SablierQt&) = delete;
  SablierQt& operator=(const SablierQt&) = delete;
  ~SablierQt() { Fixer(false); }

  /// A state, not a count.
  void Fixer(bool Tenu) {
    if (std::exchange(Tenu_, Tenu) == Tenu) return;
    if (Tenu)
      QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    else
      QGuiApplication::restoreOverrideCursor();
  }
  [[nodiscard]] bool EstTenu() const { return Tenu_; }

 private:
  bool Tenu_ = false;
};

}  // namespace Ombrey
