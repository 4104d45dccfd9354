// A sample cooperative in a folder of its own, with a clock that stands still.
#pragma once

#include "base/ansi_text.h"
#include "base/regional_forms.h"
#include "host/cooperative_database.h"
#include "host/schema.h"
#include "platform/database/sqlite/sqlite_connection.h"
#include "tests/support/each_engine.h"
#include "tests/support/fake_platform.h"

namespace Tarvel {

using Ombrey::Essais::RefusDe;

/// The line of a load that can be imported as it stands.
inline std::string Ligne(const std::string& Numéro = "12", const std::string& Date = "22/09/26 08:30",
                         const std::string& Métayage = "4", const std::string& Sélection = "05",
                         const std::string& Masse = "1234") {
  return "1;" + Numéro + ";" + Date + ";22/09/26 09:15;" + Métayage + ";" + Sélection + ";Syrah;01;12,5;2;" + Masse +
         ";7;0;0;0;0;01;0;\r\n";
}

class Coopérative : public testing::Test, public Ombrey::IÉcouteurEtatBdD {
 public:
  explicit Coopérative(Ombrey::Essais::Moteur Sien = Ombrey::Essais::Moteur::Sqlite) : Moteur_(Sien) {
    Système_.Dossier = Dossier_;
    Refaire();
  }
  void SetUp() override {
    if (Adresse_.empty()) GTEST_SKIP() << "PostgreSQL isn't installed";
  }

  void EtatBdD_EnregistrementImporté(const std::string& Table, Ombrey::IRecordset& RecSet) override {
    Noter("importé", Table, RecSet);
  }
  void EtatBdD_EnregistrementMisAJour(const std::string& Table, Ombrey::IRecordset& RecSet) override {
    Noter("mis à jour", Table, RecSet);
  }

 protected:
  void Fermer() {
    Base_.reset();
    Connexion_.reset();
  }
  /// Another base of the sample, and a station on it.
  void Refaire() {
    Fermer();
    Adresse_ = NouvelleBase(Moteur_, Gardé_);
    if (Adresse_.empty()) return;
    CréerBase(Adresse_, true);
    Rouvrir();
  }
  void Rouvrir() {
    Connexion_ = OuvrirMoteur(Adresse_, [this] { return NuméroDeJour(Système_.Mur); });
    Base_ = std::make_shared<BaseDeDTarvel>(Connexion_, Système_, "",
                                            [this](const std::string& Texte) { Avis_ += Texte + "\n"; });
    Base_->EtatBdD()->Connecter(this);
    Base_->EtatBdD()->Déconnecter(nullptr);  // another's
  }

  /// Imports a file of these contents; an error text, "faux : " ahead of it when the call gave false.
  std::string Importer(const std::string& Contenu) {
    Annonces_.clear();
    std::string Dossier;
    std::string Nom;
    const std::string Fichier = Base_->EtatBdD()->ObtenirFichierImport(Dossier, Nom);
    std::ofstream(Fichier, std::ios::binary) << Ombrey::VersAnsi(Contenu).Bruts();
    bool Drapeau = false;
    const bool Fait = Base_->EtatBdD()->TableImporter(TitreImport, Fichier, Drapeau);
    return (Fait ? "" : "faux : ") + Base_->EtatBdD()->DernièreErreur();
  }

  /// Weight of group 7 for the appellation 05, and what holding 4 may still bring of it.
  std::string CumulsDuRouge() {
    std::string Vide, Rouge = "05", Exploitation = "4";
    return std::to_string(Base_->CalculerCumulGroupe("7", "", "", Rouge)) + " " +
           std::to_string(Base_->CalculerRestantExploit(Exploitation, Vide, Rouge, Vide, {}, {}));
  }

  /// Rows with commas between them, values with blanks.
  std::string Lire(const std::string& Sql) {
    std::string Texte;
    Ombrey::Instruction Requête = Connexion_->Préparer(Sql);
    while (Requête.Avancer()) {
      if (!Texte.empty()) Texte += ',';
      for (std::size_t Rang = 0; Rang < Requête.Colonnes().size(); ++Rang)
        Texte += (Rang == 0 ? "" : " ") + TexteOuVide(Requête.Valeur(Rang), Ombrey::Régional{});
    }
    return Texte;
  }

  Ombrey::Essais::DossierEssai Gardé_;
  const std::filesystem::path Dossier_ = Gardé_.Chemin();
  const std::filesystem::path Fichier_ = Dossier_ / "coopé.db";  ///< the base, where it is one
  const Ombrey::Essais::Moteur Moteur_;
  std::string Adresse_;
  Ombrey::Essais::FauxSystème Système_;
  std::shared_ptr<Ombrey::IConnexion> Connexion_;
  std::shared_ptr<BaseDeDTarvel> Base_;
  std::string Annonces_;
  std::string Avis_;
  bool ÉcouteurEnPanne_ = false;

 private:
  void Noter(const char* Quoi, const std::string& Table, Ombrey::IRecordset& RecSet) {
    const Ombrey::Régional Formes;
    Annonces_ += std::string(Quoi) + " " + Table + " " + TexteValeur(RecSet.FieldsNommé("CodeSite"), Formes) + "/" +
                 TexteValeur(RecSet.FieldsNommé("NoChargement"), Formes) + "\n";
    if (ÉcouteurEnPanne_) throw Ombrey::ErreurExécution("panne de l'écouteur");
  }
};

/// The same on each engine.
class SurChaqueMoteur : public Coopérative, public testing::WithParamInterface<Ombrey::Essais::Moteur> {
 public:
  SurChaqueMoteur() : Coopérative(GetParam()) {}
};

}  // namespace Tarvel
