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

void ÉditionConsole::SuivreLiaison(const Ombrey::JournalLiaison& Journal) {
  Commandes_.Ajouter({"ligne", "", "ce qui vient de passer sur la ligne", Moment::Toujours,
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
