// SPDX-License-Identifier: MIT
#include "Container.h"

#include <zlib.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

namespace Gxr {
namespace {

constexpr size_t kChecksumOffset = 28;

uint32_t Checksum(const uint8_t* header, const uint8_t* body, size_t size) {
    uLong crc = crc32(0, header, kChecksumOffset);
    for (size_t at = 0; at < size;) {
        const size_t step = std::min<size_t>(size - at, 1U << 30);
        crc = crc32(crc, body + at, static_cast<uInt>(step));
        at += step;
    }
    return static_cast<uint32_t>(crc);
}

struct Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, Closer>;

} // namespace

Bytes Pack(const Bytes& body) {
    if (body.size() > kMaxBodyBytes)
        throw Error("the recording is too large");
    uLongf stored = compressBound(static_cast<uLong>(body.size()));
    Bytes packed(stored);
    if (compress2(packed.data(), &stored, body.data(), static_cast<uLong>(body.size()), Z_BEST_COMPRESSION) != Z_OK)
        throw Error("the recording cannot be packed");
    ByteWriter out;
    out.Raw(kMagic, sizeof kMagic);
    out.U32(kVersion);
    out.U64(stored);
    out.U64(body.size());
    out.U32(Checksum(out.Get().data(), packed.data(), stored));
    out.Raw(packed.data(), stored);
    return out.Get();
}

Bytes Unpack(const uint8_t* file, size_t size) {
    if (size < sizeof kMagic || std::memcmp(file, kMagic, sizeof kMagic) != 0)
        throw Error("this is no recording");
    if (size < kHeaderBytes)
        throw Error("the recording is cut off");
    ByteReader header(file + sizeof kMagic, kHeaderBytes - sizeof kMagic);
    if (const uint32_t version = header.U32(); version != kVersion)
        throw Error("the recording has version " + std::to_string(version) + ", this program reads version " +
                    std::to_string(kVersion));
    const uint64_t stored = header.U64(), raw = header.U64();
    const uint8_t* const body = file + kHeaderBytes;
    if (stored > size - kHeaderBytes)
        throw Error("the recording is cut off");
    if (stored < size - kHeaderBytes)
        throw Error("the recording has something behind its end");
    if (header.U32() != Checksum(file, body, static_cast<size_t>(stored)))
        throw Error("the recording is damaged: wrong checksum");
    if (raw > kMaxBodyBytes || raw > stored * kMaxRatio)
        throw Error("the recording is damaged: its size cannot be");
    Bytes result(static_cast<size_t>(raw));
    uLongf length = static_cast<uLongf>(raw);
    uint8_t none = 0;
    if (uncompress(raw != 0 ? result.data() : &none, &length, body, static_cast<uLong>(stored)) != Z_OK ||
        length != raw)
        throw Error("the recording is damaged: it cannot be unpacked");
    return result;
}

Bytes ReadFile(const std::string& path) {
    const File file(std::fopen(path.c_str(), "rb"));
    if (!file)
        throw Error("cannot open '" + path + "': " + std::strerror(errno));
    Bytes bytes;
    uint8_t block[65536];
    while (const size_t got = std::fread(block, 1, sizeof block, file.get()))
        bytes.insert(bytes.end(), block, block + got);
    if (std::ferror(file.get()) != 0)
        throw Error("cannot read '" + path + "'");
    return bytes;
}

void WriteFile(const std::string& path, const Bytes& file) {
    File out(std::fopen(path.c_str(), "wb"));
    if (!out)
        throw Error("cannot write '" + path + "': " + std::strerror(errno));
    const bool written = std::fwrite(file.data(), 1, file.size(), out.get()) == file.size();
    if (std::fclose(out.release()) != 0 || !written) {
        std::remove(path.c_str());
        throw Error("cannot write '" + path + "'");
    }
}

} // namespace Gxr
