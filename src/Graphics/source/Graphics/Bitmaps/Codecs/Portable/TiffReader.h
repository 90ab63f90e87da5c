// SPDX-License-Identifier: MIT
// Reads TIFF files of strips or tiles, with samples together or in planes, of any depth. What the tags call orientation
// is left to the host, as for all other kinds of files.
#pragma once

#include "../CodecSupport.h"
#include "TiffHandle.h"

namespace Graphics {

class TiffReader final : public ImageDecoder {
public:
    explicit TiffReader(ByteSource& source);

    [[nodiscard]] uint32_t CountFrames() override;
    [[nodiscard]] std::shared_ptr<SysMemBitmap> Load(uint32_t frame) override;

private:
    /// How samples become levels of 8 bits.
    enum class Samples { Bytes, Words, Bits, Half, Float, Double };

    void ReadTags();
    [[nodiscard]] GXPixelFormat ChooseFormat();
    [[nodiscard]] std::shared_ptr<const Palette> MakePalette() const;
    void LoadBlocks(SysMemBitmap& image);
    /// Rows through libtiff's own conversion, for the colour spaces that only it knows.
    void LoadConverted(SysMemBitmap& image);
    /// Sample `channel` of `count` pixels as levels, or as plain numbers.
    template <class Out>
    void Unpack(Out* out, const uint8_t* row, size_t count, uint32_t channel, bool asNumber) const noexcept;
    [[nodiscard]] double Level(const uint8_t* sample) const noexcept;
    /// `count` pixels of a strip or tile; `planeBytes` lie between its planes, if any.
    void ConvertRow(uint8_t* dst, const uint8_t* row, size_t planeBytes, uint32_t count);

    TiffHandle m_file;
    uint32_t m_width = 0;
    uint32_t m_height = 0;
    uint16_t m_bits = 1;
    uint16_t m_samples = 1;
    uint16_t m_photometric = 0;
    uint16_t m_colors = 1;   ///< samples that make the colour
    bool m_planes = false;   ///< each sample in a plane of its own
    bool m_signed = false;   ///< whole numbers with a sign
    bool m_known = true;     ///< false: libtiff converts
    bool m_hasAlpha = false; ///< the sample behind the colours
    bool m_associated = false;
    Samples m_kind = Samples::Bits;
    GXPixelFormat m_format = GXPixelFormatUnknown;
    const uint16_t* m_map[3] = {};
    HeapArray<uint8_t> m_levels[5];
    HeapArray<uint32_t> m_indices;
};

} // namespace Graphics
