// The monitoring window on a screen.
#include "platform/qt/qt_monitoring_view.h"

#include <QCoreApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QScreen>
#include <QStyledItemDelegate>
#include <algorithm>
#include <functional>
#include <memory>
#include <utility>

#include "base/visible_text.h"
#include "platform/qt/qt_measures.h"

namespace Ombrey {

namespace {
constexpr int LargeurÉtiquettes = 360;  ///< twips beside the lists for the tabs' labels
constexpr int MargeBouton = 4;          ///< pixels around a button's text
/// Room for the tab strip with its buttons and a few loads, twips.
constexpr Rectangle AuMoins{0, 0, 4200, 4350};

/// Tabs along the left edge, as wide as the room beside the lists.
class BarreOnglets : public QTabBar {
 public:
  explicit BarreOnglets(QWidget* Parent) : QTabBar(Parent) {
    setShape(RoundedWest);
    setExpanding(false);
    setDrawBase(false);
    setUsesScrollButtons(false);
  }

 protected:
  [[nodiscard]] QSize tabSizeHint(int Rang) const override {
    return {EnPixels(LargeurÉtiquettes, logicalDpiX()), QTabBar::tabSizeHint(Rang).height()};
  }
};

/// Each line is as wide as the widest of the list: so one line's height is all that is ever measured, and a line longer
/// than the list gets a scroll bar.
class LignesÉgales : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;
  [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& Option, const QModelIndex& Place) const override {
    return {Largeur, QStyledItemDelegate::sizeHint(Option, Place).height()};
  }
  int Largeur = 0;
};

/// A list above the buttons of its tab, with its bars beside them and not below.
class ListeSuivi : public QListWidget {
 public:
  explicit ListeSuivi(QWidget* Parent) : QListWidget(Parent), Lignes_(new LignesÉgales(this)) {
    setUniformItemSizes(true);
    setItemDelegate(Lignes_);
    setHorizontalScrollMode(ScrollPerPixel);
  }
  std::function<void()> SurEntrée;

  void Ajouter(int Rang, std::unique_ptr<QListWidgetItem> Élément) {
    QStyleOptionViewItem Option;
    initViewItemOption(&Option);
    insertItem(Rang, Élément.release());
    const int Largeur = Lignes_->QStyledItemDelegate::sizeHint(Option, model()->index(Rang, 0)).width();
    if (Largeur <= Lignes_->Largeur) return;
    Lignes_->Largeur = Largeur;
    scheduleDelayedItemsLayout();
  }

 protected:
  void keyPressEvent(QKeyEvent* Événement) override {
    const bool Entrée = Événement->key() == Qt::Key_Return || Événement->key() == Qt::Key_Enter;
    if (Entrée && SurEntrée) return SurEntrée();
    QListWidget::keyPressEvent(Événement);
  }

 private:
  LignesÉgales* Lignes_;
};

int Rang(std::size_t Ligne) { return static_cast<int>(std::min<std::size_t>(Ligne, 1U << 30U)); }

bool SurLaBande(ContrôleSuivi Contrôle) {
  return Contrôle != ContrôleSuivi::Grille && Contrôle != ContrôleSuivi::Onglets &&
         Contrôle != ContrôleSuivi::BtnMasquer;
}

bool EstBouton(ContrôleSuivi Contrôle) { return Contrôle >= ContrôleSuivi::BtnInterroger; }
}  // namespace

VueSuiviChargntQt::VueSuiviChargntQt(const ContexteQt& Contexte, IGestesSuivi& Gestes, const std::string& Légende,
                                     const Rectangle& Intérieur, std::span<const DessinContrôleSuivi> Dessin)
    : Contexte_(Contexte), Gestes_(Gestes), Fenêtre_(Contexte, Qt::Window) {
  Fenêtre_->setWindowTitle(Texte(Légende));
  Fenêtre_->setMinimumSize(EnPixels(AuMoins, Résolution()).size());
  QRect Place = EnPixels(Intérieur, Résolution());
  Place.moveCenter(Fenêtre_->screen()->availableGeometry().center());
  PlacerSurÉcran(*Fenêtre_, Place);
  CréerBande();
  for (const DessinContrôleSuivi& Contrôle : Dessin) Créer(Contrôle);
  for (const auto& [Contrôle, Élément] : Contrôles_) {
    if (EstBouton(Contrôle)) Élément->raise();
  }
  Onglets_->setTabVisible(static_cast<int>(Onglet::Erreurs), false);
  Ordonner();
  Brancher();
}

