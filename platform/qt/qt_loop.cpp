// The event loop on Qt's: Qt's notifiers and timers fill a queue, and the pump runs it.
#include "platform/qt/qt_loop.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QSocketNotifier>
#include <QTimer>
#include <algorithm>
#include <exception>
#include <limits>
#include <utility>

namespace Ombrey {

namespace {
using Temps = std::chrono::steady_clock;

/// Longer waits are cut: a timer of Qt counts in 32 bits.
constexpr std::chrono::milliseconds AttenteLaPlusLongue = std::chrono::hours(24);
/// Two programs that meet at the database are apart again within so long: no pointer flickers for that.
constexpr std::chrono::milliseconds AttenteSansSablier(200);
/// What Qt's timer holds: 24 days.
constexpr std::chrono::milliseconds DélaiLePlusLong{std::numeric_limits<int>::max()};
}  // namespace

struct BoucleQt::Source {
  explicit Source(Action LAction) : Faire(std::move(LAction)) {}
  Action Faire;
  std::unique_ptr<QSocketNotifier> Veilleur;
  std::unique_ptr<QTimer> Minuterie;
  bool EnFile = false;
  bool Vivante = true;
};

IBoucle::Jeton BoucleQt::FaireJeton(std::shared_ptr<Source> Origine) {
  void* const Adresse = Origine.get();
  return {Adresse, [Origine = std::move(Origine)](void*) {
            Origine->Vivante = false;
            Origine->Veilleur.reset();
            Origine->Minuterie.reset();
          }};
}

void BoucleQt::Signaler(const std::shared_ptr<Source>& Origine) {
  if (!Origine->Vivante || Origine->EnFile) return;
  Origine->EnFile = true;
  // A descriptor stays readable until its action has run: Qt would report it over and over.
  if (Origine->Veilleur) Origine->Veilleur->setEnabled(false);
  Prêtes_.push_back(Origine);
}

IBoucle::Jeton BoucleQt::Surveiller(int Descripteur, Sens Quoi, Action Faire) {
  auto Origine = std::make_shared<Source>(std::move(Faire));
  Origine->Veilleur = std::make_unique<QSocketNotifier>(
      Descripteur, Quoi == Sens::Entrée ? QSocketNotifier::Read : QSocketNotifier::Write);
  QObject::connect(Origine->Veilleur.get(), &QSocketNotifier::activated,
                   [this, Faible = std::weak_ptr<Source>(Origine)] {
                     if (const auto Là = Faible.lock()) Signaler(Là);
                   });
  return FaireJeton(std::move(Origine));
}

IBoucle::Jeton BoucleQt::Après(std::chrono::milliseconds Délai, Action Faire) {
  auto Origine = std::make_shared<Source>(std::move(Faire));
  Origine->Minuterie = std::make_unique<QTimer>();
  Origine->Minuterie->setTimerType(Qt::PreciseTimer);
  Origine->Minuterie->setSingleShot(true);
  QObject::connect(Origine->Minuterie.get(), &QTimer::timeout, [this, Faible = std::weak_ptr<Source>(Origine)] {
    if (const auto Là = Faible.lock()) Signaler(Là);
  });
  Origine->Minuterie->start(std::clamp(Délai, std::chrono::milliseconds::zero(), DélaiLePlusLong));
  return FaireJeton(std::move(Origine));
}

void BoucleQt::Poser(Action Faire) { Posées_.push_back(std::move(Faire)); }

void BoucleQt::Garder(const Action& Faire) {
  try {
    Faire();
  } catch (...) {
    Poser([Erreur = std::current_exception()] { std::rethrow_exception(Erreur); });
  }
}

/// Delays that are due only join the queue here; descriptors wait.
void BoucleQt::Peindre() {
  const auto Maintenant = Temps::now();
  if (!AttendDepuis_) AttendDepuis_ = Maintenant;
  Sablier_.Fixer(Maintenant - *AttendDepuis_ >= AttenteSansSablier);
  QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents | QEventLoop::ExcludeSocketNotifiers);
}

bool BoucleQt::Pomper(std::chrono::nanoseconds AttenteMax) {
  const auto Échéance = Temps::now() + std::clamp<std::chrono::nanoseconds>(
                                           AttenteMax, std::chrono::nanoseconds::zero(), AttenteLaPlusLongue);
  for (;;) {
    const auto Reste = std::chrono::ceil<std::chrono::milliseconds>(Échéance - Temps::now());
    const bool Servi = LaisserQt(RienEnFile() ? std::max(Reste, std::chrono::milliseconds::zero())
                                              : std::chrono::milliseconds::zero());
    if (ExécuterUne() || Servi) return true;
    if (Temps::now() >= Échéance) return false;
  }
}

/// Lets Qt serve what is waiting, or wait for something. True when it served anything but the end of the wait.
/// Whoever waited without pumping is back when this runs.
bool BoucleQt::LaisserQt(std::chrono::milliseconds AttenteMax) {
  AttendDepuis_.reset();
  Sablier_.Fixer(false);
  bool Écoulé = false;
  QTimer Réveil;
  QEventLoop::ProcessEventsFlags Drapeaux = QEventLoop::AllEvents;
  if (AttenteMax > std::chrono::milliseconds::zero()) {
    Drapeaux |= QEventLoop::WaitForMoreEvents;
    Réveil.setTimerType(Qt::PreciseTimer);
    Réveil.setSingleShot(true);
    QObject::connect(&Réveil, &QTimer::timeout, [&Écoulé] { Écoulé = true; });
    Réveil.start(AttenteMax);
  }
  ++Imbrication_;
  const bool Servi = QAbstractEventDispatcher::instance()->processEvents(Drapeaux);
  --Imbrication_;
  // Outside of Qt's own loops nobody else buries what deleteLater gave up.
  if (Imbrication_ == 0) QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  return Servi && !Écoulé;
}

bool BoucleQt::ExécuterUne() {
  if (!Posées_.empty()) {
    const Action Faire = std::move(Posées_.front());
    Posées_.pop_front();
    Faire();
    return true;
  }
  while (!Prêtes_.empty()) {
    const auto Origine = std::move(Prêtes_.front());
    Prêtes_.pop_front();
    if (!Origine->Vivante) continue;
    Origine->EnFile = false;
    if (Origine->Veilleur) Origine->Veilleur->setEnabled(true);
    Origine->Faire();
    return true;
  }
  return false;
}

}  // namespace Ombrey
