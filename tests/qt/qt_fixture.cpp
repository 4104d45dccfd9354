// Qt without a screen for the tests.
#include "tests/qt/qt_fixture.h"

#include <gtest/gtest.h>

#include <QApplication>

/// What the font library keeps to the end is no leak of ours. Read by the leak checker, where there is one.
extern "C" [[gnu::visibility("default")]] const char*
__lsan_default_suppressions() {  // NOLINT(bugprone-reserved-identifier): the checker's own name
  return "leak:libfontconfig\n";
}

namespace Ombrey::Essais {

void PréparerQt() {
  if (QCoreApplication::instance() != nullptr) return;
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  qputenv("HOME", "/nonexistent");  // no documents folder: what is printed stays in the test's own
  static int Nombre = 1;
  static char Nom[] = "test_qt";
  static char* Arguments[] = {Nom, nullptr};
  static const auto* const Application = new QApplication(Nombre, Arguments);  // Qt wants it to the very end
  static_cast<void>(Application);
}

bool MachineQt::JusquÀ(const std::function<bool()>& Fini) {
  const auto Fin = std::chrono::steady_clock::now() + std::chrono::seconds(2);
  while (!Fini()) {
    if (std::chrono::steady_clock::now() >= Fin) return false;
    Boucle.Pomper(std::chrono::milliseconds(20));
  }
  return true;
}

QWidget* FenêtreNommée(const std::string& Titre) {
  for (QWidget* Fenêtre : QApplication::topLevelWidgets()) {
    if (Fenêtre->isVisible() && Fenêtre->windowTitle().toStdString() == Titre) return Fenêtre;
  }
  return nullptr;
}

QPushButton& LeBouton(QWidget& Fenêtre, const std::string& Libellé) {
  for (QPushButton* Bouton : Fenêtre.findChildren<QPushButton*>()) {
    if (Bouton->isVisible() && Bouton->text().toStdString() == Libellé) return *Bouton;
  }
  ADD_FAILURE() << "no button " << Libellé;
  static auto* const Aucun = new QPushButton;
  return *Aucun;
}

}  // namespace Ombrey::Essais
