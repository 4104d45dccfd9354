// What the station's operator is told at a glance, worked out from what the plug-in says: the state of the link, the
// loads that are refused, the boxes that nobody has read.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "contracts/system.h"

namespace Tarvel {

enum class Liaison { Inconnue, Répond, Muette, PortEnPanne, SansPort };

/// Moments are counted in seconds of one clock.
using Secondes = std::int64_t;

class ÉtatLiaison {
 public:
  /// Looks at a line of the plug-in's lists or at a box; most say nothing about the link.
  void Noter(Secondes Quand, const std::string& Texte);
  /// The port's own word on why it can't be had.
  void NoterPort(Secondes Quand, const std::string& Raison);
  [[nodiscard]] Liaison État() const { return État_; }
  /// One sentence: what the terminal does, since when, and why.
  [[nodiscard]] std::string Texte(Secondes Maintenant) const;

 private:
  void Passer(Secondes Quand, Liaison Nouvel);

  Liaison État_ = Liaison::Inconnue;
  Secondes Depuis_ = 0;
  std::string Raison_;
};

/// A thing that happens again and again, told once.
struct FaitRépété {
  std::string Sujet;
  std::string Texte;
  std::string ÀFaire;
  std::size_t Fois = 0;
  Ombrey::DateHeure Premier, Dernier;
};

/// One row for each different pair of subject and text, the latest on top.
class FaitsRépétés {
 public:
  void Noter(const Ombrey::DateHeure& Quand, const std::string& Sujet, const std::string& Texte,
             const std::string& ÀFaire = "");
  /// Drops the rows of this subject.
  void Retirer(const std::string& Sujet);
  void Vider() { Faits_.clear(); }
  [[nodiscard]] const std::vector<FaitRépété>& Tous() const { return Faits_; }

 private:
  std::vector<FaitRépété> Faits_;
};

/// The subject of a load whose number is unknown: the one that the terminal offers.
inline constexpr const char* SansNuméro = "En tête de file";

/// A load that the station refuses, read from what the plug-in says of it. Empty subject: the text says nothing of one.
struct Refus {
  std::string Sujet;  ///< the load's number, or what is known of it
  std::string Motif;
  std::string ÀFaire;
};
[[nodiscard]] Refus LireRefus(const std::string& Texte);

}  // namespace Tarvel
