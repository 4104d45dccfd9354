// The console's way out: whole lines, each on its way at once.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/system/service_notice.h"

namespace Ombrey {

/// Writes lines to a file descriptor that stays its owner's. SIGPIPE must be ignored. A reader that has gone away, or
/// that takes nothing for a second, loses lines and never stops the station; when he is back, a line tells him how
/// many. Towards the journal each line bears its level.
class SortieConsole {
 public:
  explicit SortieConsole(int Descripteur) : Descripteur_(Descripteur), EstJournal_(MèneAuJournal(Descripteur)) {}
  /// Texte is made visible and goes out as one line.
  void Ligne(std::string_view Texte);

 private:
  /// True when all of it went out.
  bool Passer(const std::string& Entière);

  int Descripteur_;
  bool EstJournal_;
  std::size_t Perdues_ = 0;
  bool EstCoupée_ = false;   ///< the last thing that went out lacks its end
  bool EstBouchée_ = false;  ///< the last line found no place: the next one doesn't wait for it again
};

}  // namespace Ombrey
