// The toolbar button's picture, drawn character by character.
#include "core/button_picture.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string_view>

namespace Ombrey {
namespace {

/// What each character of the drawings paints.
const std::map<char, std::uint32_t>& Palette() {
  static const std::map<char, std::uint32_t> Couleurs{
      {'.', 0x00000000U},  // nothing
      {'#', 0xFF3A3F44U},  // outlines and stand
      {'g', 0xFFB9C0C7U},  // case of the terminal
      {'e', 0xFF1F6F43U},  // display
      {'o', 0xFFB6F2C8U},  // figures on the display
      {'r', 0xFF7A1F4BU},  // grapes
      {'R', 0xFFB0527FU},  // grapes in the light
      {'v', 0xFF4C8B2BU},  // leaf
  };
  return Couleurs;
}

constexpr std::string_view Dessin16 =
    ".....vv........."
    "....vvv........."
    ".....v..########"
    "..rRrRr.#gggggg#"
    ".rRrRrRr#geeeeg#"
    ".RrRrRrR#geoeog#"
    ".rRrRrRr#geoooe#"
    "..RrRrR.#geeeeg#"
    "...rRr..#gggggg#"
    "....r...#g#g#gg#"
    "........########"
    "###########.##.."
    "#ggggggggg#.##.."
    "###########.##.."
    ".##.....##..##.."
    "####...####.###.";

constexpr std::string_view Dessin24 =
    "........vv.............."
    "......vvvvv............."
    ".....vvvvv.............."
    "........v...############"
    "...rrR.rrR..#gggggggggg#"
    "..rrRRrrRRr.#ggggggggggg"
    ".rrRrrRrrRrr#geeeeeeeeg#"
    ".rrrrRrrrrRr#geeeeeeeeg#"
    ".rRrrrrrRrrr#geoeoeoeeg#"
    "..rrRRrrRRr.#geoeoeoeeg#"
    "..rrrRrrrRr.#geeoeoeoeg#"
    "...rRrrRrr..#geeeeeeeeg#"
    "....rrRrr...#gggggggggg#"
    ".....rrr....#g##g##g##g#"
    "......r.....#g##g##g##g#"
    "............#gggggggggg#"
    "............############"
    "################.##....."
    "#gggggggggggggg#.##....."
    "#gggggggggggggg#.##....."
    "################.##....."
    "..###......###...##....."
    "..###......###...##....."
    ".#####....#####.####....";

constexpr bool EstCarré(std::string_view Dessin, std::size_t Côté) { return Dessin.size() == Côté * Côté; }
static_assert(EstCarré(Dessin16, 16) && EstCarré(Dessin24, 24));

Image Peindre(std::string_view Dessin, std::size_t Côté) {
  Image Peinte{Côté, {}};
  for (const char Point : Dessin) Peinte.Pixels.push_back(Palette().at(Point));
  return Peinte;
}

}  // namespace

std::vector<Image> ImagesBouton() { return {Peindre(Dessin16, 16), Peindre(Dessin24, 24)}; }

}  // namespace Ombrey
