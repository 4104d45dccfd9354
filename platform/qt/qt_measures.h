// Between the plug-in's measures and Qt's: twips and pixels, UTF-8 and QString, a text that must fit its control.
#pragma once

#include <QRect>
#include <QString>
#include <QWidget>
#include <string>
#include <vector>

#include "contracts/toolkit.h"

namespace Ombrey {

/// PointsParPouce is the screen's logical resolution, 96 as a rule. Rounded to the nearest, bounded to what a window
/// system can hold.
[[nodiscard]] int EnPixels(int Twips, int PointsParPouce);
[[nodiscard]] int EnTwips(int Pixels, int PointsParPouce);
[[nodiscard]] QRect EnPixels(const Rectangle& Place, int PointsParPouce);

/// The size that a window of the inner area Intérieur (pixels) is said to have, and back. The frame counts as wide as
/// the layout's margins were made for, whatever the window manager draws: so nothing is cut off under a thick title.
struct CadreNominal {
  static constexpr int Largeur = 120;  ///< both borders, twips
  static constexpr int Hauteur = 405;  ///< title and both borders, twips
};

/// The nearest place at which the whole of Fenêtre (outer edges, pixels) is in sight, made smaller where the screen is:
/// what lies beyond an edge, such as the row of buttons, can't be reached. Unchanged where it is in sight. Écrans are
/// the screens' free areas, the chief one first.
[[nodiscard]] QRect RamenéeSurÉcran(const QRect& Fenêtre, const std::vector<QRect>& Écrans);
/// Gives the window this place on the machine's screens, in pixels: left and top of its frame, and the inner size.
void PlacerSurÉcran(QWidget& Fenêtre, const QRect& Place);
/// The window's own place: the one that it stands at, unless it does so only because no screen has its own.
[[nodiscard]] QRect PlaceVoulue(const QWidget& Fenêtre);

[[nodiscard]] inline QString Texte(const std::string& Utf8) { return QString::fromStdString(Utf8); }

/// The inner width that shows the window's title whole, beside a frame's buttons.
[[nodiscard]] int LargeurDuTitre(const QWidget& Fenêtre);

/// Makes the control's letters smaller, as far as they can be read, until Libellé fits into its present size.
void FaireTenir(QWidget& Contrôle, const QString& Libellé, int MargeHorizontale, int MargeVerticale);

}  // namespace Ombrey
