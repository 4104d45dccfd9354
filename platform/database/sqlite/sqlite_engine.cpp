// The cooperative's database on SQLite: queries in its own dialect, recordsets.
#include "platform/database/sqlite/sqlite_engine.h"

#include <sqlite3.h>

#include <algorithm>
#include <limits>

#include "base/failures.h"
#include "platform/database/dialect.h"
#include "platform/database/packed_rows.h"

namespace Ombrey {
namespace {

constexpr const char* PasUnSelect = "Seule une requête SELECT unique est acceptée";
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
    if (Trouvé == Noms_.end()) throw ErreurExécution("Colonne introuvable : " + std::string(Nom));
    return Fields(static_cast<std::size_t>(Trouvé - Noms_.begin()));
  }
  [[nodiscard]] std::vector<std::string> Colonnes() const override { return Noms_; }

 protected:
  [[nodiscard]] virtual ValeurChamp Valeur(std::size_t Rang) const = 0;

 private:
  std::vector<std::string> Noms_;
};

/// All rows, packed.
class RecordsetGardé : public RecordsetDeColonnes {
 public:
  explicit RecordsetGardé(Instruction Requête) : RecordsetDeColonnes(Requête.Colonnes()), Lignes_(Colonnes().size()) {
    while (Requête.Avancer()) Garder(Requête.Brute());
    Ici_ = Lignes_.Début();
  }

  [[nodiscard]] bool Eof() const override { return Ici_ == Lignes_.Fin(); }
  void MoveNext() override {
    if (Eof()) throw ErreurExécution(SansLigneCourante);
    Ici_ = Lignes_.Suivante(Ici_);
  }
  void MoveFirst() override { Aller(Lignes_.Début()); }
  void MoveLast() override { Aller(Lignes_.Dernière()); }
  [[nodiscard]] std::int32_t RecordCount() const override {
    if (Lignes_.Nombre() > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max()))
      throw ErreurExécution(Description::DépassementDeCapacité);
    return static_cast<std::int32_t>(Lignes_.Nombre());
  }

 protected:
  [[nodiscard]] ValeurChamp Valeur(std::size_t Rang) const override { return Lignes_.Valeur(Ici_, Rang); }

 private:
  void Aller(LignesCompactes::Place Là) {
    if (Lignes_.Nombre() == 0) throw ErreurExécution(SansLigneCourante);
    Ici_ = Là;
  }

  void Garder(sqlite3_stmt* Ligne) {
    for (int Colonne = 0; Colonne < sqlite3_column_count(Ligne); ++Colonne) {
      switch (sqlite3_column_type(Ligne, Colonne)) {
        case SQLITE_NULL:
          Lignes_.AjouterNull();
          break;
        case SQLITE_INTEGER:
          Lignes_.AjouterEntier(sqlite3_column_int64(Ligne, Colonne));
          break;
        case SQLITE_FLOAT:
          Lignes_.AjouterRéel(sqlite3_column_double(Ligne, Colonne));
          break;
        default: {
          const auto* Texte = reinterpret_cast<const char*>(sqlite3_column_text(Ligne, Colonne));
          Lignes_.AjouterTexte({Texte ? Texte : "", static_cast<std::size_t>(sqlite3_column_bytes(Ligne, Colonne))});
        }
      }
    }
    Lignes_.TerminerLigne();
  }

  LignesCompactes Lignes_;
  LignesCompactes::Place Ici_;
};

/// One row at a time, as the engine gives them.
class RecordsetVersLAvant : public RecordsetDeColonnes {
 public:
  explicit RecordsetVersLAvant(Instruction Requête)
      : RecordsetDeColonnes(Requête.Colonnes()), Requête_(std::move(Requête)), Fin_(!Requête_.Avancer()) {}

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

}  // namespace

std::unique_ptr<IRecordset> BaseSqlite::OpenRecordset(const std::string& Sql, TypeRecordset Type) {
  if (!CommenceParSelect(Sql)) throw ErreurExécution(PasUnSelect);
  const std::string Traduite = TraduireEnSqlite(Sql);
  std::string_view Reste;
  Instruction Requête(Connexion_->Brute(), Traduite, &Reste);
  if (!EstRemplissage(Reste) || !Requête.NeFaitQueLire()) throw ErreurExécution(PasUnSelect);
  if (Type == TypeRecordset::VersLAvant) return std::make_unique<RecordsetVersLAvant>(std::move(Requête));
  return Instantané(std::move(Requête));
}

std::unique_ptr<IRecordset> Instantané(Instruction Requête) {
  return std::make_unique<RecordsetGardé>(std::move(Requête));
}

}  // namespace Ombrey
