// A text of pages in a file.
#include "platform/console/printer.h"

#include "base/failures.h"
#include "base/visible_text.h"
#include "platform/system/safe_file.h"

namespace Ombrey {

void ImprimanteTexte::FixerPolice(int /*Points*/, bool /*Gras*/, bool /*Souligné*/) {}

void ImprimanteTexte::Imprimer(const std::string& Ligne) {
  if (Position_ == LignesParPage) NouvellePage();
  Texte_ += TexteVisible(Ligne) + '\n';
  ++Position_;
}

void ImprimanteTexte::NouvellePage() {
  Texte_ += '\f';
  Position_ = 0;
}

void ImprimanteTexte::TerminerDocument() {
  // A device or a pipe of this name must not be replaced by a file.
  if (std::filesystem::exists(Fichier_) && !std::filesystem::is_regular_file(Fichier_)) {
    throw ErreurExécution(Fichier_.string() + " n'est pas un fichier ordinaire.");
  }
  RemplacerFichier(Fichier_, Texte_);
  SurFin_();
}

}  // namespace Ombrey
