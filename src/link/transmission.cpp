// Request, frame, answer, EOT; and once more on a refusal.
#include "link/transmission.h"

#include <cstddef>

#include "base/ansi_text.h"
#include "base/checksum.h"
#include "contracts/line_protocol.h"
#include "contracts/phrases.h"

namespace Ombrey {

std::string Transmission::TransmettreLignes(std::vector<Octets>& Lignes) {
  Suite Issue = Suite::Suivante;
  for (std::size_t i = 0; i < Lignes.size() && Issue != Suite::Arrêt;) {
    Issue = EnvoyerLigne(Lignes[i]);
    if (Issue == Suite::Suivante) ++i;
  }
  if (État_.Erreur.EstPrésente() && Erreur_.empty()) {
    Erreur_ = Phrase::EnvoiEnÉchec + État_.Erreur.Texte();
  }
  return Erreur_;
}

Transmission::Suite Transmission::EnvoyerLigne(Octets& Ligne) {
  if (Ligne.EstVide()) return Suite::Suivante;
  if (!Annoncer()) return Suite::Arrêt;
  État_.Erreur.Effacer();
  // A line that goes again is framed already.
  if (static_cast<char>(Ligne[0]) != STX) Ligne = Octets(1, STX) + Ligne + ETX;
  const Suite Issue = EnvoyerTrame(Ligne);
  if (Issue != Suite::Arrêt) Échange_.Ecrire(EOT);
  return Issue;
}

bool Transmission::Annoncer() {
  Échange_.FaireTaire(Doute::Rang::Suivante);
  Octets Réponse;
  const CodeÉchange Code = Échange_.AttendreRéponse(Requête(Code_), Réponse);
  Erreur_ = Code == CodeÉchange::Motif4 ? Phrase::PasPrêt : TextePanne(Code);
  return Erreur_.empty();
}

Transmission::Suite Transmission::EnvoyerTrame(const Octets& Ligne) {
  Échange_.Tampon().Vider();
  const Attente Trame{.Texte = CalculerCheckSum(Ligne),
                      .LongMin = 1,
                      .Motif1 = Octets(1, ACK),
                      .Motif2 = Octets(1, NAK),
                      .SansCode = true};
  Octets Réponse;
  const CodeÉchange Code = Échange_.AttendreRéponse(Trame, Réponse);
  if (Code == CodeÉchange::Motif1) return Suite::Suivante;
  if (Code == CodeÉchange::Motif2 && NACKs_ < EssaisAprèsRefus) {
    ++NACKs_;
    return Suite::Encore;
  }
  Erreur_ = Code == CodeÉchange::Motif2 ? "Erreur de données ou de checksum renvoyée par le RG80 " + DepuisAnsi(Ligne)
                                        : TextePanne(Code);
  return Suite::Arrêt;
}

}  // namespace Ombrey
