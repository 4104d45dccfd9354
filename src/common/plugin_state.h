// The plug-in's state: one object that core owns and hands down to the rooms.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "base/failures.h"
#include "common/line_use.h"
#include "common/operator_channel.h"
#include "contracts/platform.h"

namespace Ombrey {

/// The plug-in's name towards the host, and the title of its boxes where no other is laid down.
inline constexpr const char* NomPlugIn = "RG80 Ombrey";
/// The plug-in's own file name without its extension: its application name in the per-user settings.
inline constexpr const char* NomComposant = "PlgInOmbrey";
/// The plug-in's section in the host's settings file.
inline constexpr const char* SectionIni = "PlugInOmbrey";

struct ÉtatPlugIn {
  ÉtatPlugIn(IPlateforme& LaPlateforme, ICanalOpérateur& LeCanal)
      : Plateforme(LaPlateforme), Canal(LeCanal), Liaison(LaPlateforme) {}

  IPlateforme& Plateforme;
  ICanalOpérateur& Canal;

  // MOmbreyGlobal
  std::shared_ptr<IPlugInTarvel> PlugInCourant;  ///< keeps the plug-in alive until it has ended
  std::shared_ptr<IBaseDeD> BaseDeD;
  std::int32_t PériodeInterrogation = 2000;  ///< milliseconds from the end of a poll to the next

  // Members of PlugIn
  std::shared_ptr<IEventPlugin> EventPlugin;
  std::shared_ptr<IPortComm> PortComm;
  std::string DernierNoChargement;
  Octets TamponRéception;  ///< what the terminal sent and nobody has consumed
  bool Abandon = false;    ///< the plug-in is ending: look at it again after every pump

  // References that receive events
  std::shared_ptr<IEtatBdD> EtatBdD;
  std::shared_ptr<IRetard> Retard;

  ErreurEnAttente Erreur;  ///< the pending run-time failure
  UsageLiaison Liaison;

  /// A box with an OK button. Without a title it bears the plug-in's name.
  void Avertir(const std::string& Texte, const std::string& Titre = NomPlugIn) {
    Plateforme.Fenêtres().Boîte(Texte, Titre, BoutonsBoîte::Ok);
  }
  /// The port, held for as long as the caller keeps it. Raises ErreurExécution when none was set or could be had.
  [[nodiscard]] std::shared_ptr<IPortComm> PortRéglé() const {
    if (!PortComm) throw ErreurExécution("Aucun port n'est réglé (Station > Configurer le port)");
    return PortComm;
  }
  [[nodiscard]] Régional Formes() const { return Plateforme.Système().FormesRégionales(); }
};

}  // namespace Ombrey
