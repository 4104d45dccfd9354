// Reading the command line: one table of options for the reader and for --help.
#include "terminal/options.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <set>
#include <system_error>

#include "terminal/loads.h"

namespace Rg80 {

namespace {

constexpr unsigned BaudsMin = 50;
constexpr unsigned BaudsMax = 4000000;
constexpr unsigned AuHasardMax = 1000000;

unsigned NombreVoulu(std::string_view Nom, const std::string& Valeur, unsigned Min, unsigned Max) {
  unsigned Nombre = 0;
  const char* const Fin = Valeur.data() + Valeur.size();
  const auto [Arrêt, Erreur] = std::from_chars(Valeur.data(), Fin, Nombre);
  if (Valeur.empty() || Erreur != std::errc() || Arrêt != Fin || Nombre < Min || Nombre > Max) {
    throw ErreurDemande(std::string(Nom) + " : « " + Valeur + " » n'est pas un nombre entier de " +
                        std::to_string(Min) + " à " + std::to_string(Max) + ".");
  }
  return Nombre;
}

struct Option {
  std::string_view Nom;
  std::string_view Valeur;  // empty: a switch
  std::string_view Sens;
  void (*Poser)(Options& Cible, std::string_view Nom, const std::string& Valeur);
};

constexpr std::array<Option, 15> TableOptions{{
    {"--lien", "CHEMIN", "crée un pseudo-terminal et un lien vers lui",
     [](Options& Cible, std::string_view, const std::string& Valeur) { Cible.Lien = Valeur; }},
    {"--port", "DEV", "ouvre un port série (8 bits, sans parité, 1 bit de stop)",
     [](Options& Cible, std::string_view, const std::string& Valeur) { Cible.Port = Valeur; }},
    {"--chargements", "F", "chargements à offrir : un enregistrement de 55 octets par ligne",
     [](Options& Cible, std::string_view, const std::string& Valeur) { Cible.Chargements = Valeur; }},
    {"--hasard", "N", "ajoute N chargements tirés au hasard",
     [](Options& Cible, std::string_view Nom, const std::string& Valeur) {
       Cible.AuHasard = NombreVoulu(Nom, Valeur, 0, AuHasardMax);
     }},
    {"--cadence", "BAUDS", "passe chaque octet au rythme de la ligne ; vitesse du port (9600)",
     [](Options& Cible, std::string_view Nom, const std::string& Valeur) {
       Cible.Bauds = NombreVoulu(Nom, Valeur, BaudsMin, BaudsMax);
     }},
    {"--panne", "P=TAUX,…", "pannes et leurs taux de 0 à 1, par exemple silence=0.1,nak=0.05",
     [](Options& Cible, std::string_view, const std::string& Valeur) { Cible.Taux = LireTaux(Valeur); }},
    {"--graine", "N", "graine du hasard (1)",
     [](Options& Cible, std::string_view Nom, const std::string& Valeur) {
       Cible.Graine = NombreVoulu(Nom, Valeur, 0, UINT32_MAX);
     }},
    {"--f6", "", "attend des fichiers (touche F6)",
     [](Options& Cible, std::string_view, const std::string&) { Cible.EnFichiers = true; }},
    {"--sortie", "D", "dossier des réponses et des fichiers reçus",
     [](Options& Cible, std::string_view, const std::string& Valeur) { Cible.Sortie = Valeur; }},
    {"--journal", "F", "écrit tout ce qui passe sur la ligne",
     [](Options& Cible, std::string_view, const std::string& Valeur) { Cible.Journal = Valeur; }},
    {"--rejouer", "F", "redit ce que le terminal a dit dans une trace, et compare ce que dit la station",
     [](Options& Cible, std::string_view, const std::string& Valeur) { Cible.Rejouer = Valeur; }},
    {"--autre-base", "", "avec --rejouer : la base n'est plus celle d'alors, ses chiffres et ses refus ne comptent pas",
     [](Options& Cible, std::string_view, const std::string&) { Cible.AutreBase = true; }},
    {"--jusqu-a-vide", "", "s'arrête quand tout est acquitté et la dernière réponse reçue",
     [](Options& Cible, std::string_view, const std::string&) { Cible.JusquÀVide = true; }},
    {"--help", "", "affiche cette aide",
     [](Options& Cible, std::string_view, const std::string&) { Cible.Aide = true; }},
    {"--version", "", "affiche la version",
     [](Options& Cible, std::string_view, const std::string&) { Cible.Version = true; }},
}};

const Option& TrouverOption(const std::string& Argument) {
  for (const Option& Une : TableOptions) {
    if (Une.Nom == Argument) return Une;
  }
  throw ErreurDemande("Option inconnue : " + Argument + ".");
}

}  // namespace

TauxDePannes LireTaux(std::string_view Texte) {
  TauxDePannes Taux{};
  while (true) {
    const std::size_t Virgule = Texte.find(',');
    const std::string_view Élément = Texte.substr(0, Virgule);
    const std::size_t Égal = Élément.find('=');
    const auto Laquelle = PanneNommée(Élément.substr(0, Égal));
    if (!Laquelle) throw ErreurDemande("--panne : « " + std::string(Élément) + " » ne nomme aucune panne connue.");
    const std::string_view Valeur = Égal == std::string_view::npos ? "" : Élément.substr(Égal + 1);
    double Lu = 0;
    const auto [Arrêt, Erreur] = std::from_chars(Valeur.data(), Valeur.data() + Valeur.size(), Lu);
    // Written so that a value which is no number (nan) is refused as well.
    const bool DansLesBornes = Lu >= 0 && Lu <= 1;
    if (Erreur != std::errc() || Arrêt != Valeur.data() + Valeur.size() || !DansLesBornes) {
      throw ErreurDemande("--panne : le taux de « " + std::string(Élément) + " » n'est pas un nombre de 0 à 1.");
    }
    Taux[static_cast<std::size_t>(*Laquelle)] = Lu;
    if (Virgule == std::string_view::npos) return Taux;
    Texte.remove_prefix(Virgule + 1);
  }
}

Options LireOptions(const std::vector<std::string>& Arguments) {
  Options Lues;
  std::set<std::string_view> Données;
  for (std::size_t Rang = 0; Rang < Arguments.size(); ++Rang) {
    const Option& Trouvée = TrouverOption(Arguments[Rang]);
    if (!Données.insert(Trouvée.Nom).second) {
      throw ErreurDemande("L'option " + std::string(Trouvée.Nom) + " est donnée deux fois.");
    }
    std::string Valeur;
    if (!Trouvée.Valeur.empty()) {
      if (++Rang == Arguments.size() || Arguments[Rang].empty()) {
        throw ErreurDemande("L'option " + std::string(Trouvée.Nom) + " demande une valeur.");
      }
      Valeur = Arguments[Rang];
    }
    Trouvée.Poser(Lues, Trouvée.Nom, Valeur);
    if (Lues.Aide || Lues.Version) return Lues;
  }
  if (Lues.Lien.empty() == Lues.Port.empty()) throw ErreurDemande("Il faut --lien ou --port, et un seul des deux.");
  if (Lues.AutreBase && Lues.Rejouer.empty()) throw ErreurDemande("L'option --autre-base ne va qu'avec --rejouer.");
  if (!Lues.Rejouer.empty())
    for (const std::string_view Nom : {"--chargements", "--hasard", "--panne", "--f6", "--sortie"})
      if (Données.contains(Nom)) throw ErreurDemande("L'option " + std::string(Nom) + " ne va pas avec --rejouer.");
  return Lues;
}

std::string TexteAide() {
  constexpr std::size_t Colonne = 24;
  std::string Texte =
      "rg80 (--lien CHEMIN | --port DEV) [options]\n"
      "Tient la place du terminal de pesage sur une ligne série.\n\n";
  for (const Option& Une : TableOptions) {
    std::string Tête = "  " + std::string(Une.Nom) + " " + std::string(Une.Valeur);
    Tête.resize(std::max(Colonne + (Une.Valeur.find("…") == std::string_view::npos ? 0 : 2), Tête.size() + 1), ' ');
    Texte += Tête + std::string(Une.Sens) + "\n";
  }
  Texte += "\nPannes :\n";
  for (const NomDePanne& Nommée : NomsDePannes) {
    std::string Tête = "  " + std::string(Nommée.Nom);
    Tête.resize(Colonne, ' ');
    Texte += Tête + std::string(Nommée.Sens) + "\n";
  }
  return Texte +
         "\nDans le fichier des chargements, « !checksum » et une espace devant un enregistrement montrent\n"
         "cette panne à son premier envoi seulement ; de même pour les autres pannes.\n";
}

}  // namespace Rg80
