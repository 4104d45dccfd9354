// What the operator hasn't read yet outlives the station.
#include "host/kept_facts.h"

#include <array>
#include <charconv>
#include <optional>
#include <sstream>
#include <string>
#include <utility>

#include "base/files.h"
#include "base/regional_forms.h"
#include "contracts/system.h"
#include "platform/system/safe_file.h"

namespace Tarvel {
namespace {

using Ombrey::DateHeure;

constexpr char Séparateur = '\t';
/// A line for each fact: how often, first and last time, title, message; of a refused load also what to do, since when
/// it is no longer offered, its fields, its file's contents, its arrival, and whether its frame was spoilt.
constexpr std::size_t Colonnes = 11;
constexpr const char* EstVrai = "1";
/// What a line can't hold has a sign of its own.
constexpr std::pair<char, char> Signes[] = {{'\n', '\x1F'}, {'\r', '\x1E'}, {Séparateur, '\x1D'}};

std::string EnChamp(std::string Texte) {
  for (char& C : Texte)
    for (const auto& [Caractère, Signe] : Signes)
      if (C == Caractère) C = Signe;
  return Texte;
}

std::string EnLignes(std::string Texte) {
  for (char& C : Texte)
    for (const auto& [Caractère, Signe] : Signes)
      if (C == Signe) C = Caractère;
  return Texte;
}

std::optional<DateHeure> Moment(const std::string& Texte) {
  const int Siècle = 2000;
  return Ombrey::LireDate(Texte, Siècle);
}

}  // namespace

std::vector<FaitRépété> LireFaits(const std::filesystem::path& Fichier) {
  std::vector<FaitRépété> Faits;
  std::istringstream Flux(Ombrey::ContenuOuVide(Fichier));
  for (std::string Ligne; std::getline(Flux, Ligne);) {
    std::array<std::string, Colonnes> Champs;
    std::istringstream Morceaux(Ligne);
    for (std::string& Un : Champs) std::getline(Morceaux, Un, Séparateur);
    for (std::string& Un : Champs) Un = EnLignes(Un);
    std::size_t Fois = 0;
    std::from_chars(Champs[0].data(), Champs[0].data() + Champs[0].size(), Fois);
    const auto Premier = Moment(Champs[1]);
    const auto Dernier = Moment(Champs[2]);
    if (Fois == 0 || !Premier || !Dernier) continue;
    Faits.push_back({.Sujet = Champs[3],
                     .Texte = Champs[4],
                     .ÀFaire = Champs[5],
                     .Détail = Champs[7],
                     .Contenu = Champs[8],
                     .Fois = Fois,
                     .Premier = *Premier,
                     .Dernier = *Dernier,
                     .Partie = Moment(Champs[6]),
                     .Arrivée = Champs[9],
                     .EstAbîmé = Champs[10] == EstVrai});
  }
  return Faits;
}

void EcrireFaits(const std::filesystem::path& Fichier, const std::vector<FaitRépété>& Faits) {
  std::string Tout;
  for (const FaitRépété& Un : Faits) {
    const std::array<std::string, Colonnes> Champs = {std::to_string(Un.Fois),
                                                      TexteDateHeure(Un.Premier),
                                                      TexteDateHeure(Un.Dernier),
                                                      Un.Sujet,
                                                      Un.Texte,
                                                      Un.ÀFaire,
                                                      Un.Partie ? TexteDateHeure(*Un.Partie) : "",
                                                      Un.Détail,
                                                      Un.Contenu,
                                                      Un.Arrivée,
                                                      Un.EstAbîmé ? EstVrai : ""};
    std::string Ligne;
    for (const std::string& Champ : Champs) Ligne += EnChamp(Champ) + Séparateur;
    Ligne.erase(Ligne.find_last_not_of(Séparateur) + 1);
    Tout += Ligne + "\n";
  }
  Ombrey::RemplacerFichier(Fichier, Tout);
}

}  // namespace Tarvel
