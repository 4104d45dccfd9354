// The station's command line, and what the settings file adds to it.
#include "host/options.h"

#include <algorithm>
#include <cstdlib>
#include <set>
#include <string_view>
#include <system_error>

#include "base/failures.h"
#include "base/files.h"
#include "base/text_helpers.h"
#include "platform/system/settings_files.h"

namespace Tarvel {
namespace {

namespace fs = std::filesystem;

constexpr std::chrono::seconds DuréeMax = std::chrono::hours(24 * 365);
constexpr const char* SectionTarvel = "Tarvel";

std::chrono::seconds LireDurée(const std::string& Texte, const std::string& Quoi = "--duree") {
  const int Secondes = Ombrey::NombreLu<int>(Texte).value_or(-1);
  if (Secondes < 0 || std::chrono::seconds(Secondes) > DuréeMax) {
    throw ErreurOptions(Quoi + " veut un nombre entier de secondes, d'un an au plus, et non « " + Texte + " »");
  }
  return std::chrono::seconds(Secondes);
}

int LireJourDonné(const std::string& Texte) {
  if (const auto Jour = LireJour(Texte)) return *Jour;
  throw ErreurOptions("« " + Texte + " » n'est pas un jour : il s'écrit jj/mm/aaaa ou aaaa-mm-jj");
}

constexpr Tâche operator|(Tâche Une, Tâche Autre) {
  return static_cast<Tâche>(static_cast<unsigned>(Une) | static_cast<unsigned>(Autre));
}
constexpr bool Contient(Tâche Ensemble, Tâche Une) {
  return (static_cast<unsigned>(Ensemble) & static_cast<unsigned>(Une)) != 0;
}

constexpr Tâche UneStation = Tâche::Station | Tâche::Diagnostic;
constexpr Tâche DUnTicket = Tâche::Ticket | Tâche::ImprimerTicket;
constexpr Tâche DesJours = Tâche::Exporter | Tâche::Bordereau | Tâche::ImprimerBordereau | DUnTicket;
constexpr Tâche SurUneBase = UneStation | Tâche::Sauvegarder | Tâche::Restaurer | Tâche::RefaireCumuls | DesJours;

/// A task, how it is called, and what it can't do without.
struct TâcheConnue {
  Tâche Laquelle;
  const char* Usage;
  bool VeutRéglages;
  bool VeutBase;
};

constexpr TâcheConnue Tâches[] = {
    {Tâche::Station,
     "[--base B] --ini F [--site CODE] [--dossier D] [--greffon F] [--console] [--duree S] [--sans-operateur] "
     "[--regarder] [--trace F]",
     true, true},
    {Tâche::CréerBase, "--creer-base B [--exemple]", false, true},
    {Tâche::Sauvegarder, "--base B --sauvegarder F", false, true},
    {Tâche::Restaurer, "--base B --restaurer F", false, true},
    {Tâche::CopierBase, "--copier-base DE VERS", false, true},
    {Tâche::Exporter, "--base B --exporter-csv F [--du D] [--au D]", false, true},
    {Tâche::RefaireCumuls, "--base B --refaire-cumuls", false, true},
    {Tâche::Bordereau, "--base B --bordereau F [--du D]", false, true},
    {Tâche::Ticket, "--base B --ticket N F [--du D] [--heure H] [--site CODE]", false, true},
    {Tâche::ImprimerBordereau, "--base B --imprimer-bordereau [--du D]", false, true},
    {Tâche::ImprimerTicket, "--base B --imprimer-ticket N [--du D] [--heure H] [--site CODE]", false, true},
    {Tâche::Diagnostic, "--diagnostic --ini F [--base B] [--dossier D]", true, false},
    {Tâche::Aide, "--help", false, false},
    {Tâche::Version, "--version", false, false},
};

/// The values that stood behind an option, as many as its row names.
using Mots = std::span<const std::string>;

struct Option {
  const char* Nom;
  const char* Valeurs;  ///< how the help calls them, a blank between two; empty: the option takes none
  const char* Aide;
  Tâche Pour;    ///< the tasks that it goes with
  bool Demande;  ///< true when the option asks for its task, the only one then
  void (*Poser)(Options&, Mots);
};

constexpr bool Demande = true;
constexpr bool Précise = false;

constexpr Option Connues[] = {
    {"--base", "B", "base de la coopérative : un fichier, ou une adresse postgresql://…", SurUneBase, Précise,
     [](Options& O, Mots V) { O.Base = V[0]; }},
    {"--ini", "F", "fichier des réglages ; sa section [Tarvel] peut donner Base, CodeSite, Dossier, Trace, DuréeBoîtes",
     SurUneBase, Précise, [](Options& O, Mots V) { O.Ini = fs::absolute(Ombrey::Chemin(V[0])); }},
    {"--site", "CODE",
     "code du site de cette station (sinon celui de la base), ou du chargement dont on veut le ticket",
     UneStation | DUnTicket, Précise, [](Options& O, Mots V) { O.CodeSite = V[0]; }},
    {"--dossier", "D", "dossier de travail (sinon celui de la base)", UneStation, Précise,
     [](Options& O, Mots V) { O.Dossier = Ombrey::Chemin(V[0]); }},
    {"--greffon", "F", "bibliothèque du greffon (sinon PlgInOmbrey.so, à côté du programme)", UneStation, Précise,
     [](Options& O, Mots V) { O.Greffon = Ombrey::Chemin(V[0]); }},
    {"--console", "", "travaille sans écran : une ligne par événement, commandes sur l'entrée standard", Tâche::Station,
     Précise, [](Options& O, Mots) { O.Console = true; }},
    {"--duree", "S", "s'arrête de soi-même après S secondes", Tâche::Station, Précise,
     [](Options& O, Mots V) { O.Durée = LireDurée(V[0]); }},
    {"--sans-operateur", "", "les boîtes répondent d'elles-mêmes (OK, Annuler)", Tâche::Station, Précise,
     [](Options& O, Mots) { O.SansOpérateur = true; }},
    {"--regarder", "", "montre les chargements du jour sans prendre la ligne, à côté de la station qui l'a",
     Tâche::Station, Précise, [](Options& O, Mots) { O.Regarder = true; }},
    {"--trace", "F", "écrit ce qui passe sur la ligne dans F, fichier ou dossier : un par jour, trente jours gardés",
     Tâche::Station, Précise, [](Options& O, Mots V) { O.Trace = fs::absolute(Ombrey::Chemin(V[0])); }},
    {"--creer-base", "B", "crée une base neuve et s'arrête", Tâche::CréerBase, Demande,
     [](Options& O, Mots V) { O.Base = V[0]; }},
    {"--exemple", "", "met une petite coopérative dans la base neuve", Tâche::CréerBase, Précise,
     [](Options& O, Mots) { O.Exemple = true; }},
    {"--sauvegarder", "F", "copie la base entière dans un fichier neuf, pendant que des stations y travaillent",
     Tâche::Sauvegarder, Demande, [](Options& O, Mots V) { O.Copie = fs::absolute(Ombrey::Chemin(V[0])); }},
    {"--restaurer", "F", "met une copie à la place de la base, qui est gardée sous un autre nom", Tâche::Restaurer,
     Demande, [](Options& O, Mots V) { O.Copie = fs::absolute(Ombrey::Chemin(V[0])); }},
    {"--exporter-csv", "F", "écrit les chargements en CSV, pour un tableur", Tâche::Exporter, Demande,
     [](Options& O, Mots V) { O.Copie = fs::absolute(Ombrey::Chemin(V[0])); }},
    {"--bordereau", "F", "écrit le bordereau d'une journée en PDF", Tâche::Bordereau, Demande,
     [](Options& O, Mots V) { O.Copie = fs::absolute(Ombrey::Chemin(V[0])); }},
    {"--ticket", "N F", "écrit le ticket du chargement n° N d'une journée en PDF", Tâche::Ticket, Demande,
     [](Options& O, Mots V) {
       O.Numéro = V[0];
       O.Copie = fs::absolute(Ombrey::Chemin(V[1]));
     }},
    {"--imprimer-bordereau", "", "imprime le bordereau d'une journée sur l'imprimante habituelle",
     Tâche::ImprimerBordereau, Demande, [](Options&, Mots) {}},
    {"--imprimer-ticket", "N", "imprime le ticket du chargement n° N d'une journée", Tâche::ImprimerTicket, Demande,
     [](Options& O, Mots V) { O.Numéro = V[0]; }},
    {"--heure", "HH:MM",
     "heure d'arrivée, si plusieurs de ce jour ont ce numéro : tous ceux de cette minute (sinon le dernier)", DUnTicket,
     Précise, [](Options& O, Mots V) { O.Heure = V[0]; }},
    {"--du", "D", "premier jour de l'export, jour du document (sinon aujourd'hui) : jj/mm/aaaa ou aaaa-mm-jj", DesJours,
     Précise, [](Options& O, Mots V) { O.Jours.Du = LireJourDonné(V[0]); }},
    {"--au", "D", "dernier jour de l'export", Tâche::Exporter, Précise,
     [](Options& O, Mots V) { O.Jours.Au = LireJourDonné(V[0]); }},
    {"--diagnostic", "", "regarde tout ce qu'il faut à la station : bon, à voir ou mauvais, et ce qu'il faut faire",
     Tâche::Diagnostic, Demande, [](Options&, Mots) {}},
    {"--refaire-cumuls", "", "refait les cumuls de la saison d'après les chargements, si le diagnostic les dit faux",
     Tâche::RefaireCumuls, Demande, [](Options&, Mots) {}},
    {"--copier-base", "DE VERS",
     "copie une coopérative d'un fichier vers un serveur, ou l'inverse, et vérifie la copie", Tâche::CopierBase,
     Demande,
     [](Options& O, Mots V) {
       O.Base = V[0];
       O.Vers = V[1];
     }},
    {"--help", "", "cette aide", Tâche::Aide, Demande, [](Options&, Mots) {}},
    {"--version", "", "le numéro de version", Tâche::Version, Demande, [](Options&, Mots) {}},
};

const Option& Trouver(const std::string& Nom) {
  const auto* Trouvée = std::ranges::find(Connues, Nom, [](const Option& O) { return std::string_view(O.Nom); });
  if (Trouvée == std::end(Connues)) throw ErreurOptions("argument inconnu : « " + Nom + " »");
  return *Trouvée;
}

/// The option that asks for a task of the set.
const Option& CelleQuiDemande(Tâche Ensemble) {
  return *std::ranges::find_if(Connues, [=](const Option& O) { return O.Demande && Contient(Ensemble, O.Pour); });
}

std::size_t NombreValeurs(const Option& Une) {
  const std::string_view Noms = Une.Valeurs;
  return Noms.empty() ? 0 : 1 + static_cast<std::size_t>(std::ranges::count(Noms, ' '));
}

/// The option at the head of the arguments, with its values taken from them.
void LireUne(std::span<const std::string>& Arguments, Options& Lues, std::set<std::string>& Données) {
  const Option& Trouvée = Trouver(Arguments[0]);
  if (!Données.insert(Trouvée.Nom).second) throw ErreurOptions(std::string(Trouvée.Nom) + " est donné deux fois");
  const std::size_t Nombre = NombreValeurs(Trouvée);
  const Mots Siennes = Arguments.subspan(1, std::min(Nombre, Arguments.size() - 1));
  if (Siennes.size() < Nombre || std::ranges::any_of(Siennes, &std::string::empty)) {
    const std::string Combien = Nombre == 1 ? " veut une valeur : " : " veut des valeurs : ";
    throw ErreurOptions(Trouvée.Nom + Combien + Trouvée.Valeurs);
  }
  if (Trouvée.Demande && Lues.QueFaire == Tâche::Station) Lues.QueFaire = Trouvée.Pour;
  Trouvée.Poser(Lues, Siennes);
  Arguments = Arguments.subspan(1 + Nombre);
}

void VérifierAccord(const Options& Lues, const std::set<std::string>& Données) {
  for (const std::string& Nom : Données) {
    const Option& Une = Trouver(Nom);
    if (Contient(Une.Pour, Lues.QueFaire)) continue;
    if (Lues.QueFaire == Tâche::Station) throw ErreurOptions(std::string("il manque ") + CelleQuiDemande(Une.Pour).Nom);
    throw ErreurOptions(Nom + " ne va pas avec " + CelleQuiDemande(Lues.QueFaire).Nom);
  }
}

void Compléter(Options& Lues) {
  const auto Lire = [&](const char* Clé) { return Ombrey::LireRéglage(Lues.Ini, SectionTarvel, Clé).value_or(""); };
  const fs::path DossierIni = Lues.Ini.parent_path();
  const std::string Base = Lire("Base");
  const std::string Dossier = Lire("Dossier");
  if (Lues.Base.empty() && !Base.empty())
    Lues.Base = FichierDeBase(Base) ? Ombrey::TexteChemin(DossierIni / Ombrey::Chemin(Base)) : Base;
  if (Lues.CodeSite.empty() && Contient(UneStation, Lues.QueFaire)) Lues.CodeSite = Lire("CodeSite");
  if (const std::string Secondes = Lire("DuréeBoîtes"); !Secondes.empty())
    Lues.DuréeBoîtes = LireDurée(Secondes, "la clé DuréeBoîtes");
  if (const std::string Trace = Lire("Trace"); Lues.Trace.empty() && !Trace.empty())
    Lues.Trace = fs::absolute(DossierIni / Ombrey::Chemin(Trace));
  if (Lues.Dossier.empty() && !Dossier.empty()) Lues.Dossier = DossierIni / Ombrey::Chemin(Dossier);
}

/// Where a station works whose database is no file: the user's data, by the system's habit.
fs::path DossierUtilisateur() {
  const char* Données = std::getenv("XDG_DATA_HOME");
  if (Données && fs::path(Données).is_absolute()) return fs::path(Données) / "ombrey";
  const char* Maison = std::getenv("HOME");
  return fs::path(Maison ? Maison : "/tmp") / ".local/share/ombrey";
}

void PréciserChemins(Options& Lues) {
  for (const std::string* Base : {&Lues.Base, &Lues.Vers})
    if (const std::string Faute = FauteDAdresse(*Base); !Faute.empty()) throw ErreurOptions(Faute);
  if (std::ranges::any_of(Lues.CodeSite, [](unsigned char C) { return C < ' ' || C == ';' || C == 127; }))
    throw ErreurOptions("le code du site ne peut avoir ni point-virgule, ni caractère de commande");
  if (const auto Fichier = FichierDeBase(Lues.Vers)) Lues.Vers = Ombrey::TexteChemin(fs::absolute(*Fichier));
  if (const auto Fichier = FichierDeBase(Lues.Base)) {
    // By whatever link it is called, it is one base, with one lock for each site.
    fs::path Vrai = fs::absolute(*Fichier);
    std::error_code Fermé;  // to this account: the opening tells it
    if (const fs::path Canonique = fs::weakly_canonical(Vrai, Fermé); !Fermé) Vrai = Canonique;
    Lues.Base = Ombrey::TexteChemin(Vrai);
    if (Lues.Dossier.empty()) Lues.Dossier = Vrai.parent_path();
  } else if (!Lues.Base.empty()) {
    if (Contient(Tâche::Sauvegarder | Tâche::Restaurer, Lues.QueFaire))
      throw ErreurOptions("la base d'un serveur se sauvegarde par pg_dump, et se remet par pg_restore");
    if (Lues.Dossier.empty()) Lues.Dossier = DossierUtilisateur();
  }
  if (!Lues.Dossier.empty()) Lues.Dossier = fs::absolute(Lues.Dossier);
}

}  // namespace

Options LireOptions(std::span<const std::string> Arguments) {
  Options Lues;
  std::set<std::string> Données;
  while (!Arguments.empty()) {
    LireUne(Arguments, Lues, Données);
    if (Lues.QueFaire == Tâche::Aide || Lues.QueFaire == Tâche::Version) return Lues;
  }
  VérifierAccord(Lues, Données);
  const TâcheConnue& Sienne = *std::ranges::find(Tâches, Lues.QueFaire, &TâcheConnue::Laquelle);
  if (Sienne.VeutRéglages && Lues.Ini.empty()) throw ErreurOptions("il manque --ini");
  try {
    if (!Lues.Ini.empty()) Compléter(Lues);
  } catch (const Ombrey::ErreurExécution&) {
    if (Lues.QueFaire != Tâche::Diagnostic) throw;  // which says so itself
  }
  if (Sienne.VeutBase && Lues.Base.empty())
    throw ErreurOptions("il manque --base, ou la clé Base dans la section [Tarvel] de " +
                        Ombrey::TexteChemin(Lues.Ini));
  if (Lues.Jours.Du && Lues.Jours.Au && *Lues.Jours.Au < *Lues.Jours.Du)
    throw ErreurOptions("le jour de --au est avant celui de --du");
  PréciserChemins(Lues);
  return Lues;
}

std::string TexteAide() {
  std::string Texte = "tarvel : station de réception de la coopérative\n";
  for (const TâcheConnue& Une : Tâches) Texte += std::string("  tarvel ") + Une.Usage + "\n";
  Texte += "\n";
  constexpr std::size_t Marge = 24;
  for (const Option& Une : Connues) {
    std::string Début = std::string("  ") + Une.Nom + " " + Une.Valeurs;
    Début.resize(std::max(Marge, Début.size() + 1), ' ');
    Texte += Début + Une.Aide + "\n";
  }
  return Texte + "\nEn console, la commande « aide » donne les autres.\n";
}

std::string TexteVersion() { return "tarvel " OMBREY_VERSION; }

}  // namespace Tarvel
