// Cooperatives of any size, in a database file of their own.
#include "bench/cooperative.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <iterator>

#include "base/files.h"
#include "base/regional_forms.h"
#include "host/engine.h"
#include "host/schema.h"

namespace Ombrey::Mesures {

Machine::Machine()
    : Ecran_(open(FichierLignes().c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600)),
      Sortie_(Ecran_.Numéro()),
      Fenêtres_(Boucle_, Sortie_),
      Plateforme_(Boucle_, Fenêtres_, nullptr, Dossier() / "station", Dossier() / "place.ini") {
  Fenêtres_.RépondreSeul();
}

std::string Machine::Lignes() const {
  std::ifstream Fichier(FichierLignes());
  return {std::istreambuf_iterator<char>(Fichier), {}};
}

bool AServeurDesMesures() { return std::getenv("OMBREY_BENCH_SERVER") != nullptr; }

std::string Coopérative::NouvelleBase(bool SurServeur) const {
  if (!SurServeur) return TexteChemin(Poste.Dossier() / "base.db");
  static int Rang = 0;
  const std::string Nom = "mesure" + std::to_string(getpid()) + "_" + std::to_string(++Rang);
  const auto Adresse = [](const std::string& Sienne) {
    return "postgresql://tarvel@/" + Sienne + "?host=" + std::getenv("OMBREY_BENCH_SERVER");
  };
  const auto Serveur = Tarvel::OuvrirMoteur(Adresse("postgres"));
  const SansHâte Patiente(*Serveur);
  Serveur->ExécuterTout("CREATE DATABASE " + Nom);
  return Adresse(Nom);
}

Coopérative::Coopérative(bool AvecExemple, bool SurServeur) {
  const std::string Adresse = NouvelleBase(SurServeur);
  Tarvel::CréerBase(Adresse, AvecExemple);
  Connexion = std::make_shared<ConnexionChronométrée>(
      Tarvel::OuvrirMoteur(Adresse, [this] { return NuméroDeJour(Poste.Plateforme().Système().Maintenant()); }));
  Base = std::make_shared<Tarvel::BaseDeDTarvel>(Connexion, Poste.Plateforme().Système());
}

void Coopérative::Remplir(const char* Sql, std::int64_t Nombre) {
  // A server wants to know what it is given.
  std::string Typé = Sql;
  const std::string Nombres = "CAST(?1 AS BIGINT)";
  for (std::size_t Place = 0; (Place = Typé.find("?1", Place)) != std::string::npos; Place += Nombres.size())
    Typé.replace(Place, 2, Nombres);
  const SansHâte Patiente(*Connexion);
  Transaction Tout(*Connexion);
  Instruction Ajout = Connexion->Préparer(Typé);
  for (std::int64_t Numéro = 1; Numéro <= Nombre; ++Numéro) Ajout.Lier({Numéro}).Exécuter();
  Tout.Valider();
}

void Coopérative::AjouterMembres(std::int64_t Nombre) {
  Remplir(
      "INSERT INTO Coopérateur (IdCoopérateur, Nom) VALUES (CAST(?1 AS TEXT), 'Coopérateur du Coteau n° ' || CAST(?1 "
      "AS TEXT))",
      Nombre);
  Remplir(
      "INSERT INTO Métayage (IdMétayage, Propriétaire, Récoltant, Part, CodeBadge, IdGrp, Surface)"
      " VALUES (CAST(?1 AS TEXT), CAST(?1 AS TEXT), CAST(?1 AS TEXT), 66.6667, 100000 + ?1, CAST(1 + ?1 % 8 AS TEXT), "
      "4.2)",
      Nombre);
  Connexion->ExécuterTout(
      "INSERT INTO Sélection (IdSélection, Désignation, QuotasSurface) VALUES ('05', 'Coteaux rouges', 7500);"
      "INSERT INTO Cépage (Sélection, Rang, Désignation) VALUES ('05', 1, 'Syrah')");
}

std::int64_t Coopérative::Compter(const std::string& Table) {
  return std::get<std::int64_t>(Connexion->Lire("SELECT COUNT(*) FROM " + Table));
}

}  // namespace Ombrey::Mesures
