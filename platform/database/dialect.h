// The dialect of the cooperative's database: its lexer, and the walk that turns a query for an engine.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Ombrey {

/// What an engine answers to a text that OpenRecordset mustn't run.
inline constexpr const char* PasUnSelect = "Seule une requête SELECT unique est acceptée";

enum class Genre { Blanc, Littéral, Nombre, Nom, Motclé, Signe };

/// A piece of a query. A literal or a bracketed name is one piece, whatever it holds.
struct Jeton {
  Genre Sorte;
  std::string_view Texte;
};

[[nodiscard]] std::vector<Jeton> Découper(std::string_view Sql);

/// True when both are the same word, written in capitals the second.
[[nodiscard]] bool EstMot(std::string_view Texte, std::string_view Mot);

/// True when the text begins with the keyword SELECT.
[[nodiscard]] bool CommenceParSelect(std::string_view Sql);

/// True when nothing but blanks and semicolons stands there.
[[nodiscard]] bool EstRemplissage(std::string_view Reste);

/// Turns a query piece by piece; what an engine needs turned is asked of it. Literals stay as they stand. So does all
/// the rest but for
/// - `a & b`, which joins texts and takes a Null for the empty text;
/// - calls and names, as the engine has them;
/// - `FROM a RIGHT JOIN b ON c`, which becomes `FROM b LEFT JOIN a ON c` as long as no `*` makes the columns' order
///   depend on the tables' order: for a right join an engine may read the whole of b, for a left one only the rows
///   looked for.
/// A text that is no well-formed query comes back as something that the engine refuses.
class Traducteur {
 public:
  explicit Traducteur(std::vector<Jeton> Jetons) : Jetons_(std::move(Jetons)), OrdreLibre_(!AToutesColonnes()) {}
  virtual ~Traducteur() = default;
  Traducteur(const Traducteur&) = delete;
  Traducteur& operator=(const Traducteur&) = delete;

  [[nodiscard]] std::string Traduire();

 protected:
  /// A name, or names with points between them, or another word without a meaning of its own.
  [[nodiscard]] virtual std::string Nommer(std::string_view Nom) const = 0;
  /// A call, or a name with a list in parentheses behind it; the list is turned already.
  [[nodiscard]] virtual std::string Appeler(std::string_view Nom, const std::string& Arguments) const = 0;
  /// An operand of a joining of texts, turned already: its text, empty for Null.
  [[nodiscard]] virtual std::string EnTexte(const std::string& Opérande) const = 0;

 private:
  [[nodiscard]] bool EstSigne(std::size_t Place, std::string_view Choix) const;
  [[nodiscard]] bool EstMotcléLà(std::size_t Place, std::string_view Mot) const;
  [[nodiscard]] bool EstNom(std::size_t Place) const;
  [[nodiscard]] bool OuvreOpérande(std::size_t Place) const;
  [[nodiscard]] std::size_t SauterBlancs(std::size_t Place) const;
  [[nodiscard]] std::optional<std::size_t> Fermeture(std::size_t Place) const;
  [[nodiscard]] bool AToutesColonnes() const;
  [[nodiscard]] std::string Copie(std::size_t& Place, std::size_t Jusque) const;
  std::string Suite(std::size_t& Place, std::size_t Fin);
  std::string Chaîne(std::size_t& Place, std::size_t Fin);
  std::string Opérande(std::size_t& Place, std::size_t Fin);
  std::string Facteur(std::size_t& Place, std::size_t Fin);
  std::string Intérieur(std::size_t& Place, std::size_t Fermante);
  [[nodiscard]] std::size_t FinNom(std::size_t Place) const;
  [[nodiscard]] std::optional<std::size_t> FinSource(std::size_t Place) const;
  std::optional<std::string> JointureRetournée(std::size_t& Place);

  std::vector<Jeton> Jetons_;
  int Profondeur_ = 0;  ///< of the parentheses that stand open
  bool OrdreLibre_;     ///< no result column depends on the order of the tables
};

}  // namespace Ombrey
