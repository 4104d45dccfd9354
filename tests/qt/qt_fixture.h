// Qt without a screen for the tests, and the plug-in's machine with real windows on it.
#pragma once

#include <QPushButton>
#include <QWidget>
#include <chrono>
#include <functional>
#include <string>

#include "platform/qt/qt_windows.h"
#include "tests/support/fake_host.h"
#include "tests/support/fake_platform.h"
#include "tests/support/test_folder.h"

namespace Ombrey::Essais {

/// Makes the QApplication, once for the program: without a screen unless the environment names one.
void PréparerQt();

/// A machine in memory whose windows and loop are Qt's.
class MachineQt : public FaussePlateforme {
 public:
  MachineQt() { PréparerQt(); }
  DossierEssai Dossier;
  BoucleQt Boucle;
  FenêtresQt LesVraies{Boucle, Dossier.Chemin()};
  IFenêtres& Fenêtres() override { return LesVraies; }

  /// Pumps until Fini, for two seconds at most.
  bool JusquÀ(const std::function<bool()>& Fini);
  /// Lets everything run that is waiting.
  void Vider() {
    while (Boucle.Pomper(std::chrono::milliseconds(5))) {
    }
  }
};

/// The visible top-level window of this title, or nullptr.
QWidget* FenêtreNommée(const std::string& Titre);
/// The visible button of this text in the window. Fails the test and gives an unseen one when there is none.
QPushButton& LeBouton(QWidget& Fenêtre, const std::string& Libellé);

}  // namespace Ombrey::Essais
