// A serial adapter between the terminal and the station that can be pulled out and put back.
#pragma once

#include <poll.h>
#include <termios.h>

#include <atomic>
#include <filesystem>
#include <optional>
#include <thread>

#include "tests/serial/pseudo_terminal.h"

namespace Ombrey::Essais {

/// The terminal's line comes out at a device of its own, behind a link. Pulled out, the link is gone first and then the
/// device, so that nobody opens another test's line; what the terminal says meanwhile is said to nobody.
class Adaptateur {
 public:
  Adaptateur(const std::string& LigneTerminal, std::string Lien)
      : Terminal_(open(LigneTerminal.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)), Lien_(std::move(Lien)) {
    Poser(true);
    Fil_ = std::thread([this] { Relayer(); });
  }
  Adaptateur(const Adaptateur&) = delete;
  ~Adaptateur() {
    EnFin_ = true;
    Fil_.join();
    Poser(false);
  }

  void Brancher(bool Branché) { Voulu_ = Branché; }

 private:
  /// Its near end is kept open, so that it outlives the stations, and passes every byte as it is.
  struct Appareil {
    PseudoTerminal Ligne;
    Descripteur Bout{open(Ligne.Nom().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC)};
    Appareil() {
      termios Mode{};
      tcgetattr(Bout.Numéro(), &Mode);
      cfmakeraw(&Mode);
      tcsetattr(Bout.Numéro(), TCSANOW, &Mode);
    }
  };

  void Poser(bool Branché) {
    if (Branché == Appareil_.has_value()) return;
    if (Branché) return std::filesystem::create_symlink(Appareil_.emplace().Ligne.Nom(), Lien_);
    std::filesystem::remove(Lien_);
    Appareil_.reset();
  }
  void Relayer() {
    for (; !EnFin_; Poser(Voulu_)) {
      const int Station = Appareil_ ? Appareil_->Ligne.Maître.Numéro() : -1;
      pollfd Attendus[] = {{Terminal_.Numéro(), POLLIN, 0}, {Station, POLLIN, 0}};
      poll(Attendus, std::size(Attendus), 5);
      if (Attendus[0].revents != 0 && !Passer(Terminal_.Numéro(), Station)) Terminal_.Fermer();
      if ((Attendus[1].revents & POLLIN) != 0) Passer(Station, Terminal_.Numéro());
    }
  }
  /// False when there is nothing more to come from there.
  static bool Passer(int De, int Vers) {
    char Place[4096];
    const ssize_t Lus = read(De, Place, sizeof Place);
    return Lus > 0 && (Vers < 0 || write(Vers, Place, static_cast<std::size_t>(Lus)) >= 0 || errno == EAGAIN);
  }

  Descripteur Terminal_;
  std::string Lien_;
  std::optional<Appareil> Appareil_;
  std::atomic<bool> Voulu_{true}, EnFin_{false};
  std::thread Fil_;
};

}  // namespace Ombrey::Essais
