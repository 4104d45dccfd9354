// The machine in memory: a clock that only pumps move, boxes and windows that are recorded, settings in a map.
#pragma once

#include <cstdint>
#include <deque>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "contracts/platform.h"

namespace Ombrey::Essais {

struct BoîteMontrée {
  std::string Texte;
  std::string Titre;
  BoutonsBoîte Boutons;
};

struct LigneImprimée {
  std::string Texte;
  int Points;
  bool Gras;
  bool Souligné;
  int Page;
};

/// Time and events. An event runs in the pump that reaches its time.
class FauxSystème : public ISystème {
 public:
  using Événement = std::function<void()>;

  std::uint64_t Horloge = 1000;  ///< milliseconds; Tics() is its low half
  DateHeure Mur{2026, 9, 22, 8, 30, 0};
  Régional Formes;
  std::filesystem::path Dossier = std::filesystem::temp_directory_path();
  int Pompages = 0;

  /// Has Faire run once the clock has moved on by Délai.
  std::uint64_t Après(std::chrono::milliseconds Délai, Événement Faire);
  void Annuler(std::uint64_t Numéro) {
    std::erase_if(File_, [&](const auto& E) { return E.second.first == Numéro; });
  }
  /// Pumps until the clock has moved on by Durée.
  void Laisser(std::chrono::milliseconds Durée);

  std::uint32_t Tics() const override { return static_cast<std::uint32_t>(Horloge); }
  DateHeure Maintenant() const override { return Mur; }
  Régional FormesRégionales() const override { return Formes; }
  std::filesystem::path CheminApplication() const override { return Dossier; }
  std::filesystem::path DossierImportsConservés() const override;
  bool Pomper(std::chrono::milliseconds AttenteMax) override;

 private:
  std::multimap<std::uint64_t, std::pair<std::uint64_t, Événement>> File_;
  std::uint64_t DernierNuméro_ = 0;
};

class FausseVueSuivi : public IVueSuiviChargnt {
 public:
  struct Ligne {
    std::string Texte;
    bool Coché;
  };
  IGestesSuivi& Gestes;
  FauxSystème& Système;
  std::string Légende;
  std::vector<Ligne> Lignes[2];
  std::size_t Courante[2] = {0, 0};
  std::vector<std::string> Entêtes;
  std::vector<std::vector<std::string>> Grille;
  std::map<std::size_t, int> Largeurs;
  bool Offert[2] = {true, true};
  Onglet OngletChoisi = Onglet::Suivis;
  std::map<ContrôleSuivi, bool> Visibles;
  std::map<ContrôleSuivi, Rectangle> Places;
  Rectangle Fenêtre{1000, 800, 11265, 9525};
  bool Visible = false;
  int Repeints = 0;
  int MisesDevant = 0;

  FausseVueSuivi(IGestesSuivi& LesGestes, FauxSystème& LeSystème) : Gestes(LesGestes), Système(LeSystème) {}

  /// Pumps until hidden; a test hides it by an event of the clock.
  void MontrerModale() override;
  void Cacher() override { Visible = false; }
  bool EstVisible() const override { return Visible; }
  void MettreDevant() override { ++MisesDevant; }
  void Repeindre() override { ++Repeints; }
  void RemplirGrille(std::vector<std::string> LesEntêtes, std::vector<std::vector<std::string>> LesLignes) override {
    Entêtes = std::move(LesEntêtes);
    Grille = std::move(LesLignes);
  }
  std::size_t NombreColonnes() const override { return Entêtes.size(); }
  int LargeurColonne(std::size_t Colonne) const override {
    const auto Trouvée = Largeurs.find(Colonne);
    return Trouvée == Largeurs.end() ? 900 : Trouvée->second;
  }
  void FixerLargeurColonne(std::size_t Colonne, int Twips) override { Largeurs[Colonne] = Twips; }
  void InsérerLigne(Onglet Liste, std::size_t Rang, const std::string& Texte, bool Coché) override;
  void RetirerLigne(Onglet Liste, std::size_t Rang) override;
  void ChoisirLigne(Onglet Liste, std::size_t Rang) override { Courante[static_cast<std::size_t>(Liste)] = Rang; }
  std::size_t LigneCourante(Onglet Liste) const override { return Courante[static_cast<std::size_t>(Liste)]; }
  void OffrirOnglet(Onglet Lequel, bool EstOffert) override { Offert[static_cast<std::size_t>(Lequel)] = EstOffert; }
  void ChoisirOnglet(Onglet Lequel) override { OngletChoisi = Lequel; }
  Onglet OngletCourant() const override { return OngletChoisi; }
  void MontrerContrôle(ContrôleSuivi Contrôle, bool EstVisible) override { Visibles[Contrôle] = EstVisible; }
  Rectangle PlaceContrôle(ContrôleSuivi Contrôle) const override { return Places.at(Contrôle); }
  void PlacerContrôle(ContrôleSuivi Contrôle, const Rectangle& Place) override { Places[Contrôle] = Place; }
  Rectangle PlaceFenêtre() const override { return Fenêtre; }
  void PlacerFenêtre(const Rectangle& Place) override { Fenêtre = Place; }

