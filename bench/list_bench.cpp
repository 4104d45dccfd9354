// What a long day costs the list of loads: 2,000 of them read again, as texts and in the window.
#include <benchmark/benchmark.h>

#include <cmath>
#include <functional>
#include <stdexcept>
#include <string>

#ifdef AVEC_FENETRES
#include <QtWidgets>

#include "host/windows/qt_host_window.h"
#include "monitor/monitoring_window.h"
#include "platform/qt/qt_windows.h"
#endif

#include "base/regional_forms.h"
#include "bench/cooperative.h"
#include "common/context.h"
#include "contracts/phrases.h"
#include "monitor/load_list.h"
#include "platform/system/settings_files.h"

namespace Ombrey::Mesures {
namespace {

constexpr std::int64_t Membres = 1'000;
constexpr std::int64_t Chargements = 2'000;

/// A cooperative with a long day behind it.
struct Journée : Coopérative {
  explicit Journée(bool SurServeur = false) : Coopérative(false, SurServeur) {
    AjouterMembres(Membres);
    Connexion->ExécuterTout(
        "INSERT INTO Qualité VALUES ('01', 'Saine');"
        "INSERT INTO Groupement SELECT DISTINCT IdGrp, 'Côteau ' || IdGrp FROM Métayage");
    const double Minuit = std::floor(NuméroDeJour(Poste.Plateforme().Système().Maintenant()));
    const std::string Ajout =
        "INSERT INTO Chargement (CodeSite, NoChargement, DateCh, Métayage, Sélection, Qualité, Degré, Masse)"
        " VALUES ('1', ?1, " +
        TexteNombre(Minuit, {'.'}) +
        " + ?1 / 2400.0, CAST(1 + ?1 * 7 % 1000 AS TEXT), '05', '01', 12.5, 1000 + ?1 % 900)";
    Remplir(Ajout.c_str(), Chargements);
  }
};

void ListRead(benchmark::State& État) {
  if (État.range(0) != 0 && !AServeurDesMesures()) return État.SkipWithError("bench/server.sh measures this");
  Journée Cave(État.range(0) != 0);
  for ([[maybe_unused]] auto Tour : État) {
    const auto Tableau = LireChargementsDuJour(*Cave.Base->BaseDAO(), Régional{});
    if (Tableau.Rangées.size() != Chargements) État.SkipWithError("not every load is in the list");
  }
}
BENCHMARK(ListRead)
    ->Name("list of 2,000 loads, read, on a server")
    ->Arg(0)
    ->Arg(1)
    ->Iterations(50)
    ->Unit(benchmark::kMillisecond);

#ifdef AVEC_FENETRES
class CanalMuet final : public ICanalOpérateur {
 public:
  void AjouterMessage(const std::string&, bool) override {}
  void AjouterErreur(const std::string&) override {}
  void Rafraîchir() override {}
  [[nodiscard]] bool EstVisible() const override { return false; }
  void Afficher() override {}
};

class SansTerminal final : public IServicesLiaison {
 public:
  void Retard_FinTempo(const std::string&) override {}
  void MettreAJourCumuls(std::string&) override {}
  bool TesterConnexion() override { return false; }
  std::string TransmettreLignes(std::int32_t, std::vector<Octets>&) override { return {}; }
};

void OuvrirQt() {
  setenv("QT_QPA_PLATFORM", "offscreen", 0);
  static int Nombre = 1;
  static char Nom[] = "ombrey_bench";
  static char* Arguments[] = {Nom, nullptr};
  static const QApplication Application(Nombre, Arguments);
}

/// In the window, painting included.
void ListRefreshed(benchmark::State& État) {
  OuvrirQt();
  Journée Cave;
  BoucleQt Boucle;
  FenêtresQt Fenêtres(Boucle, Cave.Poste.Dossier());
  PlateformeMachine Plateforme(Boucle, Fenêtres, nullptr, Cave.Poste.Dossier() / "windows",
                               Cave.Poste.Dossier() / "windows.ini");
  CanalMuet Canal;
  ÉtatPartagé LÉtat(Plateforme, Canal);
  LÉtat.BaseDeD = Cave.Base;
  SansTerminal Services;
  FSuiviChargnt Suivi(LÉtat, Services);
  QTableView* Grille = nullptr;
  for (QWidget* Fenêtre : QApplication::topLevelWidgets()) {
    Fenêtre->show();
    if (auto* const Sienne = Fenêtre->findChild<QTableView*>()) Grille = Sienne;
  }
  for ([[maybe_unused]] auto Tour : État) {
    Suivi.Rafraîchir();
    QApplication::processEvents();
    if (Grille == nullptr || Grille->model()->rowCount() != Chargements)
      État.SkipWithError("not every load is in sight");
  }
}
BENCHMARK(ListRefreshed)
    ->Name("list of 2,000 loads, refreshed in its window")
    ->Iterations(50)
    ->Unit(benchmark::kMillisecond);

/// From the word that a load is in until the main window has painted it on its page of the day.
void NewLoadShown(benchmark::State& État) {
  OuvrirQt();
  Journée Cave;
  BoucleQt Boucle;
  FenêtresQt Fenêtres(Boucle, Cave.Poste.Dossier());
  RéglagesFichier Réglages(Cave.Poste.Dossier() / "fenêtre.ini");
  Tarvel::Aperçu Aperçu;
  FenêtrePrincipaleQt Fenêtre(Fenêtres.Contexte(), {"cave.db"}, Réglages, Aperçu);
  Fenêtre.show();
  Fenêtre.Suivre(Cave.Base);
  const QTableView* Grille = nullptr;
  for (const auto* Une : Fenêtre.findChildren<QTableView*>())
    if (Une->isVisible() && (Grille == nullptr || Une->model()->rowCount() > Grille->model()->rowCount())) Grille = Une;
  std::int64_t Numéro = Chargements;
  for ([[maybe_unused]] auto Tour : État) {
    État.PauseTiming();
    while (Boucle.Pomper({})) continue;
    const std::string Texte = std::to_string(++Numéro);
    Cave.Connexion->ExécuterTout(
        "INSERT INTO Chargement (CodeSite, NoChargement, DateCh, Métayage, Sélection, Qualité, Degré, Masse)"
        " SELECT '1', " +
        Texte + ", max(DateCh) + 0.00001, '7', '05', '01', 12.5, 1310 FROM Chargement");
    État.ResumeTiming();
    Fenêtre.Dire(Phrase::ChargementAjouté + Texte);
    while (Boucle.Pomper({})) continue;
    if (Grille->model()->index(0, 1).data().toString().toStdString() != Texte)
      return État.SkipWithError("the load isn't on top");
  }
}
BENCHMARK(NewLoadShown)
    ->Name("list of 2,000 loads, a new one shown in the main window")
    ->Iterations(50)
    ->Unit(benchmark::kMillisecond);

/// A thousand loads under « Refusés », or boxes under « À lire »: one more, until it is painted.
void OneMoreShown(benchmark::State& État, const char* Onglet, const std::function<void(Tarvel::Aperçu&, int)>& Noter) {
  constexpr int Rangées = 1'000;
  OuvrirQt();
  Journée Cave;
  BoucleQt Boucle;
  FenêtresQt Fenêtres(Boucle, Cave.Poste.Dossier());
  RéglagesFichier Réglages(Cave.Poste.Dossier() / "fenêtre.ini");
  Tarvel::Aperçu Aperçu;
  Aperçu.Ouvrir(Cave.Poste.Dossier(), Cave.Poste.Dossier());
  for (int Rang = 0; Rang < Rangées; ++Rang) Noter(Aperçu, Rang);
  FenêtrePrincipaleQt Fenêtre(Fenêtres.Contexte(), {"cave.db"}, Réglages, Aperçu);
  Fenêtre.show();
  auto& Pages = *Fenêtre.findChild<QTabWidget*>();
  for (int Rang = 0; Rang < Pages.count(); ++Rang)
    if (Pages.tabText(Rang).remove('&').startsWith(QString::fromUtf8(Onglet))) Pages.setCurrentIndex(Rang);
  int Rang = Rangées;
  for ([[maybe_unused]] auto Tour : État) {
    État.PauseTiming();
    while (Boucle.Pomper({})) continue;
    État.ResumeTiming();
    Noter(Aperçu, Rang++);
    while (Boucle.Pomper({})) continue;
    if (Pages.currentWidget()->findChild<QTableView*>()->model()->rowCount() != Rang)
      return État.SkipWithError("not every row is in sight");
  }
}
BENCHMARK_CAPTURE(OneMoreShown, refused, "Refusés",
                  [](Tarvel::Aperçu& Aperçu, int Rang) {
                    Aperçu.NoterLigne(Phrase::TrameEnÉchec + ("degré du chargement n° " + std::to_string(Rang)));
                  })
    ->Name("1,000 refused loads, one more shown in the main window")
    ->Iterations(50)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(OneMoreShown, unread, "À lire",
                  [](Tarvel::Aperçu& Aperçu, int Rang) {
                    Aperçu.NoterRetrait("RG80 Ombrey", "Message " + std::to_string(Rang));
                  })
    ->Name("1,000 unread boxes, one more shown in the main window")
    ->Iterations(50)
    ->Unit(benchmark::kMillisecond);
#endif

}  // namespace
}  // namespace Ombrey::Mesures
