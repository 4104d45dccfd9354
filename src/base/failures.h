// Run-time failures: the exception, the pending error, and statements whose failure is kept or ignored.
#pragma once

#include <exception>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

namespace Ombrey {

/// A run-time failure. what() is a short French description that an operator can read. Crosses the border between the
/// plug-in's library and the host's: its type must be the same on both sides.
class [[gnu::visibility("default")]] ErreurExécution : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The descriptions that come up in more than one place.
namespace Description {
inline constexpr const char* IncompatibilitéDeType = "Incompatibilité de type";
inline constexpr const char* DépassementDeCapacité = "Dépassement de capacité";
inline constexpr const char* ObjetNonDéfini = "Variable objet non définie";
inline constexpr const char* UtilisationDeNull = "Utilisation incorrecte de Null";
inline constexpr const char* IndiceHorsPlage = "L'indice n'appartient pas à la sélection";
}  // namespace Description

/// The failure that an operation recorded without raising it: the latest of those noted in it.
class ErreurEnAttente {
 public:
  [[nodiscard]] bool EstPrésente() const { return Présente_; }
  /// Empty when none is pending.
  [[nodiscard]] const std::string& Texte() const { return Texte_; }
  void Noter(const std::exception& Erreur) {
    Présente_ = true;
    Texte_ = Erreur.what();
  }
  void Effacer() {
    Présente_ = false;
    Texte_.clear();
  }

 private:
  bool Présente_ = false;
  std::string Texte_;
};

/// Runs one statement whose failure is to be shown later: it becomes the pending error, and the caller goes on with its
/// next statement. True when it ran through.
template <class Instruction>
bool Garder(ErreurEnAttente& Pendante, Instruction&& Faire) {
  try {
    std::forward<Instruction>(Faire)();
    return true;
  } catch (const std::exception& Erreur) {
    Pendante.Noter(Erreur);
    return false;
  }
}

/// Runs one statement whose failure is nobody's business; the caller goes on with its next one. True when it ran
/// through.
template <class Instruction>
bool Ignorer(Instruction&& Faire) {
  ErreurEnAttente Oubliée;
  return Garder(Oubliée, std::forward<Instruction>(Faire));
}

/// What Faire gives; its failure says behind its description what it was about, such as a field and its value.
template <class Calcul>
auto AuSujetDe(const std::string& Sujet, Calcul&& Faire) {
  try {
    return std::forward<Calcul>(Faire)();
  } catch (const ErreurExécution& Erreur) {
    throw ErreurExécution(std::string(Erreur.what()) + " : " + Sujet);
  }
}

/// The object behind a reference, held for as long as the caller keeps the result. Raises "Variable objet non définie"
/// when there is none.
template <class Objet>
[[nodiscard]] std::shared_ptr<Objet> Exiger(const std::shared_ptr<Objet>& Référence) {
  if (!Référence) throw ErreurExécution(Description::ObjetNonDéfini);
  return Référence;
}

}  // namespace Ombrey
