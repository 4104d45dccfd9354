// The traffic of the last hours.
#pragma once

#include <cstdint>
#include <deque>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>

#include "platform/serial/line_messages.h"
#include "platform/serial/trace_file.h"

namespace Ombrey {

/// Keeps the last messages for who wants to look at them, and hands each on to the trace's file where there is one.
class JournalLiaison {
 public:
  void FixerTrace(std::unique_ptr<FichierTrace> Trace) { Trace_ = std::move(Trace); }
  void Ajouter(MessageLiaison Message);
  /// The oldest first.
  [[nodiscard]] const std::deque<MessageLiaison>& Messages() const { return Messages_; }
  /// How many there have been, those included that aren't kept any more.
  [[nodiscard]] std::uint64_t Nombre() const { return Nombre_; }
  /// Writes all that is kept, as a trace, and says where it is. Raises ErreurExécution.
  [[nodiscard]] std::string Enregistrer(const std::filesystem::path& Fichier) const;

 private:
  std::deque<MessageLiaison> Messages_;
  std::size_t Octets_ = 0;
  std::uint64_t Nombre_ = 0;
  std::unique_ptr<FichierTrace> Trace_;
};

}  // namespace Ombrey
