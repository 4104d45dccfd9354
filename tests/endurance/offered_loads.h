// The loads that the endurance run offers, and the figures that each must bring back: worked out apart from the system.
#pragma once

#include <algorithm>
#include <cmath>
#include <map>
#include <random>
#include <string>
#include <vector>

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
/// cooperative, and some of their cooperators, too.
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
    Texte += Exploitations[Hasard(Exploitations.size())];
    Texte += Appellations[Hasard(Appellations.size())] + EnChiffres(1 + Hasard(4), 2);
    Texte += EnChiffres(95 + Hasard(54), 3) + EnChiffres(1 + Hasard(3), 1);
    Tous.push_back(Texte += EnChiffres(200 + Hasard(1300), 4) + EnChiffres(1 + Hasard(24), 3));
  }
  return Tous;
}

/// The record of each row of the database, as the terminal must have sent it.
inline std::vector<std::string> ChargementsRentrés(ConnexionSqlite& Base) {
  std::vector<std::string> Tous;
  Instruction Lignes = Base.Préparer(
      "SELECT printf('%04d', NoChargement) || strftime('%d%m', DateCh + 2415018.5)"
      " || substr(strftime('%Y%H%M', DateCh + 2415018.5), 3) || strftime('%H%M', DateSortie + 2415018.5)"
      " || printf('%06d%06d%03d%07d', Propriétaire, Récoltant, IdGrp, round(Part * 10000)) || Sélection || Qualité"
      " || printf('%03d%d%04d%03d', round(Degré * 10), NoQuai, Masse, Cuve)"
      " FROM Chargement LEFT JOIN Métayage ON Métayage = IdMétayage ORDER BY NoChargement");
  while (Lignes.Avancer()) Tous.push_back(TexteOuVide(Lignes.Valeur(0), Régional{}));
  return Tous;
}

/// The reply that each load must bring back on a day, when those ahead of it are in and none behind it.
inline std::vector<std::string> RéponsesDues(const std::vector<std::string>& Chargements, const std::string& Jour,
                                             ConnexionSqlite& Base) {
  const auto Reste = [&Base](const char* Quota, const std::vector<ValeurChamp>& Clés, double Pris) {
    const ValeurChamp Lu = Base.Lire(Quota, Clés);
    const auto* Total = std::get_if<double>(&Lu);
    return EnChiffres(Total ? static_cast<std::int64_t>(std::max(0.0, std::nearbyint(*Total - Pris))) : 0, 6);
  };
  std::map<std::string, std::int64_t> DeSaison, DuJour;  // by holding or group, and appellation
  std::vector<std::string> Dues;
  for (const std::string& Un : Chargements) {
    const std::string Sélection = Un.substr(40, 2), Exploitation = Un.substr(18, 22), Groupe = Un.substr(30, 3);
    const int Masse = std::stoi(Un.substr(48, 4));
    for (const std::string& Qui : {Exploitation + Sélection, Groupe + Sélection}) {
      if (Un.substr(8, 2) == Jour.substr(4)) DeSaison[Qui] += Masse;
      if (Un.substr(4, 6) == Jour) DuJour[Qui] += Masse;
    }
    const auto Nombre = [&Un](std::size_t Place, std::size_t Longueur) {
      return std::stol(Un.substr(Place, Longueur));
    };
    const auto CumulGroupe = DeSaison[Groupe + Sélection];
    Dues.push_back("000000" +
                   Reste("SELECT CAST(Surface * QuotasSurface * Part / 100 AS REAL) FROM Métayage, Sélection"
                         " WHERE Propriétaire = ?1 AND Récoltant = ?2 AND round(Part) = ?3 AND IdSélection = ?4",
                         {std::to_string(Nombre(18, 6)), std::to_string(Nombre(24, 6)),
                          std::round(static_cast<double>(Nombre(33, 7)) / 10000), Sélection},
                         static_cast<double>(DeSaison[Exploitation + Sélection])) +
                   EnChiffres(CumulGroupe, 6) +
                   Reste("SELECT CAST(QuotaJournalier AS REAL) FROM QuotasGrp WHERE IdGrp = ?1 AND Sélection = ?2",
                         {std::to_string(Nombre(30, 3)), Sélection}, static_cast<double>(DuJour[Groupe + Sélection])));
  }
  return Dues;
}

}  // namespace Ombrey::Essais
