// The five files for the terminal, beside a bare loop over the same queries with the database's own C interface.
#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "bench/cooperative.h"
#include "bench/memory_meter.h"
#include "platform/database/sqlite/sqlite_connection.h"
#include "platform/database/sqlite/sqlite_dialect.h"
#include "transfer/file_builder.h"

namespace Ombrey::Mesures {
namespace {

constexpr std::int64_t PeuDEnregistrements = 1'000;
constexpr std::int64_t EnregistrementsPleins = EnregistrementsAuPlus;

/// Notes the text of every query that is opened.
class BaseNotée final : public IDatabase {
 public:
  explicit BaseNotée(std::shared_ptr<IDatabase> Base) : Base_(std::move(Base)) {}
  [[nodiscard]] std::string Name() const override { return Base_->Name(); }
  [[nodiscard]] std::unique_ptr<IRecordset> OpenRecordset(const std::string& Sql, TypeRecordset Type) override {
    Requêtes.push_back(Sql);
    return Base_->OpenRecordset(Sql, Type);
  }
  std::vector<std::string> Requêtes;

 private:
  std::shared_ptr<IDatabase> Base_;
};

/// Fills what the data set reads, and no more.
void Remplir(Coopérative& Cave, const std::string& Jeu, std::int64_t Nombre) {
  if (Jeu == "Appelations") {
    Cave.Remplir(
        "INSERT INTO Sélection (IdSélection, Désignation, QuotasSurface)"
        " VALUES (100 + ?1, 'Côteaux rouges ' || ?1, 7500)",
        Nombre);
  } else if (Jeu == "Observations") {
    Cave.Remplir("INSERT INTO Qualité (IdQualité, Désignation) VALUES (?1, 'Légèrement altérée')", Nombre);
  } else {
    Cave.AjouterMembres(Nombre);
  }
  if (Jeu == "Groupements") {
    constexpr std::int64_t Appellations = 8;
    Cave.Remplir("INSERT INTO Sélection (IdSélection, Désignation) VALUES (?1 + 10, 'Côteaux rouges')", Appellations);
    Cave.Connexion->ExécuterTout("UPDATE Métayage SET IdGrp = IdMétayage");
    Cave.Remplir(
        "INSERT INTO QuotasGrp (IdGrp, Sélection, QuotaJournalier)"
        " SELECT ?1, IdSélection, 20000 FROM Sélection WHERE IdSélection BETWEEN '11' AND '16'",
        Nombre);
  }
}

void Compter(benchmark::State& État, const JeuDeDonnées& Jeu) {
  const auto Enregistrements = static_cast<double>(État.iterations() * État.range(1));
  État.counters["per_record"] =
      benchmark::Counter(Enregistrements, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
  État.SetLabel(Jeu.Nom);
}

void Construire(benchmark::State& État, const JeuDeDonnées& Jeu) {
  Coopérative Cave(false);
  Remplir(Cave, Jeu.Nom, État.range(1));
  const auto Base = Cave.Base->BaseDAO();
  std::string Titre;
  const Titreur Titrer = [&Titre](const std::string& Nouveau) { Titre = Nouveau; };
  std::vector<Octets> Lignes;
  std::size_t Sommet = 0;
  for ([[maybe_unused]] auto Tour : État) {
    Lignes = {};
    const MesureMémoire Mémoire;
    static_cast<void>(ConstruireFichier(Jeu, {*Base, {}}, Titrer, Lignes));
    Sommet = Mémoire.Sommet();
  }
  if (!Titre.starts_with(std::to_string(État.range(1)) + " ")) État.SkipWithError("not every record is in the file");
  const auto Taille = static_cast<double>(Lignes.front().Taille());
  Compter(État, Jeu);
  État.counters["file_kB"] = Taille / 1e3;
  État.counters["memory_of_file"] = static_cast<double>(Sommet) / Taille;
}

/// Prepares, runs and reads each query as the C interface does it.
void Parcourir(sqlite3* Base, const std::string& Sql) {
  sqlite3_stmt* Requête = nullptr;
  if (sqlite3_prepare_v2(Base, Sql.data(), static_cast<int>(Sql.size()), &Requête, nullptr) != SQLITE_OK) {
    throw std::runtime_error(sqlite3_errmsg(Base));
  }
  const int Colonnes = sqlite3_column_count(Requête);
  while (sqlite3_step(Requête) == SQLITE_ROW) {
    for (int Rang = 0; Rang < Colonnes; ++Rang) benchmark::DoNotOptimize(sqlite3_column_text(Requête, Rang));
  }
  sqlite3_finalize(Requête);
}

void Dépouiller(benchmark::State& État, const JeuDeDonnées& Jeu) {
  Coopérative Cave(false);
  Remplir(Cave, Jeu.Nom, État.range(1));
  BaseNotée Base(Cave.Base->BaseDAO());
  std::vector<Octets> Lignes;
  static_cast<void>(ConstruireFichier(
      Jeu, {Base, {}}, [](const std::string&) {}, Lignes));
  for (std::string& Sql : Base.Requêtes) Sql = TraduireEnSqlite(Sql);
  const auto Nue = ConnexionSqlite::Ouvrir(*Cave.Connexion->SonFichier());
  for ([[maybe_unused]] auto Tour : État) {
    for (const std::string& Sql : Base.Requêtes) Parcourir(Nue->Brute(), Sql);
  }
  Compter(État, Jeu);
}

void BuildFile(benchmark::State& État) { Construire(État, JeuxDeDonnées()[static_cast<std::size_t>(État.range(0))]); }
void BareLoop(benchmark::State& État) { Dépouiller(État, JeuxDeDonnées()[static_cast<std::size_t>(État.range(0))]); }

void ChaqueJeu(benchmark::internal::Benchmark* Mesure) {
  for (std::size_t Rang = 0; Rang < JeuxDeDonnées().size(); ++Rang) {
    for (const std::int64_t Nombre : {PeuDEnregistrements, EnregistrementsPleins}) {
      Mesure->Args({static_cast<std::int64_t>(Rang), Nombre});
    }
  }
  Mesure->ArgNames({"set", "records"})->Unit(benchmark::kMillisecond);
}

BENCHMARK(BuildFile)->Name("build the file of")->Apply(ChaqueJeu);
BENCHMARK(BareLoop)->Name("bare loop over the queries of")->Apply(ChaqueJeu);

}  // namespace
}  // namespace Ombrey::Mesures
