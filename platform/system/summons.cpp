// A station that is started once more calls the one that has its folder.
#include "platform/system/summons.h"

#include <sys/socket.h>
#include <sys/un.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <system_error>
#include <utility>

namespace Ombrey {
namespace {

/// In the system's table of names, not in a folder: it goes with its holder, and a long path doesn't matter.
struct Adresse {
  sockaddr_un Nom{};
  socklen_t Taille = 0;

  explicit Adresse(const std::filesystem::path& Dossier) {
    std::error_code Code;
    std::uint64_t Empreinte = 14695981039346656037U;  // FNV-1a
    for (const char C : std::filesystem::weakly_canonical(Dossier, Code).string())
      Empreinte = (Empreinte ^ static_cast<unsigned char>(C)) * 1099511628211U;
    const std::string Texte = "tarvel-" + std::to_string(Empreinte);
    Nom.sun_family = AF_UNIX;
    std::ranges::copy(Texte, Nom.sun_path + 1);
    Taille = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + Texte.size());
  }
  [[nodiscard]] const sockaddr* Brute() const { return reinterpret_cast<const sockaddr*>(&Nom); }
};

Descripteur Prise() { return Descripteur(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)); }

}  // namespace

ÉcouteAppels::ÉcouteAppels(IBoucle& Boucle, const std::filesystem::path& Dossier, std::function<void()> Appelée)
    : Oreille_(Prise()) {
  const Adresse Sienne(Dossier);
  if (!Oreille_.EstOuvert() || bind(Oreille_.Numéro(), Sienne.Brute(), Sienne.Taille) != 0) return;
  Veille_ = Boucle.Surveiller(Oreille_.Numéro(), IBoucle::Sens::Entrée,
                              [Numéro = Oreille_.Numéro(), Faire = std::move(Appelée)] {
                                char Mot = 0;
                                if (recv(Numéro, &Mot, sizeof Mot, 0) >= 0) Faire();
                              });
}

bool AppelerStation(const std::filesystem::path& Dossier) {
  const Descripteur Voix = Prise();
  const Adresse Sienne(Dossier);
  return Voix.EstOuvert() && sendto(Voix.Numéro(), "!", 1, 0, Sienne.Brute(), Sienne.Taille) == 1;
}

}  // namespace Ombrey
