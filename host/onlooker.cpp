// A look at the base that another station, or the service, works on.
#include "host/onlooker.h"

#include <chrono>
#include <cmath>
#include <cstddef>
#include <exception>
#include <memory>
#include <string>

#include "base/regional_forms.h"
#include "host/about.h"
#include "host/cooperative_database.h"
#include "host/schema.h"
#include "platform/loop/loop.h"
#include "platform/loop/signals.h"
#include "platform/system/folder_lock.h"
#include "platform/system/machine_system.h"

namespace Tarvel {
namespace {

using namespace std::chrono_literals;

constexpr auto Rythme = 2s;
constexpr auto AttenteParPompe = 1h;

}  // namespace

Spectateur::Spectateur(const Options& Choisies, IÉdition& Édition)
    : Options_(Choisies),
      Édition_(Édition),
      Boucle_(Édition.Boucle(), [&Édition](const std::string& Description) { Édition.Dire(Description); }),
      Système_(Boucle_) {}

void Spectateur::Exécuter() {
  Connexion_ = OuvrirCoopérative(Options_.Base, [] { return Ombrey::NuméroDeJour(Ombrey::HeureLocale()); });
  Connexion_->FixerPatience(PatienceDe(Édition_));
  NoterMoteur(Édition_.LAperçu(), *Connexion_);
  const Ombrey::SignauxFin Signaux(Boucle_, [this] { Finir(); });
  const Ombrey::IBoucle::Jeton Échéance =
      Options_.Durée ? Boucle_.Après(*Options_.Durée, [this] { Finir(); }) : nullptr;
  Édition_.Raccorder(*this);
  Édition_.Suivre(std::make_shared<BaseDeDTarvel>(Connexion_, Système_, Options_.CodeSite));
  DireCeQuIlEst();
  Regarder();
  while (!EnFin_) Boucle_.Pomper(AttenteParPompe);
}

void Spectateur::Finir() {
  if (EnFin_) return;
  EnFin_ = true;
  Suite_.reset();
  Édition_.Finir();
}

void Spectateur::DireCeQuIlEst() {
  Édition_.Dire("On regarde la base « " + Options_.NomBase() + " » sans prendre la ligne, qui est " + TexteLigne() +
                ".");
}

std::string Spectateur::TexteLigne() const {
  const auto Station = Ombrey::OccupantDossier(Options_.Dossier);
  return Station ? "à la station au travail (" + *Station + ")" : "libre : aucune station n'y travaille";
}

/// A base that is locked, or gone for a moment, is looked at again.
void Spectateur::Regarder() {
  Édition_.LAperçu().NoterAutreLiaison("La ligne est " + TexteLigne());
  try {
    if (Montrer()) Édition_.MontrerNouveau();
  } catch (const std::exception& Erreur) {
    Édition_.Dire(Erreur.what());
  }
  if (!EnFin_) Suite_ = Boucle_.Après(Rythme, [this] { Regarder(); });
}

bool Spectateur::Montrer() {
  const std::int64_t Avant = Dernier_;
  const double Aujourdhui = std::floor(Ombrey::NuméroDeJour(Ombrey::HeureLocale()));
  auto Requête = Connexion_->Préparer(
      "SELECT IdChargement, NoChargement, DateCh, Métayage, Sélection, Masse FROM Chargement"
      " WHERE IdChargement > ?1 AND DateCh >= ?2 ORDER BY IdChargement");
  Requête.Lier({Dernier_, Aujourdhui});
  while (Requête.Avancer()) {
    const auto Texte = [&](std::size_t Rang) { return Ombrey::TexteOuVide(Requête.Valeur(Rang), {}); };
    Dernier_ = Ombrey::Comme<std::int64_t>(Requête.Valeur(0)).value_or(Dernier_);
    const auto Jour = Ombrey::Comme<double>(Requête.Valeur(2));
    Édition_.Dire((Jour ? Ombrey::TexteHeure(Ombrey::DepuisNuméroDeJour(*Jour)) + " " : "") + "Chargement n° " +
                  Texte(1) + ", exploitation " + Texte(3) + ", appellation " + Texte(4) + ", " + Texte(5) + " kg");
  }
  return Dernier_ != Avant;
}

}  // namespace Tarvel
