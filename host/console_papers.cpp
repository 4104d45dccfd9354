// The day on paper and in files, from the console.
#include "host/console_papers.h"

#include <algorithm>
#include <utility>

#include "base/failures.h"
#include "base/text_helpers.h"
#include "host/load_report.h"
#include "platform/loop/signals.h"

namespace Tarvel {
namespace {

using Ombrey::QuandPermise;

/// This program, wherever it stands.
constexpr const char* CeProgramme = "/proc/self/exe";
const std::string Plainte = "tarvel : ";  ///< stands ahead of what the program says on its error stream

struct Papier {
  const char *Nom, *Argument, *Aide, *Option;
  bool VeutNuméro;
  std::size_t Jours;  ///< how many days may stand behind the file
};

constexpr Papier Papiers[] = {
    {"bordereau", "FICHIER [JOUR]", "écrit le bordereau de la journée en PDF", "--bordereau", false, 1},
    {"ticket", "N FICHIER [JOUR]", "écrit le ticket du chargement n° N en PDF", "--ticket", true, 1},
    {"csv", "FICHIER [DU [AU]]", "écrit les chargements en CSV, tous ou ceux de ces jours", "--exporter-csv", false, 2},
    {"copie", "FICHIER", "copie la base entière dans un fichier neuf", "--sauvegarder", false, 0},
};

/// The last word, taken away, when it is a day; empty otherwise.
std::string JourFinal(std::string& Tapé) {
  const std::size_t Blanc = Tapé.find_last_of(Ombrey::Blancs);
  if (Blanc == std::string::npos || !LireJour(Tapé.substr(Blanc + 1))) return "";
  const std::string Jour = Tapé.substr(Blanc + 1);
  Tapé = Ombrey::SansBlancs(Tapé.substr(0, Blanc));
  return Jour;
}

/// The command line that a typed command stands for. A file's name may have blanks; the days come behind it.
std::vector<std::string> MotsPour(const Papier& Lequel, std::string Tapé) {
  std::vector<std::string> Mots{Lequel.Option};
  if (Lequel.VeutNuméro) {
    const std::size_t Fin = std::min(Tapé.find_first_of(Ombrey::Blancs), Tapé.size());
    Mots.push_back(Tapé.substr(0, Fin));
    Tapé = Ombrey::SansBlancs(Tapé.substr(Fin));
  }
  std::vector<std::string> Jours;
  while (Jours.size() < Lequel.Jours) {
    const std::string Jour = JourFinal(Tapé);
    if (Jour.empty()) break;
    Jours.insert(Jours.begin(), Jour);
  }
  if (Tapé.empty())
    throw Ombrey::ErreurExécution(std::string("la commande s'écrit « ") + Lequel.Nom + " " + Lequel.Argument + " ».");
  Mots.push_back(Tapé);
  for (std::size_t Rang = 0; Rang < Jours.size(); ++Rang)
    Mots.insert(Mots.end(), {Rang == 0 ? "--du" : "--au", Jours[Rang]});
  return Mots;
}

}  // namespace

PapiersConsole::~PapiersConsole() {
  if (Programme_ && Ombrey::SignauxFin::EstDemandée()) Abandonner();
  Ombrey::ErreurEnAttente Ignorée;
  for (Programme_.reset(); !File_.empty(); Programme_.reset()) Ignorer(Ignorée, [this] { Lancer(); });
}

void PapiersConsole::Offrir(Ombrey::CommandesConsole& Commandes) {
  for (const Papier& Un : Papiers)
    Commandes.Ajouter({Un.Nom, Un.Argument, Un.Aide, QuandPermise::EntreDeux, [this, &Un](const std::string& Tapé) {
                         File_.push_back({Un.Nom, MotsPour(Un, Tapé)});
                         if (!Programme_) Lancer();
                       }});
  Commandes.Ajouter(
      {"abandonner", "", "arrête ces travaux", QuandPermise::Toujours, [this](const std::string&) { Abandonner(); }});
}

void PapiersConsole::Lancer() {
  Travail Un = std::move(File_.front());
  File_.pop_front();
  Un.Mots.insert(Un.Mots.begin(), {CeProgramme, "--base", Options_.Base});
  const auto Dire = [this, Nom = Un.Nom](const std::string& Ligne) {
    Sortie_.Ligne(Nom + " : " + Ligne.substr(Ligne.starts_with(Plainte) ? Plainte.size() : 0));
  };
  Programme_ = std::make_unique<Ombrey::ProgrammeFils>(Boucle_, std::move(Un.Mots), Dire, [this] {
    Programme_.reset();
    if (!File_.empty()) Lancer();
  });
}

void PapiersConsole::Abandonner() {
  if (!Programme_) throw Ombrey::ErreurExécution("il n'y a rien à abandonner.");
  File_.clear();
  Programme_->Arrêter();
}

}  // namespace Tarvel
