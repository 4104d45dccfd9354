// The transfer window on a console: its title as it changes, its check boxes and buttons by commands.
#pragma once

#include <memory>
#include <span>
#include <string>
#include <vector>

#include "contracts/toolkit.h"
#include "platform/console/windows.h"

namespace Ombrey {

class VueChargntConsole : public IVueChargntDonnées {
 public:
  VueChargntConsole(FenêtresConsole& Fenêtres, IGestesChargntDonnées& Gestes, std::string Titre,
                    std::span<const DessinContrôle> Dessin);
  VueChargntConsole(const VueChargntConsole&) = delete;
  VueChargntConsole& operator=(const VueChargntConsole&) = delete;
  ~VueChargntConsole() override;

  void MontrerModale() override;
  void Cacher() override;
  void FixerTitre(const std::string& Titre) override;
  void Repeindre() override {}
  /// At the end of a transfer the boxes are shown again: those of the sets that arrived are cleared.
  void Activer(bool Active) override;
  [[nodiscard]] bool EstCochée(const std::string& Case) const override;
  void Cocher(const std::string& Case, bool Cochée) override;
  void MettreEnGras(const std::string& /*Case*/, bool /*Gras*/) override {}

  [[nodiscard]] bool EstVisible() const { return *Montrée_; }
  [[nodiscard]] bool EstActive() const { return Active_; }
  [[nodiscard]] IGestesChargntDonnées& Gestes() { return Gestes_; }
  /// The operator ticks or clears a box by its name in the program or its caption, accents and case aside. False when
  /// there is no such box.
  bool CocherParNom(const std::string& Nom, bool Cochée);

 private:
  struct CaseÀCocher {
    std::string Nom;
    std::string Légende;
    bool Cochée;
  };
  void DireCases() const;

  FenêtresConsole& Fenêtres_;
  IGestesChargntDonnées& Gestes_;
  std::string Titre_;
  std::vector<std::string> Libellés_;
  std::vector<CaseÀCocher> Cases_;
  bool Active_ = true;
  /// Outlives the view in the wait of MontrerModale, which the view's end ends.
  std::shared_ptr<bool> Montrée_ = std::make_shared<bool>(false);
};

}  // namespace Ombrey
