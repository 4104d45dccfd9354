// Each window of the station as hand and keyboard find it: what a click on each of its buttons does, and the way that
// the Tab key takes.
#include "host/windows/qt_host_window.h"
#include "monitor/monitoring_window.h"
#include "platform/qt/qt_port_dialog.h"
#include "tests/qt/qt_fixture.h"
#include "transfer/transfer_window.h"

namespace Ombrey::Essais {

std::string Nom(const QWidget& Un) {
  if (qobject_cast<const QDateEdit*>(&Un)) return "date";
  for (const QString& Texte :
       {Un.property("text").toString(), Un.property("currentText").toString(), Un.accessibleName()})
    if (!Texte.isEmpty()) return QString(Texte).remove('&').toStdString();
  return Un.metaObject()->className() + 1;
}

/// The way of the Tab key from what has the keys first.
std::string Tour(QWidget& Fenêtre) {
  std::string Noms;
  QList<QWidget*> Vus;
  for (int Fois = 0; Fois < 30; ++Fois) {
    QWidget* const Ici = Fenêtre.focusWidget() ? Fenêtre.focusWidget() : &Fenêtre;
    if (Vus.size() > 1 && Ici == Vus.first()) break;
    if (Vus.isEmpty() || Ici != Vus.last()) Noms += Nom(*Vus.emplaceBack(Ici)) + "|";
    QTest::keyClick(Ici, Qt::Key_Tab);
  }
  return Noms;
}

/// The letters that Alt goes with, of all that is in sight.
QStringList Lettres(const QWidget& Fenêtre) {
  QStringList Libellés, Toutes;
  for (const auto* Un : Fenêtre.findChildren<QWidget*>())
    Libellés << (Un->isVisible() ? Un->property("text").toString() : "");
  for (const auto* Un : Fenêtre.findChildren<QMenu*>()) Libellés << Un->title();
  for (const auto* Un : Fenêtre.findChildren<QTabBar*>())
    for (int Rang = 0; Rang < Un->count(); ++Rang) Libellés << Un->tabText(Rang);
  for (const QString& Libellé : Libellés) Toutes << QKeySequence::mnemonic(Libellé).toString();
  return Toutes.filter("Alt");
}

/// Windows whose buttons write down what they do.
struct Commandes : BureauAvecBase {
  Commandes() {
    ÉcrireProgramme("trap 'exit 1' INT\nwhile :; do sleep 0.02; done");
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
  /// The main window with a page in front, or what the entry of this name in its menu opens.
  void Principale(const Geste& Faire, int Page, const char* Entrée) {
    Tarvel::Aperçu Aperçu;
    const JournalLiaison Journal;
    FenêtrePrincipaleQt Fenêtre(LesVraies.Contexte(), {"cave.db"}, LesRéglages, Aperçu);
    Fenêtre.Présenter([] { return "version"; }, Travaux);
    Fenêtre.Raccorder({[&] { Trace += "bouton"; }, {}, {}, {}});
    Fenêtre.OffrirBouton(QIcon(), "Comm. au RG80");
    Fenêtre.SuivreLiaison(Journal);
    Aperçu.NoterRetrait("RG80 Ombrey", "Erreur de check-sum");
    Fenêtre.show();
    auto& Pages = Le<QTabWidget>(Fenêtre);
    Pages.setTabVisible(Page, true);  // that of the stations comes with the second of them
    Pages.setCurrentIndex(Page);
    for (QAction* Une : Fenêtre.findChildren<QAction*>())
      if (Une->text().startsWith(Entrée)) Une->trigger();
    Vider();
    QWidget* Devant = &Fenêtre;
    for (QWidget* Une : QApplication::topLevelWidgets())
      if (Une->isVisible() && Une != &Fenêtre) Devant = Une;
    Faire(*Devant);
    if (Page == 6) Trace += " " + Pages.tabText(6).toStdString();
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
    auto* const Cliqué = Boutons.value(Rang);
    const QPointer<QWidget> Tenue(&Fenêtre);
    const bool Coché = Cliqué && Cliqué->isChecked();
    QApplication::clipboard()->clear();
    Trace = Cliqué ? Nom(*Cliqué) + ": " : "Échap: ";
    Cliqué ? QTest::mouseClick(Cliqué, Qt::LeftButton, {}, {8, Cliqué->height() / 2})
           : QTest::keyClick(&Fenêtre, Qt::Key_Escape);
    Vider();
    if (!Tenue || !Fenêtre.isVisible()) {
      Trace += " ferme";
      return Boutons.size();
    }
    if (Cliqué && Cliqué->isChecked() != Coché) Trace += Coché ? "décoche" : "coche";
    Trace += QApplication::clipboard()->text().toStdString();
    if (Fenêtre.findChild<QFileDialog*>()) Trace += "demande un nom";
    for (const auto* Un : Fenêtre.findChildren<QLabel*>())
      if (Un->isVisible() && Un->accessibleName() == "Avancement") Trace += Un->text().toStdString();
    Cadre(Fenêtre);
    return Boutons.size();
  }
  /// The window, the way of the Tab key, and what each button does.
  using Rangée = std::tuple<std::function<void(const Geste&)>, std::string, std::string>;
  void Parcourir(const std::vector<Rangée>& Table) {
    for (const auto& [Montrer, OrdreVoulu, EffetsVoulus] : Table) {
      SCOPED_TRACE(OrdreVoulu);
      std::string Ordre, Effets;
      qsizetype Nombre = 1;
      for (qsizetype Rang = 0; Rang < Nombre; ++Rang) {
        Trace.clear();
        Montrer([&](QWidget& Fenêtre) {
          if (Rang == 0) Ordre = Tour(Fenêtre);
          EXPECT_EQ(Lettres(Fenêtre).removeDuplicates(), 0) << Lettres(Fenêtre).join('|').toStdString();
          Nombre = Presser(Fenêtre, Rang);
        });
        Effets += Trace + "|";
      }
      EXPECT_EQ(Ordre, OrdreVoulu);
      EXPECT_EQ(Effets, EffetsVoulus);
    }
  }

  QuestionnairePortQt Questionnaire{LesVraies.Contexte(), [] { return std::vector<PortTrouvé>(); }, ChoixUsuels()};
};

TEST_F(Commandes, EachButtonOfTheStationsWindowsDoesItsWorkAndTabGoesRoundThemAll) {
  const auto Page = [this](int Rang, const char* Entrée = "none") {
    return [=, this](const Geste& Faire) { Principale(Faire, Rang, Entrée); };
  };
  // clang-format off
  Parcourir({
      {Page(0), "TabBar|Chercher dans la journée|Tous les sites|Chargements du jour|Sommes par appellation et classe|",
       "Comm. au RG80: bouton|Tous les sites: coche|"},
      {Page(1), "TabBar|Chargements refusés|Le chargement refusé|", "Comm. au RG80: bouton|"},
      {Page(2), "TabBar|Archive|", "Comm. au RG80: bouton|"},
      {Page(3), "TabBar|Ce qui passe sur la ligne|Fautes seules|Enregistrer la trace…|",
       "Comm. au RG80: bouton|Fautes seules: coche|Enregistrer la trace…: demande un nom|"},
      {Page(4), "TabBar|Journal|", "Comm. au RG80: bouton|"},
      {Page(5), "TabBar|Stations|", "Comm. au RG80: bouton|"},
      {Page(6), "TabBar|Messages que personne n'a lus|Tout est lu|",
       "Comm. au RG80: bouton À l&ire (1)|Tout est lu:  À l&ire|"},
      {Page(0, "&Bordereau"), "date|ComboBox|Imprimer|Enregistrer en PDF…|Fermer|",
       "Fermer:  ferme|Imprimer: En cours ; la station continue.|Enregistrer en PDF…: demande un nom|"},
      {Page(0, "&Exporter"), "date|date|Enregistrer en CSV…|Fermer|",
       "Fermer:  ferme|Enregistrer en CSV…: demande un nom|"},
      {Page(0, "&Sauvegarder"), "Choisir le fichier…|Fermer|", "Fermer:  ferme|Choisir le fichier…: demande un nom|"},
      {Page(0, "&Diagnostic"), "Diagnostic|Copier|Fermer|", "Copier: Diagnostic en cours ; la station continue…|Fermer:  ferme|"},
      {Page(0, "À &propos"), "OK|", "OK:  ferme|"},
      {Page(0, "&Guide"), "TextBrowser|", "Échap:  ferme|"}});
  // clang-format on
}

TEST_F(Commandes, EachButtonOfThePlugInsWindowsLikewise) {
  // clang-format off
  Parcourir({
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
       "COM2:|9600|N|1|8|Enregistrer|Essayer|Annuler|", "Essayer: essaie|Enregistrer:  ferme garde|Annuler:  ferme|"}});
  // clang-format on
}

}  // namespace Ombrey::Essais
