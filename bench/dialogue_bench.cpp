// One whole dialogue on a pseudo-terminal: poll, frame, import with its commit on the disk, acknowledgement, figures.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <stdexcept>
#include <string>
#include <thread>

#include "base/regional_forms.h"
#include "bench/cooperative.h"
#include "core/plugin.h"
#include "tests/support/program.h"

namespace Ombrey::Mesures {
namespace {

using namespace std::chrono_literals;
using Horloge = std::chrono::steady_clock;

/// Request 2, its answer 2, frame 55 + 4, acknowledgement 1; announcement 2, its answer 2, reply 24 + 4,
/// acknowledgement 1, EOT 1.
constexpr int OctetsDuDialogue = 2 + 2 + (55 + 4) + 1 + 2 + 2 + (24 + 4) + 1 + 1;
constexpr int BitsParOctet = 10;
constexpr int DialoguesDAvance = 2;

/// The terminal's stand-in at the far end of a pseudo-terminal. Nobody reads what it says.
class TerminalEnfant {
 public:
  TerminalEnfant(const std::filesystem::path& Dossier, const std::string& Options)
      : Lien_(Dossier / "rg80"),
        Rg80_("exec " RG80 " --lien '" + Lien_.string() + "' --graine 1 " + Options + " >/dev/null") {
    if (!Essais::Bientôt([this] { return std::filesystem::exists(Lien_); }, 2s))
      throw std::runtime_error("no terminal: " RG80);
  }
  [[nodiscard]] std::string Port() const { return Lien_.string(); }

