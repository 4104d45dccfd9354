// A tap on the line.
#include "platform/serial/traced_port.h"

#include <chrono>
#include <cstdint>
#include <utility>

#include "contracts/octets.h"
#include "platform/serial/line_messages.h"

namespace Ombrey {
namespace {

using Robinet = std::shared_ptr<LecteurLiaison>;

class ClientTracé final : public IClientPortComm {
 public:
  ClientTracé(std::shared_ptr<IClientPortComm> Client, Robinet Témoin)
      : Client_(std::move(Client)), Témoin_(std::move(Témoin)) {}

  void FixerNomPort(const std::string& Nom) override { Client_->FixerNomPort(Nom); }
  bool Configurer(const std::string& FichierIni, const std::string& Section) override {
    return Client_->Configurer(FichierIni, Section);
  }
  void Lecture(const Octets& Texte) override {
    Témoin_->Reçus(Texte, InstantLiaison::Présent());
    Client_->Lecture(Texte);
  }
  void ÉtatLiaison(const std::string& Texte, bool Présente) override {
    Témoin_->Événement(Texte, !Présente, InstantLiaison::Présent());
    Client_->ÉtatLiaison(Texte, Présente);
  }

 private:
  std::shared_ptr<IClientPortComm> Client_;
  Robinet Témoin_;
};

class PortTracé final : public IPortComm {
 public:
  PortTracé(std::shared_ptr<IPortComm> Port, std::string Nom, Robinet Témoin)
      : Port_(std::move(Port)), Nom_(std::move(Nom)), Témoin_(std::move(Témoin)) {}
  PortTracé(const PortTracé&) = delete;
  PortTracé& operator=(const PortTracé&) = delete;
  ~PortTracé() override { Témoin_->Clore(InstantLiaison::Présent()); }

  void FixerNomPort(const std::string& Nom) override { Port_->FixerNomPort(Nom_ = Nom); }
  void FixerBauds(std::int16_t Bauds) override { Port_->FixerBauds(Bauds); }
  void FixerTailleMots(std::int16_t Bits) override { Port_->FixerTailleMots(Bits); }
  void FixerParité(const std::string& Parité) override { Port_->FixerParité(Parité); }
  void FixerBitsStop(std::int16_t Bits) override { Port_->FixerBitsStop(Bits); }
  void FixerMode(std::int16_t Mode) override { Port_->FixerMode(Mode); }
  void Activer(bool Actif) override { Port_->Activer(Actif); }
  void FixerDossierA(const std::string& Dossier) override { Port_->FixerDossierA(Dossier); }
  void FixerDossierB(const std::string& Dossier) override { Port_->FixerDossierB(Dossier); }
  [[nodiscard]] std::string DernièreErreurPort() const override { return Port_->DernièreErreurPort(); }
  [[nodiscard]] std::chrono::milliseconds SilenceFinMessage() const override { return Port_->SilenceFinMessage(); }
  bool Configurer(const std::string& FichierIni, const std::string& Section) override {
    return Port_->Configurer(FichierIni, Section);
  }

  bool Ouvrir() override {
    const bool Ouvert = Port_->Ouvrir();
    const std::string Texte = Ouvert ? "Le port " + Nom_ + " est ouvert." : Port_->DernièreErreurPort();
    Témoin_->Événement(Texte, !Ouvert, InstantLiaison::Présent());
    return Ouvert;
  }
  void Fermer() override {
    Port_->Fermer();
    Témoin_->Événement("Le port " + Nom_ + " est fermé.", false, InstantLiaison::Présent());
  }
  void Relever() override { Port_->Relever(); }
  bool Lire(Octets& Texte) override {
    const bool Drapeau = Port_->Lire(Texte);
    if (!Texte.EstVide()) Témoin_->Reçus(Texte, InstantLiaison::Présent());
    return Drapeau;
  }
  /// The loop runs meanwhile: the port may be closed and dropped, and a second writing is refused.
  bool Ecrire(const Octets& Texte) override {
    const auto Port = Port_;
    if (Témoin_->EstEnÉmission()) return Port->Ecrire(Texte);
    Émission Dite{Témoin_, Texte};
    Témoin_->DébutÉmission(InstantLiaison::Présent());
    const bool Parti = Port->Ecrire(Dite.Texte);
    Dite.Refus = Parti ? "" : Port->DernièreErreurPort();
    return Parti;
  }

 private:
  /// One writing, told when it is over, however it ends.
  struct Émission {
    Robinet Témoin;
    Octets Texte;
    std::string Refus = "l'envoi a été interrompu.";
    ~Émission() { Témoin->FinÉmission(Texte, InstantLiaison::Présent(), Refus); }
  };

  std::shared_ptr<IPortComm> Port_;
  std::string Nom_;
  Robinet Témoin_;
};

}  // namespace

std::shared_ptr<IPortComm> ServeurPortTracé::ObtenirPort(const std::string& Nom,
                                                         std::shared_ptr<IClientPortComm> Client) {
  if (!Client) return Serveur_->ObtenirPort(Nom, nullptr);
  const auto Témoin = std::make_shared<LecteurLiaison>(
      [Journal = &Journal_](MessageLiaison Message) { Journal->Ajouter(std::move(Message)); });
  auto Port = Serveur_->ObtenirPort(Nom, std::make_shared<ClientTracé>(std::move(Client), Témoin));
  return Port ? std::make_shared<PortTracé>(std::move(Port), Nom, Témoin) : nullptr;
}

}  // namespace Ombrey
