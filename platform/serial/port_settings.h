// A port's settings as the operator and the settings file know them, and who asks the operator for them.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace Ombrey {

/// The texts of the keys Port, Bauds, Parité, BitsStop and TailleMots, as they stand in the settings file.
struct RéglagesPort {
  std::string Port;
  std::string Bauds;
  std::string Parité;
  std::string BitsStop;
  std::string TailleMots;
  friend bool operator==(const RéglagesPort&, const RéglagesPort&) = default;
};

/// A serial port of this machine.
struct PortTrouvé {
  std::string Nom;          ///< what goes into the settings, such as "COM1:" or a device's path
  std::string Description;  ///< for the operator: device, driver or adapter
};

/// The serial ports that this machine has now, the likeliest first; empty when there are none.
[[nodiscard]] std::vector<PortTrouvé> PortsDeLaMachine();

/// What a dialogue offers to choose from. Any other text can be typed and is checked by the trial.
struct ChoixPort {
  std::vector<std::string> Bauds;
  std::vector<std::string> Parités;
  std::vector<std::string> BitsStop;
  std::vector<std::string> TaillesMots;
};
[[nodiscard]] const ChoixPort& ChoixUsuels();

/// Asks the operator: a window, or questions on a console.
class IQuestionnairePort {
 public:
  virtual ~IQuestionnairePort() = default;
  /// Shows the settings, lets the operator change them and runs the loop meanwhile. Essayer asks the terminal
  /// with the settings given and returns the empty text, or why there is no answer. True: Réglages holds what the
  /// operator wants kept. False: cancelled, Réglages is as it came.
  virtual bool Demander(RéglagesPort& Réglages, const std::function<std::string(const RéglagesPort&)>& Essayer) = 0;
  /// The settings that were kept stand in the file now.
  virtual void DireRetenus() {}
};

}  // namespace Ombrey
