// The day on paper.
#include "host/day_slip.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <map>
#include <span>
#include <utility>

#include "base/failures.h"
#include "base/visible_text.h"
#include "host/base_values.h"

namespace Tarvel {
namespace {

std::string Protégé(const std::string& Texte) {
  std::string Sûr;
  for (const char Un : Ombrey::TexteVisible(Texte)) {
    if (Un == '&')
      Sûr += "&amp;";
    else if (Un == '<')
      Sûr += "&lt;";
    else
      Sûr += Un;
  }
  return Sûr;
}

/// "05 Côteaux rouges"; a code without a name stands alone.
std::string Dire(const Nommé& Un) { return Un.Code.empty() && Un.Nom.empty() ? "–" : Un.Code + " " + Un.Nom; }

std::string DireExploitation(const ChargementRelaté& Un) {
  std::string Dite = Un.Exploitation + " " + Un.Propriétaire.Nom;
  if (Un.Récoltant.Code != Un.Propriétaire.Code) Dite += " / " + Un.Récoltant.Nom;
  return Dite;
}

std::string Kg(double Kilos) {
  std::string Texte = std::to_string(std::llround(Kilos));
  for (std::size_t Place = Texte.size(); Place > 3 && Texte[Place - 4] != '-';) Texte.insert(Place -= 3, " ");
  return Texte;
}

/// A column: its heading, and "right" for figures.
struct Colonne {
  const char* Titre;
  const char* Côté;
};

std::string Rangée(std::span<const Colonne> Colonnes, const std::vector<std::string>& Textes, const char* Balise) {
  std::string Html = "<tr>";
  for (std::size_t Rang = 0; Rang < Colonnes.size(); ++Rang)
    Html += std::string("<") + Balise + " align=\"" + Colonnes[Rang].Côté + "\">" + Protégé(Textes[Rang]) + "</" +
            Balise + ">";
  return Html + "</tr>\n";
}

/// Its headings stand on each page again.
std::string Tableau(std::span<const Colonne> Colonnes, const std::vector<std::vector<std::string>>& Rangées) {
  std::vector<std::string> Titres;
  for (const Colonne& Une : Colonnes) Titres.emplace_back(Une.Titre);
  std::string Html = "<table width=\"100%\" cellspacing=\"0\" style=\"font-size: 8pt\"><thead>" +
                     Rangée(Colonnes, Titres, "th") + "</thead>\n";
  for (const auto& Une : Rangées) Html += Rangée(Colonnes, Une, "td");
  return Html + "</table>\n";
}

struct Somme {
  std::size_t Nombre = 0;
  double Kilos = 0;
  void Ajouter(const ChargementRelaté& Un) {
    ++Nombre;
    Kilos += Un.Kilos();
  }
};

/// Codes stand at the head: 2 comes before 10.
struct ParCode {
  bool operator()(const std::string& Un, const std::string& Autre) const {
    return std::pair(std::atol(Un.c_str()), Un) < std::pair(std::atol(Autre.c_str()), Autre);
  }
};

template <class Clé>
std::string Sommes(const std::vector<ChargementRelaté>& Chargements, const char* Titre, Clé DeQui) {
  std::map<std::string, Somme, ParCode> Toutes;
  for (const ChargementRelaté& Un : Chargements) Toutes[DeQui(Un)].Ajouter(Un);
  std::vector<std::vector<std::string>> Rangées;
  for (const auto& [Nom, Une] : Toutes) Rangées.push_back({Nom, std::to_string(Une.Nombre), Kg(Une.Kilos)});
  const Colonne Colonnes[] = {{Titre, "left"}, {"Chargements", "right"}, {"kg", "right"}};
  return "<br>" + Tableau(Colonnes, Rangées);
}

/// Document: what a reader of files calls it.
std::string Tête(const std::string& Coopérative, const std::string& Document, const std::string& Titre) {
  const std::string Nom = Coopérative.empty() ? "" : "<p><b>" + Protégé(Coopérative) + "</b></p>";
  return "<html><head><title>" + Protégé(Document) + "</title></head><body>" + Nom + "<h2>" + Protégé(Titre) +
         "</h2>\n";
}

}  // namespace

std::string NomCoopérative(Ombrey::IDatabase& Base) {
  const auto Nom =
      Base.OpenRecordset("SELECT Valeur FROM Paramètre WHERE Nom = 'Coopérative'", Ombrey::TypeRecordset::VersLAvant);
  return Nom->Eof() ? "" : TexteDe(Nom->Fields(0));
}

std::string TexteBordereau(const std::vector<ChargementRelaté>& Chargements, const std::string& Coopérative, int Jour) {
  constexpr Colonne Colonnes[] = {{"N°", "left"},           {"Site", "left"},   {"Heure", "left"},
                                  {"Exploitation", "left"}, {"Groupe", "left"}, {"Appellation", "left"},
                                  {"Classe", "left"},       {"% vol", "right"}, {"kg", "right"}};
  std::vector<std::vector<std::string>> Rangées;
  Somme Total;
  bool Repris = false;
  for (const ChargementRelaté& Un : Chargements) {
    Total.Ajouter(Un);
    Repris = Repris || Un.EstArchivé;
    Rangées.push_back({Un.Numéro + (Un.EstArchivé ? "*" : ""), Un.Site, TexteMoment(Un.Arrivée).substr(11),
                       DireExploitation(Un), Dire(Un.Groupe), Dire(Un.Appellation), Dire(Un.Classe), Un.Degré,
                       Un.Masse});
  }
  return Tête(Coopérative, "Bordereau du " + TexteJour(Jour), "Bordereau de la journée du " + TexteJour(Jour)) +
         Tableau(Colonnes, Rangées) + "<p><b>" + DireChargements(Total.Nombre) + ", " + Kg(Total.Kilos) +
         " kg</b></p>" + (Repris ? "<p>* Un autre chargement a repris ce numéro.</p>" : "") +
         Sommes(Chargements, "Appellation", [](const ChargementRelaté& Un) { return Dire(Un.Appellation); }) +
         Sommes(Chargements, "Exploitation", DireExploitation) +
         Sommes(Chargements, "Groupe", [](const ChargementRelaté& Un) { return Dire(Un.Groupe); }) + "</body></html>";
}

std::string TexteTicket(const ChargementRelaté& Un, const std::string& Coopérative) {
  const std::pair<const char*, std::string> Lignes[] = {
      {"Site", Un.Site},
      {"Arrivée", TexteMoment(Un.Arrivée)},
      {"Sortie", Un.Sortie ? TexteMoment(*Un.Sortie) : ""},
      {"Exploitation", Un.Exploitation},
      {"Propriétaire", Dire(Un.Propriétaire)},
      {"Récoltant", Dire(Un.Récoltant)},
      {"Groupe", Dire(Un.Groupe)},
      {"Appellation", Dire(Un.Appellation)},
      {"Cépage", Un.Cépage},
      {"Classe", Dire(Un.Classe)},
      {"Degré", Un.Degré.empty() ? "" : Un.Degré + " % vol"},
      {"Quai", Un.Quai},
      {"Cuve", Un.Cuve},
  };
  std::string Html =
      Tête(Coopérative, "Ticket n° " + Un.Numéro, "Chargement n° " + Un.Numéro) + "<table cellspacing=\"0\">";
  for (const auto& [Quoi, Texte] : Lignes)
    if (!Texte.empty()) Html += std::string("<tr><td>") + Quoi + "</td><td><b>" + Protégé(Texte) + "</b></td></tr>\n";
  return Html + "</table><h2>" + Protégé(Un.Masse) + " kg</h2></body></html>";
}

std::string TextePapier(Ombrey::IDatabase& Base, int Jour, const ChargementVoulu& Lequel) {
  const auto Chargements = LireChargements(Base, {Jour, Jour});
  if (Lequel.Numéro.empty()) return TexteBordereau(Chargements, NomCoopérative(Base), Jour);
  const auto EstVoulu = [&](const ChargementRelaté& Un) {
    return Un.Numéro == Lequel.Numéro && (Lequel.Site.empty() || Un.Site == Lequel.Site) &&
           (Lequel.Heure.empty() || TexteMoment(Un.Arrivée).substr(11) == Lequel.Heure);
  };
  const std::string Coopérative = NomCoopérative(Base);
  std::string Tickets;
  for (const ChargementRelaté& Un : Chargements) {
    if (!EstVoulu(Un)) continue;
    // Two of one minute only the operator can tell apart.
    if (Lequel.Heure.empty()) Tickets.clear();
    if (!Tickets.empty()) Tickets += "<p style=\"page-break-before: always\"></p>";
    Tickets += TexteTicket(Un, Coopérative);
  }
  if (Tickets.empty())
    throw Ombrey::ErreurExécution("Aucun chargement n° " + Lequel.Numéro +
                                  (Lequel.Site.empty() ? "" : " du site " + Lequel.Site) +
                                  (Lequel.Heure.empty() ? "" : " de " + Lequel.Heure) + " le " + TexteJour(Jour) + ".");
  return Tickets;
}

}  // namespace Tarvel
