// The one waiting primitive of the line, and the link test.
#pragma once

#include <optional>
#include <string>

#include "common/plugin_state.h"
#include "contracts/octets.h"
#include "link/doubt.h"

namespace Ombrey {

/// How a wait ended.
enum class CodeÉchange {
  Silence = 0,     ///< nothing matched in time, or the plug-in is ending
  Motif1 = 1,      ///< match at the start of the buffer
  Motif2 = 2,      ///< the same for the second pattern
  Motif3 = 3,      ///< found anywhere in the buffer
  Motif4 = 4,      ///< the same for the fourth pattern
  ErreurPort = 5,  ///< the port refused the sending; the operator has seen why
};

/// The operator's words for an exchange without an answer; empty when there was one.
[[nodiscard]] std::string TextePanne(CodeÉchange Code);
/// His words for a request that the terminal declined.
inline constexpr const char* TextePasPrêt = "Le RG80 n'est pas prêt (NACK).";

/// What to send and what to wait for. An empty text or pattern isn't used.
struct Attente {
  Octets Texte{};  ///< sent first; the wait starts when it has left
  std::chrono::milliseconds Délai = DélaiRéponse;
  std::size_t LongMin = 0;  ///< characters that the buffer must hold before a pattern counts
  Octets Motif1{};
  Octets Motif2{};
  Octets Motif3{};
  Octets Motif4{};
  bool Consommer = true;       ///< on a match of the first two: drop the pattern from the buffer
  bool Resynchroniser = true;  ///< whether the last two count; what precedes them is dropped
  bool SansCode = false;       ///< the answer bears no code: on a line in doubt it counts only when it stands alone
};

/// The request that opens an exchange: ENQ and its code. The terminal repeats the code to grant it (third pattern) or
/// to decline it (fourth).
[[nodiscard]] Attente Requête(const Octets& Code);

class Échange {
 public:
  explicit Échange(ÉtatPlugIn& État) : État_(État), Doute_(État.Plateforme.Système()) {}

  /// Comes ahead of every request, so that what is taken for its answer was said behind it: drops what has come, and
  /// while an older request can still be answered waits until the terminal has been silent for as long as it may take
  /// to answer, ten seconds at most. The operator is told once what was dropped. Pumps.
  void FaireTaire();

  /// Sends, then watches the reception buffer for the patterns, in their order, until one matches or the time is up.
  /// Réponse receives the whole buffer on a match and is untouched otherwise. Pumps: anything may happen meanwhile.
  /// Raises ErreurExécution without a port.
  CodeÉchange AttendreRéponse(const Attente& Demande, Octets& Réponse);

  /// True for a load frame that may be the answer to an older request: no ACK for it, or the load behind it is lost.
  [[nodiscard]] bool EstCopie(const Octets& Trame) { return Doute_.EstCopie(Trame); }
  /// Writes the ACK for Trame, which has been taken out of the buffer. False, and nothing written, when an older
  /// request can still be answered and more has come behind the frame: the request just sent is answered by what comes
  /// last.
  bool Acquitter(const Octets& Trame);

  /// The line is taken over: answers to whoever had it before can still come.
  void Reprendre() { Doute_.Nouvelle(); }

  /// The event of the port: characters arrive.
  void EventPortComRG80_Lecture(const Octets& Texte);

  /// Asks whether the terminal is there; any answer will do. Raises nothing.
  bool TesterConnexion();

 private:
  bool Envoyer(const Octets& Texte);
  CodeÉchange Attendre(const Attente& Demande, Octets& Réponse);
  void Lire();
  bool Relever();
  void RetirerRéponsesÀDesDemandes();
  [[nodiscard]] std::chrono::milliseconds SilenceManquant(const Attente& Demande) const;
  std::optional<CodeÉchange> Reconnaître(const Attente& Demande, Octets& Réponse);
  bool RéponseÀLaRequêteDeTest();

  ÉtatPlugIn& État_;
  Doute Doute_;
  bool EnAttente_ = false;  ///< what comes is awaited
};

}  // namespace Ombrey
