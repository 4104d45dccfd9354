// libpq's connection with an owner: every question to the server is over in time, whatever the server or the network
// do.
#include "platform/database/postgresql/server_link.h"

#include <libpq-fe.h>
#include <poll.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <optional>
#include <utility>
#include <variant>

#include "base/visible_text.h"
#include "platform/database/connection.h"
#include "platform/database/postgresql/postgresql_failures.h"

namespace Ombrey {
namespace {

using Temps = std::chrono::steady_clock;
using std::chrono::milliseconds;

/// Between two looks at the windows.
constexpr milliseconds PasDAttente{50};

/// The rules of every connection. A station that has gone leaves its locks within a minute.
constexpr const char* Réglages =
    "SET tcp_keepalives_idle = 10; SET tcp_keepalives_interval = 5; SET tcp_keepalives_count = 3;"
    "SET DateStyle = 'ISO'; SET standard_conforming_strings = on; SET extra_float_digits = 1;"
    "SET client_encoding = 'UTF8'; SET client_min_messages = warning;";
/// While a terminal waits, and while nobody does.
constexpr const char* EstPresséSql =
    "SET statement_timeout = 7000; SET lock_timeout = 7000; SET idle_in_transaction_session_timeout = 30000";
constexpr const char* ALeTempsSql =
    "SET statement_timeout = 0; SET lock_timeout = 60000; SET idle_in_transaction_session_timeout = 0";

/// A value as the server reads it; none for Null.
struct EnTexte {
  std::optional<std::string> operator()(std::monostate /*Null*/) const { return std::nullopt; }
  std::optional<std::string> operator()(std::int64_t Valeur) const { return std::to_string(Valeur); }
  std::optional<std::string> operator()(double Valeur) const {
    std::array<char, 32> Texte{};
    return std::string(Texte.data(), std::to_chars(Texte.data(), Texte.data() + Texte.size(), Valeur).ptr);
  }
  std::optional<std::string> operator()(const std::string& Valeur) const { return Valeur; }
};

}  // namespace

void LibérerRésultat::operator()(pg_result* Ancien) const { PQclear(Ancien); }
void LienServeur::Raccrocher::operator()(pg_conn* Lien) const { PQfinish(Lien); }

/// Nobody else asks meanwhile.
class LienServeur::Occupation {
 public:
  explicit Occupation(LienServeur& Lien) : Lien_(Lien) {
    if (Lien.EstOccupé_) throw ErreurExécution("La base attend encore la réponse à une autre question");
    Lien.EstOccupé_ = true;
  }
  Occupation(const Occupation&) = delete;
  Occupation& operator=(const Occupation&) = delete;
  ~Occupation() { Lien_.EstOccupé_ = false; }

