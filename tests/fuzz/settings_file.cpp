// The settings file: its bytes up to a form feed, then sections, keys and values to write, each ended by a line feed.
#include <fstream>
#include <utility>
#include <vector>

#include "base/failures.h"
#include "tests/fuzz/input.h"
#include "platform/system/ini_text.h"
#include "platform/system/settings_files.h"
#include "tests/support/test_folder.h"

namespace Ombrey::Essais {
namespace {

/// Names that a file might hold, found without the product's reader.
std::vector<std::pair<std::string, std::string>> Noms(const std::string& Bruts) {
  std::vector<std::pair<std::string, std::string>> Tous;
  std::string Section;
  for (std::size_t Début = 0; Début < Bruts.size();) {
    const std::size_t Fin = std::min(Bruts.find('\n', Début), Bruts.size());
    const std::string Ligne = Bruts.substr(Début, Fin - Début);
    Début = Fin + 1;
    const std::size_t Ouvre = Ligne.find('[');
    const std::size_t Ferme = Ligne.find(']');
    const std::size_t Égal = Ligne.find('=');
    if (Ouvre < Ferme && Ferme != Ligne.npos) Section = Ligne.substr(Ouvre + 1, Ferme - Ouvre - 1);
    if (Égal != Ligne.npos) Tous.emplace_back(Section, Ligne.substr(0, Égal));
  }
  return Tous;
}

/// One change of the bytes, within one line or of whole lines.
void ComparerOctets(const std::string& Avant, const std::string& Après) {
  std::size_t Devant = 0;
  while (Devant < std::min(Avant.size(), Après.size()) && Avant[Devant] == Après[Devant]) ++Devant;
  std::size_t Derrière = 0;
  while (Derrière < std::min(Avant.size(), Après.size()) - Devant &&
         Avant[Avant.size() - 1 - Derrière] == Après[Après.size() - 1 - Derrière])
    ++Derrière;
  const std::string Perdu = Avant.substr(Devant, Avant.size() - Devant - Derrière);
  Exiger(Perdu.find('\n') == Perdu.npos, "no line goes");
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
  const TexteIni Relu(Texte.Bruts());
  Exiger(Relu.Lire(Section, Clé) == Valeur, "and read again from the file");
  for (const auto& [S, C] : Noms(Bruts)) {
    const auto Gardée = Relu.Lire(S, C);
    Exiger(Gardée == Avant.Lire(S, C) || Gardée == Valeur, "no other key changes");
  }
  TexteIni Encore = Relu;
  Encore.Ecrire(Section, Clé, Valeur);
  Exiger(Encore.Bruts() == Texte.Bruts(), "writing it again changes nothing");
  Bruts = Texte.Bruts();
}

/// The same through a file of the disk.
void EcrireDansUnFichier(const std::string& Bruts, const std::string& Section, const std::string& Clé,
                         const std::string& Valeur) {
  static const DossierEssai Dossier;
  const std::string Fichier = Dossier.Chemin() / "tarvel.ini";
  std::ofstream(Fichier, std::ios::binary) << Bruts;
  LecteurIniFichier Lecteur;
  Lecteur.FixerFichier(Fichier);
  Lecteur.FixerSection(Section);
  Lecteur.FixerClé(Clé);
  Lecteur.FixerValeur(Valeur);
  bool Fait = false;
  try {
    Lecteur.EcrireValeur(Fait);
  } catch (const ErreurExécution&) {
    return;
  }
  Lecteur.FixerValeur("");
  Lecteur.LireValeur(Fait);
  Exiger(Fait && Lecteur.Valeur() == Valeur, "the value comes back from the disk");
}

}  // namespace
}  // namespace Ombrey::Essais

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Données, std::size_t Taille) {
  using namespace Ombrey;
  Essais::Entrée E(Données, Taille);
  std::string Bruts = E.Jusque('\f');
  try {
    const TexteIni Texte(Bruts);
    for (const auto& [Section, Clé] : Essais::Noms(Bruts)) static_cast<void>(Texte.Lire(Section, Clé));
  } catch (const ErreurExécution&) {
    return 0;  // another encoding, refused
  }
  while (!E.Reste.empty()) {
    const std::string Section = E.Jusque('\n');
    const std::string Clé = E.Jusque('\n');
    const std::string Valeur = E.Jusque('\n');
    if (E.Reste.empty()) Essais::EcrireDansUnFichier(Bruts, Section, Clé, Valeur);
    Essais::EcrireUnRéglage(Bruts, Section, Clé, Valeur);
  }
  return 0;
}