/// Keys go from top to bottom: the loads, the tabs, the tab's list, its buttons.
void VueSuiviChargntQt::Ordonner() {
  using enum ContrôleSuivi;
  Grille_->setAccessibleName(QString::fromUtf8(ChargementsDuJour));
  Onglets_->setAccessibleName(QStringLiteral("Messages et erreurs"));
  Liste(Onglet::Suivis).setAccessibleName(QStringLiteral("Messages"));
  Liste(Onglet::Erreurs).setAccessibleName(QStringLiteral("Erreurs"));
  QWidget* Avant = Grille_;
  QWidget* const Suite[] = {Onglets_,
                            Contrôles_.at(ListeSuivis),
                            Contrôles_.at(ListeErreurs),
                            Contrôles_.at(BtnForcerCumulsRG80),
                            Contrôles_.at(BtnInterroger),
                            Contrôles_.at(BtnImprimer)};
  for (QWidget* Un : Suite) QWidget::setTabOrder(std::exchange(Avant, Un), Un);
  Grille_->setFocus();
}

void VueSuiviChargntQt::CréerBande() {
  Bande_ = new QWidget(&*Fenêtre_);
  Onglets_ = new BarreOnglets(Bande_);
  Onglets_->addTab(QString());
  Onglets_->addTab(QString());
}

void VueSuiviChargntQt::Créer(const DessinContrôleSuivi& Dessin) {
  using enum ContrôleSuivi;
  QWidget* Contrôle = nullptr;
  switch (Dessin.Contrôle) {
    case Grille:
      Contrôle = Grille_ = new GrilleChargements(&*Fenêtre_);
      break;
    case Onglets:
      Contrôle = Bande_;
      break;
    case ListeSuivis:
    case ListeErreurs: {
      const Onglet Lequel = Dessin.Contrôle == ListeSuivis ? Onglet::Suivis : Onglet::Erreurs;
      Onglets_->setTabText(static_cast<int>(Lequel), Texte(Dessin.Texte));
      Contrôle = CréerListe(Lequel);
      break;
    }
    default:
      Contrôle = CréerBouton(Dessin);
  }
  Contrôles_[Dessin.Contrôle] = Contrôle;
  PlacerContrôle(Dessin.Contrôle, Dessin.Place);
  if (EstBouton(Dessin.Contrôle)) FaireTenir(*Contrôle, Texte(Dessin.Texte), MargeBouton, MargeBouton);
}

QListWidget* VueSuiviChargntQt::CréerListe(Onglet Lequel) {
  auto* const LaListe = new ListeSuivi(Bande_);
  LaListe->setSpacing(1);  // keeps the ticks of two lines apart
  LaListe->setEditTriggers(QAbstractItemView::NoEditTriggers);
  LaListe->setVisible(Lequel == Onglet::Suivis);
  Listes_[static_cast<std::size_t>(Lequel)] = LaListe;
  return LaListe;
}

