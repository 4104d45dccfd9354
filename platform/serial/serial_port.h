// The port on a serial device: settings, receiving in bursts, writing at the line's pace, reopening.
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "contracts/octets.h"
#include "contracts/port.h"
#include "contracts/system.h"
#include "platform/loop/loop.h"
#include "platform/loop/witnesses.h"
#include "platform/serial/burst.h"
#include "platform/serial/device_tree.h"
#include "platform/serial/line_device.h"
#include "platform/serial/line_settings.h"
#include "platform/serial/port_settings.h"

namespace Ombrey {

/// What ports need of the program that makes them. Boucle and Questionnaire outlive every port.
struct ContextePort {
  IBoucle& Boucle;
  std::function<std::unique_ptr<ILecteurIni>()> CréerLecteurIni;
  IQuestionnairePort* Questionnaire = nullptr;  ///< none: the settings can't be changed by Configurer
  RacinesSystème Racines{};
  TémoinEnvoi Envoi{};  ///< asked again and again while a long text leaves; may be none
};

/// Made by ServeurPortComm. Received characters reach Client within a pump; Lire therefore never has any. Anything can
/// be called from within the pump of a running Ecrire; a second Ecrire is refused there.
class PortSérie final : public IPortComm, public std::enable_shared_from_this<PortSérie> {
 public:
  PortSérie(ContextePort Contexte, std::string Nom, std::shared_ptr<IClientPortComm> Client);

  void FixerNomPort(const std::string& Nom) override { Nom_ = Nom; }
  void FixerBauds(std::int16_t Bauds) override { Demandés_.Bauds = Bauds; }
  void FixerTailleMots(std::int16_t Bits) override { Demandés_.Bits = Bits; }
  void FixerParité(const std::string& Parité) override { Demandés_.Parité = Parité; }
  void FixerBitsStop(std::int16_t Bits) override { Demandés_.BitsStop = Bits; }
  void FixerMode(std::int16_t) override {}
  void Activer(bool) override {}
  void FixerDossierA(const std::string&) override {}
  void FixerDossierB(const std::string&) override {}
  [[nodiscard]] std::string DernièreErreurPort() const override { return Erreur_; }
  bool Ouvrir() override;
  bool Ecrire(const Octets& Texte) override;
  bool Lire(Octets& Texte) override;
  void Relever() override;
  [[nodiscard]] std::chrono::milliseconds SilenceFinMessage() const override { return Rafale_.Silence(); }
  void Fermer() override;
  bool Configurer(const std::string& FichierIni, const std::string& Section) override;

 private:
  using Temps = std::chrono::steady_clock;
  struct Envoi;

  bool Échouer(const std::string& Texte);
  bool ÉchouerFermé() { return Échouer("Le port " + Nom_ + " a été fermé pendant l'envoi."); }
  [[nodiscard]] AdressePort Adresse() const;
  bool Rouvrir();
  bool Prendre();
  void Reconnaître(const std::filesystem::path& Entrée);
  void Libérer();
  void Perdre(int Numéro);
  void Recevoir();
  void CloreRafale();
  void ArmerSilence();
  void FinSilence();
  bool LireAppareil();
  void Livrer();
  bool Envoyer(Envoi& Travail);
  bool Céder(const Envoi& Travail);
  void Remettre(Envoi& Travail);
  void LaisserPartir() const;
  [[nodiscard]] bool EstArrêté(const Envoi& Travail) const;

  ContextePort Contexte_;
  std::string Nom_;
  std::shared_ptr<IClientPortComm> Client_;
  RéglagesDemandés Demandés_;
  std::string Erreur_;
  bool Perdu_ = false;  ///< the client was told of a loss, and not yet of the return
  bool Voulu_ = false;  ///< Ouvrir was called, and Fermer wasn't since: Ecrire opens the port when it isn't

  std::unique_ptr<AppareilLiaison> Appareil_;
  std::string Signalement_;    ///< of the device that Ouvrir took: a lost port is opened again as this one alone
  std::string Prise_;          ///< its description with the socket, which alone tells it from a copy with its number
  std::uint64_t Session_ = 0;  ///< changes each time that the device is released
  std::chrono::nanoseconds TempsCaractère_{};
  Temps::time_point FinDeLigne_{};  ///< when all that was handed over has left, by the line's own account
  bool EnvoiEnCours_ = false;
  IBoucle::Jeton Veille_;
  IBoucle::Jeton Silence_;
  Rafale Rafale_{std::chrono::nanoseconds(0)};
  std::deque<Octets> Closes_;  ///< bursts on their way to the client
};

}  // namespace Ombrey
