// A PostgreSQL server of the test program's own.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>

#include "host/engine.h"
#include "tests/support/program.h"
#include "tests/support/test_folder.h"

namespace Ombrey::Essais {

class ServeurDEssai {
 public:
  /// Started at the first call; null where PostgreSQL isn't installed.
  static ServeurDEssai* Lui() {
    static const auto Un = std::make_unique<ServeurDEssai>();
    return Un->EstInstallé_ ? Un.get() : nullptr;
  }
  ServeurDEssai() {
    Démarrer();
    const auto EstPrêt = [this] { return std::filesystem::exists(Dossier_.Chemin() / ".s.PGSQL.5432"); };
    Bientôt([&] { return EstPrêt() || Serveur_->Fin(0ms) != Programme::EnCours; }, 1min);
    EstInstallé_ = EstPrêt();
  }
  ServeurDEssai(const ServeurDEssai&) = delete;
  ServeurDEssai& operator=(const ServeurDEssai&) = delete;
  ~ServeurDEssai() { Arrêter(SIGQUIT); }

  void Démarrer() {
    const auto Ici = std::filesystem::read_symlink("/proc/self/exe").parent_path().string();
    Serveur_.emplace("exec '" + Ici + "/server.sh' " + Dossier_.Chemin().string() + " '" + Ici + "/cluster'");
  }
  void Arrêter(int Signal) {
    if (!Serveur_) return;
    Signaler(Signal);
    Serveur_->Fin(1min);
    Serveur_.reset();
  }

  /// SQL as it stands, by the server's own client.
  static void Faire(const std::string& Adresse, const std::string& Sql) {
    EXPECT_EQ(std::system(("psql -q '" + Adresse + "' -c \"" + Sql + "\"").c_str()), 0) << Sql;
  }
  void Geler() { Signaler(SIGSTOP); }
  /// Links that there are go on; a new one is taken, and nothing said to it.
  void GelerPorte() const { Serveur_->Signaler(SIGSTOP); }
  void Continuer() { Signaler(SIGCONT); }
  [[nodiscard]] std::string Adresse(const std::string& Base) const {
    return "postgresql://tarvel@/" + Base + "?host=" + Dossier_.Chemin().string();
  }
  /// The address of a new, empty database; waits for a server that is still starting.
  [[nodiscard]] std::string NouvelleBase() {
    const std::string Nom = "essai" + std::to_string(++Bases_);
    ErreurEnAttente Refus;
    const auto Créer = [&] { Tarvel::OuvrirMoteur(Adresse("postgres"))->ExécuterTout("CREATE DATABASE " + Nom); };
    EXPECT_TRUE(Bientôt([&] { return Garder(Refus, Créer); }, 1min)) << Refus.Texte();
    return Adresse(Nom);
  }

 private:
  /// To the server and all the processes that it has started.
  void Signaler(int Signal) const {
    std::ifstream Enfants("/proc/" + Serveur_->Numéro() + "/task/" + Serveur_->Numéro() + "/children");
    Serveur_->Signaler(Signal);
    for (pid_t Un = 0; Enfants >> Un;) kill(Un, Signal);
  }

  DossierEssai Dossier_;
  std::optional<Programme> Serveur_;
  bool EstInstallé_ = false;
  int Bases_ = 0;
};

}  // namespace Ombrey::Essais
