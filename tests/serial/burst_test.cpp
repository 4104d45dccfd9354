// Bursts: what one run of received characters is.
#include "platform/serial/burst.h"

#include <gtest/gtest.h>

#include <ostream>

namespace Ombrey {
namespace {

using namespace std::chrono_literals;

/// One character at 9600 baud, 8N1.
constexpr auto Caractère = 1041667ns;

const std::string Trame = "\x02" + std::string(55, '7') + "\x03" + "2;";
const std::string Ack = "\x06" + std::string("A");

struct Cas {
  const char* Nom;
  std::string Reçus;
  std::vector<std::string> Closes;  ///< without any silence
  std::string Tenus;                ///< what only silence closes
  std::chrono::milliseconds Silence;
};
std::ostream& operator<<(std::ostream& Sortie, const Cas& C) { return Sortie << C.Nom; }

class Rafales : public testing::TestWithParam<Cas> {};

TEST_P(Rafales, AreTheSameInWhateverPiecesTheBytesCome) {
  const Cas& C = GetParam();
  for (const std::size_t Morceau : {std::size_t{1}, std::size_t{8}, std::size_t{14}, std::size_t{4096}}) {
    Rafale Rafale(Caractère);
    std::vector<std::string> Closes;
    for (std::size_t Début = 0; Début < C.Reçus.size(); Début += Morceau)
      for (const Octets& Close : Rafale.Ajouter(std::string_view(C.Reçus).substr(Début, Morceau)))
        Closes.emplace_back(Close.Bruts());
    EXPECT_EQ(Closes, C.Closes) << Morceau;
    EXPECT_EQ(Rafale.SilenceAttendu().value_or(0ms), C.Silence) << Morceau;
    EXPECT_EQ(Rafale.Clore().Bruts(), C.Tenus) << Morceau;
    EXPECT_FALSE(Rafale.SilenceAttendu()) << Morceau;
  }
}

INSTANTIATE_TEST_SUITE_P(
    Table, Rafales,
    testing::Values(Cas{"nothing", "", {}, "", 0ms}, Cas{"answer alone", Ack, {}, Ack, 5ms},
                    Cas{"answer and frame", Ack + Trame, {Ack + Trame}, "", 0ms},
                    Cas{"noise ahead", "~~" + Trame, {"~~" + Trame}, "", 0ms},
                    Cas{"two frames and an answer", Trame + Trame + Ack, {Trame, Trame}, Ack, 5ms},
                    Cas{"ETX without STX",
                        "ab\x03"
                        "12",
                        {},
                        "ab\x03"
                        "12",
                        5ms},
                    Cas{"ETX ahead of the frame", "\x03" + Trame, {"\x03" + Trame}, "", 0ms},
                    Cas{"frame without its end", Trame.substr(0, 30), {}, Trame.substr(0, 30), 100ms},
                    Cas{"one checksum character short", Trame.substr(0, 58), {}, Trame.substr(0, 58), 100ms},
                    Cas{"STX and ETX as checksum",
                        "\x02x\x03\x02\x03"
                        "a",
                        {"\x02x\x03\x02\x03"},
                        "a",
                        5ms}),
    [](const auto& Info) {
      std::string Nom = Info.param.Nom;
      for (char& Lettre : Nom)
        if (Lettre == ' ') Lettre = '_';
      return Nom;
    });

TEST(Rafale, WaitsLongerOnASlowLine) {
  Rafale Lente(std::chrono::nanoseconds(1s) / 10);
  EXPECT_TRUE(Lente.Ajouter("a").empty());
  EXPECT_EQ(Lente.SilenceAttendu(), 350ms);
  EXPECT_TRUE(Lente.Ajouter("\x02").empty());
  EXPECT_EQ(Lente.SilenceAttendu(), 350ms);
}

TEST(Rafale, HoldsNoMoreThanItsBound) {
  Rafale Pleine(Caractère);
  const auto Closes = Pleine.Ajouter("\x02" + std::string(2 * Rafale::TailleMax, 'x'));
  ASSERT_EQ(Closes.size(), 2U);
  EXPECT_EQ(Closes[0].Taille(), Rafale::TailleMax);
  EXPECT_EQ(Pleine.Clore().Taille(), 1U);
}

}  // namespace
}  // namespace Ombrey
