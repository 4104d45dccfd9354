// What the operator is told at a glance, in windows and on a console alike: link, next poll, refused loads, what nobody
// has read.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "contracts/octets.h"
#include "host/day_view.h"
#include "host/watch.h"
#include "platform/loop/witnesses.h"

namespace Tarvel {

/// A load that is so many days ahead of this machine's clock was timed by one of another zone, or a wrong one. One that
/// is late has waited.
inline constexpr double AvanceDHorloge = 15 / 1440.;

/// What stops the collection while it is open, and how it is closed on a console.
struct Suspension {
  const char *Par, *Remède;
};
inline constexpr Suspension Transfert{"la fenêtre de transfert est ouverte", "« fermer » la ferme"};
inline constexpr Suspension RéglagesDuPort{"les réglages du port sont ouverts", "« annuler » les ferme"};

/// What is open for so long calls for attention.
inline constexpr std::chrono::minutes RappelSuspension(5);

/// Is told what happens, and words it. Times are those of the machine.
class Aperçu {
 public:
  static constexpr const char* FichierNonLus = "à-lire.txt";
  static constexpr const char* FichierRefus = "refusés.txt";

  void NoterLigne(const std::string& Ligne);
  /// Which load the message is about, where it doesn't say so itself and the terminal did.
  std::string NoterBoîte(const std::string& Titre, const std::string& Message);
  void NoterRetrait(const std::string& Titre, const std::string& Message);
  /// Characters that came over the line.
  void NoterOctets(const Ombrey::Octets& Reçus);
  /// What was known of the link is another port's.
  void OublierLiaison();
  /// The next poll is due in Attente milliseconds; none: one is under way, or the collection stands still.
  void NoterRelevé(std::optional<std::int32_t> Attente);
  /// Nothing is collected from now on; nullptr: it goes on. Laquelle outlives that.
  void NoterSuspension(const Suspension* Laquelle);
  /// The line isn't this program's: what is to be said of it.
  void NoterAutreLiaison(std::string Phrase) { AutreLiaison_ = std::move(Phrase); }
  void NoterRefus(const ImportRefusé& Import);
  /// The load of this number has come in: its own row goes. The terminal offers the head of its queue alone, so what it
  /// offered before is gone from there, which its row says until RefusésLus. What is to be said of the terminal's
  /// clock, once an hour; mostly empty.
  [[nodiscard]] std::string NoterReçu(const std::string& Numéro);
  /// The operator has read the list: what in it is over, goes.
  void ToutEstLu();
  void RefusésLus();

  /// Called behind whatever changes the tables, or the link's state.
  void SurChangement(std::function<void()> Dire) { Dire_ = std::move(Dire); }
  /// The station's folders: both lists go on where an earlier run left them.
  void Ouvrir(const std::filesystem::path& Dossier, std::filesystem::path Conservés);
  /// What an edition's windows have to tell.
  [[nodiscard]] Ombrey::TémoinsFenêtres Témoins();

  /// For « À propos »: the version of the plug-in, the base's engine, …
  void NoterVersion(const std::string& De, std::string Laquelle) { Versions_[De] = std::move(Laquelle); }
  [[nodiscard]] const auto& Versions() const { return Versions_; }
  [[nodiscard]] const std::filesystem::path& DossierConservés() const { return DossierConservés_; }

  [[nodiscard]] SantéLiaison État() const { return Suspension_ != nullptr ? SantéLiaison::Suspendue : Liaison_.État(); }
  [[nodiscard]] auto SuspendueDepuis() const { return SuspendueDepuis_; }
  [[nodiscard]] std::string TexteLiaison() const;
  [[nodiscard]] std::string TexteRelevé() const;
  /// The same as TexteLiaison for who has forgotten what he opened on a console, and how he closes it.
  [[nodiscard]] std::string TexteRappel() const {
    return TexteLiaison() + (Suspension_ == nullptr ? "" : std::string(" (") + Suspension_->Remède + ")") + ".";
  }
  /// Rows with their headings first, the latest on top.
  [[nodiscard]] Rangées Refusés() const;
  [[nodiscard]] Rangées NonLus() const;
  /// Those that the terminal still offers.
  [[nodiscard]] std::size_t NombreRefusés() const;
  [[nodiscard]] std::size_t NombreNonLus() const { return NonLus_.Tous().size(); }
  /// What is known of the refused load in this row, several lines; empty where there is no such row.
  [[nodiscard]] std::string Détail(std::size_t Rang) const;

 private:
  /// True when it tells of a refused load; who watches knows that then.
  bool NoterTexte(const std::string& Texte);
  /// What NoterBoîte gives.
  [[nodiscard]] std::string Précision(const std::string& Message) const;
  /// True when this frame's holding couldn't be looked for.
  [[nodiscard]] bool EstSansRecherche() const { return !Panne_.empty() && PassageDePanne_ == Passage_; }
  void Refuser(Refus Lu, std::string Contenu);
  void Changer() const {
    if (Dire_) Dire_();
  }
  void GarderNonLus() const { Garder(FichierNonLus, NonLus_); }
  void GarderRefus();
  void Garder(const char* Fichier, const FaitsRépétés& Faits) const;

  std::function<void()> Dire_;
  std::map<std::string, std::string> Versions_;
  std::filesystem::path DossierConservés_;
  std::filesystem::path Dossier_;  ///< where the lists are kept; none, until Ouvrir
  ÉtatLiaison Liaison_;
  std::string AutreLiaison_;
  FaitsRépétés Refus_{Unicité::Sujet};
  FaitsRépétés NonLus_{Unicité::SujetEtTexte};
  bool EnRelevé_ = true;
  /// Ahead of this poll, or of the next; none has been announced yet.
  std::chrono::milliseconds Attente_ = std::chrono::milliseconds::max();
  std::chrono::system_clock::time_point Annoncé_;  ///< when either was told
  const Suspension* Suspension_ = nullptr;
  std::optional<std::chrono::system_clock::time_point> SuspendueDepuis_;
  std::chrono::steady_clock::time_point RefusGardés_{};  ///< when they were written last
  std::optional<double> Horloges_;                       ///< when they were last told to differ, in days
  std::string Tampon_;                                   ///< what came over the line last
  std::string Trame_;                                    ///< the last whole load record
  std::size_t Passage_ = 0;                              ///< counts them
  std::string Panne_;                                    ///< why a holding couldn't be looked for
  std::size_t PassageDePanne_ = 0;
};

}  // namespace Tarvel
