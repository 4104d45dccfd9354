// A file to be written, named by the operator.
#pragma once

#include <QString>
#include <QWidget>
#include <filesystem>
#include <functional>
#include <string>

#include "platform/qt/qt_window.h"

namespace Ombrey {

/// What to ask for: the dialog's title, the beginning of the name that is offered, the extension.
struct FichierDemandé {
  QString Titre;
  QString Nom;
  QString Suffixe;
};

/// Shows the dialog and returns at once: the station goes on. Prendre gets what the operator chooses, in Qt's dispatch.
void ChoisirFichier(QWidget* Parent, const FichierDemandé& Quoi,
                    std::function<void(const std::filesystem::path&)> Prendre);

/// The same; Écrire runs in the pump, for what is written at once, and what it says, or why it failed, is shown in a
/// box. A file that is there already stays.
void EnregistrerSous(QWidget* Parent, const ContexteQt& Contexte, const FichierDemandé& Quoi,
                     std::function<std::string(const std::filesystem::path&)> Écrire);

}  // namespace Ombrey
