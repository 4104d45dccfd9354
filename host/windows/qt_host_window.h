// The station's main window: the state of the link and the base at a glance, the day, what is refused, and what was
// said while nobody was there.
#pragma once

#include <QDateTime>
#include <QIcon>
#include <QMainWindow>
#include <QPlainTextEdit>
#include <QTabWidget>
#include <QTimer>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "contracts/database.h"
#include "contracts/host.h"
#include "contracts/system.h"
#include "host/overview.h"
#include "host/side_work.h"
#include "host/windows/qt_close_watch.h"
#include "host/windows/qt_day_page.h"
#include "host/windows/qt_help.h"
#include "host/windows/qt_list_pages.h"
#include "host/windows/qt_status_strip.h"
#include "platform/qt/qt_window.h"
#include "platform/serial/line_journal.h"

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
  /// Which database this station works on.
  struct Sujet {
    std::string Base;
    bool EstSurServeur = false;
  };

  /// Its place is kept in Réglages; all four outlive the window.
  FenêtrePrincipaleQt(const ContexteQt& Contexte, const Sujet& LeSien, IRéglages& Réglages, Tarvel::Aperçu& Aperçu,
                      const Régional& Formes = {});
  ~FenêtrePrincipaleQt() override;

  /// Called once, before the window is shown.
  void Raccorder(Gestes LesGestes);
  /// The database whose loads are shown, from now on.
  void Suivre(std::shared_ptr<IBaseDeD> Base);
  /// Reads anew what the pages show of the base.
  void Actualiser();
  /// What passes on the line is shown as well; Journal outlives the window.
  void SuivreLiaison(const JournalLiaison& Journal);
  void OffrirBouton(const QIcon& Icône, const std::string& Infobulle);
  /// "&" stands ahead of the mnemonic letter.
  void OffrirMenu(const std::string& Entrée);
  /// What « À propos » says, and who does what takes long, which outlives the window. Ahead of Raccorder.
  void Présenter(std::function<std::string()> ÀPropos, Tarvel::TravauxÀCôté& Travaux);

  /// The text stands in the status line until the next, and in the journal.
  void Dire(const std::string& Texte);
  /// Another start of the station was asked for: this one comes to the front.
  void SePrésenter();

 protected:
  void closeEvent(QCloseEvent* Événement) override;

 private:
  QMenu& MenuGreffons();
  void CréerPages();
  void SuivreLAperçu();
  void CréerJournal();
  void CréerAide();
  QAction* Offrir(QMenu& Menu, const std::string& Titre, std::function<void()> Geste);
  /// Behind the last page, unless a place is said.
  void Ajouter(QWidget* Page, const QString& Titre, const QString& Infobulle, int Place = -1);
  void ReprendrePlace();
  void SauverPlace();
  [[nodiscard]] std::function<void()> Différé(std::function<void()> Geste) const;
  void VenirDevant();
  void Lire(IDatabase& Base, const std::string& Site);
  void ActualiserPage();
  void ActualiserBandeau();
  void ActualiserFaits();
  [[nodiscard]] std::string DireReçu(const std::string& Numéro) const;

  const ContexteQt& Contexte_;
  Gestes Gestes_;
  Sujet Sujet_;
  IRéglages& Réglages_;
  Tarvel::Aperçu& Aperçu_;
  Régional Formes_;
  std::shared_ptr<IBaseDeD> Base_;
  std::function<std::string()> ÀPropos_;
  Tarvel::TravauxÀCôté* Travaux_ = nullptr;
  AideQt Aide_;
  VeilleFermeture Fermeture_;
  /// Attention was called for to the transfer window that stands open since then.
  std::optional<std::chrono::system_clock::time_point> Rappelée_;
  std::string Site_;  ///< this station's
  QRect Place_;       ///< its own, while it isn't maximised
  QTimer Montre_;
  int Tours_ = 0;

  QToolBar* Barre_;
  QMenu* Greffons_ = nullptr;
  BandeauQt* Bandeau_;
  QTabWidget* Pages_;
  PageJournéeQt* Journée_;
  PageRefusésQt* Refusés_;
  ListeQt* Archive_;
  ListeQt* Stations_;
  PageNonLuesQt* NonLues_;
  QPlainTextEdit* Journal_;
  LigneÉlidée* État_;
};

}  // namespace Ombrey
