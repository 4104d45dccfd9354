// The host and the operator's channel in memory, for tests of the rooms.
#pragma once

#include <array>
#include <functional>

#include "base/failures.h"
#include "common/operator_channel.h"
#include "contracts/host.h"
#include "tests/support/test_folder.h"

namespace Ombrey::Essais {

using Mot = const std::string&;
using Mots = std::vector<std::string>;

/// The operator's channel as two lists, oldest line first.
struct FauxCanal : ICanalOpérateur {
  std::vector<std::pair<std::string, bool>> Messages;
  Mots Erreurs;
  int Rafraîchissements = 0;
  bool Visible = false;

  void AjouterMessage(Mot Texte, bool Coché) override { Messages.emplace_back(Texte, Coché); }
  void AjouterErreur(Mot Texte) override {
    Erreurs.push_back(Texte);
    AjouterMessage(Texte, false);
  }
  void Rafraîchir() override { ++Rafraîchissements; }
  bool EstVisible() const override { return Visible; }
  void Afficher() override {}
};

/// The host's three objects in one. Nobody holds the second and the third beyond the first.
struct FausseBaseDeD : IBaseDeD, IEtatBdD, IKVSynchro {
  std::shared_ptr<IDatabase> Base;
  std::string Site = "1";
  IÉcouteurKVSynchro* ÉcouteurSynchro = nullptr;
  IÉcouteurEtatBdD* Écouteur = nullptr;
  int Activations = 0;
  int Actualisations = 0;
  std::string Cépages = "Chardonnay\rAligoté";
  std::vector<NouveauCoopérateur> Coopérateurs;
  std::vector<Mots> Métayages;  ///< arguments of each creation
  std::int16_t RésultatAjout = 0;
  /// What is left to the holding, the group's sum, what is left to the group; without a value: the call fails.
  std::array<std::optional<std::int32_t>, 3> Chiffres;
  double JourDemandé = 0;

  // The import.
  std::string Dossier;
  std::string Erreur;
  bool Importe = true;
  bool Lève = false;
  std::function<void()> PendantImport = [] {}, PendantBase = [] {};
  Mots Importés;  ///< contents of the imported files

  std::shared_ptr<IEtatBdD> EtatBdD() override { return {std::shared_ptr<void>(), this}; }
  std::shared_ptr<IKVSynchro> KVSynchro() override { return {std::shared_ptr<void>(), this}; }
  std::shared_ptr<IDatabase> BaseDAO() override {
    PendantBase();
    return Base;
  }
  void ActiverBase(bool&) override { ++Activations; }
  void Actualiser() override { ++Actualisations; }
  std::string ListeCépages(std::optional<std::string>, std::string&, bool) override { return Cépages; }
  std::int16_t AjouterCoopérateur(NouveauCoopérateur& Nouveau) override {
    Coopérateurs.push_back(Nouveau);
    return RésultatAjout;
  }
  std::int16_t AjouterMétayage(Mot Propriétaire, Mot Récoltant, std::string& Code, Mot Part, Mot Groupe,
                               Mot Badge) override {
    Métayages.push_back({Propriétaire, Récoltant, Code, Part, Groupe, Badge});
    Code = "77";
    return RésultatAjout;
  }
  std::string TexteErreurBase(std::int16_t LErreur) override { return "erreur " + std::to_string(LErreur); }
  std::int32_t CalculerRestantExploit(std::string&, std::string&, std::string&, std::string&, std::optional<double>,
                                      std::optional<double>) override {
    return Chiffres[0].value();
  }
  std::int32_t CalculerCumulGroupe(std::string, std::string, std::string, std::string) override {
    return Chiffres[1].value();
  }
  std::int32_t CalculerRestantGroupe(std::string&, std::string&, std::string&, std::string&, std::optional<double> Jour,
                                     std::optional<double>) override {
    JourDemandé = Jour.value_or(0);
    return Chiffres[2].value();
  }

  std::string DernièreErreur() override { return Erreur; }
  bool TableImporter(Mot, Mot Fichier, bool&) override {
    Importés.push_back(Contenu(Fichier));
    PendantImport();
    if (Lève) throw ErreurExécution("la base ne répond pas");
    return Importe;
  }
  std::string ObtenirFichierImport(std::string& LeDossier, std::string& Nom) override {
    LeDossier = Dossier;
    return Nom = "import.txt";
  }
  void Connecter(IÉcouteurEtatBdD* LÉcouteur) override { Écouteur = LÉcouteur; }
  void Connecter(IÉcouteurKVSynchro* LÉcouteur) override { ÉcouteurSynchro = LÉcouteur; }
  void Déconnecter(const IÉcouteurEtatBdD* Sien) override { Écouteur = Écouteur == Sien ? nullptr : Écouteur; }
  void Déconnecter(const IÉcouteurKVSynchro* Sien) override {
    ÉcouteurSynchro = ÉcouteurSynchro == Sien ? nullptr : ÉcouteurSynchro;
  }
  std::string CodeSiteCourant() override { return Site; }
};

struct FauxÉvénements : IEventPlugin {
  Mots Signalés;
  std::function<void(Mot)> SurSignal = [](Mot) {};
  void Signaler(Mot Texte) override { SurSignal(Signalés.emplace_back(Texte)); }
};

/// What the windows ask of the plug-in, scripted.
struct FauxServices : IServicesLiaison {
  std::function<void()> SurInterrogation = [] {};
  std::function<void()> SurCumuls = [] {};
  std::function<std::string(std::int32_t, std::vector<Octets>&)> SurTransmission = [](auto, auto&) { return ""; };
  int Interrogations = 0;
  Mots Cumuls;  ///< load numbers
  std::vector<std::pair<std::int32_t, std::vector<Octets>>> Transmis;

  void Retard_FinTempo(Mot) override {
    ++Interrogations;
    SurInterrogation();
  }
  void MettreAJourCumuls(std::string& NoChargement) override {
    Cumuls.push_back(NoChargement);
    SurCumuls();
  }
  bool TesterConnexion() override { return true; }
  std::string TransmettreLignes(std::int32_t NumFichier, std::vector<Octets>& Lignes) override {
    Transmis.emplace_back(NumFichier, Lignes);
    return SurTransmission(NumFichier, Lignes);
  }
};

}  // namespace Ombrey::Essais
