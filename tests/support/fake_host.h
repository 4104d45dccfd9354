// The host and the operator's channel in memory, for tests of the rooms.
#pragma once

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "common/failures.h"
#include "common/operator_channel.h"
#include "contracts/host.h"

namespace Ombrey::Essais {

/// The operator's channel as two lists, oldest line first.
class FauxCanal : public ICanalOpérateur {
 public:
  std::vector<std::pair<std::string, bool>> Messages;
  std::vector<std::string> Erreurs;
  int Rafraîchissements = 0;
  bool Visible = false;
  int Affichages = 0;

  void AjouterMessage(const std::string& Texte, bool Coché) override { Messages.emplace_back(Texte, Coché); }
  void AjouterErreur(const std::string& Texte) override {
    Erreurs.push_back(Texte);
    AjouterMessage(Texte, false);
  }
  void Rafraîchir() override { ++Rafraîchissements; }
  bool EstVisible() const override { return Visible; }
  void Afficher() override { ++Affichages; }
};

class FauxKVSynchro : public IKVSynchro {
 public:
  std::string Site = "1";
  IÉcouteurKVSynchro* Écouteur = nullptr;
  std::string CodeSiteCourant() override { return Site; }
  void Connecter(IÉcouteurKVSynchro* LÉcouteur) override { Écouteur = LÉcouteur; }
};

class FauxEtatBdD : public IEtatBdD {
 public:
  std::shared_ptr<FauxKVSynchro> Synchro = std::make_shared<FauxKVSynchro>();
  IÉcouteurEtatBdD* Écouteur = nullptr;
  std::string Dossier;
  std::string Nom = "import.txt";
  std::string Erreur;
  bool Importe = true;
  bool Lève = false;
  std::function<void()> PendantImport;
  std::vector<std::string> Importés;  ///< contents of the imported files

  std::shared_ptr<IKVSynchro> KVSynchro() override { return Synchro; }
  std::string DernièreErreur() override { return Erreur; }
  bool TableImporter(const std::string& Titre, const std::string& Fichier, bool& Drapeau) override;
  std::string ObtenirFichierImport(std::string& LeDossier, std::string& LeNom) override {
    LeDossier = Dossier;
    LeNom = Nom;
    return "";
  }
  void Connecter(IÉcouteurEtatBdD* LÉcouteur) override { Écouteur = LÉcouteur; }
};

class FausseBaseDeD : public IBaseDeD {
 public:
  std::shared_ptr<FauxEtatBdD> Etat = std::make_shared<FauxEtatBdD>();
  std::shared_ptr<IDatabase> Base;
  int Activations = 0;
  int Actualisations = 0;
  std::string Cépages = "Chardonnay\rAligoté";
  std::vector<NouveauCoopérateur> Coopérateurs;
  std::vector<std::vector<std::string>> Métayages;  ///< arguments of each creation
  std::int16_t RésultatAjout = 0;
  std::string CodeNouveau = "77";
  std::int32_t RestantExploit = 0;
  std::int32_t CumulGroupe = 0;
  std::int32_t RestantGroupe = 0;
  bool CumulLève = false;
  double JourDemandé = 0;

  std::shared_ptr<IEtatBdD> EtatBdD() override { return Etat; }
  std::shared_ptr<IKVSynchro> KVSynchro() override { return Etat->Synchro; }
  std::shared_ptr<IDatabase> BaseDAO() override { return Base; }
  void ActiverBase(bool&) override { ++Activations; }
  void Actualiser() override { ++Actualisations; }
  std::string ListeCépages(std::optional<std::string>, std::string&, bool) override { return Cépages; }
  std::int16_t AjouterCoopérateur(NouveauCoopérateur& Nouveau) override {
    Coopérateurs.push_back(Nouveau);
    return RésultatAjout;
  }
  std::int16_t AjouterMétayage(const std::string& Propriétaire, const std::string& Récoltant, std::string& Code,
                               const std::string& Part, const std::string& Groupe, const std::string& Badge) override {
    Métayages.push_back({Propriétaire, Récoltant, Code, Part, Groupe, Badge});
    if (RésultatAjout >= 0) Code = CodeNouveau;
    return RésultatAjout;
  }
  std::string TexteErreurBase(std::int16_t Erreur) override { return "erreur " + std::to_string(Erreur); }
  std::int32_t CalculerRestantExploit(std::string&, std::string&, std::string&, std::string&, std::optional<double>,
                                      std::optional<double>) override {
    return RestantExploit;
  }
  std::int32_t CalculerCumulGroupe(std::string, std::string, std::string, std::string) override {
    if (CumulLève) throw ErreurExécution("calcul impossible");
    return CumulGroupe;
  }
  std::int32_t CalculerRestantGroupe(std::string&, std::string&, std::string&, std::string&, std::optional<double> Jour,
                                     std::optional<double>) override {
    JourDemandé = Jour.value_or(0);
    return RestantGroupe;
  }
};

class FauxÉvénements : public IEventPlugin {
 public:
  std::vector<std::string> Signalés;
  bool Lève = false;
  void Signaler(const std::string& Texte) override {
    if (Lève) throw std::runtime_error("host gone");
    Signalés.push_back(Texte);
  }
};

/// What the windows ask of the plug-in, scripted.
class FauxServices : public IServicesLiaison {
 public:
  int Interrogations = 0;
  std::vector<std::string> Cumuls;
  bool Connecté = true;
  std::vector<std::pair<std::int32_t, std::vector<Octets>>> Transmis;
  std::function<std::string(std::int32_t, std::vector<Octets>&)> SurTransmission;

  void Retard_FinTempo(const std::string&) override { ++Interrogations; }
  void MettreAJourCumuls(std::string& NoChargement) override { Cumuls.push_back(NoChargement); }
  bool TesterConnexion() override { return Connecté; }
  std::string TransmettreLignes(std::int32_t NumFichier, std::vector<Octets>& Lignes) override {
    Transmis.emplace_back(NumFichier, Lignes);
    return SurTransmission ? SurTransmission(NumFichier, Lignes) : "";
  }
};

}  // namespace Ombrey::Essais
