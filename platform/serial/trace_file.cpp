// The line's trace on the disk: one file a day.
#include "platform/serial/trace_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <exception>
#include <string_view>
#include <system_error>
#include <utility>

#include "base/failures.h"
#include "base/files.h"
#include "base/system_error.h"
#include "platform/serial/message_text.h"

namespace Ombrey {
namespace {

namespace fs = std::filesystem;
using Mur = std::chrono::system_clock;

constexpr const char* Signature = "# Trace de la liaison avec le RG80, forme 1, le ";
constexpr auto JoursGardés = std::chrono::days(30);
/// A disk that was full is asked again no more often than this.
constexpr auto AttenteReprise = std::chrono::seconds(60);

std::string Heure(Mur::time_point Quand, const char* Forme) {
  const std::time_t Secondes = Mur::to_time_t(Quand);
  std::tm Local{};
  localtime_r(&Secondes, &Local);
  std::array<char, 32> Texte{};
  return {Texte.data(), std::strftime(Texte.data(), Texte.size(), Forme, &Local)};
}

const char* Nom(MessageLiaison::Source Qui) {
  switch (Qui) {
    case MessageLiaison::Source::Station:
      return "station";
    case MessageLiaison::Source::Terminal:
      return "RG80";
    case MessageLiaison::Source::Port:
      break;
  }
  return "port";
}

/// The name of a former day's file beside today's.
fs::path NomDuJour(const fs::path& Fichier, const std::string& Jour) {
  fs::path Nom = Fichier.stem();
  return Fichier.parent_path() / ((Nom += "-" + Jour) += Fichier.extension());
}

[[noreturn]] void RefuserTrace(int Numéro) { throw ErreurExécution(TexteErreurSystème(Numéro)); }

/// Opens what is a trace already, or is empty, and makes what is missing.
Descripteur OuvrirTrace(const fs::path& Chemin, struct stat& État) {
  Descripteur Fichier(open(Chemin.c_str(), O_RDWR | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, 0600));
  if (!Fichier.EstOuvert() || fstat(Fichier.Numéro(), &État) != 0) RefuserTrace(errno);
  if (!S_ISREG(État.st_mode)) throw ErreurExécution("ce n'est pas un fichier");
  if (flock(Fichier.Numéro(), LOCK_EX | LOCK_NB) != 0) throw ErreurExécution("une autre station y écrit");
  std::string Début(std::string_view(Signature).size(), '\0');
  const ssize_t Lus = pread(Fichier.Numéro(), Début.data(), Début.size(), 0);
  if (Lus < 0) RefuserTrace(errno);
  if (!std::string_view(Signature).starts_with(Début.substr(0, static_cast<std::size_t>(Lus))))
    throw ErreurExécution("ce fichier n'est pas une trace");
  if ((État.st_mode & 077U) != 0 && fchmod(Fichier.Numéro(), 0600) != 0) RefuserTrace(errno);
  return Fichier;
}

}  // namespace

std::string JourTrace(Mur::time_point Quand) { return Heure(Quand, "%Y-%m-%d"); }

std::string EntêteTrace(Mur::time_point Quand) { return Signature + JourTrace(Quand) + "\n"; }

std::string LigneTrace(const MessageLiaison& Message) {
  const auto Depuis = std::chrono::floor<std::chrono::milliseconds>(Message.Quand.Mur.time_since_epoch());
  std::array<char, 8> Millis{};
  std::snprintf(Millis.data(), Millis.size(), ".%03d", static_cast<int>(Depuis.count() % 1000));
  return Heure(Message.Quand.Mur, "%H:%M:%S") + Millis.data() + "\t" + Nom(Message.Qui) + "\t" +
         TexteBrut(Message.Bruts) + "\t" + (Message.Faute ? "! " : "") + Message.Texte + "\n";
}

FichierTrace::FichierTrace(fs::path Chemin, Rapport Dire) : Chemin_(std::move(Chemin)), Dire_(std::move(Dire)) {
  std::error_code Erreur;
  if (!Chemin_.has_filename() || fs::is_directory(Chemin_, Erreur)) Chemin_ /= "ligne.trace";
}

void FichierTrace::Écrire(const MessageLiaison& Message) {
  if (Message.Quand.Depuis < Reprise_) {
    ++Manquent_;
    return;
  }
  try {
    const Mur::time_point Quand = Message.Quand.Mur;
    if (!Fichier_.EstOuvert() || Jour_ != JourTrace(Quand)) Ouvrir(Quand);
    const std::string Lacune =
        Manquent_ == 0 ? "" : "# il manque ici " + std::to_string(Manquent_) + " messages, qui n'ont pu être écrits\n";
    Ajouter(Lacune + LigneTrace(Message));
    Manquent_ = 0;
  } catch (const std::exception& Erreur) {
    ++Manquent_;
    Reprise_ = Message.Quand.Depuis + AttenteReprise;
    Échouer(Erreur.what());
  }
}

/// A file whose last line isn't of this day takes that day's name first.
void FichierTrace::Ouvrir(Mur::time_point Quand) {
  Fichier_.Fermer();
  CréerDossier(fs::absolute(Chemin_).parent_path());
  struct stat État {};
  Descripteur Ouvert = OuvrirTrace(Chemin_, État);
  Jour_ = JourTrace(Quand);
  const std::string SonJour = JourTrace(Mur::from_time_t(État.st_mtim.tv_sec));
  const fs::path Ancien = NomDuJour(Chemin_, SonJour);
  std::error_code Erreur;
  if (État.st_size > 0 && SonJour != Jour_ && !fs::exists(Ancien, Erreur)) {
    fs::rename(Chemin_, Ancien);
    Ouvert = OuvrirTrace(Chemin_, État);
  }
  Fichier_ = std::move(Ouvert);
  Ranger(Quand);
  char Dernier = '\n';
  if (État.st_size > 0 && pread(Fichier_.Numéro(), &Dernier, 1, État.st_size - 1) < 0) RefuserTrace(errno);
  Ajouter((Dernier == '\n' ? "" : "\n") + EntêteTrace(Quand));
}

/// Lets go of what is older than is kept.
void FichierTrace::Ranger(Mur::time_point Quand) const {
  const std::string Limite = NomDuJour(Chemin_, JourTrace(Quand - JoursGardés)).filename().string();
  const std::string Forme = NomDuJour(Chemin_, "####-##-##").filename().string();
  std::error_code Erreur;
  for (const auto& Entrée : fs::directory_iterator(fs::absolute(Chemin_).parent_path(), Erreur)) {
    const std::string Nommé = Entrée.path().filename().string();
    bool EstDuJour = Nommé.size() == Forme.size();
    for (std::size_t Rang = 0; EstDuJour && Rang < Forme.size(); ++Rang)
      EstDuJour = Forme[Rang] == '#' ? Nommé[Rang] >= '0' && Nommé[Rang] <= '9' : Nommé[Rang] == Forme[Rang];
    if (EstDuJour && Nommé < Limite) fs::remove(Entrée.path(), Erreur);
  }
}

void FichierTrace::Ajouter(std::string_view Texte) {
  while (!Texte.empty()) {
    const ssize_t Écrits = write(Fichier_.Numéro(), Texte.data(), Texte.size());
    if (Écrits < 0 && errno == EINTR) continue;
    if (Écrits < 0) RefuserTrace(errno);
    Texte.remove_prefix(static_cast<std::size_t>(Écrits));
  }
}

void FichierTrace::Échouer(const std::string& Raison) {
  Fichier_.Fermer();
  if (std::exchange(Dit_, true)) return;
  Dire_("La trace " + TexteChemin(Chemin_) + " ne peut pas être écrite : " + Raison +
        ". La liaison continue sans elle.");
}

}  // namespace Ombrey
