// End of the plug-in: files cleaned, window, port and host released, each step on its own.
#include <filesystem>
#include <string_view>
#include <system_error>
#include <vector>

#include "base/files.h"
#include "core/plugin.h"
#include "link/daily_error_file.h"

namespace Ombrey {
namespace {

/// At most so many left-over import files are deleted in one go.
constexpr int MaxFichiersNettoyés = 10000;
constexpr std::string_view DébutFichierImport = "RG80 ";

}  // namespace

std::string PlugIn::IPlugInTarvel_Terminer() {
  // Releasing PlugInCourant may drop the last reference in the middle of the steps.
  const auto Tenu = weak_from_this().lock();
  État_.Abandon = true;
  État_.Liaison.Terminer();
  Ignorer([this] { Interrogation_.Terminer(); });
  Ignorer([this] { NettoyerFichiersImport(); });
  // Not in the second call: it would bring back a folder that the host has put away meanwhile.
  if (État_.PlugInCourant) Ignorer([this] { NettoyerFichierErreurs(État_.Plateforme.Système()); });
  Ignorer([this] {
    if (const auto Ouverte = FChargntDonnées_.lock()) Ouverte->Décharger();
  });
  Ignorer([this] { Canal_.Décharger(); });
  État_.PlugInCourant.reset();
  EventPortComRG80_.reset();
  Ignorer([this] { Échange_.FermerPort(); });
  ServeurPortComm_.reset();
  Ignorer([this] { Exiger(AccèsDistant_)->Fermer(); });
  AccèsDistant_.reset();
  DéconnecterÉvénements();
  État_.EventPlugin.reset();
  État_.BaseDeD.reset();
  return "";
}

void PlugIn::NettoyerFichiersImport() {
  std::string Dossier;
  std::string Nom;
  Exiger(État_.EtatBdD)->ObtenirFichierImport(Dossier, Nom);
  std::vector<std::filesystem::path> Restes;
  std::error_code Code;
  for (const auto& Entrée : std::filesystem::directory_iterator(Chemin(Dossier))) {
    const bool EstImport = TexteChemin(Entrée.path().filename()).starts_with(DébutFichierImport);
    if (EstImport && !Entrée.is_directory(Code)) Restes.push_back(Entrée.path());
    if (Restes.size() == MaxFichiersNettoyés) break;
  }
  for (const auto& Reste : Restes) std::filesystem::remove(Reste, Code);
}

}  // namespace Ombrey
