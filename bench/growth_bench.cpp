// What a load costs in a small cooperative and in a large one: the holding check and the import.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "base/files.h"
#include "bench/cooperative.h"
#include "common/context.h"
#include "import/holding_checks.h"
#include "import/import_staging.h"

namespace Ombrey::Mesures {
namespace {

using Horloge = std::chrono::steady_clock;

constexpr std::int64_t Petite = 1'000;
constexpr std::int64_t Grande = 50'000;

class CanalMuet final : public ICanalOpérateur {
 public:
  void AjouterMessage(const std::string&, bool) override { ++Nombre; }
  void AjouterErreur(const std::string&) override { ++Nombre; }
  void Rafraîchir() override {}
  [[nodiscard]] bool EstVisible() const override { return false; }
  void Afficher() override {}
  int Nombre = 0;
};

/// A cooperative with the rooms of the plug-in that a load passes through. Codes are taken all over the table.
class Atelier {
 public:
  explicit Atelier(std::int64_t Membres) : Membres_(Membres), Cave_(false), État_(Cave_.Poste.Plateforme(), Canal_) {
    Cave_.AjouterMembres(Membres);
    // Groups of fifty holdings, each with a quota of the day.
    Cave_.Connexion->ExécuterTout(
        "UPDATE Métayage SET IdGrp = CAST(1 + CAST(IdMétayage AS INTEGER) / 50 AS TEXT);"
        "INSERT INTO QuotasGrp (IdGrp, Sélection, QuotaJournalier) SELECT DISTINCT IdGrp, '05', 20000 FROM Métayage");
    État_.BaseDeD = Cave_.Base;
  }

  /// True when the member's own holding was found and nothing was created.
  bool Vérifier() {
    const std::string Attendu = std::to_string(MembreSuivant());
    const std::string Code = std::string(6 - std::min<std::size_t>(Attendu.size(), 6), '0') + Attendu;
    std::string Propriétaire = Code;
    std::string Récoltant = Code;
    std::string Part = "066.6667";
    std::string Groupe = "001";
    return Exploitations_.VérifierExploitation(Propriétaire, Récoltant, Part, Groupe) == Attendu && Canal_.Nombre == 0;
  }

  void PréparerImport() {
    std::vector<std::string> Champs = {std::to_string(++Chargement_),
                                       "22/11/2026 08:00",
                                       "22/11/2026 08:10",
                                       std::to_string(MembreSuivant()),
                                       "05",
                                       "01",
                                       "12,5",
                                       "1",
                                       "4210",
                                       "7",
                                       ""};
    EcrireFichier(Fichier_, MiseEnForme_.MiseEnFormePourImport(Champs) + "\r\n");
  }
  bool Importer() {
    bool Drapeau = false;
    return Cave_.Base->EtatBdD()->TableImporter(TitreImport, TexteChemin(Fichier_), Drapeau);
  }
  /// What the reply asks of the host: the holding's rest, the group's sum and the group's rest.
  bool Chiffrer() {
    const std::int64_t Membre = MembreSuivant();
    std::string Exploitation = std::to_string(Membre);
    std::string Groupe = std::to_string(1 + Membre / 50);
    std::string Appellation = "05";
    std::string Tous;
    IBaseDeD& Base = *Cave_.Base;
    const auto Reste = Base.CalculerRestantExploit(Exploitation, Tous, Appellation, Tous, {}, {});
    const auto Cumul = Base.CalculerCumulGroupe(Groupe, "", "", Appellation);
    const auto ResteGroupe = Base.CalculerRestantGroupe(Groupe, Tous, Appellation, Tous, {}, {});
    return Reste > 0 && Cumul == 0 && ResteGroupe == 20000;
  }

 private:
  std::int64_t MembreSuivant() {
    constexpr std::int64_t Pas = 7919;
    Membre_ = (Membre_ + Pas) % Membres_;
    return Membre_ + 1;
  }

  std::int64_t Membres_;
  Coopérative Cave_;
  CanalMuet Canal_;
  ÉtatPartagé État_;
  VérificationExploitation Exploitations_{État_};
  MiseEnFormeImport MiseEnForme_{État_};
  std::filesystem::path Fichier_ = Cave_.Poste.Dossier() / "import.txt";
  std::int64_t Membre_ = 0;
  std::int64_t Chargement_ = 0;
};

double Médiane(std::vector<double>& Durées) {
  const auto Milieu = Durées.begin() + static_cast<std::ptrdiff_t>(Durées.size() / 2);
  std::nth_element(Durées.begin(), Milieu, Durées.end());
  return *Milieu;
}

/// Runs the same work on a small and on a large cooperative in turns, so that what else the machine does touches both.
void Comparer(benchmark::State& État, const std::function<void(Atelier&)>& Préparer,
              const std::function<bool(Atelier&)>& Faire) {
  Atelier Ateliers[] = {Atelier(Petite), Atelier(Grande)};
  std::vector<double> Durées[2];
  for ([[maybe_unused]] auto Tour : État) {
    double Ensemble = 0;
    for (std::size_t Rang = 0; Rang < 2; ++Rang) {
      Préparer(Ateliers[Rang]);
      const auto Début = Horloge::now();
      const bool Réussi = Faire(Ateliers[Rang]);
      Durées[Rang].push_back(std::chrono::duration<double, std::micro>(Horloge::now() - Début).count());
      Ensemble += Durées[Rang].back();
      if (!Réussi) État.SkipWithError("the work failed");
    }
    État.SetIterationTime(Ensemble / 1e6);
  }
  const double Courte = Médiane(Durées[0]);
  const double Longue = Médiane(Durées[1]);
  État.counters["at_1000_us"] = Courte;
  État.counters["at_50000_us"] = Longue;
  État.counters["factor"] = Longue / Courte;
}

void HoldingCheck(benchmark::State& État) {
  Comparer(
      État, [](Atelier&) {}, [](Atelier& A) { return A.Vérifier(); });
}
void ImportOfOneLoad(benchmark::State& État) {
  Comparer(
      État, [](Atelier& A) { A.PréparerImport(); }, [](Atelier& A) { return A.Importer(); });
}

void FiguresOfOneLoad(benchmark::State& État) {
  Comparer(
      État, [](Atelier&) {}, [](Atelier& A) { return A.Chiffrer(); });
}

BENCHMARK(HoldingCheck)
    ->Name("holding check, 1,000 and 50,000 members")
    ->Iterations(5000)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(ImportOfOneLoad)
    ->Name("import of one load, 1,000 and 50,000 members")
    ->Iterations(500)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(FiguresOfOneLoad)
    ->Name("figures of one load, 1,000 and 50,000 members")
    ->Iterations(500)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace Ombrey::Mesures
