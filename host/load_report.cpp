// The loads of some days, one by one.
#include "host/load_report.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <string_view>
#include <system_error>
#include <utility>

#include "base/failures.h"
#include "base/files.h"
#include "base/regional_forms.h"
#include "base/text_helpers.h"
#include "host/base_values.h"
#include "host/load_columns.h"
#include "platform/system/safe_file.h"

namespace Tarvel {
namespace {

using Ombrey::ErreurExécution;

constexpr std::string_view MarqueUtf8 = "\xEF\xBB\xBF";

constexpr const char* SqlRelatés =
    "SELECT C.CodeSite, C.NoChargement, C.DateCh, C.DateSortie, C.Métayage, Métayage.Propriétaire"
    ", Propriétaire.Nom & ' ' & Propriétaire.Prénom, Métayage.Récoltant, Récoltant.Nom & ' ' & Récoltant.Prénom"
    ", Métayage.IdGrp, Groupement.Nom, C.Sélection, Sélection.Désignation, C.Cépage, C.Qualité, Qualité.Désignation"
    ", C.Degré, C.NoQuai, C.Masse, C.Cuve"
    " FROM (((((# AS C LEFT JOIN Métayage ON Métayage.IdMétayage = C.Métayage)"
    " LEFT JOIN Coopérateur AS Récoltant ON Métayage.Récoltant = Récoltant.IdCoopérateur)"
    " LEFT JOIN Coopérateur AS Propriétaire ON Métayage.Propriétaire = Propriétaire.IdCoopérateur)"
    " LEFT JOIN Groupement ON Groupement.IdGrp = Métayage.IdGrp)"
    " LEFT JOIN Qualité ON Qualité.IdQualité = C.Qualité)"
    " LEFT JOIN Sélection ON Sélection.IdSélection = C.Sélection";

void Ajouter(std::vector<ChargementRelaté>& Tous, Ombrey::IDatabase& Base, const Période& Jours, const char* Table) {
  std::string Sql = SqlRelatés;
  Sql.replace(Sql.find('#'), 1, Table);
  if (Jours.Du) Sql += " WHERE C.DateCh >= " + std::to_string(*Jours.Du);
  if (Jours.Au) Sql += (Jours.Du ? " AND" : " WHERE") + std::string(" C.DateCh < ") + std::to_string(*Jours.Au + 1);
  const auto Lignes = Base.OpenRecordset(Sql, Ombrey::TypeRecordset::VersLAvant);
  for (; !Lignes->Eof(); Lignes->MoveNext()) {
    std::size_t Rang = 0;
    const auto Texte = [&] { return std::string(Ombrey::SansBlancs(TexteDe(Lignes->Fields(Rang++)))); };
    const auto Nombre = [&] { return NombreDe(Lignes->Fields(Rang++)); };
    const auto Code = [&] {
      std::string Le = Texte();
      return Nommé{std::move(Le), Texte()};
    };
    ChargementRelaté Un;
    Un.Site = Texte();
    Un.Numéro = Texte();
    Un.Arrivée = Nombre().value_or(0);
    Un.Sortie = Nombre();
    Un.Exploitation = Texte();
    Un.Propriétaire = Code();
    Un.Récoltant = Code();
    Un.Groupe = Code();
    Un.Appellation = Code();
    Un.Cépage = Texte();
    Un.Classe = Code();
    for (std::string* Valeur : {&Un.Degré, &Un.Quai, &Un.Masse, &Un.Cuve}) *Valeur = Texte();
    Un.EstArchivé = std::string_view(Table) == TableArchive;
    Tous.push_back(std::move(Un));
  }
}

constexpr std::array<const char*, 21> Entêtes = {
    "Site",      "N° de chargement", "Arrivée", "Sortie",        "Exploitation", "Propriétaire", "Nom du propriétaire",
    "Récoltant", "Nom du récoltant", "Groupe",  "Nom du groupe", "Appellation",  "Désignation",  "Cépage",
    "Classe",    "Nom de la classe", "Degré",   "Quai",          "Masse (kg)",   "Cuve",         "Numéro repris"};

/// A value between two semicolons. A number stays one, its sign included.
std::string Case(const std::string& Valeur) {
  constexpr std::string_view Formules = "=+-@\t\r";
  const bool EstFormule =
      !Valeur.empty() && Formules.find(Valeur[0]) != std::string_view::npos && !EstNumérique(Valeur, FormesFrançaises);
  std::string Texte = (EstFormule ? "'" : "") + Valeur;
  if (Texte.find_first_of(";\"\r\n") == std::string::npos) return Texte;
  for (std::size_t Place = 0; (Place = Texte.find('"', Place)) != std::string::npos; Place += 2)
    Texte.insert(Place, 1, '"');
  return '"' + Texte + '"';
}

template <class Cases>
void AjouterRangée(std::string& Texte, const Cases& Valeurs) {
  const char* Devant = "";
  for (const auto& Une : Valeurs) Texte += std::exchange(Devant, ";") + Case(Une);
  Texte += "\r\n";
}

}  // namespace

double ChargementRelaté::Kilos() const { return Ombrey::NombreTapé(Masse, FormesFrançaises).value_or(0); }

std::vector<ChargementRelaté> LireChargements(Ombrey::IDatabase& Base, const Période& Jours) {
  std::vector<ChargementRelaté> Tous;
  for (const char* Table : {TableArchive, TableChargements}) Ajouter(Tous, Base, Jours, Table);
  std::ranges::stable_sort(Tous, {}, &ChargementRelaté::Arrivée);
  return Tous;
}

std::string TexteCsv(const std::vector<ChargementRelaté>& Chargements) {
  std::string Texte(MarqueUtf8);
  AjouterRangée(Texte, Entêtes);
  for (const ChargementRelaté& Un : Chargements)
    AjouterRangée(Texte, std::array<std::string, Entêtes.size()>{Un.Site,
                                                                 Un.Numéro,
                                                                 TexteMoment(Un.Arrivée),
                                                                 Un.Sortie ? TexteMoment(*Un.Sortie) : "",
                                                                 Un.Exploitation,
                                                                 Un.Propriétaire.Code,
                                                                 Un.Propriétaire.Nom,
                                                                 Un.Récoltant.Code,
                                                                 Un.Récoltant.Nom,
                                                                 Un.Groupe.Code,
                                                                 Un.Groupe.Nom,
                                                                 Un.Appellation.Code,
                                                                 Un.Appellation.Nom,
                                                                 Un.Cépage,
                                                                 Un.Classe.Code,
                                                                 Un.Classe.Nom,
                                                                 Un.Degré,
                                                                 Un.Quai,
                                                                 Un.Masse,
                                                                 Un.Cuve,
                                                                 Un.EstArchivé ? "oui" : ""});
  return Texte;
}

std::string DireChargements(std::size_t Nombre) {
  return std::to_string(Nombre) + (Nombre < 2 ? " chargement" : " chargements");
}

std::string ExporterCsv(const std::vector<ChargementRelaté>& Chargements, const std::filesystem::path& Fichier) {
  const std::string Vide = TexteCsv({});
  std::string Début(Vide.size(), '\0');
  std::ifstream Ancien(Fichier, std::ios::binary);
  Ancien.read(Début.data(), static_cast<std::streamsize>(Début.size()));
  std::error_code Erreur;
  if (std::filesystem::exists(Fichier, Erreur) && Début != Vide)
    throw ErreurExécution("Le fichier " + Ombrey::TexteChemin(Fichier) +
                          " existe déjà et n'est pas un export de chargements : il reste tel quel.");
  Ombrey::RemplacerFichier(Fichier, TexteCsv(Chargements));
  return DireChargements(Chargements.size()) + (Chargements.size() < 2 ? " exporté dans " : " exportés dans ") +
         Ombrey::TexteChemin(Fichier);
}

std::optional<int> LireJour(const std::string& Texte) {
  constexpr int SiècleQuelconque = 2000;
  std::string Français = Texte;
  if (Texte.size() == 10 && Texte[4] == '-' && Texte[7] == '-')
    Français = Texte.substr(8) + "/" + Texte.substr(5, 2) + "/" + Texte.substr(0, 4);
  const auto Lu = Ombrey::LireDate(Français, SiècleQuelconque);
  if (!Lu || Lu->Heure + Lu->Minute + Lu->Seconde > 0 || Français.size() != 10) return std::nullopt;
  return static_cast<int>(NuméroDeJour(*Lu));
}

std::string TexteMoment(double Jours) { return TexteFormaté(Ombrey::DepuisNuméroDeJour(Jours), "jj/mm/aaaa hh:nn"); }

std::string TexteJour(double Jours) { return TexteMoment(Jours).substr(0, 10); }

}  // namespace Tarvel
