// The station without a screen.
#include "host/console_station.h"

#include <algorithm>

#include "platform/system/settings_files.h"

namespace Tarvel {

using Ombrey::Moment;

ÉditionConsole::ÉditionConsole(const Options& Choisies, int Entrée, int Sortie)
    // A service has no input: its end means nothing there.
    : FinAvecEntrée_(!Choisies.SansOpérateur && !Choisies.Durée),
      Sortie_(Sortie),
      Fenêtres_(Boucle_, Sortie_),
      Commandes_(Fenêtres_),
      Questions_(Fenêtres_, Commandes_, &Ombrey::PortsDeLaMachine, Ombrey::ChoixUsuels()),
      Entrée_(Boucle_, Entrée, [this](const std::optional<std::string>& Ligne) { return Prendre(Ligne); }) {
  if (Choisies.SansOpérateur) Fenêtres_.RépondreSeul();
  Fenêtres_.SurDisponibilité([this] { Entrée_.Relancer(); });
}

std::filesystem::path ÉditionConsole::FichierRéglages() const {
  return Ombrey::FichierRéglagesUtilisateur().replace_filename("console.ini");
}

void ÉditionConsole::Raccorder(IGestesStation& Gestes) {
  Gestes_ = &Gestes;
  const auto Ajouter = [&](const char* Nom, const char* Aide, Moment Quand, void (IGestesStation::*Geste)()) {
    Commandes_.Ajouter({Nom, "", Aide, Quand, [&Gestes, Geste](const std::string&) { (Gestes.*Geste)(); }});
  };
  Ajouter("bouton", "le bouton du greffon : essaie la liaison et montre les chargements", Moment::HorsDialogue,
          &IGestesStation::Bouton);
  Ajouter("menu", "l'entrée de menu du greffon : transfert des données", Moment::HorsDialogue, &IGestesStation::Menu);
  Ajouter("configurer", "change les réglages du port", Moment::HorsDialogue, &IGestesStation::Configurer);
  Ajouter("fin", "arrête la station", Moment::Toujours, &IGestesStation::Finir);
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
