// Request, frame, answer, EOT; and once more on a refusal.
#include "link/transmission.h"

#include "common/ansi_text.h"
#include "link/checksum.h"

namespace Ombrey {
namespace {

/// Refusals of a frame that are answered by another try.
constexpr int EssaisAprèsRefus = 4;

}  // namespace

std::string Transmission::TransmettreLignes(std::int32_t NumFichier, std::vector<Octets>& Lignes) {
  NACKs_ = 0;
  Erreur_.clear();
  const Octets Code(std::to_string(NumFichier));
  Suite Issue = Suite::Suivante;
  for (std::size_t i = 0; i < Lignes.size() && Issue != Suite::Arrêt;) {
    Issue = EnvoyerLigne(Code, Lignes[i]);
    if (Issue == Suite::Suivante) ++i;
  }
  if (État_.Erreur.EstPrésente() && Erreur_.empty()) {
    Erreur_ = "Transmission de l'exportation vers le RG80 : " + État_.Erreur.Texte();
  }
  return Erreur_;
}

Transmission::Suite Transmission::EnvoyerLigne(const Octets& Code, Octets& Ligne) {
  if (Ligne.EstVide()) return Suite::Suivante;
  if (!Annoncer(Code)) return Suite::Arrêt;
  État_.Erreur.Effacer();
  // A line that goes again is framed already.
  if (static_cast<char>(Ligne[0]) != STX) Ligne = Octets(1, STX) + Ligne + ETX;
  const Suite Issue = EnvoyerTrame(Ligne);
  if (Issue != Suite::Arrêt) Exiger(État_.PortComm)->Ecrire(Octets(1, EOT));
  return Issue;
}

bool Transmission::Annoncer(const Octets& Code) {
  État_.TamponRéception.Vider();
  const Attente Annonce{
      .Texte = Requête(Code), .LongMin = 2, .Motif3 = Octets(1, ACK) + Code, .Motif4 = Octets(1, NAK) + Code};
  Octets Réponse;
  switch (Échange_.AttendreRéponse(Annonce, Réponse)) {
    case CodeÉchange::Silence:
      Erreur_ = TexteSilence;
      return false;
    case CodeÉchange::Motif4:
      Erreur_ = TextePasPrêt;
      return false;
    case CodeÉchange::ErreurPort:
      Erreur_ = TexteErreurPort;
      return false;
    default:
      return true;
  }
}

Transmission::Suite Transmission::EnvoyerTrame(const Octets& Ligne) {
  État_.TamponRéception.Vider();
  const Attente Trame{
      .Texte = CalculerCheckSum(Ligne), .LongMin = 1, .Motif1 = Octets(1, ACK), .Motif2 = Octets(1, NAK)};
  Octets Réponse;
  switch (Échange_.AttendreRéponse(Trame, Réponse)) {
    case CodeÉchange::Motif1:
      Erreur_.clear();
      return Suite::Suivante;
    case CodeÉchange::Motif2:
      if (NACKs_ == EssaisAprèsRefus) {
        Erreur_ = "Erreur de données ou de checksum renvoyée par le RG80 " + DepuisAnsi(Ligne);
        return Suite::Arrêt;
      }
      ++NACKs_;
      return Suite::Encore;
    case CodeÉchange::ErreurPort:
      Erreur_ = TexteErreurPort;
      return Suite::Arrêt;
    default:
      Erreur_ = TexteSilence;
      return Suite::Arrêt;
  }
}

}  // namespace Ombrey
