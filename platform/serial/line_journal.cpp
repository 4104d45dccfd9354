// The traffic of the last hours.
#include "platform/serial/line_journal.h"

#include <utility>

#include "base/files.h"

namespace Ombrey {
namespace {

/// Some four hours of a line on which nothing happens but the polls.
constexpr std::size_t MessagesMax = 15000;
/// The bytes of files sent may be many.
constexpr std::size_t OctetsMax = 8 * std::size_t{1024} * 1024;

std::size_t Poids(const MessageLiaison& Message) { return Message.Bruts.Taille() + Message.Texte.size(); }

}  // namespace

void JournalLiaison::Ajouter(MessageLiaison Message) {
  if (Trace_) Trace_->Écrire(Message);
  Octets_ += Poids(Message);
  Messages_.push_back(std::move(Message));
  ++Nombre_;
  while (Messages_.size() > 1 && (Messages_.size() > MessagesMax || Octets_ > OctetsMax)) {
    Octets_ -= Poids(Messages_.front());
    Messages_.pop_front();
  }
}

std::string JournalLiaison::Enregistrer(const std::filesystem::path& Fichier) const {
  std::string Texte;
  std::string Jour;
  for (const MessageLiaison& Un : Messages_) {
    if (std::exchange(Jour, JourTrace(Un.Quand.Mur)) != JourTrace(Un.Quand.Mur)) Texte += EntêteTrace(Un.Quand.Mur);
    Texte += LigneTrace(Un);
  }
  EcrireFichier(Fichier, Texte);
  return "La trace est dans " + TexteChemin(Fichier) + ".";
}

}  // namespace Ombrey
