// Where the servers of an address are to be found.
#include "platform/database/postgresql/server_search.h"

#include <libpq-fe.h>
#include <netdb.h>

#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <string_view>
#include <utility>

namespace Ombrey {
namespace {

using Temps = std::chrono::steady_clock;

constexpr long PasDAttenteNs = 50'000'000;

/// A question to the system for a name, which its own thread answers.
struct Recherche {
  explicit Recherche(std::string Demandé) : Nom(std::move(Demandé)) {
    Genre.ai_socktype = SOCK_STREAM;
    Demande.ar_name = Nom.c_str();
    Demande.ar_request = &Genre;
    gaicb* Toutes[] = {&Demande};
    getaddrinfo_a(GAI_NOWAIT, Toutes, 1, nullptr);
  }
  Recherche(const Recherche&) = delete;
  Recherche& operator=(const Recherche&) = delete;
  ~Recherche() {
    if (Demande.ar_result != nullptr) freeaddrinfo(Demande.ar_result);
  }
  [[nodiscard]] bool EstEnCours() { return gai_error(&Demande) == EAI_INPROGRESS; }

  std::string Nom;
  addrinfo Genre{};
  gaicb Demande{};
};

std::vector<std::string> AdressesDe(const std::string& Nom, Temps::time_point Échéance,
                                    const std::function<bool()>& Patience) {
  // One that came too late stays here until it is over: it can't be called off, and the next try may use it. Never
  // destroyed, since its thread may still be at work when the program ends.
  static auto& Toutes = *new std::map<std::string, std::unique_ptr<Recherche>>;
  auto& Sienne = Toutes[Nom];
  if (!Sienne) Sienne = std::make_unique<Recherche>(Nom);
  while (Sienne->EstEnCours() && Temps::now() < Échéance) {
    const gaicb* const Une[] = {&Sienne->Demande};
    const timespec Pas{0, PasDAttenteNs};
    gai_suspend(Une, 1, &Pas);
    if (Patience) static_cast<void>(Patience());
  }
  std::vector<std::string> Trouvées;
  if (Sienne->EstEnCours()) return Trouvées;
  for (const addrinfo* Une = Sienne->Demande.ar_result; Une != nullptr; Une = Une->ai_next) {
    std::array<char, NI_MAXHOST> Texte{};
    if (getnameinfo(Une->ai_addr, Une->ai_addrlen, Texte.data(), Texte.size(), nullptr, 0, NI_NUMERICHOST) == 0)
      Trouvées.emplace_back(Texte.data());
  }
  Toutes.erase(Nom);
  return Trouvées;
}

std::vector<std::string> Partager(std::string_view Liste) {
  std::vector<std::string> Parts;
  for (;;) {
    const std::size_t Virgule = Liste.find(',');
    Parts.emplace_back(Liste.substr(0, Virgule));
    if (Virgule == Liste.npos) return Parts;
    Liste.remove_prefix(Virgule + 1);
  }
}

/// What libpq makes of the address: a mode that there isn't keeps it from going on to the servers themselves.
std::map<std::string, std::string> OptionsDe(const std::string& Adresse) {
  const std::array<const char*, 3> Clés = {"dbname", "sslmode", nullptr};
  const std::array<const char*, 3> Valeurs = {Adresse.c_str(), "aucun", nullptr};
  const std::unique_ptr<PGconn, decltype(&PQfinish)> Lien(PQconnectStartParams(Clés.data(), Valeurs.data(), 1),
                                                          &PQfinish);
  const std::unique_ptr<PQconninfoOption, decltype(&PQconninfoFree)> Toutes(PQconninfo(Lien.get()), &PQconninfoFree);
  std::map<std::string, std::string> Lues;
  for (const PQconninfoOption* Une = Toutes.get(); Une != nullptr && Une->keyword != nullptr; ++Une)
    if (Une->val != nullptr) Lues[Une->keyword] = Une->val;
  return Lues;
}

}  // namespace

std::vector<ServeurÀEssayer> ServeursDe(const std::string& Adresse, Temps::time_point Échéance,
                                        const std::function<bool()>& Patience) {
  auto Options = OptionsDe(Adresse);
  const std::vector<std::string> Hôtes = Partager(Options["host"]);
  const std::vector<std::string> Numériques = Partager(Options["hostaddr"]);
  const std::vector<std::string> Ports = Partager(Options["port"]);
  const std::size_t Nombre = std::max(Hôtes.size(), Numériques.size());
  const auto Du = [](const std::vector<std::string>& Liste, std::size_t Rang) {
    return Liste.size() == 1 ? Liste[0] : Rang < Liste.size() ? Liste[Rang] : std::string();
  };
  std::vector<ServeurÀEssayer> Tous;
  for (std::size_t Rang = 0; Rang < Nombre; ++Rang) {
    ServeurÀEssayer Un{Rang < Hôtes.size() ? Hôtes[Rang] : "", Rang < Numériques.size() ? Numériques[Rang] : "",
                       Du(Ports, Rang)};
    const bool EstUnNom = !Un.Hôte.empty() && Un.Hôte.front() != '/' && Un.Hôte.front() != '@';
    if (!EstUnNom || !Un.AdresseIp.empty()) {
      Tous.push_back(std::move(Un));
      continue;
    }
    const auto Moitié = (Échéance - Temps::now()) / 2;
    for (const std::string& Une : AdressesDe(Un.Hôte, Temps::now() + Moitié, Patience))
      Tous.push_back({Un.Hôte, Une, Un.Port});
  }
  return Tous;
}

}  // namespace Ombrey
