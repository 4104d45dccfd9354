// A PostgreSQL server of the test program's own.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <string>
#include <thread>

#include "host/engine.h"
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
    for (const auto Limite = std::chrono::steady_clock::now() + std::chrono::minutes(1); Processus_ > 0;) {
      int État = 0;
      if (std::filesystem::exists(Dossier_.Chemin() / ".s.PGSQL.5432")) break;
      if (waitpid(Processus_, &État, WNOHANG) > 0 || std::chrono::steady_clock::now() > Limite) Processus_ = 0;
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EstInstallé_ = Processus_ > 0;
  }
  ServeurDEssai(const ServeurDEssai&) = delete;
  ServeurDEssai& operator=(const ServeurDEssai&) = delete;
  ~ServeurDEssai() { Arrêter(SIGQUIT); }

  void Démarrer() {
    if ((Processus_ = fork()) == 0) {
      const auto Ici = std::filesystem::read_symlink("/proc/self/exe").parent_path();
      execl((Ici / "server.sh").c_str(), "server.sh", Dossier_.Chemin().c_str(), (Ici / "cluster").c_str(), nullptr);
      _exit(127);
    }
  }
  void Arrêter(int Signal) {
    if (Processus_ <= 0) return;
    Signaler(Signal);
    waitpid(std::exchange(Processus_, 0), nullptr, 0);
  }

  /// SQL as it stands, by the server's own client.
  static void Faire(const std::string& Adresse, const std::string& Sql) {
    EXPECT_EQ(std::system(("psql -q '" + Adresse + "' -c \"" + Sql + "\"").c_str()), 0) << Sql;
  }
  void Geler() { Signaler(SIGSTOP); }
  void Continuer() { Signaler(SIGCONT); }
  [[nodiscard]] std::string Adresse(const std::string& Base) const {
    return "postgresql://tarvel@/" + Base + "?host=" + Dossier_.Chemin().string();
  }
  /// The address of a new, empty database.
  [[nodiscard]] std::string NouvelleBase() {
    const std::string Nom = "essai" + std::to_string(++Bases_);
    for (const auto Limite = std::chrono::steady_clock::now() + std::chrono::minutes(1);;) {
      try {
        Tarvel::OuvrirMoteur(Adresse("postgres"))->ExécuterTout("CREATE DATABASE " + Nom);
        return Adresse(Nom);
      } catch (const std::exception&) {  // it is still starting
        if (std::chrono::steady_clock::now() > Limite) throw;
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
      }
    }
  }

 private:
  /// To the server and all the processes that it has started.
  void Signaler(int Signal) const {
    if (Processus_ <= 0) return;
    const std::string Tous = std::to_string(Processus_) + "/task/" + std::to_string(Processus_) + "/children";
    std::ifstream Enfants("/proc/" + Tous);
    kill(Processus_, Signal);
    for (pid_t Un = 0; Enfants >> Un;) kill(Un, Signal);
  }

  DossierEssai Dossier_;
  pid_t Processus_ = 0;
  bool EstInstallé_ = false;
  int Bases_ = 0;
};

}  // namespace Ombrey::Essais
