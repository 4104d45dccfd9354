// Time and windows in memory: a clock that only pumps move, boxes, views and a printer that are recorded.
#pragma once

#include <deque>
#include <map>

#include "contracts/platform.h"

namespace Ombrey::Essais {

using std::chrono::milliseconds;
using Mot = const std::string&;
using Mots = std::vector<std::string>;

/// Time and events. An event runs in the pump that reaches its time.
struct FauxSystème : ISystème {
  std::uint64_t Horloge = 1000;  ///< milliseconds; Tics() is its low half
  DateHeure Mur{2026, 9, 22, 8, 30, 0};
  std::filesystem::path Dossier = std::filesystem::temp_directory_path();
  int Pompages = 0;

  /// Has Faire run once the clock has moved on by Délai. The result is for Annuler.
  std::uint64_t Après(milliseconds Délai, std::function<void()> Faire) {
    File_.emplace(Dans(Délai), std::pair{++DernierNuméro_, std::move(Faire)});
    return DernierNuméro_;
  }
  void Annuler(std::uint64_t Numéro) {
    std::erase_if(File_, [=](auto& E) { return E.second.first == Numéro; });
  }
  /// Pumps until the clock has moved on by Durée.
  void Laisser(milliseconds Durée) {
    for (const auto Fin = Dans(Durée); Horloge < Fin;) Pomper(milliseconds(Fin - Horloge));
  }

  std::uint32_t Tics() const override { return static_cast<std::uint32_t>(Horloge); }
  DateHeure Maintenant() const override { return Mur; }
  Régional FormesRégionales() const override { return {}; }
  std::filesystem::path CheminApplication() const override { return Dossier; }
  std::filesystem::path DossierImportsConservés() const override { return Dossier / "imports-refusés"; }
  bool Pomper(milliseconds AttenteMax) override {
    if (++Pompages > 1'000'000) throw std::logic_error("a wait that never ends");
    const auto Prochain = File_.begin();
    if (Prochain == File_.end() || Prochain->first > Dans(AttenteMax)) {
      Horloge = Dans(AttenteMax);
      return false;
    }
    Horloge = std::max(Horloge, Prochain->first);
    const auto Faire = std::move(Prochain->second.second);
    File_.erase(Prochain);
    Faire();
    return true;
  }

 private:
  std::uint64_t Dans(milliseconds Délai) const { return Horloge + static_cast<std::uint64_t>(Délai.count()); }

  std::multimap<std::uint64_t, std::pair<std::uint64_t, std::function<void()>>> File_;
  std::uint64_t DernierNuméro_ = 0;
};

struct FausseVueSuivi : IVueSuiviChargnt {
  FausseVueSuivi(IGestesSuivi& LesGestes, FauxSystème& LeSystème, FausseVueSuivi*& LaVivante)
      : Gestes(LesGestes), Système_(LeSystème), Vivante_(LaVivante) {
    Vivante_ = this;
  }
  ~FausseVueSuivi() override { Vivante_ = nullptr; }

  IGestesSuivi& Gestes;
  std::map<Onglet, std::vector<std::pair<std::string, bool>>> Lignes;  ///< text and tick
  std::map<Onglet, std::size_t> Courante;
  std::map<Onglet, bool> Offert;
  Onglet OngletChoisi = Onglet::Suivis;
  std::vector<Mots> Grille;  ///< the headings ahead of the rows
  std::map<std::size_t, int> Largeurs;
  std::map<ContrôleSuivi, bool> Visibles, Actifs;
  std::map<ContrôleSuivi, Rectangle> Places;
  Rectangle Fenêtre{1000, 800, 11265, 9525};
  int BordDroit = 30000;  ///< no window stands farther to the right
  bool Visible = false, Agrandie = false;

