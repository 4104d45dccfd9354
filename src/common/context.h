// The context: what several rooms of the plug-in share. Core owns it and hands it down; with it come the contracts, the
// failures and the line.
#pragma once

#include <memory>
#include <string>

#include "base/failures.h"
#include "common/line_use.h"
#include "common/operator_channel.h"
#include "contracts/database.h"
#include "contracts/host.h"
#include "contracts/platform.h"
#include "contracts/system.h"
#include "contracts/toolkit.h"

namespace Ombrey {

/// The plug-in's name towards the host, and the title of its boxes where no other is laid down.
inline constexpr const char* NomPlugIn = "RG80 Ombrey";

struct ÉtatPartagé {
  ÉtatPartagé(IPlateforme& LaPlateforme, ICanalOpérateur& LeCanal)
      : Plateforme(LaPlateforme), Canal(LeCanal), Liaison(LaPlateforme) {}

  IPlateforme& Plateforme;
  ICanalOpérateur& Canal;

  std::shared_ptr<IPlugInTarvel> PlugInCourant;  ///< keeps the plug-in alive until it has ended
  bool Abandon = false;                          ///< the plug-in is ending: look at it again after every pump

  // The host's own, which core has from it and the rooms use
  std::shared_ptr<IBaseDeD> BaseDeD;
  std::shared_ptr<IEtatBdD> EtatBdD;
  std::shared_ptr<IEventPlugin> EventPlugin;

  std::string DernierNoChargement;  ///< the dialogue received it, the reply and its button send its figures
  ErreurEnAttente Erreur;           ///< the pending run-time failure, one for the plug-in
  UsageLiaison Liaison;

  /// True for who began with this base and has nobody left to answer for: the plug-in is ending, or works on another
  /// base now. Holding, row and figures of one load come from one database.
  [[nodiscard]] bool EstRompu(const std::shared_ptr<IBaseDeD>& Début) const { return Abandon || BaseDeD != Début; }
  /// A box with an OK button. Without a title it bears the plug-in's name.
  void Avertir(const std::string& Texte, const std::string& Titre = NomPlugIn) {
    Plateforme.Fenêtres().Boîte(Texte, Titre, BoutonsBoîte::Ok);
  }
  /// The host's open database. Raises "Variable objet non définie" when there is none.
  [[nodiscard]] std::shared_ptr<IDatabase> BaseDAO() const { return Exiger(Exiger(BaseDeD)->BaseDAO()); }
  [[nodiscard]] Régional Formes() const { return Plateforme.Système().FormesRégionales(); }
};

}  // namespace Ombrey
