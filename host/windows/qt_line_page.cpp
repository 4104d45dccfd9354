// The main window's view of the line.
#include "host/windows/qt_line_page.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QScrollBar>
#include <QVBoxLayout>
#include <algorithm>
#include <array>
#include <filesystem>
#include <string>

#include "host/windows/qt_save_dialog.h"
#include "platform/qt/qt_measures.h"
#include "platform/serial/message_text.h"

namespace Ombrey {

namespace {
constexpr int Rythme = 500;  ///< ms between two looks
/// Of a file that was sent, more than the eye can take in.
constexpr std::size_t OctetsMontrés = 120;
constexpr std::array<const char*, 4> Entêtes = {"Heure", "Qui", "Ce que ça veut dire", "Octets"};
constexpr std::array<int, 3> Caractères = {18, 10, 70};  ///< widths of all but the last
constexpr const char* CouleurFaute = "#b00020";

QString Case(const MessageLiaison& Un, int Colonne) {
  constexpr int FinHeure = 12;
  if (Colonne == 2) return (Un.Faute ? QStringLiteral("⚠ ") : QString()) + Texte(Un.Texte);
  if (Colonne == 3) {
    const bool Long = Un.Bruts.Taille() > OctetsMontrés;
    return Texte(TexteBrut(Un.Bruts.Extrait(0, OctetsMontrés))) + (Long ? QStringLiteral("…") : QString());
  }
  const std::string Ligne = LigneTrace({Un.Quand, Un.Qui, {}, {}});
  return Texte(Colonne == 0 ? Ligne.substr(0, FinHeure)
                            : Ligne.substr(FinHeure + 1, Ligne.find('\t', FinHeure + 1) - FinHeure - 1));
}
}  // namespace

bool ModèleLigne::Suivre() {
  const std::uint64_t Fin = Journal_.Nombre();
  const std::uint64_t Premier = Fin - Journal_.Messages().size();
  if (Premier > Premier_) {
    const std::uint64_t Partis = std::min(Premier, Fin_) - Premier_;
    if (Partis > 0) beginRemoveRows({}, 0, static_cast<int>(Partis) - 1);
    Premier_ += Partis;
    if (Partis > 0) endRemoveRows();
    if (Premier_ == Fin_) Premier_ = Fin_ = Premier;
  }
  if (Fin == Fin_) return false;
  beginInsertRows({}, rowCount(), static_cast<int>(Fin - Premier_) - 1);
  Fin_ = Fin;
  endInsertRows();
  return true;
}

const MessageLiaison* ModèleLigne::Message(int Rang) const {
  const std::uint64_t Premier = Journal_.Nombre() - Journal_.Messages().size();
  const std::uint64_t Numéro = Premier_ + static_cast<std::uint64_t>(Rang);
  // Between two looks the oldest may have gone.
  return Numéro < Premier || Numéro >= Journal_.Nombre() ? nullptr : &Journal_.Messages()[Numéro - Premier];
}

int ModèleLigne::rowCount(const QModelIndex& Parent) const {
  return Parent.isValid() ? 0 : static_cast<int>(Fin_ - Premier_);
}

int ModèleLigne::columnCount(const QModelIndex& Parent) const {
  return Parent.isValid() ? 0 : static_cast<int>(Entêtes.size());
}

QVariant ModèleLigne::data(const QModelIndex& Place, int Rôle) const {
  const MessageLiaison* const Un = Place.isValid() ? Message(Place.row()) : nullptr;
  if (Un == nullptr) return {};
  if (Rôle == Qt::DisplayRole) return Case(*Un, Place.column());
  if (Rôle == Qt::ToolTipRole) return Case(*Un, 2).toHtmlEscaped();
  if (Rôle == Qt::ForegroundRole && Un->Faute) return QColor(QString::fromLatin1(CouleurFaute));
  return {};
}

QVariant ModèleLigne::headerData(int Section, Qt::Orientation Sens, int Rôle) const {
  if (Sens != Qt::Horizontal || Rôle != Qt::DisplayRole) return {};
  return QString::fromUtf8(Entêtes[static_cast<std::size_t>(Section)]);
}

bool FautesSeules::filterAcceptsRow(int Rang, const QModelIndex& /*Parent*/) const {
  if (!Seules_) return true;
  const MessageLiaison* const Un = static_cast<const ModèleLigne*>(sourceModel())->Message(Rang);
  return Un != nullptr && Un->Faute;
}

PageLigneQt::PageLigneQt(QWidget* Parent, const ContexteQt& Contexte, const JournalLiaison& Journal)
    : QWidget(Parent), Modèle_(Journal), Liste_(new QTableView(this)) {
  Filtre_.setSourceModel(&Modèle_);
  Liste_->setModel(&Filtre_);
  Liste_->setAccessibleName(QStringLiteral("Ce qui passe sur la ligne"));
  Liste_->setSelectionBehavior(QAbstractItemView::SelectRows);
  Liste_->setTabKeyNavigation(false);
  Liste_->setWordWrap(false);
  Liste_->verticalHeader()->hide();
  Liste_->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  Liste_->verticalHeader()->setDefaultSectionSize(fontMetrics().lineSpacing() * 5 / 4);
  Liste_->horizontalHeader()->setStretchLastSection(true);
  for (std::size_t Rang = 0; Rang < Caractères.size(); ++Rang)
    Liste_->setColumnWidth(static_cast<int>(Rang), fontMetrics().averageCharWidth() * Caractères[Rang]);
  auto* const Fautes = new QCheckBox(QStringLiteral("&Fautes seules"), this);
  Fautes->setToolTip(QStringLiteral("Ne montre que les fautes et les octets jetés."));
  connect(Fautes, &QCheckBox::toggled, this, [this](bool Seules) { Filtre_.Montrer(Seules); });
  auto* const Bouton = new QPushButton(QStringLiteral("&Enregistrer la trace…"), this);
  Bouton->setToolTip(QStringLiteral("Écrit les dernières heures dans un fichier, que « rg80 --rejouer » sait relire."));
  connect(Bouton, &QPushButton::clicked, this, [this, &Contexte, &Journal] {
    EnregistrerSous(this, Contexte,
                    {QStringLiteral("Enregistrer la trace"), QStringLiteral("ligne"), QStringLiteral("trace")},
                    [&Journal](const std::filesystem::path& Fichier) { return Journal.Enregistrer(Fichier); });
  });
  auto* const Bas = new QHBoxLayout;
  Bas->addWidget(Fautes, 1);
  Bas->addWidget(Bouton);
  auto* const Plan = new QVBoxLayout(this);
  Plan->addWidget(Liste_, 1);
  Plan->addLayout(Bas);
  connect(&Montre_, &QTimer::timeout, this, [this] { Suivre(); });
}

void PageLigneQt::showEvent(QShowEvent* Événement) {
  QWidget::showEvent(Événement);
  Suivre();
  Montre_.start(Rythme);
}

void PageLigneQt::hideEvent(QHideEvent* Événement) {
  QWidget::hideEvent(Événement);
  Montre_.stop();
}

void PageLigneQt::Suivre() {
  const QScrollBar& Barre = *Liste_->verticalScrollBar();
  const bool AuBout = Barre.value() == Barre.maximum();
  if (Modèle_.Suivre() && AuBout) Liste_->scrollToBottom();
}

}  // namespace Ombrey
