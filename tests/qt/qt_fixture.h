// Qt without a screen for the tests, the plug-in's machine with real windows on it, and the operator's hand.
#pragma once

#include <gtest/gtest.h>

#include <QtTest>
#include <QtWidgets>

#include "host/side_work.h"
#include "platform/qt/qt_windows.h"
#include "tests/support/fake_host.h"
#include "tests/support/fake_platform.h"
#include "tests/support/test_folder.h"
#include "tests/transfer/small_cooperative.h"

namespace Ombrey::Essais {

using namespace std::chrono_literals;

/// The first control of its kind in sight, of this text where one is given. Raises when there is none.
template <class Genre>
Genre& Le(const QWidget& Fenêtre, const std::string& Libellé = "") {
  for (Genre* Un : Fenêtre.findChildren<Genre*>()) {
    if (Un->isVisible() && (Libellé.empty() || Un->property("text").toString().toStdString() == Libellé)) return *Un;
  }
  throw std::runtime_error("nothing in sight: " + Libellé);
}

/// What the operator does in a window.
using Geste = std::function<void(QWidget&)>;
inline Geste Clic(const std::string& Bouton) {
  return [Bouton](QWidget& Fenêtre) { QTest::mouseClick(&Le<QPushButton>(Fenêtre, Bouton), Qt::LeftButton); };
}
inline Geste Touche(Qt::Key LaTouche, Qt::KeyboardModifiers Avec = {}) {
  return [=](QWidget& Fenêtre) { QTest::keyClick(&Fenêtre, LaTouche, Avec); };
}
inline void Cadre(QWidget& Fenêtre) { Fenêtre.close(); }

/// A machine in memory whose windows and loop are Qt's.
struct Bureau : testing::Test, FaussePlateforme {
  Bureau() { LesVraies.RéglerBoîtes(30s, 0ms); }
  IFenêtres& Fenêtres() override { return LesVraies; }
  /// Does Faire in the window of this title as soon as it takes what the operator does.
  void Dès(const std::string& Titre, const Geste& Faire, int Essais = 400) {
    Jetons.push_back(Boucle.Après(5ms, [=, this] {
      QWidget* const Devant = QApplication::activeModalWidget();
      const bool Bonne = Devant != nullptr && Devant->windowTitle().toStdString() == Titre;
      if (!Bonne && Essais > 0) return Dès(Titre, Faire, Essais - 1);
      if (!Bonne) ADD_FAILURE() << "no window " << Titre;
      if (!Bonne) return LesVraies.Finir();
      Vider();
      Faire(*Devant);
    }));
  }
  /// What the text or the box of this title says, which is closed. Pumps meanwhile, as who waits for the terminal: a
  /// box that holds the pump is gone when it comes back.
  std::string Lire(const std::string& Titre) {
    for (int Essais = 0; Essais < 400; ++Essais, Boucle.Pomper(5ms)) {
      for (const QWidget* Une : QApplication::allWidgets()) {
        const auto* const Zone = qobject_cast<const QTextEdit*>(Une);
        if (!Zone || !Zone->isVisible() || Zone->window()->windowTitle().toStdString() != Titre) continue;
        Zone->window()->close();
        return Zone->toPlainText().toStdString();
      }
    }
    return "";
  }
  /// Pumps for so long.
  void Laisser(std::chrono::milliseconds Durée) {
    for (const QDeadlineTimer Fin(Durée); !Fin.hasExpired();) Boucle.Pomper(5ms);
  }
  /// Lets what is waiting run.
  void Vider() {
    for (int Reste = 50; Reste > 0 && Boucle.Pomper(5ms);) --Reste;
  }
  /// What the program does that stands in for this one beside the station.
  void ÉcrireProgramme(const std::string& Texte) const {
    std::ofstream(Programme) << "#!/bin/sh\n" << Texte << "\n";
    std::filesystem::permissions(Programme, std::filesystem::perms::owner_all);
  }
  DossierEssai Dossier;
  const std::string Programme = Dossier.Chemin() / "programme";
  const Tarvel::Options Choisies;
  BoucleQt Boucle;
  Tarvel::TravauxÀCôté Travaux{Boucle, Choisies, Programme};
  FenêtresQt LesVraies{Boucle, Dossier.Chemin()};
  FauxCanal Canal;
  ÉtatPartagé État{*this, Canal};
  FauxServices Services;
  std::string Trace;
  std::vector<IBoucle::Jeton> Jetons;
};

/// And a host with a small cooperative.
struct BureauAvecBase : Bureau {
  BureauAvecBase() {
    Hôte->Base = Coopérative.Base;
    État.BaseDeD = Hôte;
  }
  PetiteCoopérative Coopérative;
  std::shared_ptr<FausseBaseDeD> Hôte = std::make_shared<FausseBaseDeD>();
};

}  // namespace Ombrey::Essais
