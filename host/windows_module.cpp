// Loads the module that shows the station in windows.
#include "host/windows_module.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "host/plugin_loader.h"

namespace Tarvel {
namespace {

/// Each of them says where windows can be shown.
constexpr std::array<const char*, 3> VariablesAffichage = {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"};

constexpr const char* Module = "tarvel-qt.so";

bool EstDonnée(const char* Variable) {
  const char* const Valeur = std::getenv(Variable);
  return Valeur != nullptr && *Valeur != '\0';
}

}  // namespace

bool FenêtresInstallées() {
  std::error_code Erreur;
  return std::filesystem::exists(ModuleInstallé(Module), Erreur);
}

bool ÉcranNommé() { return std::ranges::any_of(VariablesAffichage, EstDonnée); }

std::unique_ptr<IÉdition> CréerÉditionFenêtrée(const Options& Choisies) {
  if (!ÉcranNommé()) throw ErreurOptions("aucun écran ici (DISPLAY n'est pas défini) ; l'option --console s'en passe");
  const auto Fabrique = reinterpret_cast<FabriqueFenêtres>(SymboleDuModule(
      Module, NomFabriqueFenêtres, "Les fenêtres ne se chargent pas", " ; l'option --console s'en passe."));
  std::unique_ptr<IÉdition> Édition;
  Fabrique(Choisies, Édition);
  return Édition;
}

void ÉcrirePapier(const std::string& Html, bool Ticket, const std::filesystem::path& Fichier) {
  const auto Écrire = reinterpret_cast<ÉcriturePdf>(
      SymboleDuModule(Module, NomÉcriturePdf, "Le PDF a besoin du module des fenêtres, qui ne se charge pas", "."));
  Écrire(Html, Ticket, Fichier);
}

std::string ImprimerPapier(const std::string& Html) {
  const auto Imprimer = reinterpret_cast<Impression>(SymboleDuModule(
      Module, NomImpression, "L'impression a besoin du module des fenêtres, qui ne se charge pas", "."));
  std::string Imprimante;
  Imprimer(Html, Imprimante);
  return Imprimante;
}

}  // namespace Tarvel
