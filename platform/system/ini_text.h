// The text of a settings file: finding a key's value, and changing one line of it.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace Ombrey {

/// The bytes of a settings file: lines that end in LF or CR LF, each in UTF-8 (the file with or without its mark) or,
/// where it is no UTF-8, in Windows-1252: several programs may have written it. Sections and keys are compared in
/// UTF-8, ASCII letters without regard to case; of several equal ones the first counts. Lines that start with ";" or
/// "#" are comments. Blanks around names and values don't count; a value that has blanks of its own at an end stands in
/// double quotes. Texts given and taken are UTF-8.
class TexteIni {
 public:
  /// Raises ErreurExécution when the bytes are UTF-16.
  explicit TexteIni(std::string Bruts);

  [[nodiscard]] const std::string& Bruts() const { return Bruts_; }
  [[nodiscard]] std::optional<std::string> Lire(std::string_view Section, std::string_view Clé) const;
  /// Changes the key's line, or adds it behind the section's last key, or adds the section at the end. Every other line
  /// stays to the byte. A changed line keeps its encoding, a new one has that of the file's other accents, unless it
  /// couldn't be read back so. Raises ErreurExécution when the file can't hold one of the texts; the bytes then stay as
  /// they are.
  void Ecrire(std::string_view Section, std::string_view Clé, std::string_view Valeur);

 private:
  struct Ligne;
  struct Recherche;

  [[nodiscard]] Ligne LigneÀ(std::size_t Début) const;
  [[nodiscard]] Recherche Chercher(std::string_view Section, std::string_view Clé) const;
  [[nodiscard]] std::size_t PremièreLigne() const;
  [[nodiscard]] bool EstEnAnsi(const Ligne& Une) const;

  std::string Bruts_;
  bool Ansi_ = false;  ///< some accents are in Windows-1252, and none is in UTF-8
  std::string FinDeLigne_;
};

}  // namespace Ombrey
