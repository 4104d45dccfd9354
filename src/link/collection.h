// The collection dialogue: asks the terminal for one load, receives it, has it imported and answers.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "common/context.h"
#include "contracts/host.h"
#include "contracts/octets.h"
#include "contracts/system.h"
#include "link/daily_error_file.h"
#include "link/exchange.h"

namespace Ombrey {

/// What the dialogue needs done with a load.
class ITraitementChargement : public virtual IEnvoiCumuls {
 public:
  /// Takes the frame out of Tampon and turns its record into one line of import text; empty when there is nothing to
  /// import, and the operator has been told why. Réponse: ACK or NAK for the terminal once a frame could be checked,
  /// untouched otherwise. NoChargement: the load's number, once known.
  virtual std::string TraiterDonnéesReçues(Octets& Tampon, Octets& Réponse, std::string& NoChargement) = 0;
};

/// One dialogue.
class Collecte {
 public:
  Collecte(ÉtatPartagé& État, Échange& LÉchange, ITraitementChargement& Traitement)
      : État_(État), Échange_(LÉchange), Traitement_(Traitement), Système_(État.Plateforme.Système()) {}

  /// One dialogue, one load at most. The result says how it ended, empty when there is nothing to report; a run-time
  /// failure isn't in it, but has been shown, and stays the pending failure. Raises nothing.
  std::string LireDonnéesDeRG80();

 private:
  void SuivreLeCours();
  void OuvrirFichierErreurs();
  bool DemanderChargement();
  bool AttendreTrame();
  bool EstPourNous();
  bool Accordé(const Attente& Demande, const std::string& Refus);
  bool EcrireFichierImport();
  void Importer();
  void RefuserImport();
  void RefuserImportAvecErreur();
  void NoterRefus();
  void RefuserAuTerminal();
  bool RépondreAuTerminal();
  void EnvoyerCumuls();
  void Conclure();
  void VérifierErreurEnAttente();
  const std::filesystem::path& FichierConservé();
  bool ConstaterRupture();
  void ConserverFichierImport();
  void Clore();

  ÉtatPartagé& État_;
  Échange& Échange_;
  ITraitementChargement& Traitement_;
  ISystème& Système_;

  int Etape_ = 0;
  std::string Résultat_;
  std::optional<FichierErreurs> Erreurs_;
  std::filesystem::path FichierImport_;
  std::filesystem::path FichierConservé_;
  std::shared_ptr<IBaseDeD> BaseDeD_;
  Octets RéponseRG80_;
  Octets Trame_;  ///< as it came, with what stands around the record
  std::string NoChargement_;
  std::string TexteImport_;
  std::shared_ptr<IEtatBdD> EtatBdD_;
};

}  // namespace Ombrey
