// The day on paper and in files, and the base's copy, from the main window's menu.
#include "host/windows/qt_papers.h"

#include <QApplication>
#include <QComboBox>
#include <QDateEdit>
#include <QEvent>
#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/failures.h"
#include "base/text_helpers.h"
#include "host/load_report.h"
#include "platform/qt/qt_measures.h"

namespace Ombrey {

namespace {
/// The base has been read: loads may have come in.
constexpr QEvent::Type Nouveauté = QEvent::User;

/// Days since 1899-12-30.
const QDate JourZéro(1899, 12, 30);

QDateEdit* ChoixJour(QWidget* Parent) {
  auto* const Jour = new QDateEdit(QDate::currentDate(), Parent);
  Jour->setCalendarPopup(true);
  Jour->setDisplayFormat(QStringLiteral("dd/MM/yyyy"));
  return Jour;
}

/// As the command line wants it.
std::string JourDe(const QDateEdit& Choix) { return Choix.date().toString(QStringLiteral("dd/MM/yyyy")).toStdString(); }

/// Chooses a day, and all of it or one load.
class DialoguePapier : public DialogueTravail {
 public:
  /// UnSeul: one load is what is wanted, the latest to begin with.
  DialoguePapier(QWidget* Fenêtre, const Atelier& LeSien, DonneBase Base, bool UnSeul)
      : DialogueTravail(Fenêtre, LeSien,
                        UnSeul ? QStringLiteral("Ticket d'un chargement") : QStringLiteral("Bordereau de la journée")),
        Base_(std::move(Base)),
        UnSeul_(UnSeul),
        Jour_(ChoixJour(this)),
        Quoi_(new QComboBox(this)) {
    constexpr int LettresVisibles = 40;
    Quoi_->setMinimumContentsLength(LettresVisibles);
    Quoi_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    Saisie().addRow(QStringLiteral("&Jour :"), Jour_);
    Saisie().addRow(QStringLiteral("&Document :"), Quoi_);
    Offrir("&Imprimer", [this] { Mener(Demande(EstTicket() ? "--imprimer-ticket" : "--imprimer-bordereau")); });
    Offrir(AvecTouche("Enregistrer en PDF…", 'P').c_str(), [this] {
      const char* const Nom = EstTicket() ? "ticket" : "bordereau";
      Écrire(Nom, "pdf", Demande(EstTicket() ? "--ticket" : "--bordereau"), EstTicket() ? 2 : 1);
    });
    const auto Commencer = [this] { Poser([this] { Lire(false); }); };
    connect(Jour_, &QDateEdit::dateChanged, this, Commencer);
    Commencer();
  }

 protected:
  void customEvent(QEvent* Événement) override {
    if (Événement->type() != Nouveauté) return;
    Ignorer([this] { Lire(true); });  // the main window says that the base can't be read
  }

 private:
  /// Choisi: what was chosen stays so; else a day begins with its usual choice.
  void Lire(bool Choisi) {
    const auto Base = Base_();
    if (!Base) return;
    const auto Ancien = EstTicket() ? std::optional(LeChargement()) : std::nullopt;
    const bool AvaitLeChoix = !Chargements_.empty();
    const int Jour = static_cast<int>(JourZéro.daysTo(Jour_->date()));
    Chargements_ = Tarvel::LireChargements(*Base, {Jour, Jour});
    QStringList Textes(Texte("Bordereau : " + Tarvel::DireChargements(Chargements_.size())));
    for (const Tarvel::ChargementRelaté& Un : Chargements_)
      Textes << Texte("Ticket : n° " + Un.Numéro + ", " + HeureDe(Un) + ", " + Un.Propriétaire.Nom + ", " + Un.Masse +
                      " kg");
    if (std::exchange(Textes_, Textes) == Textes && Choisi) return;
    Quoi_->clear();
    Quoi_->addItems(Textes);
    Quoi_->setCurrentIndex(UnSeul_ ? Quoi_->count() - 1 : 0);
    if (!Choisi || !AvaitLeChoix) return;
    const auto Sien = std::ranges::find_if(Chargements_, [&](const Tarvel::ChargementRelaté& Un) {
      return Ancien && Un.Site == Ancien->Site && Un.Numéro == Ancien->Numéro && Un.Arrivée == Ancien->Arrivée;
    });
    Quoi_->setCurrentIndex(Sien == Chargements_.end() ? 0 : static_cast<int>(Sien - Chargements_.begin()) + 1);
  }
  static std::string HeureDe(const Tarvel::ChargementRelaté& Un) { return Tarvel::TexteMoment(Un.Arrivée).substr(11); }
  [[nodiscard]] bool EstTicket() const { return Quoi_->currentIndex() > 0; }
  [[nodiscard]] const Tarvel::ChargementRelaté& LeChargement() const {
    return Chargements_.at(static_cast<std::size_t>(Quoi_->currentIndex()) - 1);
  }
  [[nodiscard]] std::vector<std::string> Demande(const char* Option) const {
    std::vector<std::string> Mots{Option};
    if (EstTicket()) {
      const auto& Un = LeChargement();
      Mots.insert(Mots.end(), {Un.Numéro, "--heure", HeureDe(Un)});
      if (!Un.Site.empty()) Mots.insert(Mots.end(), {"--site", Un.Site});
    }
    Mots.insert(Mots.end(), {"--du", JourDe(*Jour_)});
    return Mots;
  }

