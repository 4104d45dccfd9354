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

#include "base/text_helpers.h"
#include "platform/qt/qt_dialog.h"
#include "platform/qt/qt_measures.h"

namespace Ombrey {

namespace {
constexpr int LargeurChamps = 420;  // a name from /dev/serial/by-id
constexpr int LignesCompteRendu = 3;
const std::string LibelléGarder = AvecTouche("Enregistrer", 'n');

struct Champ {
  std::string Libellé;
  std::string RéglagesPort::*Valeur;
  std::vector<std::string> ChoixPort::*Choix;  ///< none for the port itself, whose choice is the machine's
  bool EstNombre = false;
};
const std::array<Champ, 5> Champs{{
    {"&Port :", &RéglagesPort::Port, nullptr},
    {"&Vitesse (bauds) :", &RéglagesPort::Bauds, &ChoixPort::Bauds, true},
    {AvecTouche("Parité :", 'r'), &RéglagesPort::Parité, &ChoixPort::Parités},
    {"&Bits de stop :", &RéglagesPort::BitsStop, &ChoixPort::BitsStop, true},
    {"&Taille des mots :", &RéglagesPort::TailleMots, &ChoixPort::TaillesMots, true},
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
      const Champ& Rangée = Champs[Rang];
      QComboBox* const Saisie = Saisies_[Rang] = FaireSaisie();
      if (Rangée.Choix == nullptr) {
        OffrirPorts(*Saisie, Ports);
      } else {
        for (const std::string& Un : Usuels.*Rangée.Choix) Saisie->addItem(Texte(Un), Texte(Un));
      }
      Saisie->setEditText(Texte(Réglages.*Rangée.Valeur));
      connect(Saisie, &QComboBox::editTextChanged, this, [this] { Vérifier(); });
      Plan->addRow(Texte(Rangée.Libellé), Saisie);
    }
    CompteRendu_->setTextFormat(Qt::PlainText);
    CompteRendu_->setWordWrap(true);
    CompteRendu_->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    CompteRendu_->setMinimumHeight(LignesCompteRendu * fontMetrics().lineSpacing());
    if (Ports.empty()) Dire("Aucun port série n'a été trouvé sur cette machine.");
    Plan->addRow(CompteRendu_);
    BtnEssayer = Boutons_->addButton(QStringLiteral("&Essayer"), QDialogButtonBox::ActionRole);
    Garder_ = Boutons_->addButton(Texte(LibelléGarder), QDialogButtonBox::AcceptRole);
    QPushButton* const Annuler = Boutons_->addButton(QStringLiteral("&Annuler"), QDialogButtonBox::RejectRole);
    Garder_->setDefault(true);
    connect(Garder_, &QPushButton::clicked, this, [this] { Garder(); });
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
  /// The trial's outcome; Raison is empty when the terminal answered.
  void DireEssai(const std::string& Raison) {
    Manqués_ = Raison.empty() ? RéglagesPort{} : Saisis();
    Dire(Raison.empty() ? "Essai réussi : le RG80 répond." : "Essai manqué. " + Raison);
  }

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
    const RéglagesPort Réglages = Saisis();
    const bool Complet = std::ranges::all_of(Champs, [&](const Champ& Un) {
      const std::string& Valeur = Réglages.*Un.Valeur;
      return !Valeur.empty() && (!Un.EstNombre || Valeur.find_first_not_of("0123456789") == std::string::npos);
    });
    Garder_->setEnabled(Complet);
    BtnEssayer->setEnabled(Complet);
    Garder_->setText(Texte(LibelléGarder));
  }
  /// Settings whose trial failed are kept only when the operator says so a second time.
  void Garder() {
    const bool Demandé = Garder_->text() != Texte(LibelléGarder);
    if (Demandé || Saisis() != Manqués_) {
      Retenus = true;
      return hide();
    }
    Dire("L'essai de ces réglages a échoué. Les enregistrer quand même ?");
    Garder_->setText(Texte(AvecTouche("Enregistrer quand même", 'n')));
  }

  std::array<QComboBox*, Champs.size()> Saisies_{};
  QLabel* CompteRendu_;
  QDialogButtonBox* Boutons_;
  QPushButton* Garder_ = nullptr;
  RéglagesPort Manqués_;  ///< those whose trial failed last
};

std::string RaisonEssai(const std::function<std::string(const RéglagesPort&)>& Essayer, const RéglagesPort& Réglages) {
  try {
    return Essayer(Réglages);
  } catch (const std::exception& Erreur) {
    return Erreur.what();
  }
}
}  // namespace

bool QuestionnairePortQt::Demander(RéglagesPort& Réglages,
                                   const std::function<std::string(const RéglagesPort&)>& Essayer) {
  if (Contexte_.EnFin) return false;
  const DialogueTenu<DialoguePort> Dialogue(new DialoguePort(FenêtreDessous(), Réglages, Chercher_(), Usuels_));
  const auto Essai = [&] {
    if (!Dialogue.EstLà() || !Dialogue->isVisible()) return;
    Dialogue->setEnabled(false);
    Dialogue->Dire("Essai en cours…");
    const std::string Raison = RaisonEssai(Essayer, Dialogue->Saisis());
    if (!Dialogue.EstLà()) return;
    Dialogue->setEnabled(true);
    Dialogue->DireEssai(Raison);
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