QPushButton* VueSuiviChargntQt::CréerBouton(const DessinContrôleSuivi& Dessin) {
  auto* const Bouton = new BoutonQt(Texte(Dessin.Texte), SurLaBande(Dessin.Contrôle) ? Bande_ : &*Fenêtre_);
  Bouton->setAutoDefault(true);  // so that Enter presses it too when it has the focus
  void (IGestesSuivi::*Geste)() = nullptr;
  switch (Dessin.Contrôle) {
    case ContrôleSuivi::BtnInterroger:
      Geste = &IGestesSuivi::BtnInterroger_Click;
      break;
    case ContrôleSuivi::BtnForcerCumulsRG80:
      Geste = &IGestesSuivi::BtnForcerCumulsRG80_Click;
      break;
    case ContrôleSuivi::BtnImprimer:
      Geste = &IGestesSuivi::BtnImprimer_Click;
      Bouton->hide();
      break;
    default:
      Geste = &IGestesSuivi::BtnMasquer_Click;
      Bouton->setFocusPolicy(Qt::NoFocus);  // out of sight
  }
  QObject::connect(Bouton, &QPushButton::clicked, Fenêtre_.EnSaisie([&G = Gestes_, Geste] { (G.*Geste)(); }));
  return Bouton;
}

void VueSuiviChargntQt::Brancher() {
  IGestesSuivi& G = Gestes_;
  Fenêtre_->SurÉchap = Fenêtre_.EnSaisie([&G] { G.BtnMasquer_Click(); });
  Fenêtre_->SurFermeture = Fenêtre_.EnSaisie([&G] { G.Form_QueryUnload(true); });
  Fenêtre_->SurActivation = Fenêtre_.EnÉvénement([&G] { G.Form_Activate(); });
  Fenêtre_->SurTaille = Fenêtre_.SurPlace([&G] { G.Form_Resize(); });
  QObject::connect(Onglets_, &QTabBar::currentChanged, Fenêtre_.EnÉvénement([&G] { G.Onglets_Click(); }));
  for (const Onglet Lequel : {Onglet::Suivis, Onglet::Erreurs}) {
    const auto Montrer = Fenêtre_.EnSaisie([&G, Lequel] { G.ListeMessages_DblClick(Lequel); });
    QObject::connect(&Liste(Lequel), &QListWidget::itemDoubleClicked, Montrer);
    static_cast<ListeSuivi&>(Liste(Lequel)).SurEntrée = Montrer;
  }
}

/// What has changed, and no more: a line comes in with each poll.
void VueSuiviChargntQt::Repeindre() { QCoreApplication::sendPostedEvents(&*Fenêtre_, QEvent::UpdateRequest); }

void VueSuiviChargntQt::RemplirGrille(std::vector<std::string> Entêtes, std::vector<std::vector<std::string>> Rangées) {
  Grille_->Remplir(std::move(Entêtes), std::move(Rangées));
}

std::size_t VueSuiviChargntQt::NombreColonnes() const { return static_cast<std::size_t>(Grille_->NombreColonnes()); }

int VueSuiviChargntQt::LargeurColonne(std::size_t Colonne) const {
  return EnTwips(Grille_->LargeurFixée(Rang(Colonne)), Résolution());
}

void VueSuiviChargntQt::FixerLargeurColonne(std::size_t Colonne, int Twips) {
  if (Colonne < NombreColonnes()) Grille_->FixerLargeur(Rang(Colonne), EnPixels(Twips, Résolution()));
}

void VueSuiviChargntQt::InsérerLigne(Onglet LaListe, std::size_t Place, const std::string& Ligne, bool Coché) {
  if (LaListe == Onglet::Suivis && Contexte_.Témoins.Ligne) Contexte_.Témoins.Ligne(Ligne);
  auto Élément = std::make_unique<QListWidgetItem>(Texte(SurUneLigne(Ligne)));
  // The tick is the plug-in's word on the line: shown, but no click changes it.
  Élément->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
  if (LaListe == Onglet::Suivis) Élément->setCheckState(Coché ? Qt::Checked : Qt::Unchecked);
  static_cast<ListeSuivi&>(Liste(LaListe)).Ajouter(Rang(Place), std::move(Élément));
}

void VueSuiviChargntQt::RetirerLigne(Onglet LaListe, std::size_t Ligne) { delete Liste(LaListe).takeItem(Rang(Ligne)); }

