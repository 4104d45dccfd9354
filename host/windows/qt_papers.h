// The day on paper and in files, and the base's copy, from the main window's menu.
#pragma once

#include <QMenu>
#include <functional>
#include <memory>

#include "contracts/database.h"
#include "host/windows/qt_work_dialog.h"

namespace Ombrey {

/// The cooperative's database, or none as long as there is none.
using DonneBase = std::function<std::shared_ptr<IDatabase>()>;

/// Entries for the slip of a day, the ticket of a load, the loads as a file and a copy of the base, which a server's
/// own tools make.
void OffrirPapiers(QMenu& Menu, QWidget* Fenêtre, const Atelier& LeSien, const DonneBase& Base, bool EstSurServeur);

/// The base was read anew: what Fenêtre's dialogs offer of it follows.
void DireNouveauté(QWidget& Fenêtre);

}  // namespace Ombrey
