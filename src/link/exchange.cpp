// The waiting primitive and the link test.
#include "link/exchange.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "base/failures.h"
#include "contracts/phrases.h"
#include "contracts/system.h"

namespace Ombrey {
namespace {

/// A line that never falls silent holds up a request no longer than this.
constexpr std::chrono::milliseconds AttenteSilenceMax{10000};
constexpr const char* TexteInattendus =
    "Le RG80 a envoyé des caractères que personne n'attendait : ils sont laissés sans réponse.";

bool EstEnTête(const Octets& Tampon, const Octets& Motif) { return !Motif.EstVide() && Tampon.CommencePar(Motif); }

bool Assez(const Octets& Tampon, std::size_t LongMin) { return LongMin == 0 || Tampon.Taille() >= LongMin; }

}  // namespace

std::string TextePanne(CodeÉchange Code) {
  if (Code == CodeÉchange::Silence) return Phrase::AucuneRéponse;
  if (Code == CodeÉchange::ErreurPort) return Phrase::PortEnErreur;
  return "";
}

Attente Requête(const Octets& Code) {
  return {.Texte = Octets(1, ENQ) + Code,
          .LongMin = LongRéponse,
          .Motif3 = Octets(1, ACK) + Code,
          .Motif4 = Octets(1, NAK) + Code};
}

void Échange::FermerPort() {
  if (const auto Dernier = std::exchange(PortComm_, nullptr)) Dernier->Fermer();
}

std::shared_ptr<IPortComm> Échange::PortRéglé() const {
  if (!PortComm_) throw ErreurExécution(Phrase::AucunPort);
  return PortComm_;
}

void Échange::Ecrire(char Contrôle) { PortRéglé()->Ecrire(Octets(1, Contrôle)); }

bool Échange::Envoyer(const Octets& Texte) {
  const auto Port = PortRéglé();
  if (Port->Ecrire(Texte)) return true;
  // A port closed under the writing by the end of the plug-in is no failure of the port.
  if (!État_.Abandon) État_.Avertir(Port->DernièreErreurPort(), Phrase::TitreErreurPort);
  return false;
}

void Échange::EventPortComRG80_Lecture(const Octets& Texte) {
  TamponRéception_ += Texte;
  if (!Texte.EstVide()) Doute_.NoterArrivée(EnAttente_);
}

void Échange::Lire() {
  Octets Arrivé;
  PortRéglé()->Lire(Arrivé);
  EventPortComRG80_Lecture(Arrivé);
}

/// Takes in what has arrived and isn't in the buffer yet; true when there was something.
bool Échange::Relever() {
  const std::size_t Avant = TamponRéception_.Taille();
  PortRéglé()->Relever();
  Lire();
  return TamponRéception_.Taille() > Avant;
}

void Échange::FaireTaire(Doute::Rang Demande) {
  ISystème& Système = État_.Plateforme.Système();
  const std::uint32_t Début = Système.Tics();
  Relever();
  for (;;) {
    TamponRéception_.Vider();
    if (Doute_.EstÀDire()) État_.Canal.AjouterMessage(TexteInattendus, false);
    const std::chrono::milliseconds Écoulé(static_cast<std::int32_t>(Système.Tics() - Début));
    const auto Reste = std::min(Doute_.SilenceManquant(Demande), AttenteSilenceMax - Écoulé);
    if (Reste.count() <= 0) break;
    Système.Pomper(Reste);
    if (État_.Abandon) return;
    Lire();
  }
  Doute_.NoterDemande();
}

bool Échange::Acquitter(const Octets& Trame) {
  Relever();
  // The terminal's answers to waiting requests follow one another, with a gap that a slow line makes wider.
  while (!Doute_.EstCalme()) {
    if (!TamponRéception_.EstVide() || État_.Abandon) return false;
    const auto Manque = PortRéglé()->SilenceFinMessage() - Doute_.Silence();
    if (Manque.count() <= 0) break;
    État_.Plateforme.Système().Pomper(Manque);
    Relever();
  }
  Doute_.Acquitter(Trame);
  Ecrire(ACK);
  return true;
}

CodeÉchange Échange::AttendreRéponse(const Attente& Demande, Octets& Réponse) {
  if (État_.Abandon) return CodeÉchange::Silence;
  struct Garde {
    bool& EnAttente;
    explicit Garde(bool& Drapeau) : EnAttente(Drapeau) { EnAttente = true; }
    ~Garde() { EnAttente = false; }
  } const EnAttente(EnAttente_);
  const CodeÉchange Code = Attendre(Demande, Réponse);
  if (Code == CodeÉchange::Silence || Code == CodeÉchange::ErreurPort) Doute_.NoterSansRéponse();
  return Code;
}

CodeÉchange Échange::Attendre(const Attente& Demande, Octets& Réponse) {
  if (!Demande.Texte.EstVide() && !Envoyer(Demande.Texte)) {
    return État_.Abandon ? CodeÉchange::Silence : CodeÉchange::ErreurPort;
  }
  ISystème& Système = État_.Plateforme.Système();
  const std::uint32_t Début = Système.Tics();
  const auto Délai = static_cast<std::int32_t>(Demande.Délai.count());
  // What already stands in the buffer counts at once: the first pump doesn't wait.
  std::chrono::milliseconds AttenteMax{0};
  for (bool EnSuspens = false;;) {
    if (État_.Abandon) return CodeÉchange::Silence;
    Système.Pomper(AttenteMax);
    if (État_.Abandon) return CodeÉchange::Silence;
    Lire();

    // The tick count wraps: only the difference, taken as signed, tells the time that has passed.
    const auto Écoulé = static_cast<std::int32_t>(Système.Tics() - Début);
    // What the port has held back came in time; what comes by its event only now didn't.
    if (Écoulé > Délai && !EnSuspens && !Relever()) return CodeÉchange::Silence;
    if (const auto Code = Reconnaître(Demande, Réponse)) return *Code;
    const auto Manque = SilenceManquant(Demande);
    EnSuspens = Manque.count() > 0;
    if (Écoulé > Délai && !EnSuspens) return CodeÉchange::Silence;
    // One millisecond beyond the time-out, so that an idle wait ends in one pump.
    AttenteMax = EnSuspens ? Manque : std::chrono::milliseconds(Délai - Écoulé + 1);
  }
}

/// An ACK or NAK with a code behind it answers a request, an older one, and not the frame that was sent.
void Échange::RetirerRéponsesÀDesDemandes() {
  Octets& Tampon = TamponRéception_;
  while (Tampon.Taille() >= LongRéponse && (Tampon[0] == ACK || Tampon[0] == NAK)) Tampon.RetirerTête(LongRéponse);
}

/// How long the line must still be silent to show that the one character in the buffer stands alone.
std::chrono::milliseconds Échange::SilenceManquant(const Attente& Demande) const {
  if (!Demande.SansCode || Doute_.EstCalme() || TamponRéception_.Taille() != 1) return {};
  return PortRéglé()->SilenceFinMessage() - Doute_.Silence();
}

/// The order of the tests is the priority of the patterns: the first two at the start of the buffer, then the two
/// anywhere.
std::optional<CodeÉchange> Échange::Reconnaître(const Attente& Demande, Octets& Réponse) {
  Octets& Tampon = TamponRéception_;
  if (Demande.SansCode && !Doute_.EstCalme()) RetirerRéponsesÀDesDemandes();
  if (SilenceManquant(Demande).count() > 0) return std::nullopt;
  if (!Assez(Tampon, Demande.LongMin)) return std::nullopt;

  const auto EnTête = [&](const Octets& Motif, CodeÉchange Code) -> std::optional<CodeÉchange> {
    if (!EstEnTête(Tampon, Motif)) return std::nullopt;
    Réponse = Tampon;
    if (Demande.Consommer) Tampon.RetirerTête(Motif.Taille());
    return Code;
  };
  const auto Partout = [&](const Octets& Motif, CodeÉchange Code) -> std::optional<CodeÉchange> {
    if (Motif.EstVide() || !Demande.Resynchroniser) return std::nullopt;
    const std::size_t Place = Tampon.Chercher(Motif);
    if (Place == Octets::Introuvable) return std::nullopt;
    Tampon.RetirerTête(Place);
    if (!Assez(Tampon, Demande.LongMin)) return std::nullopt;
    Réponse = Tampon;
    return Code;
  };
  if (const auto Code = EnTête(Demande.Motif1, CodeÉchange::Motif1)) return Code;
  if (const auto Code = EnTête(Demande.Motif2, CodeÉchange::Motif2)) return Code;
  if (const auto Code = Partout(Demande.Motif3, CodeÉchange::Motif3)) return Code;
  return Partout(Demande.Motif4, CodeÉchange::Motif4);
}

bool Échange::RéponseÀLaRequêteDeTest() {
  if (!PortComm_) return false;
  FaireTaire(Doute::Rang::Suivante);
  // Only an answer at the head of the buffer counts.
  Attente Test = Requête(Octets(1, CodeRéponse));
  std::swap(Test.Motif1, Test.Motif3);
  std::swap(Test.Motif2, Test.Motif4);
  Test.Resynchroniser = false;
  Octets Réponse;
  const CodeÉchange Obtenu = AttendreRéponse(Test, Réponse);
  // A NAK comes from a terminal, too.
  if (Obtenu != CodeÉchange::Motif1 && Obtenu != CodeÉchange::Motif2) return false;
  État_.Canal.AjouterMessage(Phrase::Communique, true);
  return true;
}

bool Échange::TesterConnexion() {
  // Failures stay inside: one of them makes the test fail, and the pointer comes back whatever happens.
  ErreurEnAttente Échec;
  bool Répond = false;
  Garder(Échec, [&] { État_.Plateforme.Fenêtres().FixerSablier(true); });
  Garder(Échec, [&] { Répond = RéponseÀLaRequêteDeTest(); });
  Garder(Échec, [&] { État_.Plateforme.Fenêtres().FixerSablier(false); });
  return Répond && !Échec.EstPrésente();
}

}  // namespace Ombrey
