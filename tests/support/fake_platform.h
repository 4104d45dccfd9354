// The machine in memory: settings in maps, a port with a scripted terminal behind it.
#pragma once

#include "common/context.h"
#include "link/exchange.h"
#include "link/polling.h"
#include "tests/support/fake_host.h"
#include "tests/support/fake_windows.h"

namespace Ombrey::Essais {

struct FauxRéglages : IRéglages {
  std::map<std::string, std::string> Contenu;  ///< by "section/key"
  std::string Lire(Mot, Mot Section, Mot Clé, Mot Défaut) const override {
    return Contenu.contains(Section + "/" + Clé) ? Contenu.at(Section + "/" + Clé) : Défaut;
  }
  void Ecrire(Mot, Mot Section, Mot Clé, Mot Valeur) override { Contenu[Section + "/" + Clé] = Valeur; }
};

struct LecteurIniMémoire : ILecteurIni {
  explicit LecteurIniMémoire(std::map<std::string, std::string>& Ini) : Ini_(Ini) {}
  void FixerFichier(Mot) override {}
  void FixerSection(Mot) override {}
  void FixerClé(Mot Clé) override { Clé_ = Clé; }
  std::string Valeur() const override { return Valeur_; }
  void FixerValeur(Mot LaValeur) override { Valeur_ = LaValeur; }
  void EcrireValeur(bool&) override { Ini_[Clé_] = Valeur_; }
  void LireValeur(bool&) override { Valeur_ = Ini_.contains(Clé_) ? Ini_[Clé_] : ""; }

 private:
  std::map<std::string, std::string>& Ini_;
  std::string Clé_;
  std::string Valeur_;
};

struct FauxRetard : IRetard {
  FauxRetard(FauxSystème& Système, std::function<void(Mot)> Fin) : Système_(Système), Fin_(std::move(Fin)) {}
  ~FauxRetard() override { Système_.Annuler(Numéro_); }
  void Démarrer(std::int32_t Délai, Mot Code) override {
    Arrêter();
    Numéro_ = Système_.Après(milliseconds(Délai), [Fin = Fin_, Code = std::string(Code)] { Fin(Code); });
  }
  void Arrêter() override { Système_.Annuler(Numéro_); }

 private:
  FauxSystème& Système_;
  std::function<void(Mot)> Fin_;
  std::uint64_t Numéro_ = 0;
};

/// A terminal at the other end of the port: what it answers to each writing is the test's business.
struct PortScripté : IPortComm {
  explicit PortScripté(FauxSystème& LeSystème) : Système(LeSystème) {}

  FauxSystème& Système;
  std::shared_ptr<IClientPortComm> Client;
  Mots Appels;  ///< settings with their values, openings and closings, in order
  std::vector<Octets> Ecrits;
  std::function<void(const Octets&)> SurEcriture = [](const Octets&) {};
  std::function<bool()> SurConfigurer = [] { return true; };
  bool Ouvrable = true;
  bool EcritureRefusée = false;
  std::string Erreur;
  Octets ParLire;  ///< handed out by the next Lire
  Octets Tenus;    ///< handed up by the next Relever

  /// The characters arrive by the event once Délai is over.
  void Envoyer(const Octets& Texte, milliseconds Délai = milliseconds(5)) {
    Système.Après(Délai, [this, Texte] { Client->Lecture(Texte); });
  }

  bool Configurer(Mot, Mot) override { return SurConfigurer(); }
  void FixerNomPort(Mot Nom) override { Noter("NomPort", Nom); }
  void FixerBauds(std::int16_t Bauds) override { Noter("Bauds", std::to_string(Bauds)); }
  void FixerTailleMots(std::int16_t Bits) override { Noter("TailleMots", std::to_string(Bits)); }
  void FixerParité(Mot Parité) override { Noter("Parité", Parité); }
  void FixerBitsStop(std::int16_t Bits) override { Noter("BitsStop", std::to_string(Bits)); }
  void FixerMode(std::int16_t Mode) override { Noter("Mode", std::to_string(Mode)); }
  std::string DernièreErreurPort() const override { return Erreur; }
  void Activer(bool Actif) override { Noter("Activer", Actif ? "1" : "0"); }
  bool Ouvrir() override { return Noter("Ouvrir", "") && Ouvrable; }
  bool Ecrire(const Octets& Texte) override {
    if (EcritureRefusée) return false;
    Ecrits.push_back(Texte);
    SurEcriture(Texte);
    return !EcritureRefusée;
  }
  bool Lire(Octets& Texte) override {
    Texte = std::exchange(ParLire, Octets());
    return true;
  }
  void Relever() override {
    if (!Tenus.EstVide()) Client->Lecture(std::exchange(Tenus, Octets()));
  }
  milliseconds SilenceFinMessage() const override { return milliseconds(4); }
  void Fermer() override { Noter("Fermer", ""); }
  void FixerDossierA(Mot Dossier) override { Noter("DossierA", Dossier); }
  void FixerDossierB(Mot Dossier) override { Noter("DossierB", Dossier); }

