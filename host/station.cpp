// The station: drives the plug-in by the host's rules, and ends it properly.
#include "host/station.h"

#include <chrono>
#include <exception>
#include <functional>
#include <string_view>
#include <thread>
#include <utility>

#include "base/files.h"
#include "contracts/octets.h"
#include "contracts/phrases.h"
#include "host/machine_platform.h"
#include "host/overview.h"
#include "host/plugin_loader.h"
#include "platform/loop/signals.h"
#include "platform/loop/witnesses.h"
#include "platform/serial/trace_file.h"
#include "platform/system/summons.h"

namespace Tarvel {
namespace {

using namespace std::chrono_literals;

constexpr std::uint8_t NumBouton = 1;
constexpr std::uint8_t NumMenu = 1;
/// As often the station looks whether other sites have brought something in.
constexpr auto EntreRepos = 1s;
/// Nothing is missed in a pump without an event: what comes by the clock is an action of the loop.
constexpr auto AttenteParPompe = 1h;
/// Between two tries of a loop that fails by itself, so that it can't eat the machine.
constexpr auto RépitAprèsPanne = 100ms;

class ÉchoHôte final : public Ombrey::IEventPlugin {
 public:
  explicit ÉchoHôte(IÉdition& Édition) : Édition_(Édition) {}
  void Signaler(const std::string& Texte) override {
    const bool EstReçu = Texte.starts_with(Ombrey::Phrase::ChargementAjouté);
    const std::string Horloges =
        EstReçu ? Édition_.LAperçu().NoterReçu(Texte.substr(std::string_view(Ombrey::Phrase::ChargementAjouté).size()))
                : "";
    Édition_.Dire(Texte);
    if (!Horloges.empty()) Édition_.Dire(Horloges);
  }

