// The day on paper and in files, from the console.
#include "host/console_papers.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <vector>

#include "base/failures.h"
#include "base/text_helpers.h"
#include "host/load_report.h"

namespace Tarvel {
namespace {

using Ombrey::QuandPermise;

struct Papier {
  const char *Nom, *Argument, *Aide, *Option;
  bool VeutNuméro, VeutFichier;
  std::size_t Jours;  ///< how many days may stand behind
};

constexpr Papier Papiers[] = {
    {"bordereau", "FICHIER [JOUR]", "écrit le bordereau de la journée en PDF", "--bordereau", false, true, 1},
    {"ticket", "N [HH:MM] FICHIER [JOUR]", "écrit le ticket du chargement n° N de ce site en PDF", "--ticket", true,
     true, 1},
    {"imprimer-bordereau", "[JOUR]", "imprime le bordereau de la journée", "--imprimer-bordereau", false, false, 1},
    {"imprimer-ticket", "N [HH:MM] [JOUR]", "imprime le ticket du chargement n° N de ce site", "--imprimer-ticket",
     true, false, 1},
    {"csv", "FICHIER [DU [AU]]", "écrit les chargements en CSV, tous ou ceux de ces jours", "--exporter-csv", false,
     true, 2},
    {"copie", "FICHIER", "copie la base entière dans un fichier neuf", "--sauvegarder", false, true, 0},
};

/// The last word, taken away, when it is a day; empty otherwise.
std::string JourFinal(std::string& Tapé) {
  const std::size_t Blanc = Tapé.find_last_of(Ombrey::Blancs);
  if (Blanc == std::string::npos || !LireJour(Tapé.substr(Blanc + 1))) return "";
  const std::string Jour = Tapé.substr(Blanc + 1);
  Tapé = Ombrey::SansBlancs(Tapé.substr(0, Blanc));
  return Jour;
}

/// The first word, taken away.
std::string PremierMot(std::string& Tapé) {
  const std::size_t Fin = std::min(Tapé.find_first_of(Ombrey::Blancs), Tapé.size());
  const std::string Mot = Tapé.substr(0, Fin);
  Tapé = Ombrey::SansBlancs(Tapé.substr(Fin));
  return Mot;
}

bool EstHeure(const std::string& Mot) {
  constexpr const char* Chiffres = "0123456789";
  return Mot.size() == 5 && Mot.find_first_not_of(Chiffres) == 2 && Mot[2] == ':' &&
         Mot.find_first_not_of(Chiffres, 3) == std::string::npos;
}

/// The command line that a typed command stands for. A file's name may have blanks; the days come behind it.
std::vector<std::string> MotsPour(const Papier& Lequel, std::string Tapé, const std::function<std::string()>& Site) {
  std::vector<std::string> Mots{Lequel.Option};
  if (Lequel.VeutNuméro) {
    Mots.push_back(PremierMot(Tapé));
    Mots.insert(Mots.begin(), {"--site", Site()});  // each site counts from 1
    std::string Reste = Tapé;
    if (const std::string Heure = PremierMot(Reste); EstHeure(Heure)) {
      Mots.insert(Mots.begin(), {"--heure", Heure});
      Tapé = Reste;
    }
  }
  if (!Lequel.VeutFichier) Tapé.insert(0, " ");
  std::vector<std::string> Jours;
  while (Jours.size() < Lequel.Jours) {
    const std::string Jour = JourFinal(Tapé);
    if (Jour.empty()) break;
    Jours.insert(Jours.begin(), Jour);
  }
  Tapé = Ombrey::SansBlancs(Tapé);
  if (Mots.back().empty() || Tapé.empty() == Lequel.VeutFichier)
    throw Ombrey::ErreurExécution(Ombrey::CommandeMalÉcrite(std::string(Lequel.Nom) + " " + Lequel.Argument));
  if (Lequel.VeutFichier) Mots.push_back(Tapé);
  for (std::size_t Rang = 0; Rang < Jours.size(); ++Rang)
    Mots.insert(Mots.end(), {Rang == 0 ? "--du" : "--au", Jours[Rang]});
  return Mots;
}

}  // namespace

void PapiersConsole::Offrir(Ombrey::CommandesConsole& Commandes, const std::function<std::string()>& Site) {
  for (const Papier& Un : Papiers)
    Commandes.Ajouter(
        {Un.Nom, Un.Argument, Un.Aide, QuandPermise::EntreDeux, [this, &Un, Site](const std::string& Tapé) {
           const auto [Dire, Achever] = Paroles(Un.Nom);
           Travaux_.Confier(MotsPour(Un, Tapé, Site), Dire, Achever);
         }});
  Commandes.Ajouter({"diagnostic", "", "examine réglages, port, base et dossier", QuandPermise::EntreDeux,
                     [this](const std::string&) {
                       const auto [Dire, Achever] = Paroles("diagnostic");
                       Travaux_.Diagnostiquer(Dire, Achever);
                     }});
  Commandes.Ajouter({"abandonner", "", "arrête ces travaux", QuandPermise::Toujours, [this](const std::string&) {
                       if (!Travaux_.Abandonner()) throw Ombrey::ErreurExécution("il n'y a rien à abandonner.");
                     }});
}

std::pair<TravauxÀCôté::Dire, TravauxÀCôté::Achèvement> PapiersConsole::Paroles(const std::string& Nom) {
  const auto EstDit = std::make_shared<bool>(false);
  return {[=, this](const std::string& Ligne) {
            *EstDit = true;
            Sortie_.Ligne(Nom + " : " + Ligne);
          },
          [=, this](bool EstRéussi) {
            if (!EstRéussi && !*EstDit) Sortie_.Ligne(Nom + " : arrêté, rien n'est gardé");
          }};
}

}  // namespace Tarvel
