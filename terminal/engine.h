// The terminal's side of the dialogue, without a device: bytes and moments in, bytes and events out.
#pragma once

#include <array>
#include <chrono>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "terminal/faults.h"
#include "terminal/loads.h"

namespace Rg80 {

using Horloge = std::chrono::steady_clock;
using Instant = Horloge::time_point;

/// A file of reference data: its number on the line and the length in bytes of its records.
struct FichierConnu {
  char Code;
  std::string_view Nom;  // UTF-8
  std::size_t LongueurEnregistrement;
};
inline constexpr auto FichiersConnus = std::to_array<FichierConnu>({
    {'1', "coopérateurs", 41},
    {'2', "groupements", 83},
    {'4', "appellations", 31},
    {'5', "badges", 28},
    {'6', "observations", 22},
});

/// None when the code is no file's.
[[nodiscard]] const FichierConnu* TrouverFichier(char Code);

/// What happened to the loads and to what was received, for the last line.
struct Bilan {
  unsigned Envoyés = 0;
  unsigned Acquittés = 0;
  unsigned Refusés = 0;
  unsigned SansRéponse = 0;
  unsigned Réponses = 0;
  unsigned Fichiers = 0;

  [[nodiscard]] std::string Texte() const;
};

enum class Sens { Reçu, Émis };

/// What the engine needs of the world.
class ISuite {
 public:
  ISuite() = default;
  ISuite(const ISuite&) = delete;
  ISuite& operator=(const ISuite&) = delete;
  virtual ~ISuite() = default;
  /// Bytes for the line.
  virtual void Émettre(std::string_view Octets) = 0;
  /// One message of the line, or a run of bytes that is none, for the journal.
  virtual void Consigner(Sens Direction, std::string_view Octets) = 0;
  /// Something that the person in front of the terminal should know; UTF-8, one line.
  virtual void Annoncer(const std::string& Texte) = 0;
  /// Keeps the text of a reply, or of a file with its number: true only when it is safe, so that it may be
  /// acknowledged.
  virtual bool GarderRéponse(std::string_view Texte) = 0;
  virtual bool GarderFichier(char Code, std::string_view Texte) = 0;
};

/// Who speaks on the line. It is given what arrives, and woken whenever ProchaineÉchéance has come.
class IInterlocuteur {
 public:
  IInterlocuteur() = default;
  IInterlocuteur(const IInterlocuteur&) = delete;
  IInterlocuteur& operator=(const IInterlocuteur&) = delete;
  virtual ~IInterlocuteur() = default;
  virtual void Recevoir(std::string_view Octets, Instant Maintenant) = 0;
  /// Does what is due.
  virtual void Avancer(Instant Maintenant) = 0;
  [[nodiscard]] virtual std::optional<Instant> ProchaineÉchéance() const = 0;
  /// The moment from which nothing more is expected; none while something is.
  [[nodiscard]] virtual std::optional<Instant> MomentDeFin() const = 0;
};

/// The terminal: a queue of loads, the requests that it serves, and the faults that it was told to show.
class Terminal final : public IInterlocuteur {
 public:
  /// EnFichiers: file reception is on (key F6). Suite and Dés must outlive the terminal.
  Terminal(std::vector<Chargement> Chargements, bool EnFichiers, Hasard& Dés, ISuite& Suite);

  void Recevoir(std::string_view Octets, Instant Maintenant) override;
  /// A late answer, a wait given up, a frame that fell silent.
  void Avancer(Instant Maintenant) override;
  [[nodiscard]] std::optional<Instant> ProchaineÉchéance() const override;

  /// None while loads wait. That is when the reply to the last load
  /// was closed by EOT, or a fixed time behind its acknowledgement.
  [[nodiscard]] std::optional<Instant> MomentDeFin() const override;
  /// Counts a load that still awaits its answer as unanswered, and gives the figures.
  [[nodiscard]] Bilan Terminer();

 private:
  enum class État { Repos, AttendCode, AttendAccord, AttendTrame, EnTrame };
  struct RéponseTardive {
    std::string Octets;
    Instant Départ;
    État Ensuite;
  };

  void RecevoirOctet(char Octet, Instant Maintenant);
  [[nodiscard]] bool PeutParler() const;
  void RecevoirAccord(bool Accepté, Instant Maintenant);
  void RecevoirDansTrame(char Octet, Instant Maintenant);
  void Ignorer(char Octet, Instant Maintenant);
  void SignalerIgnorés();

  void OuvrirDemande(Instant Maintenant);
  void ServirDemande(char Code, Instant Maintenant);
  void OffrirChargement(Instant Maintenant);
  [[nodiscard]] std::string TrameDeChargement(const Chargement& Offert, const Pannes& Actives);
  void AnnoncerTrame(char Code, Instant Maintenant);
  void FinirTrame(bool Juste, Instant Maintenant);
  [[nodiscard]] bool GarderTexte(std::string_view Texte);

  void Répondre(std::string Octets, const Pannes& Actives, État Ensuite, Instant Maintenant);
  void Partir(const std::string& Octets, État Ensuite, Instant Maintenant);
  void Passer(État Nouveau, Instant Maintenant);
  void NoterSansRéponse(const std::string& Raison);

  std::deque<Chargement> File_;
  bool EnFichiers_;
  Hasard& Dés_;
  ISuite& Suite_;

  État État_ = État::Repos;
  std::optional<Instant> Échéance_;
  std::deque<RéponseTardive> Tardives_;  // in the order of their departures
  std::optional<Instant> OccupéJusquÀ_;  // what arrives until then is read afterwards
  std::string Empilés_;
  bool SertLaPile_ = false;
  Pannes PannesDuChargement_;
  char CodeAnnoncé_ = 0;
  std::string Trame_;
  unsigned SommeTrame_ = 0;
  bool TrameTropLongue_ = false;
  std::string Ignorés_;
  std::size_t NombreIgnorés_ = 0;

  Bilan Bilan_;
  std::optional<Instant> DernierAcquittement_;
  bool RéponseGardée_ = false;
  std::optional<Instant> RéponseClose_;
};

}  // namespace Rg80
