// From the dialect of the cooperative's database to SQLite's.
#pragma once

#include <string>
#include <string_view>

namespace Ombrey {

/// The same query for SQLite. Names and literals stay as they stand; `Clng(x)` becomes `CAST(x AS INTEGER)`, which can
/// use an index on that expression.
[[nodiscard]] std::string TraduireEnSqlite(std::string_view Sql);

}  // namespace Ombrey
