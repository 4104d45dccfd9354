// The two ends that the terminal can speak on: a pseudo-terminal with a link to it, or a real serial device.
#pragma once

#include <string>
#include <string_view>

namespace Rg80 {

/// An open line, non-blocking; closed, and its link removed, with the object.
class Liaison {
 public:
  /// Makes a pseudo-terminal and a symbolic link Lien to its other end. A link that an earlier run left is replaced;
  /// anything else in its place is refused. Raises ErreurDemande.
  static Liaison SurLien(const std::string& Lien);
  /// Opens a serial device at Bauds, eight bits, no parity, one stop bit. Raises ErreurDemande.
  static Liaison SurPort(const std::string& Chemin, unsigned Bauds);

  Liaison(Liaison&& Autre) noexcept;
  Liaison& operator=(Liaison&&) = delete;
  Liaison(const Liaison&) = delete;
  Liaison& operator=(const Liaison&) = delete;
  ~Liaison();

  [[nodiscard]] int Descripteur() const { return Principal_; }
  /// What to tell the person who wants to connect: the device's path, and the link's where there is one.
  [[nodiscard]] const std::string& Description() const { return Description_; }
  /// At most Max bytes that are there; empty when there is none. Raises std::runtime_error when the line is lost.
  [[nodiscard]] std::string Lire(std::size_t Max);
  /// Writes what the line takes of Octets and gives how many bytes that was. Raises as Lire.
  [[nodiscard]] std::size_t Écrire(std::string_view Octets);

 private:
  Liaison() = default;

  int Principal_ = -1;
  int Secondaire_ = -1;  // kept open so that the line survives the peer's comings and goings
  std::string Lien_;
  std::string CheminSecondaire_;
  std::string Description_;
};

}  // namespace Rg80
