// The markers of a codestream (T.800 Table A.2).
#pragma once

#include <cstdint>

namespace examples::jpeg2k::marker {

inline constexpr uint16_t SOC = 0xff4f;  // start of codestream
inline constexpr uint16_t SIZ = 0xff51;  // image and tile size
inline constexpr uint16_t COD = 0xff52;  // coding style default
inline constexpr uint16_t COC = 0xff53;  // coding style of a component
inline constexpr uint16_t TLM = 0xff55;  // tile-part lengths
inline constexpr uint16_t PLM = 0xff57;  // packet lengths, main header
inline constexpr uint16_t PLT = 0xff58;  // packet lengths, tile-part header
inline constexpr uint16_t QCD = 0xff5c;  // quantization default
inline constexpr uint16_t QCC = 0xff5d;  // quantization of a component
inline constexpr uint16_t RGN = 0xff5e;  // region of interest
inline constexpr uint16_t POC = 0xff5f;  // progression order changes
inline constexpr uint16_t PPM = 0xff60;  // packed packet headers, main header
inline constexpr uint16_t PPT = 0xff61;  // packed packet headers, tile-part header
inline constexpr uint16_t CRG = 0xff63;  // component registration
inline constexpr uint16_t COM = 0xff64;  // comment
inline constexpr uint16_t SOT = 0xff90;  // start of tile-part
inline constexpr uint16_t SOP = 0xff91;  // start of packet
inline constexpr uint16_t EPH = 0xff92;  // end of packet header
inline constexpr uint16_t SOD = 0xff93;  // start of data
inline constexpr uint16_t EOC = 0xffd9;  // end of codestream

}  // namespace examples::jpeg2k::marker
