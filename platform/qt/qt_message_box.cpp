// Message boxes on a screen.
#include "platform/qt/qt_message_box.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QElapsedTimer>
#include <QGridLayout>
#include <QLabel>
#include <QScreen>
#include <QSpacerItem>
#include <QStyle>
#include <QTextDocument>
#include <QTextEdit>
#include <QTimer>
#include <QWindow>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <optional>

#include "platform/loop/loop.h"
#include "platform/qt/qt_dialog.h"
#include "platform/qt/qt_measures.h"

namespace Ombrey {

namespace {
/// The text's room at most, in parts of the screen.
constexpr int PartLargeur = 3;
constexpr int PartHauteur = 2;
/// What has just been closed gives its keys back to the window below within so long.
constexpr std::chrono::seconds RetourDesTouches(2);
/// X11's ClientMessage, and what its number may bear besides.
constexpr std::uint8_t MessageX11 = 33;
constexpr std::uint8_t SansOrigine = 0x7F;

QTextOption Habillage() {
  QTextOption Option;
  Option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  return Option;
}

/// The room that the text takes on a screen of this size.
QSize Mesurer(const QString& Message, const QFont& Police, QSize Écran) {
  QTextDocument Document;
  Document.setDefaultFont(Police);
  Document.setDefaultTextOption(Habillage());
  Document.setPlainText(Message);
  const int LargeurMax = Écran.width() / PartLargeur;
  Document.setTextWidth(LargeurMax);
  Document.setTextWidth(Document.idealWidth() + 1);
  return {static_cast<int>(std::ceil(Document.size().width())), static_cast<int>(std::ceil(Document.size().height()))};
}

/// A text that can be read and copied, as large as it needs to be, with a scroll bar where that is too much.
QTextEdit* FaireTexte(QWidget* Parent, const QString& Message) {
  auto* const Zone = new QTextEdit(Parent);
  Zone->setReadOnly(true);
  Zone->setAcceptRichText(false);
  Zone->setContextMenuPolicy(Qt::NoContextMenu);
  Zone->setFrameShape(QFrame::NoFrame);
  Zone->setTabChangesFocus(true);
  Zone->setFocusPolicy(Qt::ClickFocus);
  Zone->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  Zone->setWordWrapMode(Habillage().wrapMode());
  Zone->setPlainText(Message);
  Zone->viewport()->setAutoFillBackground(false);
  const QSize Écran = Parent->screen()->availableSize();
  const QSize Taille = Mesurer(Message, Zone->font(), Écran);
  const int HauteurMax = Écran.height() / PartHauteur;
  const bool Entier = Taille.height() <= HauteurMax;
  const int Ascenseur = Entier ? 0 : Zone->style()->pixelMetric(QStyle::PM_ScrollBarExtent);
  if (Entier) Zone->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  Zone->setFixedSize(Taille.width() + Ascenseur, std::min(Taille.height(), HauteurMax));
  return Zone;
}

/// Not a QMessageBox: that one can't be scrolled, has a long message run out of the screen, and takes a key that was
/// meant for the window below.
class BoîteQt : public QDialog {
 public:
  BoîteQt(QWidget* Parent, const ContexteQt& Contexte, SigneBoîte Signe, const std::string& Message,
          const std::string& Titre, BoutonsBoîte Boutons)
      : QDialog(Parent), Répit_(Contexte.Répit) {
    const bool Seul = Boutons == BoutonsBoîte::Ok;
    const int Côté = style()->pixelMetric(QStyle::PM_MessageBoxIconSize);
    auto* const Icône = new QLabel(this);
    const auto Image =
        Signe == SigneBoîte::Information ? QStyle::SP_MessageBoxInformation : QStyle::SP_MessageBoxWarning;
    Icône->setPixmap(style()->standardIcon(Image).pixmap(Côté, Côté));
    auto* const Rangée = new QDialogButtonBox(this);
    Ajouter(*Rangée, Seul ? QStringLiteral("OK") : QStringLiteral("&Recommencer"), QDialogButtonBox::AcceptRole,
            Seul ? RéponseBoîte::Ok : RéponseBoîte::Recommencer)
        ->setFocus();
    if (!Seul) Ajouter(*Rangée, QStringLiteral("&Annuler"), QDialogButtonBox::RejectRole, RéponseBoîte::Annuler);
    auto* const Plan = new QGridLayout(this);
    Plan->addWidget(Icône, 0, 0, Qt::AlignTop);
    Plan->addWidget(FaireTexte(this, Texte(Message)), 0, 1);
    Plan->addWidget(Rangée, 1, 0, 1, 2);
    Plan->setSizeConstraint(QLayout::SetFixedSize);
    setWindowTitle(Texte(Titre));
    Plan->addItem(new QSpacerItem(LargeurDuTitre(*this), 0), 2, 0, 1, 2);
    setAttribute(Qt::WA_QuitOnClose, false);
  }
  std::optional<RéponseBoîte> Réponse;

