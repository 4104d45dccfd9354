// The loads that the endurance run offers, what came in of them, and the figures that each may bring back: worked out
// apart from the system.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <random>
#include <set>

#include "base/regional_forms.h"
#include "platform/database/sqlite/sqlite_connection.h"

namespace Ombrey::Essais {

/// All that is left to chance comes from one seed.
struct Dé {
  explicit Dé(std::uint32_t Graine) : Moteur(Graine) {}
  /// 0 to Nombre - 1.
  unsigned operator()(std::size_t Nombre) { return static_cast<unsigned>(Moteur() % Nombre); }
  std::mt19937 Moteur;
};

inline std::string EnChiffres(std::int64_t Valeur, std::size_t Largeur) {
  const std::string Texte = std::to_string(Valeur);
  return std::string(Largeur - std::min(Largeur, Texte.size()), '0') + Texte;
}

/// Records of one day ("ddmmyy"), numbered one behind the other. The last two holdings are unknown to the sample
/// cooperative, and three of their cooperators, too; the first two loads are theirs.
inline std::vector<std::string> ChargementsOfferts(unsigned Premier, unsigned Nombre, const std::string& Jour,
                                                   Dé& Hasard) {
  // Owner, harvester, group and share.
  static const std::vector<std::string> Exploitations = {
      "0001010001010011000000", "0001020001020011000000", "0001030001020010500000", "0001230004560071000000",
      "0002100003050020666667", "0002100003050050333333", "0003050003050021000000", "0003180003180021000000",
      "0004020005110050500000", "0007300006240050500000", "0008010008020071000000", "0001010008030010750000"};
  static const std::vector<std::string> Appellations = {"05", "10", "20", "30", "40", "60"};
  std::vector<std::string> Tous;
  for (unsigned Rang = 0; Rang < Nombre; ++Rang) {
    const std::string Heure = EnChiffres(7 + Hasard(12), 2);
    const unsigned Arrivée = Hasard(40);
    std::string Texte = EnChiffres(Premier + Rang, 4) + Jour;
    Texte.append(Heure).append(EnChiffres(Arrivée, 2)).append(Heure);
    Texte += EnChiffres(Arrivée + 1 + Hasard(19), 2);
    Texte += Exploitations[Rang < 2 ? Exploitations.size() - 1 - Rang : Hasard(Exploitations.size())];
    Texte += Appellations[Hasard(Appellations.size())] + EnChiffres(1 + Hasard(4), 2);
    Texte += EnChiffres(95 + Hasard(54), 3) + EnChiffres(1 + Hasard(3), 1);
    Tous.push_back(Texte += EnChiffres(200 + Hasard(1300), 4) + EnChiffres(1 + Hasard(24), 3));
  }
  return Tous;
}

/// The record of each row of a site, as the terminal must have sent it: what was kept as it came, and the holding that
/// the load had at first.
inline std::vector<std::string> ChargementsRentrés(ConnexionSqlite& Base, const std::string& Site) {
  std::vector<std::string> Tous;
  Instruction Lignes = Base.Préparer(
      "SELECT printf('%04d', ReçuNoChargement) || strftime('%d%m', ReçuDateCh + 2415018.5)"
      " || substr(strftime('%Y%H%M', ReçuDateCh + 2415018.5), 3) || strftime('%H%M', ReçuDateSortie + 2415018.5)"
      " || printf('%06d%06d%03d%07d', Propriétaire, Récoltant, IdGrp, round(Part * 10000)) || ReçuSélection"
      " || ReçuQualité || printf('%03d%d%04d%03d', round(ReçuDegré * 10), ReçuNoQuai, ReçuMasse, ReçuCuve)"
      " FROM Chargement AS C LEFT JOIN Métayage AS M ON M.IdMétayage ="
      " (SELECT Métayage FROM Suivi WHERE IdChargement = C.IdChargement ORDER BY Rang LIMIT 1)"
      " WHERE CodeSite = ?1 ORDER BY NoChargement");
  Lignes.Lier({Site});
  while (Lignes.Avancer()) Tous.push_back(TexteOuVide(Lignes.Valeur(0), Régional{}));
  return Tous;
}

/// Each change of a load in the order of the commits, as triggers of the run's own write it down.
class Suivi {
 public:
  static constexpr const char* Tables = R"(
CREATE TABLE Suivi (Rang INTEGER PRIMARY KEY, IdChargement, Métayage, Masse);
CREATE TABLE Bureau (IdChargement PRIMARY KEY, Métayage, Degré, Masse);
CREATE TRIGGER Arrivée AFTER INSERT ON Chargement BEGIN
  INSERT INTO Suivi VALUES (NULL, new.IdChargement, new.Métayage, new.Masse); END;
CREATE TRIGGER Correction AFTER UPDATE ON Chargement BEGIN
  INSERT INTO Suivi VALUES (NULL, new.IdChargement, new.Métayage, new.Masse); END;)";

