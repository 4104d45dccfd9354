// What the station's operator is told at a glance, worked out from what the plug-in says: the state of the link, the
// loads that are refused, the boxes that nobody has read.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "contracts/system.h"

namespace Tarvel {

enum class SantéLiaison { Inconnue, Répond, Muette, PortEnPanne, SansPort, Suspendue };

/// Moments are counted in seconds of one clock.
using Secondes = std::int64_t;

class ÉtatLiaison {
 public:
  /// Looks at a line of the plug-in's lists or at a box; most say nothing about the link.
  void Noter(Secondes Quand, const std::string& Texte);
  /// The port's own word on why it can't be had.
  void NoterPort(Secondes Quand, const std::string& Raison);
  /// The terminal has sent something whole.
  void NoterRéponse(Secondes Quand);
  [[nodiscard]] SantéLiaison État() const { return État_; }
  /// One sentence: what the terminal does, since when, and why.
  [[nodiscard]] std::string Texte(Secondes Maintenant) const;

 private:
  void Passer(Secondes Quand, SantéLiaison Nouvel);

  SantéLiaison État_ = SantéLiaison::Inconnue;
  Secondes Depuis_ = 0;
  std::string Raison_;
};

/// A thing that happens again and again, told once.
struct FaitRépété {
  std::string Sujet;
  std::string Texte;
  std::string ÀFaire{};
  std::string Détail{};   ///< lines of a load's fields
  std::string Contenu{};  ///< of the import file that was refused; empty when it didn't come to that
  std::size_t Fois = 0;
  Ombrey::DateHeure Premier{}, Dernier{};
  std::size_t Passage = 0;                    ///< of the terminal's frame in which it happened last
  std::optional<Ombrey::DateHeure> Partie{};  ///< since when the terminal no longer offers what this tells of
  std::string Arrivée{};                      ///< of the load that it tells of, at the terminal; empty when unknown
  bool EstAbîmé = false;                      ///< a frame was spoilt on its way, the load isn't at fault
};

/// Whether both may tell of the same load, as far as its arrival goes.
[[nodiscard]] inline bool MêmeArrivée(const FaitRépété& Un, const FaitRépété& Autre) {
  return Un.Arrivée == Autre.Arrivée || Un.Arrivée.empty() || Autre.Arrivée.empty();
}

/// What makes two facts one row.
enum class Unicité { SujetEtTexte, Sujet };

/// One row for each different fact, the latest on top; beyond so many the oldest goes.
class FaitsRépétés {
 public:
  static constexpr std::size_t AuPlus = 2000;
  explicit FaitsRépétés(Unicité Par) : Par_(Par) {}
  /// Of a fact that is known already, count and first moment stay, and what the new one leaves empty. The same frame
  /// counts once, however often it is told; Passage 0 belongs to none. True when the row is new, or was no longer
  /// offered.
  bool Noter(const Ombrey::DateHeure& Quand, FaitRépété Fait);
  void Vider() { Faits_.clear(); }
  /// Removes those for which Lequel is true; true when there was one.
  template <class Choix>
  bool Retirer(Choix Lequel) {
    return std::erase_if(Faits_, Lequel) != 0;
  }
  /// What these facts tell of is no longer offered, but for this one; true when that is new of one.
  bool LaisserPartir(const Ombrey::DateHeure& Quand, const FaitRépété& Hormis = {});
  void Reprendre(std::vector<FaitRépété> Faits) { Faits_ = std::move(Faits); }
  [[nodiscard]] const std::vector<FaitRépété>& Tous() const { return Faits_; }

 private:
  [[nodiscard]] bool EstLeMême(const FaitRépété& Un, const FaitRépété& Autre) const;

  Unicité Par_;
  std::vector<FaitRépété> Faits_;
};

/// An import that the host's engine refused.
struct ImportRefusé {
  std::string Motif;
  std::string Contenu;  ///< of the import file
  bool ParSaValeur;     ///< the load is at fault and not the database
};

/// What mends a load with a value that can't be taken.
inline constexpr const char* RemèdeValeur =
    "Corriger la valeur au RG80, ou y effacer ce chargement et le saisir à nouveau.";
/// The subject of a load whose number is unknown: the one that the terminal offers.
inline constexpr const char* SansNuméro = "En tête de file";

/// A load that the station refuses, read from what the plug-in says of it. Empty subject: the text says nothing of one.
struct Refus {
  std::string Sujet;  ///< the load's number, or what is known of it
  std::string Motif;
  std::string ÀFaire;
  bool EstAbîmé = false;  ///< as in FaitRépété
};
[[nodiscard]] Refus LireRefus(const std::string& Texte);

}  // namespace Tarvel
