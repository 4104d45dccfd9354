// From one query to one file of fixed-width records for the terminal.
#include "transfer/file_builder.h"

#include <cstddef>
#include <memory>
#include <span>
#include <utility>

#include "base/failures.h"
#include "base/regional_forms.h"
#include "base/text_helpers.h"
#include "contracts/octets.h"

namespace Ombrey {
namespace {

class Construction {
 public:
  Construction(const JeuDeDonnées& Jeu, const SourceFichier& Source, const Titreur& Titrer, Octets& Fichier)
      : Jeu_(Jeu), Source_(Source), Titrer_(Titrer), Fichier_(Fichier) {}

  std::vector<std::string> Construire() {
    const std::int32_t Attendus = OuvrirEtCompter();
    if (Attendus > EnregistrementsAuPlus) {
      throw ErreurExécution("Plus de " + std::to_string(EnregistrementsAuPlus) + " enregistrements");
    }
    Fichier_ = Octets(Longueur_ * static_cast<std::size_t>(Attendus), ' ');
    std::int32_t Compteur = 0;
    for (; !Rangées_->Eof(); Rangées_->MoveNext()) {
      if (Jeu_.Créneaux && SansCode()) continue;
      if (Compteur == Attendus) throw ErreurExécution(DonnéesChangées);
      EcrireEnregistrement(Longueur_ * static_cast<std::size_t>(Compteur));
      ++Compteur;
    }
    if (Compteur != Attendus) throw ErreurExécution(DonnéesChangées);
    Rangées_.reset();
    Titrer_(std::to_string(Compteur) + Jeu_.TitreFin);
    return std::move(Omissions_);
  }

 private:
  /// Another station can write between the count and the reading.
  static constexpr const char* DonnéesChangées = "Les données ont changé pendant la lecture";

  /// Opens the rows and says how many go into the file.
  std::int32_t OuvrirEtCompter() {
    if (Jeu_.SqlComptage) {
      const auto Comptage = Source_.Base.OpenRecordset(Jeu_.SqlComptage);
      const std::int32_t Nombre = EnEntier32(TexteValeur(Comptage->Fields(0), Source_.Formes), Source_.Formes);
      Rangées_ = Source_.Base.OpenRecordset(Jeu_.Sql, TypeRecordset::VersLAvant);
      return Nombre;
    }
    Rangées_ = Source_.Base.OpenRecordset(Jeu_.Sql, TypeRecordset::Instantané);
    if (Rangées_->Eof()) return 0;
    Rangées_->MoveLast();
    std::int32_t Nombre = Rangées_->RecordCount();
    if (Jeu_.Créneaux)
      for (Rangées_->MoveFirst(); !Rangées_->Eof(); Rangées_->MoveNext()) Nombre -= SansCode() ? 1 : 0;
    Rangées_->MoveFirst();
    return Nombre;
  }

  /// No group, and group 0, which the terminal writes where there is none.
  [[nodiscard]] bool SansCode() const {
    const std::string Code = TexteOuVide(Rangées_->Fields(0), Source_.Formes);
    return Code.empty() || (EstNumérique(Code, Source_.Formes) && EnRéel(Code, Source_.Formes) == 0);
  }

  void EcrireEnregistrement(std::size_t Début) {
    const std::string Titre = Jeu_.Titre + TexteOuVide(Rangées_->Fields(0), Source_.Formes);
    Titrer_(Titre);
    try {
      EcrireChamps(*Rangées_, Jeu_.Champs, Début);
      if (Jeu_.Créneaux) RemplirCréneaux(*Jeu_.Créneaux, Début);
    } catch (const ErreurExécution& Erreur) {
      throw ErreurExécution(std::string(Erreur.what()) + " (" + Titre + ")");
    }
  }

  /// A number too wide for its field keeps its leftmost digits.
  void EcrireChamps(const IRecordset& Rangée, std::span<const ChampEnregistrement> Champs, std::size_t Début) {
    for (const auto& Champ : Champs) {
      const Octets Encodé = Champ.Encoder(Rangée.Fields(Champ.Colonne), Champ.Largeur, Source_.Formes);
      Fichier_.Recouvrir(Début + Champ.Décalage, Encodé.Extrait(0, Champ.Largeur));
    }
  }

  void RemplirCréneaux(const Emplacements& Créneaux, std::size_t Début) {
    const std::string Clé = TexteValeur(Rangées_->Fields(0), Source_.Formes);
    const auto Quotas =
        Source_.Base.OpenRecordset(Créneaux.SqlAvant + TexteSql(Clé) + Créneaux.SqlAprès, TypeRecordset::VersLAvant);
    std::size_t Rang = 0;
    for (; !Quotas->Eof(); Quotas->MoveNext(), ++Rang) {
      if (Rang < Créneaux.Nombre) {
        EcrireChamps(*Quotas, Créneaux.Champs, Début + Créneaux.Décalage + Rang * Créneaux.Largeur);
      }
    }
    if (Rang > Créneaux.Nombre) {
      Omissions_.push_back(Jeu_.Titre + Clé + " : quotas non transmis : " + std::to_string(Rang - Créneaux.Nombre) +
                           " (le RG80 n'en tient que " + std::to_string(Créneaux.Nombre) + " par groupement).");
    }
  }

  const JeuDeDonnées& Jeu_;
  const std::size_t Longueur_ = Jeu_.Longueur();
  const SourceFichier& Source_;
  const Titreur& Titrer_;
  Octets& Fichier_;
  std::unique_ptr<IRecordset> Rangées_;
  std::vector<std::string> Omissions_;
};

}  // namespace

std::vector<std::string> ConstruireFichier(const JeuDeDonnées& Jeu, const SourceFichier& Source, const Titreur& Titrer,
                                           std::vector<Octets>& Lignes) {
  Lignes.assign(1, Octets());
  return Construction(Jeu, Source, Titrer, Lignes.front()).Construire();
}

}  // namespace Ombrey
