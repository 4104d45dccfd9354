// Start of the link: settings, port, polling period, first tick.
#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "base/regional_forms.h"
#include "contracts/host.h"
#include "contracts/octets.h"
#include "contracts/phrases.h"
#include "contracts/platform.h"
#include "contracts/port.h"
#include "contracts/system.h"
#include "core/plugin.h"

namespace Ombrey {
namespace {

/// The port asked for while none is configured: only its configuration is used.
constexpr const char* PortParDéfaut = "COM1:";
/// Laid down for every port; no port of this machine makes anything of them.
constexpr const char* DossierSansUsage = "c:\\temp";
constexpr std::int16_t ModeSansUsage = 0;

/// The plug-in's section in the host's settings file.
constexpr const char* SectionIni = "PlugInOmbrey";
constexpr const char* CléPort = "Port";
constexpr const char* CléPériode = "Période interrogation";

/// The settings file, opened on the plug-in's section.
class SectionPlugIn {
 public:
  SectionPlugIn(IPlateforme& Plateforme, const std::string& Fichier) : Lecteur_(Plateforme.CréerLecteurIni()) {
    Lecteur_->FixerFichier(Fichier);
    Lecteur_->FixerSection(SectionIni);
  }
  [[nodiscard]] std::string Lire(const std::string& Clé) {
    bool Drapeau = false;
    Lecteur_->FixerClé(Clé);
    Lecteur_->LireValeur(Drapeau);
    return Lecteur_->Valeur();
  }
  void Ecrire(const std::string& Clé, const std::string& Valeur) {
    bool Drapeau = false;
    Lecteur_->FixerClé(Clé);
    Lecteur_->FixerValeur(Valeur);
    Lecteur_->EcrireValeur(Drapeau);
  }

