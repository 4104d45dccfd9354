// Time, waiting, places and regional forms of this machine.
#include "platform/system/machine_system.h"

#include <langinfo.h>
#include <locale.h>  // NOLINT(modernize-deprecated-headers): newlocale is POSIX

#include <array>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <string_view>

#include "base/failures.h"
#include "base/files.h"

namespace Ombrey {

namespace {

constexpr int AnnéeZéro = 1900;

/// The locale's name for numbers, by the order in which the environment is asked.
std::string_view NomLocale() {
  constexpr std::array<const char*, 3> Variables = {"LC_ALL", "LC_NUMERIC", "LANG"};
  for (const char* Variable : Variables) {
    const char* Nom = std::getenv(Variable);
    if (Nom && *Nom != '\0') return Nom;
  }
  return {};
}

std::filesystem::path Préparé(const std::filesystem::path& Dossier) {
  const std::filesystem::path Entier = std::filesystem::absolute(Dossier);
  CréerDossier(Entier);
  return Entier;
}

}  // namespace

Régional FormesDeLEnvironnement() {
  const std::string_view Nom = NomLocale();
  const bool SansPays = Nom.empty() || Nom == "C" || Nom == "POSIX" || Nom.starts_with("C.");
  if (SansPays) return {};
  const locale_t Locale = newlocale(LC_NUMERIC_MASK, Nom.data(), static_cast<locale_t>(nullptr));
  if (!Locale) return {};
  const std::string_view Séparateur = nl_langinfo_l(RADIXCHAR, Locale);
  const Régional Formes = Séparateur.size() == 1 ? Régional{Séparateur.front()} : Régional{};
  freelocale(Locale);
  return Formes;
}

SystèmeMachine::SystèmeMachine(IBoucle& Boucle) : Boucle_(Boucle), Formes_(FormesDeLEnvironnement()) { tzset(); }

SystèmeMachine::SystèmeMachine(IBoucle& Boucle, const std::filesystem::path& Dossier) : SystèmeMachine(Boucle) {
  Dossier_ = Préparé(Dossier);
  Verrou_.emplace(Dossier_);
}

std::uint32_t SystèmeMachine::Tics() const {
  const auto Depuis = std::chrono::steady_clock::now().time_since_epoch();
  return static_cast<std::uint32_t>(std::chrono::duration_cast<std::chrono::milliseconds>(Depuis).count());
}

DateHeure HeureLocale() {
  const std::time_t Instant = std::time(nullptr);
  std::tm Locale{};
  if (!localtime_r(&Instant, &Locale)) throw ErreurExécution("L'heure de la machine ne peut pas être lue.");
  return {Locale.tm_year + AnnéeZéro, Locale.tm_mon + 1, Locale.tm_mday, Locale.tm_hour, Locale.tm_min, Locale.tm_sec};
}

std::filesystem::path SystèmeMachine::DossierImportsConservés() const { return Dossier_ / "imports-refusés"; }

}  // namespace Ombrey
