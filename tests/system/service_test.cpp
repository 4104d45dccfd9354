// What a service tells its manager, heard at the manager's end of the socket.
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "platform/loop/descriptor.h"
#include "platform/loop/poll_loop.h"
#include "platform/system/service_notice.h"
#include "tests/support/test_folder.h"

namespace Ombrey {
namespace {

using namespace std::chrono_literals;

/// The manager's socket; '@' ahead of its name stands for the zero byte.
Descripteur Écouter(std::string Nom) {
  if (Nom.front() == '@') Nom.front() = '\0';
  sockaddr_un Adresse{};
  Adresse.sun_family = AF_UNIX;
  std::memcpy(Adresse.sun_path, Nom.data(), Nom.size());
  Descripteur Prise(socket(AF_UNIX, SOCK_DGRAM | SOCK_NONBLOCK, 0));
  const auto Longueur = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + Nom.size());
  EXPECT_EQ(bind(Prise.Numéro(), reinterpret_cast<const sockaddr*>(&Adresse), Longueur), 0);
  return Prise;
}

std::string Entendu(const Descripteur& Prise) {
  std::string Tout;
  char Place[256];
  for (ssize_t Lus = 0; (Lus = recv(Prise.Numéro(), Place, sizeof Place, 0)) >= 0; Tout += "|")
    Tout.append(Place, static_cast<std::size_t>(Lus));
  return Tout;
}

TEST(Service, TellsTheManagerOfItsLifeAndFeedsTheWatchdogFromTheLoop) {
  const Essais::DossierEssai Dossier;
  const std::string Chemin = (Dossier.Chemin() / "avis").string();
  const std::string Autre = std::to_string(getpid() + 1);
  const struct {
    std::string Adresse, Délai, Pour, Nourriture;
  } Cas[] = {{Chemin, "3000", "", "WATCHDOG=1|WATCHDOG=1|"},
             {"@ombrey-essai-" + std::to_string(getpid()), "3000", std::to_string(getpid()), "WATCHDOG=1|WATCHDOG=1|"},
             {Chemin, "3000", Autre, ""},
             {Chemin, "3s", "", ""},
             {Chemin, "", "", ""}};
  for (const auto& [Adresse, Délai, Pour, Nourriture] : Cas) {
    SCOPED_TRACE(Adresse + " " + Délai + " " + Pour);
    unlink(Chemin.c_str());
    const Descripteur Gérant = Écouter(Adresse);
    setenv("NOTIFY_SOCKET", Adresse.c_str(), 1);
    setenv("WATCHDOG_USEC", Délai.c_str(), 1);
    setenv("WATCHDOG_PID", Pour.c_str(), 1);
    BouclePoll Boucle;
    AvisService Service(Boucle);
    Service.Prêt("au travail");
    EXPECT_EQ(Boucle.Pomper(Nourriture.empty() ? 10ms : 10s), !Nourriture.empty());
    Service.Arrêt();
    EXPECT_EQ(Entendu(Gérant), "READY=1\nSTATUS=au travail|" + Nourriture + "STOPPING=1|");
    EXPECT_FALSE(Boucle.Pomper(10ms)) << "what ends isn't fed";
  }
  for (const std::string& Sourd : {std::string(), Chemin + "x", std::string(200, 'x')}) {
    setenv("NOTIFY_SOCKET", Sourd.c_str(), 1);
    BouclePoll Boucle;
    EXPECT_NO_THROW(AvisService(Boucle).Prêt("")) << Sourd;
  }
  unsetenv("NOTIFY_SOCKET");
}

TEST(Service, KnowsTheJournalAndTheLevelsOfItsLines) {
  struct stat État {};
  ASSERT_EQ(fstat(STDIN_FILENO, &État), 0);
  const std::string Ici = std::to_string(État.st_dev) + ":" + std::to_string(État.st_ino);
  for (const auto& [Variable, Attendu] : {std::pair(Ici, true), {"", false}, {Ici + "0", false}}) {
    setenv("JOURNAL_STREAM", Variable.c_str(), 1);
    EXPECT_EQ(MèneAuJournal(STDIN_FILENO), Attendu) << Variable;
  }
  unsetenv("JOURNAL_STREAM");
  const std::pair<const char*, const char*> Lignes[] = {{"erreur 08:00:00 : x", "<3>"},
                                                        {"boîte «Ombrey» (OK) : x", "<4>"},
                                                        {"hôte : x", "<5>"},
                                                        {"message [ ] 08:00:00 : Aucune réponse du RG80.", "<6>"},
                                                        {"message [ ] 08:00:00 : Aucun chargement à récupérer.", "<7>"},
                                                        {"message [x] 08:00:00 : erreur x", "<6>"}};
  for (const auto& [Ligne, Niveau] : Lignes) EXPECT_EQ(NiveauJournal(Ligne), Niveau) << Ligne;
}

}  // namespace
}  // namespace Ombrey
