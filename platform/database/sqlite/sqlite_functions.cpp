// The dialect's functions that SQLite lacks.
#include "platform/database/sqlite/sqlite_functions.h"

#include <sqlite3.h>

#include <array>
#include <cmath>
#include <exception>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "base/regional_forms.h"
#include "contracts/system.h"
#include "platform/database/sqlite/sqlite_failures.h"

namespace Ombrey {
namespace {

/// The dialect's letters and those of the system's own patterns, where they differ.
constexpr std::array<std::pair<std::string_view, std::string_view>, 2> Lettres = {{{"dd", "jj"}, {"yyyy", "aaaa"}}};

std::string ModèleDuSystème(std::string Modèle) {
  for (const auto& [Dialecte, Système] : Lettres)
    for (std::size_t Rang = 0; (Rang = Modèle.find(Dialecte, Rang)) != std::string::npos; Rang += Système.size())
      Modèle.replace(Rang, Dialecte.size(), Système);
  return Modèle;
}

void Format(sqlite3_context* Contexte, int /*Nombre*/, sqlite3_value** Arguments) {
  const int Sorte = sqlite3_value_numeric_type(Arguments[0]);
  const auto* Modèle = reinterpret_cast<const char*>(sqlite3_value_text(Arguments[1]));
  if ((Sorte != SQLITE_INTEGER && Sorte != SQLITE_FLOAT) || Modèle == nullptr) {
    sqlite3_result_value(Contexte, Arguments[0]);
    return;
  }
  try {
    const DateHeure Moment = DepuisNuméroDeJour(sqlite3_value_double(Arguments[0]));
    const std::string Texte = TexteFormaté(Moment, ModèleDuSystème(Modèle));
    sqlite3_result_text(Contexte, Texte.data(), static_cast<int>(Texte.size()), SQLITE_TRANSIENT);
  } catch (const std::exception& Erreur) {
    sqlite3_result_error(Contexte, Erreur.what(), -1);
  }
}

void Date(sqlite3_context* Contexte, int /*Nombre*/, sqlite3_value** /*Arguments*/) {
  try {
    const auto& Maintenant = *static_cast<const Horloge*>(sqlite3_user_data(Contexte));
    sqlite3_result_int64(Contexte, static_cast<sqlite3_int64>(std::floor(Maintenant())));
  } catch (const std::exception& Erreur) {
    sqlite3_result_error(Contexte, Erreur.what(), -1);
  }
}

}  // namespace

void InscrireFonctions(sqlite3* Base, Horloge Maintenant) {
  // Within one statement the day counts as constant, so that a range of dates is looked up once, in the index.
  constexpr int Drapeaux = SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_DIRECTONLY;
  const auto Détruire = [](void* Objet) { delete static_cast<Horloge*>(Objet); };
  auto Copie = std::make_unique<Horloge>(std::move(Maintenant));
  int Code = sqlite3_create_function_v2(Base, "Format", 2, Drapeaux, nullptr, Format, nullptr, nullptr, nullptr);
  if (Code == SQLITE_OK)
    Code = sqlite3_create_function_v2(Base, "Date", 0, Drapeaux, Copie.release(), Date, nullptr, nullptr, Détruire);
  if (Code != SQLITE_OK) LeverÉchec(Base);
}

}  // namespace Ombrey
