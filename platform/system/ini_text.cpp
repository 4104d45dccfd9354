// The text of a settings file.
#include "platform/system/ini_text.h"

#include <algorithm>
#include <utility>

#include "base/ansi_text.h"
#include "base/failures.h"
#include "base/text_helpers.h"

namespace Ombrey {

namespace {

constexpr std::string_view Marque = "\xEF\xBB\xBF";

char Minuscule(char C) { return C >= 'A' && C <= 'Z' ? static_cast<char>(C - 'A' + 'a') : C; }

bool SansCasse(std::string_view A, std::string_view B) {
  return std::equal(A.begin(), A.end(), B.begin(), B.end(),
                    [](char X, char Y) { return Minuscule(X) == Minuscule(Y); });
}

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
  if (Valeur.find_first_of(std::string_view("\r\n\0", 3)) != std::string_view::npos)
    throw ErreurExécution("La valeur du réglage « " + std::string(Clé) + " » doit tenir sur une ligne.");
}

}  // namespace

/// One line; positions in the file's bytes.
struct TexteIni::Ligne {
  std::size_t Fin = 0;                 ///< behind the last character, ahead of the line end
  std::size_t Suivante = 0;            ///< where the next line starts
  std::optional<std::string> Section;  ///< of a section's heading
  std::optional<std::string> Clé;
  std::size_t DébutValeur = 0;  ///< of a key's line; behind the blanks
  std::size_t FinValeur = 0;
};

struct TexteIni::Recherche {
  std::optional<std::pair<std::size_t, std::size_t>> Valeur;  ///< start and end, when the key is there
  std::optional<std::size_t> Ajout;                           ///< where a key of the section is added
};

TexteIni::TexteIni(std::string Bruts) : Bruts_(std::move(Bruts)), Utf8_(EstUtf8(Bruts_)) {
  if (Bruts_.starts_with("\xFF\xFE") || Bruts_.starts_with("\xFE\xFF"))
    throw ErreurExécution("Le fichier de réglages est en UTF-16 : il faut l'enregistrer en UTF-8.");
  const std::size_t Saut = Bruts_.find('\n');
  FinDeLigne_ = Saut != std::string::npos && Saut > 0 && Bruts_[Saut - 1] == '\r' ? "\r\n" : "\n";
}

std::string TexteIni::EnUtf8(std::string_view Octets) const {
  return Utf8_ ? std::string(Octets) : DepuisAnsi(Ombrey::Octets(Octets));
}

std::string TexteIni::DansLeFichier(const std::string& Texte) const {
  if (!EstUtf8(Texte)) throw ErreurExécution("Un réglage à écrire n'est pas un texte en UTF-8.");
  if (Utf8_) return Texte;
  const Octets Ansi = VersAnsi(Texte);
  if (DepuisAnsi(Ansi) != Texte)
    throw ErreurExécution("« " + Texte +
                          " » ne peut pas être écrit dans ce fichier de réglages, qui est en Windows-1252.");
  return std::string(Ansi.Bruts());
}

TexteIni::Ligne TexteIni::LigneÀ(std::size_t Début) const {
  Ligne Lue;
  const std::size_t Saut = Bruts_.find('\n', Début);
  Lue.Fin = std::min(Saut, Bruts_.size());
  Lue.Suivante = Saut == std::string::npos ? Bruts_.size() : Saut + 1;
  if (Lue.Fin > Début && Bruts_[Lue.Fin - 1] == '\r') --Lue.Fin;
  const std::string_view Toute = std::string_view(Bruts_).substr(Début, Lue.Fin - Début);
  const std::string_view Utile = SansBlancs(Toute);
  if (Utile.empty() || Utile.front() == ';' || Utile.front() == '#') return Lue;
  if (Utile.front() == '[') {
    if (const std::size_t Crochet = Utile.find(']'); Crochet != std::string_view::npos)
      Lue.Section = EnUtf8(SansBlancs(Utile.substr(1, Crochet - 1)));
    return Lue;
  }
  const std::size_t Égal = Toute.find('=');
  if (Égal == std::string_view::npos) return Lue;
  Lue.Clé = EnUtf8(SansBlancs(Toute.substr(0, Égal)));
  const std::size_t Premier = Toute.find_first_not_of(Blancs, Égal + 1);
  Lue.DébutValeur = Premier == std::string_view::npos ? Lue.Fin : Début + Premier;
  Lue.FinValeur = Premier == std::string_view::npos ? Lue.Fin : Début + Toute.find_last_not_of(Blancs) + 1;
  return Lue;
}

