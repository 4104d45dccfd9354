// From an import file to rows of the table of loads.
#pragma once

#include <string>
#include <vector>

#include "contracts/system.h"
#include "host/import_layout.h"
#include "host/load_table.h"
#include "platform/database/connection.h"

namespace Tarvel {

/// Reads an import file (Windows-1252, one load a line, lines ended by CR LF, each value followed by the layout's
/// separator) by a layout of MSysEtats. A line of the layout holds, separated by TAB, the column's name, the kind of
/// its values and their greatest width in characters (0: any). The kinds:
///
/// | Kind | Values |
/// |---|---|
/// | texte | anything but control characters; TAB may stand |
/// | entier | digits |
/// | nombre | digits with at most one decimal separator of the locale |
/// | date | day, month, year, and a time where there is one |
/// | booléen | Vrai, Faux, 1, -1, 0 |
///
/// An empty value is Null, and False for a booléen.
class MoteurImport {
 public:
  MoteurImport(Ombrey::IConnexion& Connexion, const Ombrey::ISystème& Système)
      : Connexion_(Connexion), Système_(Système) {}

  /// Imports the whole file or nothing of it; when the call returns, all is on the disk. Raises ErreurContenu
  /// for a value that can't be used, and ErreurExécution when the file, the layout or the database can't be.
  [[nodiscard]] std::vector<ChargementImporté> Importer(const std::string& Titre, const std::string& Fichier);

 private:
  [[nodiscard]] std::vector<ChargementImporté> EcrireTout(const std::vector<LigneImport>& Chargements);

  Ombrey::IConnexion& Connexion_;
  const Ombrey::ISystème& Système_;
  DéfinitionImport Définition_;  ///< of the last import
};

}  // namespace Tarvel
