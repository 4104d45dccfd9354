// The trace of a line, read back.
#include "terminal/trace.h"

#include <algorithm>
#include <array>
#include <functional>
#include <map>
#include <optional>
#include <string_view>
#include <utility>

#include "terminal/frame.h"
#include "terminal/loads.h"

namespace Rg80 {

namespace {

using namespace std::chrono_literals;

constexpr std::string_view Signature = "# Trace de la liaison avec le RG80, ";
constexpr std::string_view Forme = "forme 1, ";
constexpr std::string_view Lacune = "# il manque ici ";
constexpr int NombreOctets = 256;

// How each byte is written, and back.
const std::map<std::string, char, std::less<>>& Écritures() {
  static const auto Toutes = [] {
    std::map<std::string, char, std::less<>> Table;
    for (int Code = 0; Code < NombreOctets; ++Code) {
      const char Octet = static_cast<char>(Code);
      Table[Octet == '<' ? "<3C>" : Lisible({&Octet, 1})] = Octet;
    }
    return Table;
  }();
  return Toutes;
}

// The first byte of the text as written: a name between < and >, or one character of UTF-8.
std::size_t LongueurÉcriture(std::string_view Texte) {
  if (Texte[0] == '<') return std::min(Texte.find('>'), Texte.size() - 1) + 1;
  std::size_t Longueur = 1;
  while (Longueur < Texte.size() && (static_cast<unsigned char>(Texte[Longueur]) & 0xC0U) == 0x80U) ++Longueur;
  return Longueur;
}

std::optional<std::string> LireOctets(std::string_view Texte) {
  std::string Octets;
  while (!Texte.empty()) {
    const auto Connu = Écritures().find(Texte.substr(0, LongueurÉcriture(Texte)));
    if (Connu == Écritures().end()) return std::nullopt;
    Octets += Connu->second;
    Texte.remove_prefix(Connu->first.size());
  }
  return Octets;
}

// "12:41:07.315"
std::optional<std::chrono::milliseconds> LireHeure(std::string_view Texte) {
  constexpr std::string_view Modèle = "00:00:00.000";
  if (Texte.size() != Modèle.size()) return std::nullopt;
  std::array<int, 4> Nombres{};
  std::size_t Lequel = 0;
  for (std::size_t Rang = 0; Rang < Modèle.size(); ++Rang) {
    const bool EstChiffre = Texte[Rang] >= '0' && Texte[Rang] <= '9';
    if (Modèle[Rang] == '0' ? !EstChiffre : Texte[Rang] != Modèle[Rang]) return std::nullopt;
    if (EstChiffre)
      Nombres[Lequel] = Nombres[Lequel] * 10 + (Texte[Rang] - '0');
    else
      ++Lequel;
  }
  return std::chrono::hours(Nombres[0]) + std::chrono::minutes(Nombres[1]) + std::chrono::seconds(Nombres[2]) +
         std::chrono::milliseconds(Nombres[3]);
}

// Up to the next TAB, which goes with it.
std::string_view Colonne(std::string_view& Reste) {
  const std::size_t Fin = std::min(Reste.find('\t'), Reste.size());
  const std::string_view Sienne = Reste.substr(0, Fin);
  Reste.remove_prefix(std::min(Fin + 1, Reste.size()));
  return Sienne;
}

std::optional<MessageTracé> LireMessage(std::string_view Reste) {
  MessageTracé Lu;
  Lu.Heure = Colonne(Reste);
  const std::string_view Qui = Colonne(Reste);
  const auto Heure = LireHeure(Lu.Heure);
  const auto Octets = LireOctets(Colonne(Reste));
  if (!Heure || !Octets || (Qui != "station" && Qui != "RG80" && Qui != "port")) return std::nullopt;
  Lu.EstDeStation = Qui == "station";
  Lu.EstDuPort = Qui == "port";
  if (!Lu.EstDuPort) Lu.Octets = *Octets;
  Lu.Quand = *Heure;
  return Lu;
}

// Whether the terminal's messages from Premier on are all that the station awaited behind what it said.
bool EstComplet(const std::string& Dit, auto Premier, auto Fin) {
  const auto Entendu = [&](auto Est) {
    return std::any_of(Premier, Fin, [&](const MessageTracé& Un) { return Est(Un.Octets); });
  };
  if (Dit[0] == STX) return Entendu([](const auto& Octets) { return Octets == "\x06" || Octets == "\x15"; });
  if (Dit[0] != ENQ || Dit.size() < 2) return true;
  const bool EstRelevé = Dit[1] == 'A';
  return Entendu([&](const auto& Octets) { return (EstRelevé && Octets[0] == STX) || Octets == Paire(NAK, Dit[1]); });
}

// What answers a request bears its code; a frame is answered by a character alone.
bool EstRéponse(const std::string& Octets, const std::string& Dit) {
  if (Octets[0] != ACK && Octets[0] != NAK) return false;
  return Dit[0] == STX ? Octets.size() == 1 : Dit.size() == 2 && Octets.size() > 1 && Octets[1] == Dit[1];
}

// Behind a start of the station: what it hears while all that it has asked since is answered. When an answer is
// overdue, this may be it.
void MarquerLesAutres(std::vector<MessageTracé>& Lus) {
  bool Départ = false, EnRetard = false;
  const MessageTracé* Demande = nullptr;
  for (MessageTracé& Un : Lus) {
    if (Un.Avant == MessageTracé::Rupture::Arrêt) {
      Départ = true;
      EnRetard = false;
      Demande = nullptr;
    }
    const bool EstTrame = Un.Octets[0] == STX;
    if (Un.EstDeStation) {
      EnRetard |= Demande != nullptr;
      Demande = EstTrame || Un.Octets[0] == ENQ ? &Un : nullptr;
    } else if (Demande != nullptr) {
      if (EstRéponse(Un.Octets, Demande->Octets)) Demande = nullptr;
    } else {
      const bool EstBruit = Un.Octets.find_first_of(std::string{STX, ACK, NAK}) == std::string::npos;
      Un.EstÀUnAutre = Départ && !EnRetard && !EstTrame && !EstBruit;
    }
  }
}

class Lecteur {
 public:
  explicit Lecteur(std::string Nom) : Nom_(std::move(Nom)) {}

