// What the station's operator is told at a glance, worked out from what the plug-in says.
#include "host/watch.h"

#include <algorithm>
#include <utility>

#include "contracts/phrases.h"

namespace Tarvel {

namespace Phrase = Ombrey::Phrase;

namespace {

/// A part of what the plug-in says, and what it tells of the link.
struct SigneLiaison {
  const char* Texte;
  SantéLiaison État;
};
constexpr SigneLiaison SignesLiaison[] = {
    {Phrase::AucunPort, SantéLiaison::SansPort},       {Phrase::PortMalRéglé, SantéLiaison::SansPort},
    {Phrase::PortRefusé, SantéLiaison::SansPort},      {Phrase::AucuneRéponse, SantéLiaison::Muette},
    {Phrase::PasDeConnexion, SantéLiaison::Muette},    {Phrase::PortEnErreur, SantéLiaison::PortEnPanne},
    {Phrase::RienÀRécupérer, SantéLiaison::Répond},    {Phrase::Communique, SantéLiaison::Répond},
    {Phrase::NouveauChargement, SantéLiaison::Répond}, {Phrase::Cumuls, SantéLiaison::Répond},
    {Phrase::ChecksumFaux, SantéLiaison::Répond},      {Phrase::PasPrêt, SantéLiaison::Répond},
};

/// A part of what the plug-in says of a load that it can't take, and what is to be done about it.
struct SigneRefus {
  const char* Texte;
  const char* ÀFaire;
  bool EstAbîmé = false;
};
constexpr const char* TrameAbîmée = "Rien d'abord : le RG80 le renvoie. Si cela dure, faire vérifier le câble.";
constexpr SigneRefus SignesRefus[] = {
    {Phrase::ChecksumFaux, TrameAbîmée, true},
    {Phrase::TropCourt, TrameAbîmée, true},
    {Phrase::ExploitationIntrouvable,
     "Vérifier au RG80 les codes du propriétaire et du récoltant, et les créer au bureau s'ils manquent."},
    {Phrase::TrameEnÉchec, RemèdeValeur},
};

constexpr Secondes Minute = 60;
constexpr Secondes Heure = 60 * Minute;

/// A sentence that goes on.
std::string SansPointFinal(const std::string& Phrase) {
  return Phrase.ends_with('.') ? Phrase.substr(0, Phrase.size() - 1) : Phrase;
}

std::string Durée(Secondes Passées) {
  if (Passées < Minute) return "moins d'une minute";
  if (Passées < Heure) return std::to_string(Passées / Minute) + " min";
  return std::to_string(Passées / Heure) + " h " + std::to_string(Passées % Heure / Minute) + " min";
}

}  // namespace

void ÉtatLiaison::Noter(Secondes Quand, const std::string& Texte) {
  for (const SigneLiaison& Signe : SignesLiaison) {
    if (Texte.find(Signe.Texte) == std::string::npos) continue;
    // The port has said itself what is wrong with it, and says so ahead of this.
    if (Signe.État != SantéLiaison::PortEnPanne) Raison_.clear();
    return Passer(Quand, Signe.État);
  }
}

void ÉtatLiaison::NoterPort(Secondes Quand, const std::string& Raison) {
  Raison_ = Raison;
  Passer(Quand, SantéLiaison::PortEnPanne);
}

void ÉtatLiaison::NoterRéponse(Secondes Quand) {
  Raison_.clear();
  Passer(Quand, SantéLiaison::Répond);
}

void ÉtatLiaison::Passer(Secondes Quand, SantéLiaison Nouvel) {
  if (std::exchange(État_, Nouvel) != Nouvel) Depuis_ = Quand;
}

std::string ÉtatLiaison::Texte(Secondes Maintenant) const {
  const std::string Depuis = " depuis " + Durée(std::max<Secondes>(0, Maintenant - Depuis_));
  switch (État_) {
    case SantéLiaison::Répond:
      return "Le RG80 répond";
    case SantéLiaison::Muette:
      return "Le RG80 est muet" + Depuis;
    case SantéLiaison::PortEnPanne:
      return (Raison_.empty() ? "Le port est en panne" : SansPointFinal(Raison_)) + " (" + Depuis.substr(1) + ")";
    case SantéLiaison::SansPort:
      return Phrase::AucunPort;
    case SantéLiaison::Suspendue:
    case SantéLiaison::Inconnue:
      break;
  }
  return "Le RG80 n'a pas encore été interrogé";
}

bool FaitsRépétés::EstLeMême(const FaitRépété& Un, const FaitRépété& Autre) const {
  return Un.Sujet == Autre.Sujet && MêmeArrivée(Un, Autre) && (Par_ == Unicité::Sujet || Un.Texte == Autre.Texte);
}

bool FaitsRépétés::Noter(const Ombrey::DateHeure& Quand, FaitRépété Fait) {
  const auto Connu = std::ranges::find_if(Faits_, [&](const FaitRépété& Un) { return EstLeMême(Un, Fait); });
  const bool EstNouveau = Connu == Faits_.end() || Connu->Partie;
  Fait.Fois = 1;
  Fait.Premier = Fait.Dernier = Quand;
  if (Connu != Faits_.end()) {
    const bool Redite = Fait.Passage > 0 && Fait.Passage == Connu->Passage;
    Fait.Fois = Connu->Fois + (Redite ? 0 : 1);
    Fait.Premier = Connu->Premier;
    if (Fait.Détail.empty()) Fait.Détail = std::move(Connu->Détail);
    if (Fait.Contenu.empty()) Fait.Contenu = std::move(Connu->Contenu);
    if (Fait.Arrivée.empty()) Fait.Arrivée = std::move(Connu->Arrivée);
    Fait.EstAbîmé = Fait.EstAbîmé && Connu->EstAbîmé;
    Faits_.erase(Connu);
  }
  Faits_.insert(Faits_.begin(), std::move(Fait));
  if (Faits_.size() > AuPlus) Faits_.pop_back();
  return EstNouveau;
}

bool FaitsRépétés::LaisserPartir(const Ombrey::DateHeure& Quand, const FaitRépété& Hormis) {
  bool EstNouveau = false;
  for (FaitRépété& Un : Faits_) {
    if (Un.Partie || EstLeMême(Un, Hormis)) continue;
    Un.Partie = Quand;
    EstNouveau = true;
  }
  return EstNouveau;
}

Refus LireRefus(const std::string& Texte) {
  for (const SigneRefus& Signe : SignesRefus) {
    const std::size_t Début = Texte.find(Signe.Texte);
    if (Début == std::string::npos) continue;
    const std::size_t Numéro = Texte.find(Phrase::DuChargement, Début);
    Refus Lu{SansNuméro, Texte.substr(Début), Signe.ÀFaire, Signe.EstAbîmé};
    if (Numéro != std::string::npos) Lu.Sujet = Texte.substr(Numéro + std::string(Phrase::DuChargement).size());
    return Lu;
  }
  return {};
}

}  // namespace Tarvel
