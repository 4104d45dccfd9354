// A small cooperative to try the station out on.
#pragma once

#include "platform/database/connection.h"

namespace Tarvel {

/// Fills the empty tables with members, holdings, groups, appellations, classes, quotas and grape varieties; no loads.
/// Member 210 and harvester 305 share two holdings, of different shares and groups.
void InsérerExemple(Ombrey::IConnexion& Connexion);

}  // namespace Tarvel
