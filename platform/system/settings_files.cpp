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

std::optional<std::string> LireRéglage(const std::filesystem::path& Fichier, const std::string& Section,
                                       const std::string& Clé) {
  return TexteIni(LireFichier(Fichier).value_or("")).Lire(Section, Clé);
}

void EcrireRéglage(const std::filesystem::path& Fichier, const std::string& Section, const std::string& Clé,
                   const std::string& Valeur) {
  if (Fichier.empty()) throw ErreurExécution("Aucun fichier de réglages n'est indiqué.");
  const auto Ancien = LireFichier(Fichier);
  TexteIni Texte(Ancien.value_or(""));
  Texte.Ecrire(Section, Clé, Valeur);
  if (Ancien != Texte.Bruts()) RemplacerFichier(Fichier, Texte.Bruts());
}

void LecteurIniFichier::LireValeur(bool& Drapeau) {
  Valeur_.clear();
  const auto Lu = LireRéglage(Fichier_, Section_, Clé_);
  Drapeau = Lu.has_value();
  Valeur_ = Lu.value_or("");
}

void LecteurIniFichier::EcrireValeur(bool& Drapeau) {
  Drapeau = false;
  EcrireRéglage(Fichier_, Section_, Clé_, Valeur_);
  Drapeau = true;
}

std::string RéglagesFichier::Lire(const std::string& Application, const std::string& Section, const std::string& Clé,
                                  const std::string& Défaut) const {
  try {
    return LireRéglage(Fichier_, Application + "/" + Section, Clé).value_or(Défaut);
  } catch (const ErreurExécution&) {
    return Défaut;
  }
}

void RéglagesFichier::Ecrire(const std::string& Application, const std::string& Section, const std::string& Clé,
                             const std::string& Valeur) {
  CréerDossier(Fichier_.parent_path());
  EcrireRéglage(Fichier_, Application + "/" + Section, Clé, Valeur);
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
