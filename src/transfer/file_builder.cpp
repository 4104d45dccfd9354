// From one query to one file of fixed-width records for the terminal.
#include "transfer/file_builder.h"

#include <memory>

#include "base/regional_forms.h"
#include "base/text_helpers.h"

namespace Ombrey {
namespace {

class Construction {
 public:
  Construction(const DispositionFichier& Disposition, ÉtatPlugIn& État, const Titreur& Titrer, Octets& Fichier)
      : Disposition_(Disposition),
        État_(État),
        Titrer_(Titrer),
        Fichier_(Fichier),
        Formes_(État.Formes()),
        Base_(Exiger(Exiger(État.BaseDeD)->BaseDAO())) {}

  void Construire() {
    const std::int32_t Attendus = OuvrirEtCompter();
    if (Attendus > EnregistrementsAuPlus) {
      throw ErreurExécution("Plus de " + std::to_string(EnregistrementsAuPlus) + " enregistrements");
    }
    Fichier_ = Octets(Disposition_.Longueur * static_cast<std::size_t>(Attendus), ' ');
    std::int32_t Compteur = 0;
    for (; !Rangées_->Eof(); Rangées_->MoveNext()) {
      if (Compteur == Attendus) throw ErreurExécution(DonnéesChangées);
      EcrireEnregistrement(Disposition_.Longueur * static_cast<std::size_t>(Compteur));
      ++Compteur;
    }
    if (Compteur != Attendus) throw ErreurExécution(DonnéesChangées);
    Rangées_.reset();
    Titrer_(std::to_string(Compteur) + Disposition_.TitreFin);
  }

 private:
  /// Another station can write between the count and the reading.
  static constexpr const char* DonnéesChangées = "Les données ont changé pendant la lecture";

  /// Opens the rows and leaves them at the first one that goes into the file.
  std::int32_t OuvrirEtCompter() {
    if (Disposition_.SqlComptage) {
      const auto Comptage = Base_->OpenRecordset(Disposition_.SqlComptage);
      const std::int32_t Nombre = EnEntier32(TexteValeur(Comptage->Fields(0), Formes_), Formes_);
      Rangées_ = Base_->OpenRecordset(Disposition_.Sql, TypeRecordset::VersLAvant);
      return Nombre;
    }
    Rangées_ = Base_->OpenRecordset(Disposition_.Sql, TypeRecordset::Instantané);
    if (Rangées_->Eof()) return 0;
    Rangées_->MoveLast();
    std::int32_t Nombre = Rangées_->RecordCount();
    Rangées_->MoveFirst();
    // No group is no parent: Null and the empty text are sorted ahead of every code.
    for (; Disposition_.Créneaux && !Rangées_->Eof() && SansCode(); Rangées_->MoveNext()) --Nombre;
    return Nombre;
  }

  [[nodiscard]] bool SansCode() const { return TexteOuVide(Rangées_->Fields(0), Formes_).empty(); }

  void EcrireEnregistrement(std::size_t Début) {
    const std::string Titre = Disposition_.Titre + TexteOuVide(Rangées_->Fields(0), Formes_);
    Titrer_(Titre);
    try {
      EcrireChamps(*Rangées_, Disposition_.Champs, Début);
      if (Disposition_.Créneaux) RemplirCréneaux(*Disposition_.Créneaux, Début);
    } catch (const ErreurExécution& Erreur) {
      throw ErreurExécution(std::string(Erreur.what()) + " (" + Titre + ")");
    }
  }

  /// A number too wide for its field keeps its leftmost digits.
  void EcrireChamps(const IRecordset& Source, std::span<const ChampEnregistrement> Champs, std::size_t Début) {
    for (const auto& Champ : Champs) {
      const Octets Encodé = Champ.Encoder(Source.Fields(Champ.Colonne), Champ.Largeur, Formes_);
      Fichier_.Recouvrir(Début + Champ.Décalage, Encodé.Extrait(0, Champ.Largeur));
    }
  }

  void RemplirCréneaux(const Emplacements& Créneaux, std::size_t Début) {
    const std::string Clé = TexteValeur(Rangées_->Fields(0), Formes_);
    const auto Quotas =
        Base_->OpenRecordset(Créneaux.SqlAvant + TexteSql(Clé) + Créneaux.SqlAprès, TypeRecordset::VersLAvant);
    std::size_t Rang = 0;
    for (; !Quotas->Eof(); Quotas->MoveNext(), ++Rang) {
      if (Rang < Créneaux.Nombre) {
        EcrireChamps(*Quotas, Créneaux.Champs, Début + Créneaux.Décalage + Rang * Créneaux.Largeur);
      }
    }
    if (Rang > Créneaux.Nombre) {
      État_.Canal.AjouterMessage(
          Disposition_.Titre + Clé + " : quotas non transmis : " + std::to_string(Rang - Créneaux.Nombre) +
              " (le RG80 n'en tient que " + std::to_string(Créneaux.Nombre) + " par groupement).",
          false);
    }
  }

  const DispositionFichier& Disposition_;
  ÉtatPlugIn& État_;
  const Titreur& Titrer_;
  Octets& Fichier_;
  Régional Formes_;
  std::shared_ptr<IDatabase> Base_;
  std::unique_ptr<IRecordset> Rangées_;
};

}  // namespace

void ConstruireFichier(const DispositionFichier& Disposition, ÉtatPlugIn& État, const Titreur& Titrer,
                       std::vector<Octets>& Lignes) {
  Lignes.assign(1, Octets());
  Construction(Disposition, État, Titrer, Lignes.front()).Construire();
}

}  // namespace Ombrey
