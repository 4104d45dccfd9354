// The windowing toolkit on a screen.
#include "platform/qt/qt_windows.h"

#include <QApplication>
#include <QClipboard>
#include <QDateTime>
#include <QMimeData>
#include <QStandardPaths>
#include <utility>

#include "base/failures.h"
#include "platform/qt/qt_measures.h"
#include "platform/qt/qt_message_box.h"
#include "platform/qt/qt_monitoring_view.h"
#include "platform/qt/qt_printer.h"
#include "platform/qt/qt_progress.h"
#include "platform/qt/qt_transfer_view.h"

namespace Ombrey {

namespace {
QImage EnQImage(const Image& Source) {
  if (Source.Pixels.size() != Source.Côté * Source.Côté) throw ErreurExécution("Image de bouton incomplète");
  const auto Côté = static_cast<int>(Source.Côté);
  QImage Copie(Côté, Côté, QImage::Format_ARGB32);
  for (int Y = 0; Y < Côté; ++Y) {
    for (int X = 0; X < Côté; ++X)
      Copie.setPixel(X, Y, Source.Pixels[static_cast<std::size_t>(Y) * Source.Côté + static_cast<std::size_t>(X)]);
  }
  return Copie;
}

std::filesystem::path DossierDocuments() {
  return QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation).toStdString();
}
}  // namespace

FenêtresQt::FenêtresQt(BoucleQt& Boucle, std::filesystem::path DossierTravail)
    : Contexte_{Boucle}, DossierTravail_(std::move(DossierTravail)) {
  GarderFenêtresEnVue(Garde_);
}

RéponseBoîte FenêtresQt::Boîte(const std::string& Texte, const std::string& Titre, BoutonsBoîte Boutons) {
  if (RépondSeul_) {
    if (Contexte_.Témoins.Boîte) Contexte_.Témoins.Boîte(Titre, Texte);
    if (Contexte_.Témoins.Retirée) Contexte_.Témoins.Retirée(Titre, Texte);
    return RéponseSansOpérateur(Boutons);
  }
  // Who stopped the sending has had his say.
  if (const auto Sienne = Progression_.lock(); Sienne && Sienne->EstArrêtée()) {
    if (Boutons == BoutonsBoîte::RecommencerAnnuler && Contexte_.SurÉchec)
      Contexte_.SurÉchec("L'envoi a été arrêté : ce qui reste coché n'est pas au RG80.");
    return Boutons == BoutonsBoîte::Ok ? RéponseBoîte::Ok : RéponseBoîte::Annuler;
  }
  const std::string Précision = Contexte_.Témoins.Boîte ? Contexte_.Témoins.Boîte(Titre, Texte) : "";
  const bool Sablier = Sablier_.EstTenu();
  FixerSablier(false);
  const RéponseBoîte Réponse =
      DemanderParBoîte(Contexte_, Texte + (Précision.empty() ? "" : "\n") + Précision, Titre, Boutons);
  if (Sablier) FixerSablier(true);
  return Réponse;
}

bool FenêtresQt::Avancer(const Avancement& Où) {
  const auto Sienne = Progression_.lock();
  return !Sienne || Sienne->Avancer(Où);
}

void FenêtresQt::PoserImages(const std::vector<Image>& Tailles) {
  QIcon Icône;
  QImage Grande;
  for (const Image& Taille : Tailles) {
    const QImage Copie = EnQImage(Taille);
    Icône.addPixmap(QPixmap::fromImage(Copie));
    if (Copie.width() > Grande.width()) Grande = Copie;
  }
  Image_ = Icône;
  QClipboard* const PressePapiers = QApplication::clipboard();
  PressePapiers->clear();
  if (!Grande.isNull()) PressePapiers->setImage(Grande);
}

std::unique_ptr<IImprimante> FenêtresQt::OuvrirImprimante() {
  const QString Moment = QDateTime::currentDateTime().toString(QStringLiteral("dd-MM-yyyy HHmmss"));
  return std::make_unique<ImprimanteQt>(
      "Erreurs RG80 " + Moment.toStdString() + ".pdf",
      std::vector<std::filesystem::path>{DossierDocuments(), DossierTravail_}, [this](const std::string& Chemin) {
        Boîte("Aucune imprimante n'est installée. La liste est enregistrée dans le fichier\n" + Chemin,
              "Impression des erreurs", BoutonsBoîte::Ok);
      });
}

std::unique_ptr<IVueSuiviChargnt> FenêtresQt::CréerVueSuivi(IGestesSuivi& Gestes, const std::string& Légende,
                                                            const Rectangle& Intérieur,
                                                            std::span<const DessinContrôleSuivi> Dessin) {
  return std::make_unique<VueSuiviChargntQt>(Contexte_, Gestes, Légende, Intérieur, Dessin);
}

std::unique_ptr<IVueChargntDonnées> FenêtresQt::CréerVueChargntDonnées(IGestesChargntDonnées& Gestes,
                                                                       const std::string& Titre,
                                                                       const Rectangle& Intérieur,
                                                                       std::span<const DessinContrôle> Dessin) {
  auto Vue = std::make_unique<VueChargntDonnéesQt>(Contexte_, Gestes, Titre, Intérieur, Dessin);
  Progression_ = Vue->Progression();
  return Vue;
}

}  // namespace Ombrey
