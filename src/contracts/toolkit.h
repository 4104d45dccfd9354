// What draws: message boxes, pointer, clipboard picture, printer, and the views behind the two windows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace Ombrey {

/// Place and size in twips, 1/1440 inch, from the left and top edge of what the thing stands in.
struct Rectangle {
  int Gauche = 0;
  int Haut = 0;
  int Largeur = 0;
  int Hauteur = 0;
  friend bool operator==(const Rectangle&, const Rectangle&) = default;
};

enum class BoutonsBoîte { Ok, RecommencerAnnuler };
enum class RéponseBoîte { Ok, Recommencer, Annuler };
/// What a box takes for its answer when nobody gives one.
[[nodiscard]] constexpr RéponseBoîte RéponseSansOpérateur(BoutonsBoîte Boutons) {
  return Boutons == BoutonsBoîte::Ok ? RéponseBoîte::Ok : RéponseBoîte::Annuler;
}

/// A square picture: Côté × Côté pixels, row by row from the top, 0xAARRGGBB.
struct Image {
  std::size_t Côté = 0;
  std::vector<std::uint32_t> Pixels;
};

/// A printer with one document under way. Positions and heights are in one unit of its own, the same for both.
/// Dropped without TerminerDocument, it prints nothing.
class IImprimante {
 public:
  virtual ~IImprimante() = default;
  virtual void FixerPolice(int Points, bool Gras, bool Souligné) = 0;
  /// Prints one line at the current position and moves down by its height.
  virtual void Imprimer(const std::string& Ligne) = 0;
  [[nodiscard]] virtual double PositionVerticale() const = 0;
  [[nodiscard]] virtual double HauteurPage() const = 0;
  virtual void NouvellePage() = 0;
  /// Raises ErreurExécution when the document can't be printed or written.
  virtual void TerminerDocument() = 0;
};

/// The two tabs of the monitoring window, each with its list.
enum class Onglet : std::size_t { Suivis = 0, Erreurs = 1 };

/// The controls of the monitoring window.
enum class ContrôleSuivi {
  Grille,
  Onglets,
  ListeSuivis,
  ListeErreurs,
  BtnInterroger,
  BtnForcerCumulsRG80,
  BtnImprimer,
  BtnMasquer,
};

/// A control as it is made: its text and its place as designed. The lists and the buttons other than BtnMasquer stand
/// in the tab strip, and their places are relative to it; the rest is relative to the window's inner area.
struct DessinContrôleSuivi {
  ContrôleSuivi Contrôle;
  std::string Texte;
  Rectangle Place;
};

/// What the operator does in the monitoring window. The window may be destroyed in the course of any of these.
class IGestesSuivi {
 public:
  virtual ~IGestesSuivi() = default;
  virtual void BtnInterroger_Click() = 0;
  virtual void BtnForcerCumulsRG80_Click() = 0;
  virtual void BtnImprimer_Click() = 0;
  /// Also the Esc key.
  virtual void BtnMasquer_Click() = 0;
  virtual void Onglets_Click() = 0;
  virtual void ListeMessages_DblClick(Onglet Liste) = 0;
  virtual void Form_Activate() = 0;
  virtual void Form_Resize() = 0;
  /// The window is to be closed; ParUtilisateur: from its own frame. True refuses the closing.
  virtual bool Form_QueryUnload(bool ParUtilisateur) = 0;
};

/// Draws the monitoring window. It decides nothing: contents, order, place and visibility come from outside.
/// Lines are counted from 0, the newest on top. Columns are counted from 0. Dropping the object closes the window and
/// ends a MontrerModale that runs.
class IVueSuiviChargnt {
 public:
  virtual ~IVueSuiviChargnt() = default;
  /// Shows the window and runs the loop until it is hidden or destroyed. On a window already shown: brings it to the
  /// front and returns at once.
  virtual void MontrerModale() = 0;
  virtual void Cacher() = 0;
  [[nodiscard]] virtual bool EstVisible() const = 0;
  /// To the front, with the focus, on top of the others; place and size stay.
  virtual void MettreDevant() = 0;
  /// Repaints lists and window at once and lets no event run.
  virtual void Repeindre() = 0;

  /// Replaces the grid's contents without flicker. Each row has as many texts as there are headings.
  virtual void RemplirGrille(std::vector<std::string> Entêtes, std::vector<std::vector<std::string>> Rangées) = 0;
  [[nodiscard]] virtual std::size_t NombreColonnes() const = 0;
  /// In twips; 0 while the column has no width of its own to remember.
  [[nodiscard]] virtual int LargeurColonne(std::size_t Colonne) const = 0;
  virtual void FixerLargeurColonne(std::size_t Colonne, int Twips) = 0;

