// What the operator is told at a glance.
#include "host/overview.h"

#include <algorithm>
#include <cmath>
#include <ctime>
#include <utility>

#include "base/ansi_text.h"
#include "base/failures.h"
#include "base/files.h"
#include "base/kept_files.h"
#include "base/regional_forms.h"
#include "base/text_helpers.h"
#include "base/visible_text.h"
#include "contracts/line_protocol.h"
#include "contracts/phrases.h"
#include "contracts/system.h"
#include "host/kept_facts.h"
#include "host/load_report.h"
#include "platform/system/machine_system.h"

namespace Tarvel {
namespace {

using Ombrey::DateHeure;
using Ombrey::HeureLocale;
using Ombrey::Octets;
using Ombrey::Position;
using std::chrono::system_clock;
namespace Place = Ombrey::PositionFixe;

constexpr const char* RemèdeBase =
    "Voir si la base peut être écrite (autre programme, disque plein) : le chargement revient de lui-même.";

/// A next poll so near is over before its time is read: the distance is told instead, unless one takes longer.
constexpr std::chrono::milliseconds Rapproché(10000);
constexpr double EntreAvis = 1 / 24.;  ///< of clocks that differ, in days
/// As often a count that grows is written down.
constexpr std::chrono::minutes EntreÉcritures(1);

/// A field of the load record as the operator knows it.
struct ChampLisible {
  const char* Nom;
  Position Sien;
};
constexpr ChampLisible ChampsLisibles[] = {
    {"Numéro", Ombrey::PlaceChamp("NoChargement")},
    {"Jour, mois, année", Place::Date},
    {"Heure d'arrivée", Place::Arrivée},
    {"Heure de sortie", Place::Sortie},
    {"Propriétaire", Place::Propriétaire},
    {"Récoltant", Place::Récoltant},
    {"Groupe", Place::Groupe},
    {"Part (%, 4 décimales)", Place::Part},
    {"Appellation", Ombrey::PlaceChamp("Sélection")},
    {Ombrey::Phrase::ClasseSanitaire, Ombrey::PlaceChamp("Qualité")},
    {"Degré (dixièmes)", Ombrey::PlaceChamp("Degré")},
    {"Quai", Ombrey::PlaceChamp("NoQuai")},
    {"Pesée (kg)", Ombrey::PlaceChamp("Masse")},
    {"Cuve", Ombrey::PlaceChamp("Cuve")},
};

Octets Enregistrement(const std::string& Trame) { return Octets(Trame.substr(1, Ombrey::LongEnregChargement)); }

std::string Numéro(const std::string& Trame) {
  if (Trame.empty()) return SansNuméro;
  const std::string Lu(Ombrey::PlaceChamp("NoChargement").Dans(Enregistrement(Trame)).Bruts());
  const bool EstNombre = Lu.find_first_not_of("0123456789") == std::string::npos;
  return EstNombre ? Ombrey::SupprZéroDébut(Lu) : SansNuméro;
}

/// As the terminal says it, whatever it says.
std::string ArrivéeBrute(const std::string& Trame) {
  if (Trame.empty()) return {};
  const auto Lire = [&](Position Place) { return std::string(Place.Dans(Enregistrement(Trame)).Bruts()); };
  return Lire(Place::Date) + " " + Lire(Place::Arrivée);
}

/// By the terminal's clock; none when it names no moment.
std::optional<double> ArrivéeDe(const std::string& Trame) {
  if (Trame.empty()) return std::nullopt;
  const auto Lire = [&](Position Place) { return std::string(Place.Dans(Enregistrement(Trame)).Bruts()); };
  const std::string Texte = Lire(Place::Jour) + "/" + Lire(Place::Mois) + "/" + Lire(Place::Année) + " " +
                            Lire(Place::Heure) + ":" + Lire(Place::Minute);
  const auto Lue = Ombrey::LireDate(Texte, HeureLocale().Année);
  return Lue ? std::optional(NuméroDeJour(*Lue)) : std::nullopt;
}

std::string Champs(const std::string& Trame) {
  std::string Texte;
  if (Trame.empty()) return Texte;
  for (const ChampLisible& Champ : ChampsLisibles)
    Texte += std::string(Champ.Nom) + " : " +
             Ombrey::TexteVisible(Ombrey::DepuisAnsi(Champ.Sien.Dans(Enregistrement(Trame)))) + "\n";
  return Texte;
}

/// The time of day alone.
DateHeure HeureDe(system_clock::time_point Quand) {
  const std::time_t Instant = system_clock::to_time_t(Quand);
  std::tm Locale{};
  localtime_r(&Instant, &Locale);
  return {.Heure = Locale.tm_hour, .Minute = Locale.tm_min, .Seconde = Locale.tm_sec};
}

bool EstValeurIllisible(const std::string& Raison) {
  return Raison.find(Ombrey::Description::IncompatibilitéDeType) != std::string::npos ||
         Raison.find(Ombrey::Description::DépassementDeCapacité) != std::string::npos;
}

/// The time of day, and the day where it is another one.
std::string HeureOuDate(const DateHeure& Quand) {
  const DateHeure Ici = HeureLocale();
  const bool Aujourdhui = Quand.Jour == Ici.Jour && Quand.Mois == Ici.Mois && Quand.Année == Ici.Année;
  return TexteFormaté(Quand, Aujourdhui ? "hh:nn" : "jj/mm hh:nn");
}

std::string ÀFaireDe(const FaitRépété& Refusé) {
  if (!Refusé.Partie) return Refusé.ÀFaire;
  return "N'est plus proposé par le RG80 depuis " + HeureOuDate(*Refusé.Partie) +
         " : si personne ne l'y a effacé exprès, l'y saisir à nouveau.";
}

}  // namespace

Ombrey::TémoinsFenêtres Aperçu::Témoins() {
  return {[this](const std::string& Ligne) { NoterLigne(Ligne); },
          [this](const std::string& Titre, const std::string& Message) { return NoterBoîte(Titre, Message); },
          [this](const std::string& Titre, const std::string& Message) { NoterRetrait(Titre, Message); },
          [this](bool Ouverte) { NoterSuspension(Ouverte ? &Transfert : nullptr); }};
}

void Aperçu::Ouvrir(const std::filesystem::path& Dossier, std::filesystem::path Conservés) {
  DossierConservés_ = std::move(Conservés);
  Dossier_ = Dossier;
  NonLus_.Reprendre(LireFaits(Dossier / FichierNonLus));
  Refus_.Reprendre(LireFaits(Dossier / FichierRefus));
  Changer();
}

/// A list that can't be kept is still shown.
void Aperçu::Garder(const char* Fichier, const FaitsRépétés& Faits) const {
  if (!Dossier_.empty()) Ombrey::Ignorer([&] { EcrireFaits(Dossier_ / Fichier, Faits.Tous()); });
}

void Aperçu::GarderRefus() {
  RefusGardés_ = std::chrono::steady_clock::now();
  Garder(FichierRefus, Refus_);
}

void Aperçu::NoterLigne(const std::string& Ligne) {
  const SantéLiaison Avant = Liaison_.État();
  Liaison_.Noter(std::time(nullptr), Ligne);
  if (!NoterTexte(Ligne) && Liaison_.État() != Avant) Changer();
}

std::string Aperçu::NoterBoîte(const std::string& Titre, const std::string& Message) {
  if (Titre == Ombrey::Phrase::TitreErreurPort) Liaison_.NoterPort(std::time(nullptr), Message);
  if (Titre == Ombrey::Phrase::TitreExploitation) {
    Panne_ = Message;
    PassageDePanne_ = Passage_;
  }
  if (!NoterTexte(Message)) Changer();
  return Précision(Message);
}

std::string Aperçu::Précision(const std::string& Message) const {
  const std::string Sien = Message == Ombrey::Phrase::ChecksumFaux ? Numéro(Tampon_.empty() ? Trame_ : "") : SansNuméro;
  return Sien == SansNuméro ? "" : "(chargement n° " + Sien + ", tel que reçu)";
}

void Aperçu::NoterRetrait(const std::string& Titre, const std::string& Message) {
  const std::string Détail = Précision(Message);
  NonLus_.Noter(HeureLocale(), {.Sujet = Titre, .Texte = Message + (Détail.empty() ? "" : " ") + Détail});
  GarderNonLus();
  Changer();
}

void Aperçu::NoterOctets(const Octets& Reçus) {
  Tampon_ += Reçus.Bruts();
  const std::size_t Début = Tampon_.rfind(Ombrey::STX);
  if (Début == std::string::npos) return Tampon_.clear();
  Tampon_.erase(0, Début);
  if (Tampon_.size() < Ombrey::LongTrameChargement) return;
  Trame_ = std::exchange(Tampon_, {}).substr(0, Ombrey::LongTrameChargement);
  ++Passage_;
  Liaison_.NoterRéponse(std::time(nullptr));
}

void Aperçu::OublierLiaison() {
  Liaison_ = {};
  Changer();
}

void Aperçu::NoterRelevé(std::optional<std::int32_t> Attente) {
  EnRelevé_ = !Attente;
  if (Attente) Attente_ = std::chrono::milliseconds(*Attente);
  Annoncé_ = system_clock::now();
}

void Aperçu::NoterSuspension(const Suspension* Laquelle) {
  Suspension_ = Laquelle;
  SuspendueDepuis_.reset();
  if (Laquelle != nullptr) SuspendueDepuis_ = system_clock::now();
  Changer();
}

bool Aperçu::NoterTexte(const std::string& Texte) {
  // Its queue is empty: a load that was refused has been deleted there.
  if (Texte.find(Ombrey::Phrase::RienÀRécupérer) != std::string::npos) {
    const bool EstNouveau = Refus_.LaisserPartir(HeureLocale());
    if (!EstNouveau) return false;
    GarderRefus();
    Changer();
    return true;
  }
  Refus Lu = LireRefus(Texte);
  // A holding that couldn't be looked for isn't known to be missing.
  if (Lu.Motif.starts_with(Ombrey::Phrase::ExploitationIntrouvable) && EstSansRecherche())
    Lu = {std::move(Lu.Sujet), Panne_, EstValeurIllisible(Panne_) ? RemèdeValeur : RemèdeBase};
  if (Lu.Sujet.empty()) return false;
  Refuser(std::move(Lu), "");
  Changer();
  return true;
}

void Aperçu::NoterRefus(const ImportRefusé& Import) {
  Refuser({SansNuméro, Import.Motif, Import.ParSaValeur ? RemèdeValeur : RemèdeBase}, Import.Contenu);
  Changer();
}

void Aperçu::Refuser(Refus Lu, std::string Contenu) {
  // A frame that was cut off stays in the buffer: the one before it says nothing of this load.
  const std::string Trame = Tampon_.empty() ? Trame_ : "";
  if (Lu.Sujet == SansNuméro) Lu.Sujet = Numéro(Trame);
  FaitRépété Fait{.Sujet = std::move(Lu.Sujet),
                  .Texte = std::move(Lu.Motif),
                  .ÀFaire = std::move(Lu.ÀFaire),
                  .Détail = Champs(Trame),
                  .Contenu = std::move(Contenu),
                  .Passage = Passage_,
                  .Arrivée = Lu.EstAbîmé ? "" : ArrivéeBrute(Trame),
                  .EstAbîmé = Lu.EstAbîmé};
  // The terminal offers the head of its queue alone; which that is, a spoilt frame doesn't say.
  bool EstNouveau = Fait.Sujet != SansNuméro && !Fait.EstAbîmé && Refus_.LaisserPartir(HeureLocale(), Fait);
  EstNouveau = Refus_.Noter(HeureLocale(), std::move(Fait)) || EstNouveau;
  if (EstNouveau || std::chrono::steady_clock::now() - RefusGardés_ > EntreÉcritures) GarderRefus();
}

std::string Aperçu::NoterReçu(const std::string& LeSien) {
  const FaitRépété Reçu{.Sujet = LeSien, .Texte = {}, .Arrivée = Numéro(Trame_) == LeSien ? ArrivéeBrute(Trame_) : ""};
  const bool EstRentré = Refus_.Retirer([&](const FaitRépété& Un) {
    // A frame that was spoilt comes again by itself, and this is it.
    const bool ÉtaitEnTête = !Un.Partie && (Un.EstAbîmé || Un.Sujet == SansNuméro);
    return MêmeArrivée(Un, Reçu) && (ÉtaitEnTête || Un.Sujet == Reçu.Sujet);
  });
  // Most loads have never been refused: the disk is left alone.
  if (Refus_.LaisserPartir(HeureLocale()) || EstRentré) GarderRefus();
  Changer();
  const double Maintenant = NuméroDeJour(HeureLocale());
  const double Avance = ArrivéeDe(Trame_).value_or(Maintenant) - Maintenant;
  if (Avance < AvanceDHorloge || (Horloges_ && std::abs(Maintenant - *Horloges_) < EntreAvis)) return {};
  Horloges_ = Maintenant;
  const auto Dire = [](double Moment) { return TexteMoment(Moment).replace(10, 1, " à "); };
  return "Le chargement n° " + LeSien + " est arrivé au RG80 le " + Dire(Maintenant + Avance) +
         ", et cette station n'en est qu'au " + Dire(Maintenant) +
         " : comparez l'heure et le fuseau des deux, sinon des chargements manquent dans la liste du jour.";
}

void Aperçu::ToutEstLu() {
  NonLus_.Vider();
  GarderNonLus();
  Changer();
}

void Aperçu::RefusésLus() {
  Refus_.Retirer([](const FaitRépété& Un) { return Un.Partie.has_value(); });
  GarderRefus();
  Changer();
}

std::string Aperçu::TexteLiaison() const {
  if (!AutreLiaison_.empty()) return AutreLiaison_;
  if (!SuspendueDepuis_) return Liaison_.Texte(std::time(nullptr));
  return "Collecte suspendue depuis " + TexteFormaté(HeureDe(*SuspendueDepuis_), "hh:nn") + " : " + Suspension_->Par;
}

std::string Aperçu::TexteRelevé() const {
  if (!AutreLiaison_.empty()) return "On ne fait que regarder";
  if (SuspendueDepuis_) return "Aucun relevé d'ici là";
  if (Attente_ < Rapproché && system_clock::now() < Annoncé_ + Rapproché)
    return "Relevés à " + std::to_string(std::chrono::ceil<std::chrono::seconds>(Attente_).count()) + " s d'intervalle";
  return EnRelevé_ ? "Relevé en cours" : "Prochain relevé à " + Ombrey::TexteHeure(HeureDe(Annoncé_ + Attente_));
}

Rangées Aperçu::Refusés() const {
  Rangées Toutes{{"Chargement", "Depuis", "Fois", "Dernière fois", "Motif", "Que faire"}};
  for (const FaitRépété& Un : Refus_.Tous())
    Toutes.push_back(
        {Un.Sujet, HeureOuDate(Un.Premier), std::to_string(Un.Fois), HeureOuDate(Un.Dernier), Un.Texte, ÀFaireDe(Un)});
  return Toutes;
}

std::size_t Aperçu::NombreRefusés() const {
  return static_cast<std::size_t>(
      std::ranges::count_if(Refus_.Tous(), [](const FaitRépété& Un) { return !Un.Partie; }));
}

Rangées Aperçu::NonLus() const {
  Rangées Toutes{{"Titre", "Message", "Fois", "Première fois", "Dernière fois"}};
  for (const FaitRépété& Un : NonLus_.Tous())
    Toutes.push_back({Un.Sujet, Un.Texte, std::to_string(Un.Fois), HeureOuDate(Un.Premier), HeureOuDate(Un.Dernier)});
  return Toutes;
}

std::string Aperçu::Détail(std::size_t Rang) const {
  if (Rang >= Refus_.Tous().size()) return {};
  const FaitRépété& Un = Refus_.Tous()[Rang];
  std::string Texte = Un.Texte + "\n" + ÀFaireDe(Un) + "\n\n";
  Texte += Un.Détail.empty() ? "Le RG80 n'a envoyé aucun enregistrement entier.\n"
                             : "Ce que le RG80 a envoyé :\n" + Un.Détail;
  if (Un.Contenu.empty()) return Texte;
  const auto Fichier = Ombrey::FichierDeContenu(DossierConservés_, Un.Contenu);
  return Texte + "\nFichier conservé : " + (Fichier ? Ombrey::TexteChemin(*Fichier) : "aucun");
}

}  // namespace Tarvel
