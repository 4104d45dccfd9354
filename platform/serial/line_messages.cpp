// What passes on the line, cut into messages.
#include "platform/serial/line_messages.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

#include "contracts/line_protocol.h"
#include "platform/serial/message_text.h"

namespace Ombrey {
namespace {

using namespace std::chrono_literals;

/// What comes in this time behind the station's own patience may still have been in time for it.
constexpr auto Sursis = 100ms;
/// Behind such a silence begins what is another message, when nobody waits for any.
constexpr auto Coupure = 200ms;
constexpr std::size_t RetenusMax = 64 * std::size_t{1024};

/// What dropped bytes are called, by their reason.
constexpr std::array<const char*, 4> NomsRejet = {"", "bruit", "personne ne l'attendait", "trame coupée"};

bool EstRéponse(char Octet) { return Octet == ACK || Octet == NAK; }

}  // namespace

void LecteurLiaison::Attendre(Attendu Quoi, InstantLiaison Depuis) {
  Attendu_ = Quoi;
  Échéance_ = Depuis.Depuis + DélaiRéponse + Sursis;
}

void LecteurLiaison::DébutÉmission(InstantLiaison Quand) {
  Clore(Quand);
  EnÉmission_ = true;
}

void LecteurLiaison::FinÉmission(const Octets& Texte, InstantLiaison Quand, const std::string& Refus) {
  EnÉmission_ = false;
  // Whoever answers has heard it.
  if (!Reçus_.empty()) Quand = Reçus_.front().Quand;
  const std::string_view Dit = Texte.Bruts();
  const char Premier = Dit.empty() ? '\0' : Dit[0];
  if (Premier == ENQ && Dit.size() == LongRéponse) Code_ = Dit[1];
  const Récit Lue = LireDeStation(Texte, Code_);
  if (Refus.empty()) {
    Donner_({Quand, MessageLiaison::Source::Station, Texte, Lue.Texte, Lue.Faute});
    if (Premier == ENQ) Attendre(Attendu::RéponseÀDemande, Quand);
    if (Premier == STX) Attendre(Attendu::RéponseÀTrame, Quand);
  } else {
    Événement("envoi manqué (" + Lue.Texte + ") : " + Refus, true, Quand);
  }
  Lire();
}

void LecteurLiaison::Reçus(const Octets& Texte, InstantLiaison Quand) {
  const bool SansAttente = !EnÉmission_ && (Attendu_ == Attendu::Rien || Quand.Depuis > Échéance_);
  if (SansAttente && !Reçus_.empty() && Quand.Depuis - Reçus_.back().Quand.Depuis > Coupure) JeterReste();
  for (const char Octet : Texte.Bruts()) Reçus_.push_back({Octet, Quand});
  if (!EnÉmission_) Lire();
  if (Reçus_.size() > RetenusMax) JeterReste();
}

void LecteurLiaison::Événement(const std::string& Texte, bool Faute, InstantLiaison Quand) {
  Donner_({Quand, MessageLiaison::Source::Port, {}, Texte, Faute});
}

void LecteurLiaison::Clore(InstantLiaison Quand) {
  const bool Muet = Reçus_.empty() && Attendu_ != Attendu::Rien && Quand.Depuis + Sursis > Échéance_;
  JeterReste();
  if (Muet) Donner_({Quand, MessageLiaison::Source::Terminal, {}, "pas de réponse", true});
  Attendu_ = Attendu::Rien;
}

void LecteurLiaison::Lire() {
  while (!Reçus_.empty() && LireUn()) {
  }
}

bool LecteurLiaison::LireUn() {
  if (Attendu_ != Attendu::Rien && Reçus_.front().Quand.Depuis > Échéance_) Attendu_ = Attendu::Rien;
  switch (Attendu_) {
    case Attendu::Rien:
      return false;
    case Attendu::RéponseÀDemande:
      return LireRéponseÀDemande();
    case Attendu::Chargement:
      return LireChargement();
    case Attendu::RéponseÀTrame:
      break;
  }
  if (JeterDevant(EstRéponse)) return true;
  const Récit Lue = LireRéponseÀTrame(Octets(1, Reçus_.front().Octet));
  Attendu_ = Attendu::Rien;
  Donner(1, Lue.Texte, Lue.Faute);
  return true;
}

/// A message is found anywhere in what has come; true when something stood ahead of it, which is dropped.
bool LecteurLiaison::JeterDevant(bool (*Commence)(char)) {
  const auto Début = std::ranges::find_if(Reçus_, Commence, &Reçu::Octet);
  if (Début == Reçus_.begin()) return false;
  Jeter(static_cast<std::size_t>(Début - Reçus_.begin()), Rejet::Bruit);
  return true;
}

bool LecteurLiaison::LireRéponseÀDemande() {
  if (JeterDevant(EstRéponse)) return true;
  if (Reçus_.size() < LongRéponse) return false;
  if (Reçus_[1].Octet != Code_) {
    Jeter(EstRéponse(Reçus_[1].Octet) ? 1 : LongRéponse, Rejet::Périmée);
    return true;
  }
  const bool Accord = Reçus_[0].Octet == ACK;
  const Récit Lue = Ombrey::LireRéponseÀDemande(Octets(std::string{Reçus_[0].Octet, Code_}));
  if (Accord && Code_ == CodeDemande[0])
    Attendre(Attendu::Chargement, Reçus_[1].Quand);
  else
    Attendu_ = Attendu::Rien;
  Donner(LongRéponse, Lue.Texte, Lue.Faute);
  return true;
}

bool LecteurLiaison::LireChargement() {
  if (JeterDevant([](char Octet) { return Octet == STX; })) return true;
  if (Reçus_.size() < LongTrameChargement) return false;
  std::string Trame;
  for (std::size_t Rang = 0; Rang < LongTrameChargement; ++Rang) Trame += Reçus_[Rang].Octet;
  const Récit Lue = LireTrameChargement(Octets(Trame));
  Attendu_ = Attendu::Rien;
  Donner(LongTrameChargement, Lue.Texte, Lue.Faute);
  return true;
}

/// What is still there when nothing more can come of it.
void LecteurLiaison::JeterReste() {
  if (Reçus_.empty()) return;
  const bool Parle =
      std::ranges::any_of(Reçus_, [](const Reçu& Un) { return EstRéponse(Un.Octet) || Un.Octet == STX; });
  const Rejet SansAttente = Parle ? Rejet::Périmée : Rejet::Bruit;
  Jeter(Reçus_.size(), Attendu_ == Attendu::Chargement ? Rejet::Coupée : SansAttente);
}

Octets LecteurLiaison::Retirer(std::size_t Nombre) {
  std::string Pris;
  for (std::size_t Rang = 0; Rang < Nombre; ++Rang) Pris += Reçus_[Rang].Octet;
  Reçus_.erase(Reçus_.begin(), Reçus_.begin() + static_cast<std::ptrdiff_t>(Nombre));
  return Octets(Pris);
}

void LecteurLiaison::Donner(std::size_t Nombre, std::string Texte, bool Faute) {
  const InstantLiaison Quand = Reçus_.front().Quand;
  Donner_({Quand, MessageLiaison::Source::Terminal, Retirer(Nombre), std::move(Texte), Faute});
}

void LecteurLiaison::Jeter(std::size_t Nombre, Rejet Raison) {
  const auto Rang = static_cast<std::size_t>(Raison);
  Quantité& Total = Jetés_[Rang];
  Total.Octets += Nombre;
  ++Total.Fois;
  const InstantLiaison Quand = Reçus_.front().Quand;
  const std::string Texte = "jeté, " + std::string(NomsRejet[Rang]) + " : " + std::to_string(Nombre) +
                            (Nombre == 1 ? " octet" : " octets") + " (" + std::to_string(Total.Octets) + " en " +
                            std::to_string(Total.Fois) + " fois depuis le démarrage)";
  Donner_({Quand, MessageLiaison::Source::Terminal, Retirer(Nombre), Texte, true, Raison});
}

}  // namespace Ombrey
