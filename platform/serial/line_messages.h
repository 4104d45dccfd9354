// What passes on the line, cut into messages, each told in words and judged.
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <utility>

#include "contracts/octets.h"

namespace Ombrey {

/// A moment on the wall's clock, for a person, and on the one that nobody sets, for what has passed.
struct InstantLiaison {
  std::chrono::system_clock::time_point Mur{};
  std::chrono::steady_clock::time_point Depuis{};

  [[nodiscard]] static InstantLiaison Présent() {
    return {std::chrono::system_clock::now(), std::chrono::steady_clock::now()};
  }
};

/// Why bytes were dropped.
enum class Rejet {
  Aucun,    ///< they weren't
  Bruit,    ///< they are no part of any message
  Périmée,  ///< something that nobody waited for, or not any more
  Coupée,   ///< a frame without its end
};

struct MessageLiaison {
  enum class Source { Station, Terminal, Port };
  InstantLiaison Quand;
  Source Qui = Source::Port;
  Octets Bruts;       ///< none: an event of the line
  std::string Texte;  ///< what they mean, in UTF-8
  bool Faute = false;
  Rejet Raison = Rejet::Aucun;
};

/// Follows the dialogue from outside, by the line's own rules: it is told what goes out and what comes in, and gives
/// one message for each that is whole. What can't be an answer to what was asked last counts as dropped: the station
/// does no more with it. What is incomplete waits for the rest until the station speaks again.
class LecteurLiaison {
 public:
  using Suite = std::function<void(MessageLiaison)>;
  explicit LecteurLiaison(Suite Donner) : Donner_(std::move(Donner)) {}

  /// The station begins to say something; what comes in meanwhile is judged behind it.
  void DébutÉmission(InstantLiaison Quand);
  [[nodiscard]] bool EstEnÉmission() const { return EnÉmission_; }
  /// It has left the machine, at this moment; or hasn't, and Refus says why.
  void FinÉmission(const Octets& Texte, InstantLiaison Quand, const std::string& Refus = "");
  void Reçus(const Octets& Texte, InstantLiaison Quand);
  void Événement(const std::string& Texte, bool Faute, InstantLiaison Quand);
  /// Nothing more comes of what is still held.
  void Clore(InstantLiaison Quand);

 private:
  enum class Attendu { Rien, RéponseÀDemande, Chargement, RéponseÀTrame };
  struct Reçu {
    char Octet;
    InstantLiaison Quand;
  };

  void Lire();
  /// True when something was taken from the head of what has come.
  bool LireUn();
  bool JeterDevant(bool (*Commence)(char));
  bool LireRéponseÀDemande();
  bool LireChargement();
  [[nodiscard]] Octets Retirer(std::size_t Nombre);
  void Donner(std::size_t Nombre, std::string Texte, bool Faute);
  void Jeter(std::size_t Nombre, Rejet Raison);
  void JeterReste();
  void Attendre(Attendu Quoi, InstantLiaison Depuis);

  Suite Donner_;
  Attendu Attendu_ = Attendu::Rien;
  std::chrono::steady_clock::time_point Échéance_{};
  char Code_ = 0;  ///< of the last request
  bool EnÉmission_ = false;
  std::deque<Reçu> Reçus_;
  struct Quantité {
    std::uint64_t Octets = 0;
    std::uint64_t Fois = 0;
  };
  std::array<Quantité, 4> Jetés_{};  ///< by their reason
};

}  // namespace Ombrey
