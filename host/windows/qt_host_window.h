// The station's main window: the state of the link and the base at a glance, the day, what is refused, and what was
// said while nobody was there.
#pragma once

#include <QDateTime>
#include <QIcon>
#include <QLabel>
#include <QMainWindow>
#include <QPlainTextEdit>
#include <QTabWidget>
#include <QTextBrowser>
#include <QTimer>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "contracts/host.h"
#include "contracts/system.h"
#include "host/watch.h"
#include "host/windows/qt_day_page.h"
#include "platform/qt/qt_window.h"

namespace Ombrey {

/// Stays open until it is dropped: its closing, like « Quitter », only asks for the end.
class FenêtrePrincipaleQt : public QMainWindow {
 public:
  /// Run in the pump.
  struct Gestes {
    std::function<void()> Bouton;
    std::function<void()> Menu;
    std::function<void()> Configurer;
    std::function<void()> Quitter;
  };

  /// Sujet says which database this station works on; its place is kept in Réglages, which outlives it.
  FenêtrePrincipaleQt(const ContexteQt& Contexte, const std::string& Sujet, IRéglages& Réglages,
                      const Régional& Formes = {});
  ~FenêtrePrincipaleQt() override;

  /// Called once, before the window is shown.
  void Raccorder(Gestes LesGestes);
  /// The database whose loads are shown, from now on.
  void Suivre(std::shared_ptr<IBaseDeD> Base);
  void OffrirBouton(const QIcon& Icône, const std::string& Infobulle);
  /// "&" stands ahead of the mnemonic letter.
  void OffrirMenu(const std::string& Entrée);
  /// What « À propos » says.
  void Présenter(const std::string& ÀPropos) { ÀPropos_ = ÀPropos; }

  /// The text stands in the status line until the next, and in the journal.
  void Dire(const std::string& Texte);
  /// These look at what the plug-in says: a line of its lists, a box, a box that stepped aside unread.
  void NoterLigne(const std::string& Ligne);
  void NoterBoîte(const std::string& Titre, const std::string& Message);
  void NoterRetrait(const std::string& Titre, const std::string& Message);

 protected:
  void closeEvent(QCloseEvent* Événement) override;

 private:
  QMenu& MenuGreffons();
  void CréerBandeau();
  void CréerPages();
  void CréerAide();
  void MontrerGuide();
  void ReprendrePlace();
  void SauverPlace();
  [[nodiscard]] std::function<void()> Différé(std::function<void()> Geste) const;
  [[nodiscard]] GrilleChargements* AjouterListe(const QString& Titre, const QString& Infobulle);
  void Transférer();
  void Actualiser();
  void ActualiserBandeau();
  void ActualiserFaits();
  void NoterRefus(const std::string& Texte);
  [[nodiscard]] std::string DireReçu(const std::string& Numéro) const;

  const ContexteQt& Contexte_;
  Gestes Gestes_;
  IRéglages& Réglages_;
  Régional Formes_;
  std::shared_ptr<IBaseDeD> Base_;
  std::string ÀPropos_;
  std::unique_ptr<QTextBrowser> Guide_;  ///< once it was asked for
  Tarvel::ÉtatLiaison Liaison_;
  Tarvel::FaitsRépétés Refus_;
  Tarvel::FaitsRépétés NonLues_;
  std::optional<QDateTime> SuspendueDepuis_;
  bool Rappelée_ = false;  ///< attention was called for to a transfer window left open
  QTimer Montre_;
  int Tours_ = 0;

  QToolBar* Barre_;
  QMenu* Greffons_ = nullptr;
  QLabel* Signe_ = nullptr;
  QLabel* TexteLiaison_ = nullptr;
  QLabel* Dernier_ = nullptr;
  QLabel* ÉtatBase_ = nullptr;
  QTabWidget* Pages_ = nullptr;
  PageJournéeQt* Journée_ = nullptr;
  GrilleChargements* GrilleRefus_ = nullptr;
  GrilleChargements* GrilleArchive_ = nullptr;
  GrilleChargements* GrilleNonLues_ = nullptr;
  QPlainTextEdit* Journal_ = nullptr;
  QLabel* État_;
};

}  // namespace Ombrey
