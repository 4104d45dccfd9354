// Place and size of the monitoring window and its controls: as designed, on resizing, and in the settings store.
#include "monitor/window_placement.h"

#include <array>
#include <string>

#include "base/failures.h"
#include "base/regional_forms.h"
#include "base/text_helpers.h"

namespace Ombrey {
namespace {

/// The plug-in's own file name without its extension: its application name in the per-user settings.
constexpr const char* NomComposant = "PlgInOmbrey";
constexpr const char* Section = "FSuiviChargnt";
constexpr int NonRéglé = -1;
/// 16384 pixels at 96 to the inch: larger than any screen.
constexpr int TwipsAuPlus = 16384 * 15;

// Margins in twips. Those of the grid hold the window's own frame and caption too.
constexpr int Marge = 60;
constexpr int MargesLargeurGrille = 220;
constexpr int MargesHauteurGrille = 520;
constexpr int MargesLargeurListe = 420;
constexpr int MargeDroiteBoutons = 320;
constexpr int ÉcartBoutons = 100;

struct CléPlace {
  const char* Clé;
  int Rectangle::*Mesure;
  int AuMoins;
};
constexpr std::array<CléPlace, 4> ClésPlace{{
    {"Left", &Rectangle::Gauche, 0},
    {"Top", &Rectangle::Haut, 0},
    {"Height", &Rectangle::Hauteur, 1},
    {"Width", &Rectangle::Largeur, 1},
}};

std::string CléColonne(std::size_t Colonne) { return "Colonne " + std::to_string(Colonne + 1); }

/// Left edge and top of a button at the strip's lower right corner.
Rectangle AuCoin(Rectangle Bouton, const Rectangle& Bande) {
  Bouton.Gauche = Bande.Largeur - Bouton.Largeur - MargeDroiteBoutons;
  Bouton.Haut = Bande.Hauteur - Bouton.Hauteur - Marge;
  return Bouton;
}

}  // namespace

std::span<const DessinContrôleSuivi> DessinSuivi() {
  using enum ContrôleSuivi;
  static const std::array<DessinContrôleSuivi, 8> Dessin{{
      {Grille, "", {60, 60, 10925, 5990}},
      {Onglets, "", {60, 6050, 9555, 2610}},
      {ListeSuivis, "Suivis", {360, 60, 9135, 2490}},
      {ListeErreurs, "Erreurs", {360, 60, 9135, 2460}},
      {BtnInterroger, "&RG80 ?", {8440, 2055, 795, 495}},
      {BtnForcerCumulsRG80, AvecTouche("RG80 en attente des quotas", 'q'), {6525, 2055, 1815, 495}},
      {BtnImprimer, "&Imprimer", {8020, 2055, 1215, 495}},
      {BtnMasquer, "Masquer", {0, 0, 1215, 495}},
  }};
  return Dessin;
}

void DisposerContrôles(IVueSuiviChargnt& Vue) {
  using enum ContrôleSuivi;
  const auto Poser = [&Vue](ContrôleSuivi Contrôle, const Rectangle& Place) {
    if (Place.Largeur >= 0 && Place.Hauteur >= 0) Vue.PlacerContrôle(Contrôle, Place);
  };
  const Rectangle Fenêtre = Vue.PlaceFenêtre();
  Rectangle Bande = Vue.PlaceContrôle(Onglets);
  Poser(Grille,
        {Marge, Marge, Fenêtre.Largeur - MargesLargeurGrille, Fenêtre.Hauteur - Bande.Hauteur - MargesHauteurGrille});

  const Rectangle LaGrille = Vue.PlaceContrôle(Grille);
  Bande = {Marge, LaGrille.Hauteur + Marge, LaGrille.Largeur, Bande.Hauteur};
  Poser(Onglets, Bande);
  for (const auto Liste : {ListeSuivis, ListeErreurs}) {
    Rectangle Place = Vue.PlaceContrôle(Liste);
    Place.Largeur = Bande.Largeur - MargesLargeurListe;
    Poser(Liste, Place);
  }

  const Rectangle Interroger = AuCoin(Vue.PlaceContrôle(BtnInterroger), Bande);
  Poser(BtnInterroger, Interroger);
  Rectangle Forcer = Vue.PlaceContrôle(BtnForcerCumulsRG80);
  Forcer.Gauche = Interroger.Gauche - Forcer.Largeur - ÉcartBoutons;
  Forcer.Haut = Interroger.Haut;
  Poser(BtnForcerCumulsRG80, Forcer);
  Poser(BtnImprimer, AuCoin(Vue.PlaceContrôle(BtnImprimer), Bande));
}

Rectangle RéglagesPlacement::LirePlace(Rectangle Place) const {
  for (const auto& Clé : ClésPlace) {
    const int Twips = Lire(Clé.Clé);
    if (Twips >= Clé.AuMoins) Place.*Clé.Mesure = Twips;
  }
  return Place;
}

void RéglagesPlacement::EcrirePlace(const Rectangle& Place) const {
  for (const auto& Clé : ClésPlace) Ecrire(Clé.Clé, Place.*Clé.Mesure);
}

int RéglagesPlacement::LireLargeur(std::size_t Colonne) const { return Lire(CléColonne(Colonne)); }

void RéglagesPlacement::EcrireLargeur(std::size_t Colonne, int Twips) const { Ecrire(CléColonne(Colonne), Twips); }

int RéglagesPlacement::Lire(const std::string& Clé) const {
  int Twips = NonRéglé;
  Ignorer([&] {
    const auto Texte = Réglages_.Lire(NomComposant, Section, Clé, std::to_string(NonRéglé));
    const int Lus = EnEntier32(Texte, Formes_);
    if (Lus <= TwipsAuPlus) Twips = Lus;
  });
  return Twips;
}

void RéglagesPlacement::Ecrire(const std::string& Clé, int Twips) const {
  Réglages_.Ecrire(NomComposant, Section, Clé, std::to_string(Twips));
}

}  // namespace Ombrey