  /// Pumps until hidden; a test hides it by an event of the clock.
  void MontrerModale() override {
    if (Visible) return;
    Visible = true;
    Gestes.Form_Activate();
    FauxSystème& Système = Système_;
    // The view may be dropped in any pump.
    for (const std::weak_ptr<const void> Vie = Vie_; !Vie.expired() && Visible;) Système.Pomper(milliseconds(1000));
  }
  void Cacher() override { Visible = false; }
  bool EstVisible() const override { return Visible; }
  void MettreDevant() override {}
  void Repeindre() override {}
  void RemplirGrille(Mots Entêtes, std::vector<Mots> LesLignes) override {
    Grille = std::move(LesLignes);
    Grille.insert(Grille.begin(), std::move(Entêtes));
  }
  std::size_t NombreColonnes() const override { return Grille.empty() ? 0 : Grille[0].size(); }
  int LargeurColonne(std::size_t Colonne) const override { return Largeurs.at(Colonne); }
  void FixerLargeurColonne(std::size_t Colonne, int Twips) override { Largeurs[Colonne] = Twips; }
  void InsérerLigne(Onglet Liste, std::size_t Rang, Mot Texte, bool Coché) override {
    Lignes[Liste].insert(Lignes[Liste].begin() + static_cast<std::ptrdiff_t>(Rang), {Texte, Coché});
  }
  void RetirerLigne(Onglet Liste, std::size_t Rang) override {
    if (Rang >= Lignes[Liste].size()) throw std::out_of_range("no such line in the list");
    Lignes[Liste].erase(Lignes[Liste].begin() + static_cast<std::ptrdiff_t>(Rang));
  }
  void ChoisirLigne(Onglet Liste, std::size_t Rang) override { Courante[Liste] = Rang; }
  std::size_t LigneCourante(Onglet Liste) const override { return Courante.contains(Liste) ? Courante.at(Liste) : 0; }
  void OffrirOnglet(Onglet Lequel, bool EstOffert) override { Offert[Lequel] = EstOffert; }
  void ChoisirOnglet(Onglet Lequel) override { OngletChoisi = Lequel; }
  Onglet OngletCourant() const override { return OngletChoisi; }
  void MontrerContrôle(ContrôleSuivi Contrôle, bool EstVisible) override { Visibles[Contrôle] = EstVisible; }
  void ActiverContrôle(ContrôleSuivi Contrôle, bool Actif) override { Actifs[Contrôle] = Actif; }
  Rectangle PlaceContrôle(ContrôleSuivi Contrôle) const override { return Places.at(Contrôle); }
  void PlacerContrôle(ContrôleSuivi Contrôle, const Rectangle& Place) override { Places[Contrôle] = Place; }
  Rectangle PlaceFenêtre() const override { return Fenêtre; }
  void PlacerFenêtre(const Rectangle& Place) override {
    Fenêtre = Place;
    Fenêtre.Gauche = std::min(Place.Gauche, BordDroit);
  }
  bool EstAgrandie() const override { return Agrandie; }
  void Agrandir() override { Agrandie = true; }

 private:
  FauxSystème& Système_;
  FausseVueSuivi*& Vivante_;
  std::shared_ptr<const void> Vie_ = std::make_shared<int>();
};

struct FausseVueChargntDonnées : IVueChargntDonnées {
  FausseVueChargntDonnées(IGestesChargntDonnées& LesGestes, FauxSystème& LeSystème, FausseVueChargntDonnées*& LaVivante)
      : Gestes(LesGestes), Système_(LeSystème), Vivante_(LaVivante) {
    Vivante_ = this;
  }
  ~FausseVueChargntDonnées() override { Vivante_ = nullptr; }

  IGestesChargntDonnées& Gestes;
  Mots Titres;
  std::map<std::string, bool> Cases;
  std::string Graisses;  ///< the boxes' names, without "Chk", in the order of the calls, each behind "+" or "-"
  bool Active = true;

  void MontrerModale() override {
    for (Visible_ = true; Visible_;) Système_.Pomper(milliseconds(1000));
  }
  void Cacher() override { Visible_ = false; }
  void FixerTitre(Mot Titre) override { Titres.push_back(Titre); }
  void Repeindre() override {}
  void Activer(bool EstActive) override { Active = EstActive; }
  bool EstCochée(Mot Case) const override { return Cases.at(Case); }
  void Cocher(Mot Case, bool Cochée) override { Cases.at(Case) = Cochée; }
  void MettreEnGras(Mot Case, bool Gras) override { Graisses += (Gras ? "+" : "-") + Case.substr(3); }

