// A tap on the line: a port server whose ports tell what passes.
#pragma once

#include <memory>
#include <string>
#include <utility>

#include "contracts/port.h"
#include "platform/serial/line_journal.h"

namespace Ombrey {

/// Hands everything on to another server and its ports, and tells the journal, which must outlive them.
class ServeurPortTracé final : public IServeurPortComm {
 public:
  ServeurPortTracé(std::shared_ptr<IServeurPortComm> Serveur, JournalLiaison& Journal)
      : Serveur_(std::move(Serveur)), Journal_(Journal) {}
  [[nodiscard]] std::shared_ptr<IPortComm> ObtenirPort(const std::string& Nom,
                                                       std::shared_ptr<IClientPortComm> Client) override;
  [[nodiscard]] std::string ErreurServeur() const override { return Serveur_->ErreurServeur(); }

 private:
  std::shared_ptr<IServeurPortComm> Serveur_;
  JournalLiaison& Journal_;
};

}  // namespace Ombrey
