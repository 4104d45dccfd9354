// The cooperative's database in a file, by SQLite.
#include "platform/database/sqlite/sqlite_connection.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <iostream>
#include <system_error>
#include <thread>
#include <utility>

#include "base/failures.h"
#include "base/regional_forms.h"
#include "base/system_error.h"
#include "contracts/system.h"
#include "platform/database/dialect.h"
#include "platform/database/sqlite/sqlite_dialect.h"
#include "platform/database/sqlite/sqlite_failures.h"
#include "platform/database/sqlite/sqlite_functions.h"

namespace Ombrey {
namespace {

/// What a drive says that carries no memory shared between programs.
bool EstMémoirePartagée(int CodeÉtendu) {
  return CodeÉtendu == SQLITE_IOERR_SHMMAP || CodeÉtendu == SQLITE_IOERR_SHMOPEN ||
         CodeÉtendu == SQLITE_IOERR_SHMSIZE || CodeÉtendu == SQLITE_IOERR_SHMLOCK;
}

/// Waits by the clock. The engine's own count takes each of its sleeps for as long as it asked for, and on a busy
/// machine eight of its seconds are more than the terminal waits.
int PatienterVerrou(void* Patience, int Essais) {
  constexpr auto Pas = std::chrono::milliseconds(5);
  thread_local std::chrono::steady_clock::time_point Depuis;
  if (Essais == 0) Depuis = std::chrono::steady_clock::now();
  const auto Attendu = std::chrono::steady_clock::now() - Depuis;
  if (Attendu >= AttenteVerrou) return 0;
  const auto& ATemps = *static_cast<const std::function<bool()>*>(Patience);
  constexpr int EntreDeux = 10;
  if (ATemps && Essais % EntreDeux == 0 && !ATemps() && Attendu >= AttentePressée) return 0;
  std::this_thread::sleep_for(Pas);
  return 1;
}

constexpr int PagesParPas = 512;  ///< of a copy, between two looks at its progress

}  // namespace

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

ConnexionSqlite::~ConnexionSqlite() {
  // A row that somebody still reads doesn't wait with our help any more.
  if (Base_) sqlite3_busy_handler(Base_.get(), nullptr, nullptr);
}

void ConnexionSqlite::Quitter() {
  Réserve_.reset();
  Base_.reset();
}

void ConnexionSqlite::Brancher() {
  Quitter();
  sqlite3* Base = nullptr;
  const int Code = sqlite3_open_v2(Fichier_.c_str(), &Base, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
  Base_.reset(Base);
  if (!Base) throw ErreurExécution(TexteÉchec(SQLITE_NOMEM, "sqlite3_open_v2"));
  if (Code != SQLITE_OK) LeverÉchec(Base);
  Réserve_ = std::make_shared<RéserveSqlite>();
  sqlite3_busy_handler(Base, &PatienterVerrou, &Patience_);
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

std::string ConnexionSqlite::Moteur() { return std::string("SQLite ") + sqlite3_libversion(); }

bool ConnexionSqlite::EstEnLectureSeule() const { return sqlite3_db_readonly(Base_.get(), "main") == 1; }

Instruction ConnexionSqlite::Préparer(std::string_view Sql) {
  return Instruction(std::make_unique<InstructionSqlite>(Base_.get(), Sql, Réserve_));
}

Instruction ConnexionSqlite::PréparerLecture(std::string_view Sql) {
  auto Requête = std::make_unique<InstructionSqlite>(Base_.get(), TraduireEnSqlite(Sql), Réserve_);
  if (!Requête->NeFaitQueLire()) throw ErreurExécution(PasUnSelect);
  return Instruction(std::move(Requête));
}

void ConnexionSqlite::ExécuterTout(std::string_view Script) {
  while (!EstRemplissage(Script))
    Instruction(std::make_unique<InstructionSqlite>(Base_.get(), Script, Script)).Exécuter();
}

// RETURNING would set up a table in memory for that one key.
std::int64_t ConnexionSqlite::Insérer(const std::string& Sql, const std::vector<ValeurChamp>& Valeurs,
                                      const std::string& /*Clé*/) {
  Exécuter(Sql, Valeurs);
  return sqlite3_last_insert_rowid(Base_.get());
}

std::vector<ColonneDeTable> ConnexionSqlite::ColonnesDe(const std::string& Table) {
  std::vector<ColonneDeTable> Toutes;
  Instruction Requête = Préparer("SELECT name, type, \"notnull\", dflt_value FROM pragma_table_info(?1)");
  Requête.Lier({Table});
  while (Requête.Avancer()) {
    const ValeurChamp Défaut = Requête.Valeur(3);
    const bool EstObligatoire = Requête.Valeur(2) != ValeurChamp{std::int64_t{0}};
    Toutes.push_back(
        {std::get<std::string>(Requête.Valeur(0)), std::get<std::string>(Requête.Valeur(1)),
         EstObligatoire && !EstNull(Défaut) ? std::optional(std::get<std::string>(Défaut)) : std::nullopt});
  }
  return Toutes;
}

void ConnexionSqlite::AjouterColonne(const std::string& Table, const ColonneDeTable& Colonne) {
  std::string Nom = "\"";
  for (const char C : Colonne.Nom) Nom.append(C == '"' ? 2 : 1, C);
  Exécuter("ALTER TABLE " + Table + " ADD COLUMN " + Nom + "\" " + Colonne.Type +
           (Colonne.Défaut ? " DEFAULT " + *Colonne.Défaut : ""));
}

void ConnexionSqlite::PrendreSite(const std::string& Code) {
  std::string Suffixe = ".site-";
  for (const char C : Code) Suffixe += C == '/' || C == '\0' ? '_' : C;
  Site_.emplace(Fichier_.string() + Suffixe,
                "Une autre station travaille déjà sous le code de site « " + Code + " » sur cette base",
                "Le code de site « " + Code + " »", "--site en donne un autre.");
}

bool ConnexionSqlite::ADuNouveau() {
  ValeurChamp Compteur = Lire("PRAGMA data_version");
  return Compteur != std::exchange(Compteur_, Compteur) && !EstNull(Compteur_);
}

bool ConnexionSqlite::EstMêmeNom(const std::string& Un, const std::string& Autre) const {
  return sqlite3_stricmp(Un.c_str(), Autre.c_str()) == 0;
}

std::string ConnexionSqlite::CléNumérotée(bool JamaisReprise) const {
  return JamaisReprise ? "INTEGER PRIMARY KEY AUTOINCREMENT" : "INTEGER PRIMARY KEY";
}

std::string ConnexionSqlite::SansCoupure(const std::string& Colonne) const {
  return Colonne + " NOT GLOB '*[;' || char(1) || '-' || char(31) || char(127) || ']*'";
}

std::string ConnexionSqlite::DateLisible(const std::string& Colonne) const {
  return "strftime('%d/%m/%Y %H:%M', " + Colonne + " + 2415018.5)";
}

/// A disk takes longest over a file's new length. A log that is long from the start is written over instead; zeros are
/// no part of it to the engine. Nobody else may lengthen it meanwhile; who is at work isn't waited for.
void ConnexionSqlite::AllongerJournal() {
  constexpr sqlite3_int64 Longueur = 2LL * 1024 * 1024;
  constexpr std::array<char, 8UL * 1024> Zéros{};  // the stack keeps what it once took
  sqlite3_busy_handler(Base_.get(), nullptr, nullptr);
  const int Code = sqlite3_exec(Base_.get(), "BEGIN IMMEDIATE", nullptr, nullptr, nullptr);
  sqlite3_busy_handler(Base_.get(), &PatienterVerrou, &Patience_);
  EstJournalLong_ = Code != SQLITE_BUSY;
  if (Code != SQLITE_OK) return;
  sqlite3_file* Fichier = nullptr;
  sqlite3_int64 Présente = Longueur;
  sqlite3_file_control(Base_.get(), "main", SQLITE_FCNTL_JOURNAL_POINTER, static_cast<void*>(&Fichier));
  const auto* const Gestes = Fichier->pMethods;  // none with the ordinary journal, which isn't open yet
  if (Gestes && Gestes->xFileSize(Fichier, &Présente) == SQLITE_OK && Présente < Longueur) {
    // A disk that is full shows it at the next commit.
    while (Présente < Longueur && Gestes->xWrite(Fichier, Zéros.data(), Zéros.size(), Présente) == SQLITE_OK)
      Présente += Zéros.size();
    Gestes->xSync(Fichier, SQLITE_SYNC_NORMAL);
  }
  Annuler();
}

void ConnexionSqlite::RangerJournal() {
  if (!EstJournalLong_) AllongerJournal();
  const std::int64_t Changées = sqlite3_total_changes64(Base_.get());
  int DansLeJournal = 0;
  int DansLeFichier = 0;
  if (Changées == Rangées_) return;
  const int Code =
      sqlite3_wal_checkpoint_v2(Base_.get(), nullptr, SQLITE_CHECKPOINT_PASSIVE, &DansLeJournal, &DansLeFichier);
  if (Code == SQLITE_OK && DansLeJournal == DansLeFichier) Rangées_ = Changées;
}

void ConnexionSqlite::Transporter(ConnexionSqlite& Vers, const Progrès& Dire) {
  // A reading that lasts: what others commit meanwhile neither gets in nor makes the copy begin anew.
  struct LectureTenue {
    ConnexionSqlite& Sienne;
    explicit LectureTenue(ConnexionSqlite& Une) : Sienne(Une) { Sienne.ExécuterTout("BEGIN"); }
    ~LectureTenue() { Sienne.Annuler(); }
  } const Tenue(*this);
  static_cast<void>(Lire("SELECT COUNT(*) FROM sqlite_master"));
  const std::unique_ptr<sqlite3_backup, decltype(&sqlite3_backup_finish)> Transport(
      sqlite3_backup_init(Vers.Base_.get(), "main", Base_.get(), "main"), &sqlite3_backup_finish);
  if (!Transport) LeverÉchec(Vers.Base_.get());
  int Code = SQLITE_OK;
  while (Code == SQLITE_OK) {
    Code = sqlite3_backup_step(Transport.get(), PagesParPas);
    const auto Total = static_cast<std::size_t>(sqlite3_backup_pagecount(Transport.get()));
    if (Dire) Dire(Total - static_cast<std::size_t>(sqlite3_backup_remaining(Transport.get())), Total);
  }
  if (Code != SQLITE_DONE) LeverÉchec(Vers.Base_.get());
}

void ConnexionSqlite::Sauvegarder(const std::filesystem::path& Copie, const Progrès& Dire) {
  const auto Vers = Créer(Copie, {}, Journal::Ordinaire);
  try {
    Transporter(*Vers, Dire);
    Vers->Quitter();
    if (Ouvrir(Copie)->Lire("PRAGMA integrity_check") != ValeurChamp{"ok"})
      throw ErreurExécution("La copie « " + Copie.string() + " » est endommagée, comme l'est peut-être la base");
  } catch (const ErreurExécution&) {
    Vers->Quitter();
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

void ConnexionSqlite::Annuler() noexcept {
  // Only what a failed statement has rolled back by itself is refused here, and then all is undone already.
  sqlite3_exec(Base_.get(), "ROLLBACK", nullptr, nullptr, nullptr);
}

}  // namespace Ombrey
