// Between the plug-in's measures and Qt's.
#include "platform/qt/qt_measures.h"

#include <QFontMetrics>
#include <QGuiApplication>
#include <QRegion>
#include <QScreen>
#include <algorithm>
#include <cmath>

namespace Ombrey {

namespace {
constexpr double TwipsParPouce = 1440.0;
constexpr int PixelsMax = 32767;
constexpr int TwipsMax = 1 << 24;
/// In quarters of a point.
constexpr int CorpsLisible = 6 * 4;
/// What a window bears that had to be given another place than its own.
constexpr const char* SaPlace = "SaPlace";
constexpr const char* PlaceDEmprunt = "PlaceDEmprunt";
/// What stands in a frame's title beside it, each as high as the title: a picture, three buttons, and the room between.
constexpr int AutourDuTitre = 5;
}  // namespace

int EnPixels(int Twips, int PointsParPouce) {
  const double Valeur = std::round(static_cast<double>(Twips) * PointsParPouce / TwipsParPouce);
  return static_cast<int>(std::clamp<double>(Valeur, -PixelsMax, PixelsMax));
}

int EnTwips(int Pixels, int PointsParPouce) {
  const double Valeur = std::round(Pixels * TwipsParPouce / std::max(PointsParPouce, 1));
  return static_cast<int>(std::clamp<double>(Valeur, -TwipsMax, TwipsMax));
}

QRect EnPixels(const Rectangle& Place, int PointsParPouce) {
  return {EnPixels(Place.Gauche, PointsParPouce), EnPixels(Place.Haut, PointsParPouce),
          EnPixels(Place.Largeur, PointsParPouce), EnPixels(Place.Hauteur, PointsParPouce)};
}

QRect RamenéeSurÉcran(const QRect& Fenêtre, const std::vector<QRect>& Écrans) {
  if (Écrans.empty()) return Fenêtre;
  QRegion EnVue;
  for (const QRect& Écran : Écrans) EnVue += Écran;
  if (QRegion(Fenêtre).subtracted(EnVue).isEmpty()) return Fenêtre;
  const auto AireEnVue = [&Fenêtre](const QRect& Écran) {
    const QSize Commune = (Écran & Fenêtre).size();
    return static_cast<qint64>(Commune.width()) * Commune.height();
  };
  const QRect Libre = *std::ranges::max_element(Écrans, {}, AireEnVue);
  const QSize Taille = Fenêtre.size().boundedTo(Libre.size());
  return {std::clamp(Fenêtre.left(), Libre.left(), Libre.right() + 1 - Taille.width()),
          std::clamp(Fenêtre.top(), Libre.top(), Libre.bottom() + 1 - Taille.height()), Taille.width(),
          Taille.height()};
}

void PlacerSurÉcran(QWidget& Fenêtre, const QRect& Place) {
  QSize Cadre = Fenêtre.frameGeometry().size() - Fenêtre.size();
  if (Cadre.isNull()) {  // not drawn yet, or never
    const int Résolution = Fenêtre.logicalDpiX();
    Cadre = {EnPixels(CadreNominal::Largeur, Résolution), EnPixels(CadreNominal::Hauteur, Résolution)};
  }
  std::vector<QRect> Écrans;
  for (const QScreen* Écran : QGuiApplication::screens()) Écrans.push_back(Écran->availableGeometry());
  const QRect Ramenée = RamenéeSurÉcran(QRect(Place.topLeft(), Place.size() + Cadre), Écrans);
  Fenêtre.resize(Ramenée.size() - Cadre);
  Fenêtre.move(Ramenée.topLeft());
  const QRect Obtenue(Fenêtre.pos(), Fenêtre.size());
  Fenêtre.setProperty(SaPlace, Place);
  Fenêtre.setProperty(PlaceDEmprunt, Obtenue == Place ? QRect() : Obtenue);
}

QRect PlaceVoulue(const QWidget& Fenêtre) {
  const QRect Présente(Fenêtre.pos(), Fenêtre.size());
  return Fenêtre.property(PlaceDEmprunt).toRect() == Présente ? Fenêtre.property(SaPlace).toRect() : Présente;
}

int LargeurDuTitre(const QWidget& Fenêtre) {
  QFont Police = Fenêtre.font();
  Police.setBold(true);
  const QFontMetrics Lettres(Police, &Fenêtre);
  const int Voulue = Lettres.horizontalAdvance(Fenêtre.windowTitle()) + AutourDuTitre * Lettres.lineSpacing() * 3 / 2;
  return std::min(Voulue, Fenêtre.screen()->availableSize().width());
}

void FaireTenir(QWidget& Contrôle, const QString& Libellé, int MargeHorizontale, int MargeVerticale) {
  const QRect Place = Contrôle.rect().adjusted(MargeHorizontale, MargeVerticale, -MargeHorizontale, -MargeVerticale);
  QFont Police = Contrôle.font();
  for (int Corps = qRound(Police.pointSizeF() * 4); Corps > CorpsLisible; --Corps) {
    Police.setPointSizeF(Corps / 4.0);
    const QRect Encre = QFontMetrics(Police, &Contrôle)
                            .boundingRect(Place, Qt::AlignCenter | Qt::TextWordWrap | Qt::TextShowMnemonic, Libellé);
    if (Encre.width() <= Place.width() && Encre.height() <= Place.height()) break;
  }
  Contrôle.setFont(Police);
}

}  // namespace Ombrey
