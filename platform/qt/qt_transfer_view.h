// The transfer window on a screen.
#pragma once

#include <QAbstractButton>
#include <QElapsedTimer>
#include <QLabel>
#include <functional>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "contracts/toolkit.h"
#include "platform/qt/qt_progress.h"
#include "platform/qt/qt_window.h"

namespace Ombrey {

/// A fixed dialog made from its table of controls.
class VueChargntDonnéesQt : public IVueChargntDonnées {
 public:
  VueChargntDonnéesQt(const ContexteQt& Contexte, IGestesChargntDonnées& Gestes, const std::string& Titre,
                      const Rectangle& Intérieur, std::span<const DessinContrôle> Dessin);

  void MontrerModale() override;
  void Cacher() override { Fenêtre_->hide(); }
  /// A file has a title for each record: most are passed over, the last one never.
  void FixerTitre(const std::string& Titre) override;
  void Repeindre() override;
  void Activer(bool Active) override;
  /// These three raise ErreurExécution for a name that no check box bears.
  [[nodiscard]] bool EstCochée(const std::string& Case) const override;
  void Cocher(const std::string& Case, bool Cochée) override;
  void MettreEnGras(const std::string& Case, bool Gras) override;
  [[nodiscard]] std::shared_ptr<ProgressionQt> Progression() const { return Progression_; }

 private:
  [[nodiscard]] QWidget* Créer(const DessinContrôle& Dessin);
  void PoserTitre();
  [[nodiscard]] QString NomDe(const std::string& Case) const;
  [[nodiscard]] QAbstractButton& LaCase(const std::string& Nom) const;

  IGestesChargntDonnées& Gestes_;
  std::function<void(bool)> Transfert_;
  TenueFenêtre Fenêtre_;
  std::shared_ptr<ProgressionQt> Progression_;
  std::string EnCours_;  ///< name of the box whose data set goes
  std::map<std::string, QAbstractButton*> Cases_;
  std::vector<std::string> OrdreCases_;
  QLabel* Consigne_ = nullptr;  ///< what the operator has to do first; the progress, once he has
  QString TexteConsigne_;
  QString Titre_;
  bool TitrePosé_ = true;
  QElapsedTimer DepuisTitre_;
  QWidget* Foyer_ = nullptr;  ///< where the keys go, or went when the window was disabled
};

}  // namespace Ombrey
