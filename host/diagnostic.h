// What an administrator asks first: is all that a station needs in order, and if not, what is to be done.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "host/options.h"
#include "platform/system/network_drive.h"

namespace Tarvel {

enum class Jugement { Bon, ÀVoir, Mauvais };

/// One thing looked at.
struct Constat {
  Jugement Verdict = Jugement::Bon;
  std::string Sujet;     ///< what was looked at, one word or two
  std::string Texte;     ///< how it is
  std::string ÀFaire{};  ///< what mends it, the command where there is one; empty when nothing is to be done
};

/// Where the machine tells of its ports and drives and takes the rules for their names.
struct LieuxMachine {
  std::filesystem::path Ports = "/sys/class/tty";
  std::filesystem::path Règles = "/etc/udev/rules.d";
  std::filesystem::path Montages = Ombrey::MontagesDuSystème;
};

/// Looks at settings, port, name of the adapter, base, disk, clock and working folder of the station that the options
/// describe, which may be at work meanwhile. Nothing is changed but one thing: the rule that gives the adapter its
/// name is written where this account may do so and none is there. Raises nothing that the station would raise itself:
/// whatever fails is a finding.
[[nodiscard]] std::vector<Constat> Diagnostiquer(const Options& Choisies, const LieuxMachine& Lieux = {});

/// One line: verdict, subject, text, what to do.
[[nodiscard]] std::string TexteConstat(const Constat& Un);

/// All findings, a line each.
[[nodiscard]] std::string TexteConstats(const std::vector<Constat>& Constats);

/// A text in the single quotes of a shell where it needs them.
[[nodiscard]] std::string PourCommande(const std::string& Texte);

/// The command that has the account look that the file or folder belongs to.
[[nodiscard]] std::string ParSonCompte(const std::filesystem::path& Quoi, const Options& Choisies);

/// The part that concerns the settings file and the line, added to the findings.
void ExaminerLigne(const Options& Choisies, const LieuxMachine& Lieux, std::vector<Constat>& Constats);

}  // namespace Tarvel
