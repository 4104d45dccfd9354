// The dialect of the cooperative's database: its lexer, and the walk that turns a query for an engine.
#include "platform/database/dialect.h"

#include <algorithm>
#include <array>

#include "base/text_helpers.h"

namespace Ombrey {

namespace {

/// The engine reads no deeper, and refuses what is copied as it stands.
constexpr int ProfondeurMax = 100;

/// The keywords that can stand ahead of an operand or a parenthesis, and so aren't names of columns or functions.
constexpr std::array<std::string_view, 35> Motsclés = {
    "SELECT", "DISTINCT", "ALL",  "TOP",  "FROM",  "WHERE", "AND",   "OR",   "NOT",   "ON",    "IN",   "AS",
    "BY",     "BETWEEN",  "LIKE", "IS",   "GROUP", "ORDER", "UNION", "JOIN", "INNER", "OUTER", "LEFT", "RIGHT",
    "HAVING", "EXISTS",   "CASE", "WHEN", "THEN",  "ELSE",  "END",   "ASC",  "DESC",  "CROSS", "LIMIT"};

bool EstBlanc(char C) { return C == ' ' || C == '\t' || C == '\r' || C == '\n'; }
bool EstChiffre(char C) { return C >= '0' && C <= '9'; }
bool EstLettre(char C) {
  return (C >= 'a' && C <= 'z') || (C >= 'A' && C <= 'Z') || C == '_' || static_cast<unsigned char>(C) >= 0x80;
}

bool EstMotclé(std::string_view Texte) {
  return std::any_of(Motsclés.begin(), Motsclés.end(), [&](std::string_view Mot) { return EstMot(Texte, Mot); });
}

/// Length of the text up to and with its closing character; a doubled one doesn't close it.
std::size_t LongueurEnclose(std::string_view Texte, char Fermante) {
  std::size_t Place = 1;
  while (Place < Texte.size()) {
    if (Texte[Place] == Fermante) {
      const bool Doublée = Fermante != ']' && Place + 1 < Texte.size() && Texte[Place + 1] == Fermante;
      if (!Doublée) return Place + 1;
      ++Place;
    }
    ++Place;
  }
  return Texte.size();
}

template <class Condition>
std::size_t LongueurTant(std::string_view Texte, Condition Tient) {
  return static_cast<std::size_t>(std::find_if_not(Texte.begin(), Texte.end(), Tient) - Texte.begin());
}

Jeton Premier(std::string_view Reste) {
  const char C = Reste.front();
  const auto EstSuite = [](char Suivant) { return EstLettre(Suivant) || EstChiffre(Suivant); };
  if (EstBlanc(C)) return {Genre::Blanc, Reste.substr(0, LongueurTant(Reste, EstBlanc))};
  if (C == '\'' || C == '"') return {Genre::Littéral, Reste.substr(0, LongueurEnclose(Reste, C))};
  if (C == '[') return {Genre::Nom, Reste.substr(0, LongueurEnclose(Reste, ']'))};
  if (EstChiffre(C)) {
    const auto EstDuNombre = [&](char Suivant) { return EstSuite(Suivant) || Suivant == '.'; };
    return {Genre::Nombre, Reste.substr(0, LongueurTant(Reste, EstDuNombre))};
  }
  if (EstLettre(C)) {
    const std::string_view Mot = Reste.substr(0, LongueurTant(Reste, EstSuite));
    return {EstMotclé(Mot) ? Genre::Motclé : Genre::Nom, Mot};
  }
  return {Genre::Signe, Reste.substr(0, 1)};
}

}  // namespace

bool EstMot(std::string_view Texte, std::string_view Mot) {
  return std::equal(Texte.begin(), Texte.end(), Mot.begin(), Mot.end(),
                    [](char A, char B) { return MinusculeAscii(A) == MinusculeAscii(B); });
}

std::vector<Jeton> Découper(std::string_view Sql) {
  std::vector<Jeton> Jetons;
  while (!Sql.empty()) {
    Jetons.push_back(Premier(Sql));
    Sql.remove_prefix(Jetons.back().Texte.size());
  }
  return Jetons;
}

std::string Traducteur::Traduire() {
  std::size_t Place = 0;
  return Suite(Place, Jetons_.size());
}

bool Traducteur::EstSigne(std::size_t Place, std::string_view Choix) const {
  return Place < Jetons_.size() && Jetons_[Place].Sorte == Genre::Signe &&
         Choix.find(Jetons_[Place].Texte) != Choix.npos;
}

bool Traducteur::EstMotcléLà(std::size_t Place, std::string_view Mot) const {
  return Place < Jetons_.size() && Jetons_[Place].Sorte == Genre::Motclé && EstMot(Jetons_[Place].Texte, Mot);
}

bool Traducteur::EstNom(std::size_t Place) const {
  return Place < Jetons_.size() && Jetons_[Place].Sorte == Genre::Nom;
}

bool Traducteur::OuvreOpérande(std::size_t Place) const {
  if (Place >= Jetons_.size()) return false;
  const Genre Sorte = Jetons_[Place].Sorte;
  return Sorte == Genre::Littéral || Sorte == Genre::Nombre || Sorte == Genre::Nom || EstSigne(Place, "(");
}

std::size_t Traducteur::SauterBlancs(std::size_t Place) const {
  while (Place < Jetons_.size() && Jetons_[Place].Sorte == Genre::Blanc) ++Place;
  return Place;
}

/// Place of the parenthesis that closes the one at Place; none when it stays open.
std::optional<std::size_t> Traducteur::Fermeture(std::size_t Place) const {
  int Profondeur = 0;
  for (; Place < Jetons_.size(); ++Place) {
    if (EstSigne(Place, "(")) ++Profondeur;
    if (EstSigne(Place, ")") && --Profondeur == 0) return Place;
  }
  return std::nullopt;
}

bool Traducteur::AToutesColonnes() const {
  for (std::size_t Place = 1; Place < Jetons_.size(); ++Place) {
    if (!EstSigne(Place, "*")) continue;
    std::size_t Avant = Place - 1;
    while (Avant > 0 && Jetons_[Avant].Sorte == Genre::Blanc) --Avant;
    if (Jetons_[Avant].Sorte == Genre::Motclé || EstSigne(Avant, ",.")) return true;
  }
  return false;
}

std::string Traducteur::Copie(std::size_t& Place, std::size_t Jusque) const {
  std::string Texte;
  for (; Place < Jusque; ++Place) Texte += Jetons_[Place].Texte;
  return Texte;
}

std::string Traducteur::Suite(std::size_t& Place, std::size_t Fin) {
  std::string Texte;
  while (Place < Fin) {
    const bool EstFrom = EstMotcléLà(Place, "FROM");
    if (OuvreOpérande(Place) || EstSigne(Place, "+-"))
      Texte += Chaîne(Place, Fin);
    else
      Texte += Copie(Place, Place + 1);
    if (EstFrom) Texte += JointureRetournée(Place).value_or("");
  }
  return Texte;
}

std::string Traducteur::Chaîne(std::size_t& Place, std::size_t Fin) {
  std::string Texte = Opérande(Place, Fin);
  std::size_t Suivant = SauterBlancs(Place);
  if (Suivant >= Fin || !EstSigne(Suivant, "&")) return Texte;
  Texte = "(" + EnTexte(Texte);
  while (Suivant < Fin && EstSigne(Suivant, "&")) {
    Place = SauterBlancs(Suivant + 1);
    Texte += "||" + EnTexte(Opérande(Place, Fin));
    Suivant = SauterBlancs(Place);
  }
  return Texte + ")";
}

/// Arithmetic binds its operands closer than the joining does.
std::string Traducteur::Opérande(std::size_t& Place, std::size_t Fin) {
  std::string Texte = Facteur(Place, Fin);
  for (;;) {
    const std::size_t Opérateur = SauterBlancs(Place);
    if (Opérateur >= Fin || !EstSigne(Opérateur, "+-*/")) return Texte;
    std::size_t Droite = SauterBlancs(Opérateur + 1);
    if (EstSigne(Droite, "+-")) ++Droite;
    if (Droite >= Fin || !OuvreOpérande(Droite)) return Texte;
    Texte += Copie(Place, Droite);
    Texte += Facteur(Place, Fin);
  }
}

std::string Traducteur::Facteur(std::size_t& Place, std::size_t Fin) {
  std::string Texte;
  while (Place < Fin && EstSigne(Place, "+-")) Texte += Copie(Place, SauterBlancs(Place + 1));
  if (Place >= Fin || !OuvreOpérande(Place)) return Texte;
  if (EstSigne(Place, "(")) {
    const auto Fermante = Fermeture(Place);
    return Fermante ? Texte + "(" + Intérieur(Place, *Fermante) + ")" : Texte + Copie(Place, Fin);
  }
  if (!EstNom(Place)) return Texte + Copie(Place, Place + 1);

  const std::string Nom = Copie(Place, FinNom(Place));
  std::size_t Ouvrante = SauterBlancs(Place);
  const auto Fermante = EstSigne(Ouvrante, "(") ? Fermeture(Ouvrante) : std::nullopt;
  if (!Fermante) return Texte + Nommer(Nom);
  Place = Ouvrante;
  const std::string Arguments = Intérieur(Place, *Fermante);
  return Texte + Appeler(Nom, Arguments);
}

/// What stands between two parentheses; Place then stands behind the closing one.
std::string Traducteur::Intérieur(std::size_t& Place, std::size_t Fermante) {
  ++Place;
  if (Profondeur_ == ProfondeurMax) {
    std::string Texte = Copie(Place, Fermante);
    ++Place;
    return Texte;
  }
  ++Profondeur_;
  std::string Texte = JointureRetournée(Place).value_or("");
  Texte += Suite(Place, Fermante);
  --Profondeur_;
  Place = Fermante + 1;
  return Texte;
}

std::size_t Traducteur::FinNom(std::size_t Place) const {
  ++Place;
  while (EstSigne(Place, ".") && (EstNom(Place + 1) || EstSigne(Place + 1, "*"))) Place += 2;
  return Place;
}

/// Place behind a table or a parenthesis, with its alias; none when something else stands there.
std::optional<std::size_t> Traducteur::FinSource(std::size_t Place) const {
  std::size_t Derrière = 0;
  if (const auto Fermante = EstSigne(Place, "(") ? Fermeture(Place) : std::nullopt)
    Derrière = *Fermante + 1;
  else if (EstNom(Place))
    Derrière = FinNom(Place);
  else
    return std::nullopt;
  std::size_t Alias = SauterBlancs(Derrière);
  if (EstMotcléLà(Alias, "AS")) Alias = SauterBlancs(Alias + 1);
  return EstNom(Alias) ? Alias + 1 : Derrière;
}

std::optional<std::string> Traducteur::JointureRetournée(std::size_t& Place) {
  if (!OrdreLibre_) return std::nullopt;
  std::size_t Gauche = SauterBlancs(Place);
  const auto FinGauche = FinSource(Gauche);
  if (!FinGauche) return std::nullopt;
  std::size_t Mot = SauterBlancs(*FinGauche);
  if (!EstMotcléLà(Mot, "RIGHT")) return std::nullopt;
  Mot = SauterBlancs(Mot + 1);
  if (EstMotcléLà(Mot, "OUTER")) Mot = SauterBlancs(Mot + 1);
  std::size_t Droite = SauterBlancs(Mot + 1);
  const auto FinDroite = FinSource(Droite);
  if (!EstMotcléLà(Mot, "JOIN") || !FinDroite || !EstMotcléLà(SauterBlancs(*FinDroite), "ON")) return std::nullopt;

  // A parenthesis or a bracket needs no blank beside it; the name that takes its place does.
  const bool ColléDevant = Gauche == Place && Place > 0 && Jetons_[Place - 1].Sorte == Genre::Motclé;
  const std::string Devant = ColléDevant ? " " : Copie(Place, Gauche);
  const std::string Conservée = Suite(Droite, *FinDroite);
  const std::string Facultative = Suite(Gauche, *FinGauche);
  Place = *FinDroite;
  return Devant + Conservée + " LEFT JOIN " + Facultative + (Jetons_[Place].Sorte == Genre::Blanc ? "" : " ");
}

bool CommenceParSelect(std::string_view Sql) {
  const std::vector<Jeton> Jetons = Découper(Sql);
  const auto Premier =
      std::find_if(Jetons.begin(), Jetons.end(), [](const Jeton& J) { return J.Sorte != Genre::Blanc; });
  return Premier != Jetons.end() && EstMot(Premier->Texte, "SELECT");
}

bool EstRemplissage(std::string_view Reste) { return Reste.find_first_not_of(" \t\r\n;") == std::string_view::npos; }

}  // namespace Ombrey