 private:
  std::shared_ptr<const void> Vie_ = std::make_shared<int>();
};

class FausseVueChargntDonnées : public IVueChargntDonnées {
 public:
  IGestesChargntDonnées& Gestes;
  FauxSystème& Système;
  std::vector<DessinContrôle> Dessin;
  std::map<std::string, bool> Cases;
  std::vector<std::string> Titres;
  std::vector<std::pair<std::string, bool>> Graisses;  ///< in the order of the calls
  bool Active = true;
  bool Visible = false;

  FausseVueChargntDonnées(IGestesChargntDonnées& LesGestes, FauxSystème& LeSystème)
      : Gestes(LesGestes), Système(LeSystème) {}

  void MontrerModale() override;
  void Cacher() override { Visible = false; }
  void FixerTitre(const std::string& Titre) override { Titres.push_back(Titre); }
  void Repeindre() override {}
  void Activer(bool EstActive) override { Active = EstActive; }
  bool EstCochée(const std::string& Case) const override { return Cases.at(Case); }
  void Cocher(const std::string& Case, bool Cochée) override { Cases[Case] = Cochée; }
  void MettreEnGras(const std::string& Case, bool Gras) override { Graisses.emplace_back(Case, Gras); }
};

class FaussesFenêtres : public IFenêtres {
 public:
  explicit FaussesFenêtres(FauxSystème& LeSystème) : Système(LeSystème) {}

  FauxSystème& Système;
  std::vector<BoîteMontrée> Boîtes;
  std::deque<RéponseBoîte> Réponses;                      ///< consumed box by box; then Ok or Annuler
  std::function<void(const BoîteMontrée&)> PendantBoîte;  ///< what happens while a box is open
  bool Sablier = false;
  std::vector<Image> PressePapiers;
  std::vector<LigneImprimée> Imprimé;
  int DocumentsTerminés = 0;
  FausseVueSuivi* VueSuivi = nullptr;  ///< the living one
  int VuesSuiviCréées = 0;
  std::function<void(FausseVueChargntDonnées&)> SurVueChargntDonnées;  ///< called when the window is shown
  std::vector<std::string> DerniersTitres;  ///< of the last transfer window, kept when it goes
  std::map<std::string, bool> DernièresCases;
  FausseVueChargntDonnées* VueChargntDonnées = nullptr;

  RéponseBoîte Boîte(const std::string& Texte, const std::string& Titre, BoutonsBoîte Boutons) override;
  void FixerSablier(bool EstSablier) override { Sablier = EstSablier; }
  void PoserImages(const std::vector<Image>& Tailles) override { PressePapiers = Tailles; }
  std::unique_ptr<IImprimante> OuvrirImprimante() override;
  std::unique_ptr<IVueSuiviChargnt> CréerVueSuivi(IGestesSuivi& Gestes, const std::string& Légende,
                                                  const Rectangle& Intérieur,
                                                  std::span<const DessinContrôleSuivi> Dessin) override;
  std::unique_ptr<IVueChargntDonnées> CréerVueChargntDonnées(IGestesChargntDonnées& Gestes, const std::string& Titre,
                                                             const Rectangle& Intérieur,
                                                             std::span<const DessinContrôle> Dessin) override;
};

class FauxRéglages : public IRéglages {
 public:
  std::map<std::string, std::string> Contenu;  ///< by "section/key"
  std::string Lire(const std::string&, const std::string& Section, const std::string& Clé,
                   const std::string& Défaut) const override {
    const auto Trouvé = Contenu.find(Section + "/" + Clé);
    return Trouvé == Contenu.end() ? Défaut : Trouvé->second;
  }
  void Ecrire(const std::string&, const std::string& Section, const std::string& Clé,
              const std::string& Valeur) override {
    Contenu[Section + "/" + Clé] = Valeur;
  }
};

/// A terminal at the other end of the port: what it answers to each writing is the test's business.
class PortScripté : public IPortComm {
 public:
  explicit PortScripté(FauxSystème& LeSystème) : Système(LeSystème) {}

