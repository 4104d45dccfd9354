// A choice of rows under construction: the conditions, and the values that they compare with.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "contracts/database.h"

namespace Tarvel {

class Conditions {
 public:
  /// Every condition must hold. Début and Fin stand around the value.
  void Et(const std::string& Début, Ombrey::ValeurChamp Valeur, const std::string& Fin = "") {
    Valeurs_.push_back(std::move(Valeur));
    Et(Début + "?" + std::to_string(Valeurs_.size()) + Fin);
  }
  void Et(const std::string& Condition) { Sql_ += (Sql_.empty() ? " WHERE " : " AND ") + Condition; }

  [[nodiscard]] const std::string& Sql() const { return Sql_; }
  [[nodiscard]] const std::vector<Ombrey::ValeurChamp>& Valeurs() const { return Valeurs_; }

 private:
  std::string Sql_;
  std::vector<Ombrey::ValeurChamp> Valeurs_;
};

}  // namespace Tarvel
