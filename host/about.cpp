// What « À propos » tells.
#include "host/about.h"

#include <system_error>

#include "base/files.h"
#include "host/schema_upgrade.h"

namespace Tarvel {

namespace fs = std::filesystem;

fs::path GuideOpérateur() {
  std::error_code Erreur;
  const fs::path Ici = fs::read_symlink("/proc/self/exe", Erreur).parent_path();
  for (const char* Chemin : {"../share/doc/ombrey/docs/guide-operateur.md", "../../../docs/guide-operateur.md"})
    if (fs::exists(Ici / Chemin, Erreur)) return fs::canonical(Ici / Chemin, Erreur);
  return {};
}

std::string TexteÀPropos(const Options& Choisies, const Aperçu& Vu) {
  std::string Texte = TexteVersion() + "\n";
  for (const auto& [De, Laquelle] : Vu.Versions()) Texte += De + " : " + Laquelle + "\n";
  const auto Dire = [&](const char* Quoi, const std::string& Où) {
    Texte += std::string("\n") + Quoi + " : " + (Où.empty() ? "aucun" : Où);
  };
  Dire("Base", Choisies.Base);
  Dire("Réglages", Ombrey::TexteChemin(Choisies.Ini));
  Dire("Dossier de travail", Ombrey::TexteChemin(Choisies.Dossier));
  Dire("Imports retenus", Ombrey::TexteChemin(Vu.DossierConservés()));
  Dire("Fichier de la trace", Ombrey::TexteChemin(Choisies.Trace));
  Dire("Guide", Ombrey::TexteChemin(GuideOpérateur()));
  return Texte;
}

void NoterMoteur(Aperçu& Vu, Ombrey::IConnexion& Connexion) {
  Vu.NoterVersion("Moteur de la base", Connexion.Moteur() + ", schéma n° " + std::to_string(NuméroSchémaDe(Connexion)));
}

}  // namespace Tarvel