  /// Esc and the frame's closing.
  void reject() override {
    if (!EstTropTôt()) QDialog::reject();
  }

 protected:
  void showEvent(QShowEvent* Événement) override {
    QDialog::showEvent(Événement);
    if (Depuis_.isValid()) return;
    Depuis_.start();
    if (isModal() && testAttribute(Qt::WA_ShowWithoutActivating)) LaisserLesTouches();
  }
  /// Meanwhile no message of the window manager's comes through: Qt would take one for the keys.
  bool nativeEvent(const QByteArray& Genre, void* Message, qintptr* /*Résultat*/) override {
    return Réserve_.isActive() && Genre == "xcb_generic_event_t" &&
           (*static_cast<const std::uint8_t*>(Message) & SansOrigine) == MessageX11;
  }

 private:
  /// On X11 Qt asks the window manager to give a modal window the keys, whatever its attributes say: until it stands on
  /// the screen and its first moment is over, the box can't have them. Then it calls for attention.
  void LaisserLesTouches() {
    windowHandle()->setFlag(Qt::WindowDoesNotAcceptFocus);
    connect(&Réserve_, &QTimer::timeout, this, [this] {
      if (!windowHandle()->isExposed()) return;
      Réserve_.stop();
      windowHandle()->setFlag(Qt::WindowDoesNotAcceptFocus, false);
      Appeler(*this);
    });
    Réserve_.start(Répit_);
  }
  [[nodiscard]] bool EstTropTôt() const {
    return Depuis_.isValid() && std::chrono::milliseconds(Depuis_.elapsed()) < Répit_;
  }
  QPushButton* Ajouter(QDialogButtonBox& Rangée, const QString& Libellé, QDialogButtonBox::ButtonRole Rôle,
                       RéponseBoîte Valeur) {
    QPushButton* const Bouton = Rangée.addButton(Libellé, Rôle);
    connect(Bouton, &QPushButton::clicked, this, [this, Valeur] {
      if (EstTropTôt()) return;
      Réponse = Valeur;
      accept();
    });
    return Bouton;
  }

  std::chrono::milliseconds Répit_;
  QElapsedTimer Depuis_;
  QTimer Réserve_;
};
}  // namespace

RéponseBoîte DemanderParBoîte(const ContexteQt& Contexte, const std::string& Message, const std::string& Titre,
                              BoutonsBoîte Boutons) {
  const RéponseBoîte Défaut = RéponseSansOpérateur(Boutons);
  if (Contexte.EnFin) return Défaut;
  const DialogueTenu<BoîteQt> Boîte(
      new BoîteQt(FenêtreDessous(), Contexte, SigneBoîte::Avertissement, Message, Titre, Boutons));
  Boîte->setWindowModality(Qt::ApplicationModal);
  bool Retirée = false;
  IBoucle::Jeton Échéance;
  if (Boutons == BoutonsBoîte::Ok && Contexte.Retrait.count() > 0) {
    Échéance = Contexte.Boucle.Après(Contexte.Retrait, [&] {
      Retirée = Boîte.EstLà() && Boîte->isVisible();
      if (Retirée) Boîte->hide();
    });
  }
  // Beside another program it calls once it stands there.
  if (QApplication::activeWindow() != nullptr) QApplication::beep();
  Boîte.Attendre(Contexte);
  if (Retirée && Contexte.Témoins.Retirée) Contexte.Témoins.Retirée(Titre, Message);
  return Boîte.EstLà() ? Boîte->Réponse.value_or(Défaut) : Défaut;
}

/// Where no window of ours has the keys, another program has, or a dialog of ours was closed and they are still on
/// their way back: only then does one of ours soon get them.
void MontrerBoîte(const ContexteQt& Contexte, QWidget* Parent, SigneBoîte Signe, const std::string& Message,
                  const std::string& Titre) {
  if (Contexte.EnFin) return;
  QWidget* const Modale = QApplication::activeModalWidget();
  auto* const Boîte =
      new BoîteQt(Modale != nullptr ? Modale : Parent, Contexte, Signe, Message, Titre, BoutonsBoîte::Ok);
  Boîte->setAttribute(Qt::WA_DeleteOnClose);
  const bool ÀNous = QApplication::activeWindow() != nullptr;
  Boîte->setAttribute(Qt::WA_ShowWithoutActivating, !ÀNous);
  Boîte->show();
  if (ÀNous) return;
  auto* const Guet = new QTimer(Boîte);
  QObject::connect(qApp, &QGuiApplication::focusWindowChanged, Guet, [Boîte, Guet](const QWindow* Nôtre) {
    if (Nôtre == nullptr) return;
    Boîte->activateWindow();
    Guet->deleteLater();
  });
  QObject::connect(Guet, &QTimer::timeout, Guet, &QObject::deleteLater);
  Guet->start(RetourDesTouches);
}

}  // namespace Ombrey
