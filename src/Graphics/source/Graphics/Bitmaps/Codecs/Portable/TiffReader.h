// SPDX-License-Identifier: MIT
// Reads TIFF files of strips or tiles, with samples together or in planes, of any depth. The orientation tag is left to
// the host, as in all other kinds of files.
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
    /// The number of sample planes that are read.
    [[nodiscard]] size_t WantedPlanes() const noexcept;
    /// Throws ImageError unless unpacked blocks are plain rows of samples.
    void RequirePlainBlocks() const;
    void LoadRows(SysMemBitmap& image);
    void LoadBlocks(SysMemBitmap& image);
    /// Loads rows through libtiff's conversion, for the colour spaces that only libtiff supports.
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
