// The transfer window on a screen.
#include "platform/qt/qt_transfer_view.h"

#include <QCheckBox>
#include <QLabel>
#include <QScreen>
#include <algorithm>
#include <vector>

#include "base/failures.h"
#include "platform/qt/qt_measures.h"

namespace Ombrey {

namespace {
/// Letters of buttons and check boxes, in points.
constexpr double CorpsContrôles = 9.75;
constexpr int MargeBouton = 4;
constexpr int MargeCase = 12;  ///< half of the tick's square and its distance, pixels: the text is fitted centred
constexpr const char* BoutonTransférer = "BtnTransférer";
constexpr const char* BoutonFermer = "BtnFermer";

QFont Gras(QFont Police, bool EstGras) {
  Police.setBold(EstGras);
  return Police;
}
}  // namespace

VueChargntDonnéesQt::VueChargntDonnéesQt(const ContexteQt& Contexte, IGestesChargntDonnées& Gestes,
                                         const std::string& Titre, const Rectangle& Intérieur,
                                         std::span<const DessinContrôle> Dessin)
    : Gestes_(Gestes),
      Fenêtre_(Contexte, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                             Qt::WindowCloseButtonHint) {
  const int Résolution = Fenêtre_->logicalDpiX();
  Fenêtre_->setWindowTitle(Texte(Titre));
  Fenêtre_->setFixedSize(EnPixels(Intérieur, Résolution).size());
  std::vector<std::pair<int, QWidget*>> Ordre;
  for (const DessinContrôle& Ligne : Dessin) {
    QWidget* const Contrôle = Créer(Ligne);
    Contrôle->setGeometry(EnPixels(Ligne.Place, Résolution));
    const bool EstCase = Ligne.Genre == GenreContrôle::CaseÀCocher;
    // Measured in bold where the caption can become bold.
    Contrôle->setFont(Gras(Contrôle->font(), EstCase));
    FaireTenir(*Contrôle, Texte(Ligne.Texte),
               EstCase ? MargeCase : MargeBouton * (Ligne.Genre == GenreContrôle::Bouton), 0);
    Contrôle->setFont(Gras(Contrôle->font(), false));
    Ordre.emplace_back(Ligne.OrdreTabulation, Contrôle);
  }
  std::ranges::sort(Ordre);
  for (std::size_t Rang = 1; Rang < Ordre.size(); ++Rang)
    QWidget::setTabOrder(Ordre[Rang - 1].second, Ordre[Rang].second);
  if (!Ordre.empty()) Ordre.front().second->setFocus();
  Fenêtre_->SurÉchap = Fenêtre_->SurFermeture = Fenêtre_.EnSaisie([&Gestes] { Gestes.BtnFermer_Click(); });
}

QWidget* VueChargntDonnéesQt::Créer(const DessinContrôle& Dessin) {
  QWidget* const Parent = &*Fenêtre_;
  if (Dessin.Genre == GenreContrôle::Libellé) {
    auto* const Libellé = new QLabel(Texte(Dessin.Texte), Parent);
    Libellé->setTextFormat(Qt::PlainText);
    return Libellé;
  }
  QAbstractButton* Bouton = nullptr;
  if (Dessin.Genre == GenreContrôle::CaseÀCocher) {
    Bouton = new QCheckBox(Texte(Dessin.Texte), Parent);
    Bouton->setChecked(true);
    Cases_[Dessin.Nom] = Bouton;
  } else {
    auto* const Poussoir = new BoutonQt(Texte(Dessin.Texte), Parent);
    Poussoir->setAutoDefault(true);
    Bouton = Poussoir;
    IGestesChargntDonnées& G = Gestes_;
    if (Dessin.Nom == BoutonTransférer)
      QObject::connect(Bouton, &QAbstractButton::clicked, Fenêtre_.EnSaisie([&G] { G.BtnTransférer_Click(); }));
    if (Dessin.Nom == BoutonFermer)
      QObject::connect(Bouton, &QAbstractButton::clicked, Fenêtre_.EnSaisie([&G] { G.BtnFermer_Click(); }));
  }
  QFont Police = Bouton->font();
  Police.setPointSizeF(CorpsContrôles);
  Bouton->setFont(Police);
  return Bouton;
}

void VueChargntDonnéesQt::MontrerModale() {
  QRect Place = Fenêtre_->rect();
  Place.moveCenter(Fenêtre_->screen()->availableGeometry().center());
  Fenêtre_->move(Place.topLeft());
  Fenêtre_.MontrerModale();
}

void VueChargntDonnéesQt::FixerTitre(const std::string& Titre) { Fenêtre_->setWindowTitle(Texte(Titre)); }

void VueChargntDonnéesQt::Activer(bool Active) {
  if (Fenêtre_->isEnabled()) Foyer_ = Fenêtre_->focusWidget();  // a window that is disabled drops it
  Fenêtre_->setEnabled(Active);
  if (Active && Foyer_ != nullptr) Foyer_->setFocus();
}

bool VueChargntDonnéesQt::EstCochée(const std::string& Case) const { return LaCase(Case).isChecked(); }

void VueChargntDonnéesQt::Cocher(const std::string& Case, bool Cochée) { LaCase(Case).setChecked(Cochée); }

void VueChargntDonnéesQt::MettreEnGras(const std::string& Case, bool EnGras) {
  LaCase(Case).setFont(Gras(LaCase(Case).font(), EnGras));
}

QAbstractButton& VueChargntDonnéesQt::LaCase(const std::string& Nom) const {
  const auto Trouvée = Cases_.find(Nom);
  if (Trouvée == Cases_.end()) throw ErreurExécution(Description::ObjetNonDéfini);
  return *Trouvée->second;
}

}  // namespace Ombrey
