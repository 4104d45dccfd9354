// The data sets that the terminal takes: the order of sending, and how each file is made.
#pragma once

#include <chrono>
#include <cstdint>
#include <span>
#include <vector>

#include "transfer/file_builder.h"

namespace Ombrey {

/// The builders, each as ConstruireFichier with the layout of its file.
void TransférerAppelations(ÉtatPlugIn& État, const Titreur& Titrer, std::vector<Octets>& Lignes);
void TransférerCoopérateurs(ÉtatPlugIn& État, const Titreur& Titrer, std::vector<Octets>& Lignes);
void TransférerBadges(ÉtatPlugIn& État, const Titreur& Titrer, std::vector<Octets>& Lignes);
void TransférerGroupements(ÉtatPlugIn& État, const Titreur& Titrer, std::vector<Octets>& Lignes);
void TransférerObservations(ÉtatPlugIn& État, const Titreur& Titrer, std::vector<Octets>& Lignes);

/// One row of the transfer window.
struct JeuDeDonnées {
  const char* Case;  ///< check box
  const char* Nom;   ///< on the screen and in messages
  std::int32_t NumFichier;
  void (*Construire)(ÉtatPlugIn&, const Titreur&, std::vector<Octets>&);
  std::chrono::milliseconds Pause;  ///< the terminal's time between two files
};

/// In the order of sending, which is also that on the screen.
[[nodiscard]] std::span<const JeuDeDonnées> JeuxDeDonnées();

}  // namespace Ombrey
