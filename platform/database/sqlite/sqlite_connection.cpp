// SQLite's C interface with owners: the connection, its statements with bound values, and the transaction.
#include "platform/database/sqlite/sqlite_connection.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
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

/// What a drive says that carries no memory shared between programs.
bool EstMémoirePartagée(int CodeÉtendu) {
  return CodeÉtendu == SQLITE_IOERR_SHMMAP || CodeÉtendu == SQLITE_IOERR_SHMOPEN ||
         CodeÉtendu == SQLITE_IOERR_SHMSIZE || CodeÉtendu == SQLITE_IOERR_SHMLOCK;
}

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

ConnexionSqlite::ConnexionSqlite(const std::filesystem::path& Fichier, Horloge Maintenant, Journal Voulu)
    : Fichier_(Fichier), Maintenant_(std::move(Maintenant)) {
  Brancher();
  // The file, and the memory that its users share, are first touched here.
  const std::string Premières = std::string(Voulu == Journal::Anticipé ? "PRAGMA journal_mode = WAL;" : "") +
                                "SELECT count(*) FROM sqlite_master";
  const int Code = sqlite3_exec(Base_.get(), Premières.c_str(), nullptr, nullptr, nullptr);
  if (Code != SQLITE_OK) {
    if (!EstMémoirePartagée(sqlite3_extended_errcode(Base_.get()))) LeverÉchec(Base_.get());
    SePasserDeJournalAnticipé();
  }
  // With the ordinary journal, a commit counts once the journal is gone: its folder, too, is put on the disk.
  Exécuter("PRAGMA synchronous = EXTRA");
  const ValeurChamp Mode = Lire("PRAGMA journal_mode");
  if (Voulu != Journal::Ordinaire && !EstEnLectureSeule() && Mode != ValeurChamp{"wal"})
    std::cerr << "Base de données « " << Fichier_.string() << " » : elle est tenue sans journal anticipé (mode « "
              << TexteOuVide(Mode, Régional{}) << " ») : les autres programmes attendront pendant les écritures"
              << std::endl;
}

void ConnexionSqlite::Brancher() {
  sqlite3* Base = nullptr;
  const int Code = sqlite3_open_v2(Fichier_.c_str(), &Base, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
  Base_.reset(Base);
  if (!Base) throw ErreurExécution(TexteÉchec(SQLITE_NOMEM, "sqlite3_open_v2"));
  if (Code != SQLITE_OK) LeverÉchec(Base);
  sqlite3_busy_timeout(Base, static_cast<int>(AttenteVerrou.count()));
  InscrireFonctions(Base, Maintenant_);
}

void ConnexionSqlite::SePasserDeJournalAnticipé() {
  // Alone on the file the engine needs no shared memory, and takes in what a log still holds.
  Brancher();
  try {
    ExécuterTout("PRAGMA locking_mode = EXCLUSIVE; PRAGMA journal_mode = DELETE; PRAGMA locking_mode = NORMAL");
    Exécuter("SELECT count(*) FROM sqlite_master");
  } catch (const ErreurExécution& Erreur) {
    throw ErreurExécution("le disque du dossier « " + Fichier_.parent_path().string() +
                          " » ne permet pas de partager la mémoire du journal anticipé, et la base n'a pas pu passer au"
                          " journal ordinaire. " +
                          Erreur.what());
  }
}

std::shared_ptr<ConnexionSqlite> ConnexionSqlite::Ouvrir(const std::filesystem::path& Fichier, Horloge Maintenant) {
  const std::string Début = "Base de données « " + Fichier.string() + " » : ";
  std::error_code Sans;
  if (!std::filesystem::exists(Fichier, Sans)) throw ErreurExécution(Début + "fichier introuvable");
  if (!std::filesystem::is_regular_file(Fichier, Sans)) throw ErreurExécution(Début + "ce n'est pas un fichier");
  if (std::filesystem::file_size(Fichier, Sans) == 0) throw ErreurExécution(Début + "le fichier est vide");
  try {
    return std::shared_ptr<ConnexionSqlite>(new ConnexionSqlite(Fichier, std::move(Maintenant), Journal::DuFichier));
  } catch (const ErreurExécution& Erreur) {
    throw ErreurExécution(Début + Erreur.what());
  }
}

std::shared_ptr<ConnexionSqlite> ConnexionSqlite::Créer(const std::filesystem::path& Fichier, Horloge Maintenant) {
  return Créer(Fichier, std::move(Maintenant), Journal::Anticipé);
}

std::shared_ptr<ConnexionSqlite> ConnexionSqlite::Créer(const std::filesystem::path& Fichier, Horloge Maintenant,
                                                        Journal Voulu) {
  const std::string Début = "Base de données « " + Fichier.string() + " » : ";
  std::error_code Sans;
  if (std::filesystem::exists(Fichier, Sans)) throw ErreurExécution(Début + "le fichier existe déjà");
  // Fails when another program was faster.
  const int Nouveau = open(Fichier.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR);
  if (Nouveau < 0) throw ErreurExécution(Début + "création impossible (" + TexteErreurSystème(errno) + ")");
  close(Nouveau);
  try {
    return std::shared_ptr<ConnexionSqlite>(new ConnexionSqlite(Fichier, std::move(Maintenant), Voulu));
  } catch (const ErreurExécution& Erreur) {
    SupprimerBase(Fichier);
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

void ConnexionSqlite::RangerJournal() {
  const std::int64_t Changées = sqlite3_total_changes64(Base_.get());
  int DansLeJournal = 0;
  int DansLeFichier = 0;
  if (Changées == Rangées_) return;
  const int Code =
      sqlite3_wal_checkpoint_v2(Base_.get(), nullptr, SQLITE_CHECKPOINT_PASSIVE, &DansLeJournal, &DansLeFichier);
  if (Code == SQLITE_OK && DansLeJournal == DansLeFichier) Rangées_ = Changées;
}

void ConnexionSqlite::Sauvegarder(const std::filesystem::path& Copie) {
  const auto Vers = Créer(Copie, {}, Journal::Ordinaire);
  try {
    sqlite3_backup* const Transport = sqlite3_backup_init(Vers->Base_.get(), "main", Base_.get(), "main");
    if (Transport == nullptr) LeverÉchec(Vers->Base_.get());
    sqlite3_backup_step(Transport, -1);
    if (sqlite3_backup_finish(Transport) != SQLITE_OK) LeverÉchec(Vers->Base_.get());
    Vers->Base_.reset();
    if (Ouvrir(Copie)->Lire("PRAGMA integrity_check") != ValeurChamp{"ok"})
      throw ErreurExécution("La copie « " + Copie.string() + " » est endommagée, comme l'est peut-être la base");
  } catch (const ErreurExécution&) {
    Vers->Base_.reset();
    SupprimerBase(Copie);
    throw;
  }
}

bool ConnexionSqlite::EstOuverteAilleurs(const std::filesystem::path& Fichier) {
  sqlite3* Brute = nullptr;
  sqlite3_open_v2(Fichier.c_str(), &Brute, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
  const std::unique_ptr<sqlite3, Fermer> Base(Brute);
  const int Code =
      sqlite3_exec(Brute, "PRAGMA locking_mode = EXCLUSIVE; BEGIN EXCLUSIVE; COMMIT", nullptr, nullptr, nullptr);
  return Code == SQLITE_BUSY || Code == SQLITE_LOCKED;
}

void SupprimerBase(const std::filesystem::path& Fichier) {
  std::error_code Sans;
  for (const char* Suffixe : {"", "-wal", "-shm", "-journal"})
    std::filesystem::remove(Fichier.string() + Suffixe, Sans);
}

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