  FauxSystème& Système;
  std::shared_ptr<IClientPortComm> Client;
  std::map<std::string, std::string> RéglagesReçus;
  std::vector<std::string> Appels;  ///< settings and openings, in order
  std::vector<Octets> Ecrits;
  std::function<void(const Octets&)> SurEcriture;
  bool Ouvrable = true;
  bool Ouvert = false;
  bool EcritureRefusée = false;
  bool EcritureLève = false;
  std::string Erreur;

  /// The characters arrive by the event once Délai is over.
  void Envoyer(const Octets& Texte, std::chrono::milliseconds Délai = std::chrono::milliseconds(5));
  /// Answers the n-th writing with the n-th text, empty for silence.
  void RépondreDansLOrdre(std::vector<Octets> Réponses);

  bool Configurer(const std::string& FichierIni, const std::string& Section) override;
  void FixerNomPort(const std::string& Nom) override { Noter("NomPort", Nom); }
  void FixerBauds(std::int16_t Bauds) override { Noter("Bauds", std::to_string(Bauds)); }
  void FixerTailleMots(std::int16_t Bits) override { Noter("TailleMots", std::to_string(Bits)); }
  void FixerParité(const std::string& Parité) override { Noter("Parité", Parité); }
  void FixerBitsStop(std::int16_t Bits) override { Noter("BitsStop", std::to_string(Bits)); }
  void FixerMode(std::int16_t Mode) override { Noter("FixerMode", std::to_string(Mode)); }
  std::string DernièreErreurPort() const override { return Erreur; }
  void Activer(bool Actif) override { Noter("Activer", Actif ? "true" : "false"); }
  bool Ouvrir() override;
  bool Ecrire(const Octets& Texte) override;
  bool Lire(Octets& Texte) override;
  void Fermer() override { Noter("Fermer", ""); }
  void FixerDossierA(const std::string& LeDossier) override { Noter("FixerDossierA", LeDossier); }
  void FixerDossierB(const std::string& LeDossier) override { Noter("FixerDossierB", LeDossier); }

  std::function<void()> SurConfigurer;
  Octets ParLire;  ///< handed out by the next Lire

 private:
  void Noter(const std::string& Opération, const std::string& Argument);
};

class FaussePlateforme : public IPlateforme {
 public:
  FauxSystème LeSystème;
  FaussesFenêtres LesFenêtres{LeSystème};
  FauxRéglages LesRéglages;
  std::map<std::string, std::string> Ini;  ///< keys of the plug-in's section
  int EcrituresIni = 0;
  std::shared_ptr<PortScripté> Port = std::make_shared<PortScripté>(LeSystème);
  bool PortDisponible = true;
  std::string NomPortDemandé;
  int ServeursCréés = 0;
  std::vector<std::string> AppelsAccèsDistant;

  ISystème& Système() override { return LeSystème; }
  IFenêtres& Fenêtres() override { return LesFenêtres; }
  IRéglages& Réglages() override { return LesRéglages; }
  std::unique_ptr<ILecteurIni> CréerLecteurIni() override;
  std::shared_ptr<IRetard> CréerRetard(std::function<void(const std::string&)> FinTempo) override;
  std::shared_ptr<IServeurPortComm> CréerServeurPortComm() override;
  std::shared_ptr<IClientPortComm> CréerClientPortComm(std::function<void(const Octets&)> Lecture) override;
  std::shared_ptr<IAccèsDistant> CréerAccèsDistant() override;
};

}  // namespace Ombrey::Essais