TexteIni::Recherche TexteIni::Chercher(std::string_view Section, std::string_view Clé) const {
  Recherche Trouvé;
  bool Dedans = false;
  bool PremièreSection = false;
  std::size_t Début = Bruts_.starts_with(Marque) ? Marque.size() : 0;
  while (Début < Bruts_.size()) {
    const Ligne Lue = LigneÀ(Début);
    if (Lue.Section) {
      Dedans = SansCasse(*Lue.Section, Section);
      PremièreSection = Dedans && !Trouvé.Ajout;
      if (PremièreSection) Trouvé.Ajout = Lue.Suivante;
    } else if (Lue.Clé && Dedans) {
      if (SansCasse(*Lue.Clé, Clé)) {
        Trouvé.Valeur = {Lue.DébutValeur, Lue.FinValeur};
        break;
      }
      if (PremièreSection) Trouvé.Ajout = Lue.Suivante;
    }
    Début = Lue.Suivante;
  }
  return Trouvé;
}

std::optional<std::string> TexteIni::Lire(std::string_view Section, std::string_view Clé) const {
  const Recherche Trouvé = Chercher(Section, Clé);
  if (!Trouvé.Valeur) return std::nullopt;
  const auto [Début, Fin] = *Trouvé.Valeur;
  return EnUtf8(SansGuillemets(std::string_view(Bruts_).substr(Début, Fin - Début)));
}

void TexteIni::Ecrire(std::string_view Section, std::string_view Clé, std::string_view Valeur) {
  VérifierTextes(Section, Clé, Valeur);
  const std::string Écrite = DansLeFichier(ValeurÉcrite(Valeur));
  const std::string NouvelleLigne = DansLeFichier(std::string(Clé)) + "=" + Écrite + FinDeLigne_;
  const Recherche Trouvé = Chercher(Section, Clé);
  std::string Nouveaux = Bruts_;
  if (Trouvé.Valeur) {
    const auto [Début, Fin] = *Trouvé.Valeur;
    Nouveaux.replace(Début, Fin - Début, Écrite);
  } else {
    const std::size_t Place = Trouvé.Ajout.value_or(Bruts_.size());
    const bool Coller = Place > 0 && Bruts_[Place - 1] != '\n' && Bruts_ != Marque;
    const bool EstCoupée = Coller && Bruts_[Place - 1] == '\r';  // the line end lacks its other half
    std::string Ajout = !Coller ? "" : EstCoupée ? "\n" : FinDeLigne_;
    if (!Trouvé.Ajout) {
      const bool Séparer = !Bruts_.empty() && Bruts_ != Marque;
      Ajout += (Séparer ? FinDeLigne_ : "") + "[" + DansLeFichier(std::string(Section)) + "]" + FinDeLigne_;
    }
    Nouveaux.insert(Place, Ajout + NouvelleLigne);
  }
  // Accents that happen to look like UTF-8 are told from it by the others alone.
  if (!Utf8_ && EstUtf8(Nouveaux) && !EstAscii(Nouveaux))
    throw ErreurExécution(
        "Avec ce réglage, le fichier ne serait plus lu en Windows-1252 : il faut l'enregistrer en UTF-8.");
  Bruts_ = std::move(Nouveaux);
}

}  // namespace Ombrey
