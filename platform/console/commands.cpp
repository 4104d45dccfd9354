// The operator's commands.
#include "platform/console/commands.h"

#include <algorithm>
#include <exception>
#include <memory>
#include <string_view>
#include <utility>

#include "base/failures.h"
#include "base/text_helpers.h"
#include "base/visible_text.h"
#include "platform/console/input.h"
#include "platform/console/monitoring_view.h"
#include "platform/console/transfer_view.h"
#include "platform/console/typed_text.h"

namespace Ombrey {
namespace {

std::string Usage(const CommandeConsole& Commande) {
  return Commande.Argument.empty() ? Commande.Nom : Commande.Nom + " " + Commande.Argument;
}

VueSuiviConsole& Suivi(const FenêtresConsole& Fenêtres) {
  if (Fenêtres.VueSuivi() == nullptr) throw ErreurExécution("il n'y a pas encore de fenêtre des chargements.");
  return *Fenêtres.VueSuivi();
}

}  // namespace

std::string CommandeMalÉcrite(const std::string& Usage) { return "la commande s'écrit « " + Usage + " »."; }

CommandesConsole::CommandesConsole(FenêtresConsole& Fenêtres) : Fenêtres_(Fenêtres) {
  AjouterSuivi();
  AjouterTransfert();
  AjouterRéponse("ok", "répond OK à la boîte ouverte", RéponseBoîte::Ok);
  AjouterRéponse("recommencer", "répond Recommencer à la boîte ouverte", RéponseBoîte::Recommencer);
  AjouterRéponse("annuler", "répond Annuler à la boîte ouverte", RéponseBoîte::Annuler);
  Ajouter({"aide", "", "cette liste", QuandPermise::Toujours, [this](const std::string&) { Aider(); }});
}

bool CommandesConsole::Exécuter(const std::string& Ligne) {
  const std::string Texte(SansBlancs(Ligne));
  const std::size_t FinMot = std::min(Texte.find_first_of(Blancs), Texte.size());
  const CommandeConsole* Commande = Trouver(FormeComparable(Texte.substr(0, FinMot)));
  const bool Urgente = Commande != nullptr && Commande->Quand == QuandPermise::Toujours;
  if (Fenêtres_.Retient() || (Fenêtres_.Occupée() && !Urgente)) return false;
  if (Ligne.size() > EntréeConsole::LongueurMax) {
    Indiquer("ligne trop longue, ignorée.");
  } else if (Question_ && !Fenêtres_.BoîteOuverte() && !Urgente) {
    std::exchange(Question_, nullptr)(Texte);
  } else if (Commande != nullptr) {
    Lancer(*Commande, std::string(SansBlancs(std::string_view(Texte).substr(FinMot))));
  } else if (!Texte.empty()) {
    Indiquer("commande inconnue : « " + Texte + " ». « aide » donne la liste des commandes.");
  }
  return true;
}

const CommandeConsole* CommandesConsole::Trouver(const std::string& Mot) const {
  const auto Trouvée =
      std::find_if(Commandes_.begin(), Commandes_.end(), [&](const auto& Commande) { return Commande.Nom == Mot; });
  return Trouvée == Commandes_.end() ? nullptr : &*Trouvée;
}

std::string CommandesConsole::Refus(const CommandeConsole& Commande, const std::string& Argument) const {
  if (!Commande.Argument.starts_with('[') && Argument.empty() != Commande.Argument.empty())
    return CommandeMalÉcrite(Usage(Commande));
  if (Commande.Quand == QuandPermise::Toujours || Commande.Quand == QuandPermise::EntreDeux) return "";
  if (Fenêtres_.BoîteOuverte()) return "répondez d'abord à la boîte ouverte.";
  if (Commande.Quand == QuandPermise::HorsBoîte) return "";
  const VueChargntConsole* Vue = Fenêtres_.VueChargnt();
  const bool Ouverte = Vue != nullptr && Vue->EstVisible();
  if (Commande.Quand == QuandPermise::HorsDialogue) return Ouverte ? "fermez d'abord la fenêtre de transfert." : "";
  if (!Ouverte) return "la fenêtre de transfert n'est pas ouverte ; « menu » l'ouvre.";
  return Vue->EstActive() ? "" : "un transfert est en cours.";
}

void CommandesConsole::Lancer(const CommandeConsole& Commande, const std::string& Argument) {
  const FenêtresConsole::Occupation Occupation(Fenêtres_);
  // A failure must not unwind the dialogue of the plug-in whose wait this command came in.
  try {
    const std::string Raison = Refus(Commande, Argument);
    if (Raison.empty()) {
      Commande.Faire(Argument);
    } else {
      Indiquer(Raison);
    }
  } catch (const std::exception& Erreur) {
    Indiquer(Erreur.what());
  }
}

std::optional<std::string> CommandesConsole::Questionner(const std::string& Question) {
  if (!Fenêtres_.OpérateurPrésent()) return std::nullopt;
  Fenêtres_.Ligne("question : " + Question);
  std::optional<std::string> Réponse;
  auto Dehors = std::exchange(Question_, [&](const std::string& Texte) { Réponse = Texte; });
  Fenêtres_.PomperTantQue([&] { return !Réponse && Fenêtres_.OpérateurPrésent(); });
  Question_ = std::move(Dehors);
  return Réponse;
}

void CommandesConsole::AjouterRéponse(const char* Nom, const char* Aide, RéponseBoîte Réponse) {
  Ajouter({Nom, "", Aide, QuandPermise::EntreDeux, [this, Réponse](const std::string&) {
             const bool Ouverte = Fenêtres_.BoîteOuverte();
             if (Fenêtres_.Répondre(Réponse)) return;
             Indiquer(Ouverte ? "la boîte n'a pas ce bouton." : "aucune boîte n'attend de réponse.");
           }});
}

void CommandesConsole::AjouterSuivi() {
  AjouterGeste("interroger", "interroge le RG80 maintenant", QuandPermise::HorsDialogue,
               &IGestesSuivi::BtnInterroger_Click);
  AjouterGeste("quotas", "renvoie au RG80 les quotas du dernier chargement", QuandPermise::HorsDialogue,
               &IGestesSuivi::BtnForcerCumulsRG80_Click);
  AjouterGeste("masquer", "masque la fenêtre des chargements", QuandPermise::HorsBoîte,
               &IGestesSuivi::BtnMasquer_Click);
  Ajouter({"liste", "", "les chargements du jour", QuandPermise::EntreDeux, [this](const std::string&) { Lister(); }});
  AjouterListe("messages", "la liste des messages", Onglet::Suivis, "aucun");
  AjouterListe("erreurs", "la liste des erreurs", Onglet::Erreurs, "aucune");
  Ajouter({"imprimer", "FICHIER", "écrit la liste des erreurs, en pages, dans un fichier", QuandPermise::HorsBoîte,
           [this](const std::string& Fichier) { Imprimer(Fichier); }});
}

void CommandesConsole::AjouterGeste(const char* Nom, const char* Aide, QuandPermise Quand,
                                    void (IGestesSuivi::*Geste)()) {
  Ajouter({Nom, "", Aide, Quand, [this, Geste](const std::string&) { (Suivi(Fenêtres_).Gestes().*Geste)(); }});
}

void CommandesConsole::AjouterTransfert() {
  AjouterCase("cocher", "coche une case de la fenêtre de transfert", true);
  AjouterCase("decocher", "décoche une case de la fenêtre de transfert", false);
  Ajouter({"transferer", "", "transfère les données cochées", QuandPermise::EnTransfert,
           [this](const std::string&) { Fenêtres_.VueChargnt()->Gestes().BtnTransférer_Click(); }});
  Ajouter({"arreter", "", "arrête l'envoi en cours", QuandPermise::Toujours,
           [this](const std::string&) { Fenêtres_.ArrêterEnvoi(); }});
  Ajouter({"fermer", "", "ferme la fenêtre de transfert", QuandPermise::EnTransfert,
           [this](const std::string&) { Fenêtres_.VueChargnt()->Gestes().BtnFermer_Click(); }});
}

void CommandesConsole::AjouterCase(const char* Nom, const char* Aide, bool Cochée) {
  Ajouter({Nom, "NOM", Aide, QuandPermise::EnTransfert, [this, Cochée](const std::string& Case) {
             if (!Fenêtres_.VueChargnt()->CocherParNom(Case, Cochée))
               Indiquer("il n'y a pas de case « " + Case + " ».");
           }});
}

void CommandesConsole::AjouterListe(const char* Nom, const char* Aide, Onglet Liste, const char* Aucune) {
  Ajouter({Nom, "", Aide, QuandPermise::EntreDeux,
           [this, Nom, Liste, Aucune](const std::string&) { Montrer(Nom, Lignes(Liste), 0, Aucune); }});
}

void CommandesConsole::Lister() {
  if (auto* const Périmée = Fenêtres_.VueSuivi()) {
    Périmée->OublierGrille();
    Périmée->Gestes().Form_Activate();  // reads the loads again
    // In the midst of an exchange the window leaves that to the loop.
    if (!Périmée->GrilleLue()) Fenêtres_.PomperCeQuiEstDû();
  }
  const auto* const Vue = Fenêtres_.VueSuivi();
  Montrer("liste", Vue == nullptr ? std::vector<std::string>() : Vue->Tableau(), 1, "aucun");
}

/// A window that isn't there yet has nothing in its lists.
std::vector<std::string> CommandesConsole::Lignes(Onglet Liste) const {
  const auto* const Vue = Fenêtres_.VueSuivi();
  return Vue == nullptr ? std::vector<std::string>() : Vue->Lignes(Liste);
}

void CommandesConsole::Montrer(const char* Nom, const std::vector<std::string>& Lignes, std::size_t Entêtes,
                               const char* Aucune) {
  const bool Vide = Lignes.size() <= Entêtes;
  Fenêtres_.Ligne(std::string(Nom) + " : " + (Vide ? Aucune : std::to_string(Lignes.size() - Entêtes)));
  if (Vide) return;
  for (const std::string& Ligne : Lignes) Fenêtres_.Ligne("  " + Ligne);
}

void CommandesConsole::Imprimer(const std::string& Fichier) {
  if (Lignes(Onglet::Erreurs).empty()) return Indiquer("la liste des erreurs est vide, rien n'est imprimé.");
  if (Fenêtres_.ImpressionEnAttente()) return Indiquer("une impression attend déjà la fin du dialogue en cours.");
  Fenêtres_.FixerFichierImpression(Fichier);
  Suivi(Fenêtres_).Gestes().BtnImprimer_Click();
}

void CommandesConsole::Aider() {
  std::size_t Largeur = 0;
  for (const CommandeConsole& Commande : Commandes_) Largeur = std::max(Largeur, NombreCaractères(Usage(Commande)));
  Fenêtres_.Ligne("aide : les commandes passent l'une après l'autre.");
  for (const CommandeConsole& Commande : Commandes_) {
    const std::string Début = Usage(Commande);
    Fenêtres_.Ligne("  " + Début + std::string(Largeur - NombreCaractères(Début) + 2, ' ') + Commande.Aide);
  }
}

}  // namespace Ombrey
