// The windowing toolkit on a screen: boxes, pointer, toolbar pictures, printer and the two windows.
#pragma once

#include <QIcon>
#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "contracts/system.h"
#include "contracts/toolkit.h"
#include "platform/loop/witnesses.h"
#include "platform/qt/qt_hourglass.h"
#include "platform/qt/qt_loop.h"
#include "platform/qt/qt_window.h"

namespace Ombrey {

class ProgressionQt;

/// Made after the QApplication. Outlives the views that it makes.
class FenêtresQt : public IFenêtres {
 public:
  /// A printed document without a printer goes to the user's documents, or else to DossierTravail.
  FenêtresQt(BoucleQt& Boucle, std::filesystem::path DossierTravail);
  FenêtresQt(const FenêtresQt&) = delete;
  FenêtresQt& operator=(const FenêtresQt&) = delete;

  RéponseBoîte Boîte(const std::string& Texte, const std::string& Titre, BoutonsBoîte Boutons) override;
  /// A state, not a count: one call with false puts the pointer back. An open box shows the normal pointer.
  void FixerSablier(bool Sablier) override { Sablier_.Fixer(Sablier); }
  void PoserImages(const std::vector<Image>& Tailles) override;
  [[nodiscard]] std::unique_ptr<IImprimante> OuvrirImprimante() override;
  [[nodiscard]] std::unique_ptr<IVueSuiviChargnt> CréerVueSuivi(IGestesSuivi& Gestes, const std::string& Légende,
                                                                const Rectangle& Intérieur,
                                                                std::span<const DessinContrôleSuivi> Dessin) override;
  [[nodiscard]] std::unique_ptr<IVueChargntDonnées> CréerVueChargntDonnées(
      IGestesChargntDonnées& Gestes, const std::string& Titre, const Rectangle& Intérieur,
      std::span<const DessinContrôle> Dessin) override;

  /// The station is ending: open boxes answer themselves, and so do later ones; no window holds anybody up any more.
  void Finir() { Contexte_.EnFin = true; }
  /// From now on boxes answer themselves: nobody is there to do it.
  void RépondreSeul() { RépondSeul_ = true; }
  /// How long a box with a lone OK stays (0: until it is answered), and how long a new one takes no answer.
  void RéglerBoîtes(std::chrono::milliseconds Retrait, std::chrono::milliseconds Répit) {
    Contexte_.Retrait = Retrait;
    Contexte_.Répit = Répit;
  }
  /// How far the transfer window's sending is; false once the operator has stopped it.
  [[nodiscard]] bool Avancer(const Avancement& Où);
  void Observer(TémoinsFenêtres Témoins) { Contexte_.Témoins = std::move(Témoins); }
  /// Told of what a gesture raised.
  void SurÉchec(std::function<void(const std::string&)> Dire) { Contexte_.SurÉchec = std::move(Dire); }
  [[nodiscard]] const ContexteQt& Contexte() const { return Contexte_; }
  /// The pictures put on the clipboard last, for a toolbar.
  [[nodiscard]] const QIcon& DernièreImage() const { return Image_; }

 private:
  ContexteQt Contexte_;
  std::filesystem::path DossierTravail_;
  bool RépondSeul_ = false;
  SablierQt Sablier_;
  std::weak_ptr<ProgressionQt> Progression_;  ///< of the transfer window that lives
  QIcon Image_;
  QObject Garde_;  ///< the screens
};

}  // namespace Ombrey
