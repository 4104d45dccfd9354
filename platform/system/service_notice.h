// What a service tells the service manager of the machine.
#pragma once

#include <chrono>
#include <string>
#include <string_view>

#include "platform/loop/loop.h"

namespace Ombrey {

/// Speaks to the manager whose address stands in NOTIFY_SOCKET; where there is none, every call does nothing. A manager
/// that doesn't listen never stops or fails the station.
class AvisService {
 public:
  /// Boucle must outlive the object.
  explicit AvisService(IBoucle& Boucle);

  /// The service is at work, and État says how. From now on the manager's watchdog, where it has set one, is fed by the
  /// loop: a loop that stands still for its whole time is taken for dead.
  void Prêt(const std::string& État);
  /// The service is ending by itself or as it was told.
  void Arrêt();

 private:
  void Dire(std::string_view Texte) const;
  void Nourrir();

  IBoucle& Boucle_;
  std::string Adresse_;                  ///< of a datagram socket: a path, or a name behind a zero byte
  std::chrono::milliseconds Rythme_{0};  ///< of the watchdog's food; 0: no watchdog
  IBoucle::Jeton Suite_;
};

/// True when the descriptor leads to the journal, which takes a level such as "<3>" at the start of each line.
[[nodiscard]] bool MèneAuJournal(int Descripteur);

/// The level of a console's line for the journal: "<3>" for an error to "<6>" for what merely happened, "<7>" for a
/// poll that found nothing.
[[nodiscard]] std::string_view GravitéJournal(std::string_view Ligne);

}  // namespace Ombrey
