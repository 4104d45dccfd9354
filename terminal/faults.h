// The faults that the terminal can show on purpose, and the seeded dice that decide when.
#pragma once

#include <array>
#include <bitset>
#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <string_view>

namespace Rg80 {

enum class Panne : std::size_t { Silence, Nak, Checksum, Bruit, Coupe, Retard, AckPerdu, Occupé };
inline constexpr std::size_t NombreDePannes = 8;

struct NomDePanne {
  Panne Laquelle;
  std::string_view Nom;   // on the command line and in the loads file
  std::string_view Sens;  // for --help
};
inline constexpr std::array<NomDePanne, NombreDePannes> NomsDePannes{
    {{Panne::Silence, "silence", "aucune réponse"},
     {Panne::Nak, "nak", "refus (NAK) sans raison"},
     {Panne::Checksum, "checksum", "caractères de contrôle faux"},
     {Panne::Bruit, "bruit", "parasites devant la trame ou la réponse"},
     {Panne::Coupe, "coupe", "trame interrompue"},
     {Panne::Retard, "retard", "réponse après 2,5 secondes"},
     {Panne::AckPerdu, "ack-perdu", "acquittement perdu, dans les deux sens"},
     {Panne::Occupé, "occupe", "occupé un moment, puis sert à la suite toutes les demandes arrivées"}}};

/// The faults that come together at one moment of the dialogue.
class Pannes {
 public:
  [[nodiscard]] bool A(Panne Laquelle) const { return Bits_.test(static_cast<std::size_t>(Laquelle)); }
  void Ajouter(Panne Laquelle) { Bits_.set(static_cast<std::size_t>(Laquelle)); }
  void Ajouter(const Pannes& Autres) { Bits_ |= Autres.Bits_; }
  /// " [panne : silence, bruit]", or the empty text when there is none.
  [[nodiscard]] std::string Mention() const;

 private:
  std::bitset<NombreDePannes> Bits_;
};

[[nodiscard]] std::optional<Panne> PanneNommée(std::string_view Nom);

/// Rate of each fault, 0 to 1, in the order of `Panne`.
using TauxDePannes = std::array<double, NombreDePannes>;

/// One seeded source for everything that is left to chance: the same seed gives the same run on any machine.
class Hasard {
 public:
  explicit Hasard(std::uint32_t Graine, const TauxDePannes& Taux = {}) : Moteur_(Graine), Taux_(Taux) {}
  /// Throws the dice once for each fault.
  [[nodiscard]] Pannes Tirer();
  /// A whole number from Premier to Dernier, both included.
  [[nodiscard]] unsigned Entre(unsigned Premier, unsigned Dernier);
  /// One to eight bytes of noise, none of them a control character.
  [[nodiscard]] std::string Bruit();

 private:
  std::mt19937 Moteur_;
  TauxDePannes Taux_;
};

}  // namespace Rg80
