// The windowing toolkit on a console: boxes and windows as lines, answered and worked by commands.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "contracts/toolkit.h"
#include "platform/console/output.h"
#include "platform/loop/loop.h"
#include "platform/loop/witnesses.h"

namespace Ombrey {

class VueChargntConsole;
class VueSuiviConsole;

/// Boxes, views and printer without a screen; a console has neither pointer nor clipboard. Whoever reads the operator's
/// commands works the open boxes and windows through this class. Outlives the views that it makes.
class FenêtresConsole : public IFenêtres {
 public:
  FenêtresConsole(IBoucle& Boucle, SortieConsole& Sortie) : Boucle_(Boucle), Sortie_(Sortie) {}
  FenêtresConsole(const FenêtresConsole&) = delete;
  FenêtresConsole& operator=(const FenêtresConsole&) = delete;
  ~FenêtresConsole() override = default;

  RéponseBoîte Boîte(const std::string& Texte, const std::string& Titre, BoutonsBoîte Boutons) override;
  void FixerSablier(bool /*Sablier*/) override {}
  void PoserImages(const std::vector<Image>& /*Tailles*/) override {}
  [[nodiscard]] std::unique_ptr<IImprimante> OuvrirImprimante() override;
  [[nodiscard]] std::unique_ptr<IVueSuiviChargnt> CréerVueSuivi(IGestesSuivi& Gestes, const std::string& Légende,
                                                                const Rectangle& Intérieur,
                                                                std::span<const DessinContrôleSuivi> Dessin) override;
  [[nodiscard]] std::unique_ptr<IVueChargntDonnées> CréerVueChargntDonnées(
      IGestesChargntDonnées& Gestes, const std::string& Titre, const Rectangle& Intérieur,
      std::span<const DessinContrôle> Dessin) override;

  /// From now on boxes answer themselves, whether commands still come or not.
  void RépondreSeul() { RépondSeul_ = true; }
  /// How long a box with a lone OK stays unanswered; 0: until somebody does.
  void RéglerBoîtes(std::chrono::milliseconds Retrait) { Retrait_ = Retrait; }
  /// No command can come any more: boxes answer themselves, and a window that stops the work closes itself.
  void FermerEntrée() { EntréeFermée_ = true; }
  /// The station is ending: boxes answer themselves, and no window holds anybody up.
  void Finir() { EnFin_ = true; }
  [[nodiscard]] bool EntréeFermée() const { return EntréeFermée_; }
  /// True when the operator can be asked something.
  [[nodiscard]] bool OpérateurPrésent() const { return !RépondSeul_ && !EntréeFermée_ && !EnFin_; }

  [[nodiscard]] bool BoîteOuverte() const { return !Boîtes_.empty(); }
  /// Answers the innermost open box. False when it has no such button, or none is open.
  bool Répondre(RéponseBoîte Réponse);

  /// The living views; nullptr when there is none.
  [[nodiscard]] VueSuiviConsole* VueSuivi() const { return VueSuivi_; }
  [[nodiscard]] VueChargntConsole* VueChargnt() const { return VueChargnt_; }
  void Oublier(const VueSuiviConsole& Vue) {
    if (VueSuivi_ != &Vue) return;
    VueSuivi_ = nullptr;
    FichierImpression_.reset();
  }
  void Oublier(const VueChargntConsole& Vue) {
    if (VueChargnt_ == &Vue) VueChargnt_ = nullptr;
  }

  /// The file that the window's next document goes to, and that one alone: without a file there is no printer.
  void FixerFichierImpression(std::string Fichier) { FichierImpression_ = std::move(Fichier); }
  [[nodiscard]] bool ImpressionEnAttente() const { return FichierImpression_.has_value(); }

  /// Runs the loop as long as Dure says and the station isn't ending. The operator can work the console meanwhile as
  /// if nothing were under way: the wait is for him.
  void PomperTantQue(const std::function<bool()>& Dure);

  /// Runs what the loop has been given for at once. The operator's next command waits, whichever it is.
  void PomperCeQuiEstDû();
  [[nodiscard]] bool Retient() const { return Retenue_ > 0; }

  /// While a command runs, and waits for anything but the operator, the operator's next one is held back.
  class Occupation {
   public:
    explicit Occupation(FenêtresConsole& Fenêtres) : Fenêtres_(Fenêtres) { ++Fenêtres_.Occupée_; }
    Occupation(const Occupation&) = delete;
    Occupation& operator=(const Occupation&) = delete;
    ~Occupation();

   private:
    FenêtresConsole& Fenêtres_;
  };
  [[nodiscard]] bool Occupée() const { return Occupée_ > 0; }
  /// Called whenever commands that were held back may pass.
  void SurDisponibilité(std::function<void()> Dire) { DireDisponible_ = std::move(Dire); }

  void Ligne(const std::string& Texte) { Sortie_.Ligne(Texte); }
  /// Tells what became of a window.
  void LigneFenêtre(const std::string& Titre, const char* Devenue) { Ligne("fenêtre « " + Titre + " » " + Devenue); }
  void Observer(TémoinsFenêtres Témoins) { Témoins_ = std::move(Témoins); }
  [[nodiscard]] const TémoinsFenêtres& Témoins() const { return Témoins_; }
  /// A line now and then; false once the operator has asked for the end of it.
  [[nodiscard]] bool Avancer(const Avancement& Où);
  void ArrêterEnvoi() { Arrêt_ = true; }
  /// What was asked before a transfer began doesn't concern it.
  void ReprendreEnvoi() { Arrêt_ = false; }

 private:
  struct BoîteEnCours {
    BoutonsBoîte Boutons;
    std::optional<RéponseBoîte> Réponse;
  };
  void SignalerDisponibilité() const;

  IBoucle& Boucle_;
  SortieConsole& Sortie_;
  bool RépondSeul_ = false;
  bool EntréeFermée_ = false;
  bool EnFin_ = false;
  std::chrono::milliseconds Retrait_{0};
  int Occupée_ = 0;
  int Retenue_ = 0;
  std::optional<std::string> FichierImpression_;
  std::vector<std::shared_ptr<BoîteEnCours>> Boîtes_;  ///< open and not yet answered, the innermost last
  VueSuiviConsole* VueSuivi_ = nullptr;
  VueChargntConsole* VueChargnt_ = nullptr;
  std::function<void()> DireDisponible_;
  TémoinsFenêtres Témoins_;
  bool Arrêt_ = false;
  std::chrono::steady_clock::time_point DernierPoint_{};
};

}  // namespace Ombrey
