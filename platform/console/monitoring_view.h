// The monitoring window on a console: its lines as they come, its lists and its grid on demand.
#pragma once

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "contracts/toolkit.h"
#include "platform/console/windows.h"

namespace Ombrey {

/// Prints each line that enters a list. Nothing has a place on a console: the window stands as designed, and no column
/// has a width to remember.
class VueSuiviConsole : public IVueSuiviChargnt {
 public:
  VueSuiviConsole(FenêtresConsole& Fenêtres, IGestesSuivi& Gestes, std::string Légende, const Rectangle& Intérieur);
  VueSuiviConsole(const VueSuiviConsole&) = delete;
  VueSuiviConsole& operator=(const VueSuiviConsole&) = delete;
  ~VueSuiviConsole() override;

  void MontrerModale() override;
  void Cacher() override;
  [[nodiscard]] bool EstVisible() const override { return *Montrée_; }
  void MettreDevant() override {}
  void Repeindre() override {}

  void RemplirGrille(std::vector<std::string> Entêtes, std::vector<std::vector<std::string>> Rangées) override;
  [[nodiscard]] std::size_t NombreColonnes() const override { return Entêtes_.size(); }
  [[nodiscard]] int LargeurColonne(std::size_t /*Colonne*/) const override { return 0; }
  void FixerLargeurColonne(std::size_t /*Colonne*/, int /*Twips*/) override {}

  void InsérerLigne(Onglet Liste, std::size_t Rang, const std::string& Texte, bool Coché) override;
  void RetirerLigne(Onglet Liste, std::size_t Rang) override;
  void ChoisirLigne(Onglet Liste, std::size_t Rang) override { De(Liste).Courante = Rang; }
  [[nodiscard]] std::size_t LigneCourante(Onglet Liste) const override;

  void OffrirOnglet(Onglet Lequel, bool Offert) override;
  void ChoisirOnglet(Onglet Lequel) override;
  [[nodiscard]] Onglet OngletCourant() const override { return Courant_; }
  void MontrerContrôle(ContrôleSuivi /*Contrôle*/, bool /*Visible*/) override {}
  void ActiverContrôle(ContrôleSuivi /*Contrôle*/, bool /*Actif*/) override {}

  [[nodiscard]] Rectangle PlaceContrôle(ContrôleSuivi /*Contrôle*/) const override { return {}; }
  void PlacerContrôle(ContrôleSuivi /*Contrôle*/, const Rectangle& /*Place*/) override {}
  [[nodiscard]] Rectangle PlaceFenêtre() const override { return Place_; }
  void PlacerFenêtre(const Rectangle& /*Place*/) override {}
  [[nodiscard]] bool EstAgrandie() const override { return false; }
  void Agrandir() override {}

  [[nodiscard]] IGestesSuivi& Gestes() { return Gestes_; }
  /// The lines of a list as the console shows them, the oldest first.
  [[nodiscard]] std::vector<std::string> Lignes(Onglet Liste) const;
  void OublierGrille() { GrilleLue_ = false; }
  /// Whether the grid was filled since it was last called forgotten; until then it stands as it was.
  [[nodiscard]] bool GrilleLue() const { return GrilleLue_; }
  /// The grid as a table with lined-up columns, its headings on top.
  [[nodiscard]] std::vector<std::string> Tableau() const;

 private:
  struct LigneDeListe {
    std::string Texte;
    bool Cochée;
  };
  struct ContenuListe {
    std::vector<LigneDeListe> Lignes;  ///< the newest first
    std::size_t Courante = static_cast<std::size_t>(-1);
  };
  [[nodiscard]] ContenuListe& De(Onglet Laquelle) { return Listes_[static_cast<std::size_t>(Laquelle)]; }
  [[nodiscard]] const ContenuListe& De(Onglet Laquelle) const { return Listes_[static_cast<std::size_t>(Laquelle)]; }

  FenêtresConsole& Fenêtres_;
  IGestesSuivi& Gestes_;
  std::string Légende_;
  /// Outlives the view in the wait of MontrerModale, which the view's end ends.
  std::shared_ptr<bool> Montrée_ = std::make_shared<bool>(false);
  std::array<ContenuListe, 2> Listes_;
  Onglet Courant_ = Onglet::Suivis;
  std::vector<std::string> Entêtes_;
  std::vector<std::vector<std::string>> Grille_;
  bool GrilleLue_ = false;
  Rectangle Place_;
};

}  // namespace Ombrey