void VueSuiviChargntQt::ChoisirLigne(Onglet LaListe, std::size_t Ligne) {
  const QListWidget& Cible = Liste(LaListe);
  if (Rang(Ligne) >= Cible.count()) return;
  Cible.selectionModel()->setCurrentIndex(
      Cible.model()->index(Rang(Ligne), 0),
      LaListe == Onglet::Erreurs ? QItemSelectionModel::ClearAndSelect : QItemSelectionModel::Clear);
  Liste(LaListe).scrollToItem(Cible.item(Rang(Ligne)));
}

std::size_t VueSuiviChargntQt::LigneCourante(Onglet LaListe) const {
  return static_cast<std::size_t>(Liste(LaListe).currentRow());  // -1 becomes the greatest number
}

void VueSuiviChargntQt::OffrirOnglet(Onglet Lequel, bool Offert) {
  Onglets_->setTabVisible(static_cast<int>(Lequel), Offert);
}

void VueSuiviChargntQt::ChoisirOnglet(Onglet Lequel) { Onglets_->setCurrentIndex(static_cast<int>(Lequel)); }

Onglet VueSuiviChargntQt::OngletCourant() const {
  return Onglets_->currentIndex() == static_cast<int>(Onglet::Erreurs) ? Onglet::Erreurs : Onglet::Suivis;
}

void VueSuiviChargntQt::MontrerContrôle(ContrôleSuivi Contrôle, bool Visible) {
  Contrôles_.at(Contrôle)->setVisible(Visible);
}

void VueSuiviChargntQt::ActiverContrôle(ContrôleSuivi Contrôle, bool Actif) {
  Contrôles_.at(Contrôle)->setEnabled(Actif);
}

Rectangle VueSuiviChargntQt::PlaceContrôle(ContrôleSuivi Contrôle) const { return Places_.at(Contrôle); }

void VueSuiviChargntQt::PlacerContrôle(ContrôleSuivi Contrôle, const Rectangle& Place) {
  Places_[Contrôle] = Place;
  const QRect Pixels = EnPixels(Place, Résolution());
  Contrôles_.at(Contrôle)->setGeometry(Pixels);
  if (Contrôle == ContrôleSuivi::Onglets)
    Onglets_->setGeometry(0, 0, EnPixels(LargeurÉtiquettes, Résolution()), Pixels.height());
  LaisserPlaceAuxBoutons(ContrôleSuivi::ListeSuivis, ContrôleSuivi::BtnInterroger);
  LaisserPlaceAuxBoutons(ContrôleSuivi::ListeErreurs, ContrôleSuivi::BtnImprimer);
}

/// The buttons stand on the lower edge of the list's place: the list itself ends above them.
void VueSuiviChargntQt::LaisserPlaceAuxBoutons(ContrôleSuivi LaListe, ContrôleSuivi Bouton) {
  if (!Contrôles_.contains(LaListe) || !Contrôles_.contains(Bouton)) return;
  QRect Place = EnPixels(Places_.at(LaListe), Résolution());
  const int Bas = EnPixels(Places_.at(Bouton), Résolution()).top() - MargeBouton;
  if (Bas > Place.top()) Place.setBottom(std::min(Place.bottom(), Bas));
  Contrôles_.at(LaListe)->setGeometry(Place);
}

Rectangle VueSuiviChargntQt::PlaceFenêtre() const {
  return {EnTwips(Fenêtre_->x(), Résolution()), EnTwips(Fenêtre_->y(), Résolution()),
          EnTwips(Fenêtre_->width(), Résolution()) + CadreNominal::Largeur,
          EnTwips(Fenêtre_->height(), Résolution()) + CadreNominal::Hauteur};
}

void VueSuiviChargntQt::PlacerFenêtre(const Rectangle& Place) {
  if (Fenêtre_->isMaximized() || Fenêtre_->isFullScreen() || Fenêtre_->isMinimized()) return;
  Rectangle Intérieur = Place;
  Intérieur.Largeur = std::max(0, Place.Largeur - CadreNominal::Largeur);
  Intérieur.Hauteur = std::max(0, Place.Hauteur - CadreNominal::Hauteur);
  PlacerSurÉcran(*Fenêtre_, EnPixels(Intérieur, Résolution()));
}

}  // namespace Ombrey
