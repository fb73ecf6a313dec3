/* Calls the library from C89: the version, a record by value, a failed check, a round trip. */
#include <stdio.h>
#include <string.h>

#include <zorj.h>

int main(void) {
  uint8_t row[100], packed[128], unpacked[100];
  int32_t length = 0, position = 0;
  RoiSize size;
  int i;
  const LibraryVersion* version = zorjGetLibVersion();
  for (i = 0; i < 100; ++i) row[i] = (uint8_t)(i < 60 ? 7 : i);

  if (zoriPackBitsRow_TIFF_8u_C1(row, 100, packed, &length, 128) != StatusOk) return 1;
  if (zoriUnpackBitsRow_TIFF_8u_C1(packed, &position, length, unpacked, 100) != StatusOk) return 2;
  if (position != length || memcmp(row, unpacked, 100) != 0) return 3;

  size.width = 0;
  size.height = 1;
  if (zoriRGBToY_JPEG_8u_C3C1R(row, 3, unpacked, 1, size) != StatusBadSize) return 4;
  size.width = 1;
  if (zoriRGBToY_JPEG_8u_C3C1R(row, 3, unpacked, 1, size) != StatusOk || unpacked[0] != 7) return 5;
  printf("version %s: 100 bytes in %d\n", version->version, (int)length);
  return 0;
}
