// The station without a screen.
#include "host/console_station.h"

#include <algorithm>
#include <cstdlib>
#include <deque>
#include <filesystem>
#include <sstream>
#include <string_view>
#include <utility>

#include "base/failures.h"
#include "base/files.h"
#include "base/text_helpers.h"
#include "host/about.h"
#include "host/day_view.h"
#include "host/new_file.h"
#include "host/station_register.h"
#include "platform/console/typed_text.h"
#include "platform/system/settings_files.h"

namespace Tarvel {

using Ombrey::QuandPermise;

ÉditionConsole::ÉditionConsole(const Options& Choisies, int Entrée, int Sortie)
    : Options_(Choisies),
      // A service has no input: its end means nothing there.
      FinAvecEntrée_(!Choisies.SansOpérateur && !Choisies.Durée),
      Sortie_(Sortie),
      Fenêtres_(Boucle_, Sortie_),
      Commandes_(Fenêtres_),
      Questions_(Fenêtres_, Commandes_, &Ombrey::PortsDeLaMachine, Ombrey::ChoixUsuels()),
      Papiers_(Boucle_, Sortie_, Choisies),
      Entrée_(Boucle_, Entrée, [this](const std::optional<std::string>& Ligne) { return Prendre(Ligne); }) {
  if (Choisies.SansOpérateur) Fenêtres_.RépondreSeul();
  Fenêtres_.SurDisponibilité([this] { Entrée_.Relancer(); });
  Fenêtres_.RéglerBoîtes(Choisies.DuréeBoîtes);
  Fenêtres_.Observer(Aperçu_.Témoins());
  Aperçu_.SurChangement([this] { RappelerSuspension(); });
}

std::filesystem::path ÉditionConsole::FichierRéglages() const {
  return Ombrey::FichierRéglagesUtilisateur().replace_filename("console.ini");
}

void ÉditionConsole::Raccorder(IGestesStation& Gestes) {
  Gestes_ = &Gestes;
  const auto Ajouter = [&](const char* Nom, const char* Aide, QuandPermise Quand, void (IGestesStation::*Geste)()) {
    Commandes_.Ajouter({Nom, "", Aide, Quand, [&Gestes, Geste](const std::string&) { (Gestes.*Geste)(); }});
  };
  Ajouter("bouton", "le bouton du greffon : essaie la liaison et montre les chargements", QuandPermise::HorsDialogue,
          &IGestesStation::Bouton);
  Ajouter("menu", "l'entrée de menu du greffon : transfert des données", QuandPermise::HorsDialogue,
          &IGestesStation::Menu);
  Ajouter("configurer", "change les réglages du port", QuandPermise::HorsDialogue, &IGestesStation::Configurer);
  AjouterVues();
  Papiers_.Offrir(Commandes_, [this] { return Site(); });
  Ajouter("fin", "arrête la station", QuandPermise::Toujours, &IGestesStation::Finir);
}

void ÉditionConsole::SuivreLiaison(const Ombrey::JournalLiaison& Journal) {
  Commandes_.Ajouter({"ligne", "[fautes] [NOMBRE]", "ce qui vient de passer sur la ligne, ou les seules fautes",
                      QuandPermise::Toujours, [&](const std::string& Choix) { MontrerLigne(Journal, Choix); }});
  Commandes_.Ajouter(
      {"trace", "FICHIER", "enregistre la trace des dernières heures, que « rg80 --rejouer » sait relire",
       QuandPermise::EntreDeux, [&](const std::string& Nom) {
         Sortie_.Ligne("trace : " + ÉcrireNouveau(Ombrey::Chemin(Nom),
                                                  [&](const auto& Fichier) { return Journal.Enregistrer(Fichier); }));
       }});
}

/// The last messages of the line, the oldest first.
void ÉditionConsole::MontrerLigne(const Ombrey::JournalLiaison& Journal, const std::string& Choix) {
  constexpr std::size_t NombreUsuel = 40;
  constexpr std::string_view Fautes = "fautes";
  const bool Seules = Ombrey::FormeComparable(Choix).starts_with(Fautes);
  const std::string_view Nombre = Ombrey::SansBlancs(std::string_view(Choix).substr(Seules ? Fautes.size() : 0));
  const auto Voulus = Nombre.empty() ? NombreUsuel : Ombrey::NombreLu<std::size_t>(Nombre);
  if (!Voulus) throw Ombrey::ErreurExécution(Ombrey::CommandeMalÉcrite("ligne [fautes] [NOMBRE]"));
  std::deque<std::string> Lignes;
  const auto& Messages = Journal.Messages();
  for (auto Un = Messages.rbegin(); Un != Messages.rend() && Lignes.size() < *Voulus; ++Un)
    if (Un->Faute || !Seules) Lignes.push_front(Ombrey::LigneTrace(*Un));
  Sortie_.Ligne("ligne : " + std::to_string(Lignes.size()) + " messages");
  for (std::string& Ligne : Lignes) {
    Ligne.pop_back();
    std::ranges::replace(Ligne, '\t', ' ');
    Sortie_.Ligne("ligne : " + Ligne);
  }
}

void ÉditionConsole::DireEnLignes(const std::string& Texte) {
  std::istringstream Flux(Texte);
  for (std::string Ligne; std::getline(Flux, Ligne);)
    if (!Ligne.empty()) Sortie_.Ligne(Ligne);
}

/// A transfer window or a question that was forgotten keeps every load waiting.
void ÉditionConsole::RappelerSuspension() {
  if (std::exchange(Suspendue_, Aperçu_.SuspendueDepuis()) == Aperçu_.SuspendueDepuis()) return;
  Rappel_.reset();
  if (Suspendue_) Rappel_ = Boucle_.Après(RappelSuspension, [this] { Dire(Aperçu_.TexteRappel()); });
}

void ÉditionConsole::AjouterTableau(const char* Nom, const char* Argument, const char* Aide,
                                    std::function<Rangées(const std::string&)> Lire) {
  Commandes_.Ajouter(
      {Nom, Argument, Aide, QuandPermise::EntreDeux, [this, Nom, Lire = std::move(Lire)](const std::string& Mots) {
         const Rangées Toutes = Lire(Mots);
         Sortie_.Ligne(std::string(Nom) + " : " + std::to_string(Toutes.size() - 1));
         for (const auto& Rangée : Toutes) {
           std::string Ligne = "  ";
           for (const std::string& Texte : Rangée) Ligne += Texte + " | ";
           Sortie_.Ligne(Ligne);
         }
       }});
}

std::string ÉditionConsole::Site() const {
  return Ombrey::Exiger(Ombrey::Exiger(Base_)->KVSynchro())->CodeSiteCourant();
}

Journée ÉditionConsole::LireJour(const std::string& Mots) const {
  const std::size_t FinMot = std::min(Mots.find_first_of(Ombrey::Blancs), Mots.size());
  const bool Tous = Ombrey::FormeComparable(Mots.substr(0, FinMot)) == "tous";
  const auto Base = Ombrey::Exiger(Ombrey::Exiger(Base_)->BaseDAO());
  return Filtrer(LireJournée(*Base, Tous ? "" : Site()), Tous ? Mots.substr(FinMot) : Mots);
}

/// A base that can't be read is said to be so, and the link told all the same.
std::string ÉditionConsole::TexteÉtat() const {
  const std::string Liaison = "état : " + Aperçu_.TexteLiaison() + ". " + Aperçu_.TexteRelevé() + ". ";
  const bool EstSurServeur = !FichierDeBase(Options_.Base);
  std::string Laquelle = TexteBase(Options_.NomBase(), EstSurServeur);
  if (!Base_) return Liaison + Laquelle;
  Ombrey::ErreurEnAttente Erreur;
  const bool Lue = Garder(Erreur, [&] {
    Laquelle = TexteBase(Options_.NomBase(), EstSurServeur, Ombrey::Exiger(Base_->BaseDAO()).get());
    const Journée Jour = LireJour("");
    if (!Jour.Chargements.empty()) Laquelle = "Aujourd'hui " + TexteTotal(Jour) + ". " + Laquelle;
    Laquelle = TexteDernier(Jour, Site()) + ". " + Laquelle;
  });
  return Liaison + Laquelle + (Lue ? "" : ". " + TexteBaseMuette(Erreur.Texte()));
}

/// What the windows show at a glance.
void ÉditionConsole::AjouterVues() {
  const auto Base = [this] { return Ombrey::Exiger(Ombrey::Exiger(Base_)->BaseDAO()); };
  const auto Dire = [this](const char* Nom, const char* Aide, const std::function<std::string()>& Texte) {
    Commandes_.Ajouter(
        {Nom, "", Aide, QuandPermise::EntreDeux, [this, Texte](const std::string&) { DireEnLignes(Texte()); }});
  };
  constexpr const char* Choix = "[tous] [MOTS]";
  Dire("etat", "la liaison, le prochain relevé, la journée et la base", [this] { return TexteÉtat(); });
  Dire("apropos", "les versions, et où sont la base et les fichiers",
       [this] { return TexteÀPropos(Options_, Aperçu_); });
  AjouterTableau("journee", Choix, "les chargements du jour, de ce site ou de tous, qui contiennent tous ces mots",
                 [this](const std::string& Mots) { return TableauChargements(LireJour(Mots), {}); });
  AjouterTableau("sommes", Choix, "leurs sommes par appellation et classe",
                 [this](const std::string& Mots) { return TableauSommes(LireJour(Mots), {}); });
  AjouterTableau("heures", Choix, "leur tonnage par heure",
                 [this](const std::string& Mots) { return TableauHeures(LireJour(Mots)); });
  AjouterTableau("restes", "", "les quotas du jour et ce qui reste",
                 [this](const std::string&) { return TableauQuotas(LireJour("")); });
  AjouterTableau("archive", "", "les 1000 derniers chargements dont un autre a repris le numéro",
                 [Base](const std::string&) { return TableauArchive(*Base(), {}); });
  AjouterTableau("stations", "", "les stations qui travaillent sur la base",
                 [Base](const std::string&) { return TableauStations(*Base(), {}); });
  AjouterTableau("refuses", "", "les chargements que la station refuse",
                 [this](const std::string&) { return Aperçu_.Refusés(); });
  Commandes_.Ajouter({"refus", "RANG", "tout ce que l'on sait d'un chargement refusé, le premier de la liste est 1",
                      QuandPermise::EntreDeux, [this](const std::string& Rang) {
                        DireEnLignes(
                            Aperçu_.Détail(static_cast<std::size_t>(std::max(1, std::atoi(Rang.c_str()))) - 1));
                      }});
  AjouterTableau("alire", "", "les boîtes auxquelles personne n'a répondu",
                 [this](const std::string&) { return Aperçu_.NonLus(); });
  Commandes_.Ajouter({"lu", "[refuses]", "vide cette liste ; celle des refusés, de ce que le RG80 ne propose plus",
                      QuandPermise::EntreDeux, [this](const std::string& Liste) { MarquerLu(Liste); }});
}

void ÉditionConsole::MarquerLu(const std::string& Liste) {
  const std::string Laquelle = Ombrey::FormeComparable(Liste);
  if (Laquelle.empty()) return Aperçu_.ToutEstLu();
  if (Laquelle != "refuses") throw Ombrey::ErreurExécution(Ombrey::CommandeMalÉcrite("lu [refuses]"));
  Aperçu_.RefusésLus();
}

void ÉditionConsole::OffrirBouton(const std::string& Infobulle) { Sortie_.Ligne("commande « bouton » : " + Infobulle); }

void ÉditionConsole::OffrirMenu(const std::string& Texte) {
  std::string Légende = Texte;
  std::erase(Légende, '&');
  Sortie_.Ligne("commande « menu » : " + Légende);
}

bool ÉditionConsole::Prendre(const std::optional<std::string>& Ligne) {
  if (Ligne) return Commandes_.Exécuter(*Ligne);
  if (Fenêtres_.Occupée()) return false;
  Fenêtres_.FermerEntrée();
  if (FinAvecEntrée_ && Gestes_ != nullptr) Gestes_->Finir();
  return true;
}

}  // namespace Tarvel
