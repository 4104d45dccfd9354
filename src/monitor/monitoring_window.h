// The monitoring window: today's loads, the messages of the link and the errors.
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "common/context.h"
#include "common/line_use.h"
#include "common/operator_channel.h"
#include "contracts/system.h"
#include "contracts/toolkit.h"

namespace Ombrey {

/// Keeps the two lists of lines and decides what the window shows; its view only draws. Comes into being hidden.
/// Destroying it is unloading: the place is saved, and an Afficher that runs ends without touching the object again.
/// So it can go away in the midst of every call that runs the loop, as long as nobody else holds it meanwhile.
class FSuiviChargnt final : public IGestesSuivi {
 public:
  /// Both references must outlive the window.
  FSuiviChargnt(ÉtatPartagé& État, IServicesLiaison& Services);
  FSuiviChargnt(const FSuiviChargnt&) = delete;
  FSuiviChargnt& operator=(const FSuiviChargnt&) = delete;
  ~FSuiviChargnt() override;

  /// A time-stamped line on top of the message list, its box ticked or not. It replaces an equal text among the two
  /// newest lines.
  void AjouterMessage(const std::string& Texte, bool Coché);
  /// A time-stamped line on top of the error list, which comes into view, and the same in the message list.
  void AjouterErreur(const std::string& Texte);
  /// Reads today's loads again and applies the saved column widths. Raises nothing and leaves no error pending: a
  /// grid that can't be read stays as it was. While the line is in use the list is read a moment later, once for all
  /// who asked: a terminal that waits for its ACK doesn't wait for a long day's list.
  void Rafraîchir();
  /// Shows the window and comes back when it is hidden or destroyed.
  void Afficher();
  [[nodiscard]] bool EstVisible() const;

  void BtnInterroger_Click() override;
  void BtnForcerCumulsRG80_Click() override;
  void BtnImprimer_Click() override;
  void BtnMasquer_Click() override;
  void Onglets_Click() override;
  void ListeMessages_DblClick(Onglet Liste) override;
  void Form_Activate() override;
  void Form_Resize() override;
  bool Form_QueryUnload(bool ParUtilisateur) override;

 private:
  void Form_Load();
  void Form_Unload();
  void ReprendrePlace();
  void SauverPlacement();
  void OffrirCumuls();
  void MontrerLigne(const std::string& Texte);
  [[nodiscard]] bool BoîtePermise(DemandeLiaison Demande, std::function<void()> Reprise);
  void RelireListe();
  void RemplirGrille();
  [[nodiscard]] std::string Horodatage() const;

  ÉtatPartagé& État_;
  IServicesLiaison& Services_;
  std::deque<std::string> Messages_;  ///< newest line first
  std::deque<std::string> Erreurs_;   ///< newest line first
  bool GrilleRemplie_ = false;
  bool ÀRelire_ = false;
  std::shared_ptr<IRetard> Relecture_;
  std::optional<Rectangle> PlaceDEmprunt_;  ///< where the window stands because its own place is off the screens
  std::shared_ptr<const void> Vie_;         ///< expires with the window; what waits across the loop looks at it
  std::unique_ptr<IVueSuiviChargnt> Vue_;
};

}  // namespace Ombrey
