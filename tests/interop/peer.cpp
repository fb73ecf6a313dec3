#include "interop/peer.h"

#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#include <jpeglib.h>

namespace interop {
namespace {

void throwMessage(j_common_ptr codec) {
  char text[JMSG_LENGTH_MAX];
  codec->err->format_message(codec, text);
  throw std::runtime_error(text);
}

void throwWarning(j_common_ptr codec, int level) {
  if (level < 0) throwMessage(codec);
}

jpeg_error_mgr* throwingErrors(jpeg_error_mgr& errors) {
  jpeg_std_error(&errors);
  errors.error_exit = throwMessage;
  errors.emit_message = throwWarning;
  return &errors;
}

class Decompressor {
 public:
  explicit Decompressor(std::span<const uint8_t> file) {
    codec.err = throwingErrors(errors_);
    jpeg_create_decompress(&codec);
    jpeg_mem_src(&codec, file.data(), file.size());
    jpeg_read_header(&codec, TRUE);
    codec.dct_method = JDCT_ISLOW;
    codec.do_fancy_upsampling = FALSE;
    codec.do_block_smoothing = FALSE;  // invents the detail that missing scans would add
  }
  ~Decompressor() { jpeg_destroy_decompress(&codec); }

  jpeg_decompress_struct codec;

