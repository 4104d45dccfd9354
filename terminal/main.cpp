// The weighing terminal's stand-in: options, line, loads, service, summary.
#include <time.h>

#include <chrono>
#include <ctime>
#include <exception>
#include <fstream>
#include <iostream>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "terminal/device.h"
#include "terminal/engine.h"
#include "terminal/faults.h"
#include "terminal/loads.h"
#include "terminal/options.h"
#include "terminal/recorder.h"
#include "terminal/replay.h"
#include "terminal/service.h"
#include "terminal/trace.h"

namespace {

using namespace Rg80;

constexpr unsigned BaudsDuPort = 9600;
constexpr int CodeErreur = 1;
constexpr int CodeMauvaiseDemande = 2;

std::chrono::year_month_day Aujourdhui() {
  const std::time_t Maintenant = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
  std::tm Local{};
  localtime_r(&Maintenant, &Local);
  constexpr int PremièreAnnée = 1900;
  return std::chrono::year(Local.tm_year + PremièreAnnée) / (Local.tm_mon + 1) / Local.tm_mday;
}

std::vector<Chargement> PréparerChargements(const Options& Demande, Hasard& Dés) {
  std::vector<Chargement> Tous;
  if (!Demande.Chargements.empty()) {
    std::ifstream Flux(Demande.Chargements, std::ios::binary);
    if (!Flux) throw ErreurDemande("Chargements " + Demande.Chargements + " : lecture impossible.");
    Tous = LireChargements(Flux, Demande.Chargements);
  }
  auto Tirés = ChargementsAuHasard(Demande.AuHasard, NuméroSuivant(Tous), Aujourdhui(), Dés);
  Tous.insert(Tous.end(), std::make_move_iterator(Tirés.begin()), std::make_move_iterator(Tirés.end()));
  return Tous;
}

int Tenir(const Options& Demande, IInterlocuteur& Engin, Greffier& Témoin, Liaison& Fil) {
  const bool Réel = !Demande.Port.empty();
  try {
    // A real line keeps its pace by itself.
    Servir(Fil, Engin, Témoin.ÀÉmettre(), Réel ? std::nullopt : Demande.Bauds,
           Demande.JusquÀVide || !Demande.Rejouer.empty());
    return 0;
  } catch (const std::runtime_error& Erreur) {
    std::cerr << "rg80 : " << Erreur.what() << '\n';
    return CodeErreur;
  }
}

Liaison OuvrirLiaison(const Options& Demande, Greffier& Témoin) {
  PréparerSignaux();
  Liaison Fil = Demande.Port.empty() ? Liaison::SurLien(Demande.Lien)
                                     : Liaison::SurPort(Demande.Port, Demande.Bauds.value_or(BaudsDuPort));
  Témoin.Annoncer("ligne : " + Fil.Description());
  return Fil;
}

int Rejouer(const Options& Demande) {
  std::ifstream Flux(Demande.Rejouer, std::ios::binary);
  if (!Flux) throw ErreurDemande("Trace " + Demande.Rejouer + " : lecture impossible.");
  auto Messages = LireTrace(Flux, Demande.Rejouer);
  Greffier Témoin(Demande.Journal, "");
  Liaison Fil = OuvrirLiaison(Demande, Témoin);
  Rejeu Engin(std::move(Messages), Témoin, Demande.AutreBase);
  const int Code = Tenir(Demande, Engin, Témoin, Fil);
  return Engin.Terminer() ? Code : CodeErreur;
}

int Exécuter(const Options& Demande) {
  Hasard Dés(Demande.Graine, Demande.Taux);
  auto Chargements = PréparerChargements(Demande, Dés);
  Greffier Témoin(Demande.Journal, Demande.Sortie);
  Liaison Fil = OuvrirLiaison(Demande, Témoin);
  Témoin.Annoncer("chargements en attente : " + std::to_string(Chargements.size()));
  Terminal Engin(std::move(Chargements), Demande.EnFichiers, Dés, Témoin);
  const int Code = Tenir(Demande, Engin, Témoin, Fil);
  Témoin.Annoncer(Engin.Terminer().Texte());
  return Code;
}

}  // namespace

int main(int Nombre, char** Arguments) try {
  const Options Demande = LireOptions({Arguments + 1, Arguments + Nombre});
  if (Demande.Aide) {
    std::cout << TexteAide();
    return 0;
  }
  if (Demande.Version) {
    std::cout << "rg80 " OMBREY_VERSION "\n";
    return 0;
  }
  return Demande.Rejouer.empty() ? Exécuter(Demande) : Rejouer(Demande);
} catch (const Rg80::ErreurDemande& Erreur) {
  std::cerr << "rg80 : " << Erreur.what() << " (rg80 --help)\n";
  return CodeMauvaiseDemande;
} catch (const std::exception& Erreur) {
  std::cerr << "rg80 : " << Erreur.what() << '\n';
  return CodeErreur;
}
