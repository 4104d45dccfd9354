// The machine in memory.
#include "tests/support/fake_platform.h"

#include <stdexcept>

#include "common/failures.h"

namespace Ombrey::Essais {

using std::chrono::milliseconds;

std::uint64_t FauxSystème::Après(milliseconds Délai, Événement Faire) {
  const auto Quand = Horloge + static_cast<std::uint64_t>(Délai.count());
  File_.emplace(Quand, std::pair{++DernierNuméro_, std::move(Faire)});
  return DernierNuméro_;
}

void FauxSystème::Laisser(milliseconds Durée) {
  const auto Fin = Horloge + static_cast<std::uint64_t>(Durée.count());
  while (Horloge < Fin) Pomper(milliseconds(Fin - Horloge));
}

std::filesystem::path FauxSystème::DossierImportsConservés() const {
  const auto Gardés = Dossier / "imports-refusés";
  std::filesystem::create_directories(Gardés);
  return Gardés;
}

bool FauxSystème::Pomper(milliseconds AttenteMax) {
  if (++Pompages > 1'000'000) throw std::logic_error("a wait that never ends");
  const auto Limite = Horloge + static_cast<std::uint64_t>(AttenteMax.count());
  const auto Prochain = File_.begin();
  if (Prochain == File_.end() || Prochain->first > Limite) {
    Horloge = Limite;
    return false;
  }
  if (Prochain->first > Horloge) Horloge = Prochain->first;
  const auto Faire = std::move(Prochain->second.second);
  File_.erase(Prochain);
  Faire();
  return true;
}

void FausseVueSuivi::MontrerModale() {
  if (Visible) return;
  Visible = true;
  Gestes.Form_Activate();
  const std::weak_ptr<const void> Vie = Vie_;  // the view may be dropped in any pump
  FauxSystème& Horloge = Système;
  while (!Vie.expired() && Visible) Horloge.Pomper(milliseconds(1000));
}

void FausseVueSuivi::InsérerLigne(Onglet Liste, std::size_t Rang, const std::string& Texte, bool Coché) {
  auto& Cible = Lignes[static_cast<std::size_t>(Liste)];
  Cible.insert(Cible.begin() + static_cast<std::ptrdiff_t>(Rang), Ligne{Texte, Coché});
}

void FausseVueSuivi::RetirerLigne(Onglet Liste, std::size_t Rang) {
  auto& Cible = Lignes[static_cast<std::size_t>(Liste)];
  if (Rang >= Cible.size()) throw std::out_of_range("no such line in the list");
  Cible.erase(Cible.begin() + static_cast<std::ptrdiff_t>(Rang));
}

void FausseVueChargntDonnées::MontrerModale() {
  Visible = true;
  while (Visible) Système.Pomper(milliseconds(1000));
}

RéponseBoîte FaussesFenêtres::Boîte(const std::string& Texte, const std::string& Titre, BoutonsBoîte Boutons) {
  Boîtes.push_back({Texte, Titre, Boutons});
  if (PendantBoîte) PendantBoîte(BoîteMontrée(Boîtes.back()));
  if (!Réponses.empty()) {
    const RéponseBoîte Réponse = Réponses.front();
    Réponses.pop_front();
    return Réponse;
  }
  return Boutons == BoutonsBoîte::Ok ? RéponseBoîte::Ok : RéponseBoîte::Annuler;
}

namespace {

/// Twenty lines of any size to a page.
class FausseImprimante : public IImprimante {
 public:
  explicit FausseImprimante(FaussesFenêtres& Fenêtres) : Fenêtres_(Fenêtres) {}
  void FixerPolice(int Points, bool Gras, bool Souligné) override {
    Points_ = Points;
    Gras_ = Gras;
    Souligné_ = Souligné;
  }
  void Imprimer(const std::string& Ligne) override {
    Fenêtres_.Imprimé.push_back({Ligne, Points_, Gras_, Souligné_, Page_});
    Position_ += 1;
  }
  double PositionVerticale() const override { return Position_; }
  double HauteurPage() const override { return 20; }
  void NouvellePage() override {
    ++Page_;
    Position_ = 0;
  }
  void TerminerDocument() override { ++Fenêtres_.DocumentsTerminés; }

