// The station without a screen.
#include "host/console_station.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <utility>

#include "base/failures.h"
#include "host/day_view.h"
#include "host/diagnostic.h"
#include "host/station_register.h"
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
      Entrée_(Boucle_, Entrée, [this](const std::optional<std::string>& Ligne) { return Prendre(Ligne); }) {
  if (Choisies.SansOpérateur) Fenêtres_.RépondreSeul();
  Fenêtres_.SurDisponibilité([this] { Entrée_.Relancer(); });
  Fenêtres_.Observer(Aperçu_.Témoins());
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
  Ajouter("fin", "arrête la station", QuandPermise::Toujours, &IGestesStation::Finir);
}

void ÉditionConsole::SuivreLiaison(const Ombrey::JournalLiaison& Journal) {
  Commandes_.Ajouter({"ligne", "", "ce qui vient de passer sur la ligne", QuandPermise::Toujours,
                      [&](const std::string&) { MontrerLigne(Journal); }});
}

/// The last messages of the line, the oldest first.
void ÉditionConsole::MontrerLigne(const Ombrey::JournalLiaison& Journal) {
  constexpr std::size_t NombreMontrés = 40;
  const auto& Messages = Journal.Messages();
  const std::size_t Nombre = std::min(NombreMontrés, Messages.size());
  Sortie_.Ligne("ligne : " + std::to_string(Nombre) + " messages");
  for (std::size_t Rang = Messages.size() - Nombre; Rang < Messages.size(); ++Rang) {
    std::string Texte = Ombrey::LigneTrace(Messages[Rang]);
    Texte.pop_back();
    std::ranges::replace(Texte, '\t', ' ');
    Sortie_.Ligne("ligne : " + Texte);
  }
}

void ÉditionConsole::AjouterTableau(const char* Nom, const char* Aide, std::function<Rangées()> Lire) {
  Commandes_.Ajouter({Nom, "", Aide, QuandPermise::EntreDeux, [this, Nom, Lire = std::move(Lire)](const std::string&) {
                        const Rangées Toutes = Lire();
                        Sortie_.Ligne(std::string(Nom) + " : " + std::to_string(Toutes.size() - 1));
                        for (const auto& Rangée : Toutes) {
                          std::string Ligne = "  ";
                          for (const std::string& Texte : Rangée) Ligne += Texte + " | ";
                          Sortie_.Ligne(Ligne);
                        }
                      }});
}

/// What the windows show at a glance.
void ÉditionConsole::AjouterVues() {
  const auto Base = [this] { return Ombrey::Exiger(Ombrey::Exiger(Base_)->BaseDAO()); };
  const auto Jour = [this, Base] { return LireJournée(*Base(), Base_->KVSynchro()->CodeSiteCourant()); };
  const auto Dire = [this](const char* Nom, const char* Aide, const std::function<std::string()>& Texte) {
    Commandes_.Ajouter(
        {Nom, "", Aide, QuandPermise::EntreDeux, [this, Texte](const std::string&) { Sortie_.Ligne(Texte()); }});
  };
  Dire("etat", "la liaison et le prochain relevé",
       [this] { return "état : " + Aperçu_.TexteLiaison() + ". " + Aperçu_.TexteRelevé(); });
  Dire("diagnostic", "examine réglages, port, base et dossier", [this] { return TexteDiagnostic(Options_); });
  AjouterTableau("journee", "les chargements du jour de ce site", [Jour] { return TableauChargements(Jour(), {}); });
  AjouterTableau("sommes", "leurs sommes par appellation et classe", [Jour] { return TableauSommes(Jour(), {}); });
  AjouterTableau("quotas", "les quotas du jour et ce qui reste", [Jour] { return TableauQuotas(Jour()); });
  AjouterTableau("archive", "les 1000 derniers chargements dont un autre a repris le numéro",
                 [Base] { return TableauArchive(*Base(), {}); });
  AjouterTableau("stations", "les stations qui travaillent sur la base",
                 [Base] { return TableauStations(*Base(), {}); });
  AjouterTableau("refuses", "les chargements que la station refuse", [this] { return Aperçu_.Refusés(); });
  Commandes_.Ajouter({"refus", "RANG", "tout ce que l'on sait d'un chargement refusé, le premier de la liste est 1",
                      QuandPermise::EntreDeux, [this](const std::string& Rang) {
                        Sortie_.Ligne(
                            Aperçu_.Détail(static_cast<std::size_t>(std::max(1, std::atoi(Rang.c_str()))) - 1));
                      }});
  AjouterTableau("alire", "les boîtes auxquelles personne n'a répondu", [this] { return Aperçu_.NonLus(); });
  Commandes_.Ajouter(
      {"lu", "", "vide cette liste", QuandPermise::EntreDeux, [this](const std::string&) { Aperçu_.ToutEstLu(); }});
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
