// The X of a window that another one holds up: Qt drops it in silence.
#pragma once

#include <QAbstractNativeEventFilter>
#include <QWidget>
#include <cstdint>
#include <functional>

namespace Ombrey {

/// Calls Dire when the frame of Fenêtre is asked to close while a modal window stands before it. On X11; elsewhere the
/// window system greys such a button, or nothing can be known.
class VeilleFermeture : public QAbstractNativeEventFilter {
 public:
  VeilleFermeture(QWidget& Fenêtre, std::function<void()> Dire);
  VeilleFermeture(const VeilleFermeture&) = delete;
  VeilleFermeture& operator=(const VeilleFermeture&) = delete;
  ~VeilleFermeture() override;
  bool nativeEventFilter(const QByteArray& Genre, void* Message, qintptr* Résultat) override;

 private:
  QWidget& Fenêtre_;
  std::function<void()> Dire_;
  std::uint32_t Protocoles_ = 0;
  std::uint32_t Fermer_ = 0;
};

}  // namespace Ombrey
