// From the dialect of the cooperative's database to SQLite's.
#pragma once

#include <string>
#include <string_view>

namespace Ombrey {

/// The same query for SQLite. Three things are turned; all the rest stays as it stands, and so do literals and
/// bracketed names, whatever they hold:
/// - `a & b` joins texts, and a Null counts as the empty text;
/// - `Clng(x)` becomes `CAST(x AS INTEGER)`, which can use an index on that expression;
/// - `FROM a RIGHT JOIN b ON c` becomes `FROM b LEFT JOIN a ON c`, as long as no `*` makes the columns' order depend on
///   the tables' order: SQLite reads the whole of b for a right join, but only the rows looked for for a left one.
/// A text that is no well-formed query comes back as something that the engine refuses.
[[nodiscard]] std::string TraduireEnSqlite(std::string_view Sql);

/// True when the text begins with the keyword SELECT.
[[nodiscard]] bool CommenceParSelect(std::string_view Sql);

}  // namespace Ombrey
