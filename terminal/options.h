// The command line of the terminal.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "terminal/faults.h"

namespace Rg80 {

struct Options {
  std::string Lien, Port, Chargements, Sortie, Journal, Rejouer;
  unsigned AuHasard = 0;
  std::optional<unsigned> Bauds;
  TauxDePannes Taux{};
  std::uint32_t Graine = 1;
  bool EnFichiers = false;
  bool JusquÀVide = false;
  bool AutreBase = false;
  bool Aide = false;
  bool Version = false;
};

/// Arguments without the program's name. Raises ErreurDemande, which names the argument, for anything that can't be
/// meant; --help and --version are taken without looking at the rest.
[[nodiscard]] Options LireOptions(const std::vector<std::string>& Arguments);

/// "silence=0.1,nak=0.05" as rates. Raises ErreurDemande.
[[nodiscard]] TauxDePannes LireTaux(std::string_view Texte);

[[nodiscard]] std::string TexteAide();

}  // namespace Rg80
