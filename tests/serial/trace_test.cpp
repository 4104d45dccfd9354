// What the trace says of a line: how the traffic is cut and judged, and its files.
#include <gtest/gtest.h>

#include <set>

#include "platform/serial/line_journal.h"
#include "platform/serial/message_text.h"
#include "tests/support/test_folder.h"

namespace Ombrey::Essais {

using namespace std::chrono_literals;

const std::string Trame = "\x02" + std::string("0012190908083009150001230004560071000000050112521234007\x03<;");
const std::string TrameÉcrite = "<STX>0012190908083009150001230004560071000000050112521234007<ETX><3C>;";

/// Each message: who, what, "!" for a fault, and why it was dropped.
TEST(LineMessages, AreCutAndJudgedByTheDialogueItself) {
  const std::string Fausse = Trame.substr(0, 58) + "?";
  const std::pair<std::vector<std::string>, std::string> Table[] = {
      // S: said by the station; R: heard; a number: milliseconds that pass.
      // clang-format off
      {{"S\5A", "R\x15\x41"}, "S<ENQ>A R<NAK>A"},
      {{"S\5A", "R\6", "R\x41", "R" + Trame, "S\6"}, "S<ENQ>A R<ACK>A R" + TrameÉcrite + " S<ACK>"},
      {{"S\5A", "Rxy\6A" + Trame.substr(0, 30), "50", "R" + Trame.substr(30)}, "S<ENQ>A Rxy!1 R<ACK>A R" + TrameÉcrite},
      {{"S\5A", "R\6Az" + Fausse, "S\x15"}, "S<ENQ>A R<ACK>A Rz!1 R" + TrameÉcrite.substr(0, 65) + "<3C>?! S<NAK>!"},
      {{"S\5A", "R\6A" + Trame.substr(0, 30), "2000", "S\5A"}, "S<ENQ>A R<ACK>A R" + TrameÉcrite.substr(0, 34) + "!3 S<ENQ>A"},
      {{"S\5A", "2200", "S\5A"}, "S<ENQ>A R! S<ENQ>A"},
      {{"S\5A", "2200", "R\6A", "300", "Rx", "S\5A"}, "S<ENQ>A R<ACK>A!2 Rx!1 S<ENQ>A"},
      {{"S\5\x34", "R\6A\6\x34", "S\x02zz\3;9", "Rq\6", "S\4"}, "S<ENQ>4 R<ACK>A!2 R<ACK>4 S<STX>zz<ETX>;9! Rq!1 R<ACK> S<EOT>"},
      {{"R\x02y", "S\5\x38", "R\x15\x38"}, "R<STX>y!2 S<ENQ>8 R<NAK>8!"},
      // clang-format on
  };
  for (const auto& [Événements, Attendu] : Table) {
    std::string Dit;
    LecteurLiaison Témoin([&](const MessageLiaison& Un) {
      const auto Raison = static_cast<int>(Un.Raison);
      Dit += std::string(Dit.empty() ? "" : " ") + "SRP"[static_cast<int>(Un.Qui)] + TexteBrut(Un.Bruts) +
             (Un.Faute ? "!" : "") + (Raison > 0 ? std::to_string(Raison) : "");
    });
    InstantLiaison Quand;
    for (const std::string& Un : Événements) {
      const Octets Texte(std::string_view(Un).substr(1));
      if (Un[0] == 'S') Témoin.DébutÉmission(Quand);
      if (Un[0] == 'S') Témoin.FinÉmission(Texte, Quand);
      if (Un[0] == 'R') Témoin.Reçus(Texte, Quand);
      if (std::isdigit(Un[0]) != 0) Quand.Depuis += std::chrono::milliseconds(std::stoi(Un));
    }
    EXPECT_EQ(Dit, Attendu);
  }
}

TEST(TraceFile, HoldsADayIsItsOwnersAloneAndNeverStandsInTheWay) {
  const DossierEssai Dossier;
  const auto Lire = [&](const std::string& Nom) { return Contenu(Dossier.Chemin() / Nom); };
  const auto Fichiers = [&] {
    std::set<std::string> Noms;
    for (const auto& Entrée : std::filesystem::directory_iterator(Dossier.Chemin()))
      Noms.insert(Entrée.path().filename());
    return Noms;
  };
  InstantLiaison Quand = InstantLiaison::Présent();
  const auto Nom = [&](std::chrono::hours Depuis) { return "ligne-" + JourTrace(Quand.Mur - Depuis) + ".trace"; };
  const auto Gardé = Nom(30 * 24h);
  std::ofstream(Dossier.Chemin() / "ligne.trace") << EntêteTrace(Quand.Mur - 48h) << "coup";
  last_write_time(Dossier.Chemin() / "ligne.trace", std::filesystem::file_time_type::clock::now() - 48h);
  // A day more isn't kept, and an hour, for where the clock was put back meanwhile.
  for (const std::string& Un : {Gardé, Nom(31 * 24h + 1h), std::string("ligne-x.trace"), std::string("autre")})
    std::ofstream(Dossier.Chemin() / Un) << "à moi";
  std::string Dit;
  FichierTrace Trace(Dossier.Chemin(), [&](const std::string& Texte) { Dit += Texte + "\n"; });
  const auto Écrire = [&](const std::string& Texte) {
    Trace.Écrire({Quand, MessageLiaison::Source::Terminal, Octets(Texte), "un\tmot", true});
  };
  Écrire("\6\x81");
  EXPECT_EQ(Fichiers(), (std::set<std::string>{"ligne.trace", Nom(48h), Gardé, "ligne-x.trace", "autre"}));
  EXPECT_TRUE(Lire("ligne.trace").starts_with(EntêteTrace(Quand.Mur))) << Lire("ligne.trace");
  EXPECT_TRUE(Lire("ligne.trace").ends_with("\tRG80\t<ACK><81>\t! un\tmot\n")) << Lire("ligne.trace");
  EXPECT_EQ(std::filesystem::status(Dossier.Chemin() / "ligne.trace").permissions(), std::filesystem::perms(0600));

  LimiterFichiers(file_size(Dossier.Chemin() / "ligne.trace") + 5);
  for (int Fois = 0; Fois < 3; ++Fois, Quand.Depuis += 61s) Écrire("perdu");
  LimiterFichiers(RLIM_INFINITY);
  EXPECT_EQ(std::count(Dit.begin(), Dit.end(), '\n'), 1) << Dit;
  Écrire("encore");
  EXPECT_NE(Lire("ligne.trace").find("\n" + EntêteTrace(Quand.Mur) + "# il manque ici 3 messages"), std::string::npos);

  std::ofstream(Dossier.Chemin() / "tarvel.ini") << "[Tarvel]\n";
  FichierTrace Faux(Dossier.Chemin() / "tarvel.ini", [&](const std::string& Texte) { Dit = Texte; });
  Faux.Écrire({Quand, MessageLiaison::Source::Terminal, Octets("x"), ""});
  EXPECT_NE(Dit.find("n'est pas une trace"), std::string::npos) << Dit;
  EXPECT_EQ(Lire("tarvel.ini"), "[Tarvel]\n");
}

}  // namespace Ombrey::Essais
