// SPDX-License-Identifier: MIT
// Where tests leave their files: ctest runs several processes of one program at once.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <string>

/// A folder of this process's own, removed with everything in it when the process ends.
inline const std::filesystem::path& ScratchFolder() {
    struct Folder {
        std::filesystem::path path;
        Folder() {
            std::random_device random;
            do {
                path = std::filesystem::path(testing::TempDir()) / ("gx_" + std::to_string(random()));
            } while (!std::filesystem::create_directories(path));
        }
        ~Folder() {
            std::error_code ignored;
            std::filesystem::remove_all(path, ignored);
        }
    };
    static const Folder folder;
    return folder.path;
}
