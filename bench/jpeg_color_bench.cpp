// Colour conversion of an MCU at every instruction-set level.
#include <zorj.h>

#include <array>

#include "support/compare.h"

namespace zorj::bench {
namespace {

constexpr int32_t kStep = 48;
std::array<uint8_t, 16 * kStep> pixels;
std::array<int16_t, 6 * 64> blocks;
int16_t* const planes[3] = {&blocks[0], &blocks[256], &blocks[320]};

void forward(const char* name, StatusCode(ZORJ_CALL* function)(const uint8_t*, int32_t, int16_t* const[3])) {
  compare(name, 1, "MCUs", atEveryLevel([=] { function(pixels.data(), kStep, planes); }));
}

void inverse(const char* name, StatusCode(ZORJ_CALL* function)(const int16_t* const[3], uint8_t*, int32_t)) {
  compare(name, 1, "MCUs", atEveryLevel([=] { function(planes, pixels.data(), kStep); }));
}

}  // namespace

void registerComparisons() {
  forward("zoriRGBToYCbCr444LS_MCU_8u16s_C3P3R", &zoriRGBToYCbCr444LS_MCU_8u16s_C3P3R);
  forward("zoriRGBToYCbCr422LS_MCU_8u16s_C3P3R", &zoriRGBToYCbCr422LS_MCU_8u16s_C3P3R);
  forward("zoriRGBToYCbCr411LS_MCU_8u16s_C3P3R", &zoriRGBToYCbCr411LS_MCU_8u16s_C3P3R);
  forward("zoriBGRToYCbCr444LS_MCU_8u16s_C3P3R", &zoriBGRToYCbCr444LS_MCU_8u16s_C3P3R);
  forward("zoriBGRToYCbCr422LS_MCU_8u16s_C3P3R", &zoriBGRToYCbCr422LS_MCU_8u16s_C3P3R);
  forward("zoriBGRToYCbCr411LS_MCU_8u16s_C3P3R", &zoriBGRToYCbCr411LS_MCU_8u16s_C3P3R);
  inverse("zoriYCbCr444ToRGBLS_MCU_16s8u_P3C3R", &zoriYCbCr444ToRGBLS_MCU_16s8u_P3C3R);
  inverse("zoriYCbCr411ToRGBLS_MCU_16s8u_P3C3R", &zoriYCbCr411ToRGBLS_MCU_16s8u_P3C3R);
  inverse("zoriYCbCr444ToBGRLS_MCU_16s8u_P3C3R", &zoriYCbCr444ToBGRLS_MCU_16s8u_P3C3R);
  inverse("zoriYCbCr411ToBGRLS_MCU_16s8u_P3C3R", &zoriYCbCr411ToBGRLS_MCU_16s8u_P3C3R);
}

}  // namespace zorj::bench
