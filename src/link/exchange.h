// The one waiting primitive of the line, and the link test.
#pragma once

#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "common/context.h"
#include "contracts/line_protocol.h"
#include "contracts/octets.h"
#include "contracts/port.h"
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
  explicit Échange(ÉtatPartagé& État) : État_(État), Doute_(État.Plateforme.Système()) {}

  /// The port that is worked on, or nullptr.
  [[nodiscard]] const std::shared_ptr<IPortComm>& Port() const { return PortComm_; }
  void FixerPort(std::shared_ptr<IPortComm> Port) { PortComm_ = std::move(Port); }
  /// Closes the port and gives it up.
  void FermerPort();
  /// What the terminal sent and nobody has consumed.
  [[nodiscard]] Octets& Tampon() { return TamponRéception_; }

  /// Comes ahead of every request, so that what is taken for its answer was said behind it: drops what has come, and
  /// while an older request can still be answered waits until the terminal has been silent for as long as it may take
  /// to answer, ten seconds at most. The operator is told once what was dropped. Pumps.
  void FaireTaire(Doute::Rang Demande);

  /// Sends, then watches the reception buffer for the patterns, in their order, until one matches or the time is up.
  /// Réponse receives the whole buffer on a match and is untouched otherwise. Pumps: anything may happen meanwhile.
  /// Raises ErreurExécution without a port.
  CodeÉchange AttendreRéponse(const Attente& Demande, Octets& Réponse);
  /// Sends one control character: nothing is awaited, and what fails shows at the next exchange. Raises
  /// ErreurExécution without a port.
  void Ecrire(char Contrôle);

  /// True for a load frame that may be the answer to an older request: no ACK for it, or the load behind it is lost.
  [[nodiscard]] bool EstCopie(const Octets& Trame) { return Doute_.EstCopie(Trame); }
  /// Writes the ACK for Trame, which has been taken out of the buffer. False, and nothing written, when an older
  /// request can still be answered and more has come behind the frame: the request just sent is answered by what comes
  /// last.
  bool Acquitter(const Octets& Trame);

  /// The line is taken over: answers to whoever had it before can still come.
  void NoterReprise() { Doute_.NoterReprise(); }

  /// The event of the port: characters arrive.
  void EventPortComRG80_Lecture(const Octets& Texte);

  /// Asks whether the terminal is there; any answer will do. Raises nothing.
  bool TesterConnexion();

 private:
  /// The port, held for as long as the caller keeps it. Raises ErreurExécution when none was set or could be had.
  [[nodiscard]] std::shared_ptr<IPortComm> PortRéglé() const;
  bool Envoyer(const Octets& Texte);
  CodeÉchange Attendre(const Attente& Demande, Octets& Réponse);
  void Lire();
  bool Relever();
  void RetirerRéponsesÀDesDemandes();
  [[nodiscard]] std::chrono::milliseconds SilenceManquant(const Attente& Demande) const;
  std::optional<CodeÉchange> Reconnaître(const Attente& Demande, Octets& Réponse);
  bool RéponseÀLaRequêteDeTest();

  ÉtatPartagé& État_;
  Doute Doute_;
  std::shared_ptr<IPortComm> PortComm_;
  Octets TamponRéception_;
  bool EnAttente_ = false;  ///< what comes is awaited
};

}  // namespace Ombrey
