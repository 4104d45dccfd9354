// A dialog that has something written or printed beside the station.
#include "host/windows/qt_work_dialog.h"

#include <QPointer>
#include <QVBoxLayout>
#include <filesystem>
#include <utility>

#include "base/failures.h"
#include "base/files.h"
#include "base/text_helpers.h"
#include "base/visible_text.h"
#include "host/long_work.h"
#include "host/new_file.h"
#include "platform/qt/qt_measures.h"
#include "platform/qt/qt_message_box.h"

namespace Ombrey {

DialogueTravail::DialogueTravail(QWidget* Fenêtre, const Atelier& LeSien, const QString& Titre)
    : QDialog(Fenêtre),
      LeSien_(LeSien),
      Haut_(new QWidget(this)),
      Saisie_(new QFormLayout(Haut_)),
      État_(new QLabel(this)),
      Boutons_(new QDialogButtonBox(this)),
      Fermer_(Boutons_->addButton(QString(), QDialogButtonBox::RejectRole)) {
  setAttribute(Qt::WA_DeleteOnClose);
  setWindowTitle(Titre);
  setMinimumWidth(LargeurDuTitre(*this));
  Saisie_->setContentsMargins(0, 0, 0, 0);
  État_->setTextFormat(Qt::PlainText);
  État_->setAccessibleName(QStringLiteral("Avancement"));
  Fermer_->setAutoDefault(false);
  connect(Fermer_, &QPushButton::clicked, this, &QDialog::reject);
  auto* const Plan = new QVBoxLayout(this);
  for (QWidget* Un : {Haut_, static_cast<QWidget*>(État_), static_cast<QWidget*>(Boutons_)}) Plan->addWidget(Un);
  Occuper(false);
}

void DialogueTravail::Poser(std::function<void()> Faire) {
  LeSien_.Contexte.Boucle.Poser([this, Tenu = QPointer(this), Faire = std::move(Faire)] {
    ErreurEnAttente Échec;
    if (Tenu && !Garder(Échec, Faire))
      MontrerBoîte(LeSien_.Contexte, this, SigneBoîte::Avertissement, Échec.Texte(), windowTitle().toStdString());
  });
}

void DialogueTravail::Offrir(const char* Texte, std::function<void()> Faire) {
  auto* const Un = Boutons_->addButton(QString::fromUtf8(Texte), QDialogButtonBox::ActionRole);
  Un->setAutoDefault(false);
  connect(Un, &QPushButton::clicked, this, [this, Faire = std::move(Faire)] { Poser(Faire); });
}

void DialogueTravail::Écrire(const char* Nom, const char* Suffixe, std::vector<std::string> Mots,
                             std::ptrdiff_t Place) {
  ChoisirFichier(this, {windowTitle(), QString::fromUtf8(Nom), QString::fromUtf8(Suffixe)},
                 [this, Place, Mots = std::move(Mots)](const std::filesystem::path& Fichier) {
                   Poser([this, Place, Mots, Fichier]() mutable {
                     Tarvel::ExigerNouveau(Fichier);
                     Mots.insert(Mots.begin() + Place, TexteChemin(Fichier));
                     Mener(Mots);
                   });
                 });
}

void DialogueTravail::Mener(const std::vector<std::string>& Mots) {
  if (EnCours_) return;
  Dit_.clear();
  État_->setText(QStringLiteral("En cours ; la station continue."));
  Occuper(true);
  const QPointer Tenu(this);
  EnCours_ = LeSien_.Travaux.Confier(
      Mots, [Tenu](const std::string& Ligne) { Tenu ? Tenu->Entendre(Ligne) : void(); },
      [Tenu](bool EstRéussi) { Tenu ? Tenu->Achever(EstRéussi) : void(); });
}

void DialogueTravail::Entendre(const std::string& Ligne) {
  const bool Avance = Ligne.find(Tarvel::EncoreTant) != std::string::npos;
  if (Avance) État_->setText(Texte(SurUneLigne(Ligne)));
  Dit_ = Avance ? "" : Dit_ + (Dit_.empty() ? "" : "\n") + Ligne;
}

void DialogueTravail::Achever(bool EstRéussi) {
  EnCours_.reset();
  Occuper(false);
  MontrerBoîte(LeSien_.Contexte, this, EstRéussi ? SigneBoîte::Information : SigneBoîte::Avertissement,
               Dit_.empty() ? "Arrêté, rien n'est gardé." : Dit_, windowTitle().toStdString());
}

/// What was typed stays as it is meanwhile.
void DialogueTravail::Occuper(bool Oui) {
  Oui ? setCursor(Qt::BusyCursor) : unsetCursor();
  for (QAbstractButton* Un : Boutons_->buttons()) Un->setEnabled(Un == Fermer_ || !Oui);
  Haut_->setEnabled(!Oui);
  État_->setVisible(Oui);
  Fermer_->setText(Texte(Oui ? AvecTouche("Abandonner", 'b') : "&Fermer"));
  if (Oui) Fermer_->setFocus();
}

/// The Tab key goes from what is asked for to the buttons, from top to bottom, whichever came into being first.
void DialogueTravail::showEvent(QShowEvent* Événement) {
  QList<QWidget*> Ordre;
  for (int Rang = 0; Rang < Saisie_->rowCount(); ++Rang)
    Ordre << Saisie_->itemAt(Rang, QFormLayout::FieldRole)->widget();
  for (QAbstractButton* Un : Boutons_->buttons())
    if (Un != Fermer_) Ordre << Un;
  Ordre << Fermer_;
  Ordre.removeIf([](const QWidget* Un) { return Un->focusPolicy() == Qt::NoFocus; });
  for (int Rang = 1; Rang < Ordre.size(); ++Rang) setTabOrder(Ordre[Rang - 1], Ordre[Rang]);
  Boutons_->setFocusProxy(nullptr);  // the first button, to which the key would come back from the last but one
  Ordre.first()->setFocus();
  QDialog::showEvent(Événement);
}

void DialogueTravail::reject() {
  if (!EnCours_) return QDialog::reject();
  État_->setText(QStringLiteral("On l'arrête…"));
  LeSien_.Travaux.Abandonner(*EnCours_);
}

}  // namespace Ombrey
