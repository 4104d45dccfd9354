// The plug-in towards its host: name, button, menu, database, and the calls that lead into the rooms.
#include "core/plugin.h"

#include <exception>
#include <utility>

#include "base/text_helpers.h"
#include "contracts/phrases.h"
#include "core/button_picture.h"
#include "link/transmission.h"
#include "monitor/monitoring_window.h"

namespace Ombrey {
namespace {

/// Keeps the first number offered that isn't 0; true for that number alone.
bool Retenir(std::uint8_t& Retenu, std::uint8_t Offert) {
  if (Retenu == 0) Retenu = Offert;
  return Offert != 0 && Offert == Retenu;
}

}  // namespace

PlugIn::PlugIn(IPlateforme& Plateforme)
    : Canal_([this] { return std::make_unique<FSuiviChargnt>(État_, *this); }),
      État_(Plateforme, Canal_),
      Échange_(État_),
      Exploitations_(État_),
      MiseEnForme_(État_),
      Trames_(État_, Exploitations_, MiseEnForme_),
      Notifications_(État_),
      Cumuls_(État_, *this),
      Interrogation_(État_, Échange_, *this) {}

std::shared_ptr<PlugIn> PlugIn::Créer(IPlateforme& Plateforme) {
  std::shared_ptr<PlugIn> Nouveau(new PlugIn(Plateforme));
  try {
    Nouveau->Class_Initialize();
  } catch (const std::exception&) {
    // It holds itself already; nobody else could let it go.
    Nouveau->IPlugInTarvel_Terminer();
    throw;
  }
  return Nouveau;
}

void PlugIn::Class_Initialize() {
  État_.PlugInCourant = shared_from_this();
  AccèsDistant_ = État_.Plateforme.CréerAccèsDistant();
  Exiger(AccèsDistant_)->Paramétrer("2");
}

PlugIn::~PlugIn() { IPlugInTarvel_Terminer(); }

std::string PlugIn::MiseEnFormePourImport(const std::vector<std::string>& DonnéesReçues) {
  return MiseEnForme_.MiseEnFormePourImport(DonnéesReçues);
}

std::string PlugIn::SupprZéroDébut(std::string Texte) const { return Ombrey::SupprZéroDébut(std::move(Texte)); }
std::string PlugIn::SupprZéroFin(std::string Texte) const { return Ombrey::SupprZéroFin(std::move(Texte)); }

std::string PlugIn::IPlugInTarvel_Nom() const { return NomPlugIn; }
std::string PlugIn::IPlugInTarvel_Version() const { return OMBREY_VERSION; }

bool PlugIn::IPlugInTarvel_AjouterBouton(std::uint8_t NumBouton, std::int16_t&, std::string& ToolTipText) {
  if (!Retenir(NumBouton_, NumBouton)) return false;
  État_.Plateforme.Fenêtres().PoserImages(ImagesBouton());
  ToolTipText = "Comm. au RG80";
  return true;
}

bool PlugIn::IPlugInTarvel_AjouterMenu(std::uint8_t NumMenu, std::string& Texte) {
  if (!Retenir(NumMenu_, NumMenu)) return false;
  Texte = "&Charger les données vers le RG80";
  return true;
}

void PlugIn::Reporter(const std::function<void()>& Faire) {
  const auto Tenu = État_.PlugInCourant;
  try {
    Faire();
  } catch (const std::exception& Échec) {
    Canal_.AjouterErreur(Échec.what());
  }
}

void PlugIn::IPlugInTarvel_BoutonBarreOutilsAppelé(std::int16_t Num, const std::string&) {
  if (Num == NumBouton_ && Num != 0) TesterEtMontrer();
}

void PlugIn::TesterEtMontrer() {
  const auto Tenu = État_.PlugInCourant;
  {
    const auto Prise =
        État_.Liaison.PrendreOuReporter(DemandeLiaison::Bouton, [this] { Reporter([this] { TesterEtMontrer(); }); });
    if (!Prise) return;
    Interrogation_.Armer();
    Canal_.Rafraîchir();
    const bool Connecté = TesterConnexion();
    Canal_.AjouterMessage(Connecté ? "Connexion établie avec le RG80." : Phrase::PasDeConnexion, true);
  }
  Canal_.Afficher();
}

void PlugIn::IPlugInTarvel_MenuAppelé(std::int16_t Num, const std::string&) {
  if (Num == NumMenu_ && Num != 0) TransférerDonnées();
}

void PlugIn::TransférerDonnées() {
  // Asked for twice: the window is on its way already, or open.
  if (!FChargntDonnées_.expired()) return;
  const auto Tenu = État_.PlugInCourant;
  const auto Prise =
      État_.Liaison.PrendreOuReporter(DemandeLiaison::Menu, [this] { Reporter([this] { TransférerDonnées(); }); });
  if (!Prise) return;
  const auto Fenêtre = std::make_shared<FChargntDonnées>(État_);
  FChargntDonnées_ = Fenêtre;
  Interrogation_.Suspendre([&] { Fenêtre->Afficher(*this); });
}

std::shared_ptr<IBaseDeD> PlugIn::IPlugInTarvel_BaseDeD() const { return État_.BaseDeD; }

void PlugIn::IPlugInTarvel_FixerBaseDeD(std::shared_ptr<IBaseDeD> Objet) {
  // The new base may have a load of its own under this number.
  if (Objet != État_.BaseDeD) État_.DernierNoChargement.clear();
  // The former base's objects go even when the new one can't give its own: no load of one goes into the other.
  DéconnecterÉvénements();
  État_.BaseDeD = std::move(Objet);
  Ignorer([this] {
    État_.EtatBdD = Exiger(État_.BaseDeD)->EtatBdD();
    Exiger(État_.EtatBdD)->Connecter(&Notifications_);
  });
  Ignorer([this] {
    KVSynchro_ = Exiger(État_.EtatBdD)->KVSynchro();
    Exiger(KVSynchro_)->Connecter(&Notifications_);
  });
}

void PlugIn::DéconnecterÉvénements() {
  // Each on its own: a listener left behind would be called after the plug-in's end.
  Ignorer([this] { Exiger(KVSynchro_)->Déconnecter(&Notifications_); });
  Ignorer([this] { Exiger(État_.EtatBdD)->Déconnecter(&Notifications_); });
  KVSynchro_.reset();
  État_.EtatBdD.reset();
}

std::shared_ptr<IServeurPortComm> PlugIn::IPlugInTarvel_ServeurPortComm() const { return nullptr; }
void PlugIn::IPlugInTarvel_FixerServeurPortComm(std::shared_ptr<IServeurPortComm> Objet) {
  ServeurPortComm_ = std::move(Objet);
}
std::shared_ptr<void> PlugIn::IPlugInTarvel_EntreesSorties() const { return nullptr; }
void PlugIn::IPlugInTarvel_FixerEntreesSorties(std::shared_ptr<void>) {}
void PlugIn::IPlugInTarvel_FixerFichierTarvelIni(const std::string& Chemin) { FichierIni_ = Chemin; }
void PlugIn::IPlugInTarvel_Information(std::string&) {}

void PlugIn::IPlugInTarvel_ChargementAjouté(const std::string&, const std::string&) {
  Notifications_.ChargementAjouté();
}

void PlugIn::Retard_FinTempo(const std::string& CodeRetour) { Interrogation_.Retard_FinTempo(CodeRetour); }
void PlugIn::MettreAJourCumuls(std::string& NoChargement) { Cumuls_.MettreAJourCumuls(NoChargement); }
bool PlugIn::TesterConnexion() { return Échange_.TesterConnexion(); }
std::string PlugIn::TransmettreLignes(std::int32_t NumFichier, std::vector<Octets>& Lignes) {
  return Transmission(État_, Échange_, NumFichier).TransmettreLignes(Lignes);
}
std::string PlugIn::TraiterDonnéesReçues(Octets& Tampon, Octets& Réponse, std::string& NoChargement) {
  return Trames_.TraiterDonnéesReçues(Tampon, Réponse, NoChargement);
}

}  // namespace Ombrey
