// Journal lines, announcements and received files.
#include "terminal/recorder.h"

#include <time.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <iostream>
#include <system_error>

#include "terminal/frame.h"
#include "terminal/loads.h"

namespace Rg80 {

namespace {

namespace fs = std::filesystem;

// The time of day on the machine's clock, to the millisecond.
std::string HeureMs() {
  const auto Maintenant = std::chrono::system_clock::now();
  const std::time_t Secondes = std::chrono::system_clock::to_time_t(Maintenant);
  const auto Millisecondes =
      std::chrono::duration_cast<std::chrono::milliseconds>(Maintenant.time_since_epoch()).count() % 1000;
  std::tm Local{};
  localtime_r(&Secondes, &Local);
  std::array<char, 32> Texte{};
  std::snprintf(Texte.data(), Texte.size(), "%02d:%02d:%02d.%03d", Local.tm_hour, Local.tm_min, Local.tm_sec,
                static_cast<int>(Millisecondes));
  return Texte.data();
}

}  // namespace

Greffier::Greffier(const std::string& Journal, const std::string& Sortie) : Sortie_(Sortie) {
  if (!Journal.empty()) {
    Journal_.open(Journal, std::ios::binary | std::ios::trunc);
    if (!Journal_) throw ErreurDemande("Journal " + Journal + " : écriture impossible.");
  }
  if (Sortie.empty()) return;
  std::error_code Erreur;
  if (fs::create_directories(Sortie_, Erreur)) fs::permissions(Sortie_, fs::perms::owner_all, Erreur);
  if (Erreur || !fs::is_directory(Sortie_, Erreur)) throw ErreurDemande("Dossier " + Sortie + " impossible.");
}

void Greffier::Consigner(Sens Direction, std::string_view Octets) {
  if (!Journal_.is_open()) return;
  Journal_ << HeureMs() << (Direction == Sens::Reçu ? " reçu " : " émis ") << Lisible(Octets) << '\n' << std::flush;
  if (Journal_) return;
  Journal_.close();
  std::cerr << "rg80 : le journal ne peut plus être écrit.\n";
}

void Greffier::Annoncer(const std::string& Texte) { std::cout << Texte << std::endl; }

bool Greffier::GarderRéponse(std::string_view Texte) {
  return Écrire("reponses.txt", std::ios::app, std::string(Texte) + '\n');
}

bool Greffier::GarderFichier(char Code, std::string_view Texte) {
  return Écrire(std::string("fichier-") + Code + ".txt", std::ios::trunc, Texte);
}

bool Greffier::Écrire(const fs::path& Fichier, std::ios::openmode Mode, std::string_view Texte) {
  if (Sortie_.empty()) return true;
  const fs::path Chemin = Sortie_ / Fichier;
  std::ofstream Flux(Chemin, std::ios::binary | Mode);
  Flux << Texte << std::flush;
  if (Flux) return true;
  Annoncer("écriture de " + Chemin.string() + " impossible, non acquitté");
  return false;
}

}  // namespace Rg80