 private:
  FaussesFenêtres& Fenêtres_;
  int Points_ = 0;
  bool Gras_ = false;
  bool Souligné_ = false;
  int Page_ = 1;
  double Position_ = 0;
};

/// A view that tells FaussesFenêtres when it goes.
class VueSuiviSuivie : public FausseVueSuivi {
 public:
  VueSuiviSuivie(IGestesSuivi& LesGestes, FaussesFenêtres& Fenêtres)
      : FausseVueSuivi(LesGestes, Fenêtres.Système), Fenêtres_(Fenêtres) {}
  ~VueSuiviSuivie() override { Fenêtres_.VueSuivi = nullptr; }

 private:
  FaussesFenêtres& Fenêtres_;
};

class VueChargntSuivie : public FausseVueChargntDonnées {
 public:
  VueChargntSuivie(IGestesChargntDonnées& LesGestes, FaussesFenêtres& Fenêtres)
      : FausseVueChargntDonnées(LesGestes, Fenêtres.Système), Fenêtres_(Fenêtres) {}
  ~VueChargntSuivie() override {
    Fenêtres_.DerniersTitres = Titres;
    Fenêtres_.DernièresCases = Cases;
    Fenêtres_.VueChargntDonnées = nullptr;
  }
  void MontrerModale() override {
    if (Fenêtres_.SurVueChargntDonnées) {
      Système.Après(milliseconds(0), [this] { Fenêtres_.SurVueChargntDonnées(*this); });
    }
    FausseVueChargntDonnées::MontrerModale();
  }

 private:
  FaussesFenêtres& Fenêtres_;
};

class LecteurIniMémoire : public ILecteurIni {
 public:
  explicit LecteurIniMémoire(FaussePlateforme& Plateforme) : Plateforme_(Plateforme) {}
  void FixerFichier(const std::string&) override {}
  void FixerSection(const std::string&) override {}
  void FixerClé(const std::string& Clé) override { Clé_ = Clé; }
  std::string Valeur() const override { return Valeur_; }
  void FixerValeur(const std::string& LaValeur) override { Valeur_ = LaValeur; }
  void EcrireValeur(bool&) override {
    Plateforme_.Ini[Clé_] = Valeur_;
    ++Plateforme_.EcrituresIni;
  }
  void LireValeur(bool&) override {
    const auto Trouvée = Plateforme_.Ini.find(Clé_);
    Valeur_ = Trouvée == Plateforme_.Ini.end() ? "" : Trouvée->second;
  }

 private:
  FaussePlateforme& Plateforme_;
  std::string Clé_;
  std::string Valeur_;
};

class FauxRetard : public IRetard {
 public:
  FauxRetard(FauxSystème& Système, std::function<void(const std::string&)> FinTempo)
      : Système_(Système), FinTempo_(std::move(FinTempo)) {}
  ~FauxRetard() override { Système_.Annuler(Numéro_); }
  void Démarrer(std::int32_t Délai, const std::string& Code) override {
    Système_.Annuler(Numéro_);
    Numéro_ = Système_.Après(milliseconds(Délai), [FinTempo = FinTempo_, Code] { FinTempo(Code); });
  }
  void Arrêter() override { Système_.Annuler(Numéro_); }

 private:
  FauxSystème& Système_;
  std::function<void(const std::string&)> FinTempo_;
  std::uint64_t Numéro_ = 0;
};

class FauxClient : public IClientPortComm {
 public:
  FauxClient(FaussePlateforme& Plateforme, std::function<void(const Octets&)> Handler)
      : Plateforme_(Plateforme), Handler_(std::move(Handler)) {}
  void FixerNomPort(const std::string&) override {}
  void Lecture(const Octets& Texte) override { Handler_(Texte); }
  bool Configurer(const std::string& FichierIni, const std::string& Section) override {
    return Plateforme_.Port->Configurer(FichierIni, Section);
  }

 private:
  FaussePlateforme& Plateforme_;
  std::function<void(const Octets&)> Handler_;
};

class FauxServeur : public IServeurPortComm {
 public:
  explicit FauxServeur(FaussePlateforme& Plateforme) : Plateforme_(Plateforme) {}
  std::shared_ptr<IPortComm> ObtenirPort(const std::string& Nom, std::shared_ptr<IClientPortComm> Client) override {
    Plateforme_.NomPortDemandé = Nom;
    if (!Plateforme_.PortDisponible) return nullptr;
    Plateforme_.Port->Client = std::move(Client);
    return Plateforme_.Port;
  }
  std::string ErreurServeur() const override { return Plateforme_.PortDisponible ? "" : "port inconnu"; }

