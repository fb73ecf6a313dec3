// Marker codes: the byte after 0xFF (T.81 Table B.1).
#pragma once

#include <cstdint>

namespace examples::jpeg::marker {

constexpr uint8_t SOF0 = 0xc0;  // baseline; SOF1 to SOF15 are the other processes
constexpr uint8_t SOF1 = 0xc1;  // extended sequential
constexpr uint8_t SOF2 = 0xc2;  // progressive
constexpr uint8_t SOF3 = 0xc3;  // lossless
constexpr uint8_t DHT = 0xc4;
constexpr uint8_t JPG = 0xc8;
constexpr uint8_t DAC = 0xcc;
constexpr uint8_t SOF15 = 0xcf;
constexpr uint8_t RST0 = 0xd0;  // to RST7
constexpr uint8_t RST7 = 0xd7;
constexpr uint8_t SOI = 0xd8;
constexpr uint8_t EOI = 0xd9;
constexpr uint8_t SOS = 0xda;
constexpr uint8_t DQT = 0xdb;
constexpr uint8_t DRI = 0xdd;
constexpr uint8_t APP0 = 0xe0;
constexpr uint8_t APP14 = 0xee;
constexpr uint8_t TEM = 0x01;

constexpr bool isRestart(int32_t code) { return code >= RST0 && code <= RST7; }

}  // namespace examples::jpeg::marker
