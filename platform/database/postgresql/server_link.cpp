// libpq's connection with an owner: every question to the server is over in time, whatever the server or the network
// do.
#include "platform/database/postgresql/server_link.h"

#include <libpq-fe.h>
#include <poll.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <utility>

#include "platform/database/postgresql/postgresql_failures.h"

namespace Ombrey {
namespace {

using Temps = std::chrono::steady_clock;
using std::chrono::milliseconds;

/// Between two looks at the windows.
constexpr milliseconds PasDAttente{50};
constexpr const char* NePeutPas = "Le serveur de la base ne peut pas être joint";

/// The rules of every connection. A station that has gone leaves its locks within a minute.
constexpr const char* Réglages =
    "SET statement_timeout = 7000; SET lock_timeout = 7000; SET idle_in_transaction_session_timeout = 30000;"
    "SET tcp_keepalives_idle = 10; SET tcp_keepalives_interval = 5; SET tcp_keepalives_count = 3;"
    "SET DateStyle = 'ISO'; SET standard_conforming_strings = on; SET extra_float_digits = 1;"
    "SET client_encoding = 'UTF8'; SET client_min_messages = warning";

/// The servers of the address share the time.
std::string SecondesParServeur(const std::string& Adresse) {
  constexpr std::ptrdiff_t Ensemble = 6;
  constexpr std::ptrdiff_t AuMoins = 2;  // libpq waits no less
  const std::size_t Début = Adresse.find("//") + 2;
  const std::string Serveurs = Adresse.substr(Début, Adresse.find('/', Début) - Début);
  return std::to_string(std::max(AuMoins, Ensemble / (1 + std::ranges::count(Serveurs, ','))));
}

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
void LienServeur::Finir::operator()(pg_conn* Lien) const { PQfinish(Lien); }

void LienServeur::Ouvrir() {
  if (Temps::now() < PasAvant_) throw ErreurExécution(DernièrePerte_);
  const std::string Secondes = SecondesParServeur(Adresse_);
  const std::array<const char*, 9> Clés = {"fallback_application_name",
                                           "dbname",
                                           "connect_timeout",
                                           "keepalives_idle",
                                           "keepalives_interval",
                                           "keepalives_count",
                                           "tcp_user_timeout",
                                           "client_encoding",
                                           nullptr};
  const std::array<const char*, 9> Valeurs = {"tarvel", Adresse_.c_str(), Secondes.c_str(), "10",   "5",
                                              "3",      "7000",           "UTF8",           nullptr};
  Lien_.reset(PQconnectdbParams(Clés.data(), Valeurs.data(), 1));
  if (PQstatus(Lien_.get()) != CONNECTION_OK) Perdre(NePeutPas);
  PQsetnonblocking(Lien_.get(), 1);
  // What a server has to say beside its answers is no line of ours.
  PQsetNoticeProcessor(
      Lien_.get(), [](void*, const char*) {}, nullptr);
  static_cast<void>(DemanderTout(Réglages));
}

Résultat LienServeur::Demander(const std::string& Sql, const std::vector<ValeurChamp>& Valeurs) {
  std::vector<std::optional<std::string>> Textes;
  std::vector<const char*> Pointeurs;
  Textes.reserve(Valeurs.size());
  for (const ValeurChamp& Valeur : Valeurs) {
    Textes.push_back(std::visit(EnTexte{}, Valeur));
    Pointeurs.push_back(Textes.back() ? Textes.back()->c_str() : nullptr);
  }
  const int Parti = PQsendQueryParams(Lien_.get(), Sql.c_str(), static_cast<int>(Pointeurs.size()), nullptr,
                                      Pointeurs.data(), nullptr, nullptr, 0);
  if (Parti == 0) Perdre("La liaison avec le serveur de la base est perdue");
  return Attendre();
}

Résultat LienServeur::DemanderTout(const std::string& Sql) {
  if (PQsendQuery(Lien_.get(), Sql.c_str()) == 0) Perdre("La liaison avec le serveur de la base est perdue");
  return Attendre();
}

/// All results of what was sent, the last of them; the first that is a refusal raises it.
Résultat LienServeur::Attendre() {
  const auto Échéance = Temps::now() + AttenteServeur;
  Résultat Dernier;
  Résultat Refus;
  for (;;) {
    int Reste = PQflush(Lien_.get());
    while (Reste == 1 || (Reste == 0 && PQisBusy(Lien_.get()) != 0)) {
      AttendreSocket(static_cast<short>(Reste == 1 ? POLLIN | POLLOUT : POLLIN), Échéance);
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
  if (PQstatus(Lien_.get()) != CONNECTION_OK) Perdre("La liaison avec le serveur de la base est perdue");
  if (Refus) {
    const char* const Code = PQresultErrorField(Refus.get(), PG_DIAG_SQLSTATE);
    const char* const Mots = PQresultErrorField(Refus.get(), PG_DIAG_MESSAGE_PRIMARY);
    LeverÉchecServeur(Code == nullptr ? "" : Code, Mots == nullptr ? PQresultErrorMessage(Refus.get()) : Mots);
  }
  return Dernier;
}

void LienServeur::AttendreSocket(short Quoi, Temps::time_point Échéance) {
  for (;;) {
    const auto Reste = std::chrono::ceil<milliseconds>(Échéance - Temps::now());
    if (Reste <= milliseconds::zero()) {
      PasAvant_ = Temps::now() + RépitServeur;
      Lien_.reset();
      DernièrePerte_ = "Le serveur de la base ne répond pas";
      throw ErreurExécution(DernièrePerte_);
    }
    pollfd Socket{PQsocket(Lien_.get()), Quoi, 0};
    if (poll(&Socket, 1, static_cast<int>(std::min(Reste, PasDAttente).count())) > 0) return;
    if (Patience_) Patience_();
  }
}

void LienServeur::Perdre(const std::string& Raison) {
  const std::string Texte = Raison + " (" + SurUneLigne(PQerrorMessage(Lien_.get())) + ")";
  const bool NEstJamaisVenu = Raison == NePeutPas;
  Lien_.reset();
  if (!NEstJamaisVenu) throw LienPerdu(Texte);
  PasAvant_ = Temps::now() + RépitServeur;
  DernièrePerte_ = Texte;
  throw ErreurExécution(Texte);
}

bool LienServeur::EstAverti() {
  if (!Lien_) return false;
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
