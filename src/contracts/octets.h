// Bytes of the line and of the terminal's records, as a type of their own.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace Ombrey {

/// Bytes in Windows-1252, one byte for one character: what goes over the line or into a record of the terminal.
/// Text inside the system is UTF-8 in std::string; only VersAnsi and DepuisAnsi cross from one to the other, so the
/// two can't be mixed by accident. Positions and widths count bytes from 0.
class Octets {
 public:
  static constexpr std::size_t Introuvable = std::string::npos;

  Octets() = default;
  /// The bytes just as they stand; no conversion.
  explicit Octets(std::string_view Bruts) : Bruts_(Bruts) {}
  Octets(std::size_t Nombre, char Octet) : Bruts_(Nombre, Octet) {}

  [[nodiscard]] std::size_t Taille() const { return Bruts_.size(); }
  [[nodiscard]] bool EstVide() const { return Bruts_.empty(); }
  /// Code of the byte at Rang, 0 to 255. Rang must be below Taille().
  [[nodiscard]] unsigned char operator[](std::size_t Rang) const { return static_cast<unsigned char>(Bruts_[Rang]); }
  /// The raw bytes, for a device or a file; valid until the object changes.
  [[nodiscard]] std::string_view Bruts() const { return Bruts_; }

  /// At most Longueur bytes from Début on; fewer, or none, where the text ends sooner.
  [[nodiscard]] Octets Extrait(std::size_t Début, std::size_t Longueur = Introuvable) const {
    return Début >= Taille() ? Octets() : Octets(Bruts().substr(Début, Longueur));
  }
  [[nodiscard]] bool CommencePar(const Octets& Motif) const { return Bruts().starts_with(Motif.Bruts()); }
  /// Place of the first occurrence from Début on, or Introuvable.
  [[nodiscard]] std::size_t Chercher(const Octets& Motif, std::size_t Début = 0) const {
    return Bruts_.find(Motif.Bruts_, Début);
  }
  /// Drops the first Nombre bytes, or all when there are fewer.
  void RetirerTête(std::size_t Nombre) { Bruts_.erase(0, Nombre); }
  /// Writes Valeur over the bytes from Rang on, never past the end: the length doesn't change.
  void Recouvrir(std::size_t Rang, const Octets& Valeur) {
    if (Rang >= Taille()) return;
    std::copy_n(Valeur.Bruts_.begin(), std::min(Valeur.Taille(), Taille() - Rang), Bruts_.data() + Rang);
  }
  void Vider() { Bruts_.clear(); }

  Octets& operator+=(const Octets& Suite) {
    Bruts_ += Suite.Bruts_;
    return *this;
  }
  Octets& operator+=(char Octet) {
    Bruts_ += Octet;
    return *this;
  }
  friend Octets operator+(Octets Gauche, const Octets& Droite) { return std::move(Gauche += Droite); }
  friend Octets operator+(Octets Gauche, char Octet) { return std::move(Gauche += Octet); }
  friend bool operator==(const Octets&, const Octets&) = default;

 private:
  std::string Bruts_;
};

/// A run of bytes in a record; Début counts from 1.
struct Position {
  std::size_t Début;
  std::size_t Longueur;
  /// The run's bytes; fewer where the record ends sooner.
  [[nodiscard]] Octets Dans(const Octets& Enregistrement) const { return Enregistrement.Extrait(Début - 1, Longueur); }
};

/// A field of the load record that goes into the import under this name.
struct ChampChargement {
  std::string_view Nom;
  Position Place;
};

/// A file of reference data: one frame of records, cut by their length alone.
struct FichierTerminal {
  std::int32_t Numéro;  ///< announces it
  std::string_view Nom;
  std::size_t LongEnreg;
};

}  // namespace Ombrey
