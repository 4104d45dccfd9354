// The main window's view of the day: loads, sums, quotas, tonnage by hour.
#pragma once

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QSplitter>
#include <QWidget>
#include <array>
#include <functional>
#include <optional>
#include <set>
#include <string>

#include "contracts/system.h"
#include "host/day_view.h"
#include "host/windows/qt_list_pages.h"
#include "platform/qt/qt_window.h"

namespace Ombrey {

/// Tonnage by hour as bars.
class HistogrammeQt : public QWidget {
 public:
  explicit HistogrammeQt(QWidget* Parent);
  void Montrer(const Tarvel::Journée& Jour);

 protected:
  void paintEvent(QPaintEvent* Événement) override;

 private:
  std::array<double, 24> Masses_{};
};

class PageJournéeQt : public QWidget {
 public:
  PageJournéeQt(QWidget* Parent, const ContexteQt& Contexte, const Régional& Formes);
  /// Toute is the day of all sites or of one, as TousLesSites says. The lists keep their place.
  void Montrer(Tarvel::Journée Toute);
  /// The weight of the newest load of this number, if the day has one.
  [[nodiscard]] std::optional<double> MasseDe(const std::string& Site, const std::string& Numéro) const;
  [[nodiscard]] bool TousLesSites() const { return Tous_->isChecked(); }
  std::function<void()> SurSites;  ///< the operator wants all sites, or his own

 protected:
  void showEvent(QShowEvent* Événement) override;
  void resizeEvent(QResizeEvent* Événement) override;

 private:
  void Répartir();
  /// Nouveautés: what hasn't been shown before has only just come.
  void Afficher(bool Nouveautés);

  Régional Formes_;
  Tarvel::Journée Toute_;
  std::optional<bool> TousLus_;  ///< whether Toute_ has all sites; unset until a day was read
  QLineEdit* Filtre_;
  QCheckBox* Tous_;
  QLabel* Total_;
  ListeQt* Chargements_;
  ListeQt* Sommes_;
  ListeQt* Quotas_;
  HistogrammeQt* Heures_;
  QSplitter* Milieu_;
  QSplitter* Droite_;
  std::set<const QSplitter*> Tirés_;  ///< by the operator
};

}  // namespace Ombrey