  void Lire(std::string_view Ligne) {
    ++Ligne_;
    if (Ligne.ends_with('\r')) Ligne.remove_suffix(1);
    if (Ligne.starts_with(Signature)) {
      if (!Ligne.substr(Signature.size()).starts_with(Forme))
        RefuserLigne(Ligne_, "cette forme de trace n'est pas connue");
      Mauvaise_ = 0;  // the one that wrote what stands above was stopped
      Départ_ = !Lus_.empty();
    }
    if (Ligne.starts_with(Lacune)) Rompue_ = true;
    if (Mauvaise_ > 0) RefuserLigne(Mauvaise_, "ce n'est pas une ligne de trace");
    if (Ligne.empty() || Ligne.starts_with('#')) return;
    auto Lu = LireMessage(Ligne);
    if (!Lu) {
      Mauvaise_ = Ligne_;
    } else if (Lu->Octets.empty()) {
      Rompue_ |= Lu->EstDuPort;
    } else {
      Lu->Ligne = Ligne_;
      Dater(*Lu);
      Rompre(*Lu);
      if (Lu->Avant != MessageTracé::Rupture::Arrêt || Lu->EstDeStation) Lus_.push_back(std::move(*Lu));
    }
  }

  std::vector<MessageTracé> Terminer(bool Coupée) {
    if (Mauvaise_ > 0 && !Coupée) RefuserLigne(Mauvaise_, "ce n'est pas une ligne de trace");
    if (Lus_.empty()) throw ErreurDemande("Trace " + Nom_ + " : elle ne contient aucun message.");
    MarquerLesAutres(Lus_);
    return std::move(Lus_);
  }

 private:
  [[noreturn]] void RefuserLigne(std::size_t Ligne, const char* Raison) const {
    throw ErreurDemande("Trace " + Nom_ + ", ligne " + std::to_string(Ligne) + " : " + Raison + ".");
  }

  // Past midnight the hours begin again; a clock that was put back a little isn't that.
  void Dater(MessageTracé& Lu) {
    if (!Lus_.empty()) {
      const auto Avant = Lus_.back().Quand - Jours_;
      if (Lu.Quand + 12h < Avant) Jours_ += 24h;
    }
    Lu.Quand += Jours_;
  }

  // A header alone is a new day's: a station that starts opens its port. What it hears ahead of its own first words was
  // said to the former one.
  void Rompre(MessageTracé& Lu) {
    using enum MessageTracé::Rupture;
    if (Rompue_ && !Lus_.empty()) Lu.Avant = Départ_ ? Arrêt : DeLaLiaison;
    if (Lu.Avant == Arrêt && !Lu.EstDeStation) return;
    Départ_ = Rompue_ = false;
    if (Lu.Avant == Arrêt) OublierInachevé();
  }

  // It may have been stopped before it could take in the answer.
  void OublierInachevé() {
    const auto Dernier = std::find_if(Lus_.rbegin(), Lus_.rend(), [](const auto& Un) { return Un.EstDeStation; });
    if (Dernier == Lus_.rend()) return;
    if (!EstComplet(Dernier->Octets, Dernier.base(), Lus_.end())) Lus_.erase(Dernier.base() - 1, Lus_.end());
  }

  std::string Nom_;
  bool Rompue_ = false;  // since the last message, and whether by a new start
  bool Départ_ = false;
  std::size_t Ligne_ = 0;
  std::size_t Mauvaise_ = 0;
  std::chrono::milliseconds Jours_{};
  std::vector<MessageTracé> Lus_;
};

}  // namespace

std::vector<MessageTracé> LireTrace(std::istream& Flux, const std::string& Nom) {
  Lecteur Trace(Nom);
  bool Coupée = false;
  for (std::string Ligne; std::getline(Flux, Ligne);) {
    Coupée = Flux.eof();
    Trace.Lire(Ligne);
  }
  return Trace.Terminer(Coupée);
}

}  // namespace Rg80
