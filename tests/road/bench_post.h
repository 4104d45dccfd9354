// The plug-in on a real database, with a terminal at the far end of a line that takes no time.
#pragma once

#include <algorithm>
#include <deque>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "core/plugin.h"
#include "host/cooperative_database.h"
#include "link/checksum.h"
#include "tests/road/post.h"
#include "tests/support/fake_host.h"
#include "tests/support/fake_platform.h"

namespace Ombrey::Essais {

inline Octets Trame(const std::string& LEnregistrement) {
  return CalculerCheckSum(Octets("\x02" + LEnregistrement + "\x03"));
}

/// Offers what stands in Offres, one for each request; counts what it is answered, and takes every reply.
class PosteDEssai : public Poste {
 public:
  PosteDEssai() {
    Plateforme.LeSystème.Dossier = En("poste");
    std::filesystem::create_directories(En("poste"));
    Plateforme.Ini = {{"Port", "COM1:"}, {"Bauds", "9600"}, {"Parité", "N"}, {"BitsStop", "1"}, {"TailleMots", "8"}};
    Plateforme.Port->SurEcriture = [this](const Octets& Texte) { Répondre(Texte); };
    Connexion = ConnexionSqlite::Ouvrir(Base(), [this] { return NuméroDeJour(Plateforme.LeSystème.Mur); });
    LePlugIn->IPlugInTarvel_FixerBaseDeD(std::make_shared<Tarvel::BaseDeDTarvel>(Connexion, Plateforme.LeSystème));
    EXPECT_EQ(LePlugIn->IPlugInTarvel_Initialiser(Événements), "");
    LePlugIn->IPlugInTarvel_Afficher();
  }
  ~PosteDEssai() { LePlugIn->IPlugInTarvel_Terminer(); }

  /// One poll: the terminal offers these bytes behind its "ACK A". The text of every box that came up, joined by "|".
  std::string Relever(const Octets& Offre) {
    return ReleverBrut(Octets("\x06"
                              "A") +
                       Offre);
  }
  std::string ReleverBrut(const Octets& Offre) {
    Offre_ = Offre;
    Réponse.clear();
    Plateforme.LesFenêtres.Boîtes.clear();
    LePlugIn->Retard_FinTempo("");
    std::string Textes;
    for (const auto& Boîte : Plateforme.LesFenêtres.Boîtes) Textes += (Textes.empty() ? "" : "|") + Boîte.Texte;
    return Textes;
  }
  /// Newest lines of the message list, without their times.
  [[nodiscard]] std::string Message(std::size_t Rang = 0) const {
    const auto& Lignes = Plateforme.LesFenêtres.VueSuivi->Lignes[0];
    return Rang < Lignes.size() ? Lignes[Rang].Texte.substr(sizeof "08:30:00 : " - 1) : "";
  }
  /// How the last poll ended: what stands behind the words that are always the same.
  [[nodiscard]] std::string Issue() const {
    return Message().substr(std::string("Vérification de nouveaux chargements sur le RG80. ").size());
  }

  FaussePlateforme Plateforme;
  std::shared_ptr<ConnexionSqlite> Connexion;
  std::shared_ptr<FauxÉvénements> Événements = std::make_shared<FauxÉvénements>();
  std::shared_ptr<PlugIn> LePlugIn = PlugIn::Créer(Plateforme);
  std::string Réponse;  ///< "ACK", "NAK" or nothing, as the terminal was answered in the last poll
  std::vector<std::string> Cumuls;

 private:
  void Répondre(const Octets& Texte) {
    const std::string Bruts(Texte.Bruts());
    if (Bruts ==
        "\x05"
        "A")
      Plateforme.Port->Envoyer(Offre_);
    if (Bruts ==
        "\x05"
        "8")
      Plateforme.Port->Envoyer(
          Octets("\x06"
                 "8"));
    if (Bruts == "\x06") Réponse += "ACK";
    if (Bruts == "\x15") Réponse += "NAK";
    if (Bruts.starts_with('\x02')) {
      Cumuls.push_back(Bruts.substr(1, Bruts.size() - 4));
      Plateforme.Port->Envoyer(Octets("\x06"));
    }
  }

  Octets Offre_;
};

}  // namespace Ombrey::Essais
