// The console's way in.
#include "platform/console/input.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <utility>

#include "base/ansi_text.h"
#include "contracts/octets.h"

namespace Ombrey {

EntréeConsole::EntréeConsole(IBoucle& Boucle, int Descripteur, Preneur Prendre)
    : Boucle_(Boucle), Descripteur_(Descripteur), Prendre_(std::move(Prendre)) {
  Écouter();
}

void EntréeConsole::Écouter() {
  Écoute_ = Boucle_.Surveiller(Descripteur_, IBoucle::Sens::Entrée, [this] { Recevoir(); });
}

void EntréeConsole::Recevoir() {
  std::array<char, LongueurMax> Tampon{};
  const ssize_t Lus = read(Descripteur_, Tampon.data(), Tampon.size());
  if (Lus < 0 && (errno == EINTR || errno == EAGAIN)) return;
  if (Lus > 0) {
    Recueillir(std::string_view(Tampon.data(), static_cast<std::size_t>(Lus)));
  } else {
    if (!EnCours_.empty()) RangerLigne();
    Finie_ = true;
    Lignes_.emplace_back(std::nullopt);
  }
  if (!Lignes_.empty()) {
    Relancer();
    Écoute_.reset();
  }
}

void EntréeConsole::Recueillir(std::string_view Bruts) {
  for (const char Octet : Bruts) {
    if (Octet == '\n') {
      RangerLigne();
    } else if (EnCours_.size() <= LongueurMax) {
      EnCours_ += Octet;
    }
  }
}

void EntréeConsole::RangerLigne() {
  std::string Ligne = std::exchange(EnCours_, std::string());
  if (!Ligne.empty() && Ligne.back() == '\r') Ligne.pop_back();
  Lignes_.emplace_back(EstUtf8(Ligne) ? std::move(Ligne) : DepuisAnsi(Octets(Ligne)));
}

void EntréeConsole::Relancer() {
  if (Lignes_.empty()) return;
  Remise_ = Boucle_.Après(std::chrono::milliseconds(0), [this] { Offrir(); });
}

void EntréeConsole::Offrir() {
  if (Lignes_.empty()) return;
  const std::optional<std::string> Ligne = std::move(Lignes_.front());
  Lignes_.pop_front();
  // The rest must not wait for this line: taking it can last as long as a window stays open.
  if (!Lignes_.empty()) {
    Relancer();
  } else if (!Finie_) {
    Écouter();
  }
  if (Prendre_(Ligne)) return;
  Lignes_.push_front(Ligne);
  Remise_.reset();
  Écoute_.reset();
}

}  // namespace Ombrey
