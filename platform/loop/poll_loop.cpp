// The event loop on ppoll(2).
#include "platform/loop/poll_loop.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include "base/failures.h"
#include "base/system_error.h"

namespace Ombrey {

namespace {

using namespace std::chrono_literals;

/// Keeps a wait without end from overflowing the clock; the caller of a longer one is only called back sooner.
constexpr std::chrono::milliseconds AttentePlafond = 24h;
constexpr std::chrono::milliseconds DélaiPlafond = 24h * 1000;

}  // namespace

IBoucle::Jeton BouclePoll::Inscrire(Entrées& Liste, Entrée Nouvelle) {
  const auto Inscrite = std::make_shared<Entrée>(std::move(Nouvelle));
  Liste.push_back(Inscrite);
  return {Inscrite.get(), [Inscrite](void*) { const ActionTenue Lâchée = std::exchange(Inscrite->Faire, nullptr); }};
}

IBoucle::Jeton BouclePoll::Surveiller(int Descripteur, Sens Quoi, Action Faire) {
  Entrée Veille;
  Veille.Faire = std::make_shared<const Action>(std::move(Faire));
  Veille.Descripteur = Descripteur;
  Veille.Événements = Quoi == Sens::Entrée ? POLLIN : POLLOUT;
  Veille.Tour = Tour_;
  return Inscrire(Veilles_, std::move(Veille));
}

IBoucle::Jeton BouclePoll::Après(std::chrono::milliseconds Délai, Action Faire) {
  Entrée Nouvelle;
  Nouvelle.Faire = std::make_shared<const Action>(std::move(Faire));
  Nouvelle.Échéance = Temps::now() + std::clamp(Délai, 0ms, DélaiPlafond);
  return Inscrire(Délais_, std::move(Nouvelle));
}

bool BouclePoll::Pomper(std::chrono::nanoseconds AttenteMax) {
  const auto Fin = Temps::now() + std::clamp<std::chrono::nanoseconds>(AttenteMax, 0ns, AttentePlafond);
  for (;;) {
    const auto Morte = [](const std::shared_ptr<Entrée>& E) { return !E->Faire; };
    std::erase_if(Délais_, Morte);
    std::erase_if(Veilles_, Morte);
    const auto Délai = PremierDélai();
    Sonder(Délai ? std::min(Fin, Délai->Échéance) : Fin);
    if (const ActionTenue Faire = Choisir()) {
      (*Faire)();
      return true;
    }
    if (Temps::now() >= Fin) return false;
  }
}

/// Waits until a descriptor is ready or Limite is reached.
void BouclePoll::Sonder(Temps::time_point Limite) {
  Sondes_.clear();
  for (const auto& Veille : Veilles_) Sondes_.push_back({Veille->Descripteur, Veille->Événements, 0});
  // To the nanosecond: a character takes one millisecond, and a wait rounded up behind each writing would cost as much.
  const std::chrono::nanoseconds Reste = std::max<std::chrono::nanoseconds>(Limite - Temps::now(), 0ns);
  const auto Secondes = std::chrono::floor<std::chrono::seconds>(Reste);
  const timespec Durée{Secondes.count(), (Reste - Secondes).count()};
  if (ppoll(Sondes_.data(), Sondes_.size(), &Durée, nullptr) >= 0) return;
  const int Numéro = errno;
  for (auto& Sonde : Sondes_) Sonde.revents = 0;
  if (Numéro != EINTR) throw ErreurExécution("Attente impossible : " + TexteErreurSystème(Numéro));
}

/// The action that is served next, or none. Here alone an event is marked as served.
BouclePoll::ActionTenue BouclePoll::Choisir() {
  auto Délai = PremierDélai();
  if (Délai && Délai->Échéance > Temps::now()) Délai.reset();
  const auto Veille = VeillePrête();
  if (Délai && (!Veille || !DélaiServi_)) {
    DélaiServi_ = true;
    return std::exchange(Délai->Faire, nullptr);
  }
  if (!Veille) return nullptr;
  DélaiServi_ = false;
  Veille->Tour = ++Tour_;
  return Veille->Faire;
}

std::shared_ptr<BouclePoll::Entrée> BouclePoll::PremierDélai() const {
  const auto Premier = std::min_element(Délais_.begin(), Délais_.end(),
                                        [](const auto& A, const auto& B) { return A->Échéance < B->Échéance; });
  return Premier == Délais_.end() ? nullptr : *Premier;
}

std::shared_ptr<BouclePoll::Entrée> BouclePoll::VeillePrête() const {
  std::shared_ptr<Entrée> Choisie;
  for (std::size_t Rang = 0; Rang < Sondes_.size(); ++Rang) {
    if (Sondes_[Rang].revents == 0) continue;
    if (!Choisie || Veilles_[Rang]->Tour < Choisie->Tour) Choisie = Veilles_[Rang];
  }
  return Choisie;
}

}  // namespace Ombrey
