// The day on paper and in files, from the main window's menu.
#include "host/windows/qt_papers.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QPointer>
#include <QPushButton>
#include <filesystem>
#include <utility>

#include "base/failures.h"
#include "base/files.h"
#include "host/day_slip.h"
#include "host/windows/qt_paper.h"
#include "host/windows/qt_save_dialog.h"
#include "platform/qt/qt_measures.h"
#include "platform/qt/qt_message_box.h"

namespace Ombrey {

namespace {
/// Days since 1899-12-30.
const QDate JourZéro(1899, 12, 30);

int NuméroDe(const QDateEdit& Jour) { return static_cast<int>(JourZéro.daysTo(Jour.date())); }

QDateEdit* ChoixJour(QWidget* Parent) {
  auto* const Jour = new QDateEdit(QDate::currentDate(), Parent);
  Jour->setCalendarPopup(true);
  Jour->setDisplayFormat(QStringLiteral("dd/MM/yyyy"));
  return Jour;
}

QPushButton* Bouton(QDialogButtonBox& Boutons, const char* Texte, QDialogButtonBox::ButtonRole Rôle) {
  auto* const Un = Boutons.addButton(QString::fromUtf8(Texte), Rôle);
  Un->setAutoDefault(false);
  return Un;
}

/// Runs in the pump, for as long as Dialogue lives; what fails is told in a box.
template <class Dialogue>
void Poser(const ContexteQt& Contexte, Dialogue* Lequel, std::function<void(Dialogue&)> Faire) {
  Contexte.Boucle.Poser([&Contexte, Tenu = QPointer<Dialogue>(Lequel), Faire = std::move(Faire)] {
    ErreurEnAttente Échec;
    if (Tenu && !Ignorer(Échec, [&] { Faire(*Tenu); }))
      MontrerBoîte(Contexte, Tenu, SigneBoîte::Avertissement, Échec.Texte(), "Tarvel");
  });
}

class DialogueExport : public QDialog {
 public:
  DialogueExport(QWidget* Fenêtre, const ContexteQt& Contexte, DonneBase Base) : QDialog(Fenêtre) {
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(QStringLiteral("Exporter les chargements"));
    setMinimumWidth(LargeurDuTitre(*this));
    auto* const Du = ChoixJour(this);
    auto* const Au = ChoixJour(this);
    auto* const Boutons = new QDialogButtonBox(this);
    auto* const Écrire = Bouton(*Boutons, "&Enregistrer en CSV…", QDialogButtonBox::ActionRole);
    connect(Bouton(*Boutons, "&Fermer", QDialogButtonBox::RejectRole), &QPushButton::clicked, this, &QDialog::close);
    auto* const Plan = new QFormLayout(this);
    Plan->addRow(QStringLiteral("&Du :"), Du);
    Plan->addRow(QStringLiteral("&Au :"), Au);
    Plan->addRow(Boutons);
    connect(Du, &QDateEdit::dateChanged, Au, [Au](QDate Jour) { Au->setMinimumDate(Jour); });
    connect(Écrire, &QPushButton::clicked, this, [this, &Contexte, Base = std::move(Base), Du, Au] {
      const Tarvel::Période Jours{NuméroDe(*Du), NuméroDe(*Au)};
      EnregistrerSous(this, Contexte, {windowTitle(), QStringLiteral("chargements"), QStringLiteral("csv")},
                      [Base, Jours](const std::filesystem::path& Fichier) {
                        return Tarvel::ExporterCsv(*Exiger(Base()), Jours, Fichier);
                      });
    });
  }
};
}  // namespace

void OffrirPapiers(QMenu& Menu, QWidget* Fenêtre, const ContexteQt& Contexte, const DonneBase& Base) {
  const auto Papier = [&](const char* Entrée, bool UnSeul) {
    QObject::connect(Menu.addAction(QString::fromUtf8(Entrée)), &QAction::triggered, Fenêtre,
                     [=, &Contexte] { (new DialoguePapier(Fenêtre, Contexte, Base, UnSeul))->show(); });
  };
  Papier("&Bordereau de la journée…", false);
  Papier("&Ticket d'un chargement…", true);
  QObject::connect(Menu.addAction(QStringLiteral("&Exporter les chargements (CSV)…")), &QAction::triggered, Fenêtre,
                   [=, &Contexte] { (new DialogueExport(Fenêtre, Contexte, Base))->show(); });
}

DialoguePapier::DialoguePapier(QWidget* Fenêtre, const ContexteQt& Contexte, DonneBase Base, bool UnSeul)
    : QDialog(Fenêtre),
      Contexte_(Contexte),
      Base_(std::move(Base)),
      UnSeul_(UnSeul),
      Jour_(ChoixJour(this)),
      Quoi_(new QComboBox(this)) {
  setAttribute(Qt::WA_DeleteOnClose);
  setWindowTitle(UnSeul ? QStringLiteral("Ticket d'un chargement") : QStringLiteral("Bordereau de la journée"));
  Quoi_->setMinimumContentsLength(40);
  auto* const Boutons = new QDialogButtonBox(this);
  connect(Bouton(*Boutons, "&Imprimer", QDialogButtonBox::ActionRole), &QPushButton::clicked, this,
          [this] { Poser<DialoguePapier>(Contexte_, this, [](DialoguePapier& Moi) { Moi.Imprimer(); }); });
  connect(Bouton(*Boutons, "Enregistrer en &PDF…", QDialogButtonBox::ActionRole), &QPushButton::clicked, this,
          [this] { Enregistrer(); });
  connect(Bouton(*Boutons, "&Fermer", QDialogButtonBox::RejectRole), &QPushButton::clicked, this, &QDialog::close);
  auto* const Plan = new QFormLayout(this);
  Plan->addRow(QStringLiteral("&Jour :"), Jour_);
  Plan->addRow(QStringLiteral("&Document :"), Quoi_);
  Plan->addRow(Boutons);
  const auto Relire = [this] { Poser<DialoguePapier>(Contexte_, this, [](DialoguePapier& Moi) { Moi.Lire(); }); };
  connect(Jour_, &QDateEdit::dateChanged, this, Relire);
  Relire();
}

void DialoguePapier::Lire() {
  const auto Base = Base_();
  if (!Base) return;
  const int Jour = NuméroDe(*Jour_);
  Coopérative_ = Tarvel::NomCoopérative(*Base);
  Chargements_ = Tarvel::LireChargements(*Base, {Jour, Jour});
  Quoi_->clear();
  Quoi_->addItem(QStringLiteral("Bordereau : %1 chargements").arg(Chargements_.size()));
  for (const Tarvel::ChargementRelaté& Un : Chargements_)
    Quoi_->addItem(Texte("Ticket : n° " + Un.Numéro + ", " + Tarvel::TexteMoment(Un.Arrivée).substr(11) + ", " +
                         Un.Propriétaire.Nom + ", " + Un.Masse + " kg"));
  Quoi_->setCurrentIndex(UnSeul_ ? Quoi_->count() - 1 : 0);
}

std::string DialoguePapier::Html() const {
  return EstTicket()
             ? Tarvel::TexteTicket(Chargements_.at(static_cast<std::size_t>(Quoi_->currentIndex()) - 1), Coopérative_)
             : Tarvel::TexteBordereau(Chargements_, Coopérative_, NuméroDe(*Jour_));
}

void DialoguePapier::Enregistrer() {
  const QString Nom = EstTicket() ? QStringLiteral("ticket") : QStringLiteral("bordereau");
  const auto Papier = EstTicket() ? QPageSize::A6 : QPageSize::A4;
  EnregistrerSous(this, Contexte_, {windowTitle(), Nom, QStringLiteral("pdf")},
                  [Texte = Html(), Papier](const std::filesystem::path& Fichier) {
                    ÉcrirePdf(Texte, Papier, Fichier);
                    return "Le document est dans " + TexteChemin(Fichier) + ".";
                  });
}

void DialoguePapier::Imprimer() {
  const std::string Imprimante = ImprimerSurPapier(Html());
  MontrerBoîte(Contexte_, this, SigneBoîte::Information, "Envoyé à l'imprimante " + Imprimante + ".",
               windowTitle().toStdString());
}

}  // namespace Ombrey
