// A port's name and settings, checked.
#include "platform/serial/line_settings.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "base/failures.h"
#include "base/text_helpers.h"

namespace Ombrey {

namespace {

constexpr int DernierCom = 16;

/// The standard speeds that a 16-bit number can hold.
constexpr int Vitesses[] = {50, 75, 110, 134, 150, 200, 300, 600, 1200, 1800, 2400, 4800, 9600, 19200};

struct NomParité {
  std::string_view Texte;
  Parité Valeur;
};

constexpr NomParité Parités[] = {
    {"n", Parité::Aucune},        {"aucune", Parité::Aucune}, {"sans", Parité::Aucune},   {"e", Parité::Paire},
    {"p", Parité::Paire},         {"paire", Parité::Paire},   {"o", Parité::Impaire},     {"i", Parité::Impaire},
    {"impaire", Parité::Impaire}, {"m", Parité::Marque},      {"marque", Parité::Marque}, {"s", Parité::Espace},
    {"espace", Parité::Espace},
};

[[noreturn]] void RefuserRéglage(const std::string& NomPort, const std::string& Quoi, const std::string& Valeur,
                                 const std::string& Attendu) {
  throw ErreurExécution("Port " + NomPort + " : " + Quoi + " « " + Valeur + " » n'est pas possible (" + Attendu + ").");
}

}  // namespace

std::string CheminDuPort(const std::string& Nom) {
  const bool Entier = Nom.find('\0') == std::string::npos;
  if (Entier && Nom.starts_with('/')) return Nom;
  std::string Court = MinusculesAscii(Nom);
  if (Court.ends_with(':')) Court.pop_back();
  constexpr std::string_view Préfixe = "com";
  if (Court.starts_with(Préfixe) && Court.size() > Préfixe.size() && Court[Préfixe.size()] != '0') {
    const int Numéro = NombreLu<int>(std::string_view(Court).substr(Préfixe.size())).value_or(0);
    if (Numéro >= 1 && Numéro <= DernierCom) return "/dev/ttyS" + std::to_string(Numéro - 1);
  }
  throw ErreurExécution(
      "« " + Nom + " » n'est pas un port : il faut COM1: à COM16:, ou le chemin d'un appareil comme /dev/ttyUSB0.");
}

std::chrono::nanoseconds RéglagesLiaison::TempsCaractère() const {
  constexpr int BitDépart = 1;
  const int BitParité = LaParité == Parité::Aucune ? 0 : 1;
  return std::chrono::nanoseconds(std::chrono::seconds(BitDépart + Bits + BitParité + BitsStop)) / Bauds;
}

RéglagesLiaison VérifierRéglages(const std::string& NomPort, const RéglagesDemandés& Demandés) {
  RéglagesLiaison Réglages;
  Réglages.Bauds = Demandés.Bauds;
  if (std::find(std::begin(Vitesses), std::end(Vitesses), Réglages.Bauds) == std::end(Vitesses)) {
    std::string Liste;
    for (const int Vitesse : Vitesses) Liste += (Liste.empty() ? "" : ", ") + std::to_string(Vitesse);
    RefuserRéglage(NomPort, MotVitesse, std::to_string(Demandés.Bauds), "vitesses : " + Liste);
  }
  Réglages.Bits = Demandés.Bits;
  if (Réglages.Bits < 5 || Réglages.Bits > 8)
    RefuserRéglage(NomPort, MotTaille, std::to_string(Demandés.Bits), "5 à 8 bits");
  const std::string Nom = MinusculesAscii(Demandés.Parité);
  const auto* Trouvée =
      std::find_if(std::begin(Parités), std::end(Parités), [&](const NomParité& P) { return P.Texte == Nom; });
  if (Trouvée == std::end(Parités))
    RefuserRéglage(NomPort, "la parité", Demandés.Parité, "aucune, paire, impaire, marque, espace ; ou N, E, O, M, S");
  Réglages.LaParité = Trouvée->Valeur;
  Réglages.BitsStop = Demandés.BitsStop;
  if (Réglages.BitsStop < 1 || Réglages.BitsStop > 2)
    RefuserRéglage(NomPort, MotBitsStop, std::to_string(Demandés.BitsStop), "1 ou 2");
  return Réglages;
}

}  // namespace Ombrey
