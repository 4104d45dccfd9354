// Loads the module that shows the station in windows.
#include "host/windows_module.h"

#include <dlfcn.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string>
#include <system_error>

#include "base/failures.h"
#include "base/files.h"
#include "host/plugin_loader.h"

namespace Tarvel {
namespace {

/// Each of them says where windows can be shown.
constexpr std::array<const char*, 3> VariablesAffichage = {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"};

std::filesystem::path Module() { return GreffonHabituel().replace_filename("tarvel-qt.so"); }

bool EstDonnée(const char* Variable) {
  const char* const Valeur = std::getenv(Variable);
  return Valeur != nullptr && *Valeur != '\0';
}

}  // namespace

bool FenêtresInstallées() {
  std::error_code Erreur;
  return std::filesystem::exists(Module(), Erreur);
}

std::unique_ptr<IÉdition> CréerÉditionFenêtrée(const Options& Choisies) {
  if (std::ranges::none_of(VariablesAffichage, EstDonnée))
    throw ErreurOptions("aucun écran ici (DISPLAY n'est pas défini) ; l'option --console s'en passe");
  const std::filesystem::path Chemin = Module();
  void* const Bibliothèque = dlopen(Chemin.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
  if (Bibliothèque == nullptr) {
    const char* const Motif = dlerror();
    throw Ombrey::ErreurExécution("Les fenêtres ne se chargent pas (" + std::string(Motif == nullptr ? "" : Motif) +
                                  ") ; l'option --console s'en passe.");
  }
  const auto Fabrique = reinterpret_cast<FabriqueFenêtres>(dlsym(Bibliothèque, NomFabriqueFenêtres));
  if (Fabrique == nullptr)
    throw Ombrey::ErreurExécution("«" + Ombrey::TexteChemin(Chemin) + "» n'est pas le module des fenêtres.");
  std::unique_ptr<IÉdition> Édition;
  Fabrique(Choisies, Édition);
  return Édition;
}

}  // namespace Tarvel