 private:
  bool Noter(Mot Appel, Mot Valeur) { return !Appels.emplace_back(Appel + " " + Valeur).empty(); }
};

struct FauxClient : IClientPortComm {
  FauxClient(PortScripté& Port, std::function<void(const Octets&)> Lire, std::function<void(Mot, bool)> État)
      : Port_(Port), Lire_(std::move(Lire)), État_(std::move(État)) {}
  void FixerNomPort(Mot) override {}
  void Lecture(const Octets& Texte) override { Lire_(Texte); }
  void ÉtatLiaison(Mot Texte, bool Présente) override { État_(Texte, Présente); }
  bool Configurer(Mot Fichier, Mot Section) override { return Port_.Configurer(Fichier, Section); }

 private:
  PortScripté& Port_;
  std::function<void(const Octets&)> Lire_;
  std::function<void(Mot, bool)> État_;
};

struct FauxAccèsDistant : IAccèsDistant {
  void Paramétrer(Mot) override {}
  void Fermer() override {}
};

/// Its own port server, too.
struct FaussePlateforme : IPlateforme, IServeurPortComm {
  FauxSystème LeSystème;
  FaussesFenêtres LesFenêtres{LeSystème};
  FauxRéglages LesRéglages;
  std::map<std::string, std::string> Ini;  ///< keys of the plug-in's section
  std::shared_ptr<PortScripté> Port = std::make_shared<PortScripté>(LeSystème);
  /// Around each event of a timer.
  std::function<void(const std::function<void()>&)> PendantRetard = [](const auto& Faire) { Faire(); };

  ISystème& Système() override { return LeSystème; }
  IFenêtres& Fenêtres() override { return LesFenêtres; }
  IRéglages& Réglages() override { return LesRéglages; }
  std::unique_ptr<ILecteurIni> CréerLecteurIni() override { return std::make_unique<LecteurIniMémoire>(Ini); }
  std::shared_ptr<IRetard> CréerRetard(std::function<void(Mot)> Fin) override {
    return std::make_shared<FauxRetard>(LeSystème,
                                        [this, Fin = std::move(Fin)](Mot Code) { PendantRetard([&] { Fin(Code); }); });
  }
  std::shared_ptr<IServeurPortComm> CréerServeurPortComm() override { return {std::shared_ptr<void>(), this}; }
  std::shared_ptr<IClientPortComm> CréerClientPortComm(std::function<void(const Octets&)> Lecture,
                                                       std::function<void(Mot, bool)> État) override {
    return std::make_shared<FauxClient>(*Port, std::move(Lecture), std::move(État));
  }
  std::shared_ptr<IAccèsDistant> CréerAccèsDistant() override { return std::make_shared<FauxAccèsDistant>(); }

  std::shared_ptr<IPortComm> ObtenirPort(Mot, std::shared_ptr<IClientPortComm> Client) override {
    Port->Client = std::move(Client);
    return Port;
  }
  std::string ErreurServeur() const override { return "port inconnu"; }
};

/// The machine, and a host.
struct Monde {
  FaussePlateforme Plateforme;
  FauxSystème& Système = Plateforme.LeSystème;
  FaussesFenêtres& Fenêtres = Plateforme.LesFenêtres;
  std::shared_ptr<PortScripté> Port = Plateforme.Port;
  std::shared_ptr<FausseBaseDeD> Hôte = std::make_shared<FausseBaseDeD>();
  std::shared_ptr<FauxÉvénements> Événements = std::make_shared<FauxÉvénements>();
};

/// What the plug-in's rooms share, in such a world.
struct Salles : Monde {
  FauxCanal Canal;
  FauxServices Services;
  ÉtatPartagé État{Plateforme, Canal};

  Salles() { État.BaseDeD = Hôte; }
  /// The end of the plug-in as a wait sees it.
  void Terminer(Échange& LÉchange) {
    État.Abandon = Port->EcritureRefusée = true;
    État.Liaison.Terminer();
    LÉchange.FixerPort(nullptr);
    État.BaseDeD.reset();
    État.EtatBdD.reset();
  }
};

/// A station's link and poll among them, with a folder of its own. What becomes of a load is the test's business.
struct SallesDuLien : Salles, ITraitementChargement {
  SallesDuLien() {
    Système.Dossier = Dossier.Chemin();
    État.EventPlugin = Événements;
    État.EtatBdD = Hôte;
    UnÉchange.FixerPort(Port);
    Port->Client =
        Plateforme.CréerClientPortComm([this](const Octets& T) { UnÉchange.EventPortComRG80_Lecture(T); }, {});
  }

  DossierEssai Dossier;
  Échange UnÉchange{État};
  Interrogation UneInterrogation{État, UnÉchange, *this};
};

}  // namespace Ombrey::Essais
