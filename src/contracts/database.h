// What the plug-in needs of the cooperative's database: read-only recordsets opened by an SQL text.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace Ombrey {

/// A column's value: Null, whole number, number with decimals, or text in UTF-8. A boolean is 0 or -1; a date is a
/// number of days since 1899-12-30, the time of day being its fraction.
using ValeurChamp = std::variant<std::monostate, std::int64_t, double, std::string>;

[[nodiscard]] inline bool EstNull(const ValeurChamp& V) { return std::holds_alternative<std::monostate>(V); }
/// The value where it is of this kind, else none.
template <class Genre>
[[nodiscard]] std::optional<Genre> Comme(const ValeurChamp& Valeur) {
  const auto* const Sienne = std::get_if<Genre>(&Valeur);
  return Sienne ? std::optional(*Sienne) : std::nullopt;
}

/// The values are those of the database objects that this interface stands for.
enum class TypeRecordset {
  Défaut = 0,      ///< moves in both directions and can be counted
  Instantané = 4,  ///< the same, with the rows as they stood at opening
  VersLAvant = 8,  ///< MoveNext only; nothing is kept in memory
};

/// The rows of one query, one of them current. Freshly opened it stands on the first row, or is at its end.
/// Released by dropping the object. Reading past the end raises ErreurExécution.
class IRecordset {
 public:
  virtual ~IRecordset() = default;
  /// True behind the last row, and at once when the query gave none. (EOF itself is a macro of <cstdio>.)
  [[nodiscard]] virtual bool Eof() const = 0;
  virtual void MoveNext() = 0;
  /// These three raise ErreurExécution on a VersLAvant recordset; the moves also on an empty one.
  virtual void MoveFirst() = 0;
  virtual void MoveLast() = 0;
  [[nodiscard]] virtual std::int32_t RecordCount() const = 0;
  /// Value of the current row's column Rang, counted from 0. Raises when there is no such column or row.
  [[nodiscard]] virtual ValeurChamp Fields(std::size_t Rang) const = 0;
  /// The same by the column's name, exact in case and accents.
  [[nodiscard]] virtual ValeurChamp FieldsNommé(std::string_view Nom) const = 0;
  /// Headings of all columns, in order; there also when the query gave no row.
  [[nodiscard]] virtual std::vector<std::string> Colonnes() const = 0;
};

/// The open database of the cooperative.
class IDatabase {
 public:
  virtual ~IDatabase() = default;
  /// The database's name: the path of its file, or its address on a server.
  [[nodiscard]] virtual std::string Name() const = 0;
  /// Runs a SELECT in the dialect of the cooperative's database. Raises ErreurExécution with a French description
  /// when the text is no SELECT or the engine refuses it; nothing is then open.
  [[nodiscard]] virtual std::unique_ptr<IRecordset> OpenRecordset(const std::string& Sql,
                                                                  TypeRecordset Type = TypeRecordset::Défaut) = 0;
};

}  // namespace Ombrey
