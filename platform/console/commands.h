// The operator's commands: from a line on the console to a gesture on a box, a window or the station.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "contracts/toolkit.h"
#include "platform/console/windows.h"

namespace Ombrey {

/// When a command may run. One that isn't for every moment also waits until the one before it has ended or has come
/// to wait for the operator: so a prepared list of commands can be piped in.
enum class QuandPermise {
  Toujours,      ///< even while another command is busy
  EntreDeux,     ///< also while a box is open
  HorsBoîte,     ///< an open box must be answered first
  HorsDialogue,  ///< as HorsBoîte, and an open transfer window must be closed first
  EnTransfert,   ///< as HorsBoîte, and the transfer window must be open and idle
};

struct CommandeConsole {
  std::string Nom;       ///< small letters without accents
  std::string Argument;  ///< how the help calls it, in brackets where it may be missing; empty: the command takes none
  std::string Aide;
  QuandPermise Quand;
  std::function<void(const std::string& Argument)> Faire;
};

/// What the operator is told whose command doesn't fit its usage.
[[nodiscard]] std::string CommandeMalÉcrite(const std::string& Usage);

/// Reads the operator's lines. Knows the commands on boxes, windows and lists; the station adds its own.
class CommandesConsole {
 public:
  explicit CommandesConsole(FenêtresConsole& Fenêtres);
  CommandesConsole(const CommandesConsole&) = delete;
  CommandesConsole& operator=(const CommandesConsole&) = delete;
  ~CommandesConsole() = default;

  void Ajouter(CommandeConsole Commande) { Commandes_.push_back(std::move(Commande)); }
  /// Runs the command of the line. False, at once: it must wait. A failure of the command becomes a line.
  bool Exécuter(const std::string& Ligne);

  /// Asks the operator for a line of text and waits for it. None when he doesn't answer any more.
  [[nodiscard]] std::optional<std::string> Questionner(const std::string& Question);

 private:
  [[nodiscard]] const CommandeConsole* Trouver(const std::string& Mot) const;
  /// Why the command can't run now; empty when it can.
  [[nodiscard]] std::string Refus(const CommandeConsole& Commande, const std::string& Argument) const;
  void Lancer(const CommandeConsole& Commande, const std::string& Argument);
  void Indiquer(const std::string& Texte) { Fenêtres_.Ligne("console : " + Texte); }
  void AjouterRéponse(const char* Nom, const char* Aide, RéponseBoîte Réponse);
  void AjouterSuivi();
  void AjouterTransfert();
  void AjouterGeste(const char* Nom, const char* Aide, QuandPermise Quand, void (IGestesSuivi::*Geste)());
  void AjouterCase(const char* Nom, const char* Aide, bool Cochée);
  void AjouterListe(const char* Nom, const char* Aide, Onglet Liste, const char* Aucune);
  void Lister();
  [[nodiscard]] std::vector<std::string> Lignes(Onglet Liste) const;
  /// The number of lines, the headings on top left out, then the lines; Aucune stands for a number of 0.
  void Montrer(const char* Nom, const std::vector<std::string>& Lignes, std::size_t Entêtes, const char* Aucune);
  void Imprimer(const std::string& Fichier);
  void Aider();

  FenêtresConsole& Fenêtres_;
  std::vector<CommandeConsole> Commandes_;
  std::function<void(const std::string&)> Question_;  ///< takes the next line, while a question is open
};

}  // namespace Ombrey