 private:
  FaussePlateforme& Plateforme_;
};

class FauxAccèsDistant : public IAccèsDistant {
 public:
  explicit FauxAccèsDistant(FaussePlateforme& Plateforme) : Plateforme_(Plateforme) {}
  void Paramétrer(const std::string& Texte) override {
    Plateforme_.AppelsAccèsDistant.push_back("Paramétrer " + Texte);
  }
  void Fermer() override { Plateforme_.AppelsAccèsDistant.emplace_back("Fermer"); }

 private:
  FaussePlateforme& Plateforme_;
};

}  // namespace

std::unique_ptr<IImprimante> FaussesFenêtres::OuvrirImprimante() { return std::make_unique<FausseImprimante>(*this); }

std::unique_ptr<IVueSuiviChargnt> FaussesFenêtres::CréerVueSuivi(IGestesSuivi& Gestes, const std::string& Légende,
                                                                 const Rectangle&,
                                                                 std::span<const DessinContrôleSuivi> Dessin) {
  auto Vue = std::make_unique<VueSuiviSuivie>(Gestes, *this);
  Vue->Légende = Légende;
  for (const auto& Contrôle : Dessin) Vue->Places[Contrôle.Contrôle] = Contrôle.Place;
  VueSuivi = Vue.get();
  ++VuesSuiviCréées;
  return Vue;
}

std::unique_ptr<IVueChargntDonnées> FaussesFenêtres::CréerVueChargntDonnées(IGestesChargntDonnées& Gestes,
                                                                            const std::string& Titre, const Rectangle&,
                                                                            std::span<const DessinContrôle> Dessin) {
  auto Vue = std::make_unique<VueChargntSuivie>(Gestes, *this);
  Vue->Titres.push_back(Titre);
  Vue->Dessin.assign(Dessin.begin(), Dessin.end());
  for (const auto& Contrôle : Dessin) {
    if (Contrôle.Genre == GenreContrôle::CaseÀCocher) Vue->Cases[Contrôle.Nom] = true;
  }
  VueChargntDonnées = Vue.get();
  return Vue;
}

void PortScripté::Noter(const std::string& Opération, const std::string& Argument) {
  RéglagesReçus[Opération] = Argument;
  Appels.push_back(Opération);
  if (Opération == "Fermer") Ouvert = false;
}

void PortScripté::Envoyer(const Octets& Texte, milliseconds Délai) {
  Système.Après(Délai, [this, Texte] {
    if (Client) Client->Lecture(Texte);
  });
}

void PortScripté::RépondreDansLOrdre(std::vector<Octets> Réponses) {
  SurEcriture = [this, Réponses, Rang = std::size_t{0}](const Octets&) mutable {
    if (Rang < Réponses.size() && !Réponses[Rang].EstVide()) Envoyer(Réponses[Rang]);
    ++Rang;
  };
}

bool PortScripté::Configurer(const std::string&, const std::string&) {
  Appels.emplace_back("Configurer");
  if (SurConfigurer) SurConfigurer();
  return true;
}

bool PortScripté::Ouvrir() {
  Appels.emplace_back("Ouvrir");
  Ouvert = Ouvrable;
  return Ouvert;
}

bool PortScripté::Ecrire(const Octets& Texte) {
  if (EcritureLève) throw ErreurExécution("Erreur d'écriture");
  if (EcritureRefusée) return false;
  Ecrits.push_back(Texte);
  if (SurEcriture) SurEcriture(Texte);
  return true;
}

bool PortScripté::Lire(Octets& Texte) {
  Texte = std::exchange(ParLire, Octets());
  return true;
}

std::unique_ptr<ILecteurIni> FaussePlateforme::CréerLecteurIni() { return std::make_unique<LecteurIniMémoire>(*this); }
std::shared_ptr<IRetard> FaussePlateforme::CréerRetard(std::function<void(const std::string&)> FinTempo) {
  return std::make_shared<FauxRetard>(LeSystème, std::move(FinTempo));
}
std::shared_ptr<IServeurPortComm> FaussePlateforme::CréerServeurPortComm() {
  ++ServeursCréés;
  return std::make_shared<FauxServeur>(*this);
}
std::shared_ptr<IClientPortComm> FaussePlateforme::CréerClientPortComm(std::function<void(const Octets&)> Lecture) {
  return std::make_shared<FauxClient>(*this, std::move(Lecture));
}
std::shared_ptr<IAccèsDistant> FaussePlateforme::CréerAccèsDistant() {
  return std::make_shared<FauxAccèsDistant>(*this);
}

}  // namespace Ombrey::Essais