 private:
  FauxSystème& Système_;
  FausseVueChargntDonnées*& Vivante_;
  bool Visible_ = false;
};

struct BoîteMontrée {
  std::string Texte;
  std::string Titre;
  BoutonsBoîte Boutons;
};

/// Two sheets of twenty lines of any size. A line is recorded as "page size[g][s] text", g for bold, s for underlined;
/// then the document's end.
struct FausseImprimante : IImprimante {
  explicit FausseImprimante(Mots& Imprimé) : Imprimé_(Imprimé) {}
  void FixerPolice(int Points, bool Gras, bool Souligné) override {
    Police_ = std::to_string(Points) + (Gras ? "g" : "") + (Souligné ? "s" : "");
  }
  void Imprimer(Mot Ligne) override {
    Imprimé_.push_back(std::to_string(Page_) + " " + Police_ + " " + Ligne);
    ++Position_;
  }
  double PositionVerticale() const override { return Position_; }
  double HauteurPage() const override { return 20; }
  void NouvellePage() override {
    if (++Page_ > 2) throw ErreurExécution("plus de papier");
    Position_ = 0;
  }
  void TerminerDocument() override { Imprimé_.emplace_back("end"); }

 private:
  Mots& Imprimé_;
  std::string Police_;
  int Page_ = 1;
  int Position_ = 0;
};

struct FaussesFenêtres : IFenêtres {
  explicit FaussesFenêtres(FauxSystème& LeSystème) : Système(LeSystème) {}

  FauxSystème& Système;
  std::vector<BoîteMontrée> Boîtes;
  std::deque<RéponseBoîte> Réponses;           ///< consumed box by box; then Ok or Annuler
  std::function<void()> PendantBoîte = [] {};  ///< what happens while a box is open
  bool Sablier = false;
  std::vector<Image> PressePapiers;
  Mots Imprimé;
  FausseVueSuivi* VueSuivi = nullptr;                                                 ///< the living one
  FausseVueChargntDonnées* VueChargntDonnées = nullptr;                               ///< the living one
  std::function<void(FausseVueChargntDonnées&)> SurVueChargntDonnées = [](auto&) {};  ///< called when it is shown

  /// "title | text" of each box since the last call, with " ?" behind it where it asks.
  Mots Dites() {
    Mots Toutes;
    for (const auto& B : std::exchange(Boîtes, {}))
      Toutes.push_back(B.Titre + " | " + B.Texte + (B.Boutons == BoutonsBoîte::Ok ? "" : " ?"));
    return Toutes;
  }
  RéponseBoîte Boîte(Mot Texte, Mot Titre, BoutonsBoîte Boutons) override {
    Boîtes.push_back({Texte, Titre, Boutons});
    PendantBoîte();
    if (Réponses.empty()) return Boutons == BoutonsBoîte::Ok ? RéponseBoîte::Ok : RéponseBoîte::Annuler;
    const RéponseBoîte Réponse = Réponses.front();
    Réponses.pop_front();
    return Réponse;
  }
  void FixerSablier(bool EstSablier) override { Sablier = EstSablier; }
  void PoserImages(const std::vector<Image>& Tailles) override { PressePapiers = Tailles; }
  std::unique_ptr<IImprimante> OuvrirImprimante() override { return std::make_unique<FausseImprimante>(Imprimé); }
  std::unique_ptr<IVueSuiviChargnt> CréerVueSuivi(IGestesSuivi& Gestes, Mot, const Rectangle&,
                                                  std::span<const DessinContrôleSuivi> Dessin) override {
    auto Vue = std::make_unique<FausseVueSuivi>(Gestes, Système, VueSuivi);
    for (const auto& Contrôle : Dessin) Vue->Places[Contrôle.Contrôle] = Contrôle.Place;
    return Vue;
  }
  std::unique_ptr<IVueChargntDonnées> CréerVueChargntDonnées(IGestesChargntDonnées& Gestes, Mot Titre, const Rectangle&,
                                                             std::span<const DessinContrôle> Dessin) override {
    auto Vue = std::make_unique<FausseVueChargntDonnées>(Gestes, Système, VueChargntDonnées);
    Vue->FixerTitre(Titre);
    for (const auto& Contrôle : Dessin) {
      if (Contrôle.Genre == GenreContrôle::CaseÀCocher) Vue->Cases[Contrôle.Nom] = true;
    }
    Système.Après(milliseconds(0), [this] { SurVueChargntDonnées(*VueChargntDonnées); });
    return Vue;
  }
};

}  // namespace Ombrey::Essais
