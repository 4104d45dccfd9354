// Reading loads from a file, and making up believable ones.
#include "terminal/loads.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>
#include <utility>

#include "terminal/frame.h"

namespace Rg80 {

namespace {

constexpr unsigned FinDesNuméros = 10000;

// Takes "!name " off the line's head and gives the faults so named; what isn't a fault's name stays in the record.
Pannes RetirerPannes(std::string& Ligne) {
  Pannes Demandées;
  while (!Ligne.empty() && Ligne.front() == '!') {
    const std::size_t Espace = Ligne.find(' ');
    if (Espace == std::string::npos) break;
    const auto Trouvée = PanneNommée(std::string_view(Ligne).substr(1, Espace - 1));
    if (!Trouvée) break;
    Demandées.Ajouter(*Trouvée);
    Ligne.erase(0, Espace + 1);
  }
  return Demandées;
}

std::string Chiffres(unsigned Valeur, std::size_t Largeur) {
  const std::string Texte = std::to_string(Valeur);
  return Texte.size() >= Largeur ? Texte : std::string(Largeur - Texte.size(), '0') + Texte;
}

struct ExploitationPlausible {
  unsigned Propriétaire, Récoltant, Groupe;
  unsigned Part;  // in ten-thousandths of a percent
};
constexpr std::array<ExploitationPlausible, 9> ExploitationsPlausibles{{{101, 101, 1, 1000000},
                                                                        {102, 102, 1, 1000000},
                                                                        {103, 102, 1, 500000},
                                                                        {123, 456, 7, 1000000},
                                                                        {210, 305, 2, 666667},
                                                                        {305, 305, 2, 1000000},
                                                                        {318, 318, 2, 1000000},
                                                                        {402, 511, 5, 500000},
                                                                        {730, 624, 5, 500000}}};
constexpr std::array<unsigned, 5> AppellationsPlausibles{5, 10, 20, 30, 40};
constexpr std::array<unsigned, 4> QualitésPlausibles{1, 2, 3, 4};

}  // namespace

std::string Chargement::Numéro() const { return Lisible(std::string_view(Enregistrement).substr(0, LongueurNuméro)); }

std::vector<Chargement> LireChargements(std::istream& Flux, const std::string& Nom) {
  std::vector<Chargement> Lus;
  std::string Ligne;
  for (unsigned Rang = 1; std::getline(Flux, Ligne); ++Rang) {
    if (!Ligne.empty() && Ligne.back() == '\r') Ligne.pop_back();
    Chargement Nouveau;
    Nouveau.PannesDuPremierEnvoi = RetirerPannes(Ligne);
    if (Ligne.size() != LongueurChargement) {
      throw ErreurDemande(Nom + ", ligne " + std::to_string(Rang) + " : " + std::to_string(Ligne.size()) +
                          " octets au lieu de " + std::to_string(LongueurChargement) + ".");
    }
    Nouveau.Enregistrement = Ligne;
    Lus.push_back(std::move(Nouveau));
  }
  if (Flux.bad()) throw ErreurDemande(Nom + " : lecture interrompue.");
  return Lus;
}

std::vector<Chargement> ChargementsAuHasard(unsigned Nombre, unsigned PremierNuméro, std::chrono::year_month_day Jour,
                                            Hasard& Dés) {
  constexpr unsigned Siècle = 100;
  const std::string Date = Chiffres(static_cast<unsigned>(Jour.day()), 2) +
                           Chiffres(static_cast<unsigned>(Jour.month()), 2) +
                           Chiffres(static_cast<unsigned>(static_cast<int>(Jour.year())) % Siècle, 2);
  const auto UnDe = [&Dés](const auto& Table) -> const auto& {
    return Table[Dés.Entre(0, static_cast<unsigned>(Table.size()) - 1)];
  };
  std::vector<Chargement> Faits(Nombre);
  for (unsigned Rang = 0; Rang < Nombre; ++Rang) {
    const ExploitationPlausible& Qui = UnDe(ExploitationsPlausibles);
    const std::string Heure = Chiffres(Dés.Entre(7, 18), 2);
    const unsigned Arrivée = Dés.Entre(0, 40);
    std::string& Texte = Faits[Rang].Enregistrement;
    Texte = Chiffres((PremierNuméro + Rang) % FinDesNuméros, LongueurNuméro) + Date;
    Texte.append(Heure).append(Chiffres(Arrivée, 2));
    Texte.append(Heure).append(Chiffres(Arrivée + Dés.Entre(3, 19), 2));
    Texte += Chiffres(Qui.Propriétaire, 6) + Chiffres(Qui.Récoltant, 6) + Chiffres(Qui.Groupe, 3);
    Texte += Chiffres(Qui.Part, 7);
    Texte += Chiffres(UnDe(AppellationsPlausibles), 2) + Chiffres(UnDe(QualitésPlausibles), 2);
    Texte += Chiffres(Dés.Entre(95, 148), 3) + Chiffres(Dés.Entre(1, 3), 1);
    Texte += Chiffres(Dés.Entre(400, 9800), 4) + Chiffres(Dés.Entre(1, 24), 3);
  }
  return Faits;
}

unsigned NuméroSuivant(const std::vector<Chargement>& Existants) {
  unsigned Dernier = 0;
  for (const Chargement& Existant : Existants) {
    unsigned Numéro = 0;
    const char* Début = Existant.Enregistrement.data();
    std::from_chars(Début, Début + LongueurNuméro, Numéro);
    Dernier = std::max(Dernier, Numéro);
  }
  return (Dernier + 1) % FinDesNuméros;
}

}  // namespace Rg80
