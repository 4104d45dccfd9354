// The day on paper and in files, from the console.
#pragma once

#include <deque>
#include <memory>
#include <string>
#include <vector>

#include "host/options.h"
#include "platform/console/commands.h"
#include "platform/console/output.h"
#include "platform/loop/child_program.h"

namespace Tarvel {

/// Each is written by this program once more, beside the station: what takes long, or wants the windows' module, holds
/// up no collection and stays out of the station's memory.
class PapiersConsole {
 public:
  /// All of them outlive the papers.
  PapiersConsole(Ombrey::IBoucle& Boucle, Ombrey::SortieConsole& Sortie, const Options& Choisies)
      : Boucle_(Boucle), Sortie_(Sortie), Options_(Choisies) {}
  PapiersConsole(const PapiersConsole&) = delete;
  PapiersConsole& operator=(const PapiersConsole&) = delete;
  /// Finishes what was asked for, unless a signal ends the station: nobody waits for it then.
  ~PapiersConsole();

  void Offrir(Ombrey::CommandesConsole& Commandes);

 private:
  /// One after the other.
  void Lancer();
  void Abandonner();

  struct Travail {
    std::string Nom;
    std::vector<std::string> Mots;
  };
  Ombrey::IBoucle& Boucle_;
  Ombrey::SortieConsole& Sortie_;
  const Options& Options_;
  std::deque<Travail> File_;
  std::unique_ptr<Ombrey::ProgrammeFils> Programme_;
};

}  // namespace Tarvel
