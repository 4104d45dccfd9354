// The cooperative's database on a PostgreSQL server.
#include "platform/database/postgresql/postgresql_connection.h"

#include <libpq-fe.h>

#include <chrono>
#include <cstdint>
#include <exception>
#include <string_view>
#include <utility>

#include "base/failures.h"
#include "platform/database/dialect.h"
#include "platform/database/postgresql/postgresql_dialect.h"
#include "platform/database/postgresql/postgresql_failures.h"
#include "platform/database/postgresql/postgresql_sums.h"
#include "platform/database/postgresql/postgresql_values.h"

namespace Ombrey {
namespace {

/// Locks of one database that nobody else has a reason to take: the first number is ours, the second is 0 for writers,
/// else it stands for a site.
constexpr const char* Nôtre = "1330463315";
constexpr auto PatienceDeSite = std::chrono::seconds(2);
constexpr const char* Canal = "tarvel_chargements";

/// The same for the same code in every release.
std::int32_t NuméroDeSite(std::string_view Code) {
  std::uint32_t Somme = 2'166'136'261U;
  for (const char C : Code) Somme = (Somme ^ static_cast<unsigned char>(C)) * 16'777'619U;
  return static_cast<std::int32_t>(Somme | 1U);
}

}  // namespace

/// Runs at the first look at its rows, all of which come at once.
class ConnexionPostgresql::InstructionServeur final : public IInstruction {
 public:
  InstructionServeur(std::shared_ptr<ConnexionPostgresql> Connexion, std::string Sql, bool EstRépétable)
      : Connexion_(std::move(Connexion)), Sql_(std::move(Sql)), EstRépétable_(EstRépétable) {}

  void Lier(const std::vector<ValeurChamp>& Valeurs) override {
    Valeurs_ = Valeurs;
    Lignes_.reset();
  }
  bool Avancer() override {
    Courir();
    return ++Ici_ < PQntuples(Lignes_.get());
  }
  [[nodiscard]] ValeurChamp Valeur(std::size_t Rang) const override {
    return ValeurDe(Lignes_.get(), Ici_, static_cast<int>(Rang));
  }
  [[nodiscard]] std::vector<std::string> Colonnes() override {
    Courir();
    std::vector<std::string> Noms;
    for (int Rang = 0; Rang < PQnfields(Lignes_.get()); ++Rang) Noms.emplace_back(PQfname(Lignes_.get(), Rang));
    return Noms;
  }
  void Courir() {
    if (Lignes_) return;
    Lignes_ = Connexion_->Demander(Sql_, Valeurs_, EstRépétable_);
    Ici_ = -1;
  }

