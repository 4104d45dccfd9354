// The menus of the station's main window, and the plug-in's button.
#include <QMenuBar>
#include <QToolBar>
#include <functional>
#include <string>
#include <utility>

#include "base/text_helpers.h"
#include "host/windows/qt_host_window.h"
#include "host/windows/qt_papers.h"
#include "platform/qt/qt_measures.h"
#include "platform/qt/qt_message_box.h"

namespace Ombrey {

void FenêtrePrincipaleQt::Raccorder(Gestes LesGestes) {
  Gestes_ = std::move(LesGestes);
  QMenu* const Station = menuBar()->addMenu(QStringLiteral("&Station"));
  Offrir(*Station, "&Configurer le port…", Gestes_.Configurer);
  if (Travaux_) {
    Offrir(*Station, "&Diagnostic…", [this] { MontrerDiagnostic(this, *Travaux_); });
    Station->addSeparator();
    OffrirPapiers(
        *Station, this, {Contexte_, *Travaux_}, [this] { return Base_ ? Base_->BaseDAO() : nullptr; },
        Sujet_.EstSurServeur);
  }
  Station->addSeparator();
  Offrir(*Station, "&Quitter", Gestes_.Quitter)->setShortcut(QKeySequence(QStringLiteral("Ctrl+Q")));
  MenuGreffons().menuAction()->setVisible(false);  // until there is one
  CréerAide();
}

void FenêtrePrincipaleQt::CréerAide() {
  QMenu* const Aide = menuBar()->addMenu(QStringLiteral("&Aide"));
  Offrir(*Aide, "&Guide de l'opérateur\tF1", [this] {
    if (!Aide_.Montrer()) Dire("Le guide de l'opérateur n'est pas installé (paquet ombrey-doc).");
  });
  Offrir(*Aide, AvecTouche("À propos…", 'p'),
         [this] { MontrerBoîte(Contexte_, this, SigneBoîte::Information, ÀPropos_ ? ÀPropos_() : "", "À propos"); });
}

QAction* FenêtrePrincipaleQt::Offrir(QMenu& Menu, const std::string& Titre, std::function<void()> Geste) {
  QAction* const Entrée = Menu.addAction(Texte(Titre));
  connect(Entrée, &QAction::triggered, this, Différé(std::move(Geste)));
  return Entrée;
}

void FenêtrePrincipaleQt::OffrirBouton(const QIcon& Icône, const std::string& Infobulle) {
  QAction* const Bouton = Barre_->addAction(Icône, Texte(Infobulle));
  Bouton->setShortcut(Qt::Key_F5);
  Bouton->setToolTip(Texte(Infobulle) + QStringLiteral(" (F5) : essaie la liaison et montre les chargements"));
  MenuGreffons().addAction(Bouton);
  connect(Bouton, &QAction::triggered, this, Différé(Gestes_.Bouton));
}

void FenêtrePrincipaleQt::OffrirMenu(const std::string& Entrée) { Offrir(MenuGreffons(), Entrée, Gestes_.Menu); }

QMenu& FenêtrePrincipaleQt::MenuGreffons() {
  if (Greffons_ == nullptr) Greffons_ = menuBar()->addMenu(QStringLiteral("&Greffons"));
  Greffons_->menuAction()->setVisible(true);
  return *Greffons_;
}

}  // namespace Ombrey