  DonneBase Base_;
  bool UnSeul_;
  std::vector<Tarvel::ChargementRelaté> Chargements_;
  QStringList Textes_;
  QDateEdit* Jour_;
  QComboBox* Quoi_;
};

class DialogueExport : public DialogueTravail {
 public:
  DialogueExport(QWidget* Fenêtre, const Atelier& LeSien)
      : DialogueTravail(Fenêtre, LeSien, QStringLiteral("Exporter les chargements")) {
    auto* const Du = ChoixJour(this);
    auto* const Au = ChoixJour(this);
    Saisie().addRow(QStringLiteral("&Du :"), Du);
    Saisie().addRow(QStringLiteral("&Au :"), Au);
    connect(Du, &QDateEdit::dateChanged, Au, [Au](QDate Jour) { Au->setMinimumDate(Jour); });
    Offrir("&Enregistrer en CSV…", [this, Du, Au] {
      Écrire("chargements", "csv", {"--exporter-csv", "--du", JourDe(*Du), "--au", JourDe(*Au)});
    });
  }
};

class DialogueSauvegarde : public DialogueTravail {
 public:
  DialogueSauvegarde(QWidget* Fenêtre, const Atelier& LeSien)
      : DialogueTravail(Fenêtre, LeSien, QStringLiteral("Sauvegarder la base")) {
    Saisie().addRow(new QLabel(QStringLiteral("Une copie entière de la base, dans un fichier neuf, sur un autre disque "
                                              "si possible.\nLes stations peuvent travailler pendant ce temps."),
                               this));
    Offrir("&Choisir le fichier…", [this] { Écrire("base", "db", {"--sauvegarder"}); });
  }
};
}  // namespace

void DireNouveauté(QWidget& Fenêtre) {
  QEvent Événement(Nouveauté);
  for (QObject* Un : Fenêtre.findChildren<QDialog*>(QString(), Qt::FindDirectChildrenOnly))
    QApplication::sendEvent(Un, &Événement);
}

void OffrirPapiers(QMenu& Menu, QWidget* Fenêtre, const Atelier& LeSien, const DonneBase& Base, bool EstSurServeur) {
  const auto Ajouter = [&](const char* Nom, const std::function<DialogueTravail*()>& Faire) {
    QAction* const Entrée = Menu.addAction(QString::fromUtf8(Nom));
    QObject::connect(Entrée, &QAction::triggered, Fenêtre, [Faire] { Faire()->show(); });
    return Entrée;
  };
  Ajouter("&Bordereau de la journée…", [=] { return new DialoguePapier(Fenêtre, LeSien, Base, false); });
  Ajouter("&Ticket d'un chargement…", [=] { return new DialoguePapier(Fenêtre, LeSien, Base, true); });
  Ajouter("&Exporter les chargements (CSV)…", [=] { return new DialogueExport(Fenêtre, LeSien); });
  QAction* const Copie = Ajouter("&Sauvegarder la base…", [=] { return new DialogueSauvegarde(Fenêtre, LeSien); });
  Copie->setEnabled(!EstSurServeur);
  Copie->setToolTip(EstSurServeur ? QStringLiteral("La base d'un serveur se sauvegarde par les outils du serveur "
                                                   "(pg_dump).")
                                  : QStringLiteral("Copie la base entière, station en marche."));
  Menu.setToolTipsVisible(true);
}

}  // namespace Ombrey
