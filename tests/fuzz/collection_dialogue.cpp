// The collection dialogue with the poll around it and the frame's processing in it. The input is what the terminal
// sends, cut by "~" and a letter: what happens on the machine meanwhile, as Jouer and Gestes have it.
#include <set>

#include "base/text_helpers.h"
#include "import/frame_processing.h"
#include "link/transmission.h"
#include "tests/fuzz/input.h"
#include "tests/fuzz/sample.h"

namespace Ombrey::Essais {

const Octets DemandeChargement{std::string{ENQ, 'A'}};
const Octets DemandeChiffres{std::string{ENQ, '8'}};
const std::string Oui{ACK, 'A'};
const std::string BonneRéponse = Oui + "\2" + "0012190908083009150001230004560071000000050112521234007\3<;";
const std::string LigneImport = "1;12;19/09/08 08:30;19/09/08 09:15;4;05;Syrah;01;12,5;2;1234;7;0;0;0;0;01;0;\r\n";

/// STX, 55 bytes of record, ETX, two checksum characters.
constexpr std::size_t LongueurTrame = 59;

/// True when a whole frame of a load with its true checksum stands at the front of the text.
bool CommenceParTrame(std::string_view Texte) {
  if (Texte.size() < LongueurTrame || Texte[0] != STX) return false;
  unsigned Somme = static_cast<unsigned char>(ETX);
  for (const char C : Texte.substr(0, LongueurTrame - 3)) Somme += static_cast<unsigned char>(C);
  return Texte[LongueurTrame - 2] == static_cast<char>('0' + (Somme >> 4U & 15U)) &&
         Texte[LongueurTrame - 1] == static_cast<char>('0' + (Somme & 15U));
}

/// Puts the true checksum where "##" stands behind an ETX: chance alone would find it once in 256 frames. Works it out
/// by itself, byte by byte.
class Sceau {
 public:
  char Passer(char C) {
    const int Rang = Rang_++;
    if (Rang < 2 && C == '#') return static_cast<char>('0' + (Rang == 0 ? (Somme_ >> 4U) & 15U : Somme_ & 15U));
    if (C == STX) Somme_ = 0;
    Somme_ += static_cast<unsigned char>(C);
    Rang_ = C == ETX ? 0 : 2;
    return C;
  }

