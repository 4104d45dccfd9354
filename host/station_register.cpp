// Which stations work on a base.
#include "host/station_register.h"

#include "base/failures.h"
#include "base/regional_forms.h"
#include "base/text_helpers.h"
#include "platform/system/folder_lock.h"
#include "platform/system/machine_system.h"

namespace Tarvel {
namespace {

constexpr std::chrono::minutes EntreSignes(1);
constexpr const char* SqlStations = "SELECT CodeSite, Machine, Vue FROM Station ORDER BY CodeSite";

std::string DernierChargement(Ombrey::IDatabase& Base, const std::string& Site, const Ombrey::Régional& Formes) {
  const auto Dernier = Base.OpenRecordset(
      "SELECT NoChargement, Format([DateCh],'dd/mm/yyyy hh:nn') FROM Chargement"
      " WHERE CodeSite = " +
          Ombrey::TexteSql(Site) + " ORDER BY IdChargement DESC LIMIT 1",
      Ombrey::TypeRecordset::VersLAvant);
  if (Dernier->Eof()) return "";
  return "n° " + TexteOuVide(Dernier->Fields(0), Formes) + ", " + TexteOuVide(Dernier->Fields(1), Formes);
}

}  // namespace

void RegistreStations::Signaler() {
  const auto Maintenant = std::chrono::steady_clock::now();
  if (Maintenant < Prochain_ || Connexion_->EstEnLectureSeule()) return;
  Prochain_ = Maintenant + EntreSignes;
  Ombrey::Ignorer([this] {
    // No other station has this site: nobody can be faster.
    const bool EstConnue =
        !Ombrey::EstNull(Connexion_->Lire("SELECT Vue FROM Station WHERE CodeSite = ?1", {CodeSite_}));
    Connexion_->Exécuter(EstConnue ? "UPDATE Station SET Machine = ?2, Vue = ?3 WHERE CodeSite = ?1"
                                   : "INSERT INTO Station (CodeSite, Machine, Vue) VALUES (?1, ?2, ?3)",
                         {CodeSite_, Ombrey::NomMachine(), Ombrey::NuméroDeJour(Ombrey::HeureLocale())});
  });
}

std::string SansSigneDeVie(Ombrey::IConnexion& Connexion) {
  const std::string Manquants = Connexion.DroitsManquants("Station", {"SELECT", "INSERT", "UPDATE"});
  return Manquants.empty()
             ? ""
             : "Cette station ne sera pas dans la liste des stations : il manque " + Manquants + " sur Station.";
}

bool SontPlusieurs(Ombrey::IDatabase& Base) {
  bool Plusieurs = false;
  Ombrey::Ignorer([&] {
    const auto Sites = Base.OpenRecordset("SELECT CodeSite FROM Station LIMIT 2", Ombrey::TypeRecordset::VersLAvant);
    if (!Sites->Eof()) Sites->MoveNext();
    Plusieurs = !Sites->Eof();
  });
  return Plusieurs;
}

Rangées TableauStations(Ombrey::IDatabase& Base, const Ombrey::Régional& Formes) {
  Rangées Tableau{{"Site", "Machine", "Dernier chargement", "Dernier signe de vie"}};
  const auto Lignes = Base.OpenRecordset(SqlStations, Ombrey::TypeRecordset::VersLAvant);
  for (; !Lignes->Eof(); Lignes->MoveNext()) {
    const std::string Site = TexteOuVide(Lignes->Fields(0), Formes);
    Tableau.push_back({Site, TexteOuVide(Lignes->Fields(1), Formes), DernierChargement(Base, Site, Formes),
                       Ombrey::MomentLisible(Lignes->Fields(2))});
  }
  return Tableau;
}

}  // namespace Tarvel
