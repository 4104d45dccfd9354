// What the system tells of the device behind a serial port.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace Ombrey {

/// Where the system keeps its devices and what it knows of them.
struct RacinesSystème {
  std::filesystem::path Dev = "/dev";
  std::filesystem::path Sys = "/sys";
};

/// The first line of a file, without the blanks at its end; empty when there is none.
[[nodiscard]] std::string PremièreLigne(const std::filesystem::path& Fichier);

/// Number of the device behind a path, 0 when there is none.
[[nodiscard]] dev_t IdentitéAppareil(const std::string& Chemin);

/// The processes that have the device open, but for one of them, as far as this account may see: "tarvel, processus
/// 4711". The search looks so often and no further, and waits for nothing.
[[nodiscard]] std::vector<std::string> Tenants(dev_t Appareil, pid_t Sauf = 0,
                                               int Regards = std::numeric_limits<int>::max());

/// The adapter that bears a port. What it doesn't tell is empty.
struct AdaptateurUsb {
  std::filesystem::path Dossier;
  std::string Interface;  ///< an adapter with several ports has one number for all of them
  std::string Marque;
  std::string Modèle;
  std::string Numéro;  ///< serial number
  std::string Nom;     ///< for people
};

/// The adapter of a port, whose entry is such as /sys/class/tty/ttyUSB0; none for a port that is no adapter's.
[[nodiscard]] std::optional<AdaptateurUsb> AdaptateurDe(const std::filesystem::path& Entrée);

/// The entry of a device by its number; it needn't exist.
[[nodiscard]] std::filesystem::path EntréeDe(const RacinesSystème& Racines, dev_t Identité);

/// The name of a device's driver; empty when the system doesn't say.
[[nodiscard]] std::string PiloteDe(const std::filesystem::path& Entrée);

/// What tells a port's device from every other one, whatever name the system gives it: the adapter's serial number, for
/// one that bears none the socket where it is plugged in, for a port of the machine its place. Empty when the system
/// doesn't know the device. AvecPrise: with the socket whatever it bears, as copies of an adapter have one number.
[[nodiscard]] std::string SignalementDe(const std::filesystem::path& Entrée, bool AvecPrise = false);

/// The name of the one port that this is the description of, of either kind, such as ttyUSB0; empty when there is none
/// or more than one. Classe is made like /sys/class/tty.
[[nodiscard]] std::string PortSignalé(const std::filesystem::path& Classe, const std::string& Signalement);

}  // namespace Ombrey
