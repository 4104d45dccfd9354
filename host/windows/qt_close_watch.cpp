// The X of a window that another one holds up.
#include "host/windows/qt_close_watch.h"

#include <QtGui/qguiapplication_platform.h>
#include <xcb/xcb.h>

#include <QApplication>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <utility>

namespace Ombrey {

namespace {
std::uint32_t Atome(xcb_connection_t* Lien, std::string_view Nom) {
  const auto Demande = xcb_intern_atom(Lien, 0, static_cast<std::uint16_t>(Nom.size()), Nom.data());
  const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> Réponse(
      xcb_intern_atom_reply(Lien, Demande, nullptr), &std::free);
  return Réponse ? Réponse->atom : 0;
}
}  // namespace

VeilleFermeture::VeilleFermeture(QWidget& Fenêtre, std::function<void()> Dire)
    : Fenêtre_(Fenêtre), Dire_(std::move(Dire)) {
  const auto* const X11 = qApp->nativeInterface<QNativeInterface::QX11Application>();
  if (X11 == nullptr || X11->connection() == nullptr) return;  // another window system, or none at all
  Protocoles_ = Atome(X11->connection(), "WM_PROTOCOLS");
  Fermer_ = Atome(X11->connection(), "WM_DELETE_WINDOW");
  qApp->installNativeEventFilter(this);
}

VeilleFermeture::~VeilleFermeture() { qApp->removeNativeEventFilter(this); }

bool VeilleFermeture::nativeEventFilter(const QByteArray& Genre, void* Message, qintptr* /*Résultat*/) {
  constexpr std::uint8_t SansOrigine = 0x7F;
  if (Genre != "xcb_generic_event_t") return false;
  const auto* const Événement = static_cast<const xcb_client_message_event_t*>(Message);
  const QWidget* const Modale = QApplication::activeModalWidget();
  if ((Événement->response_type & SansOrigine) == XCB_CLIENT_MESSAGE && Événement->type == Protocoles_ &&
      Événement->data.data32[0] == Fermer_ && Modale != nullptr && Modale != &Fenêtre_ &&
      Événement->window == Fenêtre_.winId())
    Dire_();
  return false;
}

}  // namespace Ombrey
