// SPDX-License-Identifier: MIT
// Reads TIFF files of strips or tiles, with samples together or in planes, of any depth. What the tags call orientation
// is left to the host, as for all other kinds of files.
#pragma once

#include "../CodecSupport.h"
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
    void LoadBlocks(SysMemBitmap& image);
    /// Rows through libtiff's own conversion, for the colour spaces that only it knows.
    void LoadConverted(SysMemBitmap& image);

    TiffHandle m_file;
    uint32_t m_width = 0;
    uint32_t m_height = 0;
    TiffPage m_page;
    TiffRows m_rows{m_page};
};

} // namespace Graphics
