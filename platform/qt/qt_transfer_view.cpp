// The transfer window on a screen.
#include "platform/qt/qt_transfer_view.h"

#include <QCheckBox>
#include <QScreen>
#include <QTime>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <utility>
#include <vector>

#include "base/failures.h"
#include "platform/qt/qt_measures.h"

namespace Ombrey {

namespace {
/// Letters of buttons and check boxes, in points.
constexpr double CorpsContrôles = 9.75;
constexpr int MargeBouton = 4;
constexpr int MargeCase = 12;  ///< half of the tick's square and its distance, pixels: the text is fitted centred
/// What the buttons' and boxes' letters are called; the machine gives its nearest where it has none of that name.
constexpr const char* Caractères = "MS Sans Serif";
/// As many titles in a second as can be read.
constexpr std::chrono::milliseconds EntreTitres(100);
constexpr const char* BoutonTransférer = "BtnTransférer";
constexpr const char* BoutonFermer = "BtnFermer";

/// Between a data set's name and the time at which it went.
const QString EnvoyéÀ = QStringLiteral(" – ");

QFont Gras(QFont Police, bool EstGras) {
  Police.setBold(EstGras);
  return Police;
}
}  // namespace

VueChargntDonnéesQt::VueChargntDonnéesQt(const ContexteQt& Contexte, IGestesChargntDonnées& Gestes,
                                         const std::string& Titre, const Rectangle& Intérieur,
                                         std::span<const DessinContrôle> Dessin)
    : Gestes_(Gestes),
      Transfert_(Contexte.Témoins.Transfert),
      Fenêtre_(Contexte, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                             Qt::WindowCloseButtonHint),
      Progression_(std::make_shared<ProgressionQt>(&*Fenêtre_)) {
  const int Résolution = Fenêtre_->logicalDpiX();
  Fenêtre_->setWindowTitle(Texte(Titre));
  Fenêtre_->setToolTip(Texte(Titre).toHtmlEscaped());  // whole, wherever the pointer rests
  Fenêtre_->setFixedSize(EnPixels(Intérieur, Résolution).size());
  std::vector<std::pair<int, QWidget*>> Ordre;
  for (const DessinContrôle& Dessiné : Dessin) {
    QWidget* const Contrôle = Créer(Dessiné);
    Contrôle->setGeometry(EnPixels(Dessiné.Place, Résolution));
    const bool EstCase = Dessiné.Genre == GenreContrôle::CaseÀCocher;
    // Measured in bold where the caption can become bold.
    Contrôle->setFont(Gras(Contrôle->font(), EstCase));
    FaireTenir(*Contrôle, Texte(Dessiné.Texte),
               EstCase ? MargeCase : MargeBouton * (Dessiné.Genre == GenreContrôle::Bouton), 0);
    Contrôle->setFont(Gras(Contrôle->font(), false));
    Ordre.emplace_back(Dessiné.OrdreTabulation, Contrôle);
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
    Consigne_ = Libellé;
    TexteConsigne_ = Libellé->text();
    return Libellé;
  }
  QAbstractButton* Bouton = nullptr;
  if (Dessin.Genre == GenreContrôle::CaseÀCocher) {
    Bouton = new QCheckBox(Texte(Dessin.Texte), Parent);
    Bouton->setChecked(true);
    Cases_[Dessin.Nom] = Bouton;
    OrdreCases_.push_back(Dessin.Nom);
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
  Police.setFamilies(QStringList{QString::fromUtf8(Caractères)} + Police.families());
  Police.setPointSizeF(CorpsContrôles);
  Bouton->setFont(Police);
  return Bouton;
}

void VueChargntDonnéesQt::MontrerModale() {
  QRect Place = Fenêtre_->rect();
  Place.moveCenter(Fenêtre_->screen()->availableGeometry().center());
  Fenêtre_->move(Place.topLeft());
  const auto Dire = Transfert_;
  if (Dire) Dire(true);
  Fenêtre_.MontrerModale();
  if (Dire) Dire(false);
}

void VueChargntDonnéesQt::FixerTitre(const std::string& Titre) {
  Titre_ = Texte(Titre);
  if (!EnCours_.empty()) Progression_->Dire(NomDe(EnCours_), Titre_);
  const bool AttendLaPompe = !TitrePosé_;
  TitrePosé_ = false;
  if (Fenêtre_->isEnabled() || !DepuisTitre_.isValid() ||
      std::chrono::milliseconds(DepuisTitre_.elapsed()) >= EntreTitres)
    PoserTitre();
  else if (!AttendLaPompe)
    QTimer::singleShot(0, &*Fenêtre_, [this] { PoserTitre(); });
}

/// A title bar cuts off what a frame as narrow as this can't hold: the progress also stands in the window.
void VueChargntDonnéesQt::PoserTitre() {
  if (std::exchange(TitrePosé_, true)) return;
  DepuisTitre_.start();
  Fenêtre_->setWindowTitle(Titre_);
  Fenêtre_->setToolTip(Titre_.toHtmlEscaped());
  if (Consigne_ != nullptr && !Fenêtre_->isEnabled()) Consigne_->setText(Titre_);
}

void VueChargntDonnéesQt::Repeindre() {
  if (TitrePosé_) Fenêtre_->repaint();
}

void VueChargntDonnéesQt::Activer(bool Active) {
  if (Fenêtre_->isEnabled()) Foyer_ = Fenêtre_->focusWidget();  // a window that is disabled drops it
  Fenêtre_->setEnabled(Active);
  QStringList ÀEnvoyer;
  for (const std::string& Nom : OrdreCases_)
    if (!Active && EstCochée(Nom)) ÀEnvoyer << NomDe(Nom);
  Progression_->Commencer(ÀEnvoyer);
  if (Active && Consigne_ != nullptr) Consigne_->setText(TexteConsigne_);
  if (Active && Foyer_ != nullptr) Foyer_->setFocus();
}

bool VueChargntDonnéesQt::EstCochée(const std::string& Case) const { return LaCase(Case).isChecked(); }

/// What was cleared in a transfer has gone; when it did stays to be read.
void VueChargntDonnéesQt::Cocher(const std::string& Case, bool Cochée) {
  QAbstractButton& LaSienne = LaCase(Case);
  LaSienne.setChecked(Cochée);
  if (!Cochée && Case == EnCours_)
    Progression_->Dire(NomDe(Case),
                       QStringLiteral("envoyé à ") + QTime::currentTime().toString(QStringLiteral("HH:mm")));
  if (!Cochée && !Fenêtre_->isEnabled())
    LaSienne.setText(LaSienne.text().section(EnvoyéÀ, 0, 0) + EnvoyéÀ +
                     QTime::currentTime().toString(QStringLiteral("HH:mm")));
}

void VueChargntDonnéesQt::MettreEnGras(const std::string& Case, bool EnGras) {
  LaCase(Case).setFont(Gras(LaCase(Case).font(), EnGras));
  EnCours_ = EnGras ? Case : "";
  Progression_->Entamer(EnGras ? NomDe(Case) : QString());
}

/// The data set's name as the box shows it, without the time at which it went.
QString VueChargntDonnéesQt::NomDe(const std::string& Case) const { return LaCase(Case).text().section(EnvoyéÀ, 0, 0); }

QAbstractButton& VueChargntDonnéesQt::LaCase(const std::string& Nom) const {
  const auto Trouvée = Cases_.find(Nom);
  if (Trouvée == Cases_.end()) throw ErreurExécution(Description::ObjetNonDéfini);
  return *Trouvée->second;
}

}  // namespace Ombrey
