// The running figures: what a holding or a group has brought in, and what it may still bring.
#include "host/figures.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "base/regional_forms.h"
#include "base/text_helpers.h"
#include "contracts/line_protocol.h"
#include "host/base_values.h"
#include "host/conditions.h"
#include "host/load_columns.h"

namespace Tarvel {
namespace {

using Ombrey::DateHeure;
using Ombrey::EstNull;
using Ombrey::NuméroDeJour;
using Ombrey::ValeurChamp;

std::int32_t EntierBorné(double Valeur) {
  constexpr double Bas = std::numeric_limits<std::int32_t>::min();
  constexpr double Haut = std::numeric_limits<std::int32_t>::max();
  if (std::isnan(Valeur)) return 0;
  return static_cast<std::int32_t>(std::clamp(std::nearbyint(Valeur), Bas, Haut));
}

/// The sums of a season stand in the base; loads are chosen by their days.
Conditions Choisir(const FiltreChargements& Filtre, bool ParSaison) {
  Conditions Choix;
  const auto SiDonné = [&](const char* Début, const std::string& Valeur, const char* Fin = "") {
    if (!Valeur.empty()) Choix.Et(Début, Valeur, Fin);
  };
  SiDonné("C.Métayage IN (SELECT IdMétayage FROM Métayage WHERE CAST(IdGrp AS INTEGER) = CAST(", Filtre.Groupe,
          " AS INTEGER))");
  SiDonné("C.Métayage = ", Filtre.Métayage);
  SiDonné("C.Sélection = ", Filtre.Sélection);
  if (ParSaison) {
    Choix.Et("C.Année = ", std::int64_t{*Filtre.Saison});
    return Choix;
  }
  SiDonné("C.Cépage = ", Filtre.Cépage);
  SiDonné("C.Qualité = ", Filtre.Qualité);
  if (Filtre.Du) Choix.Et("C.DateCh >= ", std::floor(*Filtre.Du));
  if (Filtre.Au) Choix.Et("C.DateCh < ", std::floor(*Filtre.Au) + 1);
  return Choix;
}

}  // namespace

double Figures::Masse(const FiltreChargements& Filtre) const {
  const auto Sommer = [this](const Conditions& Choix, const char* Table) {
    const auto Somme =
        Ombrey::Comme<double>(Connexion_.Lire("SELECT CAST(SUM(" + Connexion_.NombreDans("C.Masse") +
                                                  ") AS DOUBLE PRECISION) FROM " + Table + " AS C" + Choix.Sql(),
                                              Choix.Valeurs()));
    return Somme.value_or(0);
  };
  const Conditions Choix = Choisir(Filtre, false);
  if (!Filtre.Métayage.empty()) DireIllisibles(Choix);
  // The loads of a season are many; their sum stands in the base, as long as nothing else narrows the choice.
  if (Filtre.Saison && Filtre.Cépage.empty() && Filtre.Qualité.empty() && ACumuls())
    return Sommer(Choisir(Filtre, true), TableCumuls);
  return Sommer(Choix, TableChargements) + Sommer(Choix, TableArchive);
}

/// What the office has typed for a weight may be no number. A server keeps numbers only.
void Figures::DireIllisibles(const Conditions& Choix) const {
  if (!Avis_ || !Connexion_.SonFichier()) return;
  for (const char* Table : {TableChargements, TableArchive}) {
    Ombrey::Instruction Requête = Connexion_.Préparer(
        "SELECT C.NoChargement, C.CodeSite, C.Masse FROM " + std::string(Table) + " AS C" + Choix.Sql() +
        " AND C.Masse IS NOT NULL AND " + Connexion_.NombreDans("C.Masse") + " IS NULL");
    Requête.Lier(Choix.Valeurs());
    const auto Texte = [&](std::size_t Rang) { return TexteDe(Requête.Valeur(Rang)); };
    while (Requête.Avancer())
      Avis_("Masse du chargement n° " + Texte(0) + " du site " + Texte(1) + " : « " + Texte(2) +
            " » n'est pas un nombre ; il compte pour 0 kg.");
  }
}

/// A former base that may only be read has none.
bool Figures::ACumuls() const {
  if (!ACumuls_) ACumuls_ = !Connexion_.ColonnesDe(TableCumuls).empty();
  return *ACumuls_;
}

std::optional<double> Figures::Nombre(const char* Colonne, const char* Sql,
                                      const std::vector<ValeurChamp>& Valeurs) const {
  const ValeurChamp Lue = Connexion_.Lire(Sql, Valeurs);
  if (const auto Réel = Ombrey::Comme<double>(Lue)) return Réel;
  if (EstNull(Lue)) return std::nullopt;
  const Ombrey::Régional Formes = Système_.FormesRégionales();
  const std::string Écrit = TexteValeur(Lue, Formes);
  if (Ombrey::SansEspaces(Écrit).empty()) return std::nullopt;
  if (const auto Nombre = Ombrey::NombreTapé(Écrit, Formes)) return Nombre;
  if (Avis_) Avis_(std::string(Colonne) + " : « " + Écrit + " » n'est pas un nombre ; il n'y a donc pas de quota.");
  return std::nullopt;
}

void Figures::BornerALaSaison(FiltreChargements& Filtre) const {
  const int Année = Système_.Maintenant().Année;
  if (!Filtre.Du && !Filtre.Au) Filtre.Saison = Année;
  if (!Filtre.Du) Filtre.Du = NuméroDeJour(DateHeure{Année, 1, 1, 0, 0, 0});
  if (!Filtre.Au) Filtre.Au = NuméroDeJour(DateHeure{Année, 12, 31, 0, 0, 0});
}

std::int32_t Figures::CumulGroupe(FiltreChargements Filtre) const {
  if (Filtre.Groupe.empty()) return 0;
  BornerALaSaison(Filtre);
  return EntierBorné(Masse(Filtre));
}

std::int32_t Figures::RestantExploit(FiltreChargements Filtre) const {
  const auto Surface =
      Nombre("Surface de l'exploitation", "SELECT Surface FROM Métayage WHERE IdMétayage = ?1", {Filtre.Métayage});
  const auto Part =
      Nombre("Part de l'exploitation", "SELECT Part FROM Métayage WHERE IdMétayage = ?1", {Filtre.Métayage});
  const auto ParSurface = Nombre("Quota par surface de l'appellation",
                                 "SELECT QuotasSurface FROM Sélection WHERE IdSélection = ?1", {Filtre.Sélection});
  if (!Surface || !Part || !ParSurface) return Ombrey::SansQuota;
  BornerALaSaison(Filtre);
  constexpr double PourCent = 100;
  return EntierBorné(*Surface * *ParSurface * *Part / PourCent - Masse(Filtre));
}

std::int32_t Figures::RestantGroupe(FiltreChargements Filtre) const {
  const auto Quota = Nombre("Quota journalier du groupe",
                            "SELECT QuotaJournalier FROM QuotasGrp"
                            " WHERE CAST(IdGrp AS INTEGER) = CAST(?1 AS INTEGER) AND Sélection = ?2",
                            {Filtre.Groupe, Filtre.Sélection});
  if (Filtre.Groupe.empty() || !Quota) return Ombrey::SansQuota;
  if (!Filtre.Du) Filtre.Du = NuméroDeJour(Système_.Maintenant());
  if (!Filtre.Au) Filtre.Au = Filtre.Du;
  return EntierBorné(*Quota - Masse(Filtre));
}

}  // namespace Tarvel
