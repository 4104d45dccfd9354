// Numbers, dates and times as text, by the machine's regional forms.
#include "base/regional_forms.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <limits>
#include <variant>

#include "base/failures.h"
#include "base/text_helpers.h"

namespace Ombrey {
namespace {

constexpr int ChiffresSignificatifs = 15;
constexpr int PremièreAnnée = 100;
constexpr double SecondesParJour = 86400;
constexpr std::chrono::sys_days JourZéro = std::chrono::year{1899} / 12 / 30;
constexpr double PremierJour = -657434;  // 1 January 100
constexpr double JourDeFin = 2958466;    // the day behind 31 December 9999

bool EstChiffre(char Caractère) { return Caractère >= '0' && Caractère <= '9'; }

/// Takes the digits at the front of Texte, at most Limite of them.
std::string_view PrendreChiffres(std::string_view& Texte, std::size_t Limite = std::string_view::npos) {
  std::size_t Nombre = 0;
  while (Nombre < Texte.size() && Nombre < Limite && EstChiffre(Texte[Nombre])) ++Nombre;
  const std::string_view Chiffres = Texte.substr(0, Nombre);
  Texte.remove_prefix(Nombre);
  return Chiffres;
}

bool PrendreUnDe(std::string_view& Texte, std::string_view Choix) {
  if (Texte.empty() || Choix.find(Texte.front()) == std::string_view::npos) return false;
  Texte.remove_prefix(1);
  return true;
}

std::optional<double> LireNombre(std::string_view Texte, const Régional& Formes) {
  std::string_view Reste = SansBlancs(Texte);
  const bool Négatif = Reste.starts_with('-');
  PrendreUnDe(Reste, "+-");
  const std::string_view Entiers = PrendreChiffres(Reste);
  std::string_view Décimales;
  if (PrendreUnDe(Reste, std::string_view(&Formes.SéparateurDécimal, 1))) Décimales = PrendreChiffres(Reste);
  if (Entiers.empty() && Décimales.empty()) return std::nullopt;

  std::string Forme = Négatif ? "-" : "";
  Forme.append(Entiers).append(".").append(Décimales);
  if (PrendreUnDe(Reste, "eE")) {
    Forme += Reste.starts_with('-') ? "e-" : "e";
    PrendreUnDe(Reste, "+-");
    const std::string_view Exposant = PrendreChiffres(Reste);
    if (Exposant.empty()) return std::nullopt;
    Forme.append(Exposant);
  }
  if (!Reste.empty()) return std::nullopt;

  return NombreLu<double>(Forme);
}

template <class Entier>
Entier Arrondir(double Nombre) {
  const double Arrondi = std::nearbyint(Nombre);
  const bool Tient = Arrondi >= static_cast<double>(std::numeric_limits<Entier>::min()) &&
                     Arrondi <= static_cast<double>(std::numeric_limits<Entier>::max());
  if (!Tient) throw ErreurExécution(Description::DépassementDeCapacité);
  return static_cast<Entier>(Arrondi);
}

/// Takes a group of one to Limite digits.
std::optional<int> PrendreGroupe(std::string_view& Texte, std::size_t Limite) {
  return NombreLu<int>(PrendreChiffres(Texte, Limite));
}

/// The year that ends with these two digits and is the nearest to the present one, the past one of two as near.
int AnnéeLaPlusProche(int DeuxChiffres, int AnnéePrésente) {
  constexpr int Siècle = 100;
  const int Première = AnnéePrésente - Siècle / 2;
  return Première + ((DeuxChiffres - Première) % Siècle + Siècle) % Siècle;
}

std::optional<int> PrendreAnnée(std::string_view& Texte, int AnnéePrésente) {
  const std::size_t Avant = Texte.size();
  const auto Année = PrendreGroupe(Texte, 4);
  const std::size_t Chiffres = Avant - Texte.size();
  if (Chiffres == 4 && *Année >= PremièreAnnée) return Année;
  if (Chiffres != 2) return std::nullopt;
  return AnnéeLaPlusProche(*Année, AnnéePrésente);
}

bool PrendreHeure(std::string_view& Texte, DateHeure& Moment) {
  const auto Heure = PrendreGroupe(Texte, 2);
  if (!Heure || *Heure > 23 || !PrendreUnDe(Texte, ":")) return false;
  const auto Minute = PrendreGroupe(Texte, 2);
  if (!Minute || *Minute > 59) return false;
  Moment.Heure = *Heure;
  Moment.Minute = *Minute;
  if (!PrendreUnDe(Texte, ":")) return true;
  const auto Seconde = PrendreGroupe(Texte, 2);
  if (!Seconde || *Seconde > 59) return false;
  Moment.Seconde = *Seconde;
  return true;
}

bool JourExiste(const DateHeure& Moment) {
  return std::chrono::year_month_day(std::chrono::year{Moment.Année},
                                     std::chrono::month{static_cast<unsigned>(Moment.Mois)},
                                     std::chrono::day{static_cast<unsigned>(Moment.Jour)})
      .ok();
}

void AjouterNombre(std::string& Texte, int Nombre, std::size_t Chiffres) {
  const std::string Écrit = std::to_string(Nombre);
  if (Écrit.size() < Chiffres) Texte.append(Chiffres - Écrit.size(), '0');
  Texte += Écrit;
}

}  // namespace

bool EstNumérique(std::string_view Texte, const Régional& Formes) { return LireNombre(Texte, Formes).has_value(); }

double EnRéel(std::string_view Texte, const Régional& Formes) {
  const auto Nombre = LireNombre(Texte, Formes);
  if (!Nombre) throw ErreurExécution(Description::IncompatibilitéDeType);
  return *Nombre;
}

std::int16_t EnEntier16(std::string_view Texte, const Régional& Formes) {
  return ArrondirEntier16(EnRéel(Texte, Formes));
}

std::int32_t EnEntier32(std::string_view Texte, const Régional& Formes) {
  return ArrondirEntier32(EnRéel(Texte, Formes));
}

std::int16_t ArrondirEntier16(double Nombre) { return Arrondir<std::int16_t>(Nombre); }

std::int32_t ArrondirEntier32(double Nombre) { return Arrondir<std::int32_t>(Nombre); }

std::string TexteNombre(double Nombre, const Régional& Formes) {
  if (Nombre == 0) return "0";  // no "-0"
  std::array<char, 32> Tampon{};
  const auto Écrit = std::to_chars(Tampon.data(), Tampon.data() + Tampon.size(), Nombre, std::chars_format::general,
                                   ChiffresSignificatifs);
  std::string Texte(Tampon.data(), Écrit.ptr);
  std::replace(Texte.begin(), Texte.end(), '.', Formes.SéparateurDécimal);
  std::replace(Texte.begin(), Texte.end(), 'e', 'E');
  return Texte;
}

std::string TexteValeur(const ValeurChamp& Valeur, const Régional& Formes) {
  if (const auto* Texte = std::get_if<std::string>(&Valeur)) return *Texte;
  if (const auto* Entier = std::get_if<std::int64_t>(&Valeur)) return std::to_string(*Entier);
  if (const auto* Réel = std::get_if<double>(&Valeur)) return TexteNombre(*Réel, Formes);
  throw ErreurExécution(Description::UtilisationDeNull);
}

std::string TexteOuVide(const ValeurChamp& Valeur, const Régional& Formes) {
  return EstNull(Valeur) ? std::string() : TexteValeur(Valeur, Formes);
}

std::optional<DateHeure> LireDate(std::string_view Texte, int AnnéePrésente) {
  std::string_view Reste = SansBlancs(Texte);
  constexpr std::string_view Séparateurs = "/-.";
  DateHeure Moment;
  const auto Jour = PrendreGroupe(Reste, 2);
  if (!Jour || !PrendreUnDe(Reste, Séparateurs)) return std::nullopt;
  const auto Mois = PrendreGroupe(Reste, 2);
  if (!Mois || !PrendreUnDe(Reste, Séparateurs)) return std::nullopt;
  const auto Année = PrendreAnnée(Reste, AnnéePrésente);
  if (!Année) return std::nullopt;
  Moment.Jour = *Jour;
  Moment.Mois = *Mois;
  Moment.Année = *Année;
  if (!JourExiste(Moment)) return std::nullopt;
  if (Reste.empty()) return Moment;

  const std::size_t Longueur = Reste.size();
  Reste = SansBlancs(Reste);
  if (Reste.size() == Longueur || !PrendreHeure(Reste, Moment) || !Reste.empty()) return std::nullopt;
  return Moment;
}

std::string TexteDateHeure(const DateHeure& Moment) { return TexteFormaté(Moment, "jj/mm/aaaa hh:nn:ss"); }

std::string TexteHeure(const DateHeure& Moment) { return TexteFormaté(Moment, "hh:nn:ss"); }

std::string TexteFormaté(const DateHeure& Moment, std::string_view Modèle) {
  struct Groupe {
    std::string_view Lettres;
    int Valeur;
  };
  const std::array<Groupe, 6> Groupes = {{{"jj", Moment.Jour},
                                          {"mm", Moment.Mois},
                                          {"aaaa", Moment.Année},
                                          {"hh", Moment.Heure},
                                          {"nn", Moment.Minute},
                                          {"ss", Moment.Seconde}}};
  std::string Texte;
  while (!Modèle.empty()) {
    const auto Trouvé =
        std::find_if(Groupes.begin(), Groupes.end(), [&](const Groupe& G) { return Modèle.starts_with(G.Lettres); });
    if (Trouvé == Groupes.end()) {
      Texte += Modèle.front();
      Modèle.remove_prefix(1);
      continue;
    }
    AjouterNombre(Texte, Trouvé->Valeur, Trouvé->Lettres.size());
    Modèle.remove_prefix(Trouvé->Lettres.size());
  }
  return Texte;
}

std::string MomentLisible(const ValeurChamp& Valeur, const Régional& Formes) {
  const auto Jours = Comme<double>(Valeur);
  const bool EstAuCalendrier = Jours && *Jours >= PremierJour && *Jours < JourDeFin;
  return EstAuCalendrier ? TexteFormaté(DepuisNuméroDeJour(*Jours), "jj/mm/aaaa hh:nn") : TexteOuVide(Valeur, Formes);
}

double NuméroDeJour(const DateHeure& Moment) {
  const std::chrono::sys_days Jour = std::chrono::year_month_day(std::chrono::year{Moment.Année},
                                                                 std::chrono::month{static_cast<unsigned>(Moment.Mois)},
                                                                 std::chrono::day{static_cast<unsigned>(Moment.Jour)});
  const int Secondes = (Moment.Heure * 60 + Moment.Minute) * 60 + Moment.Seconde;
  return static_cast<double>((Jour - JourZéro).count()) + Secondes / SecondesParJour;
}

DateHeure DepuisNuméroDeJour(double Jours) {
  const bool Tient = Jours >= PremierJour && Jours < JourDeFin;
  if (!Tient) throw ErreurExécution(Description::DépassementDeCapacité);
  const std::chrono::sys_seconds Instant = JourZéro + std::chrono::seconds(std::llround(Jours * SecondesParJour));
  const auto Jour = std::chrono::floor<std::chrono::days>(Instant);
  const std::chrono::year_month_day Date(Jour);
  const std::chrono::hh_mm_ss Heure(Instant - Jour);
  return DateHeure{static_cast<int>(Date.year()),
                   static_cast<int>(static_cast<unsigned>(Date.month())),
                   static_cast<int>(static_cast<unsigned>(Date.day())),
                   static_cast<int>(Heure.hours().count()),
                   static_cast<int>(Heure.minutes().count()),
                   static_cast<int>(Heure.seconds().count())};
}

}  // namespace Ombrey
