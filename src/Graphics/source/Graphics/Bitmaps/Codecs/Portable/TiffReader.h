// SPDX-License-Identifier: MIT
// Reads TIFF files of strips or tiles, with samples together or in planes, of any depth. What the tags call orientation
// is left to the host, as for all other kinds of files.
#pragma once

#include <optional>

#include "../CodecSupport.h"
#include "TiffBlocks.h"
#include "TiffHandle.h"
#include "TiffRows.h"

namespace Graphics {

class TiffReader final : public ImageDecoder {
public:
    explicit TiffReader(ByteSource& source);

    [[nodiscard]] uint32_t CountFrames() override;
    [[nodiscard]] std::shared_ptr<SysMemBitmap> Load(uint32_t frame) override;

private:
    void ReadTags();
    [[nodiscard]] GXPixelFormat ChooseFormat();
    [[nodiscard]] std::shared_ptr<const Palette> MakePalette() const;
    /// Planes of samples that the picture is made of.
    [[nodiscard]] size_t WantedPlanes() const noexcept;
    /// Throws ImageError unless unpacked blocks are plain rows of samples.
    void RequirePlainBlocks() const;
    void LoadRows(SysMemBitmap& image);
    void LoadBlocks(SysMemBitmap& image);
    /// Rows through libtiff's own conversion, for the colour spaces that only it knows.
    void LoadConverted(SysMemBitmap& image);

    ByteSource& m_source;
    TiffHandle m_file;
    std::optional<TiffBlocks> m_blocks;
    uint32_t m_width = 0;
    uint32_t m_height = 0;
    TiffPage m_page;
    TiffRows m_rows{m_page};
};

} // namespace Graphics
