// The monitoring window on a screen.
#pragma once

#include <QListWidget>
#include <QTabBar>
#include <array>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "contracts/toolkit.h"
#include "platform/qt/qt_load_grid.h"
#include "platform/qt/qt_window.h"

namespace Ombrey {

/// Places are kept in twips as they were given and turned into pixels for drawing, so that nothing drifts.
class VueSuiviChargntQt : public IVueSuiviChargnt {
 public:
  VueSuiviChargntQt(const ContexteQt& Contexte, IGestesSuivi& Gestes, const std::string& Légende,
                    const Rectangle& Intérieur, std::span<const DessinContrôleSuivi> Dessin);

  void MontrerModale() override { Fenêtre_.MontrerModale(); }
  void Cacher() override { Fenêtre_->hide(); }
  [[nodiscard]] bool EstVisible() const override { return Fenêtre_->isVisible(); }
  void MettreDevant() override { Fenêtre_.MettreDevant(); }
  void Repeindre() override;

  void RemplirGrille(std::vector<std::string> Entêtes, std::vector<std::vector<std::string>> Rangées) override;
  [[nodiscard]] std::size_t NombreColonnes() const override;
  [[nodiscard]] int LargeurColonne(std::size_t Colonne) const override;
  void FixerLargeurColonne(std::size_t Colonne, int Twips) override;

  void InsérerLigne(Onglet Liste, std::size_t Rang, const std::string& Texte, bool Coché) override;
  void RetirerLigne(Onglet Liste, std::size_t Rang) override;
  void ChoisirLigne(Onglet Liste, std::size_t Rang) override;
  [[nodiscard]] std::size_t LigneCourante(Onglet Liste) const override;

  void OffrirOnglet(Onglet Lequel, bool Offert) override;
  void ChoisirOnglet(Onglet Lequel) override;
  [[nodiscard]] Onglet OngletCourant() const override;
  void MontrerContrôle(ContrôleSuivi Contrôle, bool Visible) override;
  void ActiverContrôle(ContrôleSuivi Contrôle, bool Actif) override;

  [[nodiscard]] Rectangle PlaceContrôle(ContrôleSuivi Contrôle) const override;
  void PlacerContrôle(ContrôleSuivi Contrôle, const Rectangle& Place) override;
  /// The frame counts as CadreNominal says, whatever the window manager draws around.
  [[nodiscard]] Rectangle PlaceFenêtre() const override;
  /// A place off every screen is brought back onto one. A window that fills the screen keeps its place.
  void PlacerFenêtre(const Rectangle& Place) override;
  [[nodiscard]] bool EstAgrandie() const override { return Fenêtre_->isMaximized() || Fenêtre_->isFullScreen(); }
  void Agrandir() override { Fenêtre_->setWindowState(Fenêtre_->windowState() | Qt::WindowMaximized); }

 private:
  void Créer(const DessinContrôleSuivi& Dessin);
  void CréerBande();
  [[nodiscard]] QListWidget* CréerListe(Onglet Lequel);
  [[nodiscard]] QPushButton* CréerBouton(const DessinContrôleSuivi& Dessin);
  void Ordonner();
  void LaisserPlaceAuxBoutons(ContrôleSuivi LaListe, ContrôleSuivi Bouton);
  void Brancher();
  [[nodiscard]] QListWidget& Liste(Onglet Laquelle) const { return *Listes_[static_cast<std::size_t>(Laquelle)]; }
  [[nodiscard]] int Résolution() const { return Fenêtre_->logicalDpiX(); }

  const ContexteQt& Contexte_;
  IGestesSuivi& Gestes_;
  TenueFenêtre Fenêtre_;
  GrilleChargements* Grille_ = nullptr;
  QWidget* Bande_ = nullptr;
  QTabBar* Onglets_ = nullptr;
  std::array<QListWidget*, 2> Listes_{};
  std::map<ContrôleSuivi, QWidget*> Contrôles_;
  std::map<ContrôleSuivi, Rectangle> Places_;
};

}  // namespace Ombrey
