// The port's settings, asked of the operator in a dialog.
#include "platform/qt/qt_port_dialog.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <algorithm>
#include <array>
#include <exception>
#include <memory>

#include "platform/qt/qt_dialog.h"
#include "platform/qt/qt_measures.h"

namespace Ombrey {

namespace {
constexpr int LargeurChamps = 420;  // a name from /dev/serial/by-id
constexpr int LignesCompteRendu = 3;

struct Champ {
  const char* Libellé;
  std::string RéglagesPort::*Valeur;
  std::vector<std::string> ChoixPort::*Choix;  ///< none for the port itself, whose choice is the machine's
};
constexpr std::array<Champ, 5> Champs{{
    {"&Port :", &RéglagesPort::Port, nullptr},
    {"&Vitesse (bauds) :", &RéglagesPort::Bauds, &ChoixPort::Bauds},
    {"Pa&rité :", &RéglagesPort::Parité, &ChoixPort::Parités},
    {"&Bits de stop :", &RéglagesPort::BitsStop, &ChoixPort::BitsStop},
    {"&Taille des mots :", &RéglagesPort::TailleMots, &ChoixPort::TaillesMots},
}};

class DialoguePort : public QDialog {
 public:
  DialoguePort(QWidget* Parent, const RéglagesPort& Réglages, const std::vector<PortTrouvé>& Ports,
               const ChoixPort& Usuels)
      : QDialog(Parent), CompteRendu_(new QLabel(this)), Boutons_(new QDialogButtonBox(this)) {
    setWindowTitle(QStringLiteral("Port du RG80"));
    setWindowModality(Qt::ApplicationModal);
    setAttribute(Qt::WA_QuitOnClose, false);
    auto* const Plan = new QFormLayout(this);
    for (std::size_t Rang = 0; Rang < Champs.size(); ++Rang) {
      const Champ& Ligne = Champs[Rang];
      QComboBox* const Saisie = Saisies_[Rang] = FaireSaisie();
      if (Ligne.Choix == nullptr) {
        OffrirPorts(*Saisie, Ports);
      } else {
        for (const std::string& Un : Usuels.*Ligne.Choix) Saisie->addItem(Texte(Un), Texte(Un));
      }
      Saisie->setEditText(Texte(Réglages.*Ligne.Valeur));
      connect(Saisie, &QComboBox::editTextChanged, this, [this] { Vérifier(); });
      Plan->addRow(QString::fromUtf8(Ligne.Libellé), Saisie);
    }
    CompteRendu_->setTextFormat(Qt::PlainText);
    CompteRendu_->setWordWrap(true);
    CompteRendu_->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    CompteRendu_->setMinimumHeight(LignesCompteRendu * fontMetrics().lineSpacing());
    if (Ports.empty()) Dire("Aucun port série n'a été trouvé sur cette machine.");
    Plan->addRow(CompteRendu_);
    BtnEssayer = Boutons_->addButton(QStringLiteral("&Essayer"), QDialogButtonBox::ActionRole);
    Garder_ = Boutons_->addButton(QStringLiteral("E&nregistrer"), QDialogButtonBox::AcceptRole);
    QPushButton* const Annuler = Boutons_->addButton(QStringLiteral("&Annuler"), QDialogButtonBox::RejectRole);
    Garder_->setDefault(true);
    connect(Garder_, &QPushButton::clicked, this, [this] {
      Retenus = true;
      hide();
    });
    connect(Annuler, &QPushButton::clicked, this, [this] { hide(); });
    Plan->addRow(Boutons_);
    Vérifier();
  }

  [[nodiscard]] RéglagesPort Saisis() const {
    RéglagesPort Réglages;
    for (std::size_t Rang = 0; Rang < Champs.size(); ++Rang)
      Réglages.*Champs[Rang].Valeur = Saisies_[Rang]->currentText().trimmed().toStdString();
    return Réglages;
  }
  void Dire(const std::string& Message) { CompteRendu_->setText(Texte(Message)); }

  QPushButton* BtnEssayer = nullptr;
  bool Retenus = false;

 private:
  QComboBox* FaireSaisie() {
    auto* const Saisie = new QComboBox(this);
    Saisie->setEditable(true);
    Saisie->setInsertPolicy(QComboBox::NoInsert);
    Saisie->setCompleter(nullptr);
    Saisie->setMinimumWidth(LargeurChamps);
    Saisie->lineEdit()->setContextMenuPolicy(Qt::NoContextMenu);
    // What is shown in the list may say more than what is entered.
    connect(Saisie, &QComboBox::activated, this,
            [Saisie](int Rang) { Saisie->setEditText(Saisie->itemData(Rang).toString()); });
    return Saisie;
  }
  static void OffrirPorts(QComboBox& Saisie, const std::vector<PortTrouvé>& Ports) {
    for (const PortTrouvé& Port : Ports) {
      const QString Détail = Port.Description.empty() ? QString() : QStringLiteral("  –  ") + Texte(Port.Description);
      Saisie.addItem(Texte(Port.Nom) + Détail, Texte(Port.Nom));
    }
    Saisie.view()->setMinimumWidth(Saisie.view()->sizeHintForColumn(0));
  }
  void Vérifier() {
    const bool Complet = std::ranges::all_of(
        Saisies_, [](const QComboBox* Saisie) { return !Saisie->currentText().trimmed().isEmpty(); });
    Garder_->setEnabled(Complet);
    BtnEssayer->setEnabled(Complet);
  }

  std::array<QComboBox*, Champs.size()> Saisies_{};
  QLabel* CompteRendu_;
  QDialogButtonBox* Boutons_;
  QPushButton* Garder_ = nullptr;
};

std::string DireEssai(const std::function<std::string(const RéglagesPort&)>& Essayer, const RéglagesPort& Réglages) {
  try {
    const std::string Raison = Essayer(Réglages);
    return Raison.empty() ? "Essai réussi : le port " + Réglages.Port + " s'ouvre." : "Essai manqué. " + Raison;
  } catch (const std::exception& Erreur) {
    return std::string("Essai manqué. ") + Erreur.what();
  }
}
}  // namespace

bool QuestionnairePortQt::Demander(RéglagesPort& Réglages,
                                   const std::function<std::string(const RéglagesPort&)>& Essayer) {
  if (Contexte_.EnFin) return false;
  const DialogueTenu<DialoguePort> Dialogue(new DialoguePort(FenêtreDessous(), Réglages, Chercher_(), Usuels_));
  const auto Essai = [&] {
    if (!Dialogue.EstLà() || !Dialogue->isVisible()) return;
    const std::string Issue = DireEssai(Essayer, Dialogue->Saisis());
    if (Dialogue.EstLà()) Dialogue->Dire(Issue);
  };
  const auto Vie = std::make_shared<int>();
  QObject::connect(Dialogue->BtnEssayer, &QPushButton::clicked,
                   [&Boucle = Contexte_.Boucle, &Essai, Témoin = std::weak_ptr(Vie)] {
                     Boucle.Poser([&Essai, Témoin] {
                       if (!Témoin.expired()) Essai();
                     });
                   });
  Dialogue.Attendre(Contexte_);
  if (!Dialogue.EstLà() || !Dialogue->Retenus) return false;
  Réglages = Dialogue->Saisis();
  return true;
}

}  // namespace Ombrey
