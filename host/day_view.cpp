// What the day has brought.
#include "host/day_view.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <map>
#include <sstream>
#include <tuple>
#include <utility>

#include "base/regional_forms.h"
#include "base/text_helpers.h"
#include "contracts/phrases.h"
#include "host/base_values.h"
#include "host/load_columns.h"
#include "host/load_report.h"

namespace Tarvel {
namespace {

using Ombrey::SansBlancs;
using Ombrey::ValeurChamp;

/// A table's loads with their names; the third column says when each came in. What stands behind the number of each is
/// the last but two.
std::string SqlChargements(const std::string& Table, const std::string& Moment, const std::string& Marque) {
  return "SELECT C.CodeSite, C.NoChargement, " + Moment +
         ", C.Masse, C.Degré"
         ", Sélection.Désignation, Qualité.Désignation, Propriétaire.Nom & ' ' & Propriétaire.Prénom"
         ", Récoltant.Nom & ' ' & Récoltant.Prénom, C.Sélection, C.Qualité, '" +
         Marque + "', C.DateCh, C.IdChargement FROM ((((" + Table +
         " AS C LEFT JOIN Métayage ON Métayage.IdMétayage = C.Métayage)"
         " LEFT JOIN Coopérateur AS Récoltant ON Métayage.Récoltant = Récoltant.IdCoopérateur)"
         " LEFT JOIN Coopérateur AS Propriétaire ON Métayage.Propriétaire = Propriétaire.IdCoopérateur)"
         " LEFT JOIN Qualité ON Qualité.IdQualité = C.Qualité)"
         " LEFT JOIN Sélection ON Sélection.IdSélection = C.Sélection";
}

std::string SqlDuJour(const std::string& Table, const std::string& Marque) {
  return SqlChargements(Table, "Format([DateCh],'hh:nn')", Marque) + " WHERE DateCh BETWEEN Date() AND Date()+1";
}

constexpr const char* SqlQuotas =
    "SELECT Sélection.Désignation, QuotasGrp.QuotaJournalier FROM Sélection"
    " INNER JOIN QuotasGrp ON Sélection.IdSélection = QuotasGrp.Sélection ORDER BY Sélection.Désignation";

/// A season of three sites archives 300,000 loads; nobody looks through more than this.
constexpr const char* DernièreArchive = " ORDER BY C.DateCh DESC LIMIT 1000";

/// The name, or the code of what the database has no name for.
std::string NomOuCode(const ValeurChamp& Nom, const ValeurChamp& Code) {
  const std::string Texte = TexteDe(Nom);
  return Texte.empty() ? TexteDe(Code) + " (inconnu)" : Texte;
}

void Sommer(Journée& Jour) {
  std::map<std::pair<std::string, std::string>, SommeDuJour> Sommes;
  Jour.MasseParHeure.fill(0);
  for (const ChargementDuJour& Un : Jour.Chargements) {
    SommeDuJour& Somme = Sommes[{Un.Appellation, Un.Classe}];
    ++Somme.Nombre;
    Somme.Masse += Un.Masse;
    if (Un.Degré) Somme.DegréHecto = Somme.DegréHecto.value_or(0) + Un.Masse * *Un.Degré / 100;
    const auto Heure = static_cast<std::size_t>(std::clamp(std::atoi(Un.Heure.c_str()), 0, 23));
    Jour.MasseParHeure[Heure] += Un.Masse;
  }
  Jour.Sommes.clear();
  for (auto& [Clé, Somme] : Sommes) {
    std::tie(Somme.Appellation, Somme.Classe) = Clé;
    Jour.Sommes.push_back(Somme);
  }
}

std::string Entier(double Valeur) { return std::to_string(std::llround(Valeur)); }

/// Upper and lower case alike, accented letters too.
std::string Minuscules(const std::string& Texte) {
  constexpr char Accentuée = '\xC3';  // first byte of À to ÿ in UTF-8
  std::string Repliée = Ombrey::MinusculesAscii(Texte);
  for (std::size_t Rang = 1; Rang < Repliée.size(); ++Rang) {
    const auto Seconde = static_cast<unsigned char>(Repliée[Rang]);
    if (Repliée[Rang - 1] == Accentuée && Seconde >= 0x80 && Seconde <= 0x9E && Seconde != 0x97)
      Repliée[Rang] = static_cast<char>(Seconde + 0x20);
  }
  return Repliée;
}

}  // namespace

double Journée::Masse() const {
  double Toute = 0;
  for (const SommeDuJour& Somme : Sommes) Toute += Somme.Masse;
  return Toute;
}

Journée LireJournée(Ombrey::IDatabase& Base, const std::string& Site) {
  Journée Jour;
  std::map<std::string, double> Reçus;
  // A load whose number another one has taken over was brought in all the same.
  const auto Lignes = Base.OpenRecordset(
      SqlDuJour(TableChargements, "") + " UNION ALL " + SqlDuJour(TableArchive, "*") + " ORDER BY 13 DESC, 2 DESC",
      Ombrey::TypeRecordset::VersLAvant);
  for (; !Lignes->Eof(); Lignes->MoveNext()) {
    const auto Champ = [&](std::size_t Rang) { return Lignes->Fields(Rang); };
    ChargementDuJour Un{TexteDe(Champ(0)),
                        TexteDe(Champ(1)) + TexteDe(Champ(11)),
                        TexteDe(Champ(2)),
                        NombreDe(Champ(3)).value_or(0),
                        NombreDe(Champ(4)),
                        NomOuCode(Champ(5), Champ(9)),
                        NomOuCode(Champ(6), Champ(10)),
                        std::string(SansBlancs(TexteDe(Champ(7)))),
                        std::string(SansBlancs(TexteDe(Champ(8))))};
    if (!NombreDe(Champ(3))) Un.MasseIllisible = TexteDe(Champ(3));
    Un.Entrée = Ombrey::Comme<std::int64_t>(Champ(13)).value_or(0);
    Reçus[Un.Appellation] += Un.Masse;
    if (Site.empty() || Un.Site == Site) Jour.Chargements.push_back(std::move(Un));
  }
  const auto Quotas = Base.OpenRecordset(SqlQuotas, Ombrey::TypeRecordset::VersLAvant);
  for (; !Quotas->Eof(); Quotas->MoveNext()) {
    const std::string Appellation = TexteDe(Quotas->Fields(0));
    const auto Quota = NombreDe(Quotas->Fields(1));
    if (!Quota) continue;
    if (Jour.Quotas.empty() || Jour.Quotas.back().Appellation != Appellation)
      Jour.Quotas.push_back({Appellation, 0, Reçus[Appellation]});
    Jour.Quotas.back().Quota += *Quota;
  }
  Sommer(Jour);
  return Jour;
}

Journée Filtrer(const Journée& Toute, const std::string& Mots) {
  Journée Jour = Toute;
  std::istringstream Flux(Minuscules(Mots));
  for (std::string Mot; Flux >> Mot;) {
    std::erase_if(Jour.Chargements, [&Mot](const ChargementDuJour& Un) {
      const std::string Tout = Un.Site + '\n' + Un.Numéro + '\n' + Un.Heure + '\n' + Un.Appellation + '\n' + Un.Classe +
                               '\n' + Un.Propriétaire + '\n' + Un.Récoltant;
      return Minuscules(Tout).find(Mot) == std::string::npos;
    });
  }
  Sommer(Jour);
  return Jour;
}

std::string TexteDernier(const Journée& Jour, const std::string& Site) {
  const ChargementDuJour* Un = nullptr;
  for (const ChargementDuJour& Celui : Jour.Chargements)
    if (Celui.Site == Site && (Un == nullptr || Celui.Entrée > Un->Entrée)) Un = &Celui;
  if (Un == nullptr) return "Aucun chargement aujourd'hui";
  return "Dernier : n° " + Un->Numéro + ", " + Entier(Un->Masse) + " kg, " + Un->Heure;
}

std::string TexteBase(const std::string& Nom, bool EstSurServeur, Ombrey::IDatabase* Base) {
  if (!EstSurServeur) return "Base locale : " + Nom;
  const std::string Texte = "Base sur serveur : " + Nom;
  if (Base == nullptr) return Texte;
  using std::chrono::steady_clock;
  const auto Début = steady_clock::now();
  (void)Base->OpenRecordset("SELECT 1", Ombrey::TypeRecordset::VersLAvant);
  const auto Délai = std::chrono::floor<std::chrono::milliseconds>(steady_clock::now() - Début);
  return Texte + ", " + std::to_string(Délai.count()) + " ms";
}

std::string TexteBaseMuette(const std::string& Pourquoi) { return "La base ne répond pas : " + Pourquoi; }

std::string Tonnes(double Kilos) {
  std::string Texte = std::to_string(std::round(Kilos / 100) / 10);  // six decimals
  const std::size_t Point = Texte.find('.');
  if (Point == std::string::npos) return Texte + " t";
  Texte[Point] = ',';
  return Texte.substr(0, Point + 2) + " t";
}

std::string TexteTotal(const Journée& Jour) {
  return DireChargements(Jour.Chargements.size()) + ", " + Tonnes(Jour.Masse());
}

Rangées TableauChargements(const Journée& Jour, const Ombrey::Régional& Formes) {
  Rangées Tableau{{"Chai", "N°Pesée", "Heure", "Pesée", "%Vol", "Appellation", Ombrey::Phrase::ClasseSanitaire,
                   "Propriétaire", "Récoltant"}};
  for (const ChargementDuJour& Un : Jour.Chargements)
    Tableau.push_back({Un.Site, Un.Numéro, Un.Heure, Un.MasseIllisible.empty() ? Entier(Un.Masse) : Un.MasseIllisible,
                       Un.Degré ? TexteNombre(*Un.Degré, Formes) : "", Un.Appellation, Un.Classe, Un.Propriétaire,
                       Un.Récoltant});
  return Tableau;
}

Rangées TableauSommes(const Journée& Jour, const Ombrey::Régional& Formes) {
  Rangées Tableau{{"Appellation", "Classe", "Nombre", "kg", "Degré-hecto"}};
  for (const SommeDuJour& Une : Jour.Sommes)
    Tableau.push_back({Une.Appellation, Une.Classe, std::to_string(Une.Nombre), Entier(Une.Masse),
                       Une.DegréHecto ? TexteNombre(std::round(*Une.DegréHecto * 10) / 10, Formes) : ""});
  return Tableau;
}

Rangées TableauQuotas(const Journée& Jour) {
  Rangées Tableau{{"Appellation", "Quota du jour", "Reçu", "Reste"}};
  for (const QuotaDuJour& Un : Jour.Quotas)
    Tableau.push_back({Un.Appellation, Entier(Un.Quota), Entier(Un.Reçu), Entier(Un.Quota - Un.Reçu)});
  return Tableau;
}

Rangées TableauHeures(const Journée& Jour) {
  Rangées Tableau{{"Heure", "Tonnage"}};
  for (std::size_t Heure = 0; Heure < Jour.MasseParHeure.size(); ++Heure)
    if (Jour.MasseParHeure[Heure] > 0)
      Tableau.push_back({std::to_string(Heure) + " h", Tonnes(Jour.MasseParHeure[Heure])});
  return Tableau;
}

Rangées TableauArchive(Ombrey::IDatabase& Base, const Ombrey::Régional& Formes) {
  const auto Lignes = Base.OpenRecordset(SqlChargements(TableArchive, "C.DateCh", "") + DernièreArchive,
                                         Ombrey::TypeRecordset::VersLAvant);
  Rangées Tableau{{"Chai", "N°Pesée", "Date", "Pesée", "%Vol", "Appellation", Ombrey::Phrase::ClasseSanitaire,
                   "Propriétaire", "Récoltant"}};
  for (; !Lignes->Eof(); Lignes->MoveNext()) {
    const auto Champ = [&](std::size_t Rang) { return TexteOuVide(Lignes->Fields(Rang), Formes); };
    Tableau.push_back({Champ(0), Champ(1), Ombrey::MomentLisible(Lignes->Fields(2)), Champ(3), Champ(4),
                       NomOuCode(Lignes->Fields(5), Lignes->Fields(9)),
                       NomOuCode(Lignes->Fields(6), Lignes->Fields(10)), std::string(SansBlancs(Champ(7))),
                       std::string(SansBlancs(Champ(8)))});
  }
  return Tableau;
}

}  // namespace Tarvel
