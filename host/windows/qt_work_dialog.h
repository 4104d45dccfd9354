// A dialog that has something written or printed beside the station.
#pragma once

#include <QDialog>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/side_work.h"
#include "host/windows/qt_save_dialog.h"
#include "platform/qt/qt_window.h"

namespace Ombrey {

/// What the windows need for work beside the station; both outlive them.
struct Atelier {
  const ContexteQt& Contexte;
  Tarvel::TravauxÀCôté& Travaux;
};

/// Shown beside the station, which goes on. Tells what is under way, offers to give it up, and says in a box how it has
/// ended.
class DialogueTravail : public QDialog {
 public:
  DialogueTravail(QWidget* Fenêtre, const Atelier& LeSien, const QString& Titre);

  /// Esc, « Fermer » and the frame give up what is under way, and close the dialog otherwise.
  void reject() override;

 protected:
  void showEvent(QShowEvent* Événement) override;
  [[nodiscard]] QFormLayout& Saisie() const { return *Saisie_; }
  /// Another button, which runs Faire in the pump; what it raises is told in a box.
  void Offrir(const char* Texte, std::function<void()> Faire);
  void Poser(std::function<void()> Faire);
  /// Mots: the command line of the work.
  void Mener(const std::vector<std::string>& Mots);
  /// Has a new file named, whose path comes into Mots behind so many of them, and written.
  void Écrire(const char* Nom, const char* Suffixe, std::vector<std::string> Mots, std::ptrdiff_t Place = 1);

 private:
  void Occuper(bool Oui);
  void Entendre(const std::string& Ligne);
  void Achever(bool EstRéussi);

  const Atelier LeSien_;
  QWidget* Haut_;
  QFormLayout* Saisie_;
  QLabel* État_;
  QDialogButtonBox* Boutons_;
  QPushButton* Fermer_;
  std::optional<std::size_t> EnCours_;
  std::string Dit_;  ///< what is for the box
};

}  // namespace Ombrey
