// The dialect's functions that SQLite lacks.
#pragma once

#include "platform/database/connection.h"

struct sqlite3;

namespace Ombrey {

/// Gives the connection `Format(date, modèle)` (dd, mm, hh, nn, ss, yyyy; Null stays Null) and `Date()`, today without
/// a time of day, by Maintenant (days since 1899-12-30). They work in queries alone: views, indexes and triggers can't
/// use them, so that the file stays open to every other tool.
void InscrireFonctions(sqlite3* Base, Horloge Maintenant);

}  // namespace Ombrey
