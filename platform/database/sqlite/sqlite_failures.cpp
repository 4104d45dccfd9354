// What SQLite refuses, in an operator's French.
#include "platform/database/sqlite/sqlite_failures.h"

#include <sqlite3.h>

#include <array>

#include "platform/database/failure_words.h"

namespace Ombrey {
namespace {

struct Traduction {
  int Code;
  const char* Texte;
};

constexpr std::array<Traduction, 13> ParCode = {{
    {SQLITE_BUSY, RefusDeBase::BaseVerrouillée},
    {SQLITE_LOCKED, "La table est verrouillée"},
    {SQLITE_READONLY, RefusDeBase::LectureSeule},
    {SQLITE_PERM, "Accès à la base de données refusé"},
    {SQLITE_AUTH, "Opération interdite sur la base de données"},
    {SQLITE_NOTADB, "Le fichier n'est pas une base de données"},
    {SQLITE_CORRUPT, "La base de données est endommagée"},
    {SQLITE_FULL, "Le disque est plein"},
    {SQLITE_IOERR, "Erreur de lecture ou d'écriture du disque"},
    {SQLITE_CANTOPEN, "Impossible d'ouvrir la base de données"},
    {SQLITE_CONSTRAINT, RefusDeBase::ValeurRefusée},
    {SQLITE_NOMEM, "Mémoire insuffisante"},
    {SQLITE_TOOBIG, RefusDeBase::TexteTropLong},
}};

struct TraductionMots {
  std::string_view Mots;
  std::string_view Texte;
};

/// The engine gives all faults of a query the same code: only its words tell them apart. The name follows them.
constexpr std::array<TraductionMots, 3> ParMots = {{
    {"no such table: ", RefusDeBase::TableIntrouvable},
    {"no such column: ", RefusDeBase::ColonneIntrouvable},
    {"no such function: ", RefusDeBase::FonctionInconnue},
}};

}  // namespace

std::string TexteÉchec(int Code, std::string_view Mots) {
  const std::string Entre = " (" + std::string(Mots) + ")";
  for (const TraductionMots& T : ParMots)
    if (Mots.starts_with(T.Mots)) return std::string(T.Texte).append(Mots.substr(T.Mots.size())) + Entre;
  constexpr int CodeDeBase = 0xFF;
  for (const Traduction& T : ParCode)
    if (T.Code == (Code & CodeDeBase)) return T.Texte + Entre;
  return RefusDeBase::RequêteRefusée + Entre;
}

void LeverÉchec(sqlite3* Base) { throw ErreurExécution(TexteÉchec(sqlite3_errcode(Base), sqlite3_errmsg(Base))); }

}  // namespace Ombrey
