// The settings file of the host, and the per-user store of settings.
#include "platform/system/settings_files.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>

#include "base/failures.h"
#include "base/files.h"
#include "platform/system/ini_text.h"
#include "platform/system/safe_file.h"

namespace Ombrey {

void LecteurIniFichier::LireValeur(bool& Drapeau) {
  Valeur_.clear();
  const auto Lu = TexteIni(LireFichier(Fichier_).value_or("")).Lire(Section_, Clé_);
  Drapeau = Lu.has_value();
  Valeur_ = Lu.value_or("");
}

void LecteurIniFichier::EcrireValeur(bool& Drapeau) {
  Drapeau = false;
  if (Fichier_.empty()) throw ErreurExécution("Aucun fichier de réglages n'est indiqué.");
  const auto Ancien = LireFichier(Fichier_);
  TexteIni Texte(Ancien.value_or(""));
  Texte.Ecrire(Section_, Clé_, Valeur_);
  if (Ancien != Texte.Bruts()) RemplacerFichier(Fichier_, Texte.Bruts());
  Drapeau = true;
}

std::string RéglagesFichier::Lire(const std::string& Application, const std::string& Section, const std::string& Clé,
                                  const std::string& Défaut) const {
  LecteurIniFichier Lecteur;
  Lecteur.FixerFichier(Fichier_.string());
  Lecteur.FixerSection(Application + "/" + Section);
  Lecteur.FixerClé(Clé);
  bool Présent = false;
  try {
    Lecteur.LireValeur(Présent);
  } catch (const ErreurExécution&) {
    return Défaut;
  }
  return Présent ? Lecteur.Valeur() : Défaut;
}

void RéglagesFichier::Ecrire(const std::string& Application, const std::string& Section, const std::string& Clé,
                             const std::string& Valeur) {
  CréerDossier(Fichier_.parent_path());
  LecteurIniFichier Lecteur;
  Lecteur.FixerFichier(Fichier_.string());
  Lecteur.FixerSection(Application + "/" + Section);
  Lecteur.FixerClé(Clé);
  Lecteur.FixerValeur(Valeur);
  bool Sauvé = false;
  Lecteur.EcrireValeur(Sauvé);
}

std::filesystem::path FichierRéglagesUtilisateur() {
  namespace fs = std::filesystem;
  const auto Sous = [](const fs::path& Config) { return Config / "ombrey" / "reglages.ini"; };
  const char* Config = std::getenv("XDG_CONFIG_HOME");
  if (Config && fs::path(Config).is_absolute()) return Sous(Config);
  const char* Maison = std::getenv("HOME");
  if (Maison && fs::path(Maison).is_absolute()) return Sous(fs::path(Maison) / ".config");
  const passwd* Compte = getpwuid(geteuid());
  return Sous(fs::path(Compte ? Compte->pw_dir : "/tmp") / ".config");
}

}  // namespace Ombrey