 private:
  std::filesystem::path Lien_;
  Essais::Programme Rg80_;
};

void EcrireRéglages(const std::filesystem::path& Fichier, const std::string& Port, int Bauds) {
  std::ofstream(Fichier) << "[PlugInOmbrey]\nPort=" << Port << "\nBauds=" << Bauds
                         << "\nParité=aucune\nBitsStop=1\nTailleMots=8\nPériode interrogation=3600000\n";
}

/// A season of a thousand loads for each site, all of the appellation that is delivered below.
void RemplirSaison(Coopérative& Cave, std::int64_t Sites) {
  if (Sites == 0) return;
  const SansHâte Patiente(*Cave.Connexion);
  const int Année = Cave.Poste.Plateforme().Système().Maintenant().Année;
  const std::string Colonnes = "NoChargement, ReçuNoChargement, DateCh, Métayage, Sélection, Qualité, Degré, Masse)";
  Cave.Remplir(("INSERT INTO Chargement (CodeSite, " + Colonnes + " VALUES ('S1', ?1, ?1, " +
                TexteNombre(NuméroDeJour(DateHeure{Année, 1, 1, 0, 0, 0}), {'.'}) +
                " + ?1 * 0.3, CAST(1 + ?1 * 7 % 15 AS TEXT), '05', '01', 12.5, 1000 + ?1 % 900)")
                   .c_str(),
               1'000);
  for (std::int64_t Site = 2; Site <= Sites; ++Site)
    Cave.Connexion->Exécuter(
        "INSERT INTO Chargement (CodeSite, " + Colonnes + " SELECT 'S" + std::to_string(Site) +
        "', NoChargement, NoChargement, DateCh, Métayage, Sélection, Qualité, Degré, Masse FROM Chargement WHERE"
        " CodeSite = 'S1'");
  // As a server does by itself within minutes.
  if (!Cave.Connexion->SonFichier() &&
      std::system(("psql -q '" + Cave.Connexion->Nom() + "' -c 'VACUUM ANALYZE'").c_str()) != 0)
    throw std::runtime_error("no VACUUM");
}

/// Loads of one holding of a group, of the same appellation.
std::filesystem::path EcrireChargements(Machine& Poste, std::int64_t Nombre) {
  const auto Fichier = Poste.Dossier() / "chargements.txt";
  const std::string Jour = TexteFormaté(Poste.Plateforme().Système().Maintenant(), "jjmmaaaa").erase(4, 2);
  std::ofstream Sortie(Fichier);
  for (std::int64_t Rang = 1; Rang <= Nombre; ++Rang)
    Sortie << std::setfill('0') << std::setw(4) << Rang << Jour << "08000830000123000456007100000005011252"
           << std::setw(4) << 1000 + Rang % 900 << "007\n";
  return Fichier;
}

void Dialogues(benchmark::State& État, int Bauds, const std::string& OptionsTerminal, bool SurServeur = false,
               std::int64_t MilliersDeLaSaison = 0) {
  if (SurServeur && !AServeurDesMesures()) return État.SkipWithError("bench/server.sh measures this");
  Coopérative Cave(true, SurServeur);
  RemplirSaison(Cave, MilliersDeLaSaison);
  const auto Chargements = EcrireChargements(Cave.Poste, État.max_iterations + DialoguesDAvance);
  const TerminalEnfant Rg80(Cave.Poste.Dossier(), "--chargements '" + Chargements.string() + "' " + OptionsTerminal);
  const auto Ini = Cave.Poste.Dossier() / "tarvel.ini";
  EcrireRéglages(Ini, Rg80.Port(), Bauds);

  const auto Greffon = PlugIn::Créer(Cave.Poste.Plateforme());
  Greffon->IPlugInTarvel_FixerFichierTarvelIni(Ini.string());
  Greffon->IPlugInTarvel_FixerBaseDeD(Cave.Base);
  static_cast<void>(Greffon->IPlugInTarvel_Initialiser(nullptr));
  Greffon->IPlugInTarvel_Afficher();

  // A line that was just taken over is calm behind a silence between two loads.
  for (int Rang = 0; Rang < DialoguesDAvance; ++Rang) {
    Greffon->Retard_FinTempo("");
    std::this_thread::sleep_for(Rang == 0 ? DélaiRéponse + 100ms : 0ms);
  }
  Cave.Connexion->RangerJournal();  // as the station does at rest
  const auto Avant = Cave.Connexion->Passée();
  const auto Début = Horloge::now();
  for ([[maybe_unused]] auto Tour : État) Greffon->Retard_FinTempo("");
  const std::chrono::duration<double> Durée = Horloge::now() - Début;
  static_cast<void>(Greffon->IPlugInTarvel_Terminer());

  const auto Nombre = static_cast<double>(État.iterations());
  const double Fil = static_cast<double>(OctetsDuDialogue * BitsParOctet) / Bauds;
  État.counters["wire_ms"] = Fil * 1e3;
  État.counters["of_wire"] = Durée.count() / Nombre / Fil;
  État.counters["base_ms"] = (Cave.Connexion->Passée() - Avant).count() / Nombre * 1e3;
  if (Cave.Compter("Chargement") != État.iterations() + DialoguesDAvance + 1'000 * MilliersDeLaSaison)
    État.SkipWithError("not every dialogue brought its load in");
  if (Cave.Poste.Lignes().find("boîte «") != std::string::npos) État.SkipWithError("a box came up");
}

void WholeDialogueAtFullSpeed(benchmark::State& État) { Dialogues(État, static_cast<int>(État.range(0)), ""); }
void WholeDialogueAtLinePace(benchmark::State& État) {
  const auto Bauds = static_cast<int>(État.range(0));
  Dialogues(État, Bauds, "--cadence " + std::to_string(Bauds));
}

void DialogueInASeason(benchmark::State& État) {
  Dialogues(État, 9'600, "--cadence 9600", État.range(0) != 0, État.range(1));
}

BENCHMARK(DialogueInASeason)
    ->Name("dialogue, on a server and with a season of thousands of loads")
    ->ArgsProduct({{0, 1}, {0, 300}})
    ->Iterations(50)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(WholeDialogueAtFullSpeed)
    ->Name("whole dialogue, terminal at full speed, port at")
    ->Arg(9600)
    ->Arg(19200)
    ->Iterations(100)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(WholeDialogueAtLinePace)
    ->Name("whole dialogue, terminal at line pace, port at")
    ->Arg(9600)
    ->Iterations(50)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

}  // namespace
}  // namespace Ombrey::Mesures
