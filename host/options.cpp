// The station's command line.
#include "host/options.h"

#include <algorithm>
#include <charconv>
#include <functional>
#include <set>

#include "base/files.h"

namespace Tarvel {
namespace {

constexpr std::chrono::seconds DuréeMax = std::chrono::hours(24 * 365);

std::chrono::seconds LireDurée(const std::string& Texte) {
  int Secondes = 0;
  const char* Fin = Texte.data() + Texte.size();
  const auto [Arrêt, Erreur] = std::from_chars(Texte.data(), Fin, Secondes);
  if (Erreur != std::errc() || Arrêt != Fin || Secondes < 0 || std::chrono::seconds(Secondes) > DuréeMax) {
    throw ErreurOptions("--duree veut un nombre entier de secondes, d'un an au plus, et non «" + Texte + "»");
  }
  return std::chrono::seconds(Secondes);
}

using Poser = void (*)(Options&, const std::string& Valeur);

struct Option {
  const char* Nom;
  const char* Valeur;  ///< how the help calls it; empty: the option takes none
  const char* Aide;
  Tâche Pour;  ///< the task that it goes with, or that it asks for itself
  Poser Faire;
};

const Option Connues[] = {
    {"--base", "F", "base de la coopérative", Tâche::Station,
     [](Options& O, const std::string& V) { O.Base = Ombrey::Chemin(V); }},
    {"--ini", "F", "fichier des réglages", Tâche::Station,
     [](Options& O, const std::string& V) { O.Ini = Ombrey::Chemin(V); }},
    {"--dossier", "D", "dossier de travail (sinon celui de la base)", Tâche::Station,
     [](Options& O, const std::string& V) { O.Dossier = Ombrey::Chemin(V); }},
    {"--greffon", "F", "bibliothèque du greffon (sinon PlgInOmbrey.so, à côté du programme)", Tâche::Station,
     [](Options& O, const std::string& V) { O.Greffon = Ombrey::Chemin(V); }},
    {"--console", "", "travaille sans écran : une ligne par événement, commandes sur l'entrée standard", Tâche::Station,
     [](Options& O, const std::string&) { O.Console = true; }},
    {"--duree", "S", "s'arrête de soi-même après S secondes", Tâche::Station,
     [](Options& O, const std::string& V) { O.Durée = LireDurée(V); }},
    {"--sans-operateur", "", "les boîtes répondent d'elles-mêmes (OK, Annuler)", Tâche::Station,
     [](Options& O, const std::string&) { O.SansOpérateur = true; }},
    {"--creer-base", "FICHIER", "crée une base neuve et s'arrête", Tâche::CréerBase,
     [](Options& O, const std::string& V) { O.Base = Ombrey::Chemin(V); }},
    {"--exemple", "", "met une petite coopérative dans la base neuve", Tâche::CréerBase,
     [](Options& O, const std::string&) { O.Exemple = true; }},
    {"--help", "", "cette aide", Tâche::Aide, [](Options&, const std::string&) {}},
    {"--version", "", "le numéro de version", Tâche::Version, [](Options&, const std::string&) {}},
};

const Option& Trouver(const std::string& Nom) {
  const auto* Trouvée =
      std::find_if(std::begin(Connues), std::end(Connues), [&](const auto& O) { return Nom == O.Nom; });
  if (Trouvée == std::end(Connues)) throw ErreurOptions("argument inconnu : «" + Nom + "»");
  return *Trouvée;
}

void Vérifier(const Options& Lues, const std::set<std::string>& Données) {
  const auto Exiger = [&](const char* Nom) {
    if (!Données.contains(Nom)) throw ErreurOptions(std::string("il manque ") + Nom);
  };
  if (Lues.QueFaire == Tâche::CréerBase) {
    Exiger("--creer-base");
  } else {
    Exiger("--base");
    Exiger("--ini");
  }
  for (const std::string& Nom : Données) {
    if (Trouver(Nom).Pour != Lues.QueFaire) throw ErreurOptions(Nom + " ne va pas avec --creer-base");
  }
}

}  // namespace

Options LireOptions(std::span<const std::string> Arguments) {
  Options Lues;
  std::set<std::string> Données;
  for (std::size_t Rang = 0; Rang < Arguments.size(); ++Rang) {
    const Option& Trouvée = Trouver(Arguments[Rang]);
    if (Trouvée.Pour == Tâche::Aide || Trouvée.Pour == Tâche::Version) {
      Lues.QueFaire = Trouvée.Pour;
      return Lues;
    }
    if (!Données.insert(Trouvée.Nom).second) throw ErreurOptions(std::string(Trouvée.Nom) + " est donné deux fois");
    std::string Valeur;
    if (*Trouvée.Valeur != '\0') {
      if (++Rang < Arguments.size()) Valeur = Arguments[Rang];
      if (Valeur.empty()) throw ErreurOptions(std::string(Trouvée.Nom) + " veut une valeur : " + Trouvée.Valeur);
    }
    if (Trouvée.Pour == Tâche::CréerBase) Lues.QueFaire = Tâche::CréerBase;
    Trouvée.Faire(Lues, Valeur);
  }
  Vérifier(Lues, Données);
  Lues.Base = std::filesystem::absolute(Lues.Base);
  if (!Lues.Ini.empty()) Lues.Ini = std::filesystem::absolute(Lues.Ini);
  Lues.Dossier = Lues.Dossier.empty() ? Lues.Base.parent_path() : std::filesystem::absolute(Lues.Dossier);
  return Lues;
}

std::string TexteAide() {
  std::string Texte =
      "tarvel : station de réception de la coopérative\n"
      "  tarvel --base F --ini F [--dossier D] [--greffon F] [--console] [--duree S] [--sans-operateur]\n"
      "  tarvel --creer-base FICHIER [--exemple]\n\n";
  constexpr std::size_t Marge = 24;
  for (const Option& Une : Connues) {
    std::string Début = std::string("  ") + Une.Nom + " " + Une.Valeur;
    Début.resize(std::max(Marge, Début.size() + 1), ' ');
    Texte += Début + Une.Aide + "\n";
  }
  return Texte + "\nEn console, la commande «aide» donne les autres.\n";
}

std::string TexteVersion() { return "tarvel " OMBREY_VERSION; }

}  // namespace Tarvel
