// How far the line can be trusted: whether what comes next can still be the answer to an older request.
#pragma once

#include <chrono>
#include <cstdint>
#include <utility>

#include "contracts/line_protocol.h"
#include "contracts/octets.h"
#include "contracts/system.h"

namespace Ombrey {

/// An ACK bears no number. A terminal that was busy serves the requests that waited, one answer each, and whoever takes
/// the answer to an older request for the one to his own acknowledges a load that he hasn't got. So the line is
/// troubled from an unanswered request or an unexpected character on. It is calm again in two steps: once something was
/// heard and then nothing for as long as an answer may take, and once a request behind that was answered.
class Doute {
 public:
  /// Where a request stands in its dialogue: between two dialogues the terminal's driver waits for nothing.
  enum class Rang { Première, Suivante };

  explicit Doute(const ISystème& Système) : Système_(Système) {}

  /// What comes next can't be the answer to an older request.
  [[nodiscard]] bool EstCalme() const { return Niveau_ == Niveau::Calme; }
  /// Since the last character, or the end of the last wait in vain.
  [[nodiscard]] std::chrono::milliseconds Silence() const;
  /// The silence that is still lacking before this request; zero or less when it may go.
  [[nodiscard]] std::chrono::milliseconds SilenceManquant(Rang Demande) const;
  /// True for the last acknowledged frame while the line isn't calm: it can be the answer to an older request, and an
  /// ACK would remove the load behind it. A load whose ACK was lost on a line that never gets calm must not block the
  /// queue: behind CopiesLaissées it is taken for what it says.
  [[nodiscard]] bool EstCopie(const Octets& Trame);

  void Acquitter(const Octets& Trame) {
    Acquittée_ = Trame;
    Copies_ = 0;
  }
  /// True once for each trouble in which characters came that nobody waited for: the operator should know.
  [[nodiscard]] bool EstÀDire() { return std::exchange(ÀDire_, false); }
  /// Characters came, in a wait for an answer or not.
  void NoterArrivée(bool Attendue);
  /// A wait ended without an answer.
  void NoterSansRéponse();
  /// A request is about to go.
  void NoterDemande();
  /// The line is taken over: somebody else may have asked on it a moment ago. Nothing says so: the line isn't calm
  /// until it has been silent. Once something was heard, the next dialogue waits for that, and no request within it.
  void NoterReprise() {
    if (EstCalme()) Niveau_ = Niveau::Reprise;
  }

 private:
  static constexpr int CopiesLaissées = 5;
  enum class Niveau { Calme, Convalescence, Reprise, Trouble };

  const ISystème& Système_;
  Niveau Niveau_ = Niveau::Calme;
  bool Entendu_ = false;  ///< something came since the last request
  std::uint32_t Depuis_ = 0;
  bool ÀDire_ = false;
  bool Dit_ = false;
  Octets Acquittée_;
  int Copies_ = 0;  ///< of it that were left unanswered, one behind the other
};

}  // namespace Ombrey
