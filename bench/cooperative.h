// Cooperatives of any size, in a database file of their own.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "bench/timed_connection.h"
#include "host/cooperative_database.h"
#include "host/machine_platform.h"
#include "platform/console/output.h"
#include "platform/console/windows.h"
#include "platform/loop/descriptor.h"
#include "platform/loop/poll_loop.h"
#include "tests/support/test_folder.h"

namespace Ombrey::Mesures {

/// This machine without an operator: boxes answer themselves, and what they say goes to a file.
class Machine {
 public:
  Machine();
  [[nodiscard]] PlateformeMachine& Plateforme() { return Plateforme_; }
  [[nodiscard]] const std::filesystem::path& Dossier() const { return Dossier_.Chemin(); }
  /// All that the operator would have read.
  [[nodiscard]] std::string Lignes() const;

 private:
  [[nodiscard]] std::filesystem::path FichierLignes() const { return Dossier() / "lignes.txt"; }

  Essais::DossierEssai Dossier_;
  Descripteur Ecran_;
  BouclePoll Boucle_;
  SortieConsole Sortie_;
  FenêtresConsole Fenêtres_;
  PlateformeMachine Plateforme_;
};

/// True when bench/server.sh has started one; OMBREY_BENCH_SERVER is the folder of its socket.
[[nodiscard]] bool AServeurDesMesures();

/// A machine with a cooperative's database.
class Coopérative {
 public:
  /// The sample cooperative, or empty tables; in a file, or in a new database of the server (ServeurDesMesures).
  explicit Coopérative(bool AvecExemple, bool SurServeur = false);
  /// Runs a statement for the numbers 1 to Nombre, bound as ?1, in one transaction.
  void Remplir(const char* Sql, std::int64_t Nombre);
  /// Members numbered from 1, each with one holding, and one appellation of one variety.
  void AjouterMembres(std::int64_t Nombre);
  [[nodiscard]] std::int64_t Compter(const std::string& Table);

  Machine Poste;
  std::shared_ptr<ConnexionChronométrée> Connexion;
  std::shared_ptr<Tarvel::BaseDeDTarvel> Base;

 private:
  [[nodiscard]] std::string NouvelleBase(bool SurServeur) const;
};

}  // namespace Ombrey::Mesures
