// The settings file: its bytes up to a form feed, then sections, keys and values to write, each ended by a line feed.
#include <algorithm>
#include <sstream>
#include <utility>
#include <vector>

#include "base/failures.h"
#include "platform/system/ini_text.h"
#include "tests/fuzz/input.h"

namespace Ombrey::Essais {
/// Names that a file might hold, found without the product's reader.
std::vector<std::pair<std::string, std::string>> Noms(const std::string& Bruts) {
  std::vector<std::pair<std::string, std::string>> Tous;
  std::istringstream Flux(Bruts);
  std::string Section;
  for (std::string Ligne; std::getline(Flux, Ligne);) {
    const std::size_t Ouvre = Ligne.find('['), Ferme = Ligne.find(']'), Égal = Ligne.find('=');
    if (Ouvre < Ferme && Ferme != Ligne.npos) Section = Ligne.substr(Ouvre + 1, Ferme - Ouvre - 1);
    if (Égal != Ligne.npos) Tous.emplace_back(Section, Ligne.substr(0, Égal));
  }
  return Tous;
}

/// One change of the bytes, within one line or of whole lines.
void ComparerOctets(const std::string& Avant, const std::string& Après) {
  const auto Change = std::mismatch(Avant.begin(), Avant.end(), Après.begin(), Après.end()).first;
  const auto Devant = Change - Avant.begin();
  const auto Pareil =
      std::mismatch(Avant.rbegin(), Avant.rend() - Devant, Après.rbegin(), Après.rend() - Devant).first.base();
  Exiger(std::count(Change, Pareil, '\n') == 0, "no line goes");
}

void EcrireUnRéglage(std::string& Bruts, const std::string& Section, const std::string& Clé,
                     const std::string& Valeur) {
  const TexteIni Avant(Bruts);
  TexteIni Texte(Bruts);
  try {
    Texte.Ecrire(Section, Clé, Valeur);
  } catch (const ErreurExécution&) {
    Exiger(Texte.Bruts() == Bruts, "what can't be written changes nothing");
    return;
  }
  Exiger(Texte.Lire(Section, Clé) == Valeur, "what was written is read");
  ComparerOctets(Bruts, Texte.Bruts());
  TexteIni Relu(Texte.Bruts());
  Exiger(Relu.Lire(Section, Clé) == Valeur, "and read again from the file");
  for (const auto& [S, C] : Noms(Bruts)) {
    const auto Gardée = Relu.Lire(S, C);
    Exiger(Gardée == Avant.Lire(S, C) || Gardée == Valeur, "no other key changes");
  }
  Relu.Ecrire(Section, Clé, Valeur);
  Exiger(Relu.Bruts() == Texte.Bruts(), "writing it again changes nothing");
  Bruts = Texte.Bruts();
}

void Essayer(Entrée E) {
  std::string Bruts = E.Jusque('\f');
  try {
    const TexteIni Texte(Bruts);
    for (const auto& [Section, Clé] : Noms(Bruts)) static_cast<void>(Texte.Lire(Section, Clé));
  } catch (const ErreurExécution&) {
    return;  // another encoding, refused
  }
  while (!E.Reste.empty()) {
    const std::string Section = E.Jusque('\n');
    const std::string Clé = E.Jusque('\n');
    EcrireUnRéglage(Bruts, Section, Clé, E.Jusque('\n'));
  }
}

}  // namespace Ombrey::Essais
