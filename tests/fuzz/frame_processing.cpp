// Frame processing alone: the input is the reception text.
#include "base/ansi_text.h"
#include "base/delimited_list.h"
#include "base/regional_forms.h"
#include "base/text_helpers.h"
#include "tests/fuzz/input.h"
#include "tests/fuzz/station.h"

namespace Ombrey::Essais {
namespace {

bool EnChiffres(std::string_view Texte) { return Texte.find_first_not_of("0123456789") == Texte.npos; }

/// The import line of a record, worked out once more in the plainest way; "*" for a field that is another's business.
void ComparerLigne(const std::string& Ligne, std::string_view Record) {
  const auto Champ = [&](std::size_t Place, std::size_t Longueur) {
    return DepuisAnsi(Octets(Record.substr(Place - 1, Longueur)));
  };
  if (Record.find(';') != Record.npos) return;  // such a line is for the import engine to refuse
  const auto Date = [&](std::size_t Heure, std::size_t Minute) {
    const std::string Texte =
        Champ(5, 2) + "/" + Champ(7, 2) + "/" + Champ(9, 2) + " " + Champ(Heure, 2) + ":" + Champ(Minute, 2);
    return EstDate(Texte, 2026) ? Texte : "22/09/2026 08:30:00";
  };
  const std::string Qualité = Champ(43, 2);
  const std::string Degré = Champ(45, 3);
  const std::string Dixième = Degré.substr(Degré.size() - 1);
  std::string Attendu = "1;" + SupprZéroDébut(Champ(1, 4)) + ";" + Date(11, 13) + ";" + Date(15, 17) + ";*;" +
                        Champ(41, 2) + ";Syrah;" + Qualité + ";";
  Attendu +=
      !EnChiffres(Degré) ? "*" : std::to_string(std::stoi(Degré.substr(0, 2))) + (Dixième == "0" ? "" : "," + Dixième);
  Attendu += ";" + SupprZéroDébut(Champ(48, 1)) + ";" + Champ(49, 4) + ";" + SupprZéroDébut(Champ(53, 3)) +
             ";0;0;0;0;" + Qualité + ";0;";
  const ListeChamps Liste(";");
  const auto Obtenus = Liste.Décomposer(Ligne);
  const auto Attendus = Liste.Décomposer(Attendu);
  Exiger(Obtenus.size() == Attendus.size(), "the line has a value for each column of the layout");
  for (std::size_t i = 0; i < Obtenus.size(); ++i)
    Exiger(Attendus[i] == "*" || Obtenus[i] == Attendus[i],
           ("the line says what the record says, not " + Ligne).c_str());
}

void Essayer(const std::string& Texte) {
  Station S;
  const Octets Intacte("lu");
  Octets Tampon(Texte);
  Octets Réponse = Intacte;
  std::string No;
  const std::string Ligne = S.Traitement.TraiterDonnéesReçues(Tampon, Réponse, No);

  const std::size_t Place = Texte.find(STX);
  const std::string_view Reste = std::string_view(Texte).substr(Place == Texte.npos ? 0 : Place);
  if (Place == Texte.npos || Reste.size() < LongueurTrame) {
    Exiger(Tampon == Octets(Reste) && Réponse == Intacte && No.empty() && Ligne.empty(), "no frame, nothing done");
    Exiger(S.Fenêtres.Boîtes.size() == (Place == Texte.npos ? 0 : 1), "a frame too short is told, none isn't");
    return;
  }
  const bool Juste = CommenceParTrame(Reste);
  const Octets Derrière(Reste.substr(LongueurTrame));
  Exiger(Réponse == Octets(1, Juste ? ACK : NAK), "the answer tells the checksum");
  Exiger(Tampon == Derrière || (Juste && Ligne.empty() && Tampon == Octets(Reste)), "the frame goes, or stays whole");
  if (!Juste) Exiger(No.empty() && Ligne.empty(), "nothing comes out of a bad frame");
  if (!Ligne.empty()) {
    const std::string_view Record = Reste.substr(1);
    Exiger(Tampon == Derrière && No == SupprZéroDébut(DepuisAnsi(Octets(Record.substr(0, 4)))), "number and buffer");
    ComparerLigne(Ligne, Record.substr(0, LongueurTrame - 4));
  } else {
    Exiger(!S.Fenêtres.Boîtes.empty() || !S.Canal.Erreurs.empty(), "the operator is told why nothing comes in");
  }
}

}  // namespace
}  // namespace Ombrey::Essais

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Données, std::size_t Taille) {
  using namespace Ombrey::Essais;
  Essayer(Sceau().PasserTout(Entrée(Données, Taille).Reste));
  return 0;
}
