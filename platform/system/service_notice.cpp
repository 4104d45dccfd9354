// What a service tells the service manager of the machine.
#include "platform/system/service_notice.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "base/text_helpers.h"
#include "contracts/phrases.h"
#include "platform/loop/descriptor.h"

namespace Ombrey {
namespace {

/// A loop that is late by half the watchdog's time still feeds it.
constexpr int RepasParDélai = 3;

std::string_view Variable(const char* Nom) {
  const char* const Valeur = std::getenv(Nom);
  return Valeur == nullptr ? std::string_view() : Valeur;
}

/// 0 unless the whole text is a number above it.
long long NombreOuZéro(std::string_view Texte) { return std::max(0LL, NombreLu<long long>(Texte).value_or(0)); }

struct Gravité {
  std::string_view Début;
  std::string_view Fin;
  std::string_view Marque;
};

/// A poll that finds nothing is the journal's lowest level: at one every two seconds it would fill the journal by
/// itself.
constexpr Gravité Gravités[] = {{"erreur ", "", "<3>"},
                                {"boîte ", "", "<4>"},
                                {"hôte ", "", "<5>"},
                                {"message [ ] ", Phrase::RienÀRécupérer, "<7>"},
                                {"", "", "<6>"}};

}  // namespace

AvisService::AvisService(IBoucle& Boucle) : Boucle_(Boucle), Adresse_(Variable("NOTIFY_SOCKET")) {
  if (Adresse_.starts_with('@')) Adresse_.front() = '\0';
  // The watchdog of a parent isn't ours.
  const long long Pour = NombreOuZéro(Variable("WATCHDOG_PID"));
  if (Pour == 0 || Pour == getpid())
    Rythme_ = std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::microseconds(NombreOuZéro(Variable("WATCHDOG_USEC"))) / RepasParDélai);
}

void AvisService::Prêt(const std::string& État) {
  Dire("READY=1\nSTATUS=" + État);
  if (!Adresse_.empty() && Rythme_.count() > 0) Nourrir();
}

void AvisService::Arrêt() {
  Suite_.reset();
  Dire("STOPPING=1");
}

void AvisService::Nourrir() {
  Dire("WATCHDOG=1");
  Suite_ = Boucle_.Après(Rythme_, [this] { Nourrir(); });
}

void AvisService::Dire(std::string_view Texte) const {
  sockaddr_un Cible{};
  Cible.sun_family = AF_UNIX;
  if (Adresse_.empty() || Adresse_.size() >= sizeof Cible.sun_path) return;
  std::memcpy(Cible.sun_path, Adresse_.data(), Adresse_.size());
  const Descripteur Prise(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  const auto Longueur = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + Adresse_.size());
  // A word that finds no ear is lost, as it would be with no manager at all.
  static_cast<void>(sendto(Prise.Numéro(), Texte.data(), Texte.size(), MSG_NOSIGNAL,
                           reinterpret_cast<const sockaddr*>(&Cible), Longueur));
}

bool MèneAuJournal(int Descripteur) {
  struct stat État {};
  return fstat(Descripteur, &État) == 0 &&
         Variable("JOURNAL_STREAM") == std::to_string(État.st_dev) + ":" + std::to_string(État.st_ino);
}

std::string_view GravitéJournal(std::string_view Ligne) {
  for (const auto& [Début, Fin, Marque] : Gravités)
    if (Ligne.starts_with(Début) && Ligne.ends_with(Fin)) return Marque;
  return "";
}

}  // namespace Ombrey
