// What an administrator asks first: versions, account, base, disk, clock and folder; the line has its own file.
#include "host/diagnostic.h"

#include <pwd.h>
#include <sys/stat.h>
#include <sys/timex.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <ctime>
#include <set>
#include <system_error>

#include "base/failures.h"
#include "base/files.h"
#include "base/regional_forms.h"
#include "contracts/database.h"
#include "contracts/system.h"
#include "host/overview.h"
#include "host/plugin_loader.h"
#include "host/schema.h"
#include "host/schema_upgrade.h"
#include "host/station_register.h"
#include "host/windows_module.h"
#include "platform/database/connection.h"
#include "platform/system/folder_lock.h"
#include "platform/system/machine_system.h"

namespace Tarvel {
namespace {

namespace fs = std::filesystem;
using Ombrey::Chemin;
using Ombrey::TexteChemin;

constexpr std::uintmax_t Mio = 1024U * 1024U;
/// A season's loads take a few megabytes; a whole copy of the base must fit beside it.
constexpr std::uintmax_t DisqueTropPlein = 50 * Mio;
constexpr std::uintmax_t DisqueÀVoir = 500 * Mio;
/// No clock of a machine that runs this program shows an earlier year.
constexpr int AnnéePlausible = 2026;
/// A terminal's clock may be ahead of ours, but not by a day; by hours, it lives in another zone.
constexpr double AvancePermise = 1;
/// Seconds between this clock and a server's.
constexpr double ÉcartPermis = 60;

std::string NomCompte(uid_t Numéro) {
  const passwd* const Compte = getpwuid(Numéro);
  return Compte ? Compte->pw_name : std::to_string(Numéro);
}

/// The superuser where this account can't tell.
uid_t PropriétaireDe(const fs::path& Quoi) {
  struct stat État {};
  return stat(Quoi.c_str(), &État) == 0 ? État.st_uid : 0;
}

/// For a file or folder that this account can't write, though it is its own or the superuser's.
std::string DonnerÀCeCompte(const fs::path& Quoi) {
  const std::string Nom = PourCommande(TexteChemin(Quoi));
  if (PropriétaireDe(Quoi) == geteuid()) return "chmod u+rwX " + Nom;
  std::error_code Code;  // a folder that no station has worked in may hold anything
  return (fs::exists(Quoi / Ombrey::DossierImport, Code) ? "sudo chown -R " : "sudo chown ") + NomCompte(geteuid()) +
         " " + Nom;
}

/// The file or folder, or the nearest folder above it that this account sees.
fs::path LePlusProche(fs::path Quoi) {
  std::error_code Code;
  while (!fs::exists(Quoi, Code) && Quoi.has_relative_path()) Quoi = Quoi.parent_path();
  return Quoi;
}

/// A station's own account keeps what it works with: given to whoever looks on, it would take no load any more.
bool EstÀUnAutre(const fs::path& Quoi, const Options& Choisies) {
  const uid_t Lui = PropriétaireDe(Quoi);
  return Lui != geteuid() && (Lui != 0 || Ombrey::OccupantDossier(Choisies.Dossier));
}

Constat ExaminerVersions(const Options& Choisies) {
  utsname Système{};
  uname(&Système);
  const fs::path Greffon = Choisies.Greffon.empty() ? GreffonHabituel() : Choisies.Greffon;
  const std::string Texte = TexteVersion() + ", " + (FenêtresInstallées() ? "avec" : "sans") + " fenêtres, " +
                            Système.sysname + " " + Système.release + ", greffon " + TexteChemin(Greffon);
  std::error_code Code;
  if (fs::exists(Greffon, Code)) return {Jugement::Bon, "versions", Texte};
  return {Jugement::Mauvais, "versions", Texte + " : ce fichier manque.", "sudo apt install --reinstall ombrey"};
}

/// The rights of the superuser say nothing about those of the account that the station runs under.
void ExaminerCompte(const Options& Choisies, std::vector<Constat>& Constats) {
  const fs::path Dossier = LePlusProche(Choisies.Dossier);
  const uid_t Lui = PropriétaireDe(Dossier);
  if (geteuid() != 0 || Lui == 0) return;
  Constats.push_back({Jugement::ÀVoir, "compte",
                      "le dossier est au compte « " + NomCompte(Lui) + " », et root a tous les droits.",
                      ParSonCompte(Dossier, Choisies)});
}

/// A tool that works around the engine's triggers leaves figures that nobody sees to be wrong.
Constat ExaminerCumuls(Ombrey::IConnexion& Connexion) {
  const Ombrey::SansHâte Patiente(Connexion);
  const Ombrey::ValeurChamp Faux = Connexion.SommesFausses(CumulsDeSaison());
  if (Faux == Ombrey::ValeurChamp{std::int64_t{0}})
    return {Jugement::Bon, "cumuls", "ceux de la saison sont la somme des chargements."};
  return {Jugement::Mauvais, "cumuls",
          "ceux de la saison qui ne sont pas la somme des chargements : " + Ombrey::TexteOuVide(Faux, {}) + ".",
          "tarvel --base " + PourCommande(Connexion.Nom()) + " --refaire-cumuls"};
}

void ExaminerSchéma(Ombrey::IConnexion& Connexion, std::vector<Constat>& Constats) {
  const int Numéro = NuméroSchémaDe(Connexion);
  const std::string Texte =
      "la base a le n° " + std::to_string(Numéro) + ", ce programme le n° " + std::to_string(NuméroSchéma) + ".";
  if (Numéro == NuméroSchéma)
    Constats.push_back({Jugement::Bon, "schéma", Texte});
  else if (Numéro < NuméroSchéma)
    Constats.push_back({Jugement::ÀVoir, "schéma", Texte,
                        "rien : la station la mettra à jour à son démarrage et en gardera une copie à côté"});
  else
    Constats.push_back({Jugement::Mauvais, "schéma", Texte, "installez la version récente de tarvel sur ce poste"});
  if (Numéro == NuméroSchéma) Constats.push_back(ExaminerCumuls(Connexion));
}

/// The newest load's date, counted in days from now.
double Avance(Ombrey::IConnexion& Connexion, const Ombrey::DateHeure& Maintenant) {
  const auto Dernière = Ombrey::Comme<double>(Connexion.Lire("SELECT MAX(DateCh) FROM Chargement"));
  return Dernière ? *Dernière - Ombrey::NuméroDeJour(Maintenant) : 0;
}

/// True when the program can set the clock by others' and has.
bool EstRégléeParRéseau() {
  timex État{};
  return adjtimex(&État) != TIME_ERROR && (État.status & STA_UNSYNC) == 0;
}

/// The server's clock stamps what other stations see as new.
void ExaminerHorlogeServeur(Ombrey::IConnexion& Connexion, std::vector<Constat>& Constats) {
  if (Connexion.SonFichier()) return;
  const auto Secondes = Ombrey::Comme<double>(Connexion.Lire("SELECT date_part('epoch', now())"));
  if (!Secondes) return;
  const double Écart = static_cast<double>(std::time(nullptr)) - *Secondes;
  const std::string Texte =
      "ce poste et le serveur diffèrent de " + std::to_string(std::lround(std::abs(Écart))) + " s";
  if (std::abs(Écart) <= ÉcartPermis)
    Constats.push_back({Jugement::Bon, "horloge du serveur", Texte + "."});
  else
    Constats.push_back({Jugement::ÀVoir, "horloge du serveur",
                        Texte + (Écart > 0 ? ", le serveur retarde." : ", le serveur avance."),
                        "sudo timedatectl set-ntp true, ici et sur le serveur"});
}

Constat ExaminerHorloge(double AvanceDesChargements) {
  const Ombrey::DateHeure Maintenant = Ombrey::HeureLocale();
  const std::string Texte = "il est " + Ombrey::TexteDateHeure(Maintenant) + " sur cette machine";
  const std::string Remède = "sudo timedatectl set-ntp true, ou sudo date -s 'AAAA-MM-JJ HH:MM'";
  if (Maintenant.Année < AnnéePlausible) return {Jugement::Mauvais, "horloge", Texte + ", ce qui est passé.", Remède};
  if (AvanceDesChargements > AvancePermise)
    return {Jugement::Mauvais, "horloge", Texte + ", et la base a un chargement d'un jour à venir.",
            "comparez avec l'heure du terminal ; " + Remède};
  if (AvanceDesChargements > AvanceDHorloge)
    return {Jugement::ÀVoir, "horloge", Texte + ", et la base a un chargement d'une heure à venir.",
            "comparez l'heure et le fuseau avec ceux du terminal : timedatectl"};
  if (!EstRégléeParRéseau())
    return {Jugement::ÀVoir, "horloge", Texte + " ; aucun serveur de temps ne la règle.", Remède};
  return {Jugement::Bon, "horloge", Texte + "."};
}

/// What the station would be refused, or go without.
void ExaminerDroits(Ombrey::IConnexion& Connexion, std::vector<Constat>& Constats) {
  if (Connexion.SonFichier() || NuméroSchémaDe(Connexion) != NuméroSchéma) return;
  constexpr const char* Remède = "le propriétaire des tables les donne par GRANT : docs/server.md, « Rights »";
  Ombrey::ErreurEnAttente Refus;
  const bool LesA = Garder(Refus, [&] { VérifierDroits(Connexion); });
  const std::string Sans = SansSigneDeVie(Connexion);
  if (!LesA)
    Constats.push_back({Jugement::Mauvais, "droits", Refus.Texte(), Remède});
  else if (!Sans.empty())
    Constats.push_back({Jugement::ÀVoir, "droits", Sans, Remède});
  else
    Constats.push_back({Jugement::Bon, "droits", "ce compte a tous ceux d'une station.", ""});
}

std::string RemèdeLectureSeule(const Options& Choisies) {
  const auto Fichier = FichierDeBase(Choisies.Base);
  return Fichier ? DonnerÀCeCompte(*Fichier)
                 : "donnez l'adresse du serveur qui écrit, ou target_session_attrs=read-write";
}

/// What mends a base that can't be opened.
std::string RemèdeOuverture(const Options& Choisies, const LieuxMachine& Lieux) {
  const std::string Nom = PourCommande(Choisies.Base);
  const std::string Créer = "tarvel --creer-base " + Nom;
  const auto Fichier = FichierDeBase(Choisies.Base);
  if (!Fichier)
    return "voyez si le serveur tourne, et si l'adresse, le compte, ~/.pgpass et le certificat sont bons (psql " + Nom +
           " en dit plus) ; " + Créer + " met les tables dans une base vide";
  const std::string Remettre = "tarvel --base " + Nom + " --restaurer SAUVEGARDE la remet";
  std::error_code Code;
  if (!fs::exists(*Fichier, Code)) return Créer + " en crée une ; " + Remettre;
  if (!Ombrey::DisqueRéseau(*Fichier, Lieux.Montages).empty())
    return "arrêtez les stations, puis tarvel --base " + Nom +
           " --sauvegarder FICHIER_SUR_CE_POSTE, et mettez Base= à "
           "ce fichier";
  return Remettre;
}

double ExaminerBase(const Options& Choisies, const LieuxMachine& Lieux, std::vector<Constat>& Constats) {
  constexpr const char* Sujet = "base";
  if (Choisies.Base.empty()) {
    Constats.push_back({Jugement::Mauvais, Sujet, "aucune n'est nommée.",
                        "mettez Base= dans la section [Tarvel] des réglages, ou donnez --base"});
    return 0;
  }
  const auto Fichier = FichierDeBase(Choisies.Base);
  const fs::path Présent = Fichier ? LePlusProche(*Fichier) : "";
  const bool EstFermé =  // SQLite writes beside the file as well
      access(Présent.c_str(), W_OK) != 0 || access(Présent.parent_path().c_str(), W_OK) != 0;
  const bool DUnAutre = Fichier && EstFermé && EstÀUnAutre(Présent, Choisies);
  try {
    const auto Connexion = OuvrirCoopérative(Choisies.Base, {}, Lieux.Montages);
    const auto Nombre = Ombrey::TexteOuVide(Connexion->Lire("SELECT COUNT(*) FROM Chargement"), {});
    if (Connexion->EstEnLectureSeule() && DUnAutre)
      Constats.push_back({Jugement::ÀVoir, Sujet, Choisies.Base + " ne peut être que lue par ce compte.",
                          ParSonCompte(Présent, Choisies)});
    else if (Connexion->EstEnLectureSeule())
      Constats.push_back({Jugement::Mauvais, Sujet,
                          Choisies.Base + " ne peut être que lue : rien n'y serait enregistré.",
                          RemèdeLectureSeule(Choisies)});
    else
      Constats.push_back({Jugement::Bon, Sujet, Choisies.Base + " s'ouvre, chargements : " + Nombre});
    ExaminerSchéma(*Connexion, Constats);
    ExaminerDroits(*Connexion, Constats);
    ExaminerHorlogeServeur(*Connexion, Constats);
    return Avance(*Connexion, Ombrey::HeureLocale());
  } catch (const Ombrey::ErreurExécution& Erreur) {
    Constats.push_back({DUnAutre ? Jugement::ÀVoir : Jugement::Mauvais, Sujet, Erreur.what(),
                        DUnAutre ? ParSonCompte(Présent, Choisies) : RemèdeOuverture(Choisies, Lieux)});
    return 0;
  }
}

void ExaminerDisque(const Options& Choisies, std::vector<Constat>& Constats) {
  std::set<fs::path> Dossiers = {LePlusProche(Choisies.Dossier)};
  if (const auto Fichier = FichierDeBase(Choisies.Base)) Dossiers.insert(LePlusProche(Fichier->parent_path()));
  for (const fs::path& Dossier : Dossiers) {
    std::error_code Code;
    const std::uintmax_t Libre = fs::space(Dossier, Code).available;
    if (Code) continue;
    const Jugement Verdict = Libre < DisqueTropPlein ? Jugement::Mauvais
                             : Libre < DisqueÀVoir   ? Jugement::ÀVoir
                                                     : Jugement::Bon;
    Constats.push_back({Verdict, "disque",
                        std::to_string(Libre / Mio) + " Mio de libres pour " + TexteChemin(Dossier) + ".",
                        Verdict == Jugement::Bon ? "" : "faites de la place : df -h " + PourCommande(Dossier)});
  }
}

Constat ExaminerDossier(const Options& Choisies) {
  constexpr const char* Sujet = "dossier";
  const std::string Nom = TexteChemin(Choisies.Dossier);
  const fs::path Présent = LePlusProche(Choisies.Dossier);
  std::error_code Code;
  if (!fs::is_directory(Présent, Code))
    return {Jugement::Mauvais, Sujet, TexteChemin(Présent) + " n'est pas un dossier.",
            "choisissez-en un par --dossier"};
  const auto Station = Ombrey::OccupantDossier(Choisies.Dossier);
  const std::string AuTravail = Station ? "une station travaille dans " + Nom + " (" + *Station + ")" : "";
  if (access(Présent.c_str(), W_OK | X_OK) != 0) {
    const std::string Refus = "ce compte ne peut pas écrire dans " + TexteChemin(Présent);
    if (EstÀUnAutre(Présent, Choisies))
      return {Jugement::ÀVoir, Sujet, Refus + (Station ? " ; " + AuTravail : "") + ".",
              ParSonCompte(Présent, Choisies)};
    return {Jugement::Mauvais, Sujet, Refus + ".",
            Présent == Choisies.Dossier ? DonnerÀCeCompte(Présent)
            : access(Présent.c_str(), X_OK) != 0
                ? "choisissez-en un autre par --dossier"
                : "sudo install -d -o " + NomCompte(geteuid()) + " -m 0750 " + PourCommande(Nom)};
  }
  if (Station) return {Jugement::Bon, Sujet, AuTravail + "."};
  return {Jugement::Bon, Sujet, Nom + (Présent == Choisies.Dossier ? " est libre." : " sera créé au démarrage.")};
}

}  // namespace

std::string ParSonCompte(const fs::path& Quoi, const Options& Choisies) {
  return "sudo runuser -u " + NomCompte(PropriétaireDe(Quoi)) + " -- tarvel --diagnostic --ini " +
         PourCommande(TexteChemin(Choisies.Ini));
}

std::string PourCommande(const std::string& Texte) {
  constexpr const char* Simples = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789/._-:@";
  if (Texte.find_first_not_of(Simples) == std::string::npos) return Texte;
  std::string Cité = "'";
  for (const char C : Texte) Cité += C == '\'' ? "'\\''" : std::string(1, C);
  return Cité + "'";
}

std::string TexteConstat(const Constat& Un) {
  constexpr const char* Verdicts[] = {"bon     ", "à voir  ", "mauvais "};
  std::string Texte = Verdicts[static_cast<int>(Un.Verdict)] + Un.Sujet + " : " + Un.Texte;
  if (!Un.ÀFaire.empty()) Texte += " À faire : " + Un.ÀFaire;
  std::ranges::replace(Texte, '\n', ' ');
  return Texte;
}

std::string TexteConstats(const std::vector<Constat>& Constats) {
  std::string Texte;
  for (const Constat& Un : Constats) Texte += TexteConstat(Un) + "\n";
  return Texte;
}

std::vector<Constat> Diagnostiquer(const Options& Choisies, const LieuxMachine& Lieux) {
  std::vector<Constat> Constats = {ExaminerVersions(Choisies)};
  ExaminerCompte(Choisies, Constats);
  ExaminerLigne(Choisies, Lieux, Constats);
  const double AvanceDesChargements = ExaminerBase(Choisies, Lieux, Constats);
  ExaminerDisque(Choisies, Constats);
  Constats.push_back(ExaminerHorloge(AvanceDesChargements));
  if (!Choisies.Dossier.empty()) Constats.push_back(ExaminerDossier(Choisies));
  return Constats;
}

}  // namespace Tarvel
