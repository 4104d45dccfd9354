// A small cooperative to try the station out on.
#include "host/sample.h"

#include <initializer_list>
#include <vector>

#include "contracts/database.h"

namespace Tarvel {
namespace {

using Ombrey::IConnexion;
using Ombrey::ValeurChamp;

using Lignes = std::initializer_list<std::vector<ValeurChamp>>;

constexpr std::monostate Néant;

void Insérer(IConnexion& Connexion, const char* Sql, const Lignes& Toutes) {
  Ombrey::Instruction Ajout = Connexion.Préparer(Sql);
  for (const auto& Ligne : Toutes) Ajout.Lier(Ligne).Exécuter();
}

void InsérerCoopérateurs(IConnexion& Connexion) {
  Insérer(Connexion, "INSERT INTO Coopérateur (IdCoopérateur, Nom, Prénom) VALUES (?1, ?2, ?3)",
          {{"101", "Amiel", "Geneviève"},
           {"102", "Barthès", "Étienne"},
           {"103", "Castanié", "Noëlle"},
           {"123", "Delmas", "François"},
           {"210", "Estève", "Anaïs"},
           {"305", "Fabrègues", "Jérôme"},
           {"318", "Gély", "Zoé"},
           {"402", "L'Hôte", "Benoît"},
           {"456", "Maurin", "Solène"},
           {"511", "Pagès", "Hélène"},
           {"624", "Rouquié", "Clément"},
           {"730", "Héritiers de Saint-Cœur", ""}});
  Insérer(Connexion, "INSERT INTO Paramètre (Nom, Valeur) VALUES (?1, ?2)",
          {{"Coopérative", "Cave coopérative d'Oriel"}});
  Insérer(Connexion, "INSERT INTO Groupement (IdGrp, Nom) VALUES (?1, ?2)",
          {{"1", "Côteau"}, {"2", "Plaine"}, {"5", "Vallée"}, {"7", "Garrigue"}});
}

void InsérerExploitations(IConnexion& Connexion) {
  // The surface is in hectares.
  Insérer(Connexion,
          "INSERT INTO Métayage (IdMétayage, Propriétaire, Récoltant, Part, CodeBadge, IdGrp, Surface)"
          " VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7)",
          {{"1", "101", "101", 100, 1001, "1", 4.2},
           {"2", "102", "102", 100, 1002, "1", 6.75},
           {"3", "103", "102", 50, 1003, "1", 3.1},
           {"4", "123", "456", 100, 1004, "7", 8},
           {"5", "123", "123", 100, 1005, "7", 2.35},
           {"6", "210", "305", 66.6667, 1006, "2", 5.4},
           {"7", "210", "305", 33.3333, 1007, "5", 5.4},
           {"8", "305", "305", 100, 1008, "2", 3.85},
           {"9", "318", "318", 100, 1009, "2", 7.2},
           {"10", "402", "402", 100, 1010, "5", 1.9},
           {"11", "402", "511", 50, 1011, "5", 2.6},
           {"12", "511", "511", 100, 1012, "7", 9.15},
           {"13", "624", "318", 33.3333, 1013, Néant, 1.2},
           {"14", "730", "624", 50, 1014, "5", 6},
           {"15", "456", "456", 100, 1015, "7", Néant}});
}

void InsérerAppellations(IConnexion& Connexion) {
  // Quotas are in kilograms: by hectare here, by day below.
  Insérer(Connexion, "INSERT INTO Sélection (IdSélection, Désignation, QuotasSurface) VALUES (?1, ?2, ?3)",
          {{"05", "Côteaux rouges", 7500},
           {"10", "Côteaux rosés", 8000},
           {"20", "Côteaux blancs", 7800},
           {"30", "Pays d'Oriel rouge", 9900},
           {"40", "Cœur de garrigue", 5200},
           {"60", "Déclassé", Néant},
           {"70", "Moût à distiller", Néant},
           {"90", "Achats extérieurs", Néant}});
  Insérer(Connexion, "INSERT INTO Qualité (IdQualité, Désignation) VALUES (?1, ?2)",
          {{"01", "Saine"}, {"02", "Légèrement altérée"}, {"03", "Altérée"}, {"04", "Pourriture"}});
  Insérer(Connexion, "INSERT INTO Cépage (Sélection, Rang, Désignation) VALUES (?1, ?2, ?3)",
          {{"05", 1, "Syrah"},
           {"05", 2, "Grenache noir"},
           {"05", 3, "Mourvèdre"},
           {"10", 1, "Cinsault"},
           {"10", 2, "Grenache gris"},
           {"20", 1, "Piquepoul blanc"},
           {"20", 2, "Muscat à petits grains"},
           {"30", 1, "Carignan"},
           {"30", 2, "Alicante"},
           {"40", 1, "Mourvèdre"}});
}

void InsérerQuotas(IConnexion& Connexion) {
  Insérer(Connexion, "INSERT INTO QuotasGrp (IdGrp, Sélection, QuotaJournalier) VALUES (?1, ?2, ?3)",
          {{"1", "05", 20000},
           {"1", "10", 15000},
           {"1", "20", 12000},
           {"2", "05", 18000},
           {"2", "30", 30000},
           {"2", "60", 5000},
           {"5", "05", 16000},
           {"5", "20", Néant},
           {"7", "05", 25000},
           {"7", "10", 12500.5},
           {"7", "20", 9000},
           {"7", "30", 22000},
           {"7", "40", 8000},
           {"7", "90", 4000}});
}

}  // namespace

void InsérerExemple(IConnexion& Connexion) {
  InsérerCoopérateurs(Connexion);
  InsérerExploitations(Connexion);
  InsérerAppellations(Connexion);
  InsérerQuotas(Connexion);
}

}  // namespace Tarvel
