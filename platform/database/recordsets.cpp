// The cooperative's database as the plug-in reads it: queries in its own dialect, recordsets.
#include "platform/database/recordsets.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <vector>

#include "base/failures.h"
#include "platform/database/dialect.h"
#include "platform/database/failure_words.h"

namespace Ombrey {
namespace {

constexpr const char* SansLigneCourante = "Aucun enregistrement en cours";
constexpr const char* VersLAvantSeul = "Opération refusée : les lignes ne se lisent que vers l'avant";

class RecordsetDeColonnes : public IRecordset {
 public:
  explicit RecordsetDeColonnes(std::vector<std::string> Noms) : Noms_(std::move(Noms)) {}

  [[nodiscard]] ValeurChamp Fields(std::size_t Rang) const override {
    if (Eof()) throw ErreurExécution(SansLigneCourante);
    if (Rang >= Noms_.size()) throw ErreurExécution("Colonne introuvable : n° " + std::to_string(Rang));
    return Valeur(Rang);
  }
  [[nodiscard]] ValeurChamp FieldsNommé(std::string_view Nom) const override {
    const auto Trouvé = std::find(Noms_.begin(), Noms_.end(), Nom);
    if (Trouvé == Noms_.end()) throw ErreurExécution(RefusDeBase::ColonneIntrouvable + std::string(Nom));
    return Fields(static_cast<std::size_t>(Trouvé - Noms_.begin()));
  }
  [[nodiscard]] std::vector<std::string> Colonnes() const override { return Noms_; }

 protected:
  [[nodiscard]] virtual ValeurChamp Valeur(std::size_t Rang) const = 0;

 private:
  std::vector<std::string> Noms_;
};

/// All rows, value by value, from a query that stands on its first (Une) or at its end.
class RecordsetGardé : public RecordsetDeColonnes {
 public:
  RecordsetGardé(Instruction Requête, bool Une) : RecordsetDeColonnes(Requête.Colonnes()) {
    const std::size_t Largeur = Colonnes().size();
    for (; Une; Une = Requête.Avancer(), ++Nombre_)
      for (std::size_t Rang = 0; Rang < Largeur; ++Rang) Valeurs_.push_back(Requête.Valeur(Rang));
  }

  [[nodiscard]] bool Eof() const override { return Ici_ == Nombre_; }
  void MoveNext() override {
    if (Eof()) throw ErreurExécution(SansLigneCourante);
    ++Ici_;
  }
  void MoveFirst() override { Aller(0); }
  void MoveLast() override { Aller(Nombre_ - 1); }
  [[nodiscard]] std::int32_t RecordCount() const override {
    if (Nombre_ > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max()))
      throw ErreurExécution(Description::DépassementDeCapacité);
    return static_cast<std::int32_t>(Nombre_);
  }

 protected:
  [[nodiscard]] ValeurChamp Valeur(std::size_t Rang) const override {
    return Valeurs_[Ici_ * (Valeurs_.size() / Nombre_) + Rang];
  }

 private:
  void Aller(std::size_t Là) {
    if (Nombre_ == 0) throw ErreurExécution(SansLigneCourante);
    Ici_ = Là;
  }

  std::vector<ValeurChamp> Valeurs_;
  std::size_t Nombre_ = 0;
  std::size_t Ici_ = 0;
};

/// One row at a time, as the engine gives them.
class RecordsetVersLAvant : public RecordsetDeColonnes {
 public:
  RecordsetVersLAvant(Instruction Requête, bool Une)
      : RecordsetDeColonnes(Requête.Colonnes()), Requête_(std::move(Requête)), Fin_(!Une) {}

  [[nodiscard]] bool Eof() const override { return Fin_; }
  void MoveNext() override {
    if (Fin_) throw ErreurExécution(SansLigneCourante);
    Fin_ = true;  // also when the engine fails half-way
    Fin_ = !Requête_.Avancer();
  }
  void MoveFirst() override { throw ErreurExécution(VersLAvantSeul); }
  void MoveLast() override { throw ErreurExécution(VersLAvantSeul); }
  [[nodiscard]] std::int32_t RecordCount() const override { throw ErreurExécution(VersLAvantSeul); }

 protected:
  [[nodiscard]] ValeurChamp Valeur(std::size_t Rang) const override { return Requête_.Valeur(Rang); }

 private:
  Instruction Requête_;
  bool Fin_;
};

/// The rows come ahead of the columns: a statement that was kept learns from them how a table has changed.
template <class Genre>
std::unique_ptr<IRecordset> Ouvert(Instruction Requête) {
  const bool Une = Requête.Avancer();
  return std::make_unique<Genre>(std::move(Requête), Une);
}

}  // namespace

std::unique_ptr<IRecordset> BaseLue::OpenRecordset(const std::string& Sql, TypeRecordset Type) {
  if (!CommenceParSelect(Sql)) throw ErreurExécution(PasUnSelect);
  Instruction Requête = Connexion_->PréparerLecture(Sql);
  if (Type == TypeRecordset::VersLAvant) return Ouvert<RecordsetVersLAvant>(std::move(Requête));
  return Instantané(std::move(Requête));
}

std::unique_ptr<IRecordset> Instantané(Instruction Requête) { return Ouvert<RecordsetGardé>(std::move(Requête)); }

}  // namespace Ombrey
