// A look at the base that another station, or the service, works on.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "host/edition.h"
#include "host/guarded_loop.h"
#include "host/options.h"
#include "platform/database/connection.h"
#include "platform/loop/loop.h"
#include "platform/system/machine_system.h"

namespace Tarvel {

/// Shows today's loads, each one that comes, and what else an edition reads from the base, until the operator or a
/// signal ends it. Takes neither the line nor the working folder, changes nothing in the base, and says so at its start
/// and to whoever asks for more.
class Spectateur final : public IGestesStation {
 public:
  /// Both outlive the object.
  Spectateur(const Options& Choisies, IÉdition& Édition);

  /// Once. Raises ErreurExécution when the base can't be opened.
  void Exécuter();

  void Bouton() override { DireCeQuIlEst(); }
  void Menu() override { DireCeQuIlEst(); }
  void Configurer() override { DireCeQuIlEst(); }
  void Finir() override;

 private:
  void DireCeQuIlEst();
  void Regarder();
  /// True when there were new ones.
  [[nodiscard]] bool Montrer();
  /// Who has the line.
  [[nodiscard]] std::string TexteLigne() const;

  const Options& Options_;
  IÉdition& Édition_;
  BoucleGardée Boucle_;
  Ombrey::SystèmeMachine Système_;
  std::shared_ptr<Ombrey::IConnexion> Connexion_;
  Ombrey::IBoucle::Jeton Suite_;
  std::int64_t Dernier_ = 0;
  bool EnFin_ = false;
};

}  // namespace Tarvel
