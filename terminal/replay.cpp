// The terminal's side of a trace, said again.
#include "terminal/replay.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "terminal/frame.h"

namespace Rg80 {

namespace {

using namespace std::chrono_literals;

constexpr auto Patience = 120s;
// A message that isn't whole by then is what it is.
constexpr auto SilenceMessage = 1s;
// The last bytes are still on their way to the station.
constexpr auto Adieu = 500ms;

constexpr char CodeChargement = 'A';

bool SuitRupture(const MessageTracé& Un) { return Un.Avant != MessageTracé::Rupture::Aucune; }

bool EstDemande(std::string_view Message) { return Message.size() == 2 && Message[0] == ENQ; }

// For a person: the whole of what is short, and what stands around the first difference of what is long.
std::string Montrer(std::string_view Message, std::size_t Différence) {
  constexpr std::size_t Long = 70;
  constexpr std::size_t Devant = 10;
  constexpr std::size_t Montrés = 40;
  if (Message.size() <= Long) return "« " + Lisible(Message) + " »";
  const std::size_t Début = std::min(Différence < Devant ? 0 : Différence - Devant, Message.size() - Montrés);
  return "« …" + Lisible(Message.substr(Début, Montrés)) + "… » (" + std::to_string(Message.size()) + " octets)";
}

}  // namespace

Rejeu::Rejeu(std::vector<MessageTracé> Messages, ISuite& Suite, bool AutreBase)
    : Messages_(std::move(Messages)), Suite_(Suite), AutreBase_(AutreBase) {}

void Rejeu::Recevoir(std::string_view Octets, Instant Maintenant) {
  Commencer(Maintenant);
  Reçus_ += Octets;
  DernierOctet_ = Maintenant;
  Examiner(Maintenant, false);
}

// What the trace begins with counts from here.
void Rejeu::Commencer(Instant Maintenant) {
  if (!std::exchange(Commencé_, true)) Prévoir(0, Messages_.front().Quand, Maintenant);
}

void Rejeu::Avancer(Instant Maintenant) {
  Commencer(Maintenant);
  if (!Reçus_.empty() && Maintenant >= DernierOctet_ + SilenceMessage) Examiner(Maintenant, true);
  while (!Envois_.empty() && Envois_.front().Départ <= Maintenant) {
    Suite_.Consigner(Sens::Émis, Envois_.front().Octets);
    Suite_.Émettre(Envois_.front().Octets);
    Envois_.pop_front();
  }
  if (Rang_ == Messages_.size() && Envois_.empty() && !Fin_) Fin_ = Maintenant + Adieu;
  if (!Fin_ && Abandon_ && Maintenant >= *Abandon_) {
    Suite_.Annoncer("différence " + Lieu() + " : la station ne dit plus " + Montrer(Messages_[Rang_].Octets, 0) + ".");
    ++Différences_;
    Fin_ = Maintenant;
  }
}

std::optional<Instant> Rejeu::ProchaineÉchéance() const {
  std::optional<Instant> Première = Commencé_ ? Abandon_ : Instant{};
  const auto Retenir = [&Première](Instant Autre) {
    if (!Première || Autre < *Première) Première = Autre;
  };
  if (!Envois_.empty()) Retenir(Envois_.front().Départ);
  if (!Reçus_.empty()) Retenir(DernierOctet_ + SilenceMessage);
  return Première;
}

void Rejeu::Examiner(Instant Maintenant, bool Complet) {
  for (std::size_t Longueur = 0; !Reçus_.empty() && (Longueur = LongueurMessage(Complet)) > 0;) {
    const std::string Message = Reçus_.substr(0, Longueur);
    Reçus_.erase(0, Longueur);
    Suite_.Consigner(Sens::Reçu, Message);
    Traiter(Message, Maintenant);
  }
}

// Of the message at the head of what has come; 0 while it isn't whole. What is awaited is known by its bytes.
std::size_t Rejeu::LongueurMessage(bool Complet) const {
  const std::string_view Attendu = Rang_ < Messages_.size() ? Messages_[Rang_].Octets : std::string_view();
  if (!Attendu.empty() && Reçus_.starts_with(Attendu)) return Attendu.size();
  if (Complet) return Reçus_.size();
  if (Attendu.starts_with(Reçus_)) return 0;
  if (Reçus_[0] == ENQ) return Reçus_.size() < 2 ? 0 : 2;
  if (Reçus_[0] != STX) return 1;
  const std::size_t Fin = Reçus_.find(ETX);
  return Fin == std::string::npos || Fin + NombreCaractèresChecksum >= Reçus_.size()
             ? 0
             : Fin + 1 + NombreCaractèresChecksum;
}

void Rejeu::Traiter(const std::string& Message, Instant Maintenant) {
  ++Entendus_;
  // Of a line just taken over the station hears first what comes unasked. The one here has gone on, asks earlier, and
  // would take it for its answer.
  if (EstDemande(Message)) HorsDialogue_ += std::erase_if(Envois_, [](const Envoi& Un) { return Un.EstÀUnAutre; });
  if (Message[0] == ACK) Acquitté_ = Offert_;
  const bool AuBout = Rang_ == Messages_.size();
  if (!AuBout && Message == Messages_[Rang_].Octets) return Suivre(Rang_, Maintenant);
  if (EstDemande(Message)) return TraiterDemande(Message, Maintenant);
  if (AuBout || EstDemande(Messages_[Rang_].Octets)) {
    if (!Improvise_) Différer(Message);
    if (Message[0] == STX) Dire(Maintenant, std::string(1, ACK));
    return;
  }
  const bool DeLaBase = EstDeLaBase(Message);
  if (DeLaBase)
    ++DeLaBase_;
  else
    Différer(Message);
  const bool EstTrame = Message[0] == STX;
  if (EstTrame == (Messages_[Rang_].Octets[0] == STX)) Suivre(Rang_, Maintenant);
  // A load that was refused then brings a reply now, and the other way round.
  if (DeLaBase && !EstTrame) Écartée_ = true;
}

// A request that isn't the awaited message. How often the station asks in vain is its own affair, and what the operator
// did then he does in his own time.
void Rejeu::TraiterDemande(const std::string& Message, Instant Maintenant) {
  const bool EstRelevé = Message == Paire(ENQ, CodeChargement);
  if (Écartée_ && !EstRelevé) {
    Différer(Message);
    return Improviser(Message, Maintenant);
  }
  const std::size_t Plus = Trouver(Message);
  std::size_t Vains = Rang_;
  while (Vains < Plus && EstRelevéVain(Vains)) Vains = Station(Vains + 1);
  if (Vains == Plus && Plus < Messages_.size()) return Suivre(Plus, Maintenant);
  if (EstRelevé && (Rang_ == Messages_.size() || EstDeLOpérateur())) return Improviser(Message, Maintenant);
  Différer(Message);
  if (EstRelevé && Plus < Messages_.size()) return Suivre(Plus, Maintenant);
  Improviser(Message, Maintenant);
}

// As a terminal that has no load and takes files.
void Rejeu::Improviser(const std::string& Message, Instant Maintenant) {
  Improvise_ = true;
  Dire(Maintenant, Paire(Message[1] == CodeChargement ? NAK : ACK, Message[1]));
}

// The station's next message at this place or behind it; the number of messages when there is none.
std::size_t Rejeu::Station(std::size_t Rang) const {
  while (Rang < Messages_.size() && !Messages_[Rang].EstDeStation) ++Rang;
  return Rang;
}

// The same, with these bytes.
std::size_t Rejeu::Trouver(const std::string& Octets) const {
  std::size_t Rang = Rang_;
  while (Rang < Messages_.size() && Messages_[Rang].Octets != Octets) Rang = Station(Rang + 1);
  return Rang;
}

bool Rejeu::EstRelevéVain(std::size_t Rang) const {
  return Messages_[Rang].Octets == Paire(ENQ, CodeChargement) && Station(Rang + 1) <= Rang + 2 &&
         Rang + 1 < Messages_.size() && Messages_[Rang + 1].Octets == Paire(NAK, CodeChargement);
}

// A link test, or a file; the reply behind a load's ACK is the station's own, and so is another try behind a NAK.
bool Rejeu::EstDeLOpérateur() const {
  const std::string& Attendu = Messages_[Rang_].Octets;
  const bool EstReprise = Rang_ >= 2 && Messages_[Rang_ - 1].Octets == std::string(1, EOT) &&
                          Messages_[Rang_ - 2].Octets == std::string(1, NAK);
  if (EstReprise) return false;
  return EstDemande(Attendu) && Attendu[1] != CodeChargement &&
         (Attendu[1] != CodeRéponse || Dernier_ != std::string(1, ACK));
}

// The station has said the message at this place: what the terminal said behind it follows.
void Rejeu::Suivre(std::size_t Rang, Instant Maintenant) {
  Improvise_ = false;
  Dernier_ = Messages_[Rang].Octets;
  Prévoir(Rang + 1, Messages_[Rang].Quand, Maintenant);
}

void Rejeu::Prévoir(std::size_t Rang, std::chrono::milliseconds Base, Instant Maintenant) {
  Rang_ = Station(Rang);
  Écartée_ = Rang_ < Messages_.size() && SuitRupture(Messages_[Rang_]);
  for (; Rang < Rang_; ++Rang) {
    // A station that has just started doubts an answer that such a one follows; the one here may not.
    Écartée_ |= SuitRupture(Messages_[Rang]) || EstCopieDouteuse(Rang) || Messages_[Rang].EstÀUnAutre;
    if (Messages_[Rang].Octets[0] == STX) Offert_ = Messages_[Rang].Octets;
    Dire(Maintenant + std::max(Messages_[Rang].Quand - Base, 0ms), Messages_[Rang].Octets, Messages_[Rang].EstÀUnAutre);
  }
  Abandon_.reset();
  if (Rang_ == Messages_.size()) return;
  Abandon_ = Maintenant + std::max(Messages_[Rang_].Quand - Base, 0ms) + Patience;
  if (EstDeLOpérateur()) Suite_.Annoncer("attendu de l'opérateur : " + Montrer(Messages_[Rang_].Octets, 0));
}

// In the order of the trace, whatever the distances.
void Rejeu::Dire(Instant Départ, const std::string& Octets, bool EstÀUnAutre) {
  Envois_.push_back({Envois_.empty() ? Départ : std::max(Départ, Envois_.back().Départ), Octets, EstÀUnAutre});
}

// A load that the station here has acknowledged already. Behind a break the one that was stopped trusts its line less
// than the one that wasn't, or the other way round: either may leave a copy without an answer.
bool Rejeu::EstCopieDouteuse(std::size_t Rang) const {
  return Messages_[Rang].Octets == Acquitté_ &&
         std::any_of(Messages_.begin(), Messages_.begin() + static_cast<std::ptrdiff_t>(Rang), SuitRupture);
}

// The figures of a whole reply, and the answer to a load.
bool Rejeu::EstDeLaBase(const std::string& Message) const {
  const std::string& Attendu = Messages_[Rang_].Octets;
  if (!AutreBase_) return false;
  if (Message[0] != STX) return Attendu[0] == ACK || Attendu[0] == NAK;
  const std::string_view Texte = std::string_view(Message).substr(1, Attendu.size() - SurcoûtTrame);
  return Attendu[0] == STX && Dernier_ == Paire(ENQ, CodeRéponse) && Message == Encadrer(Texte) &&
         Texte.find_first_not_of("0123456789") == std::string_view::npos;
}

void Rejeu::Différer(const std::string& Message) {
  // A terminal that goes with its last answer leaves no line for the EOT behind it.
  const bool EstClôture = Rang_ == Messages_.size() && Message[0] == EOT && Messages_.back().Octets[0] == ACK;
  if (Écartée_ || EstClôture) {
    ++HorsDialogue_;
    return;
  }
  ++Différences_;
  if (Rang_ == Messages_.size())
    return Suite_.Annoncer("différence au bout de la trace : la station dit en plus " + Montrer(Message, 0) + ".");
  const std::string& Attendu = Messages_[Rang_].Octets;
  const auto [Ici, Là] = std::ranges::mismatch(Message, Attendu);
  const auto Place = static_cast<std::size_t>(Ici - Message.begin());
  Suite_.Annoncer("différence " + Lieu() + " : la station dit " + Montrer(Message, Place) + " au lieu de " +
                  Montrer(Attendu, Place) + ".");
}

std::string Rejeu::Lieu() const {
  return "à " + Messages_[Rang_].Heure + " (ligne " + std::to_string(Messages_[Rang_].Ligne) + " de la trace)";
}

bool Rejeu::Terminer() {
  if (!Fin_) Suite_.Annoncer("le rejeu a été interrompu.");
  if (HorsDialogue_ > 0)
    Suite_.Annoncer("non comparés, la ligne ou la station s'était arrêtée là : " + std::to_string(HorsDialogue_));
  if (DeLaBase_ > 0)
    Suite_.Annoncer("chiffres, accords et refus qui tiennent à l'autre base, non comptés : " +
                    std::to_string(DeLaBase_));
  Suite_.Annoncer("rejeu : messages de la station " + std::to_string(Entendus_) + ", différences " +
                  std::to_string(Différences_));
  return Fin_ && Différences_ == 0;
}

}  // namespace Rg80
