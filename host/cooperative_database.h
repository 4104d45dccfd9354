// The host's database object.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "contracts/database.h"
#include "contracts/host.h"
#include "contracts/system.h"
#include "host/figures.h"
#include "host/import_engine.h"
#include "host/load_table.h"
#include "host/watch.h"
#include "platform/database/connection.h"
#include "platform/database/recordsets.h"

namespace Tarvel {

/// Why a creation was refused; TexteErreurBase words it.
enum class ErreurBase : std::int16_t {
  Aucune = 0,
  CodeInvalide = -1,
  CoopérateurInconnu = -3,
  PartInvalide = -4,
  CodesÉpuisés = -5,
};

class KVSynchroTarvel : public Ombrey::IKVSynchro {
 public:
  /// CodeSite: the station's own code; empty: the setting "CodeSite" of the table Paramètre as it stands now, and "1"
  /// without one. LAvis, when it is there, is told once of a setting that was changed since.
  KVSynchroTarvel(std::shared_ptr<Ombrey::IConnexion> Connexion, const std::string& CodeSite, Avis LAvis = {});
  /// The same from the start to the end: no other running station may have it.
  [[nodiscard]] std::string CodeSiteCourant() override { return CodeSite_; }
  void Connecter(Ombrey::IÉcouteurKVSynchro* Écouteur) override { Écouteur_ = Écouteur; }
  void Déconnecter(const Ombrey::IÉcouteurKVSynchro* Écouteur) override {
    if (Écouteur_ == Écouteur) Écouteur_ = nullptr;
  }

  /// Loads that are there now aren't news any more.
  void Mémoriser() { DernierConnu_ = DernierChargement(); }
  /// Tells the listener of the other sites whose loads have come into the database since the last call.
  void AnnoncerNouveautés();

 private:
  /// The highest number of a load, or the one known already when there are none.
  [[nodiscard]] std::int64_t DernierChargement();
  [[nodiscard]] std::string CodeSiteRéglé() const;
  void DireCodeChangé();

  std::shared_ptr<Ombrey::IConnexion> Connexion_;
  Avis Avis_;
  const std::string CodeSite_;
  std::optional<std::string> CodeVu_;  ///< the setting as it was last seen; none for a code of the station's own
  Ombrey::IÉcouteurKVSynchro* Écouteur_ = nullptr;
  std::int64_t DernierConnu_ = 0;
};

class EtatBdDTarvel : public Ombrey::IEtatBdD {
 public:
  EtatBdDTarvel(std::shared_ptr<Ombrey::IConnexion> Connexion, Ombrey::ISystème& Système,
                std::shared_ptr<Ombrey::IKVSynchro> KVSynchro, Avis LAvis = {});
  [[nodiscard]] std::shared_ptr<Ombrey::IKVSynchro> KVSynchro() override { return KVSynchro_; }
  [[nodiscard]] std::string DernièreErreur() override { return DernièreErreur_; }
  /// A value that can't be used gives true with an error text: the file was dealt with, and nothing of it is in the
  /// database. All other failures give false, with their text. Drapeau comes back as the result.
  bool TableImporter(const std::string& Titre, const std::string& Fichier, bool& Drapeau) override;
  /// Dossier is the folder "import" of the working folder, created for its owner alone, and Nom this process's. The
  /// result is the path of both.
  std::string ObtenirFichierImport(std::string& Dossier, std::string& Nom) override;
  void Connecter(Ombrey::IÉcouteurEtatBdD* Écouteur) override { Écouteur_ = Écouteur; }
  void Déconnecter(const Ombrey::IÉcouteurEtatBdD* Écouteur) override {
    if (Écouteur_ == Écouteur) Écouteur_ = nullptr;
  }
  /// Told of each import that fails, ahead of the answer.
  void SurRefus(std::function<void(const ImportRefusé&)> Dire) { DireRefus_ = std::move(Dire); }

 private:
  void Annoncer(const ChargementImporté& Chargement);

