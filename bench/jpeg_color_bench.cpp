// Colour conversion of an MCU at every instruction-set level.
#include <zorj.h>

#include <array>

#include "support/compare.h"

namespace zorj::bench {
namespace {

constexpr int32_t kStep = 64;
alignas(2) std::array<uint8_t, 16 * kStep> pixels;
std::array<int16_t, 10 * 64> blocks;
int16_t* const planes[4] = {&blocks[0], &blocks[256], &blocks[320], &blocks[384]};

template <class Pixel>
void forward(const char* name, StatusCode(ZORJ_CALL* function)(const Pixel*, int32_t, int16_t* const*)) {
  auto* src = reinterpret_cast<const Pixel*>(pixels.data());
  compare(name, 1, "MCUs", atEveryLevel([=] { function(src, kStep, planes); }));
}

template <class Pixel>
void inverse(const char* name, StatusCode(ZORJ_CALL* function)(const int16_t* const*, Pixel*, int32_t)) {
  auto* dst = reinterpret_cast<Pixel*>(pixels.data());
  compare(name, 1, "MCUs", atEveryLevel([=] { function(planes, dst, kStep); }));
}

}  // namespace

void registerComparisons() {
  forward("zoriRGBToYCbCr444LS_MCU_8u16s_C3P3R", &zoriRGBToYCbCr444LS_MCU_8u16s_C3P3R);
  forward("zoriRGBToYCbCr422LS_MCU_8u16s_C3P3R", &zoriRGBToYCbCr422LS_MCU_8u16s_C3P3R);
  forward("zoriRGBToYCbCr411LS_MCU_8u16s_C3P3R", &zoriRGBToYCbCr411LS_MCU_8u16s_C3P3R);
  forward("zoriBGRToYCbCr444LS_MCU_8u16s_C3P3R", &zoriBGRToYCbCr444LS_MCU_8u16s_C3P3R);
  forward("zoriBGRToYCbCr422LS_MCU_8u16s_C3P3R", &zoriBGRToYCbCr422LS_MCU_8u16s_C3P3R);
  forward("zoriBGRToYCbCr411LS_MCU_8u16s_C3P3R", &zoriBGRToYCbCr411LS_MCU_8u16s_C3P3R);
  forward("zoriBGR555ToYCbCr444LS_MCU_16u16s_C3P3R", &zoriBGR555ToYCbCr444LS_MCU_16u16s_C3P3R);
  forward("zoriBGR555ToYCbCr422LS_MCU_16u16s_C3P3R", &zoriBGR555ToYCbCr422LS_MCU_16u16s_C3P3R);
  forward("zoriBGR555ToYCbCr411LS_MCU_16u16s_C3P3R", &zoriBGR555ToYCbCr411LS_MCU_16u16s_C3P3R);
  forward("zoriBGR565ToYCbCr444LS_MCU_16u16s_C3P3R", &zoriBGR565ToYCbCr444LS_MCU_16u16s_C3P3R);
  forward("zoriBGR565ToYCbCr422LS_MCU_16u16s_C3P3R", &zoriBGR565ToYCbCr422LS_MCU_16u16s_C3P3R);
  forward("zoriBGR565ToYCbCr411LS_MCU_16u16s_C3P3R", &zoriBGR565ToYCbCr411LS_MCU_16u16s_C3P3R);
  forward("zoriCMYKToYCCK444LS_MCU_8u16s_C4P4R", &zoriCMYKToYCCK444LS_MCU_8u16s_C4P4R);
  forward("zoriCMYKToYCCK422LS_MCU_8u16s_C4P4R", &zoriCMYKToYCCK422LS_MCU_8u16s_C4P4R);
  forward("zoriCMYKToYCCK411LS_MCU_8u16s_C4P4R", &zoriCMYKToYCCK411LS_MCU_8u16s_C4P4R);
  inverse("zoriYCbCr444ToRGBLS_MCU_16s8u_P3C3R", &zoriYCbCr444ToRGBLS_MCU_16s8u_P3C3R);
  inverse("zoriYCbCr422ToRGBLS_MCU_16s8u_P3C3R", &zoriYCbCr422ToRGBLS_MCU_16s8u_P3C3R);
  inverse("zoriYCbCr411ToRGBLS_MCU_16s8u_P3C3R", &zoriYCbCr411ToRGBLS_MCU_16s8u_P3C3R);
  inverse("zoriYCbCr444ToBGRLS_MCU_16s8u_P3C3R", &zoriYCbCr444ToBGRLS_MCU_16s8u_P3C3R);
  inverse("zoriYCbCr422ToBGRLS_MCU_16s8u_P3C3R", &zoriYCbCr422ToBGRLS_MCU_16s8u_P3C3R);
  inverse("zoriYCbCr411ToBGRLS_MCU_16s8u_P3C3R", &zoriYCbCr411ToBGRLS_MCU_16s8u_P3C3R);
  inverse("zoriYCbCr444ToBGR555LS_MCU_16s16u_P3C3R", &zoriYCbCr444ToBGR555LS_MCU_16s16u_P3C3R);
  inverse("zoriYCbCr422ToBGR555LS_MCU_16s16u_P3C3R", &zoriYCbCr422ToBGR555LS_MCU_16s16u_P3C3R);
  inverse("zoriYCbCr411ToBGR555LS_MCU_16s16u_P3C3R", &zoriYCbCr411ToBGR555LS_MCU_16s16u_P3C3R);
  inverse("zoriYCbCr444ToBGR565LS_MCU_16s16u_P3C3R", &zoriYCbCr444ToBGR565LS_MCU_16s16u_P3C3R);
  inverse("zoriYCbCr422ToBGR565LS_MCU_16s16u_P3C3R", &zoriYCbCr422ToBGR565LS_MCU_16s16u_P3C3R);
  inverse("zoriYCbCr411ToBGR565LS_MCU_16s16u_P3C3R", &zoriYCbCr411ToBGR565LS_MCU_16s16u_P3C3R);
  inverse("zoriYCCK444ToCMYKLS_MCU_16s8u_P4C4R", &zoriYCCK444ToCMYKLS_MCU_16s8u_P4C4R);
  inverse("zoriYCCK422ToCMYKLS_MCU_16s8u_P4C4R", &zoriYCCK422ToCMYKLS_MCU_16s8u_P4C4R);
  inverse("zoriYCCK411ToCMYKLS_MCU_16s8u_P4C4R", &zoriYCCK411ToCMYKLS_MCU_16s8u_P4C4R);
  forward("zoriSplit422LS_MCU_8u16s_C2P3R", &zoriSplit422LS_MCU_8u16s_C2P3R);
  inverse("zoriJoin422LS_MCU_16s8u_P3C2R", &zoriJoin422LS_MCU_16s8u_P3C2R);
}

}  // namespace zorj::bench
