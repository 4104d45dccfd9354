// From an import file to rows of the table of loads.
#include "host/import_engine.h"

#include <chrono>
#include <string_view>
#include <thread>
#include <utility>

#include "base/ansi_text.h"
#include "base/files.h"
#include "contracts/octets.h"
#include "host/import_layout.h"
#include "platform/system/safe_file.h"

namespace Tarvel {
namespace {

using namespace std::chrono_literals;

using Ombrey::ErreurExécution;

constexpr std::string_view FinDeLigne = "\r\n";

std::string TexteImporté(const std::string& Nom) {
  const auto Contenu = Ombrey::LireFichier(Ombrey::Chemin(Nom));
  if (!Contenu) throw ErreurExécution("Fichier d'import illisible : " + Nom);
  return DepuisAnsi(Ombrey::Octets(*Contenu));
}

std::vector<std::string> Lignes(std::string_view Contenu) {
  std::vector<std::string> Toutes;
  while (!Contenu.empty()) {
    const std::size_t Fin = Contenu.find(FinDeLigne);
    if (Fin == std::string_view::npos) throw ErreurContenu("Fichier d'import incomplet : la dernière ligne est coupée");
    if (Fin > 0) Toutes.emplace_back(Contenu.substr(0, Fin));
    Contenu.remove_prefix(Fin + FinDeLigne.size());
  }
  if (Toutes.empty()) throw ErreurContenu("Fichier d'import vide");
  return Toutes;
}

}  // namespace

std::vector<ChargementImporté> MoteurImport::Importer(const std::string& Titre, const std::string& Fichier) {
  Définition_ = LireDéfinition(Connexion_, Titre, std::exchange(Définition_, {}));
  std::vector<LigneImport> Chargements;
  for (const std::string& Ligne : Lignes(TexteImporté(Fichier)))
    Chargements.push_back(LireLigne(Définition_, Ligne, Système_));

  // Whoever threw this transaction out comes to his own end first, if he is given a moment.
  const auto Ensemble = Connexion_.DélaiCommun();
  for (const auto Répit : {20ms, 200ms}) {
    try {
      return EcrireTout(Chargements);
    } catch (const Ombrey::ÉchecPassager&) {
      std::this_thread::sleep_for(Répit);
    }
  }
  return EcrireTout(Chargements);
}

std::vector<ChargementImporté> MoteurImport::EcrireTout(const std::vector<LigneImport>& Chargements) {
  std::vector<ChargementImporté> Importés;
  Importés.reserve(Chargements.size());
  Ombrey::Transaction Tout(Connexion_);
  TableDesChargements Table(Connexion_, Définition_);
  for (const LigneImport& Ligne : Chargements) Importés.push_back(Table.Ecrire(Ligne));
  Tout.Valider();
  return Importés;
}

}  // namespace Tarvel