  std::shared_ptr<Ombrey::IConnexion> Connexion_;
  Ombrey::ISystème& Système_;
  std::shared_ptr<Ombrey::IKVSynchro> KVSynchro_;
  Avis Avis_;
  MoteurImport Moteur_;
  Ombrey::IÉcouteurEtatBdD* Écouteur_ = nullptr;
  std::function<void(const ImportRefusé&)> DireRefus_;
  std::string DernièreErreur_;
};

/// Works on an open connection, for the site of the code (empty: the one that the database names); Système must outlive
/// it. LAvis, when it is there, is told what the operator should know: loads that go to the archive, numbers that can't
/// be read.
class BaseDeDTarvel : public Ombrey::IBaseDeD {
 public:
  BaseDeDTarvel(std::shared_ptr<Ombrey::IConnexion> Connexion, Ombrey::ISystème& Système,
                const std::string& CodeSite = {}, Avis LAvis = {});

  [[nodiscard]] std::shared_ptr<Ombrey::IEtatBdD> EtatBdD() override { return EtatBdD_; }
  void SurRefus(std::function<void(const ImportRefusé&)> Dire) { EtatBdD_->SurRefus(std::move(Dire)); }
  [[nodiscard]] std::shared_ptr<Ombrey::IKVSynchro> KVSynchro() override { return KVSynchro_; }
  [[nodiscard]] std::shared_ptr<Ombrey::IDatabase> BaseDAO() override { return BaseDAO_; }
  /// From here on, loads of other sites are news. Drapeau becomes true.
  void ActiverBase(bool& Drapeau) override;
  /// Announces loads of other sites that came in meanwhile.
  void Actualiser() override;

  /// Varieties of the appellation in the order of their rank, only the first when PremierSeul is set. Filtre, when it
  /// is there, is how a name must begin.
  [[nodiscard]] std::string ListeCépages(std::optional<std::string> Filtre, std::string& Sélection,
                                         bool PremierSeul) override;

  /// These two raise ErreurExécution, and create nothing, when the database can't be written.
  /// A member or a pair that is there by now is a success, and stays as it is; the pair's holding comes back.
  std::int16_t AjouterCoopérateur(Ombrey::NouveauCoopérateur& Nouveau) override;
  /// The new code is the highest so far and one more, or else the lowest that is free. Both members must exist, and are
  /// written as their own rows write them, so that the tables join; so is the group. A group from 0 to 999 that doesn't
  /// exist is written as a number, so that the pair's loads get their figures until the group has a row; any other is
  /// left out. Part is a percentage.
  std::int16_t AjouterMétayage(const std::string& Propriétaire, const std::string& Récoltant, std::string& Code,
                               const std::string& Part, const std::string& Groupe, const std::string& Badge) override;
  [[nodiscard]] std::string TexteErreurBase(std::int16_t Erreur) override;

  [[nodiscard]] std::int32_t CalculerRestantExploit(std::string& IdMétayage, std::string& Cépage,
                                                    std::string& Sélection, std::string& Qualité,
                                                    std::optional<double> Du, std::optional<double> Au) override;
  [[nodiscard]] std::int32_t CalculerCumulGroupe(std::string Groupe, std::string Métayage, std::string Cépage,
                                                 std::string Sélection) override;
  [[nodiscard]] std::int32_t CalculerRestantGroupe(std::string& Groupe, std::string& Cépage, std::string& Sélection,
                                                   std::string& Qualité, std::optional<double> Jour,
                                                   std::optional<double> Au) override;

 private:
  template <class Création>
  std::int16_t Créer(Création&& Faire);
  [[nodiscard]] std::optional<std::int64_t> CodeNumérique(const std::string& Texte) const;
  /// Code as its own row writes it; Null when there is no such row.
  [[nodiscard]] Ombrey::ValeurChamp CodeÉcrit(const char* Sql, const std::string& Code) const;

  [[nodiscard]] std::int64_t CodeLibre() const;
  [[nodiscard]] Ombrey::ValeurChamp GroupeÉcrit(const std::string& Groupe) const;

  std::shared_ptr<Ombrey::IConnexion> Connexion_;
  Ombrey::ISystème& Système_;
  std::shared_ptr<KVSynchroTarvel> KVSynchro_;
  std::shared_ptr<EtatBdDTarvel> EtatBdD_;
  std::shared_ptr<Ombrey::BaseLue> BaseDAO_;
  Figures Figures_;
};

}  // namespace Tarvel
