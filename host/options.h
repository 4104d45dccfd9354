// The station's command line, and what the settings file adds to it.
#pragma once

#include <chrono>
#include <filesystem>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

#include "host/engine.h"
#include "host/load_report.h"

namespace Tarvel {

/// A command line that can't be followed; what() says why, for the operator.
class ErreurOptions : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// What the program is started for. Values join to a set, by "|".
enum class Tâche : unsigned {
  Station = 1,
  CréerBase = 2,
  Aide = 4,
  Version = 8,
  Sauvegarder = 16,
  Restaurer = 32,
  Diagnostic = 64,
  CopierBase = 128,
  Exporter = 256,
  RefaireCumuls = 512,
  Bordereau = 1024,
  Ticket = 2048,
  ImprimerBordereau = 4096,
  ImprimerTicket = 8192
};

struct Options {
  Tâche QueFaire = Tâche::Station;
  /// The cooperative's database, to open or to create: the absolute path of a file, or a server's address.
  std::string Base;
  std::string CodeSite;           ///< the station's site code; empty: the one that the database names. Also a load's
  std::string Vers;               ///< the database that takes a copy: as Base
  std::filesystem::path Copie;    ///< a copy of the database, to make or to put back; an export or a paper
  std::string Numéro;             ///< of the load whose ticket is asked for
  std::string Heure;              ///< at which that one came in, HH:MM; empty: any
  Période Jours;                  ///< of the loads to export; the first one is a paper's
  std::filesystem::path Ini;      ///< settings file; it may be missing
  std::filesystem::path Dossier;  ///< working folder; beside a database file, unless given
  std::filesystem::path Greffon;  ///< the plug-in's library; empty: the one beside the program
  std::filesystem::path Trace;    ///< where the line's traffic is written, a file or a folder; empty: nowhere
  bool Console = false;
  bool SansOpérateur = false;
  bool Regarder = false;  ///< shows the base and leaves line and folder to the station that has them
  bool Exemple = false;
  std::optional<std::chrono::seconds> Durée;
  /// How long a box with a lone OK stays in the windows; 0: until it is answered.
  std::chrono::seconds DuréeBoîtes{30};

  /// What the operator calls the database: the file's name, or the address.
  [[nodiscard]] std::string NomBase() const { return FichierDeBase(Base) ? Base.substr(Base.rfind('/') + 1) : Base; }
};

/// Reads the arguments behind the program's name, then what they leave open from the section [Tarvel] of the settings
/// file: Base, CodeSite, Dossier, Trace, DuréeBoîtes. A path there counts from the file's folder. Raises ErreurOptions,
/// and ErreurExécution when the settings file is there and can't be read: a station mustn't work under a site that is
/// somebody else's.
[[nodiscard]] Options LireOptions(std::span<const std::string> Arguments);

[[nodiscard]] std::string TexteAide();
[[nodiscard]] std::string TexteVersion();

}  // namespace Tarvel
