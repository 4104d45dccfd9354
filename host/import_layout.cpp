// The layout of an import file, and its lines cut into checked values.
#include "host/import_layout.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <utility>

#include "base/delimited_list.h"
#include "base/regional_forms.h"
#include "base/text_helpers.h"
#include "base/visible_text.h"
#include "host/load_columns.h"

namespace Tarvel {
namespace {

using Ombrey::ErreurExécution;
using Ombrey::ListeChamps;
using Ombrey::Régional;
using Ombrey::ValeurChamp;

constexpr std::array<std::pair<std::string_view, GenreValeur>, 5> Genres = {{{"texte", GenreValeur::Texte},
                                                                             {"entier", GenreValeur::Entier},
                                                                             {"nombre", GenreValeur::Nombre},
                                                                             {"date", GenreValeur::Date},
                                                                             {"booléen", GenreValeur::Booléen}}};
constexpr std::array<std::pair<std::string_view, std::int64_t>, 5> Booléens = {
    {{"Vrai", -1}, {"-1", -1}, {"1", -1}, {"Faux", 0}, {"0", 0}}};

template <class Table>
auto Chercher(const Table& Choix, std::string_view Texte) -> std::optional<decltype(Choix[0].second)> {
  const auto Trouvé = std::find_if(Choix.begin(), Choix.end(), [&](const auto& C) { return C.first == Texte; });
  if (Trouvé == Choix.end()) return std::nullopt;
  return Trouvé->second;
}

template <class Entier>
std::optional<Entier> EntierSimple(std::string_view Texte) {
  return Texte.starts_with('-') ? std::nullopt : Ombrey::NombreLu<Entier>(Texte);
}

ColonneImport LireColonne(const std::string& Texte) {
  const ListeChamps Items("\t");
  const std::string Nom = Items.Champ(Texte, 1);
  const auto Genre = Chercher(Genres, Ombrey::SansBlancs(Items.Champ(Texte, 2)));
  const std::string Largeur(Ombrey::SansBlancs(Items.Champ(Texte, 3)));
  const auto Nombre = EntierSimple<std::size_t>(Largeur.empty() ? "0" : Largeur);
  if (!Genre) throw ErreurExécution("Définition d'import : genre inconnu pour la colonne " + Nom);
  if (!Nombre) throw ErreurExécution("Définition d'import : largeur illisible pour la colonne " + Nom);
  return {Nom, *Genre, *Nombre};
}

bool EstCommande(char C) {
  constexpr unsigned char PremierImprimable = 0x20;
  constexpr char Effacement = 0x7F;
  return (static_cast<unsigned char>(C) < PremierImprimable && C != '\t') || C == Effacement;
}

/// No figure of a load is negative, and "9E99" is a fault of the line rather than a weight.
std::optional<ValeurChamp> LireMesure(std::string Texte, const Régional& Formes) {
  if (Texte.find_first_of("+-eE") != std::string::npos || !NormaliserNombre(Texte, Formes)) return std::nullopt;
  return EnRéel(Texte, Formes);
}

std::optional<ValeurChamp> LireMoment(const std::string& Texte, const Ombrey::ISystème& Système) {
  const auto Moment = Ombrey::LireDate(Texte, Système.Maintenant().Année);
  return Moment ? std::optional<ValeurChamp>(NuméroDeJour(*Moment)) : std::nullopt;
}

/// The value as the database keeps it; none when the text isn't of the kind.
std::optional<ValeurChamp> Interpréter(GenreValeur Genre, const std::string& Texte, const Ombrey::ISystème& Système) {
  switch (Genre) {
    case GenreValeur::Texte:
      if (std::any_of(Texte.begin(), Texte.end(), EstCommande)) return std::nullopt;
      return Texte;
    case GenreValeur::Entier:
      return EntierSimple<std::int64_t>(Texte);
    case GenreValeur::Nombre:
      return LireMesure(Texte, Système.FormesRégionales());
    case GenreValeur::Date:
      return LireMoment(Texte, Système);
    case GenreValeur::Booléen:
      return Chercher(Booléens, Texte);
  }
  return std::nullopt;
}

bool EstObligatoire(std::string_view Nom) {
  return std::any_of(ColonnesChargement.begin(), ColonnesChargement.end(),
                     [&](const ColonneChargement& C) { return C.EstObligatoire && C.Nom == Nom; });
}

ValeurImport LireValeur(const ColonneImport& Colonne, const std::string& Texte, const Ombrey::ISystème& Système) {
  const auto Refus = [&](const std::string& Raison) {
    return ErreurContenu("Colonne " + Colonne.Nom + " : " + Raison);
  };
  if (Texte.empty()) {
    if (EstObligatoire(Colonne.Nom)) throw Refus("la valeur manque");
    if (Colonne.Genre == GenreValeur::Booléen) return {std::int64_t{0}};
    return {};
  }
  const bool EstTropLong = Colonne.Largeur > 0 && Ombrey::NombreCaractères(Texte) > Colonne.Largeur;
  if (EstTropLong) throw Refus("valeur trop longue : « " + Texte + " »");
  auto Valeur = Interpréter(Colonne.Genre, Texte, Système);
  if (!Valeur) throw Refus("valeur illisible : « " + Texte + " »");
  constexpr int DeuxPointsAvecSecondes = 2;
  const bool ADesSecondes = std::count(Texte.begin(), Texte.end(), ':') == DeuxPointsAvecSecondes;
  return {std::move(*Valeur), Colonne.Genre == GenreValeur::Date && ADesSecondes};
}

/// What stands ahead of each separator. Every value is followed by one, the last too.
std::vector<std::string> ValeursDe(std::string_view Ligne, const std::string& Séparateur) {
  std::vector<std::string> Valeurs;
  while (!Ligne.empty()) {
    const std::size_t Place = Ligne.find(Séparateur);
    if (Place == std::string_view::npos) throw ErreurContenu("Le séparateur manque derrière la dernière valeur");
    Valeurs.emplace_back(Ligne.substr(0, Place));
    Ligne.remove_prefix(Place + Séparateur.size());
  }
  return Valeurs;
}

}  // namespace

std::optional<std::size_t> DéfinitionImport::Chercher(std::string_view Nom) const {
  const auto Trouvée = std::find_if(Colonnes.begin(), Colonnes.end(), [&](const auto& C) { return C.Nom == Nom; });
  if (Trouvée == Colonnes.end()) return std::nullopt;
  return static_cast<std::size_t>(Trouvée - Colonnes.begin());
}

std::size_t DéfinitionImport::Place(std::string_view Nom) const {
  const auto Trouvée = Chercher(Nom);
  if (!Trouvée) throw ErreurExécution("Définition d'import : il manque la colonne " + std::string(Nom));
  return *Trouvée;
}

DéfinitionImport LireDéfinition(Ombrey::IConnexion& Connexion, const std::string& Titre, DéfinitionImport Connue) {
  Ombrey::Instruction Requête =
      Connexion.Préparer("SELECT LongChps, Format FROM MSysEtats WHERE Titre = ?1 AND Exportation = 0");
  if (!Requête.Lier({Titre}).Avancer()) throw ErreurExécution("Définition d'import inconnue : " + Titre);

  DéfinitionImport Définition{
      {}, Ombrey::TexteOuVide(Requête.Valeur(1), {}), Ombrey::TexteOuVide(Requête.Valeur(0), {})};
  if (Définition.Texte == Connue.Texte && Définition.Séparateur == Connue.Séparateur) return Connue;
  if (Définition.Séparateur.empty()) throw ErreurExécution("Définition d'import sans séparateur : " + Titre);
  const std::vector<Ombrey::ColonneDeTable> Connues = Connexion.ColonnesDe(TableChargements);
  for (const std::string& Texte : ListeChamps("\r").Décomposer(Définition.Texte)) {
    Définition.Colonnes.push_back(LireColonne(Texte));
    const std::string& Nom = Définition.Colonnes.back().Nom;
    if (std::ranges::find(Connues, Nom, &Ombrey::ColonneDeTable::Nom) == Connues.end())
      throw ErreurExécution("Définition d'import : colonne inconnue : " + Nom);
  }
  for (const ColonneChargement& C : ColonnesChargement)
    if (C.EstObligatoire) static_cast<void>(Définition.Place(C.Nom));
  return Définition;
}

LigneImport LireLigne(const DéfinitionImport& Définition, std::string_view Ligne, const Ombrey::ISystème& Système) {
  const std::vector<std::string> Textes = ValeursDe(Ligne, Définition.Séparateur);
  if (Textes.size() != Définition.Colonnes.size())
    throw ErreurContenu("Nombre de valeurs incorrect : " + std::to_string(Définition.Colonnes.size()) + " attendues, " +
                        std::to_string(Textes.size()) + " lues");
  LigneImport Valeurs;
  Valeurs.reserve(Textes.size());
  for (std::size_t Rang = 0; Rang < Textes.size(); ++Rang)
    Valeurs.push_back(LireValeur(Définition.Colonnes[Rang], Textes[Rang], Système));
  return Valeurs;
}

}  // namespace Tarvel
