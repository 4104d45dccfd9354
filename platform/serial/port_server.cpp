// The port server, and the client object by which a port reports.
#include "platform/serial/port_server.h"

#include <utility>

#include "base/failures.h"
#include "contracts/octets.h"
#include "contracts/port.h"
#include "platform/serial/port_dialogue.h"

namespace Ombrey {

std::shared_ptr<IPortComm> ServeurPortComm::ObtenirPort(const std::string& Nom,
                                                        std::shared_ptr<IClientPortComm> Client) {
  Erreur_.clear();
  try {
    static_cast<void>(CheminDuPort(Nom));
  } catch (const ErreurExécution& Erreur) {
    Erreur_ = Erreur.what();
    return nullptr;
  }
  if (!Client) {
    Erreur_ = "Le port " + Nom + " n'a pas de destinataire pour les caractères reçus.";
    return nullptr;
  }
  return std::make_shared<PortSérie>(Contexte_, Nom, std::move(Client));
}

ClientPortComm::ClientPortComm(ContextePort Contexte, Gestionnaire Lecture, GestionnaireÉtat État)
    : Contexte_(std::move(Contexte)),
      Lecture_(std::make_shared<const Gestionnaire>(std::move(Lecture))),
      État_(std::make_shared<const GestionnaireÉtat>(std::move(État))) {}

void ClientPortComm::Lecture(const Octets& Texte) {
  const auto Tenu = Lecture_;
  (*Tenu)(Texte);
}

void ClientPortComm::ÉtatLiaison(const std::string& Texte, bool Présente) {
  const auto Tenu = État_;
  (*Tenu)(Texte, Présente);
}

bool ClientPortComm::Configurer(const std::string& FichierIni, const std::string& Section) {
  return ConfigurerPort(Contexte_, FichierIni, Section, [](const std::string&) {});
}

}  // namespace Ombrey
