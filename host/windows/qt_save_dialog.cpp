// A file to be written, named by the operator.
#include "host/windows/qt_save_dialog.h"

#include <QDateTime>
#include <QFileDialog>
#include <QFileIconProvider>
#include <QPointer>
#include <QTimer>
#include <utility>

#include "base/files.h"
#include "host/new_file.h"
#include "platform/qt/qt_message_box.h"

namespace Ombrey {

namespace {
/// By the name alone. Qt's own look into the files of the folder, and a file of the base that is closed again takes all
/// locks of this process on it away: another program would then replace the base under the station at work.
class IcônesSansLecture : public QObject, public QFileIconProvider {
 public:
  using QFileIconProvider::icon;
  using QObject::QObject;
  [[nodiscard]] QIcon icon(const QFileInfo& Lequel) const override { return icon(Lequel.isDir() ? Folder : File); }
  [[nodiscard]] QString type(const QFileInfo& Lequel) const override {
    return Lequel.isDir() ? QStringLiteral("Dossier") : Lequel.suffix();
  }
};
}  // namespace

void ChoisirFichier(QWidget* Parent, const FichierDemandé& Quoi,
                    std::function<void(const std::filesystem::path&)> Prendre) {
  auto* const Dialogue = new QFileDialog(Parent, Quoi.Titre);
  Dialogue->setAttribute(Qt::WA_DeleteOnClose);
  // Qt's own confirmation would wait in a loop of Qt's own, and the line with it.
  Dialogue->setOptions(QFileDialog::DontConfirmOverwrite | QFileDialog::DontUseNativeDialog);
  Dialogue->setIconProvider(new IcônesSansLecture(Dialogue));
  Dialogue->setAcceptMode(QFileDialog::AcceptSave);
  Dialogue->setFileMode(QFileDialog::AnyFile);
  Dialogue->setDefaultSuffix(Quoi.Suffixe);
  Dialogue->setNameFilter(QStringLiteral("*.") + Quoi.Suffixe);
  Dialogue->selectFile(Quoi.Nom + QDateTime::currentDateTime().toString(QStringLiteral("-yyyy-MM-dd-HHmmss.")) +
                       Quoi.Suffixe);
  QObject::connect(Dialogue, &QFileDialog::fileSelected, Dialogue,
                   [Prendre = std::move(Prendre)](const QString& Choisi) { Prendre(Chemin(Choisi.toStdString())); });
  QTimer::singleShot(0, Dialogue, &QWidget::show);  // a turn of the loop for making it, another for showing it
}

void EnregistrerSous(QWidget* Parent, const ContexteQt& Contexte, const FichierDemandé& Quoi,
                     std::function<std::string(const std::filesystem::path&)> Écrire) {
  const std::string Titre = Quoi.Titre.toStdString();
  ChoisirFichier(
      Parent, Quoi, [&Contexte, Tenu = QPointer(Parent), Titre, Écrire = std::move(Écrire)](const auto& Fichier) {
        Contexte.Boucle.Poser([&Contexte, Tenu, Titre, Écrire, Fichier] {
          bool EstÉcrit = false;
          const std::string Dit = Tarvel::ÉcrireNouveau(Fichier, [&](const std::filesystem::path& Celui) {
            std::string Où = Écrire(Celui);
            EstÉcrit = true;
            return Où;
          });
          MontrerBoîte(Contexte, Tenu, EstÉcrit ? SigneBoîte::Information : SigneBoîte::Avertissement, Dit, Titre);
        });
      });
}

}  // namespace Ombrey
