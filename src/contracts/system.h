// Time, waiting, places and settings: what the plug-in needs of the machine.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string>

namespace Ombrey {

/// A date and time of day in local time, as clocks on the wall show it.
struct DateHeure {
  int Année = 1899;
  int Mois = 12;
  int Jour = 30;
  int Heure = 0;
  int Minute = 0;
  int Seconde = 0;
  friend bool operator==(const DateHeure&, const DateHeure&) = default;
};

/// The machine's forms of numbers. Dates are always in the order day, month, year.
struct Régional {
  char SéparateurDécimal = ',';
};

class ISystème {
 public:
  virtual ~ISystème() = default;
  /// Milliseconds since some start; wraps after about 49 days, so only differences taken as signed 32-bit count.
  [[nodiscard]] virtual std::uint32_t Tics() const = 0;
  [[nodiscard]] virtual DateHeure Maintenant() const = 0;
  [[nodiscard]] virtual Régional FormesRégionales() const = 0;
  /// The working folder, which holds "données" and the import files.
  [[nodiscard]] virtual std::filesystem::path CheminApplication() const = 0;
  /// Folder for import files whose import failed; it need not exist yet.
  [[nodiscard]] virtual std::filesystem::path DossierImportsConservés() const = 0;
  /// Lets one waiting event run, or waits until one comes or AttenteMax is over. True when an event ran. After it
  /// the world may have changed.
  virtual bool Pomper(std::chrono::milliseconds AttenteMax) = 0;
};

/// The host's timer class, one-shot. Its event is the function that it was made with.
class IRetard {
 public:
  virtual ~IRetard() = default;
  /// After Délai milliseconds, or a little more, the event comes once, with Code. Replaces a delay that is running.
  /// May be dropped or started again from within its own event.
  virtual void Démarrer(std::int32_t Délai, const std::string& Code) = 0;
  /// No event comes until Démarrer.
  virtual void Arrêter() = 0;
};

/// Reads and writes one key of a settings file at a time. Texts are UTF-8; the file may be UTF-8 or Windows-1252.
class ILecteurIni {
 public:
  virtual ~ILecteurIni() = default;
  virtual void FixerFichier(const std::string& Chemin) = 0;
  virtual void FixerSection(const std::string& Section) = 0;
  virtual void FixerClé(const std::string& Clé) = 0;
  /// Text of the key read last; empty when the key, the section or the file is absent.
  [[nodiscard]] virtual std::string Valeur() const = 0;
  virtual void FixerValeur(const std::string& Valeur) = 0;
  /// Saves the value under the key: every other byte of the file stays, and the file reaches the disk whole or not at
  /// all. Raises ErreurExécution when it can't be written. Drapeau, an out flag, isn't relied on.
  virtual void EcrireValeur(bool& Drapeau) = 0;
  /// Raises ErreurExécution when the file is there and can't be read.
  virtual void LireValeur(bool& Drapeau) = 0;
};

/// The per-user store of settings.
class IRéglages {
 public:
  virtual ~IRéglages() = default;
  /// The stored text, or Défaut when there is none.
  [[nodiscard]] virtual std::string Lire(const std::string& Application, const std::string& Section,
                                         const std::string& Clé, const std::string& Défaut) const = 0;
  /// Raises ErreurExécution when the store can't be written.
  virtual void Ecrire(const std::string& Application, const std::string& Section, const std::string& Clé,
                      const std::string& Valeur) = 0;
};

}  // namespace Ombrey