 private:
  std::unique_ptr<ILecteurIni> Lecteur_;
};

/// The setting as a whole number; a failure names the key and what stands there.
template <class Entier>
Entier EntierDuRéglage(const char* Clé, const std::string& Valeur, const Régional& Formes) {
  return AuSujetDe(std::string("réglage ") + Clé + " = « " + Valeur + " »", [&] {
    if constexpr (sizeof(Entier) == sizeof(std::int16_t)) {
      return EnEntier16(Valeur, Formes);
    } else {
      return EnEntier32(Valeur, Formes);
    }
  });
}

}  // namespace

std::string PlugIn::IPlugInTarvel_Initialiser(std::shared_ptr<IEventPlugin> EventPlugin) {
  const auto Tenu = État_.PlugInCourant;
  État_.EventPlugin = std::move(EventPlugin);
  std::string NomPort = SectionPlugIn(État_.Plateforme, FichierIni_).Lire(CléPort);
  if (NomPort.empty()) {
    DemanderRéglages();
    if (État_.Abandon) return "";
    NomPort = SectionPlugIn(État_.Plateforme, FichierIni_).Lire(CléPort);
  }
  std::string Erreur = NomPort.empty() ? Phrase::PortMalRéglé : OuvrirLiaison(NomPort);
  LirePériode();
  if (Erreur.empty()) {
    Canal_.AjouterMessage("Module initialisé.", true);
  } else {
    Canal_.AjouterMessage("Echec d'initialisation : " + Erreur, false);
  }
  return Erreur;
}

std::shared_ptr<IClientPortComm> PlugIn::NouvelEventPort(const std::string& NomPort) {
  auto Client = État_.Plateforme.CréerClientPortComm(
      [Faible = weak_from_this()](const Octets& Texte) {
        if (const auto Vivant = Faible.lock()) Vivant->Échange_.EventPortComRG80_Lecture(Texte);
      },
      [Faible = weak_from_this()](const std::string& Texte, bool Présente) {
        if (const auto Vivant = Faible.lock()) Vivant->Canal_.AjouterMessage(Texte, Présente);
      });
  Exiger(Client)->FixerNomPort(NomPort);
  return Client;
}

void PlugIn::ObtenirPort(const std::string& NomPort, const std::string& NomClient) {
  if (!ServeurPortComm_) ServeurPortComm_ = État_.Plateforme.CréerServeurPortComm();
  EventPortComRG80_ = NouvelEventPort(NomClient);
  Échange_.FixerPort(Exiger(ServeurPortComm_)->ObtenirPort(NomPort, EventPortComRG80_));
}

/// No port was ever configured: the operator is asked.
void PlugIn::DemanderRéglages() {
  ObtenirPort(PortParDéfaut, "");
  const auto Port = Exiger(Échange_.Port());
  Port->Configurer(FichierIni_, SectionIni);
  Échange_.FixerPort(nullptr);
}

/// A port that can't be opened now is no failure: the exchanges try again and report it.
std::string PlugIn::OuvrirLiaison(const std::string& NomPort) {
  ObtenirPort(NomPort, NomPort);
  if (!Échange_.Port()) {
    return std::string(Phrase::PortRefusé) + "\r" + ServeurPortComm_->ErreurServeur();
  }
  if (!DefParamPort()) return "Erreur des paramètres du port.";
  // The station that stopped, or was killed, a moment ago may have asked a terminal that was busy.
  Échange_.NoterReprise();
  if (Échange_.Port()->Ouvrir()) {
    bool Drapeau = false;
    Exiger(État_.BaseDeD)->ActiverBase(Drapeau);
  } else {
    static_cast<void>(Échange_.Port()->DernièreErreurPort());  // read away: the next exchange words its own
  }
  return "";
}

bool PlugIn::DefParamPort() {
  const auto Port = Exiger(Échange_.Port());
  const Régional Formes = État_.Formes();
  SectionPlugIn Réglages(État_.Plateforme, FichierIni_);
  const auto Entier = [&](const char* Clé) { return EntierDuRéglage<std::int16_t>(Clé, Réglages.Lire(Clé), Formes); };
  Port->FixerNomPort(Réglages.Lire(CléPort));
  Port->FixerBauds(Entier("Bauds"));
  Port->FixerParité(Réglages.Lire("Parité"));
  Port->FixerBitsStop(Entier("BitsStop"));
  Port->FixerTailleMots(Entier("TailleMots"));
  Port->FixerMode(ModeSansUsage);
  Port->Activer(true);
  Port->FixerDossierB(DossierSansUsage);
  Port->FixerDossierA(DossierSansUsage);
  return true;
}

void PlugIn::LirePériode() {
  const Régional Formes = État_.Formes();
  SectionPlugIn Réglages(État_.Plateforme, FichierIni_);
  const std::string Valeur = Réglages.Lire(CléPériode);
  if (EstNumérique(Valeur, Formes)) {
    Interrogation_.FixerPériode(EntierDuRéglage<std::int32_t>(CléPériode, Valeur, Formes));
  } else {
    Réglages.Ecrire(CléPériode, std::to_string(Interrogation_.Période()));
  }
}

void PlugIn::IPlugInTarvel_Afficher() {
  Ignorer([this] { Exiger(Échange_.Port())->Activer(true); });
  if (État_.Abandon) return;
  Ignorer([this] { Interrogation_.Commencer(); });
}

void PlugIn::IPlugInTarvel_Configurer() {
  const auto Tenu = État_.PlugInCourant;
  // Held while the operator is asked: on a port that doesn't open, which is when it is set anew, every poll has a box.
  const auto Prise = État_.Liaison.PrendreOuReporter(DemandeLiaison::Configuration,
                                                     [this] { Reporter([this] { IPlugInTarvel_Configurer(); }); });
  if (!Prise) return;
  if (const auto Port = Échange_.Port()) {
    Port->Configurer(FichierIni_, SectionIni);
  } else {
    NouvelEventPort("")->Configurer(FichierIni_, SectionIni);
  }
  Échange_.NoterReprise();  // the operator's trial may have asked the terminal
}

}  // namespace Ombrey