  explicit Suivi(std::shared_ptr<ConnexionSqlite> Base) : Base_(std::move(Base)) {
    Instruction Lignes = Base_->Préparer(
        "SELECT CodeSite || '/' || NoChargement, Sélection, S.Métayage, IdGrp, CAST(S.Masse AS TEXT), CodeSite"
        " FROM Suivi AS S JOIN Chargement USING (IdChargement) JOIN Métayage ON IdMétayage = S.Métayage ORDER BY Rang");
    const auto Texte = [&Lignes](std::size_t Rang) { return TexteOuVide(Lignes.Valeur(Rang), Régional{}); };
    while (Lignes.Avancer())
      Tous_.push_back(
          {Texte(0), Texte(1), Texte(2), Texte(3), Texte(5), std::stod(Texte(4)), Vus_.insert(Texte(0)).second});
  }

  /// Whether the load may bring this reply back: each figure is that of some moment between its own arrival and the one
  /// of the site's next load, for a holding that it had meanwhile.
  [[nodiscard]] bool Permet(const std::string& Site, std::int64_t Numéro, const std::string& Réponse,
                            bool PasseMinuit) const {
    const std::string Lui = Site + "/" + std::to_string(Numéro);
    std::map<std::string, const Changement*> Présents;
    std::map<std::string, double> Masses;  // by holding or group, and appellation
    std::map<const Changement*, std::array<std::set<std::string>, 3>> Possibles;
    for (const Changement& Un : Tous_) {
      if (!Possibles.empty() && Un.EstArrivée && Un.Site == Site) break;
      const Changement* const Avant = std::exchange(Présents[Un.Chargement], &Un);
      for (const auto& [Lequel, Sens] : {std::pair(Avant, -1), std::pair(&Un, 1)})
        for (const char* Genre : {"exploitation ", "groupe "})
          if (Lequel) Masses[Lequel->Clé(Genre)] += Sens * Lequel->Masse;
      if (Un.Chargement == Lui) Possibles[&Un];
      for (auto& [Sien, Chiffres] : Possibles) Ajouter(Chiffres, *Sien, Masses, PasseMinuit);
    }
    return std::any_of(Possibles.begin(), Possibles.end(), [&](const auto& Ceux) {
      const auto A = [&](std::size_t Lequel) {
        return Ceux.second[Lequel].contains(Réponse.substr(6 * Lequel + 6, 6));
      };
      return Réponse.starts_with("000000") && A(0) && A(1) && A(2);
    });
  }

 private:
  struct Changement {
    std::string Chargement, Sélection, Métayage, Groupe, Site;
    double Masse;
    bool EstArrivée;
    [[nodiscard]] std::string Clé(const std::string& Genre) const {
      return Genre + (Genre == "groupe " ? Groupe : Métayage) + "/" + Sélection;
    }
  };

  void Ajouter(std::array<std::set<std::string>, 3>& Chiffres, const Changement& Un,
               const std::map<std::string, double>& Masses, bool PasseMinuit) const {
    const auto Masse = [&](const char* Genre) {
      const auto Trouvée = Masses.find(Un.Clé(Genre));
      return Trouvée == Masses.end() ? 0 : Trouvée->second;
    };
    const char* const DuJour =
        "SELECT CAST(QuotaJournalier AS REAL) FROM QuotasGrp WHERE IdGrp = ?1 AND Sélection = ?2";
    Chiffres[0].insert(
        Reste("SELECT CAST(Surface * QuotasSurface * Part / 100 AS REAL) FROM Métayage, Sélection"
              " WHERE IdMétayage = ?1 AND IdSélection = ?2",
              {Un.Métayage, Un.Sélection}, Masse("exploitation ")));
    Chiffres[1].insert(EnChiffres(std::llround(Masse("groupe ")), 6));
    Chiffres[2].insert(Reste(DuJour, {Un.Groupe, Un.Sélection}, Masse("groupe ")));
    if (PasseMinuit) Chiffres[2].insert(Reste(DuJour, {Un.Groupe, Un.Sélection}, 0));
  }
  [[nodiscard]] std::string Reste(const char* Quota, const std::vector<ValeurChamp>& Clés, double Pris) const {
    const auto Total = Comme<double>(Base_->Lire(Quota, Clés));
    return EnChiffres(Total ? static_cast<std::int64_t>(std::max(0.0, std::nearbyint(*Total - Pris))) : 0, 6);
  }

  std::shared_ptr<ConnexionSqlite> Base_;
  std::set<std::string> Vus_;
  std::vector<Changement> Tous_;
};

}  // namespace Ombrey::Essais
