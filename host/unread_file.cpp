// What nobody has read yet outlives the station.
#include "host/unread_file.h"

#include <array>
#include <charconv>
#include <sstream>
#include <string>

#include "base/files.h"
#include "base/regional_forms.h"
#include "platform/system/safe_file.h"

namespace Tarvel {
namespace {

constexpr char Séparateur = '\t';
/// A line for each fact: how often, first and last time, title, message, whose line breaks have a sign of their own.
constexpr std::size_t Colonnes = 5;
constexpr char Coupure = '\x1F';

std::string EnChamp(std::string Texte) {
  for (char& C : Texte) {
    if (C == '\n' || C == '\r') C = Coupure;
    if (C == Séparateur) C = ' ';
  }
  return Texte;
}

}  // namespace

std::vector<FaitRépété> LireNonLus(const std::filesystem::path& Fichier) {
  std::vector<FaitRépété> Faits;
  std::istringstream Flux(Ombrey::ContenuOuVide(Fichier));
  for (std::string Ligne; std::getline(Flux, Ligne);) {
    std::array<std::string, Colonnes> Champs;
    std::istringstream Morceaux(Ligne);
    for (std::string& Un : Champs) std::getline(Morceaux, Un, Séparateur);
    std::size_t Fois = 0;
    std::from_chars(Champs[0].data(), Champs[0].data() + Champs[0].size(), Fois);
    const int Siècle = 2000;
    const auto Premier = Ombrey::LireDate(Champs[1], Siècle);
    const auto Dernier = Ombrey::LireDate(Champs[2], Siècle);
    if (Fois == 0 || !Premier || !Dernier) continue;
    for (char& C : Champs[4])
      if (C == Coupure) C = '\n';
    Faits.push_back({.Sujet = Champs[3], .Texte = Champs[4], .Fois = Fois, .Premier = *Premier, .Dernier = *Dernier});
  }
  return Faits;
}

void EcrireNonLus(const std::filesystem::path& Fichier, const std::vector<FaitRépété>& Faits) {
  std::string Tout;
  for (const FaitRépété& Un : Faits)
    Tout += std::to_string(Un.Fois) + Séparateur + TexteDateHeure(Un.Premier) + Séparateur +
            TexteDateHeure(Un.Dernier) + Séparateur + EnChamp(Un.Sujet) + Séparateur + EnChamp(Un.Texte) + "\n";
  Ombrey::RemplacerFichier(Fichier, Tout);
}

}  // namespace Tarvel