 private:
  IÉdition& Édition_;
};

}  // namespace

Station::Station(const Options& Choisies, IÉdition& Édition)
    : Options_(Choisies),
      Édition_(Édition),
      Boucle_(
          Édition.Boucle(), [&Édition](const std::string& Description) { Édition.Dire(Description); },
          [this] { RepartirAuBesoin(); }) {}

void Station::Exécuter(const OuvrirBase& Ouvrir, std::function<void()> AuRepos) {
  AuRepos_ = std::move(AuRepos);
  Ombrey::PlateformeMachine Plateforme(Boucle_, Édition_.Fenêtres(), this, Options_.Dossier, Édition_.FichierRéglages(),
                                       &Journal_,
                                       {[this](const Ombrey::Octets& Reçus) { Édition_.LAperçu().NoterOctets(Reçus); },
                                        [this](auto Délai) { NoterRelevé(Délai); },
                                        [this](const Ombrey::Avancement& Où) { return Édition_.Avancer(Où); }});
  const Ombrey::ÉcouteAppels Appels(Boucle_, Options_.Dossier, [this] { Édition_.SePrésenter(); });
  Plateforme_ = &Plateforme;
  Édition_.LAperçu().Ouvrir(Options_.Dossier, Plateforme.Système().DossierImportsConservés());
  if (!Options_.Trace.empty())
    Journal_.FixerTrace(std::make_unique<Ombrey::FichierTrace>(
        Options_.Trace, [this](const std::string& Texte) { Édition_.Dire(Texte); }));
  Base_ = Ouvrir(Plateforme.Système());
  const Ombrey::SignauxFin Signaux(Boucle_, [this] { Finir(); });
  Charger();
  const Ombrey::IBoucle::Jeton Échéance =
      Options_.Durée ? Boucle_.Après(*Options_.Durée, [this] { Finir(); }) : nullptr;
  Édition_.Raccorder(*this);
  Édition_.Suivre(Base_);
  Édition_.SuivreLiaison(Journal_);
  Démarrer();
  Service_.Prêt("Collecte des chargements du RG80");
  ProgrammerRepos(0ms);
  while (!EnFin_) Pomper();
  Repos_.reset();
  PlugIn_.reset();
  Base_.reset();
}

void Station::Charger() {
  const auto Fichier = Options_.Greffon.empty() ? GreffonHabituel() : Options_.Greffon;
  PlugIn_ = ChargerGreffon(Fichier, *Plateforme_);
  Édition_.LAperçu().NoterVersion("Greffon", PlugIn_->IPlugInTarvel_Version() + ", interface n° " +
                                                 std::to_string(Ombrey::VersionContrat) + ", " +
                                                 Ombrey::TexteChemin(Fichier));
}

void Station::Démarrer() {
  Tenter([this] {
    PlugIn_->IPlugInTarvel_FixerFichierTarvelIni(Ombrey::TexteChemin(Options_.Ini));
    PlugIn_->IPlugInTarvel_FixerBaseDeD(Base_);
    const std::string Raison = PlugIn_->IPlugInTarvel_Initialiser(std::make_shared<ÉchoHôte>(Édition_));
    if (!Raison.empty()) Édition_.Dire("Le greffon n'est pas initialisé. " + Raison);
  });
  RéglagesChangés_ = false;  // those of the first start are in use already
  // A failed start leaves a plug-in that the operator can still configure, and that polls.
  Tenter([this] {
    std::int16_t Style = 0;
    std::string Texte;
    const bool Offerts = std::exchange(Offerts_, true);
    if (PlugIn_->IPlugInTarvel_AjouterBouton(NumBouton, Style, Texte) && !Offerts) Édition_.OffrirBouton(Texte);
    if (PlugIn_->IPlugInTarvel_AjouterMenu(NumMenu, Texte) && !Offerts) Édition_.OffrirMenu(Texte);
    PlugIn_->IPlugInTarvel_Afficher();
  });
}

void Station::Bouton() {
  Tenter([this] { PlugIn_->IPlugInTarvel_BoutonBarreOutilsAppelé(NumBouton, ""); });
}

void Station::Menu() {
  Tenter([this] { PlugIn_->IPlugInTarvel_MenuAppelé(NumMenu, ""); });
}

void Station::Configurer() {
  Tenter([this] { PlugIn_->IPlugInTarvel_Configurer(); });
  RepartirAuBesoin();
}

bool Station::Demander(Ombrey::RéglagesPort& Réglages,
                       const std::function<std::string(const Ombrey::RéglagesPort&)>& Essayer) {
  // The plug-in holds the line until he has answered: no poll comes by.
  const std::unique_ptr<Aperçu, void (*)(Aperçu*)> Suspendu(&Édition_.LAperçu(),
                                                            [](Aperçu* Vu) { Vu->NoterSuspension(nullptr); });
  Suspendu->NoterSuspension(&RéglagesDuPort);
  return Édition_.Questionnaire().Demander(Réglages, Essayer);
}

void Station::DireRetenus() {
  Édition_.Questionnaire().DireRetenus();
  RéglagesChangés_ = true;
}

/// Called behind the operator's gesture and behind each of the loop's actions, in one of which the plug-in has asked
/// him: it held the line until then, so nobody has it now.
void Station::RepartirAuBesoin() {
  if (EnFin_ || !std::exchange(RéglagesChangés_, false)) return;
  Édition_.Dire("Les réglages du port ont changé : le greffon repart avec eux.");
  const auto Ancien = PlugIn_;
  Tenter([this] { Charger(); });
  if (PlugIn_ == Ancien) return;
  Tenter([&Ancien] { Ancien->IPlugInTarvel_Terminer(); });
  Édition_.LAperçu().OublierLiaison();
  Démarrer();
}

void Station::Finir() {
  if (EnFin_) return;
  EnFin_ = true;
  Service_.Arrêt();
  Édition_.Finir();
  try {
    PlugIn_->IPlugInTarvel_Terminer();
  } catch (const std::exception& Erreur) {
    Édition_.Dire(Erreur.what());
  }
}

/// Calls the plug-in for the operator. Its failure is the operator's to know and nobody else's.
template <class Appel>
void Station::Tenter(Appel Faire) {
  if (EnFin_) return;
  try {
    Faire();
  } catch (const std::exception& Erreur) {
    Édition_.Dire(std::string("Le greffon a échoué : ") + Erreur.what());
  }
}

void Station::NoterRelevé(std::optional<std::int32_t> Délai) {
  if (Délai)
    ProgrammerRepos(0ms);
  else
    Repos_.reset();
  Édition_.LAperçu().NoterRelevé(Délai);
}

/// From the loop, so that it goes on behind a list of loads that stands open all day.
void Station::ProgrammerRepos(std::chrono::milliseconds Dans) {
  Repos_ = Boucle_.Après(Dans, [this] {
    ProgrammerRepos(EntreRepos);
    if (!EnFin_) AuRepos_();
  });
}

void Station::Pomper() {
  try {
    Boucle_.Pomper(AttenteParPompe);
    if (!Repos_) ProgrammerRepos(0ms);  // a poll that has failed to arm the next
  } catch (const std::exception& Erreur) {
    Édition_.Dire(Erreur.what());
    std::this_thread::sleep_for(RépitAprèsPanne);
  }
}

}  // namespace Tarvel