 private:
  unsigned Somme_ = 0;
  int Rang_ = 2;  ///< characters since the last ETX, 2 for many
};

struct Banc : SallesDuLien {
  explicit Banc(Entrée LEntrée) : E(LEntrée) {
    Hôte->Dossier = (Système.Dossier / "").string();
    Hôte->Base = std::make_shared<BaseLue>(Coopérative());
    Hôte->Cépages = "Syrah";
    Hôte->PendantImport = [this] { Importer(); };
    Plateforme.PendantRetard = [this](const auto& Faire) { Interroger(Faire); };
    UneInterrogation.FixerPériode(100'000);
    UneInterrogation.Commencer();
    Port->SurEcriture = [this](const Octets& Texte) { Ecrit(Texte); };
  }

  /// One poll on the clock, from the timer or the button.
  void Interroger(const std::function<void()>& Faire) {
    const auto Début = Système.Horloge;
    Faire();
    Exiger(Système.Horloge - Début < 60'000, "a poll ends");
    if (État.Liaison.EstPrise()) return;  // the button, put off by a poll that holds the line
    Exiger(!std::filesystem::exists(Système.Dossier / "RG80 import.txt"), "no import file is left behind");
  }

  void Interroger() {
    Interroger([this] { UneInterrogation.Retard_FinTempo(""); });
  }
  void Finir() { Terminer(UnÉchange); }

  /// What goes on the line is judged, and the terminal's next move follows.
  void Ecrit(const Octets& Texte) {
    Exiger(!État.Abandon, "nothing goes on the line once the plug-in ends");
    const bool EstACK = Texte == Octets(1, ACK);
    if (Texte == DemandeChargement) {
      Répondu = Accordé = false;
      Reçu.clear();
    }
    if (EstACK || Texte == Octets(1, NAK)) {
      Exiger(!std::exchange(Répondu, true), "one answer to a load, no more");
      Exiger(EstACK == Accordé, "an ACK is for a load that is in the database, a NAK for one that isn't");
      Exiger(!EstACK || CommenceParTrame(Trame()), "an ACK answers a whole frame");
      Acquittés += EstACK;
    }
    if (!Guéri) return Jouer();
    Reçu = Texte == DemandeChargement ? BonneRéponse
           : Texte == DemandeChiffres ? std::string{ACK, '8'}
                                      : std::string{ACK};
    Port->Envoyer(Octets(Reçu));
  }

  /// What came from the first STX behind the terminal's yes on.
  std::string_view Trame() const {
    return std::string_view(Reçu).substr(std::min(Reçu.find(STX, Reçu.find(Oui)), Reçu.size()));
  }

  /// Plays the input up to the next "~s": the terminal's answer to one writing.
  void Jouer() {
    milliseconds Quand{1};
    std::string Morceau;
    const auto Plus = [&](std::function<void()> Faire) {
      Système.Après(Quand, [this, Faire = std::move(Faire)] {
        if (!Guéri) Faire();
      });
    };
    const auto Livrer = [&](bool ParEvénement) {
      Plus([this, ParEvénement, Texte = std::exchange(Morceau, "")] {
        Reçu += Texte;
        ParEvénement ? Port->Client->Lecture(Octets(Texte)) : void(Port->ParLire += Octets(Texte));
      });
    };
    while (!E.Reste.empty()) {
      const char C = E.Octet();
      if (C != '~') {
        Morceau += LeSceau.Passer(C);
        continue;
      }
      const char Commande = E.Octet();
      if (Commande != 'l') Livrer(true);
      if (Commande == 's') return;
      if (Commande == 'l') Livrer(false);  // waits to be read
      if (Commande == 'd') Quand = std::min(Quand + milliseconds(16 * static_cast<unsigned char>(E.Octet())), Plafond);
      if (Gestes.contains(Commande)) Plus(Gestes.at(Commande));
      if (std::string_view("tfexq").find(Commande) != std::string_view::npos) Import = Commande;
    }
    Livrer(true);
  }

  /// The import file has been read; what becomes of it is the input's choice.
  void Importer() {
    Hôte->Lève = Import == 'x';
    Hôte->Importe = Import != 'f';
    Hôte->Erreur = Import == 'e' ? "Colonne Masse : valeur illisible" : "";
    Système.Mur.Minute = static_cast<int>(Hôte->Importés.size()) / 60 % 60;
    Système.Mur.Seconde = static_cast<int>(Hôte->Importés.size()) % 60;
    Accordé = Import == 't' || Import == 'q';
    Exiger(!Répondu && !État.Abandon && CommenceParTrame(Trame()), "what is imported came in a whole frame");
    const std::string Début = "1;" + SupprZéroDébut(std::string(Trame().substr(1, 4))) + ";";
    const std::string& Fichier = Hôte->Importés.back();
    Exiger(Fichier.starts_with(Début) && Fichier.ends_with("\r\n"), "the import file is the frame's");
    if (Import == 'f' || Import == 'e') Refusés.insert(Fichier);
    if (Import == 'q') Finir();
  }
  std::string TraiterDonnéesReçues(Octets& Tampon, Octets& Réponse, std::string& No) override {
    const bool ATrame = Tampon.Chercher(Octets(1, STX)) != Octets::Introuvable;
    const std::size_t Dits = Fenêtres.Boîtes.size() + Canal.Erreurs.size();
    const std::string Ligne = Traitement.TraiterDonnéesReçues(Tampon, Réponse, No);
    const bool EstDit = Fenêtres.Boîtes.size() + Canal.Erreurs.size() > Dits;
    Exiger(!ATrame || !Ligne.empty() || EstDit || État.Abandon, "the operator is told why nothing comes in");
    return Ligne;
  }
  void MettreAJourCumuls(std::string&) override {
    std::vector<Octets> Lignes{Octets(24, '0')};
    static_cast<void>(Transmission(État, UnÉchange, 8).TransmettreLignes(Lignes));
  }

  /// Whatever went before, the next poll brings the next load in; when it can be the copy of an older answer, the first
  /// poll on a calm line does.
  void Guérir() {
    Guéri = true;
    Port->EcritureRefusée = false;
    Port->ParLire.Vider();
    Fenêtres.PendantBoîte = [] {};
    Import = 't';
    Hôte->Importés.clear();
    const int Avant = Acquittés;
    const milliseconds Tour = milliseconds(UneInterrogation.Période()) + milliseconds(10'000);
    for (int Essai = 0; Essai < 3 && Acquittés == Avant; ++Essai) Système.Laisser(Tour);
    Exiger(Acquittés == Avant + 1 && Hôte->Importés == Mots{LigneImport}, "the next poll brings the next load in");
    Exiger(!État.Liaison.EstPrise() && !État.Erreur.EstPrésente(), "the line is free, nothing is pending");
  }
  void JouerTout() {
    Interroger();
    Système.Laisser(milliseconds(90'000));
    std::error_code Sans;
    const std::filesystem::directory_iterator Conservés(Système.DossierImportsConservés(), Sans);
    Exiger(std::distance(Conservés, {}) == std::ssize(Refusés), "every refused import is kept for the operator, once");
    if (!État.Abandon) Guérir();
    Système.Laisser(milliseconds(200));
  }

  const std::map<char, std::function<void()>> Gestes{
      {'a', [this] { Finir(); }},
      {'b', [this] { Interroger(); }},
      {'w', [this] { Port->EcritureRefusée = !Port->EcritureRefusée; }},
      {'p', [this] { Fenêtres.PendantBoîte = [this] { Système.Laisser(milliseconds(500)); }; }}};
  static constexpr milliseconds Plafond{10'000};
  Entrée E;
  Sceau LeSceau;
  VérificationExploitation Exploitations{État};
  MiseEnFormeImport MiseEnForme{État};
  TraitementTrame Traitement{État, Exploitations, MiseEnForme};
  std::string Reçu;   ///< since the request
  char Import = 't';  ///< how the next imports end: true, false, with an error text, raising, the plug-in ending
  bool Répondu = false, Accordé = false, Guéri = false;
  int Acquittés = 0;
  std::set<std::string> Refusés;
};

void Essayer(Entrée E) { Banc(E).JouerTout(); }

}  // namespace Ombrey::Essais
