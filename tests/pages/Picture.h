// SPDX-License-Identifier: MIT
// RGB pictures read from and written to PNG files, and shell commands, for the tests of whole pages.
#pragma once

#include <png.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#if !defined(_WIN32)
#include <sys/wait.h>
#endif

struct Picture {
    uint32_t width = 0, height = 0;
    std::vector<uint8_t> rgb;
};

inline bool ReadPng(const std::string& path, Picture& picture) {
    png_image image;
    std::memset(&image, 0, sizeof image);
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&image, path.c_str()))
        return false;
    image.format = PNG_FORMAT_RGB;
    picture.width = image.width;
    picture.height = image.height;
    picture.rgb.resize(PNG_IMAGE_SIZE(image));
    const png_color white{255, 255, 255};
    return png_image_finish_read(&image, &white, picture.rgb.data(), 0, nullptr) != 0;
}

inline bool WritePng(const std::string& path, const Picture& picture) {
    png_image image;
    std::memset(&image, 0, sizeof image);
    image.version = PNG_IMAGE_VERSION;
    image.width = picture.width;
    image.height = picture.height;
    image.format = PNG_FORMAT_RGB;
    return png_image_write_to_file(&image, path.c_str(), 0, picture.rgb.data(), 0, nullptr) != 0;
}

inline std::string Quoted(const std::string& text) {
    std::string quoted = "'";
    for (const char c : text)
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

// The exit code, or -1 when the program ended by a signal or could not start.
inline int Shell(const std::string& command) {
    const int status = std::system(command.c_str());
#if defined(_WIN32)
    return status;
#else
    return status != -1 && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
#endif
}

inline std::filesystem::path OutputFolder() {
    const std::filesystem::path folder = GX_PAGES_OUTPUT;
    std::filesystem::create_directories(folder);
    return folder;
}
