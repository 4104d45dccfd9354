// Each window of the station as hand and keyboard find it: what a click on each of its buttons does, and the way that
// the Tab key takes.
#include "host/windows/qt_host_window.h"
#include "monitor/monitoring_window.h"
#include "platform/qt/qt_port_dialog.h"
#include "tests/qt/qt_fixture.h"
#include "transfer/transfer_window.h"

namespace Ombrey::Essais {

std::string Nom(const QWidget& Un) {
  for (const QString& Texte :
       {Un.property("text").toString(), Un.property("currentText").toString(), Un.accessibleName()})
    if (!Texte.isEmpty()) return QString(Texte).remove('&').toStdString();
  return Un.metaObject()->className() + 1;
}

std::string Tour(const QWidget& Fenêtre) {
  std::string Noms;
  const QWidget* const Premier = Fenêtre.focusWidget();
  for (int Fois = 0; Fois < 30 && (Fois == 0 || Fenêtre.focusWidget() != Premier); ++Fois) {
    Noms += Nom(*Fenêtre.focusWidget()) + "|";
    QTest::keyClick(Fenêtre.focusWidget(), Qt::Key_Tab);
  }
  return Noms;
}

/// Windows whose buttons write down what they do.
struct Commandes : BureauAvecBase {
  Commandes() {
    LesVraies.RépondreSeul();
    LesVraies.Observer({{},
                        [&](const std::string& Titre, const std::string&) {
                          Trace += Titre;
                          return "";
                        },
                        {}});
    État.DernierNoChargement = "7";
    Services.SurInterrogation = [&] { Trace += "interroge"; };
    Services.SurCumuls = [&] { Trace += "cumule"; };
    Services.SurTransmission = [&](auto, auto&) { return Trace += "transmet ", "refus"; };
  }
  void Principale(const Geste& Faire, int Page) {
    Tarvel::Aperçu Aperçu;
    FenêtrePrincipaleQt Fenêtre(LesVraies.Contexte(), {"cave.db"}, LesRéglages, Aperçu);
    Fenêtre.Raccorder({[&] { Trace += "bouton"; }, {}, {}, {}});
    Fenêtre.OffrirBouton(QIcon(), "Comm. au RG80");
    Aperçu.NoterRetrait("RG80 Ombrey", "Erreur de check-sum");
    Fenêtre.show();
    Le<QTabWidget>(Fenêtre).setCurrentIndex(Page);
    Vider();
    Faire(Fenêtre);
    if (Page == 5) Trace += " " + Le<QTabWidget>(Fenêtre).tabText(5).toStdString();
  }
  void Suivre(const Geste& Faire, const std::string& Erreur) {
    FSuiviChargnt Suivi(État, Services);
    if (!Erreur.empty()) Suivi.AjouterErreur(Erreur);
    Dès("Liste des chargements", Faire);
    Suivi.Afficher();
  }
  void Transférer(const Geste& Faire) {
    FChargntDonnées Transfert(État);
    Dès("Chargement des données vers le RG80", Faire);
    Transfert.Afficher(Services);
  }
  void Régler(const Geste& Faire) {
    RéglagesPort Ligne{"COM2:", "9600", "N", "1", "8"};
    Dès("Port du RG80", Faire);
    if (Questionnaire.Demander(Ligne, [&](auto&) { return Trace += "essaie", ""; })) Trace += " garde";
  }
  /// What the button of this rank does; the result is how many there are.
  qsizetype Presser(QWidget& Fenêtre, qsizetype Rang) {
    QList<QAbstractButton*> Boutons;
    for (auto* Un : Fenêtre.findChildren<QAbstractButton*>())
      if (Un->isVisible() && Un->isEnabled() && !Nom(*Un).starts_with("ToolButton")) Boutons << Un;
    const QPointer<QAbstractButton> Cliqué = Boutons[Rang];
    const bool Coché = Cliqué->isChecked();
    Trace = Nom(*Cliqué) + ": ";
    QTest::mouseClick(Cliqué, Qt::LeftButton, {}, {8, Cliqué->height() / 2});
    Vider();
    if (Cliqué->isCheckable() && Cliqué->isChecked() != Coché) Trace += Coché ? "décoche" : "coche";
    if (Fenêtre.isVisible())
      Cadre(Fenêtre);
    else
      Trace += " ferme";
    return Boutons.size();
  }

  QuestionnairePortQt Questionnaire{LesVraies.Contexte(), [] { return std::vector<PortTrouvé>(); }, ChoixUsuels()};
};

TEST_F(Commandes, EachButtonOfEachWindowDoesItsWorkAndTabGoesRoundThemAll) {
  // The window, the way of the Tab key, and what each button does.
  // clang-format off
  const std::tuple<std::function<void(const Geste&)>, std::string, std::string> Table[] = {
      {[&](const Geste& Faire) { Principale(Faire, 0); },
       "TabBar|Chercher dans la journée|Tous les sites|Chargements du jour|Sommes par appellation et classe|",
       "Comm. au RG80: bouton|Tous les sites: coche|"},
      {[&](const Geste& Faire) { Principale(Faire, 5); },
       "TabBar|Messages que personne n'a lus|Tout est lu|", "Comm. au RG80: bouton À l&ire (1)|Tout est lu:  À l&ire|"},
      {[&](const Geste& Faire) { Suivre(Faire, ""); },
       "Chargements du jour|Messages et erreurs|Messages|RG80 en attente des quotas|RG80 ?|",
       "RG80 ?: interroge|RG80 en attente des quotas: cumule|Masquer:  ferme|"},
      {[&](const Geste& Faire) { Suivre(Faire, "panne"); },
       "Chargements du jour|Messages et erreurs|Erreurs|Imprimer|", "Imprimer: Impression des erreurs|Masquer:  ferme|"},
      {[&](const Geste& Faire) { Transférer(Faire); },
       "Appelations|Coopérateurs|Badges|Groupements|Observations|Transférer|Fermer|",
       "Appelations: décoche|Coopérateurs: décoche|Badges: décoche|Groupements: décoche|Observations: décoche|"
       "Transférer: transmet Transmission des données|Fermer:  ferme|"},
      {[&](const Geste& Faire) { Régler(Faire); },
       "COM2:|9600|N|1|8|Enregistrer|Essayer|Annuler|", "Essayer: essaie|Enregistrer:  ferme garde|Annuler:  ferme|"},
  };
  // clang-format on
  for (const auto& [Montrer, OrdreVoulu, EffetsVoulus] : Table) {
    SCOPED_TRACE(OrdreVoulu);
    std::string Ordre, Effets;
    qsizetype Nombre = 1;
    for (qsizetype Rang = 0; Rang < Nombre; ++Rang) {
      Trace.clear();
      Montrer([&](QWidget& Fenêtre) {
        if (Rang == 0) Ordre = Tour(Fenêtre);
        Nombre = Presser(Fenêtre, Rang);
      });
      Effets += Trace + "|";
    }
    EXPECT_EQ(Ordre, OrdreVoulu);
    EXPECT_EQ(Effets, EffetsVoulus);
  }
}

}  // namespace Ombrey::Essais
