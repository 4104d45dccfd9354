// Small helpers for texts, most of them numbers.
#include "base/text_helpers.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "base/regional_forms.h"

namespace Ombrey {

bool NormaliserNombre(std::string& Texte, const Régional& Formes) {
  if (EstNumérique(Texte, Formes)) return true;
  const bool Point = EstNumérique("1.1", Formes);
  const char Juste = Point ? '.' : ',';
  const char Faux = Point ? ',' : '.';

  const std::size_t Place = Texte.find(Faux);
  if (Place == std::string::npos) return false;
  const std::string Avant = Texte.substr(0, Place);
  const std::string Après = Texte.substr(Place + 1);
  std::string Corrigé;
  if (Avant.empty()) {
    Corrigé = std::string("0") + Juste + Après;
  } else if (Après.empty()) {
    Corrigé = Avant;
  } else {
    Corrigé = Avant + Juste + Après;
  }
  if (!EstNumérique(Corrigé, Formes)) return false;
  Texte = std::move(Corrigé);
  return true;
}

std::string SansEspaces(std::string Texte) {
  for (const std::string_view Espace : {" ", "\t", "\u00A0", "\u202F"})
    for (std::size_t Place = 0; (Place = Texte.find(Espace)) != std::string::npos;) Texte.erase(Place, Espace.size());
  return Texte;
}

std::optional<double> NombreTapé(const std::string& Texte, const Régional& Formes) {
  std::string Nombre = SansEspaces(Texte);
  if (!NormaliserNombre(Nombre, Formes)) return std::nullopt;
  return EnRéel(Nombre, Formes);
}

std::string_view SansBlancs(std::string_view Texte) {
  const std::size_t Début = Texte.find_first_not_of(Blancs);
  if (Début == std::string_view::npos) return {};
  return Texte.substr(Début, Texte.find_last_not_of(Blancs) - Début + 1);
}

std::string AvecTouche(std::string Texte, char Lettre) {
  const std::size_t Place = Texte.find(Lettre);
  return Place == std::string::npos ? Texte : Texte.insert(Place, 1, '&');
}

std::string MinusculesAscii(std::string_view Texte) {
  std::string Petites(Texte);
  std::ranges::transform(Petites, Petites.begin(), MinusculeAscii);
  return Petites;
}

std::string Énumérer(const std::vector<std::string>& Textes) {
  std::string Suite;
  for (const std::string& Texte : Textes) Suite += (Suite.empty() ? "" : " ; ") + Texte;
  return Suite;
}

std::string SupprZéroDébut(std::string Texte) {
  Texte.erase(0, std::min(Texte.find_first_not_of('0'), Texte.size()));
  return Texte;
}

std::string SupprZéroFin(std::string Texte) {
  while (Texte.size() > 1 && Texte.back() == '0') Texte.pop_back();
  return Texte;
}

std::string TexteSql(const std::string& Texte) {
  std::string Littéral = "'";
  for (const char Caractère : Texte) Littéral.append(Caractère == '\'' ? 2 : 1, Caractère);
  return Littéral + "'";
}

}  // namespace Ombrey
