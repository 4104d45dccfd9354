// The host's database object.
#include "host/cooperative_database.h"

#include <unistd.h>

#include <array>
#include <exception>
#include <filesystem>
#include <iostream>
#include <utility>
#include <vector>

#include "base/ansi_text.h"
#include "base/failures.h"
#include "base/files.h"
#include "base/regional_forms.h"
#include "base/text_helpers.h"
#include "host/base_values.h"
#include "host/import_layout.h"
#include "host/load_columns.h"
#include "platform/system/folder_lock.h"

namespace Tarvel {
namespace {

using Ombrey::EstNull;
using Ombrey::IConnexion;
using Ombrey::ValeurChamp;

constexpr std::int64_t CodeLePlusHaut = 999'999;  // six digits at the terminal
constexpr std::int64_t GroupeLePlusHaut = 999;    // three digits at the terminal
constexpr double PartLaPlusHaute = 999.9999;      // three digits and four decimals at the terminal

constexpr const char* SiteParDéfaut = "1";

constexpr const char* CoopérateurParCode =
    "SELECT IdCoopérateur FROM Coopérateur WHERE CAST(IdCoopérateur AS INTEGER) = ?1";
constexpr const char* ExploitationParPaire =
    "SELECT IdMétayage FROM Métayage WHERE CAST(Propriétaire AS INTEGER) = CAST(?1 AS INTEGER)"
    " AND CAST(Récoltant AS INTEGER) = CAST(?2 AS INTEGER) ORDER BY CAST(IdMétayage AS INTEGER) LIMIT 1";
/// Behind each code that a holding bears, or a load of one that was deleted: the holdings of all loads stand in the
/// table of sums.
constexpr const char* CodeSuivant =
    "SELECT COALESCE(MAX(Code), 0) + 1 FROM (SELECT CAST(IdMétayage AS INTEGER) AS Code FROM Métayage"
    " UNION ALL SELECT CAST(Métayage AS INTEGER) FROM CumulSaison) AS Pris";
/// The lowest code that no holding bears, and no load of one that was deleted.
constexpr const char* PremierCodeLibre =
    "SELECT MIN(Code) + 1 FROM (SELECT 0 AS Code UNION SELECT CAST(IdMétayage AS INTEGER) FROM Métayage"
    " UNION SELECT CAST(Métayage AS INTEGER) FROM CumulSaison) AS Pris WHERE Code >= 0"
    " AND NOT EXISTS (SELECT 1 FROM Métayage WHERE CAST(IdMétayage AS INTEGER) = Code + 1)"
    " AND NOT EXISTS (SELECT 1 FROM Chargement WHERE Métayage = CAST(Code + 1 AS TEXT))"
    " AND NOT EXISTS (SELECT 1 FROM ChargementArchive WHERE Métayage = CAST(Code + 1 AS TEXT))";
constexpr const char* GroupeParCode = "SELECT IdGrp FROM Groupement WHERE CAST(IdGrp AS INTEGER) = ?1";

/// As the import file, whose bytes are those of the line, can write it: else the site wouldn't find its own loads.
std::string CodeÉcrivable(const std::string& Code) {
  return Code.empty() ? SiteParDéfaut : DepuisAnsi(Ombrey::VersAnsi(Code));
}

struct TexteErreur {
  ErreurBase Erreur;
  const char* Texte;
};

constexpr std::array<TexteErreur, 4> Textes = {{
    {ErreurBase::CodeInvalide, "le code n'est pas un nombre de six chiffres au plus"},
    {ErreurBase::CoopérateurInconnu, "le propriétaire ou le récoltant est inconnu"},
    {ErreurBase::PartInvalide, "la part n'est pas un nombre entre 0 et 999,9999"},
    {ErreurBase::CodesÉpuisés, "il n'y a plus de code d'exploitation libre"},
}};

}  // namespace

KVSynchroTarvel::KVSynchroTarvel(std::shared_ptr<IConnexion> Connexion, const std::string& CodeSite, Avis LAvis)
    : Connexion_(std::move(Connexion)),
      Avis_(std::move(LAvis)),
      CodeSite_(CodeSite.empty() ? CodeSiteRéglé() : CodeÉcrivable(CodeSite)) {
  if (CodeSite.empty()) CodeVu_ = CodeSite_;
}

std::string KVSynchroTarvel::CodeSiteRéglé() const {
  return CodeÉcrivable(TexteDe(Connexion_->Lire("SELECT Valeur FROM Paramètre WHERE Nom = 'CodeSite'")));
}

void KVSynchroTarvel::DireCodeChangé() {
  if (!CodeVu_) return;
  const std::string Ancien = std::exchange(CodeVu_, CodeSiteRéglé()).value_or("");
  if (Avis_ && Ancien != *CodeVu_)
    Avis_("Le code du site est réglé sur « " + *CodeVu_ + " » dans la base : cette station travaille sous « " +
          CodeSite_ + " » jusqu'à son prochain démarrage.");
}

std::int64_t KVSynchroTarvel::DernierChargement() {
  const auto Id = Ombrey::Comme<std::int64_t>(Connexion_->Lire("SELECT MAX(IdChargement) FROM Chargement"));
  return Id.value_or(DernierConnu_);
}

void KVSynchroTarvel::AnnoncerNouveautés() {
  DireCodeChangé();
  // What another program commits between the two queries is news of the next time.
  const std::int64_t Dernier = DernierChargement();
  std::vector<std::string> Sites;
  Ombrey::Instruction Requête = Connexion_->Préparer(
      "SELECT DISTINCT CodeSite FROM Chargement WHERE IdChargement > ?1 AND IdChargement <= ?2 AND CodeSite <> ?3");
  Requête.Lier({DernierConnu_, Dernier, CodeSiteCourant()});
  while (Requête.Avancer()) Sites.push_back(TexteDe(Requête.Valeur(0)));
  DernierConnu_ = Dernier;
  for (const std::string& Site : Sites)
    if (Écouteur_) Écouteur_->KVSynchro_DonnéesImportées(Site);
}

EtatBdDTarvel::EtatBdDTarvel(std::shared_ptr<IConnexion> Connexion, Ombrey::ISystème& Système,
                             std::shared_ptr<Ombrey::IKVSynchro> KVSynchro, Avis LAvis)
    : Connexion_(std::move(Connexion)),
      Système_(Système),
      KVSynchro_(std::move(KVSynchro)),
      Avis_(std::move(LAvis)),
      Moteur_(*Connexion_, Système) {}

bool EtatBdDTarvel::TableImporter(const std::string& Titre, const std::string& Fichier, bool& Drapeau) {
  DernièreErreur_.clear();
  Drapeau = false;
  std::vector<ChargementImporté> Importés;
  try {
    Importés = Moteur_.Importer(Titre, Fichier);
    Drapeau = true;
  } catch (const ErreurContenu& Erreur) {
    DernièreErreur_ = Erreur.what();
    Drapeau = true;
  } catch (const std::exception& Erreur) {
    DernièreErreur_ = Erreur.what();
  }
  if (!DernièreErreur_.empty() && DireRefus_)
    DireRefus_({DernièreErreur_, Ombrey::ContenuOuVide(Ombrey::Chemin(Fichier)), Drapeau});
  for (const ChargementImporté& Chargement : Importés) {
    // The load is on the disk: what a listener meets afterwards is no failure of the import.
    Ombrey::ErreurEnAttente DeLÉcouteur;
    if (!Garder(DeLÉcouteur, [&] { Annoncer(Chargement); }))
      std::cerr << "tarvel : annonce d'un chargement importé : " << DeLÉcouteur.Texte() << std::endl;
  }
  return Drapeau;
}

void EtatBdDTarvel::Annoncer(const ChargementImporté& Chargement) {
  if (Avis_ && !Chargement.Archivé.empty()) Avis_(Chargement.Archivé);
  if (!Écouteur_) return;
  Ombrey::Instruction Requête = Connexion_->Préparer("SELECT * FROM Chargement WHERE IdChargement = ?1");
  Requête.Lier({Chargement.IdChargement});
  const auto Ligne = Instantané(std::move(Requête));
  if (Chargement.EstNouveau)
    Écouteur_->EtatBdD_EnregistrementImporté(TableChargements, *Ligne);
  else
    Écouteur_->EtatBdD_EnregistrementMisAJour(TableChargements, *Ligne);
}

std::string EtatBdDTarvel::ObtenirFichierImport(std::string& Dossier, std::string& Nom) {
  const std::filesystem::path Chemin = Système_.CheminApplication() / Ombrey::DossierImport;
  Ombrey::CréerDossier(Chemin);
  Dossier = Ombrey::TexteChemin(Chemin / "");
  Nom = "import " + std::to_string(getpid()) + ".txt";  // one process never reads what another one wrote
  return Dossier + Nom;
}

BaseDeDTarvel::BaseDeDTarvel(std::shared_ptr<IConnexion> Connexion, Ombrey::ISystème& Système,
                             const std::string& CodeSite, Avis LAvis)
    : Connexion_(std::move(Connexion)),
      Système_(Système),
      KVSynchro_(std::make_shared<KVSynchroTarvel>(Connexion_, CodeSite, LAvis)),
      EtatBdD_(std::make_shared<EtatBdDTarvel>(Connexion_, Système, KVSynchro_, LAvis)),
      BaseDAO_(std::make_shared<Ombrey::BaseLue>(Connexion_)),
      Figures_(*Connexion_, Système, std::move(LAvis)) {
  // Also when the port opens later and nobody activates the base.
  KVSynchro_->Mémoriser();
}

void BaseDeDTarvel::ActiverBase(bool& Drapeau) {
  KVSynchro_->Mémoriser();
  Drapeau = true;
}

void BaseDeDTarvel::Actualiser() { KVSynchro_->AnnoncerNouveautés(); }

std::string BaseDeDTarvel::ListeCépages(std::optional<std::string> Filtre, std::string& Sélection, bool PremierSeul) {
  Ombrey::Instruction Requête = Connexion_->Préparer(
      "SELECT Désignation FROM Cépage WHERE Sélection = ?1 AND substr(Désignation, 1, length(?2)) = ?2 ORDER BY Rang");
  Requête.Lier({Sélection, Filtre.value_or("")});
  std::string Liste;
  while (Requête.Avancer()) {
    if (!Liste.empty()) Liste += '\r';
    Liste += TexteDe(Requête.Valeur(0));
    if (PremierSeul) break;
  }
  return Liste;
}

template <class Création>
std::int16_t BaseDeDTarvel::Créer(Création&& Faire) {
  Ombrey::Transaction Tout(*Connexion_);
  const ErreurBase Résultat = Faire();
  if (Résultat == ErreurBase::Aucune) Tout.Valider();
  return static_cast<std::int16_t>(Résultat);
}

std::optional<std::int64_t> BaseDeDTarvel::CodeNumérique(const std::string& Texte) const {
  const Ombrey::Régional Formes = Système_.FormesRégionales();
  if (!EstNumérique(Texte, Formes)) return std::nullopt;
  const double Code = EnRéel(Texte, Formes);
  if (Code < 0 || Code > CodeLePlusHaut) return std::nullopt;
  return Ombrey::ArrondirEntier32(Code);
}

ValeurChamp BaseDeDTarvel::CodeÉcrit(const char* Sql, const std::string& Code) const {
  const auto Nombre = CodeNumérique(Code);
  return Nombre ? Connexion_->Lire(Sql, {*Nombre}) : ValeurChamp{};
}

ValeurChamp BaseDeDTarvel::GroupeÉcrit(const std::string& Groupe) const {
  ValeurChamp Connu = CodeÉcrit(GroupeParCode, Groupe);
  if (!EstNull(Connu)) return Connu;
  const auto Nombre = CodeNumérique(Groupe);
  if (!Nombre || *Nombre > GroupeLePlusHaut) return {};
  return std::to_string(*Nombre);
}

std::int16_t BaseDeDTarvel::AjouterCoopérateur(Ombrey::NouveauCoopérateur& Nouveau) {
  return Créer([&] {
    const auto Code = CodeNumérique(Nouveau.IdCoopérateur);
    if (!Code) return ErreurBase::CodeInvalide;
    // Another station may have met the same member at the same moment.
    if (!EstNull(CodeÉcrit(CoopérateurParCode, Nouveau.IdCoopérateur))) return ErreurBase::Aucune;
    const auto Création = Ombrey::LireDate(Nouveau.Horodatage, Système_.Maintenant().Année);
    Connexion_->Exécuter(
        "INSERT INTO Coopérateur (IdCoopérateur, Nom, Prénom, DateCréation) VALUES (?1, ?2, '', ?3)",
        {std::to_string(*Code), Nouveau.Nom, Création ? ValeurChamp{NuméroDeJour(*Création)} : ValeurChamp{}});
    return ErreurBase::Aucune;
  });
}

std::int64_t BaseDeDTarvel::CodeLibre() const {
  const auto Lire = [this](const char* Sql) { return std::get<std::int64_t>(Connexion_->Lire(Sql)); };
  const std::int64_t Suivant = Lire(CodeSuivant);
  return Suivant <= CodeLePlusHaut ? Suivant : Lire(PremierCodeLibre);
}

std::int16_t BaseDeDTarvel::AjouterMétayage(const std::string& Propriétaire, const std::string& Récoltant,
                                            std::string& Code, const std::string& Part, const std::string& Groupe,
                                            const std::string& Badge) {
  std::string Nouveau;
  const std::int16_t Résultat = Créer([&] {
    const Ombrey::Régional Formes = Système_.FormesRégionales();
    std::string TextePart = Part;
    if (!NormaliserNombre(TextePart, Formes)) return ErreurBase::PartInvalide;
    const double NombrePart = EnRéel(TextePart, Formes);
    if (NombrePart < 0 || NombrePart > PartLaPlusHaute) return ErreurBase::PartInvalide;
    const ValeurChamp CodePropriétaire = CodeÉcrit(CoopérateurParCode, Propriétaire);
    const ValeurChamp CodeRécoltant = CodeÉcrit(CoopérateurParCode, Récoltant);
    if (EstNull(CodePropriétaire) || EstNull(CodeRécoltant)) return ErreurBase::CoopérateurInconnu;
    const auto NombreBadge = CodeNumérique(Badge);

    // Another station may have met the same pair at the same moment.
    Nouveau = TexteDe(Connexion_->Lire(ExploitationParPaire, {CodePropriétaire, CodeRécoltant}));
    if (!Nouveau.empty()) return ErreurBase::Aucune;
    const std::int64_t Libre = CodeLibre();
    if (Libre > CodeLePlusHaut) return ErreurBase::CodesÉpuisés;
    Nouveau = std::to_string(Libre);
    Connexion_->Exécuter(
        "INSERT INTO Métayage (IdMétayage, Propriétaire, Récoltant, Part, CodeBadge, IdGrp)"
        " VALUES (?1, ?2, ?3, ?4, ?5, ?6)",
        {Nouveau, CodePropriétaire, CodeRécoltant, NombrePart, NombreBadge ? ValeurChamp{*NombreBadge} : ValeurChamp{},
         GroupeÉcrit(Groupe)});
    return ErreurBase::Aucune;
  });
  if (Résultat == static_cast<std::int16_t>(ErreurBase::Aucune)) Code = Nouveau;
  return Résultat;
}

std::string BaseDeDTarvel::TexteErreurBase(std::int16_t Erreur) {
  for (const TexteErreur& T : Textes)
    if (static_cast<std::int16_t>(T.Erreur) == Erreur) return T.Texte;
  return Erreur < 0 ? "erreur inconnue n° " + std::to_string(Erreur) : "";
}

std::int32_t BaseDeDTarvel::CalculerRestantExploit(std::string& IdMétayage, std::string& Cépage, std::string& Sélection,
                                                   std::string& Qualité, std::optional<double> Du,
                                                   std::optional<double> Au) {
  return Figures_.RestantExploit(
      {.Métayage = IdMétayage, .Cépage = Cépage, .Sélection = Sélection, .Qualité = Qualité, .Du = Du, .Au = Au});
}

std::int32_t BaseDeDTarvel::CalculerCumulGroupe(std::string Groupe, std::string Métayage, std::string Cépage,
                                                std::string Sélection) {
  return Figures_.CumulGroupe({.Groupe = Groupe, .Métayage = Métayage, .Cépage = Cépage, .Sélection = Sélection});
}

std::int32_t BaseDeDTarvel::CalculerRestantGroupe(std::string& Groupe, std::string& Cépage, std::string& Sélection,
                                                  std::string& Qualité, std::optional<double> Jour,
                                                  std::optional<double> Au) {
  return Figures_.RestantGroupe(
      {.Groupe = Groupe, .Cépage = Cépage, .Sélection = Sélection, .Qualité = Qualité, .Du = Jour, .Au = Au});
}

}  // namespace Tarvel