 private:
  std::shared_ptr<ConnexionPostgresql> Connexion_;
  std::string Sql_;
  bool EstRépétable_;
  std::vector<ValeurChamp> Valeurs_;
  Résultat Lignes_;
  int Ici_ = -1;
};

ConnexionPostgresql::ConnexionPostgresql(const std::string& Adresse, Horloge Maintenant)
    : Lien_(Adresse), Maintenant_(std::move(Maintenant)) {
  Relier();
}

void ConnexionPostgresql::Relier() {
  Lien_.Ouvrir();
  try {
    const Résultat Lus = Lien_.Demander("SELECT current_setting('transaction_read_only'), pg_backend_pid()");
    EstEnLectureSeule_ = std::string_view(PQgetvalue(Lus.get(), 0, 0)) == "on";
    // Somebody between us and the server lends out its sessions: a site's lock would be the next one's.
    if (PQgetvalue(Lus.get(), 0, 1) != std::to_string(Lien_.Processus()))
      throw ErreurExécution(
          "L'adresse de la base est celle d'un répartiteur de liaisons (PgBouncer) : une station veut la session du"
          " serveur pour elle seule ; donnez l'adresse du serveur même");
    if (Site_) VerrouillerSite();
  } catch (const ErreurExécution&) {
    Lien_.Fermer();
    throw;
  }
  AncienProcessus_ = Lien_.Processus();
  ADesNouvelles_ = true;
  EstCoupé_ = false;
}

Résultat ConnexionPostgresql::Demander(const std::string& Sql, const std::vector<ValeurChamp>& Valeurs,
                                       bool EstRépétable) {
  const LienServeur::Délai Ensemble(Lien_);
  if (!Lien_.EstOuvert()) {
    if (DansTransaction_) throw ErreurExécution(LiaisonPerdue);
    Relier();
    return Lien_.Demander(Sql, Valeurs);
  }
  try {
    return Lien_.Demander(Sql, Valeurs);
  } catch (const LienPerdu&) {
    if (DansTransaction_ || !EstRépétable) throw;
  }
  Relier();
  return Lien_.Demander(Sql, Valeurs);
}

Instruction ConnexionPostgresql::Préparer(std::string_view Sql) {
  return Instruction(std::make_unique<InstructionServeur>(shared_from_this(), TraduireEnPostgresql(Sql, Maintenant_),
                                                          CommenceParSelect(Sql)));
}

Instruction ConnexionPostgresql::PréparerLecture(std::string_view Sql) {
  // More than one statement is refused by the server itself.
  if (Sql.find('\0') != Sql.npos || ContientMot(Sql, "INTO")) throw ErreurExécution(PasUnSelect);
  auto Requête = std::make_unique<InstructionServeur>(shared_from_this(), TraduireEnPostgresql(Sql, Maintenant_), true);
  Requête->Courir();
  return Instruction(std::move(Requête));
}

void ConnexionPostgresql::ExécuterTout(std::string_view Script) {
  for (const std::string_view Une : Instructions(Script)) Exécuter(Une);
}

std::vector<ColonneDeTable> ConnexionPostgresql::ColonnesDe(const std::string& Table) {
  const Résultat Lues = Demander(
      "SELECT a.attname, format_type(a.atttypid, a.atttypmod) || CASE c.collname WHEN 'C' THEN ' COLLATE \"C\"'"
      " ELSE '' END, CASE WHEN a.attnotnull THEN pg_get_expr(d.adbin, d.adrelid) END"
      " FROM pg_attribute a LEFT JOIN pg_attrdef d ON d.adrelid = a.attrelid AND d.adnum = a.attnum"
      " LEFT JOIN pg_collation c ON c.oid = a.attcollation"
      " WHERE a.attrelid = to_regclass(quote_ident($1)) AND a.attnum > 0 AND NOT a.attisdropped ORDER BY a.attnum",
      {Table}, true);
  std::vector<ColonneDeTable> Toutes;
  for (int Ligne = 0; Ligne < PQntuples(Lues.get()); ++Ligne) {
    const auto Texte = [&](int Colonne) { return std::string(PQgetvalue(Lues.get(), Ligne, Colonne)); };
    Toutes.push_back(
        {Texte(0), Texte(1), PQgetisnull(Lues.get(), Ligne, 2) == 0 ? std::optional(Texte(2)) : std::nullopt});
  }
  return Toutes;
}

void ConnexionPostgresql::AjouterColonne(const std::string& Table, const ColonneDeTable& Colonne) {
  static_cast<void>(Demander("ALTER TABLE " + NomPostgresql(Table) + " ADD COLUMN " + NomPostgresql(Colonne.Nom) + " " +
                                 Colonne.Type + (Colonne.Défaut ? " DEFAULT " + *Colonne.Défaut : ""),
                             {}, false));
}

std::string ConnexionPostgresql::CléNumérotée(bool /*JamaisReprise*/) const {
  return "BIGINT GENERATED BY DEFAULT AS IDENTITY PRIMARY KEY";
}

void ConnexionPostgresql::ReprendreNumérotation(const std::string& Table, const std::string& Colonne) {
  static_cast<void>(Demander("SELECT setval(pg_get_serial_sequence(quote_ident($1), $2), coalesce(max(" +
                                 NomPostgresql(Colonne) + "), 0) + 1, false) FROM " + NomPostgresql(Table),
                             {Table, Colonne}, false));
}

/// A server has always had numbers only: what it keeps stays right.
void ConnexionPostgresql::TenirSommes(const SommesTenues& Sommes) {
  if (ColonnesDe(Sommes.Table).empty()) Suivre(Écritures(Sommes).Tenir);
}

/// In the schema where the loads stand, wherever the account's path begins.
ÉcrituresSommes ConnexionPostgresql::Écritures(const SommesTenues& Sommes) {
  const Résultat Lu = Demander(
      "SELECT coalesce((SELECT nspname FROM pg_class JOIN pg_namespace AS n ON n.oid = relnamespace WHERE pg_class.oid "
      "="
      " to_regclass(quote_ident($1))), current_schema())",
      {Sommes.Sources.front()}, true);
  return SommesPostgresql(Sommes, PQgetvalue(Lu.get(), 0, 0));
}

void ConnexionPostgresql::Suivre(const std::vector<std::string>& Étapes) {
  for (const std::string& Étape : Étapes) static_cast<void>(Demander(Étape, {}, false));
}

ValeurChamp ConnexionPostgresql::SommesFausses(const SommesTenues& Sommes) {
  return ValeurDe(Demander(Écritures(Sommes).Fausses, {}, true).get(), 0, 0);
}

std::string ConnexionPostgresql::SansCoupure(const std::string& Colonne) const {
  return Colonne + " !~ '[;\\x01-\\x1F\\x7F]'";
}

std::string ConnexionPostgresql::DateLisible(const std::string& Colonne) const {
  return "to_char(timestamp '1899-12-30' + round(" + Colonne + " * 86400) * interval '1 second', 'DD/MM/YYYY HH24:MI')";
}

std::string ConnexionPostgresql::DroitsManquants(const std::string& Table, const std::vector<std::string>& Droits) {
  std::string Absents;
  for (const std::string& Droit : Droits) {
    const Résultat Lu = Demander("SELECT has_table_privilege(quote_ident($1), $2)", {Table, Droit}, true);
    if (*PQgetvalue(Lu.get(), 0, 0) != 't') Absents += (Absents.empty() ? "" : ", ") + Droit;
  }
  return Absents;
}

void ConnexionPostgresql::PrendreSite(const std::string& Code) {
  const LienServeur::Délai Ensemble(Lien_);
  Site_ = Code;
  if (Lien_.EstOuvert())
    VerrouillerSite();
  else
    Relier();
}

void ConnexionPostgresql::VerrouillerSite() {
  // A link of our own that the server hasn't missed yet would keep us out.
  if (AncienProcessus_ != 0 && AncienProcessus_ != Lien_.Processus())
    static_cast<void>(Lien_.Demander(
        "SELECT pg_terminate_backend(pid) FROM pg_locks WHERE locktype = 'advisory' AND classid = " +
        std::string(Nôtre) + " AND objid = " + std::to_string(static_cast<std::uint32_t>(NuméroDeSite(*Site_))) +
        " AND objsubid = 2 AND database = (SELECT oid FROM pg_database WHERE datname = current_database())"
        " AND pid = " +
        std::to_string(AncienProcessus_)));
  if (!PrendreVerrou())
    throw ErreurExécution("Une autre station travaille sous le code de site « " + *Site_ +
                          " » sur cette base ; --site en donne un autre.");
  static_cast<void>(Lien_.DemanderTout(std::string("LISTEN ") + Canal));
}

/// A former link's end takes its moment.
bool ConnexionPostgresql::PrendreVerrou() {
  const std::string Essai =
      "SELECT pg_try_advisory_lock(" + std::string(Nôtre) + ", " + std::to_string(NuméroDeSite(*Site_)) + ")";
  for (const auto Fin = std::chrono::steady_clock::now() + PatienceDeSite;;) {
    const Résultat Lu = Lien_.Demander(Essai);
    if (*PQgetvalue(Lu.get(), 0, 0) == 't') return true;
    if (std::chrono::steady_clock::now() > Fin) return false;
    static_cast<void>(Lien_.Demander("SELECT pg_sleep(0.1)"));
  }
}

bool ConnexionPostgresql::ADuNouveau() {
  constexpr auto EntreDeuxEssais = std::chrono::seconds(30);
  if (!Lien_.EstOuvert() && std::chrono::steady_clock::now() > ProchainEssai_) {
    ProchainEssai_ = std::chrono::steady_clock::now() + EntreDeuxEssais;
    try {
      const LienServeur::Délai Ensemble(Lien_);
      Relier();
    } catch (const ErreurExécution&) {
      if (!std::exchange(EstCoupé_, true)) throw;
    }
  }
  return Lien_.EstAverti() || std::exchange(ADesNouvelles_, false);
}

void ConnexionPostgresql::LimiterLeTemps(bool EstPressé) noexcept {
  try {
    Lien_.Limiter(EstPressé);
  } catch (const std::exception&) {
    Lien_.Fermer();  // the next one has the right limits from its start
  }
}

void ConnexionPostgresql::Commencer() {
  if (DansTransaction_) throw ErreurExécution("Une autre écriture est en cours dans la base");
  DélaiDeTransaction_.emplace(Lien_);
  try {
    static_cast<void>(Demander("BEGIN ISOLATION LEVEL READ COMMITTED", {}, true));
    DansTransaction_ = true;
    const Résultat Lus = Lien_.Demander("SELECT current_setting('synchronous_commit'), pg_advisory_xact_lock(" +
                                        std::string(Nôtre) + ", 0)");
    const std::string Mode = PQgetvalue(Lus.get(), 0, 0);
    if (Mode != "on" && Mode != "remote_apply")
      throw ErreurExécution(
          "Le serveur de la base annonce des écritures qui ne sont pas encore sur son disque "
          "(synchronous_commit = " +
          Mode + ") : rien n'y est enregistré");
  } catch (const ErreurExécution&) {
    if (DansTransaction_) Annuler();
    DélaiDeTransaction_.reset();
    throw;
  }
}

void ConnexionPostgresql::Valider() {
  const Résultat Fin = Lien_.DemanderTout(std::string("NOTIFY ") + Canal + "; COMMIT");
  DansTransaction_ = false;
  if (!Fin || std::string_view(PQcmdStatus(Fin.get())) != "COMMIT")
    throw ErreurExécution("Le serveur de la base a annulé l'enregistrement");
  DélaiDeTransaction_.reset();
  // A standby that should have had it, and hasn't: a failover would lose it.
  if (!Lien_.Avertissement().empty())
    throw ErreurExécution("Le serveur de la base n'a pas enregistré avec certitude (" + Lien_.Avertissement() + ")");
}

void ConnexionPostgresql::Annuler() noexcept {
  DansTransaction_ = false;
  try {
    if (Lien_.EstOuvert()) static_cast<void>(Lien_.DemanderTout("ROLLBACK"));
  } catch (const std::exception&) {
    Lien_.Fermer();  // the server undoes what it hasn't been told to keep
  }
  DélaiDeTransaction_.reset();
}

std::string ConnexionPostgresql::Moteur() {
  constexpr int ParMajeure = 10000;
  const auto Serveur = Comme<std::string>(Lire("SELECT current_setting('server_version')"));
  return "PostgreSQL " + Serveur.value_or("?") + ", client " + std::to_string(PQlibVersion() / ParMajeure) + "." +
         std::to_string(PQlibVersion() % ParMajeure);
}

}  // namespace Ombrey
