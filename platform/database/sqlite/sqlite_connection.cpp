// SQLite's C interface with owners: the connection, its statements with bound values, and the transaction.
#include "platform/database/sqlite/sqlite_connection.h"

#include <sqlite3.h>

#include <cerrno>
#include <cstdio>
#include <iostream>
#include <system_error>
#include <utility>

#include "base/failures.h"
#include "base/regional_forms.h"
#include "base/system_error.h"
#include "platform/database/sqlite/sqlite_failures.h"
#include "platform/database/sqlite/sqlite_functions.h"

namespace Ombrey {
namespace {

struct Lieur {
  sqlite3_stmt* Brute;
  int Rang;
  int operator()(std::monostate /*Null*/) const { return sqlite3_bind_null(Brute, Rang); }
  int operator()(std::int64_t Valeur) const { return sqlite3_bind_int64(Brute, Rang, Valeur); }
  int operator()(double Valeur) const { return sqlite3_bind_double(Brute, Rang, Valeur); }
  int operator()(const std::string& Valeur) const {
    return sqlite3_bind_text64(Brute, Rang, Valeur.data(), Valeur.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
  }
};

}  // namespace

bool EstRemplissage(std::string_view Reste) { return Reste.find_first_not_of(" \t\r\n;") == std::string_view::npos; }

void Instruction::Finir::operator()(sqlite3_stmt* Brute) const { sqlite3_finalize(Brute); }

Instruction::Instruction(sqlite3* Base, std::string_view Sql, std::string_view* Reste) {
  sqlite3_stmt* Brute = nullptr;
  const char* Suite = nullptr;
  const int Code = sqlite3_prepare_v2(Base, Sql.data(), static_cast<int>(Sql.size()), &Brute, &Suite);
  Brute_.reset(Brute);
  if (Code != SQLITE_OK) LeverÉchec(Base);
  if (!Brute) throw ErreurExécution("L'instruction est vide");
  const std::string_view Derrière = Sql.substr(static_cast<std::size_t>(Suite - Sql.data()));
  if (Reste)
    *Reste = Derrière;
  else if (!EstRemplissage(Derrière))
    throw ErreurExécution("Une seule instruction est acceptée à la fois");
}

Instruction& Instruction::Lier(const std::vector<ValeurChamp>& Valeurs) {
  sqlite3_reset(Brute_.get());
  int Rang = 0;
  for (const ValeurChamp& Valeur : Valeurs)
    if (std::visit(Lieur{Brute_.get(), ++Rang}, Valeur) != SQLITE_OK) LeverÉchec(sqlite3_db_handle(Brute_.get()));
  return *this;
}

bool Instruction::Avancer() {
  const int Code = sqlite3_step(Brute_.get());
  if (Code == SQLITE_ROW) return true;
  if (Code != SQLITE_DONE) LeverÉchec(sqlite3_db_handle(Brute_.get()));
  return false;
}

void Instruction::Exécuter() {
  while (Avancer()) {
  }
}

ValeurChamp Instruction::Valeur(std::size_t Rang) const {
  const int Colonne = static_cast<int>(Rang);
  switch (sqlite3_column_type(Brute_.get(), Colonne)) {
    case SQLITE_NULL:
      return std::monostate{};
    case SQLITE_INTEGER:
      return std::int64_t{sqlite3_column_int64(Brute_.get(), Colonne)};
    case SQLITE_FLOAT:
      return sqlite3_column_double(Brute_.get(), Colonne);
    default: {
      const auto* Texte = reinterpret_cast<const char*>(sqlite3_column_text(Brute_.get(), Colonne));
      return std::string(Texte ? Texte : "", static_cast<std::size_t>(sqlite3_column_bytes(Brute_.get(), Colonne)));
    }
  }
}

std::vector<std::string> Instruction::Colonnes() const {
  std::vector<std::string> Noms;
  for (int Colonne = 0; Colonne < sqlite3_column_count(Brute_.get()); ++Colonne) {
    const char* Nom = sqlite3_column_name(Brute_.get(), Colonne);
    Noms.emplace_back(Nom ? Nom : "");
  }
  return Noms;
}

bool Instruction::NeFaitQueLire() const { return sqlite3_stmt_readonly(Brute_.get()) != 0; }

void ConnexionSqlite::Fermer::operator()(sqlite3* Base) const { sqlite3_close_v2(Base); }

ConnexionSqlite::ConnexionSqlite(const std::filesystem::path& Fichier, Horloge Maintenant) : Fichier_(Fichier) {
  sqlite3* Base = nullptr;
  const int Code = sqlite3_open_v2(Fichier.c_str(), &Base, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
  Base_.reset(Base);
  if (!Base) throw ErreurExécution(TexteÉchec(SQLITE_NOMEM, "sqlite3_open_v2"));
  if (Code != SQLITE_OK) LeverÉchec(Base);
  sqlite3_busy_timeout(Base, static_cast<int>(AttenteVerrou.count()));
  InscrireFonctions(Base, std::move(Maintenant));
  Exécuter("SELECT count(*) FROM sqlite_master");  // the file is first read here
  if (!EstEnLectureSeule()) PasserEnJournalAnticipé();
  ExécuterTout("PRAGMA synchronous = FULL");
}

void ConnexionSqlite::PasserEnJournalAnticipé() {
  // A network drive may not carry it. The engine's ordinary journal loses nothing either: only the others wait longer.
  const ValeurChamp Mode = Lire("PRAGMA journal_mode = WAL");
  if (Mode != ValeurChamp{"wal"})
    std::cerr << "Base de données « " << Fichier_.string() << " » : elle ne peut pas tenir de journal anticipé (mode « "
              << TexteOuVide(Mode, Régional{}) << " ») : les autres programmes attendront pendant les écritures"
              << std::endl;
}

std::shared_ptr<ConnexionSqlite> ConnexionSqlite::Ouvrir(const std::filesystem::path& Fichier, Horloge Maintenant) {
  const std::string Début = "Base de données « " + Fichier.string() + " » : ";
  std::error_code Sans;
  if (!std::filesystem::exists(Fichier, Sans)) throw ErreurExécution(Début + "fichier introuvable");
  if (!std::filesystem::is_regular_file(Fichier, Sans)) throw ErreurExécution(Début + "ce n'est pas un fichier");
  if (std::filesystem::file_size(Fichier, Sans) == 0) throw ErreurExécution(Début + "le fichier est vide");
  try {
    return std::shared_ptr<ConnexionSqlite>(new ConnexionSqlite(Fichier, std::move(Maintenant)));
  } catch (const ErreurExécution& Erreur) {
    throw ErreurExécution(Début + Erreur.what());
  }
}

std::shared_ptr<ConnexionSqlite> ConnexionSqlite::Créer(const std::filesystem::path& Fichier, Horloge Maintenant) {
  const std::string Début = "Base de données « " + Fichier.string() + " » : ";
  std::error_code Sans;
  if (std::filesystem::exists(Fichier, Sans)) throw ErreurExécution(Début + "le fichier existe déjà");
  std::FILE* Nouveau = std::fopen(Fichier.c_str(), "wbx");  // fails when another program was faster
  if (!Nouveau) throw ErreurExécution(Début + "création impossible (" + TexteErreurSystème(errno) + ")");
  std::fclose(Nouveau);
  try {
    return std::shared_ptr<ConnexionSqlite>(new ConnexionSqlite(Fichier, std::move(Maintenant)));
  } catch (const ErreurExécution& Erreur) {
    std::filesystem::remove(Fichier, Sans);
    throw ErreurExécution(Début + Erreur.what());
  }
}

bool ConnexionSqlite::EstEnLectureSeule() const { return sqlite3_db_readonly(Base_.get(), "main") == 1; }

void ConnexionSqlite::Exécuter(std::string_view Sql, const std::vector<ValeurChamp>& Valeurs) {
  Préparer(Sql).Lier(Valeurs).Exécuter();
}

void ConnexionSqlite::ExécuterTout(std::string_view Script) {
  while (!EstRemplissage(Script)) Instruction(Base_.get(), Script, &Script).Exécuter();
}

ValeurChamp ConnexionSqlite::Lire(std::string_view Sql, const std::vector<ValeurChamp>& Valeurs) {
  Instruction Requête = Préparer(Sql);
  return Requête.Lier(Valeurs).Avancer() ? Requête.Valeur(0) : ValeurChamp{};
}

std::int64_t ConnexionSqlite::DernièreLigne() const { return sqlite3_last_insert_rowid(Base_.get()); }

Transaction::Transaction(ConnexionSqlite& Connexion) : Connexion_(Connexion) { Connexion.Exécuter("BEGIN IMMEDIATE"); }

Transaction::~Transaction() {
  // Only what a failed statement has rolled back by itself is refused here, and then all is undone already.
  if (Ouverte_) sqlite3_exec(Connexion_.Brute(), "ROLLBACK", nullptr, nullptr, nullptr);
}

void Transaction::Valider() {
  Connexion_.Exécuter("COMMIT");
  Ouverte_ = false;
}

}  // namespace Ombrey
