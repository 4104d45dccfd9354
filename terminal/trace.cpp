// The trace of a line, read back.
#include "terminal/trace.h"

#include <algorithm>
#include <array>
#include <functional>
#include <map>
#include <optional>
#include <string_view>

#include "terminal/frame.h"
#include "terminal/loads.h"

namespace Rg80 {

namespace {

using namespace std::chrono_literals;

constexpr std::string_view Signature = "# Trace de la liaison avec le RG80, ";
constexpr std::string_view Forme = "forme 1, ";
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
  std::array<int, 4> Parts{};
  std::size_t Part = 0;
  for (std::size_t Rang = 0; Rang < Modèle.size(); ++Rang) {
    const bool EstChiffre = Texte[Rang] >= '0' && Texte[Rang] <= '9';
    if (Modèle[Rang] == '0' ? !EstChiffre : Texte[Rang] != Modèle[Rang]) return std::nullopt;
    if (EstChiffre)
      Parts[Part] = Parts[Part] * 10 + (Texte[Rang] - '0');
    else
      ++Part;
  }
  return std::chrono::hours(Parts[0]) + std::chrono::minutes(Parts[1]) + std::chrono::seconds(Parts[2]) +
         std::chrono::milliseconds(Parts[3]);
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
  Lu.Octets = Qui == "port" ? "" : *Octets;
  Lu.Quand = *Heure;
  return Lu;
}

class Lecteur {
 public:
  explicit Lecteur(std::string Nom) : Nom_(std::move(Nom)) {}

  void Lire(std::string_view Ligne) {
    ++Ligne_;
    if (Ligne.ends_with('\r')) Ligne.remove_suffix(1);
    if (Ligne.starts_with(Signature)) {
      if (!Ligne.substr(Signature.size()).starts_with(Forme)) Refuser(Ligne_, "cette forme de trace n'est pas connue");
      Mauvaise_ = 0;  // the one that wrote what stands above was stopped
    }
    if (Mauvaise_ > 0) Refuser(Mauvaise_, "ce n'est pas une ligne de trace");
    if (Ligne.empty() || Ligne.starts_with('#')) return;
    auto Lu = LireMessage(Ligne);
    if (!Lu) {
      Mauvaise_ = Ligne_;
    } else if (!Lu->Octets.empty()) {
      Lu->Ligne = Ligne_;
      Dater(*Lu);
      Lus_.push_back(std::move(*Lu));
    }
  }

  std::vector<MessageTracé> Terminer(bool Coupée) {
    if (Mauvaise_ > 0 && !Coupée) Refuser(Mauvaise_, "ce n'est pas une ligne de trace");
    if (Lus_.empty()) throw ErreurDemande("Trace " + Nom_ + " : elle ne contient aucun message.");
    return std::move(Lus_);
  }

 private:
  [[noreturn]] void Refuser(std::size_t Ligne, const char* Raison) const {
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

  std::string Nom_;
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
