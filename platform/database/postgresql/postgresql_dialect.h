// From the dialect of the cooperative's database, and from the host's language, to PostgreSQL's.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/database/connection.h"

namespace Ombrey {

/// The same statement for PostgreSQL. Names are quoted, so that they keep their case and accents; `&` and CAST take any
/// type; `Clng(x)` and `CAST(x AS INTEGER)` are the number that a text begins with, 0 without one, and can use an index
/// on that expression; `Format` and `Date()` work on days since 1899-12-30, the latter by Maintenant; True and False
/// are -1 and 0; Null sorts ahead of all values; ?1 becomes $1. In the making of a table the types become those that
/// hold and sort the same.
[[nodiscard]] std::string TraduireEnPostgresql(std::string_view Sql, const Horloge& Maintenant);

/// The statements of a script, which semicolons end.
[[nodiscard]] std::vector<std::string_view> Instructions(std::string_view Script);

/// True when the text has the word, outside of literals and bracketed names.
[[nodiscard]] bool ContientMot(std::string_view Sql, std::string_view Mot);

/// The name in quotes.
[[nodiscard]] std::string NomPostgresql(std::string_view Nom);

}  // namespace Ombrey
