// Message boxes on a screen.
#pragma once

#include <string>

#include "contracts/toolkit.h"
#include "platform/qt/qt_window.h"

namespace Ombrey {

/// Shows the box above the active window and runs the loop until it is answered. The text stands as it is, never read
/// as markup; a long one is scrolled. Esc and the frame's closing answer OK, or Annuler, and so does the station's end.
/// A lone OK steps aside by itself, as the context says.
RéponseBoîte DemanderParBoîte(const ContexteQt& Contexte, const std::string& Message, const std::string& Titre,
                              BoutonsBoîte Boutons);

/// What a box shows beside its text.
enum class SigneBoîte { Avertissement, Information };

/// Shows a box with a lone OK above Parent, or above a modal window, and returns at once, so that nobody who waits for
/// the terminal waits for the operator: for what the station itself has to say, whoever uses the line. It stays until
/// it is answered or Parent goes. It takes no keys from another program.
void MontrerBoîte(const ContexteQt& Contexte, QWidget* Parent, SigneBoîte Signe, const std::string& Message,
                  const std::string& Titre);

}  // namespace Ombrey
