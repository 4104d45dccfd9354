// What the line of an RG80 says: every constant of its protocol, and where each field stands in its load record. A
// terminal of another type is another such header; line_protocol.h chooses.
#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "contracts/octets.h"

namespace Ombrey {

// Control characters
inline constexpr char STX = 2;   ///< first character of a data frame
inline constexpr char ETX = 3;   ///< ends the text of a data frame; two checksum characters follow
inline constexpr char EOT = 4;   ///< closes a data frame that the terminal answered
inline constexpr char ENQ = 5;   ///< opens a request, with the request code behind it
inline constexpr char ACK = 6;   ///< yes
inline constexpr char NAK = 21;  ///< no

// Requests
inline constexpr std::string_view CodeDemande = "A";  ///< asks for a load
/// Announces the figures of a load; the link test asks under the same number.
inline constexpr std::int32_t FichierRéponse = 8;
inline constexpr std::size_t LongRéponse = 2;  ///< characters of an answer to a request: ACK or NAK, and its code

// Data frames
/// Characters of a data frame behind its text, ETX and two checksum characters, and all those around it.
inline constexpr std::size_t FinTrame = 1 + 2;
inline constexpr std::size_t EnrobageTrame = 1 + FinTrame;
/// How long the terminal may take for an answer, counted from the end of the sending.
inline constexpr std::chrono::milliseconds DélaiRéponse{2000};
/// Refusals of a frame that are answered by another try.
inline constexpr int EssaisAprèsRefus = 4;

// The reply: running figures of a load
inline constexpr std::size_t ChiffresParCumul = 6;
/// The host's word for "no quota", in a figure that is asked of it.
inline constexpr std::int32_t SansQuota = 999999;

// The load record, counted from the first byte behind the STX
inline constexpr std::size_t LongEnregChargement = 55;
inline constexpr std::size_t LongTrameChargement = LongEnregChargement + EnrobageTrame;
inline constexpr double PartsParDegré = 10;  ///< a degree is sent in tenths

/// In the order of the received values. DateSortie starts at the load's date and ends at the time of leaving;
/// InfoChargnt3 repeats Qualité.
inline constexpr auto ChampsChargement = std::to_array<ChampChargement>({
    {"NoChargement", {1, 4}},
    {"DateCh", {5, 10}},
    {"DateSortie", {5, 14}},
    {"Métayage", {19, 12}},
    {"Sélection", {41, 2}},
    {"Qualité", {43, 2}},
    {"Degré", {45, 3}},
    {"NoQuai", {48, 1}},
    {"Masse", {49, 4}},
    {"Cuve", {53, 3}},
    {"InfoChargnt3", {43, 2}},
});

/// What is read by its place and not as a field.
namespace PositionFixe {
inline constexpr Position Date{5, 6};
inline constexpr Position Arrivée{11, 4};
inline constexpr Position Sortie{15, 4};
inline constexpr Position Part{34, 7};
inline constexpr Position Jour{5, 2};
inline constexpr Position Mois{7, 2};
inline constexpr Position Année{9, 2};
inline constexpr Position Heure{11, 2};
inline constexpr Position Minute{13, 2};
inline constexpr Position HeureSortie{15, 2};
inline constexpr Position MinuteSortie{17, 2};
inline constexpr Position Propriétaire{19, 6};
inline constexpr Position Récoltant{25, 6};
/// The last four digits of the two codes: what the message about an unknown holding shows of them.
inline constexpr Position FinPropriétaire{21, 4};
inline constexpr Position FinRécoltant{27, 4};
inline constexpr Position Groupe{31, 3};
inline constexpr Position PartEntière{34, 3};
inline constexpr Position PartDécimale{37, 4};
}  // namespace PositionFixe

inline constexpr auto FichiersTerminal = std::to_array<FichierTerminal>({
    {1, "coopérateurs", 41},
    {2, "groupements", 83},
    {4, "appellations", 31},
    {5, "badges", 28},
    {6, "observations", 22},
});

}  // namespace Ombrey
