// tarvel: the reception station.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/failures.h"
#include "base/files.h"
#include "base/regional_forms.h"
#include "contracts/system.h"
#include "host/about.h"
#include "host/console_station.h"
#include "host/cooperative_database.h"
#include "host/copied_base.h"
#include "host/day_slip.h"
#include "host/diagnostic.h"
#include "host/edition.h"
#include "host/load_table.h"
#include "host/long_work.h"
#include "host/new_file.h"
#include "host/onlooker.h"
#include "host/options.h"
#include "host/saved_base.h"
#include "host/schema.h"
#include "host/schema_upgrade.h"
#include "host/station.h"
#include "host/station_register.h"
#include "host/watch.h"
#include "host/windows_module.h"
#include "platform/database/connection.h"
#include "platform/database/recordsets.h"
#include "platform/loop/signals.h"
#include "platform/system/folder_lock.h"
#include "platform/system/machine_system.h"
#include "platform/system/service_notice.h"
#include "platform/system/summons.h"

namespace {

constexpr int Réussite = 0;
constexpr int Échec = 1;
constexpr int MauvaisesOptions = 2;

/// A file that is opened later must not take the place of a standard stream that the caller closed.
void OccuperFluxStandard() {
  int Descripteur = 0;
  do {
    Descripteur = open("/dev/null", O_RDWR);
  } while (Descripteur >= 0 && Descripteur <= STDERR_FILENO);
  if (Descripteur > STDERR_FILENO) close(Descripteur);
}

void SePlaindre(const std::string& Texte) {
  const char* const Gravité = Ombrey::MèneAuJournal(STDERR_FILENO) ? "<3>" : "";
  std::fprintf(stderr, "%starvel : %s\n", Gravité, Texte.c_str());
}

/// The one place that chooses what the station looks like.
std::unique_ptr<Tarvel::IÉdition> CréerÉdition(const Tarvel::Options& Choisies) {
  if (!Choisies.Console && Tarvel::FenêtresInstallées()) return Tarvel::CréerÉditionFenêtrée(Choisies);
  if (!Choisies.Console) std::fputs("tarvel : édition sans fenêtres, le travail se fait en console\n", stderr);
  return std::make_unique<Tarvel::ÉditionConsole>(Choisies, STDIN_FILENO, STDOUT_FILENO);
}

/// One that can't be written can still be looked at.
std::shared_ptr<Ombrey::IConnexion> OuvrirBase(const Tarvel::Options& Choisies, Ombrey::ISystème& Système,
                                               Tarvel::IÉdition& Édition) {
  auto Connexion = Tarvel::OuvrirCoopérative(Choisies.Base, [&Système] { return NuméroDeJour(Système.Maintenant()); });
  Connexion->FixerPatience(Tarvel::PatienceDe(Édition));
  Tarvel::MettreAJourSchéma(*Connexion);
  Tarvel::VérifierDroits(*Connexion);
  if (Connexion->EstEnLectureSeule()) {
    Édition.Dire("La base « " + Choisies.Base + " » est en lecture seule : rien n'y sera enregistré.");
    return Connexion;
  }
  if (const std::string Sans = Tarvel::SansSigneDeVie(*Connexion); !Sans.empty()) Édition.Dire(Sans);
  Ombrey::ErreurEnAttente SansDroit;
  const auto Compléter = [&] { Tarvel::CompléterArchive(*Connexion); };
  // Another station that starts may be at it: a second look finds its columns.
  if (!Garder(SansDroit, Compléter) && !Garder(SansDroit, Compléter))
    Édition.Dire("ChargementArchive n'a pas toutes les colonnes de Chargement ; son propriétaire doit les ajouter. " +
                 SansDroit.Texte());
  return Connexion;
}

void Travailler(const Tarvel::Options& Choisies) {
  const auto Édition = CréerÉdition(Choisies);
  if (Choisies.Regarder) return Tarvel::Spectateur(Choisies, *Édition).Exécuter();
  Tarvel::Station Station(Choisies, *Édition);
  std::shared_ptr<Ombrey::IConnexion> Connexion;
  std::shared_ptr<Tarvel::BaseDeDTarvel> Base;
  std::optional<Tarvel::RegistreStations> Registre;
  const auto Ouvrir = [&](Ombrey::ISystème& Système) {
    Connexion = OuvrirBase(Choisies, Système, *Édition);
    Tarvel::NoterMoteur(Édition->LAperçu(), *Connexion);
    Base = std::make_shared<Tarvel::BaseDeDTarvel>(Connexion, Système, Choisies.CodeSite,
                                                   [&](const std::string& Texte) { Édition->Dire(Texte); });
    Base->SurRefus([&](const Tarvel::ImportRefusé& Import) { Édition->LAperçu().NoterRefus(Import); });
    Connexion->PrendreSite(Base->KVSynchro()->CodeSiteCourant());
    Registre.emplace(Connexion, Base->KVSynchro()->CodeSiteCourant());
    return Base;
  };
  try {
    Station.Exécuter(Ouvrir, [&] {
      Connexion->RangerJournal();
      if (Connexion->ADuNouveau()) {
        Base->Actualiser();
        Édition->MontrerNouveau();
      }
      Registre->Signaler();
    });
  } catch (const std::exception& Erreur) {
    const bool Double = Ombrey::OccupantDossier(Choisies.Dossier) && Ombrey::AppelerStation(Choisies.Dossier);
    Édition->Échouer(Erreur.what() + std::string(Double ? "\n\nElle se montre maintenant." : ""));
    throw;
  }
}

/// Who started the station by its icon sees no stream: he gets a box where there is a screen.
void MontrerÉchec(const std::vector<std::string>& Arguments, const std::string& Raison) {
  constexpr std::array DeLIcône = {"--ini", "--base", "--site", "--dossier"};
  const bool ParIcône = std::ranges::all_of(Arguments, [&](const std::string& Un) {
    return !Un.starts_with("--") || std::ranges::find(DeLIcône, Un) != DeLIcône.end();
  });
  if (!ParIcône || isatty(STDERR_FILENO) || !Tarvel::ÉcranNommé() || !Tarvel::FenêtresInstallées()) return;
  Tarvel::CréerÉditionFenêtrée(Tarvel::Options())->Échouer(Raison);
}

/// True when nothing is bad.
bool DireConstats(const Tarvel::Options& Choisies) {
  const auto Constats = Tarvel::Diagnostiquer(Choisies);
  std::fputs(Tarvel::TexteConstats(Constats).c_str(), stdout);
  return std::ranges::none_of(Constats,
                              [](const Tarvel::Constat& Un) { return Un.Verdict == Tarvel::Jugement::Mauvais; });
}

Tarvel::Options LireOptions(const std::vector<std::string>& Arguments) {
  try {
    return Tarvel::LireOptions(Arguments);
  } catch (const std::exception& Erreur) {
    MontrerÉchec(Arguments, Erreur.what());
    throw;
  }
}

/// A copy or its way back, told as it goes on.
template <class Faire>
void Copier(const char* Nom, Faire&& Mener) {
  Tarvel::LongTravail Travail(Nom);
  std::puts(Mener([&](std::size_t Faits, std::size_t Total) { Travail.Avancer(Faits, Total); }).c_str());
}

void Exporter(const Tarvel::Options& Choisies) {
  const auto Connexion = Tarvel::OuvrirCoopérative(Choisies.Base);
  const Ombrey::SansHâte Patiente(*Connexion);
  Ombrey::BaseLue Base(Connexion);
  const auto Chargements = Tarvel::LireChargements(Base, Choisies.Jours);
  const Tarvel::LongTravail Travail("export");  // too short to be given up: the file is whole, or there is none
  std::puts(Tarvel::ExporterCsv(Chargements, Choisies.Copie).c_str());
}

/// The slip of a day, or a load's ticket.
std::string LirePapier(const Tarvel::Options& Choisies) {
  Ombrey::BaseLue Base(Tarvel::OuvrirCoopérative(Choisies.Base));
  const int Jour = Choisies.Jours.Du.value_or(static_cast<int>(Ombrey::NuméroDeJour(Ombrey::HeureLocale())));
  return Tarvel::TextePapier(Base, Jour, {Choisies.Numéro, Choisies.CodeSite, Choisies.Heure});
}

void ÉcrirePapier(const Tarvel::Options& Choisies) {
  Tarvel::ExigerNouveau(Choisies.Copie);
  const std::string Html = LirePapier(Choisies);
  Tarvel::LongTravail Travail("écriture");
  Tarvel::ÉcrirePapier(Html, !Choisies.Numéro.empty(), Choisies.Copie);
  try {
    Travail.Avancer(1, 1);
  } catch (const Ombrey::ErreurExécution&) {
    std::filesystem::remove(Choisies.Copie);
    throw;
  }
  std::puts(("Le document est dans " + Ombrey::TexteChemin(Choisies.Copie) + ".").c_str());
}

void Recopier(const Tarvel::Options& Choisies) {
  const auto Base = Ombrey::Chemin(Choisies.Base);
  if (Choisies.QueFaire == Tarvel::Tâche::Sauvegarder)
    Copier("sauvegarde", [&](const auto& Dire) { return Tarvel::SauvegarderBase(Base, Choisies.Copie, Dire); });
  else if (Choisies.QueFaire == Tarvel::Tâche::Restaurer)
    Copier("restauration", [&](const auto& Dire) { return Tarvel::RestaurerBase(Base, Choisies.Copie, Dire); });
  else
    Copier("copie", [&](const auto& Dire) { return Tarvel::CopierBase(Choisies.Base, Choisies.Vers, Dire); });
}

int Accomplir(const Tarvel::Options& Choisies) {
  switch (Choisies.QueFaire) {
    case Tarvel::Tâche::Aide:
      std::fputs(Tarvel::TexteAide().c_str(), stdout);
      break;
    case Tarvel::Tâche::Version:
      std::puts(Tarvel::TexteVersion().c_str());
      break;
    case Tarvel::Tâche::CréerBase:
      Tarvel::CréerBase(Choisies.Base, Choisies.Exemple);
      break;
    case Tarvel::Tâche::Sauvegarder:
    case Tarvel::Tâche::Restaurer:
    case Tarvel::Tâche::CopierBase:
      Recopier(Choisies);
      break;
    case Tarvel::Tâche::Exporter:
      Exporter(Choisies);
      break;
    case Tarvel::Tâche::RefaireCumuls:
      std::puts(Tarvel::RefaireCumuls(*Tarvel::OuvrirCoopérative(Choisies.Base)).c_str());
      break;
    case Tarvel::Tâche::Bordereau:
    case Tarvel::Tâche::Ticket:
      ÉcrirePapier(Choisies);
      break;
    case Tarvel::Tâche::ImprimerBordereau:
    case Tarvel::Tâche::ImprimerTicket:
      std::puts(("Envoyé à l'imprimante " + Tarvel::ImprimerPapier(LirePapier(Choisies)) + ".").c_str());
      break;
    case Tarvel::Tâche::Station:
      Travailler(Choisies);
      break;
    case Tarvel::Tâche::Diagnostic:
      return DireConstats(Choisies) ? Réussite : Échec;
  }
  return Réussite;
}

}  // namespace

int main(int Nombre, char** Textes) {
  OccuperFluxStandard();
  std::signal(SIGPIPE, SIG_IGN);
  try {
    return Accomplir(LireOptions(std::vector<std::string>(Textes + 1, Textes + Nombre)));
  } catch (const Tarvel::ErreurOptions& Erreur) {
    SePlaindre(Erreur.what() + std::string("\nL'aide : tarvel --help"));
    return MauvaisesOptions;
  } catch (const std::exception& Erreur) {
    SePlaindre(Erreur.what());
    return Échec;
  }
}
