// The terminal's side of a trace, said again.
#pragma once

#include <chrono>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "terminal/engine.h"
#include "terminal/trace.h"

namespace Rg80 {

/// Waits for each message of the station in its turn, says behind it what the terminal said then, at the same distance
/// in time, and announces where the station says something else. How often the station asks in vain for a load between
/// two dialogues doesn't count. A request that the trace hasn't is served as a terminal does: there is no load, and a
/// frame is taken. So is what the station goes on to say where the line was broken then, or it was stopped: this can't
/// be compared, and is counted apart.
class Rejeu final : public IInterlocuteur {
 public:
  /// Messages: at least one. Suite must outlive the object. AutreBase: others have worked on the station's base, and
  /// neither the figures that it sends nor that it takes or refuses a load can be compared; they are counted apart.
  Rejeu(std::vector<MessageTracé> Messages, ISuite& Suite, bool AutreBase = false);

  void Recevoir(std::string_view Octets, Instant Maintenant) override;
  void Avancer(Instant Maintenant) override;
  [[nodiscard]] std::optional<Instant> ProchaineÉchéance() const override;
  /// Behind the last message, or when the station has said nothing of what it should for two minutes.
  [[nodiscard]] std::optional<Instant> MomentDeFin() const override { return Fin_; }

  /// Announces the sum. True when the whole trace was said, and the station said its part of it.
  [[nodiscard]] bool Terminer();

 private:
  struct Envoi {
    Instant Départ;
    std::string Octets;
    bool EstÀUnAutre = false;
  };

  void Commencer(Instant Maintenant);
  void Examiner(Instant Maintenant, bool Complet);
  [[nodiscard]] std::size_t LongueurMessage(bool Complet) const;
  void Traiter(const std::string& Message, Instant Maintenant);
  void TraiterDemande(const std::string& Message, Instant Maintenant);
  void Improviser(const std::string& Message, Instant Maintenant);
  void Suivre(std::size_t Rang, Instant Maintenant);
  void Prévoir(std::size_t Rang, std::chrono::milliseconds Base, Instant Maintenant);
  void Dire(Instant Départ, const std::string& Octets, bool EstÀUnAutre = false);
  void Différer(const std::string& Message);
  [[nodiscard]] std::size_t Station(std::size_t Rang) const;
  [[nodiscard]] std::size_t Trouver(const std::string& Octets) const;
  [[nodiscard]] bool EstRelevéVain(std::size_t Rang) const;
  [[nodiscard]] bool EstDeLOpérateur() const;
  [[nodiscard]] bool EstCopieDouteuse(std::size_t Rang) const;
  [[nodiscard]] bool EstDeLaBase(const std::string& Message) const;
  [[nodiscard]] std::string Lieu() const;

  std::vector<MessageTracé> Messages_;
  ISuite& Suite_;
  std::size_t Rang_ = 0;           // of the station's next message; the number of messages: there is none
  std::string Dernier_;            // what the station said last in the trace
  std::string Offert_, Acquitté_;  // the load's frame said last, and the one that the station here has acknowledged
  std::string Reçus_;
  Instant DernierOctet_{};
  std::deque<Envoi> Envois_;
  std::optional<Instant> Abandon_;  // when the wait for the next message is given up
  std::optional<Instant> Fin_;
  std::size_t Entendus_ = 0;
  std::size_t Différences_ = 0;
  std::size_t DeLaBase_ = 0;      // differences that another base explains
  std::size_t HorsDialogue_ = 0;  // what was said while Écartée_
  bool Commencé_ = false;
  bool Improvise_ = false;  // the last request was none of the trace
  bool AutreBase_;
  bool Écartée_ = false;  // a break, a copy or the base has parted the station from the next message of the trace
};

}  // namespace Rg80