  /// Coché counts in the message list alone: the error list has no tick boxes.
  virtual void InsérerLigne(Onglet Liste, std::size_t Rang, const std::string& Texte, bool Coché) = 0;
  virtual void RetirerLigne(Onglet Liste, std::size_t Rang) = 0;
  /// Makes the line the current one, in view; in the error list it is also selected.
  virtual void ChoisirLigne(Onglet Liste, std::size_t Rang) = 0;
  /// The current line, or a number beyond the list when there is none.
  [[nodiscard]] virtual std::size_t LigneCourante(Onglet Liste) const = 0;

  virtual void OffrirOnglet(Onglet Lequel, bool Offert) = 0;
  virtual void ChoisirOnglet(Onglet Lequel) = 0;
  [[nodiscard]] virtual Onglet OngletCourant() const = 0;
  virtual void MontrerContrôle(ContrôleSuivi Contrôle, bool Visible) = 0;
  /// A disabled control is seen but takes no click or key.
  virtual void ActiverContrôle(ContrôleSuivi Contrôle, bool Actif) = 0;

  [[nodiscard]] virtual Rectangle PlaceContrôle(ContrôleSuivi Contrôle) const = 0;
  virtual void PlacerContrôle(ContrôleSuivi Contrôle, const Rectangle& Place) = 0;
  /// Outer edges of the window on the screen.
  [[nodiscard]] virtual Rectangle PlaceFenêtre() const = 0;
  virtual void PlacerFenêtre(const Rectangle& Place) = 0;
  /// The window fills the screen.
  [[nodiscard]] virtual bool EstAgrandie() const = 0;
  virtual void Agrandir() = 0;
};

enum class GenreContrôle { Libellé, CaseÀCocher, Bouton };

/// A control of the transfer window as it is made. "&" in Texte stands ahead of the mnemonic letter.
struct DessinContrôle {
  std::string Nom;  ///< name in the program, such as "ChkCoop"
  GenreContrôle Genre;
  std::string Texte;
  Rectangle Place;
  int OrdreTabulation;
};

class IGestesChargntDonnées {
 public:
  virtual ~IGestesChargntDonnées() = default;
  virtual void BtnTransférer_Click() = 0;
  /// Also the frame's closing button and Esc, which a disabled window ignores.
  virtual void BtnFermer_Click() = 0;
};

/// Draws the transfer window, a fixed dialog centred on the screen. Controls are addressed by their names.
/// Dropping the object closes the window.
class IVueChargntDonnées {
 public:
  virtual ~IVueChargntDonnées() = default;
  /// Shows the window and runs the loop until it is hidden or destroyed.
  virtual void MontrerModale() = 0;
  virtual void Cacher() = 0;
  virtual void FixerTitre(const std::string& Titre) = 0;
  virtual void Repeindre() = 0;
  /// A disabled window takes no click, key or closing.
  virtual void Activer(bool Active) = 0;
  [[nodiscard]] virtual bool EstCochée(const std::string& Case) const = 0;
  virtual void Cocher(const std::string& Case, bool Cochée) = 0;
  virtual void MettreEnGras(const std::string& Case, bool Gras) = 0;
};

/// The windowing toolkit.
class IFenêtres {
 public:
  virtual ~IFenêtres() = default;
  /// Shows a modal message box and runs the loop until it is answered. Once the station is ending, a box answers
  /// itself at once: OK, or Annuler.
  virtual RéponseBoîte Boîte(const std::string& Texte, const std::string& Titre, BoutonsBoîte Boutons) = 0;
  /// Hourglass or normal pointer, for the whole screen.
  virtual void FixerSablier(bool Sablier) = 0;
  /// Clears the clipboard and puts the button's picture on it, in the sizes given.
  virtual void PoserImages(const std::vector<Image>& Tailles) = 0;
  /// Starts a document on the default printer. Raises ErreurExécution when there is none and no file can stand for it.
  [[nodiscard]] virtual std::unique_ptr<IImprimante> OuvrirImprimante() = 0;
  /// Makes the window, hidden, with its caption, inner size and controls. Gestes must outlive the view.
  [[nodiscard]] virtual std::unique_ptr<IVueSuiviChargnt> CréerVueSuivi(
      IGestesSuivi& Gestes, const std::string& Légende, const Rectangle& Intérieur,
      std::span<const DessinContrôleSuivi> Dessin) = 0;
  /// Makes the window, hidden, all check boxes ticked.
  [[nodiscard]] virtual std::unique_ptr<IVueChargntDonnées> CréerVueChargntDonnées(
      IGestesChargntDonnées& Gestes, const std::string& Titre, const Rectangle& Intérieur,
      std::span<const DessinContrôle> Dessin) = 0;
};

}  // namespace Ombrey
