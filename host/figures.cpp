// The running figures: what a holding or a group has brought in, and what it may still bring.
#include "host/figures.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "base/regional_forms.h"

namespace Tarvel {
namespace {

using Ombrey::DateHeure;
using Ombrey::NuméroDeJour;
using Ombrey::ValeurChamp;

std::int32_t EntierBorné(double Valeur) {
  constexpr double Bas = std::numeric_limits<std::int32_t>::min();
  constexpr double Haut = std::numeric_limits<std::int32_t>::max();
  return static_cast<std::int32_t>(std::clamp(std::nearbyint(Valeur), Bas, Haut));
}

/// The number in a column; none for Null and for a text.
std::optional<double> Nombre(const ValeurChamp& Valeur) {
  if (const auto* Entier = std::get_if<std::int64_t>(&Valeur)) return static_cast<double>(*Entier);
  if (const auto* Réel = std::get_if<double>(&Valeur)) return *Réel;
  return std::nullopt;
}

/// A sum of weights under construction: conditions and the values that they compare with.
class RequêteMasse {
 public:
  explicit RequêteMasse(const std::string& Table) : Sql_("SELECT SUM(Masse) FROM " + Table + " AS C") {}

  void ParGroupe(const std::string& Groupe) {
    // The loads lead, and each looks up its holding: the other way round would walk through all holdings of the group.
    Sql_ += " CROSS JOIN Métayage AS M ON M.IdMétayage = C.Métayage";
    Exiger("CAST(M.IdGrp AS INTEGER) = CAST(? AS INTEGER)", Groupe);
  }
  void Exiger(const char* Condition, ValeurChamp Valeur) {
    Conditions_ += (Conditions_.empty() ? " WHERE " : " AND ") + std::string(Condition);
    Valeurs_.push_back(std::move(Valeur));
  }
  void ExigerSiDonné(const char* Condition, const std::string& Valeur) {
    if (!Valeur.empty()) Exiger(Condition, Valeur);
  }
  [[nodiscard]] double Lire(Ombrey::ConnexionSqlite& Connexion) const {
    return Nombre(Connexion.Lire(Sql_ + Conditions_, Valeurs_)).value_or(0);
  }

 private:
  std::string Sql_;
  std::string Conditions_;
  std::vector<ValeurChamp> Valeurs_;
};

}  // namespace

double Figures::Masse(const FiltreChargements& Filtre) const {
  double Total = 0;
  for (const char* Table : {"Chargement", "ChargementArchive"}) {
    RequêteMasse Requête(Table);
    if (!Filtre.Groupe.empty()) Requête.ParGroupe(Filtre.Groupe);
    Requête.ExigerSiDonné("C.Métayage = ?", Filtre.Métayage);
    Requête.ExigerSiDonné("C.Sélection = ?", Filtre.Sélection);
    Requête.ExigerSiDonné("C.Cépage = ?", Filtre.Cépage);
    Requête.ExigerSiDonné("C.Qualité = ?", Filtre.Qualité);
    if (Filtre.Du) Requête.Exiger("C.DateCh >= ?", std::floor(*Filtre.Du));
    if (Filtre.Au) Requête.Exiger("C.DateCh < ?", std::floor(*Filtre.Au) + 1);
    Total += Requête.Lire(Connexion_);
  }
  return Total;
}

void Figures::BornerALaSaison(FiltreChargements& Filtre) const {
  const int Année = Système_.Maintenant().Année;
  if (!Filtre.Du) Filtre.Du = NuméroDeJour(DateHeure{Année, 1, 1, 0, 0, 0});
  if (!Filtre.Au) Filtre.Au = NuméroDeJour(DateHeure{Année, 12, 31, 0, 0, 0});
}

std::int32_t Figures::CumulGroupe(FiltreChargements Filtre) const {
  if (Filtre.Groupe.empty()) return 0;
  BornerALaSaison(Filtre);
  return EntierBorné(Masse(Filtre));
}

std::int32_t Figures::RestantExploit(FiltreChargements Filtre) const {
  const auto Quota =
      Nombre(Connexion_.Lire("SELECT M.Surface * S.QuotasSurface * M.Part / 100.0 FROM Métayage AS M, Sélection AS S"
                             " WHERE M.IdMétayage = ?1 AND S.IdSélection = ?2",
                             {Filtre.Métayage, Filtre.Sélection}));
  if (!Quota) return SansQuota;
  BornerALaSaison(Filtre);
  return EntierBorné(*Quota - Masse(Filtre));
}

std::int32_t Figures::RestantGroupe(FiltreChargements Filtre) const {
  const auto Quota =
      Nombre(Connexion_.Lire("SELECT QuotaJournalier FROM QuotasGrp"
                             " WHERE CAST(IdGrp AS INTEGER) = CAST(?1 AS INTEGER) AND Sélection = ?2",
                             {Filtre.Groupe, Filtre.Sélection}));
  if (Filtre.Groupe.empty() || !Quota) return SansQuota;
  if (!Filtre.Du) Filtre.Du = NuméroDeJour(Système_.Maintenant());
  if (!Filtre.Au) Filtre.Au = Filtre.Du;
  return EntierBorné(*Quota - Masse(Filtre));
}

}  // namespace Tarvel
