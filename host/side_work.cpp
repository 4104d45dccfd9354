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
  for (Fils_.reset(); !File_.empty(); Fils_.reset()) Lancer();
}

std::size_t TravauxÀCôté::Confier(std::vector<std::string> Mots, Dire Quoi, Achèvement Fin) {
  if (!Options_.Base.empty()) Mots.insert(Mots.begin(), {"--base", Options_.Base});
  File_.push_back({++Dernier_, std::move(Mots), std::move(Quoi), std::move(Fin)});
  Départ_ = Boucle_.Après(std::chrono::milliseconds(0), [this] { Lancer(); });
  return Dernier_;
}

std::size_t TravauxÀCôté::Diagnostiquer(Dire Quoi, Achèvement Fin) {
  std::vector<std::string> Mots{"--diagnostic"};
  for (const auto& [Nom, Valeur] : {std::pair("--ini", Ombrey::TexteChemin(Options_.Ini)),
                                    {"--dossier", Ombrey::TexteChemin(Options_.Dossier)},
                                    {"--site", Options_.CodeSite},
                                    {"--greffon", Ombrey::TexteChemin(Options_.Greffon)}})
    if (!Valeur.empty()) Mots.insert(Mots.end(), {Nom, Valeur});
  return Confier(std::move(Mots), std::move(Quoi), std::move(Fin));
}

void TravauxÀCôté::Abandonner(std::size_t Lequel) {
  if (Fils_ && EnCours_.Numéro == Lequel) return Fils_->Arrêter();
  const auto Sien = std::ranges::find(File_, Lequel, &Travail::Numéro);
  if (Sien == File_.end()) return;
  const Achèvement Fin = std::move(Sien->Fin);
  File_.erase(Sien);
  Fin(false);
}

bool TravauxÀCôté::Abandonner() {
  if (!Fils_ && File_.empty()) return false;
  while (!File_.empty()) Abandonner(File_.back().Numéro);
  if (Fils_) Fils_->Arrêter();
  return true;
}

void TravauxÀCôté::Lancer() {
  if (Fils_ || File_.empty()) return;
  EnCours_ = std::move(File_.front());
  File_.pop_front();
  std::vector<std::string> Mots = std::move(EnCours_.Mots);
  Mots.insert(Mots.begin(), Programme_);
  Ombrey::ErreurEnAttente Échec;
  const auto Redire = [this](const std::string& Ligne) {
    EnCours_.Quoi(Ligne.substr(Ligne.starts_with(Plainte) ? Plainte.size() : 0));
  };
  if (Garder(Échec, [&] {
        Fils_ = std::make_unique<Ombrey::ProgrammeFils>(Boucle_, std::move(Mots), Redire, [this](bool EstRéussi) {
          Fils_.reset();
          Achever(EstRéussi);
        });
      }))
    return;
  EnCours_.Quoi(Échec.Texte());
  Achever(false);
}

void TravauxÀCôté::Achever(bool EstRéussi) {
  const Achèvement Fin = std::move(EnCours_.Fin);
  Lancer();
  Fin(EstRéussi);
}

}  // namespace Tarvel
