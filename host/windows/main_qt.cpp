// The module of the windows: the station as the operator sees it on a screen.
#include <QApplication>
#include <QIcon>
#include <QLibraryInfo>
#include <QTranslator>
#include <chrono>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>

#include "contracts/host.h"
#include "contracts/toolkit.h"
#include "host/about.h"
#include "host/edition.h"
#include "host/overview.h"
#include "host/side_work.h"
#include "host/windows/qt_host_window.h"
#include "host/windows/qt_paper.h"
#include "host/windows_module.h"
#include "platform/loop/loop.h"
#include "platform/loop/witnesses.h"
#include "platform/qt/qt_loop.h"
#include "platform/qt/qt_port_dialog.h"
#include "platform/qt/qt_windows.h"
#include "platform/serial/line_journal.h"
#include "platform/serial/port_settings.h"
#include "platform/system/settings_files.h"

namespace Tarvel {
namespace {

constexpr int SansÉcran = 2;
/// A new box takes no answer for so long.
constexpr std::chrono::milliseconds RépitBoîtes(500);

/// Without a display Qt knows no other way than to abort; nothing of the station has begun by then.
void DireÉchecDeQt(QtMsgType Genre, const QMessageLogContext& /*Lieu*/, const QString& Texte) {
  if (Genre != QtFatalMsg) return;
  std::fprintf(stderr, "tarvel : l'écran ne répond pas ; l'option --console s'en passe\n%s\n",
               Texte.toUtf8().constData());
  std::_Exit(SansÉcran);
}

/// Qt's application object, made as a program without arguments of its own.
class ApplicationQt {
 public:
  ApplicationQt() {
    const QtMessageHandler Avant = qInstallMessageHandler(DireÉchecDeQt);
    Application_ = std::make_unique<QApplication>(Nombre_, Arguments_);
    qInstallMessageHandler(Avant);
    // What Qt says itself, such as in the choice of a file, where the machine has its translation.
    if (Français_.load(QLocale(QLocale::French), "qtbase", "_", QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
      QApplication::installTranslator(&Français_);
    // Qt brings all the icons that are shown; a look into the desktop's themes held the loop up for 45 ms a dialog. An
    // empty list would be the usual one again.
    for (const auto Chercher : {&QIcon::setThemeSearchPaths, &QIcon::setFallbackSearchPaths})
      Chercher({QStringLiteral(":/aucun")});
    std::setlocale(LC_NUMERIC, "C");  // Qt took the user's; numbers in files and queries have a point
    QApplication::setQuitOnLastWindowClosed(false);
  }

 private:
  int Nombre_ = 1;
  char Nom_[7] = "tarvel";
  char* Arguments_[2] = {Nom_, nullptr};
  QTranslator Français_;
  std::unique_ptr<QApplication> Application_;
};

class ÉditionFenêtrée final : public IÉdition {
 public:
  explicit ÉditionFenêtrée(const Options& Choisies)
      : Fenêtres_(Boucle_, Choisies.Dossier),
        Questionnaire_(Fenêtres_.Contexte(), &Ombrey::PortsDeLaMachine, Ombrey::ChoixUsuels()),
        Réglages_(FichierRéglages()),
        Travaux_(Boucle_, Choisies),
        Principale_(Fenêtres_.Contexte(), {Choisies.NomBase(), !FichierDeBase(Choisies.Base)}, Réglages_, Aperçu_) {
    if (Choisies.SansOpérateur) Fenêtres_.RépondreSeul();
    Fenêtres_.RéglerBoîtes(Choisies.DuréeBoîtes, RépitBoîtes);
    Fenêtres_.Observer(Aperçu_.Témoins());
    Fenêtres_.SurÉchec([this](const std::string& Description) { Dire(Description); });
    Aperçu_.NoterVersion("Qt", qVersion());
    Principale_.Présenter([this, &Choisies] { return TexteÀPropos(Choisies, Aperçu_); }, Travaux_);
  }

  Ombrey::IBoucle& Boucle() override { return Boucle_; }
  Ombrey::IFenêtres& Fenêtres() override { return Fenêtres_; }
  Ombrey::IQuestionnairePort& Questionnaire() override { return Questionnaire_; }
  Aperçu& LAperçu() override { return Aperçu_; }
  std::filesystem::path FichierRéglages() const override { return Ombrey::FichierRéglagesUtilisateur(); }
  void Raccorder(IGestesStation& Gestes) override {
    Principale_.Raccorder({[&Gestes] { Gestes.Bouton(); }, [&Gestes] { Gestes.Menu(); },
                           [&Gestes] { Gestes.Configurer(); }, [&Gestes] { Gestes.Finir(); }});
    Principale_.show();
  }
  void Suivre(std::shared_ptr<Ombrey::IBaseDeD> Base) override { Principale_.Suivre(std::move(Base)); }
  void MontrerNouveau() override { Principale_.Actualiser(); }
  void SuivreLiaison(const Ombrey::JournalLiaison& Journal) override { Principale_.SuivreLiaison(Journal); }
  /// Who started the station by its icon sees no stream.
  void Échouer(const std::string& Raison) override {
    Fenêtres_.RéglerBoîtes(std::chrono::milliseconds(0), RépitBoîtes);
    Fenêtres_.Boîte(Raison, "Tarvel – réception", Ombrey::BoutonsBoîte::Ok);
  }
  void OffrirBouton(const std::string& Infobulle) override {
    Principale_.OffrirBouton(Fenêtres_.DernièreImage(), Infobulle);
    QApplication::setWindowIcon(Fenêtres_.DernièreImage());
  }
  void OffrirMenu(const std::string& Texte) override { Principale_.OffrirMenu(Texte); }
  void Dire(const std::string& Texte) override { Principale_.Dire(Texte); }
  void Finir() override { Fenêtres_.Finir(); }
  bool Avancer(const Ombrey::Avancement& Où) override { return Fenêtres_.Avancer(Où); }
  void SePrésenter() override { Principale_.SePrésenter(); }

 private:
  ApplicationQt Application_;
  Ombrey::BoucleQt Boucle_;
  Ombrey::FenêtresQt Fenêtres_;
  Ombrey::QuestionnairePortQt Questionnaire_;
  Ombrey::RéglagesFichier Réglages_;
  Aperçu Aperçu_;
  TravauxÀCôté Travaux_;  ///< goes on behind the window's end
  Ombrey::FenêtrePrincipaleQt Principale_;
};

}  // namespace
}  // namespace Tarvel

extern "C" [[gnu::visibility("default")]] void Tarvel_CreerEditionFenetree(const Tarvel::Options& Choisies,
                                                                           std::unique_ptr<Tarvel::IÉdition>& Édition) {
  Édition = std::make_unique<Tarvel::ÉditionFenêtrée>(Choisies);
}

/// On Qt's platform without a screen; its program ends behind it.
static Tarvel::ApplicationQt SansFenêtres() {
  setenv("QT_QPA_PLATFORM", "offscreen", 1);
  return {};
}

extern "C" [[gnu::visibility("default")]] void Tarvel_EcrirePdf(const std::string& Html, bool Ticket,
                                                                const std::filesystem::path& Fichier) {
  const Tarvel::ApplicationQt Application = SansFenêtres();
  Ombrey::ÉcrirePdf(Html, Ticket ? QPageSize::A6 : QPageSize::A4, Fichier);
}

extern "C" [[gnu::visibility("default")]] void Tarvel_Imprimer(const std::string& Html, std::string& Imprimante) {
  const Tarvel::ApplicationQt Application = SansFenêtres();
  Imprimante = Ombrey::ImprimerSurPapier(Html);
}
