// The text of a settings file: finding a key's value, and changing one line of it.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace Ombrey {

/// The bytes of a settings file, in UTF-8 with or without its mark, or in Windows-1252, with lines that end in LF or
/// CR LF. Sections and keys are compared in UTF-8, ASCII letters without regard to case; of several equal ones the
/// first counts. Lines that start with ";" or "#" are comments. Blanks around names and values don't count; a value
/// that has blanks of its own at an end stands in double quotes. Texts given and taken are UTF-8.
class TexteIni {
 public:
  /// Raises ErreurExécution when the bytes are UTF-16.
  explicit TexteIni(std::string Bruts);

  [[nodiscard]] const std::string& Bruts() const { return Bruts_; }
  [[nodiscard]] std::optional<std::string> Lire(std::string_view Section, std::string_view Clé) const;
  /// Changes the key's line, or adds it behind the section's last key, or adds the section at the end. Every other byte
  /// stays. Raises ErreurExécution when the file can't hold one of the texts; the bytes then stay as they are.
  void Ecrire(std::string_view Section, std::string_view Clé, std::string_view Valeur);

 private:
  struct Ligne;
  struct Recherche;

  [[nodiscard]] Ligne LigneÀ(std::size_t Début) const;
  [[nodiscard]] Recherche Chercher(std::string_view Section, std::string_view Clé) const;
  [[nodiscard]] std::string EnUtf8(std::string_view Octets) const;
  [[nodiscard]] std::string DansLeFichier(const std::string& Texte) const;

  std::string Bruts_;
  bool Utf8_;
  std::string FinDeLigne_;
};

}  // namespace Ombrey
