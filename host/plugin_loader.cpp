// Finds a plug-in's library and makes the plug-in.
#include "host/plugin_loader.h"

#include <dlfcn.h>

#include <string>
#include <system_error>

#include "base/failures.h"
#include "base/files.h"

namespace Tarvel {
namespace {

using Ombrey::ErreurExécution;

/// The loader's own words on what went wrong last.
std::string MotifChargement() {
  const char* Motif = dlerror();
  return Motif == nullptr ? "" : std::string(" (") + Motif + ")";
}

Ombrey::FabriquePlugIn FabriqueDe(void* Bibliothèque, int VersionContrat) {
  const std::string Nom = Ombrey::NomFabrique + std::to_string(VersionContrat);
  return reinterpret_cast<Ombrey::FabriquePlugIn>(dlsym(Bibliothèque, Nom.c_str()));
}

/// What is wrong with a library without our factory: it may be a plug-in of another time.
std::string MotifRefus(void* Bibliothèque) {
  constexpr int DernièreVersion = 99;
  for (int Autre = 1; Autre <= DernièreVersion; ++Autre) {
    if (FabriqueDe(Bibliothèque, Autre) == nullptr) continue;
    return " est fait pour la version " + std::to_string(Autre) +
           " de l'interface des greffons, et ce programme pour la " + std::to_string(Ombrey::VersionContrat) +
           " : installez le greffon et le programme de la même version.";
  }
  return " n'est pas un greffon de Tarvel : il n'offre pas " + std::string(Ombrey::NomFabrique) +
         std::to_string(Ombrey::VersionContrat) + ".";
}

}  // namespace

std::filesystem::path ModuleInstallé(const char* Nom) {
  std::error_code Erreur;
  const std::filesystem::path Programme = std::filesystem::read_symlink("/proc/self/exe", Erreur);
  std::filesystem::path Voisin = Programme.parent_path() / Nom;
  if (std::filesystem::exists(Voisin, Erreur)) return Voisin;
  return (Programme.parent_path() / OMBREY_MODULES / Nom).lexically_normal();
}

std::filesystem::path GreffonHabituel() { return ModuleInstallé("PlgInOmbrey.so"); }

void* SymboleDuModule(const char* Nom, const char* Symbole, const std::string& Début, const std::string& Fin) {
  const std::filesystem::path Chemin = ModuleInstallé(Nom);
  void* const Bibliothèque = dlopen(Chemin.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
  if (Bibliothèque == nullptr) throw ErreurExécution(Début + MotifChargement() + Fin);
  void* const Trouvé = dlsym(Bibliothèque, Symbole);
  if (Trouvé == nullptr) throw ErreurExécution(Début + MotifChargement() + Fin);
  return Trouvé;
}

std::shared_ptr<Ombrey::IPlugInTarvel> ChargerGreffon(const std::filesystem::path& Fichier,
                                                      Ombrey::IPlateforme& Plateforme) {
  const std::string Nom = "Le greffon « " + Ombrey::TexteChemin(Fichier) + " »";
  std::error_code Erreur;
  if (!std::filesystem::is_regular_file(Fichier, Erreur)) throw ErreurExécution(Nom + " est introuvable.");
  // A bare name would be looked for in the system's folders.
  const std::filesystem::path Chemin = std::filesystem::absolute(Fichier);
  void* Bibliothèque = dlopen(Chemin.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
  if (Bibliothèque == nullptr) throw ErreurExécution(Nom + " ne se charge pas." + MotifChargement());
  const auto Fabrique = FabriqueDe(Bibliothèque, Ombrey::VersionContrat);
  if (Fabrique == nullptr) throw ErreurExécution(Nom + MotifRefus(Bibliothèque));
  std::shared_ptr<Ombrey::IPlugInTarvel> PlugIn;
  Fabrique(Plateforme, PlugIn);
  if (!PlugIn) throw ErreurExécution(Nom + " n'a rien créé.");
  return PlugIn;
}

}  // namespace Tarvel
