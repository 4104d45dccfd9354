// Between the plug-in's measures and Qt's.
#include "platform/qt/qt_measures.h"

#include <QFontMetrics>
#include <QGuiApplication>
#include <QScreen>
#include <algorithm>
#include <cmath>

namespace Ombrey {

namespace {
constexpr double TwipsParPouce = 1440.0;
constexpr int PixelsMax = 32767;
constexpr int TwipsMax = 1 << 24;
/// What must stay in sight of a title bar for a hand to seize it, pixels.
constexpr QSize Prise(48, 24);

/// In quarters of a point.
constexpr int CorpsLisible = 6 * 4;
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

QRect RamenéeSurÉcran(const QRect& Fenêtre) {
  const QScreen* const Accueil = QGuiApplication::primaryScreen();
  if (Accueil == nullptr) return Fenêtre;
  const QRect Bornée(Fenêtre.topLeft(), Fenêtre.size().boundedTo(Accueil->availableVirtualSize()));
  const QRect Titre(Bornée.topLeft(), QSize(Bornée.width(), Prise.height()));
  for (const QScreen* Écran : QGuiApplication::screens()) {
    const QRect EnVue = Titre & Écran->availableGeometry();
    if (EnVue.width() >= std::min(Prise.width(), Titre.width()) && EnVue.height() >= Prise.height()) return Bornée;
  }
  const QRect Libre = Accueil->availableGeometry();
  const QSize Taille = Bornée.size().boundedTo(Libre.size());
  return {std::clamp(Bornée.left(), Libre.left(), Libre.right() + 1 - Taille.width()),
          std::clamp(Bornée.top(), Libre.top(), Libre.bottom() + 1 - Taille.height()), Taille.width(), Taille.height()};
}

QString SurUneLigne(const std::string& Utf8) {
  QString Ligne = Texte(Utf8);
  Ligne.replace(QLatin1String("\r\n"), QLatin1String(" "));
  return Ligne.replace(QLatin1Char('\r'), QLatin1Char(' ')).replace(QLatin1Char('\n'), QLatin1Char(' '));
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