 private:
  LienServeur& Lien_;
};

LienServeur::Délai::Délai(LienServeur& Lien) : Lien_(Lien), EstLePremier_(!Lien.Échéance_) {
  if (EstLePremier_) Lien.Échéance_ = Lien.Échéance();
}

LienServeur::Délai::~Délai() {
  if (EstLePremier_) Lien_.Échéance_.reset();
}

Temps::time_point LienServeur::Échéance() const {
  return !EstPressé_ ? Temps::time_point::max() : Échéance_.value_or(Temps::now() + AttenteServeur);
}

void LienServeur::Ouvrir() {
  if (Temps::now() < PasAvant_) throw ErreurExécution(DernièrePerte_);
  const Occupation Seul(*this);
  const auto Fin = std::min(Échéance(), Temps::now() + AttenteServeur);
  std::vector<ServeurÀEssayer> Serveurs = ServeursDe(Adresse_, Fin, Patience_);
  std::string Raisons = Serveurs.empty() ? "son nom n'est pas trouvé" : "";
  // Those that are left share the time.
  auto Restants = static_cast<int>(Serveurs.size());
  for (const ServeurÀEssayer& Un : Serveurs) {
    const std::string Raison = Joindre(Un, Temps::now() + (Fin - Temps::now()) / Restants--);
    if (Raison.empty()) break;
    Lien_.reset();
    Raisons += (Raisons.empty() ? "" : " ; ") + Raison;
  }
  if (!Lien_) Renoncer("Le serveur de la base ne peut pas être joint (" + Raisons + ")");
  PQsetnonblocking(Lien_.get(), 1);
  // What a server has to say beside its answers is no line of ours, but it may take an answer back.
  PQsetNoticeReceiver(
      Lien_.get(),
      [](void* Lien, const PGresult* Dit) {
        static_cast<LienServeur*>(Lien)->Avertissement_ = SurUneLigne(PQresultErrorMessage(Dit));
      },
      this);
  static_cast<void>(EnvoyerTout(Réglages + std::string(EstPressé_ ? EstPresséSql : ALeTempsSql)));
}

std::string LienServeur::Joindre(const ServeurÀEssayer& Lui, Temps::time_point Échéance) {
  std::vector<std::pair<const char*, const char*>> Options = {{"fallback_application_name", "tarvel"},
                                                              {"dbname", Adresse_.c_str()},
                                                              {"keepalives_idle", "10"},
                                                              {"keepalives_interval", "5"},
                                                              {"keepalives_count", "3"},
                                                              {"tcp_user_timeout", "7000"},
                                                              {"client_encoding", "UTF8"},
                                                              {"host", Lui.Hôte.c_str()},
                                                              {"hostaddr", Lui.AdresseIp.c_str()},
                                                              {"port", Lui.Port.c_str()},
                                                              {nullptr, nullptr}};
  std::vector<const char*> Clés;
  std::vector<const char*> Valeurs;
  for (const auto& [Clé, Valeur] : Options) {
    Clés.push_back(Clé);
    Valeurs.push_back(Valeur);
  }
  Lien_.reset(PQconnectStartParams(Clés.data(), Valeurs.data(), 1));
  auto État = PGRES_POLLING_WRITING;
  while (PQstatus(Lien_.get()) != CONNECTION_BAD && État != PGRES_POLLING_FAILED) {
    if (État == PGRES_POLLING_OK) return {};
    if (!AttendreSocket(État == PGRES_POLLING_READING ? POLLIN : POLLOUT, Échéance))
      return (Lui.Hôte.empty() ? "le serveur" : Lui.Hôte) + " ne répond pas";
    État = PQconnectPoll(Lien_.get());
  }
  return SurUneLigne(PQerrorMessage(Lien_.get()));
}

void LienServeur::Limiter(bool EstPressé) {
  if (std::exchange(EstPressé_, EstPressé) != EstPressé && Lien_)
    static_cast<void>(DemanderTout(EstPressé ? EstPresséSql : ALeTempsSql));
}

Résultat LienServeur::Demander(const std::string& Sql, const std::vector<ValeurChamp>& Valeurs) {
  const Occupation Seul(*this);
  std::vector<std::optional<std::string>> Textes;
  std::vector<const char*> Pointeurs;
  Textes.reserve(Valeurs.size());
  for (const ValeurChamp& Valeur : Valeurs) {
    Textes.push_back(std::visit(EnTexte{}, Valeur));
    Pointeurs.push_back(Textes.back() ? Textes.back()->c_str() : nullptr);
  }
  Avertissement_.clear();
  const int Parti = PQsendQueryParams(Lien_.get(), Sql.c_str(), static_cast<int>(Pointeurs.size()), nullptr,
                                      Pointeurs.data(), nullptr, nullptr, 0);
  if (Parti == 0) Perdre();
  return Attendre();
}

Résultat LienServeur::DemanderTout(const std::string& Sql) {
  const Occupation Seul(*this);
  return EnvoyerTout(Sql);
}

Résultat LienServeur::EnvoyerTout(const std::string& Sql) {
  Avertissement_.clear();
  if (PQsendQuery(Lien_.get(), Sql.c_str()) == 0) Perdre();
  return Attendre();
}

/// All results of what was sent, the last of them; the first that is a refusal raises it.
Résultat LienServeur::Attendre() {
  const auto Fin = Échéance();
  Résultat Dernier;
  Résultat Refus;
  for (;;) {
    int Reste = PQflush(Lien_.get());
    while (Reste == 1 || (Reste == 0 && PQisBusy(Lien_.get()) != 0)) {
      if (!AttendreSocket(static_cast<short>(Reste == 1 ? POLLIN | POLLOUT : POLLIN), Fin))
        Renoncer("Le serveur de la base ne répond pas");
      if (PQconsumeInput(Lien_.get()) == 0) break;
      Reste = PQflush(Lien_.get());
    }
    Résultat Suivant(PQgetResult(Lien_.get()));
    if (!Suivant) break;
    if (PQresultStatus(Suivant.get()) == PGRES_FATAL_ERROR && !Refus)
      Refus = std::move(Suivant);
    else
      Dernier = std::move(Suivant);
  }
  if (PQstatus(Lien_.get()) != CONNECTION_OK) Perdre();
  if (Refus) {
    const char* const Code = PQresultErrorField(Refus.get(), PG_DIAG_SQLSTATE);
    const char* const Mots = PQresultErrorField(Refus.get(), PG_DIAG_MESSAGE_PRIMARY);
    LeverÉchecServeur(Code == nullptr ? "" : Code, Mots == nullptr ? PQresultErrorMessage(Refus.get()) : Mots);
  }
  return Dernier;
}

bool LienServeur::AttendreSocket(short Quoi, Temps::time_point Échéance) {
  for (const auto Depuis = Temps::now();;) {
    const auto Reste = std::chrono::ceil<milliseconds>(Échéance - Temps::now());
    if (Reste <= milliseconds::zero()) return false;
    pollfd Socket{PQsocket(Lien_.get()), Quoi, 0};
    if (poll(&Socket, 1, static_cast<int>(std::min(Reste, PasDAttente).count())) > 0) return true;
    if (Patience_ && !Patience_() && Temps::now() - Depuis >= AttentePressée) return false;
  }
}

void LienServeur::Perdre() {
  const std::string Mots = SurUneLigne(PQerrorMessage(Lien_.get()));
  Lien_.reset();
  throw LienPerdu(std::string(LiaisonPerdue) + " (" + Mots + ")");
}

/// For a while, questions fail at once.
void LienServeur::Renoncer(const std::string& Raison) {
  Lien_.reset();
  PasAvant_ = Temps::now() + RépitServeur;
  DernièrePerte_ = Raison;
  throw ErreurExécution(Raison);
}

bool LienServeur::EstAverti() {
  if (!Lien_ || EstOccupé_) return false;
  if (PQconsumeInput(Lien_.get()) == 0) {
    Fermer();
    return false;
  }
  bool EstDUnAutre = false;
  while (PGnotify* const Avis = PQnotifies(Lien_.get())) {
    EstDUnAutre = EstDUnAutre || Avis->be_pid != Processus();
    PQfreemem(Avis);
  }
  return EstDUnAutre;
}

int LienServeur::Processus() const { return Lien_ ? PQbackendPID(Lien_.get()) : 0; }

}  // namespace Ombrey
