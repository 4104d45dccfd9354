// The text of a settings file.
#include "platform/system/ini_text.h"

#include <algorithm>
#include <utility>

#include "base/ansi_text.h"
#include "base/failures.h"
#include "base/text_helpers.h"
#include "contracts/octets.h"

namespace Ombrey {

namespace {

constexpr std::string_view Marque = "\xEF\xBB\xBF";

bool SansCasse(std::string_view A, std::string_view B) { return MinusculesAscii(A) == MinusculesAscii(B); }

bool EntreGuillemets(std::string_view Texte) {
  return Texte.size() >= 2 && Texte.front() == '"' && Texte.back() == '"';
}

std::string_view SansGuillemets(std::string_view Texte) {
  return EntreGuillemets(Texte) ? Texte.substr(1, Texte.size() - 2) : Texte;
}

std::string ValeurÉcrite(std::string_view Valeur) {
  const bool ÀProtéger = SansBlancs(Valeur).size() != Valeur.size() || EntreGuillemets(Valeur);
  return ÀProtéger ? '"' + std::string(Valeur) + '"' : std::string(Valeur);
}

bool EstAscii(std::string_view Bruts) {
  constexpr unsigned char PremierAccent = 0x80;
  return std::all_of(Bruts.begin(), Bruts.end(), [](char C) { return static_cast<unsigned char>(C) < PremierAccent; });
}

/// Each line by itself: one accent of another program must not hide what stands in the other lines.
std::string EnTexte(std::string_view Bruts) { return EstUtf8(Bruts) ? std::string(Bruts) : DepuisAnsi(Octets(Bruts)); }

/// The line in bytes that are read as it again: in UTF-8 where Windows-1252 can't say it or would be taken for UTF-8.
std::string EnOctets(const std::string& Ligne, bool EnAnsi) {
  if (!EnAnsi) return Ligne;
  const Octets Ansi = VersAnsi(Ligne);
  return EnTexte(Ansi.Bruts()) == Ligne ? std::string(Ansi.Bruts()) : Ligne;
}

/// True when a name can be written so that it is found again.
bool EstNom(std::string_view Nom, std::string_view Interdits) {
  return SansBlancs(Nom).size() == Nom.size() && Nom.find_first_of(Interdits) == std::string_view::npos &&
         Nom.find_first_of(std::string_view("\r\n\0", 3)) == std::string_view::npos;
}

void VérifierTextes(std::string_view Section, std::string_view Clé, std::string_view Valeur) {
  const bool Commentaire = Clé.starts_with(';') || Clé.starts_with('#') || Clé.starts_with('[');
  if (Section.empty() || !EstNom(Section, "]"))
    throw ErreurExécution("« " + std::string(Section) + " » ne peut pas nommer une section de réglages.");
  if (Clé.empty() || Commentaire || !EstNom(Clé, "="))
    throw ErreurExécution("« " + std::string(Clé) + " » ne peut pas nommer un réglage.");
  if (!EstUtf8(Section) || !EstUtf8(Clé) || !EstUtf8(Valeur))
    throw ErreurExécution("Un réglage à écrire n'est pas un texte en UTF-8.");
  if (Valeur.find_first_of(std::string_view("\r\n\0", 3)) != std::string_view::npos)
    throw ErreurExécution("La valeur du réglage « " + std::string(Clé) + " » doit tenir sur une ligne.");
}

}  // namespace

struct TexteIni::Ligne {
  std::size_t Début = 0;     ///< in the file's bytes
  std::size_t Fin = 0;       ///< behind the last character, ahead of the line end
  std::size_t Suivante = 0;  ///< where the next line starts
  std::string Texte;
  std::optional<std::string> Section;  ///< of a section's heading
  std::optional<std::string> Clé;
  std::size_t DébutValeur = 0;  ///< of a key's line, in Texte; behind the blanks
  std::size_t FinValeur = 0;
};

struct TexteIni::Recherche {
  std::optional<Ligne> Trouvée;      ///< the key's line, when it is there
  std::optional<std::size_t> Ajout;  ///< where a key of the section is added
};

TexteIni::TexteIni(std::string Bruts) : Bruts_(std::move(Bruts)) {
  if (Bruts_.starts_with("\xFF\xFE") || Bruts_.starts_with("\xFE\xFF"))
    throw ErreurExécution("Le fichier de réglages est en UTF-16 : il faut l'enregistrer en UTF-8.");
  const std::size_t Saut = Bruts_.find('\n');
  FinDeLigne_ = Saut != std::string::npos && Saut > 0 && Bruts_[Saut - 1] == '\r' ? "\r\n" : "\n";
  bool EnUtf8 = Bruts_.starts_with(Marque);
  for (std::size_t Début = PremièreLigne(); Début < Bruts_.size();) {
    const std::size_t Fin = std::min(Bruts_.find('\n', Début), Bruts_.size());
    const std::string_view Une = std::string_view(Bruts_).substr(Début, Fin - Début);
    (EstUtf8(Une) ? EnUtf8 : Ansi_) |= !EstAscii(Une);
    Début = Fin + 1;
  }
  Ansi_ = Ansi_ && !EnUtf8;
}

std::size_t TexteIni::PremièreLigne() const { return Bruts_.starts_with(Marque) ? Marque.size() : 0; }

bool TexteIni::EstEnAnsi(const Ligne& Une) const {
  const std::string_view Bruts = std::string_view(Bruts_).substr(Une.Début, Une.Fin - Une.Début);
  return EstAscii(Bruts) ? Ansi_ : !EstUtf8(Bruts);
}

TexteIni::Ligne TexteIni::LigneÀ(std::size_t Début) const {
  Ligne Lue;
  Lue.Début = Début;
  const std::size_t Saut = Bruts_.find('\n', Début);
  Lue.Fin = std::min(Saut, Bruts_.size());
  Lue.Suivante = Saut == std::string::npos ? Bruts_.size() : Saut + 1;
  if (Lue.Fin > Début && Bruts_[Lue.Fin - 1] == '\r') --Lue.Fin;
  Lue.Texte = EnTexte(std::string_view(Bruts_).substr(Début, Lue.Fin - Début));
  const std::string_view Toute = Lue.Texte;
  const std::string_view Utile = SansBlancs(Toute);
  if (Utile.empty() || Utile.front() == ';' || Utile.front() == '#') return Lue;
  if (Utile.front() == '[') {
    if (const std::size_t Crochet = Utile.find(']'); Crochet != std::string_view::npos)
      Lue.Section = SansBlancs(Utile.substr(1, Crochet - 1));
    return Lue;
  }
  const std::size_t Égal = Toute.find('=');
  if (Égal == std::string_view::npos) return Lue;
  Lue.Clé = SansBlancs(Toute.substr(0, Égal));
  Lue.DébutValeur = std::min(Toute.find_first_not_of(Blancs, Égal + 1), Toute.size());
  Lue.FinValeur = std::max(Lue.DébutValeur, Toute.find_last_not_of(Blancs) + 1);
  return Lue;
}

TexteIni::Recherche TexteIni::Chercher(std::string_view Section, std::string_view Clé) const {
  Recherche Trouvé;
  bool Dedans = false;
  bool PremièreSection = false;
  for (std::size_t Début = PremièreLigne(); Début < Bruts_.size();) {
    Ligne Lue = LigneÀ(Début);
    Début = Lue.Suivante;
    if (Lue.Section) {
      Dedans = SansCasse(*Lue.Section, Section);
      PremièreSection = Dedans && !Trouvé.Ajout;
      if (PremièreSection) Trouvé.Ajout = Lue.Suivante;
    } else if (Lue.Clé && Dedans) {
      if (PremièreSection) Trouvé.Ajout = Lue.Suivante;
      if (!SansCasse(*Lue.Clé, Clé)) continue;
      Trouvé.Trouvée = std::move(Lue);
      break;
    }
  }
  return Trouvé;
}

std::optional<std::string> TexteIni::Lire(std::string_view Section, std::string_view Clé) const {
  const auto Trouvée = Chercher(Section, Clé).Trouvée;
  if (!Trouvée) return std::nullopt;
  const std::string_view Texte = Trouvée->Texte;
  return std::string(SansGuillemets(Texte.substr(Trouvée->DébutValeur, Trouvée->FinValeur - Trouvée->DébutValeur)));
}

void TexteIni::Ecrire(std::string_view Section, std::string_view Clé, std::string_view Valeur) {
  VérifierTextes(Section, Clé, Valeur);
  const std::string Écrite = ValeurÉcrite(Valeur);
  Recherche Trouvé = Chercher(Section, Clé);
  if (auto& Sienne = Trouvé.Trouvée) {
    Sienne->Texte.replace(Sienne->DébutValeur, Sienne->FinValeur - Sienne->DébutValeur, Écrite);
    Bruts_.replace(Sienne->Début, Sienne->Fin - Sienne->Début, EnOctets(Sienne->Texte, EstEnAnsi(*Sienne)));
    return;
  }
  const std::size_t Place = Trouvé.Ajout.value_or(Bruts_.size());
  const bool Coller = Place > 0 && Bruts_[Place - 1] != '\n' && Bruts_ != Marque;
  const bool EstCoupée = Coller && Bruts_[Place - 1] == '\r';  // the line end lacks its other half
  std::string Ajout = !Coller ? "" : EstCoupée ? "\n" : FinDeLigne_;
  if (!Trouvé.Ajout) {
    const bool Séparer = !Bruts_.empty() && Bruts_ != Marque;
    const std::string Titre = EnOctets("[" + std::string(Section) + "]", Ansi_);
    Ajout += (Séparer ? FinDeLigne_ : "") + Titre + FinDeLigne_;
  }
  Bruts_.insert(Place, Ajout + EnOctets(std::string(Clé) + "=" + Écrite, Ansi_) + FinDeLigne_);
}

}  // namespace Ombrey
