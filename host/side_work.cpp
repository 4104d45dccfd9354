// What takes long: this program, started once more beside the station.
#include "host/side_work.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "base/failures.h"
#include "base/files.h"
#include "platform/loop/signals.h"

namespace Tarvel {
namespace {

const std::string Plainte = "tarvel : ";  ///< stands ahead of what the program says on its error stream

}  // namespace

TravauxÀCôté::~TravauxÀCôté() {
  if (Ombrey::SignauxFin::EstDemandée()) Abandonner();
  for (Voie* Une : Voies_)
    for (Une->Fils.reset(); !Une->File.empty(); Une->Fils.reset()) Lancer(*Une);
}

std::size_t TravauxÀCôté::Confier(Voie& Sienne, std::vector<std::string> Mots, Dire Quoi, Achèvement Fin) {
  if (!Options_.Base.empty()) Mots.insert(Mots.begin(), {"--base", Options_.Base});
  Sienne.File.push_back({++Dernier_, std::move(Mots), std::move(Quoi), std::move(Fin)});
  Sienne.Départ = Boucle_.Après(std::chrono::milliseconds(0), [this, &Sienne] { Lancer(Sienne); });
  return Dernier_;
}

std::size_t TravauxÀCôté::Diagnostiquer(Dire Quoi, Achèvement Fin) {
  std::vector<std::string> Mots{"--diagnostic"};
  for (const auto& [Nom, Valeur] : {std::pair("--ini", Ombrey::TexteChemin(Options_.Ini)),
                                    {"--dossier", Ombrey::TexteChemin(Options_.Dossier)},
                                    {"--site", Options_.CodeSite},
                                    {"--greffon", Ombrey::TexteChemin(Options_.Greffon)}})
    if (!Valeur.empty()) Mots.insert(Mots.end(), {Nom, Valeur});
  return Confier(Diagnostics_, std::move(Mots), std::move(Quoi), std::move(Fin));
}

void TravauxÀCôté::Abandonner(std::size_t Lequel) {
  for (Voie* Une : Voies_) {
    if (Une->Fils && Une->EnCours.Numéro == Lequel) return Une->Fils->Arrêter();
    const auto Sien = std::ranges::find(Une->File, Lequel, &Travail::Numéro);
    if (Sien == Une->File.end()) continue;
    const Achèvement Fin = std::move(Sien->Fin);
    Une->File.erase(Sien);
    return Fin(false);
  }
}

bool TravauxÀCôté::Abandonner() {
  bool EnAvait = false;
  for (Voie* Une : Voies_) {
    EnAvait = EnAvait || Une->Fils || !Une->File.empty();
    while (!Une->File.empty()) Abandonner(Une->File.back().Numéro);
    if (Une->Fils) Une->Fils->Arrêter();
  }
  return EnAvait;
}

void TravauxÀCôté::Lancer(Voie& Sienne) {
  if (Sienne.Fils || Sienne.File.empty()) return;
  // What is asked for behind a diagnosis is also told behind it.
  if (&Sienne == &Papiers_ && (Diagnostics_.Fils || !Diagnostics_.File.empty())) return;
  Sienne.EnCours = std::move(Sienne.File.front());
  Sienne.File.pop_front();
  std::vector<std::string> Mots = std::move(Sienne.EnCours.Mots);
  Mots.insert(Mots.begin(), Programme_);
  Ombrey::ErreurEnAttente Échec;
  const auto Redire = [&Sienne](const std::string& Ligne) {
    Sienne.EnCours.Quoi(Ligne.substr(Ligne.starts_with(Plainte) ? Plainte.size() : 0));
  };
  if (Garder(Échec, [&] {
        Sienne.Fils =
            std::make_unique<Ombrey::ProgrammeFils>(Boucle_, std::move(Mots), Redire, [this, &Sienne](bool EstRéussi) {
              Sienne.Fils.reset();
              Achever(Sienne, EstRéussi);
            });
      }))
    return;
  Sienne.EnCours.Quoi(Échec.Texte());
  Achever(Sienne, false);
}

void TravauxÀCôté::Achever(Voie& Sienne, bool EstRéussi) {
  const Achèvement Fin = std::move(Sienne.EnCours.Fin);
  for (Voie* Une : Voies_) Lancer(*Une);
  Fin(EstRéussi);
}

}  // namespace Tarvel
