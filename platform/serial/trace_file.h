// The line's trace on the disk: one file a day.
#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

#include "platform/loop/descriptor.h"
#include "platform/serial/line_messages.h"

namespace Ombrey {

/// What a trace begins with: its form, and the day.
[[nodiscard]] std::string EntêteTrace(std::chrono::system_clock::time_point Quand);
/// One line: the time to the millisecond, who speaks, the bytes, what they mean; a TAB between two.
[[nodiscard]] std::string LigneTrace(const MessageLiaison& Message);
/// The day on the wall's calendar, "2026-11-22".
[[nodiscard]] std::string JourTrace(std::chrono::system_clock::time_point Quand);

/// Today's traffic stands in the file itself; those of former days, thirty at most, beside it with the day in their
/// names. For their owner alone. What can't be written is left out: Dire hears why, once, and the file's next line
/// tells how much is missing.
class FichierTrace {
 public:
  using Rapport = std::function<void(const std::string&)>;
  /// Chemin: a file, or a folder, in which the file is called ligne.trace.
  FichierTrace(std::filesystem::path Chemin, Rapport Dire);

  void Écrire(const MessageLiaison& Message);

 private:
  void Ouvrir(std::chrono::system_clock::time_point Quand);
  void Ranger(std::chrono::system_clock::time_point Quand) const;
  void Ajouter(std::string_view Texte);
  void Échouer(const std::string& Raison);

  std::filesystem::path Chemin_;
  Rapport Dire_;
  Descripteur Fichier_;
  std::string Jour_;
  std::size_t Manquent_ = 0;
  bool Dit_ = false;
  std::chrono::steady_clock::time_point Reprise_{};  ///< no try ahead of it
};

}  // namespace Ombrey
