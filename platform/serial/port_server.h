// The port server, and the client object by which a port reports.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "contracts/octets.h"
#include "contracts/port.h"
#include "platform/serial/serial_port.h"

namespace Ombrey {

class ServeurPortComm final : public IServeurPortComm {
 public:
  explicit ServeurPortComm(ContextePort Contexte) : Contexte_(std::move(Contexte)) {}
  [[nodiscard]] std::shared_ptr<IPortComm> ObtenirPort(const std::string& Nom,
                                                       std::shared_ptr<IClientPortComm> Client) override;
  [[nodiscard]] std::string ErreurServeur() const override { return Erreur_; }

 private:
  ContextePort Contexte_;
  std::string Erreur_;
};

/// Its handler may drop the object.
class ClientPortComm final : public IClientPortComm {
 public:
  using Gestionnaire = std::function<void(const Octets&)>;
  using GestionnaireÉtat = std::function<void(const std::string&, bool)>;

  ClientPortComm(ContextePort Contexte, Gestionnaire Lecture, GestionnaireÉtat État);
  void FixerNomPort(const std::string&) override {}
  void Lecture(const Octets& Texte) override;
  void ÉtatLiaison(const std::string& Texte, bool Présente) override;
  bool Configurer(const std::string& FichierIni, const std::string& Section) override;

 private:
  ContextePort Contexte_;
  std::shared_ptr<const Gestionnaire> Lecture_;
  std::shared_ptr<const GestionnaireÉtat> État_;
};

}  // namespace Ombrey