 private:
  jpeg_error_mgr errors_;
};

void setScans(jpeg_compress_struct& codec, const PeerSettings& settings, std::vector<jpeg_scan_info>& scans) {
  for (const std::vector<int>& components : settings.scans) {
    jpeg_scan_info scan{static_cast<int>(components.size()), {}, 0, 63, 0, 0};
    for (size_t i = 0; i < components.size(); ++i) scan.component_index[i] = components[i];
    scans.push_back(scan);
  }
  for (const jpeg::Scan& ours : settings.script) {
    jpeg_scan_info scan{static_cast<int>(ours.components.size()), {}, ours.first, ours.last, ours.highBit, ours.lowBit};
    for (size_t i = 0; i < ours.components.size(); ++i) scan.component_index[i] = static_cast<int>(ours.components[i]);
    scans.push_back(scan);
  }
  if (!scans.empty()) codec.scan_info = scans.data();
  codec.num_scans = static_cast<int>(scans.size());
}

J_COLOR_SPACE colorSpace(const Image& image) {
  return image.channels == 1 ? JCS_GRAYSCALE : image.channels == 3 ? JCS_RGB : JCS_CMYK;
}

void invert(Image& image) {
  for (uint8_t& sample : image.samples) sample = static_cast<uint8_t>(255 - sample);
}

}  // namespace

std::vector<uint8_t> peerEncode(const Image& asSeen, const PeerSettings& settings) {
  Image image = asSeen;
  if (image.channels == 4 && settings.adobeMarker) invert(image);
  jpeg_compress_struct codec;
  jpeg_error_mgr errors;
  codec.err = throwingErrors(errors);
  jpeg_create_compress(&codec);
  unsigned char* bytes = nullptr;
  unsigned long length = 0;
  jpeg_mem_dest(&codec, &bytes, &length);
  codec.image_width = static_cast<JDIMENSION>(image.width);
  codec.image_height = static_cast<JDIMENSION>(image.height);
  codec.input_components = image.channels;
  codec.in_color_space = colorSpace(image);
  jpeg_set_defaults(&codec);
  if (!settings.convertColors) jpeg_set_colorspace(&codec, colorSpace(image));
  if (settings.convertColors && image.channels == 4) jpeg_set_colorspace(&codec, JCS_YCCK);
  if (!settings.adobeMarker) codec.write_Adobe_marker = FALSE;
  jpeg_set_quality(&codec, settings.quality, settings.wideQuantTables ? FALSE : TRUE);
  for (int c = 0; c < codec.num_components; ++c) {
    codec.comp_info[c].h_samp_factor = settings.factors[static_cast<size_t>(c)].horizontal;
    codec.comp_info[c].v_samp_factor = settings.factors[static_cast<size_t>(c)].vertical;
  }
  codec.restart_interval = static_cast<unsigned>(settings.restartInterval);
  codec.optimize_coding = settings.optimise ? TRUE : FALSE;
  std::vector<jpeg_scan_info> scans;
  setScans(codec, settings, scans);
  jpeg_start_compress(&codec, TRUE);
  for (int32_t y = 0; y < image.height; ++y) {
    JSAMPROW row = image.at(0, y);
    jpeg_write_scanlines(&codec, &row, 1);
  }
  jpeg_finish_compress(&codec);
  jpeg_destroy_compress(&codec);
  std::vector<uint8_t> result(bytes, bytes + length);
  std::free(bytes);
  return result;
}

Image peerDecode(std::span<const uint8_t> file, jpeg::Upsampling upsampling) {
  Decompressor peer(file);
  peer.codec.do_fancy_upsampling = upsampling == jpeg::Upsampling::triangle ? TRUE : FALSE;
  jpeg_start_decompress(&peer.codec);
  Image image(static_cast<int32_t>(peer.codec.output_width), static_cast<int32_t>(peer.codec.output_height),
              peer.codec.output_components);
  while (peer.codec.output_scanline < peer.codec.output_height) {
    JSAMPROW row = image.at(0, static_cast<int32_t>(peer.codec.output_scanline));
    jpeg_read_scanlines(&peer.codec, &row, 1);
  }
  if (image.channels == 4 && peer.codec.saw_Adobe_marker) invert(image);
  jpeg_finish_decompress(&peer.codec);
  return image;
}

std::vector<jpeg::ComponentSamples> peerPlanes(std::span<const uint8_t> file) {
  Decompressor peer(file);
  peer.codec.raw_data_out = TRUE;
  jpeg_start_decompress(&peer.codec);
  const int32_t rowsOfMcus = static_cast<int32_t>(peer.codec.total_iMCU_rows);
  std::vector<jpeg::ComponentSamples> planes;
  std::vector<std::vector<JSAMPROW>> rows;
  for (int c = 0; c < peer.codec.num_components; ++c) {
    const jpeg_component_info& info = peer.codec.comp_info[c];
    jpeg::ComponentSamples plane;
    plane.width = static_cast<int32_t>(info.width_in_blocks) * 8;
    plane.height = rowsOfMcus * info.v_samp_factor * 8;
    plane.samples.resize(static_cast<size_t>(plane.width) * static_cast<size_t>(plane.height));
    planes.push_back(std::move(plane));
    rows.emplace_back(static_cast<size_t>(info.v_samp_factor * 8));
  }
  for (int32_t y = 0; y < rowsOfMcus; ++y) {
    JSAMPARRAY arrays[MAX_COMPONENTS];
    for (size_t c = 0; c < planes.size(); ++c) {
      const size_t width = static_cast<size_t>(planes[c].width);
      uint8_t* const first = planes[c].samples.data() + static_cast<size_t>(y) * rows[c].size() * width;
      for (size_t i = 0; i < rows[c].size(); ++i) rows[c][i] = first + i * width;
      arrays[c] = rows[c].data();
    }
    jpeg_read_raw_data(&peer.codec, arrays, static_cast<JDIMENSION>(peer.codec.max_v_samp_factor * 8));
  }
  for (size_t c = 0; c < planes.size(); ++c) {
    planes[c].height = static_cast<int32_t>(peer.codec.comp_info[c].height_in_blocks) * 8;
    planes[c].samples.resize(static_cast<size_t>(planes[c].width) * static_cast<size_t>(planes[c].height));
  }
  jpeg_finish_decompress(&peer.codec);
  return planes;
}

std::vector<uint8_t> peerTranscode(std::span<const uint8_t> file, const PeerSettings& settings) {
  Decompressor peer(file);
  jvirt_barray_ptr* const arrays = jpeg_read_coefficients(&peer.codec);
  jpeg_compress_struct codec;
  jpeg_error_mgr errors;
  codec.err = throwingErrors(errors);
  jpeg_create_compress(&codec);
  unsigned char* bytes = nullptr;
  unsigned long length = 0;
  jpeg_mem_dest(&codec, &bytes, &length);
  jpeg_copy_critical_parameters(&peer.codec, &codec);
  codec.restart_interval = static_cast<unsigned>(settings.restartInterval);
  codec.optimize_coding = settings.optimise ? TRUE : FALSE;
  std::vector<jpeg_scan_info> scans;
  setScans(codec, settings, scans);
  jpeg_write_coefficients(&codec, arrays);
  jpeg_finish_compress(&codec);
  jpeg_destroy_compress(&codec);
  jpeg_finish_decompress(&peer.codec);
  std::vector<uint8_t> result(bytes, bytes + length);
  std::free(bytes);
  return result;
}

std::vector<PeerComponent> peerCoefficients(std::span<const uint8_t> file) {
  Decompressor peer(file);
  jvirt_barray_ptr* const arrays = jpeg_read_coefficients(&peer.codec);
  std::vector<PeerComponent> components;
  for (int c = 0; c < peer.codec.num_components; ++c) {
    const jpeg_component_info& info = peer.codec.comp_info[c];
    PeerComponent component;
    component.blocksWide = static_cast<int32_t>(info.width_in_blocks);
    component.blocksHigh = static_cast<int32_t>(info.height_in_blocks);
    component.stepSizes.assign(info.quant_table->quantval, info.quant_table->quantval + 64);
    for (JDIMENSION y = 0; y < info.height_in_blocks; ++y) {
      const JBLOCKARRAY row =
          peer.codec.mem->access_virt_barray(reinterpret_cast<j_common_ptr>(&peer.codec), arrays[c], y, 1, FALSE);
      component.coefficients.insert(component.coefficients.end(), row[0][0],
                                    row[0][0] + size_t{64} * info.width_in_blocks);
    }
    components.push_back(std::move(component));
  }
  jpeg_finish_decompress(&peer.codec);
  return components;
}

}  // namespace interop
