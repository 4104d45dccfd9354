// The settings file of the host, and the per-user store of settings.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <utility>

#include "contracts/system.h"

namespace Ombrey {

/// The value of a key in a settings file; none where file, section or key is absent. These raise ErreurExécution when
/// the file can't be read, or written.
[[nodiscard]] std::optional<std::string> LireRéglage(const std::filesystem::path& Fichier, const std::string& Section,
                                                     const std::string& Clé);
void EcrireRéglage(const std::filesystem::path& Fichier, const std::string& Section, const std::string& Clé,
                   const std::string& Valeur);

/// Reads the file anew at each LireValeur, so that it sees what others wrote meanwhile.
class LecteurIniFichier final : public ILecteurIni {
 public:
  void FixerFichier(const std::string& Chemin) override { Fichier_ = Chemin; }
  void FixerSection(const std::string& Section) override { Section_ = Section; }
  void FixerClé(const std::string& Clé) override { Clé_ = Clé; }
  [[nodiscard]] std::string Valeur() const override { return Valeur_; }
  void FixerValeur(const std::string& Valeur) override { Valeur_ = Valeur; }
  /// Drapeau: true when the value is saved.
  void EcrireValeur(bool& Drapeau) override;
  /// Drapeau: true when the key is there.
  void LireValeur(bool& Drapeau) override;

 private:
  std::string Fichier_;
  std::string Section_;
  std::string Clé_;
  std::string Valeur_;
};

/// One file, whose sections are named "application/section".
class RéglagesFichier final : public IRéglages {
 public:
  explicit RéglagesFichier(std::filesystem::path Fichier) : Fichier_(std::move(Fichier)) {}
  /// A store that can't be read gives Défaut.
  [[nodiscard]] std::string Lire(const std::string& Application, const std::string& Section, const std::string& Clé,
                                 const std::string& Défaut) const override;
  void Ecrire(const std::string& Application, const std::string& Section, const std::string& Clé,
              const std::string& Valeur) override;

 private:
  std::filesystem::path Fichier_;
};

/// Where the user's store is kept: under $XDG_CONFIG_HOME, else under ~/.config.
[[nodiscard]] std::filesystem::path FichierRéglagesUtilisateur();

}  // namespace Ombrey
